#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "device/kernel32.h"
#include "journal/record.h"

/// The undo journal of the test that runs: a file with room for one place. Before a place is written to, its former
/// contents are in the file and on the medium; when they are back on the disk, the record is marked done. Procedures
/// give an empty text, or what failed, with the system's code.
class Journal {
 public:
  Journal() = default;
  Journal(const Journal&) = delete;
  Journal& operator=(const Journal&) = delete;
  Journal(Journal&&) = delete;
  Journal& operator=(Journal&& other) noexcept {
    std::swap(handle_, other.handle_);
    file_ = std::move(other.file_);
    record_ = std::move(other.record_);
    contents_sum_ = other.contents_sum_;
    code_ = other.code_;
    return *this;
  }
  /// Closes the file, which stays.
  ~Journal() { close(); }

  /// Makes the new file `file` for places of `disk` of up to `most_sectors` sectors, at full length.
  std::string create(const std::string& file, const DiskIdentity& disk, std::int64_t most_sectors);

  /// Records `former`, whole sectors from `lba` that are about to be overwritten with `pattern`. When it gives an empty
  /// text, they are on the medium.
  std::string record(std::int64_t lba, std::span<const std::uint8_t> former, std::span<const std::uint8_t> pattern);

  /// The recorded place holds its former contents again. Should the mark not be written, a replay finds that out.
  void mark_done();

  /// Closes and deletes the file, unless the recorded place is not done: then it stays.
  std::string finish();

  void close();

  bool is_open() const { return handle_ != kernel32::kInvalidHandle; }
  const std::string& file() const { return file_; }

 private:
  std::string fill(std::int64_t most_sectors);
  bool write_at(std::int64_t offset, std::span<const std::uint8_t> bytes);
  std::string failure(const char* what) const;

  kernel32::Handle handle_ = kernel32::kInvalidHandle;
  std::string file_;
  Record record_;
  std::uint32_t contents_sum_ = 0;
  std::uint32_t code_ = 0;  // the system's, of the last failure
};

inline Journal journal;

/// A journal that an earlier program left.
struct LeftJournal {
  enum class State : std::uint8_t {
    readable,         // `record`, and `former` where it is pending
    in_use,           // a test is running
    damaged,          // it cannot be told what it was
    contents_damaged  // `record` alone: power failed while it was written, or the file changed since
  };
  std::string file;
  State state = State::damaged;
  std::string why;  // of damaged
  Record record;
  std::vector<std::uint8_t> former;
};

LeftJournal read_journal(const std::string& file);

/// The same from the bytes of a file.
LeftJournal take_journal(std::span<const std::uint8_t> bytes);
