#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "disk/whole_sectors.h"

/// One place of a non-destructive test: its former contents are taken and recorded in the undo journal, it is written
/// to, and they are given back: those of the whole logical sectors, where the place ends inside one. From the end of
/// the first read to the end of giving back no events run, and a console that closes waits.
class Visit {
 public:
  Visit(std::int64_t lba, std::int64_t sectors) : lba_(lba), sectors_(sectors), whole_(widened({lba, sectors})) {}
  Visit(const Visit&) = delete;
  Visit& operator=(const Visit&) = delete;
  ~Visit();

  /// Lets events run, then reads the place. False when it was not read whole, by failure or cancel: it must not be
  /// written to then. A failure is noted.
  bool take_former_contents();

  /// Records the former contents in the journal, if there is one, before `pattern` (empty: the contents themselves) is
  /// written over them. Returns false, after it showed why, if they are not on its medium: the place must not be
  /// written to, and the test ends.
  bool record(std::span<const std::uint8_t> pattern);

  /// Writes the start of Sec_Buf to the place, or reads it back. False on failure.
  bool write();
  bool read();

  /// Writes the former contents back, reads them again and compares; not counted. If one of these fails, the status and
  /// standard error show the place immediately, its line is kept for the block, and the test ends.
  void give_back();

  std::int64_t lba() const { return lba_; }
  std::span<const std::uint8_t> former_contents() const;

 private:
  std::string why_not_verified() const;

  std::int64_t lba_;
  std::int64_t sectors_;
  Stretch whole_;                    // what a write of the place writes over
  std::vector<std::uint8_t> saved_;  // of all of it
  std::uint32_t refused_ = 0;        // the system's code for a write that it did not pass on to the drive
};

/// What the visits of this operation left. Tests start fresh by `{}`.
struct Visits {
  static constexpr std::size_t kMostNotes = 1000;

  std::vector<std::string> notes;  // what went wrong in a visit, a line each; the first ones
  std::int64_t more = 0;           // visits whose line is not kept
  std::vector<std::string> lost;   // contents that were not restored or not verified, and why the test ended
  bool uncounted = false;          // no failed transfer stands for what ended the test
  bool ended = false;              // no further place is visited
};

inline Visits visits;

/// Keeps a line for the block of the visits.
void note_visit(const std::string& line);

/// Appends the block of what went wrong in visits to Text1 and the report, the lost contents last. Prints nothing if
/// nothing went wrong.
void report_visits();

/// Adds an end of the test that no failed transfer stands for to the exit code.
void count_early_end();

/// Makes the undo journal of a test whose visits have up to `sectors` sectors. Where there is no place for one a batch
/// refuses, which is told; the window asks for a folder and, without one, whether to go on without a journal. False: no
/// test.
bool begin_journal(std::int64_t sectors);

/// The test ends, by itself or because the user leaves: the journal goes, unless a place needs it.
void end_journal();
