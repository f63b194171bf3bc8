#include "journal/journal.h"

#include <algorithm>

#include "device/whole_file.h"
#include "disk/error_text.h"
#include "journal/crc32c.h"
#include "platform/units.h"

namespace {

constexpr std::uint32_t kWriteThroughFlag = 0x80000000;  // fileapi.h: FILE_FLAG_WRITE_THROUGH
constexpr std::uint32_t kSharingViolation = 32;          // winerror.h

std::string with_code(const std::string& what, std::uint32_t code) {
  return what + ": " + coded_error_text(code);
}

std::size_t bytes_of(std::int64_t sectors) {
  return static_cast<std::size_t>(sectors * SectorSize);
}

}  // namespace

std::string Journal::failure(const char* what) const {
  return with_code("The journal \"" + file_ + "\" " + what, code_);
}

std::string Journal::create(const std::string& file, const DiskIdentity& disk, std::int64_t most_sectors) {
  close();
  file_ = file;
  record_ = {.state = RecordState::empty, .pattern = {}, .disk = disk};
  if (!fits(record_)) return "The disk's names are too long for a journal.";
  handle_ = kernel32::CreateFileA(file.c_str(), platform::kGenericWrite, platform::kShareRead, platform::kCreateNew,
                                  kWriteThroughFlag);
  if (!is_open()) {
    code_ = kernel32::GetLastError();
    return failure("cannot be made");
  }
  std::string problem = fill(most_sectors);
  if (!problem.empty()) {
    close();
    kernel32::DeleteFileA(file.c_str());
  }
  return problem;
}

std::string Journal::fill(std::int64_t most_sectors) {
  contents_sum_ = 0;
  bool written = write_at(0, encode(record_, contents_sum_));
  const std::vector<std::uint8_t> zeros(std::min(bytes_of(most_sectors), std::size_t{1} << 20U));
  const std::size_t end = kHeaderBytes + bytes_of(most_sectors);
  for (std::size_t at = kHeaderBytes; written && at < end; at += zeros.size()) {
    const auto part = std::span(zeros).first(std::min(zeros.size(), end - at));
    written = write_at(static_cast<std::int64_t>(at), part);
  }
  return written && kernel32::FlushFileBuffers(handle_) ? std::string() : failure("cannot be made");
}

std::string Journal::record(std::int64_t lba, std::span<const std::uint8_t> former,
                            std::span<const std::uint8_t> pattern) {
  record_.state = RecordState::pending;
  record_.lba = lba;
  record_.sectors = static_cast<std::int64_t>(former.size()) / SectorSize;
  record_.pattern.assign(pattern.begin(), pattern.end());
  contents_sum_ = crc32c::sum(former);
  // The contents come first: a process that ends between the two leaves the former header, which is done with.
  const bool written = write_at(kHeaderBytes, former) && write_at(0, encode(record_, contents_sum_));
  if (written && kernel32::FlushFileBuffers(handle_)) return {};
  if (written) code_ = kernel32::GetLastError();
  return failure("cannot be written");
}

void Journal::mark_done() {
  if (!is_open()) return;
  record_.state = RecordState::done;
  write_at(0, encode(record_, contents_sum_));
}

std::string Journal::finish() {
  if (!is_open()) return {};
  close();
  if (record_.state == RecordState::pending || kernel32::DeleteFileA(file_.c_str())) return {};
  code_ = kernel32::GetLastError();
  return failure("cannot be deleted");
}

void Journal::close() {
  if (is_open()) kernel32::CloseHandle(handle_);
  handle_ = kernel32::kInvalidHandle;
}

bool Journal::write_at(std::int64_t offset, std::span<const std::uint8_t> bytes) {
  std::uint32_t moved = 0;
  const bool written = kernel32::SetFilePointerEx(handle_, offset, nullptr, platform::kFileBegin) &&
                       kernel32::WriteFile(handle_, bytes.data(), static_cast<std::uint32_t>(bytes.size()), &moved);
  if (!written) code_ = kernel32::GetLastError();
  if (written && moved != bytes.size()) code_ = platform::kDiskFull;
  return written && moved == bytes.size();
}

LeftJournal take_journal(std::span<const std::uint8_t> bytes) {
  LeftJournal left;
  if (bytes.empty()) {  // its program died before it wrote anything
    left.state = LeftJournal::State::readable;
    return left;
  }
  const std::optional<Record> record = decode(bytes);
  if (!record) {
    left.why = "its header is no whole header of a journal";
    return left;
  }
  left.record = *record;
  // Of a place that is done nothing is needed any more, whatever stands behind the header.
  left.state = LeftJournal::State::readable;
  if (record->state != RecordState::pending) return left;
  const auto header = bytes.first(kHeaderBytes);
  const auto behind = bytes.subspan(kHeaderBytes);
  const std::size_t size = bytes_of(std::min(record->sectors, static_cast<std::int64_t>(behind.size()) / SectorSize));
  if (size == bytes_of(record->sectors) && contents_hold(header, behind.first(size))) {
    left.former.assign(behind.begin(), behind.begin() + static_cast<std::ptrdiff_t>(size));
  } else {
    left.state = LeftJournal::State::contents_damaged;
  }
  return left;
}

LeftJournal read_journal(const std::string& file) {
  LeftJournal unread;
  unread.file = file;
  const WholeFile whole = read_whole_file(file);
  if (whole.open_code != 0) {
    unread.state = whole.open_code == kSharingViolation ? LeftJournal::State::in_use : LeftJournal::State::damaged;
    unread.why = with_code("it cannot be opened", whole.open_code);
    return unread;
  }
  if (whole.read_code != 0) {
    unread.why = with_code("it cannot be read", whole.read_code);
    return unread;
  }
  LeftJournal left = take_journal(whole.bytes);
  left.file = file;
  return left;
}
