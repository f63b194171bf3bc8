#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "buffer/search.h"
#include "measure/measure.h"
#include "ops/random_choices.h"

/// The operations on the selected drive, each in three steps that the frame of a command (app/commands.h) runs in turn:
///
/// - plan_x() takes range or parameters, makes the buffer and announces what begins; nothing when there is nothing to
///   do, which is told where it is no wish of the user.
/// - the transfers, until they are done or the user cancels;
/// - report_x() tells what came of it.

/// Reads the range in the fields, chunk by chunk.
std::optional<RunPlan> plan_read();
void Seq_Read(const RunPlan& plan);
void report_read();

/// Writes the range in the fields from the start of Sec_Buf, chunk by chunk.
std::optional<RunPlan> plan_write();
void Seq_Write(const RunPlan& plan);
void report_write();

/// Reads the range in the fields in the chunks of a write of it and compares each with the pattern in TxtPattern,
/// repeated from the chunk's start. A chunk that differs is a compare error; the exit code takes these too.
struct VerifyRun {
  static constexpr std::size_t kMostListed = 1000;
  struct Difference {
    std::int64_t lba = 0;      // of a chunk's first byte that differs
    std::int64_t offset = 0;   // of that byte in its sector
    std::int64_t sectors = 0;  // of the chunk that differ
  };

  bool asked = false;                // true if this command verified; otherwise the other members are meaningless
  bool after_write = false;          // a read-back: what it found is in no counter
  std::string pattern{};             // hex
  std::int64_t chunks = 0;           // of the range
  std::int64_t compared = 0;         // chunks that were read
  std::int64_t failed = 0;           // chunks that could not be
  std::int64_t failed_by_drive = 0;  // of a read-back: those that the system did not refuse by itself
  std::int64_t differing = 0;        // of those compared
  std::vector<Difference> listed{};  // the first ones, by LBA
  std::string not_done{};            // why a read-back did not begin; empty if it did
  std::string stopped{};             // why a read-back ended early; empty if it did not, or was cancelled
};

inline VerifyRun verify_run;

std::optional<RunPlan> plan_verify();
void verify_range(const RunPlan& plan);
void report_verify();

/// Reads back and compares what a write wrote, if its question was answered so. A phase of its own after
/// End_Operation(): it opens the drive and locks its volumes again, and changes none of the write's counters, rates and
/// measurements. Failed reads and differences are added to the exit code, and the drive's health is judged anew.
/// Sec_Buf is left as the write left it. Requires: hold_drive() still holds the drive.
void verify_written(const RunPlan& plan);

/// A read of one sector, unless /COUNT gave a number, that shows the buffer and, at LBA 0, the partition table in the
/// report. Its transfers are Seq_Read's.
std::optional<RunPlan> plan_show();
void report_show();

/// Searches the range for what ask_search_string() takes: from the command line, or from a question, which gives false
/// to leave. On a match the buffer holds that sector alone, unless `not_read` says why not.
struct SearchRun {
  std::string text;         // as typed
  bool found = false;       // a match begins at `lba`; it may end in the next sector
  std::int64_t lba = 0;     // else the first LBA that was not read
  std::int64_t offset = 0;  // of the match in its sector
  std::string not_read{};   // why the match's sector is not in the buffer; empty if it is
};

inline SearchRun search_run;

bool ask_search_string();
std::optional<RunPlan> plan_search();
void search_range(const RunPlan& plan);
void report_search();

/// Reads `count` sectors from `*lba` in transfers of `chunk` sectors, the last one shortened, until one holds a match.
/// Where logical sectors are longer than 512 bytes the first one is shortened too, so that the others are made of whole
/// ones, and a match may begin in the chunk before. Gives the match's distance from the start of Sec_Buf in bytes, or
/// nothing; `*lba` is then the first LBA not read, on a match the chunk's first one.
std::optional<std::int64_t> ReadSearchSectors(const Search& search, std::int64_t* lba, std::int64_t count,
                                              std::int64_t chunk);

/// A test at random places of the selected drive. A visit is one place of counters.No_Secs sectors.
struct RandomTest {
  std::int32_t passes = 0;            // visits to make
  std::int64_t Ops_Done = 0;          // visits made
  std::vector<std::uint8_t> pattern;  // what a destructive test writes at every place
};

inline RandomTest random_test;

/// Reads at random places.
std::optional<RunPlan> plan_random_read();
void Random_Read_Test(const RunPlan& plan);
void report_random_read();

/// At each place reads, writes a random pattern, reads it back and compares, and writes the former contents back. A
/// place whose contents could not be read is not written to.
std::optional<RunPlan> plan_random_write();
void Random_Write_Test(const RunPlan& plan);
void report_random_write();

/// Fills Sec_Buf, its last one to four bytes left out, with `pattern` and shows it in TxtPattern.
void FillRandPatt(const RandomPattern& pattern);

/// At each place writes the fill pattern, reads it back and compares.
std::optional<RunPlan> plan_destructive_write();
void Destructive_Random_Write_Test(const RunPlan& plan);
void report_destructive_write();

/// Rewrites small runs at random places between far seeks, and re-reads their neighbourhood every thousand passes, so
/// that a write that strayed off its track shows as read errors. The outer 100 MB at each end are left out.
std::optional<RunPlan> plan_off_track();
void OffTrack_Write_Test(const RunPlan& plan);
void report_off_track();
