#include "unit/reader/readerpair.h"

#include "base/le.h"
#include "dbbuilder/profiles.h"
#include "dbbuilder/writer.h"
#include "support/paths.h"

namespace statecut::test {

ReaderPair::ReaderPair()
    : model_(builder::makeModel(builder::tinyPlaces(), builder::tinyOptions())),
      ref_(folder_.file("city.dir")),
      rng_(folder_.file("zip4us.dir")) {
  builder::WrittenFile written;
  std::string error;
  EXPECT_TRUE(builder::writeReferenceFile(model_, ref_, written, error)) << error;
  EXPECT_TRUE(builder::writeRangeFile(model_, rng_, written, error)) << error;
  bytes_ = readWholeFile(ref_).value_or(FileBytes());
}

void ReaderPair::cut() {
  Command command;
  command.program = kStatecut;
  command.folder = folder_.path();
  command.input = "TX\n\n";
  const ProcessResult result = runProcess(command);
  EXPECT_EQ(result.exitStatus, 0) << result.err;
  ref_ = folder_.file("city.sc");
  rng_ = folder_.file("zip4us.sc");
  bytes_ = readWholeFile(ref_).value_or(FileBytes());
}

std::string ReaderPair::damaged(std::size_t at, std::size_t width, std::uint32_t value) {
  FileBytes copy = bytes_;
  le::putN(copy.data() + at, width, value);
  std::string path = folder_.file("damaged");
  writeWholeFile(path, copy);
  return path;
}

std::uint32_t ReaderPair::word(std::size_t at) const { return le::get<4>(bytes_.data() + at); }

std::shared_ptr<const Database> ReaderPair::open(const std::string& path) {
  return Database::open(path, {}, error_);
}

std::shared_ptr<const Database> ReaderPair::openPair() {
  OpenOptions options;
  options.range = rng_;
  return Database::open(ref_, options, error_);
}

std::string ReaderPair::refusal(const std::string& path, ErrorCode code,
                                const OpenOptions& options) {
  EXPECT_EQ(Database::open(path, options, error_), nullptr);
  EXPECT_EQ(error_.code, code) << error_.text;
  return error_.text;
}

}  // namespace statecut::test
