// Opening a database: the file in memory, its tables, the range file that belongs to it.

#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <new>
#include <system_error>

#include "reader/placing.h"

namespace statecut {
inline namespace v1 {

namespace {

using Ref = RefControlRec;
using Rng = RngControlRec;

// Zeros behind what was read, for searches that read a few bytes more than they need.
constexpr std::size_t kSlack = 512;
// Pages of the new block are touched while they are in the cache.
constexpr std::size_t kPiece = std::size_t{256} << 10;

bool systemFailed(Error& error, ErrorCode code, const char* what, const std::string& file) {
  const int number = errno;
  return failed(error, code, number,
                std::string(what) + " " + file + ": " + std::generic_category().message(number));
}

// A pipe that nobody writes to is opened without waiting, and then refused as it cannot be read.
Descriptor openFile(const std::string& path) {
  for (;;) {
    const int fd = sys::openFile(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd >= 0 || errno != EINTR) return Descriptor(fd);
  }
}

// The bytes that there are, up to `count`; -1 with errno.
std::int64_t readFully(int fd, unsigned char* to, std::size_t count, std::uint64_t offset) {
  std::size_t done = 0;
  while (done < count) {
    const std::size_t wanted = count - done < kPiece ? count - done : kPiece;
    const std::int64_t got = sys::readAt(fd, to + done, wanted, offset + done);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return -1;
    if (got == 0) break;
    done += static_cast<std::size_t>(got);
  }
  return static_cast<std::int64_t>(done);
}

// The record at the start of a file. False when it is not there.
template <typename Record>
bool readRecord(int fd, const std::string& file, Record& record, Error& error) {
  const std::int64_t got = readFully(fd, record.bytes.data(), Record::size, 0);
  if (got < 0) return systemFailed(error, ErrorCode::kReadFile, "cannot read", file);
  if (got == Record::size) return true;
  return failed(
      error, ErrorCode::kNotDatabase, 0,
      file + " is no database: it has less than " + std::to_string(Record::size) + " bytes");
}

bool isReference(std::uint32_t flags) {
  return (flags & (kTypeReference | kTypeRange)) == kTypeReference;
}
bool isRange(std::uint32_t flags) { return (flags & (kTypeReference | kTypeRange)) == kTypeRange; }

bool wrongKind(Error& error, const std::string& file, const char* kind) {
  error.offset = Ref::typeFlags.at;
  return failed(error, ErrorCode::kNotDatabase, 0, file + " is not a " + kind + " database");
}

bool changed(Error& error, const std::string& file) {
  return failed(error, ErrorCode::kReadFile, 0, file + " changed while it was read");
}

bool readBlock(int fd, std::size_t bytes, Database::Loaded& loaded, const Ref& record,
               Error& error) {
  loaded.block = Block::allocated(bytes + kSlack);
  if (loaded.block.data() == nullptr)
    return failed(error, ErrorCode::kNoMemory, 0, "no memory for " + loaded.file);
  const std::int64_t got = readFully(fd, loaded.block.data(), bytes, 0);
  if (got < 0) return systemFailed(error, ErrorCode::kReadFile, "cannot read", loaded.file);
  if (static_cast<std::size_t>(got) != bytes ||
      std::memcmp(loaded.block.data(), record.bytes.data(), Ref::size) != 0)
    return changed(error, loaded.file);
  loaded.zerosTo = bytes + kSlack;
  return true;
}

// The bytes of the file: all of it that the tables lie in.
bool readReference(const std::string& path, const OpenOptions& options, Database::Loaded& loaded,
                   Error& error) {
  loaded.file = path;
  const Descriptor file = openFile(path);
  if (!file) return systemFailed(error, ErrorCode::kOpenFile, "cannot open", path);
  Ref record{};
  if (!readRecord(file.get(), path, record, error)) return false;
  if (!isReference(record.get(Ref::typeFlags))) return wrongKind(error, path, "reference");
  const std::uint64_t size = sys::fileBytes(file.get());
  if (size < Ref::size)
    return failed(error, ErrorCode::kNotDatabase, 0, path + " is not a regular file");
  const auto bytes = static_cast<std::size_t>(std::min(endOfTables(record), size));
  if (options.mapped) {
    loaded.block = Block::mapped(file.get(), bytes);
    if (loaded.block.data() == nullptr)
      return systemFailed(error, ErrorCode::kReadFile, "cannot map", path);
  } else if (endOfTables(record) > size) {
    // A table is missing; which one, and where, its placing tells without the bytes.
    loaded.bytes = {record.bytes.data(), static_cast<std::size_t>(size)};
    loaded.zerosTo = SIZE_MAX;  // nothing is to be copied
    const bool placed = placeTables(loaded, error);
    return placed && changed(error, path);
  } else if (!readBlock(file.get(), bytes, loaded, record, error)) {
    return false;
  }
  loaded.bytes = {loaded.block.data(), bytes};
  return true;
}

bool openRange(const std::string& path, Database::Loaded& loaded, Error& error) {
  if (path.empty()) return true;
  loaded.range = path;
  loaded.rangeFile = openFile(path);
  if (!loaded.rangeFile) return systemFailed(error, ErrorCode::kOpenFile, "cannot open", path);
  Rng& record = loaded.rangeRecord;
  if (!readRecord(loaded.rangeFile.get(), path, record, error)) return false;
  loaded.rangeBytes = sys::fileBytes(loaded.rangeFile.get());
  if (!isRange(record.get(Rng::typeFlags))) return wrongKind(error, path, "range");
  // A cut has partitions elsewhere than the file that it was cut from.
  const Ref& reference = *loaded.view.record;
  const bool sameBuild =
      record.get(Rng::buildTimeStamp) == reference.get(Ref::buildTimeStamp) &&
      record.get(Rng::stateCutTimeStamp) == reference.get(Ref::stateCutTimeStamp) &&
      ((record.get(Rng::typeFlags) ^ reference.get(Ref::typeFlags)) & kTypeStateCut) == 0;
  if (sameBuild) return true;
  error.offset = Rng::buildTimeStamp.at;
  return failed(error, ErrorCode::kOtherBuild, 0,
                path + " does not belong to " + loaded.file + ": it is of another build");
}

std::shared_ptr<const Database> finish(std::unique_ptr<Database::Loaded> loaded,
                                       const OpenOptions& options, Error& error) {
  if (!placeTables(*loaded, error) || !checkTables(*loaded, error) ||
      !openRange(options.range, *loaded, error))
    return nullptr;
  const std::string file = loaded->file;
  auto database = std::make_shared<const Database>(std::move(loaded));
  if ((options.indexNames && !database->indexNames()) ||
      (options.indexCityZips && !database->indexCityZips())) {
    failed(error, ErrorCode::kNoMemory, 0, "no memory for the indexes of " + file);
    return nullptr;
  }
  error = Error();
  return database;
}

std::shared_ptr<const Database> noMemory(Error& error) noexcept {
  error.code = ErrorCode::kNoMemory;
  try {
    error.text = "no memory";
  } catch (...) {
    error.text.clear();
  }
  return nullptr;
}

}  // namespace

std::shared_ptr<const Database> Database::open(const std::string& reference,
                                               const OpenOptions& options, Error& error) noexcept {
  try {
    error = Error();
    auto loaded = std::make_unique<Loaded>();
    if (!readReference(reference, options, *loaded, error)) return nullptr;
    return finish(std::move(loaded), options, error);
  } catch (const std::bad_alloc&) {
    return noMemory(error);
  }
}

std::shared_ptr<const Database> Database::open(std::span<const unsigned char> bytes,
                                               const OpenOptions& options, Error& error) noexcept {
  try {
    error = Error();
    auto loaded = std::make_unique<Loaded>();
    loaded->file = "the file in memory";
    loaded->bytes = bytes;
    if (bytes.size() < Ref::size) {
      failed(error, ErrorCode::kNotDatabase, 0,
             loaded->file + " is no database: it has less than 844 bytes");
      return nullptr;
    }
    const auto& record = *reinterpret_cast<const Ref*>(bytes.data());
    if (!isReference(record.get(Ref::typeFlags))) {
      wrongKind(error, loaded->file, "reference");
      return nullptr;
    }
    return finish(std::move(loaded), options, error);
  } catch (const std::bad_alloc&) {
    return noMemory(error);
  }
}

std::optional<std::size_t> Database::readPartition(const Zip& zip, PartitionKind kind,
                                                   std::span<unsigned char> buffer,
                                                   Error& error) const noexcept {
  try {
    error = Error();
    if (loaded_->range.empty()) {
      failed(error, ErrorCode::kNoRange, 0, loaded_->file + " was opened without a range file");
      return std::nullopt;
    }
    const Zip found = zipOfKey(zip.key);
    std::uint32_t rba = 0;
    if (found && kind == PartitionKind::kStreet) rba = found->get(ZipDataRow::sfhRba);
    if (found && kind == PartitionKind::kPoBox) rba = found->get(ZipDataRow::pobRba);
    if (found && kind == PartitionKind::kRuralRoute) rba = found->get(ZipDataRow::rrRba);
    if (rba == 0) {
      failed(error, ErrorCode::kNoPartition, 0, "the ZIP code has no such partition");
      return std::nullopt;
    }
    const std::optional<std::uint32_t> size = partitionBytes(found, kind);
    if (size && *size > buffer.size()) {
      error.offset = *size;
      failed(error, ErrorCode::kSmallBuffer, 0,
             "the partition has " + std::to_string(*size) + " bytes");
      return std::nullopt;
    }
    const std::size_t wanted = size ? *size : buffer.size();
    const std::int64_t got = readFully(loaded_->rangeFile.get(), buffer.data(), wanted, rba);
    error.offset = got >= 0 && (!size || static_cast<std::size_t>(got) == wanted) ? 0 : rba;
    if (got < 0) {
      systemFailed(error, ErrorCode::kReadFile, "cannot read", loaded_->range);
      return std::nullopt;
    }
    if (error.offset != 0) {
      failed(error, ErrorCode::kShortFile, 0,
             loaded_->range + ": the partition at " + std::to_string(rba) +
                 " ends behind the end of the file");
      return std::nullopt;
    }
    return static_cast<std::size_t>(got);
  } catch (const std::bad_alloc&) {
    noMemory(error);
    return std::nullopt;
  }
}

}  // namespace v1
}  // namespace statecut
