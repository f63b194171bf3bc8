#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

/// One place of a non-destructive test: its former contents are taken, it is written to, and they are given back. From
/// the end of the first read to the end of giving back no events run, and a console that closes waits.
class Visit {
 public:
  Visit(std::int64_t lba, std::int64_t sectors) : lba_(lba), sectors_(sectors) {}
  Visit(const Visit&) = delete;
  Visit& operator=(const Visit&) = delete;
  ~Visit();

  /// Lets events run, then reads the place. False when it was not read whole, by failure or cancel: it must not be
  /// written to then. A failure is told.
  bool take_former_contents();

  /// Writes the start of Sec_Buf to the place, or reads it back. False on failure.
  bool write();
  bool read();

  /// Writes the former contents back. Where that fails, they are saved in a file, unless the system let nothing through
  /// to the drive, and the place is remembered.
  void give_back();

  const std::vector<std::uint8_t>& former_contents() const { return saved_; }

 private:
  std::int64_t lba_;
  std::int64_t sectors_;
  std::vector<std::uint8_t> saved_;
  std::uint32_t refused_ = 0;  // the system's code for a write that it did not pass on to the drive
};

/// Places whose former contents could not be written back in this operation, a line each. Tests start fresh by `{}`.
struct LostPlaces {
  std::vector<std::string> lines;
};

inline LostPlaces lost_places;

/// Tells the lost places again, as the last lines of Text1 and the report.
void report_lost_places();

/// Saves sectors that could not be written back to `lba` into a new file "sectorix-<serial>-<lba>.bin" beside the
/// report, or in the current folder; never over a file, never on a volume of the disk under test. Gives a sentence that
/// names the file, or says with the system's code why there is none.
std::string save_to_rescue_file(std::int64_t lba, std::span<const std::uint8_t> sectors);
