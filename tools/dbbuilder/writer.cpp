#include "dbbuilder/writer.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <span>

namespace statecut::builder {

namespace {

constexpr std::size_t chunkBytes = std::size_t{1} << 20;  // a multiple of 8, as fillContent needs

// A file being written. The first failure is kept; later writes do nothing.
class Output {
 public:
  explicit Output(const std::string& path) : path_(path), file_(std::fopen(path.c_str(), "wb")) {
    if (file_ == nullptr) fail("open");
  }
  Output(const Output&) = delete;
  Output& operator=(const Output&) = delete;
  ~Output() {
    if (file_ != nullptr) std::fclose(file_);
  }

  void write(std::span<const Byte> bytes) {
    if (!error_.empty() || bytes.empty()) return;
    if (std::fwrite(bytes.data(), 1, bytes.size(), file_) != bytes.size()) fail("write");
    written_ += bytes.size();
  }

  [[nodiscard]] bool failed() const { return !error_.empty(); }
  [[nodiscard]] std::uint64_t written() const { return written_; }

  // Closes the file; the first error, or an empty text.
  std::string close() {
    if (file_ != nullptr) {
      if (std::fclose(file_) != 0 && error_.empty()) fail("close");
      file_ = nullptr;
    }
    return error_;
  }

 private:
  void fail(const char* what) {
    error_ = std::string("cannot ") + what + " " + path_ + ": " + std::strerror(errno);
  }

  std::string path_;
  std::FILE* file_;
  std::string error_;
  std::uint64_t written_ = 0;
};

bool finish(Output& output, const std::string& path, WrittenFile& written, std::string& error) {
  written = {path, output.written()};
  error = output.close();
  return error.empty();
}

// Writes `bytes` to the output up to the limit of the file's length.
void writeUpTo(Output& output, std::span<const Byte> bytes, std::uint64_t limit) {
  const std::uint64_t room = limit > output.written() ? limit - output.written() : 0;
  output.write(bytes.first(std::min<std::size_t>(bytes.size(), room)));
}

void writeZeros(Output& output, std::uint64_t end) {
  const Bytes zeros(std::min<std::uint64_t>(chunkBytes, end - std::min(end, output.written())));
  while (output.written() < end && !output.failed()) writeUpTo(output, zeros, end);
}

}  // namespace

bool writeReferenceFile(const Model& model, const std::string& path, WrittenFile& written,
                        std::string& error) {
  const ReferenceFile file = referenceFile(model);
  Output output(path);
  output.write(file.bytes);
  return finish(output, path, written, error);
}

bool writeRangeFile(const Model& model, const std::string& path, WrittenFile& written,
                    std::string& error) {
  const RangeModel& range = model.range;
  const RangeLayout layout(range);
  const std::uint64_t end = range.fileBytes.value_or(layout.end());
  Output output(path);
  writeUpTo(output, rangeControlRecord(range, layout), end);
  writeZeros(output, std::min(layout.begin(), end));
  Bytes chunk(chunkBytes);
  for (const Partition& partition : range.partitions) {
    for (std::uint64_t done = 0; done < partition.bytes && output.written() < end;) {
      if (output.failed()) break;
      const auto part = std::span(chunk).first(
          static_cast<std::size_t>(std::min<std::uint64_t>(chunkBytes, partition.bytes - done)));
      fillContent(partition.seed, done, part);
      writeUpTo(output, part, end);
      done += part.size();
    }
  }
  writeZeros(output, end);
  return finish(output, path, written, error);
}

}  // namespace statecut::builder
