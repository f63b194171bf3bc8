// The journal's file: what stands in it, how its own writes fail, and what a reader makes of whatever is left of it.

#include "journal/journal.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstring>
#include <filesystem>

#include "journal/crc32c.h"
#include "tests/support/rig.h"

namespace {

using headless::desktop;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using Bytes = std::vector<std::uint8_t>;
using State = LeftJournal::State;

Bytes bytes_of(const std::string& text) {
  return {text.begin(), text.end()};
}

Bytes sectors(std::size_t count, char fill) {
  return Bytes(count * 512, static_cast<std::uint8_t>(fill));
}

const DiskIdentity kDisk{.model = "Model X", .serial = "S/1", .firmware = "1.2", .sectors = 5000, .file = "c:\\a.img"};
const Bytes kPattern = {1, 2, 3, 4};

class JournalTest : public Rig {
 protected:
  std::string file() { return path("j.journal"); }
  Bytes contents() { return bytes_of(read_file(file())); }

  /// A journal with a record of two sectors from 77.
  void make() {
    ASSERT_EQ(journal.create(file(), kDisk, 2), "");
    ASSERT_EQ(journal.record(77, sectors(2, 'a'), kPattern), "");
  }
};

TEST(Crc32c, IsTheSumThatItsDocumentShows) {
  EXPECT_EQ(crc32c::sum(bytes_of("123456789")), 0xE3069283U);
  EXPECT_EQ(crc32c::sum(Bytes(32, 0)), 0x8A9136AAU);
  EXPECT_EQ(crc32c::sum(Bytes(32, 0xFF)), 0x62A8AB43U);
  const Bytes whole = bytes_of("the quick brown fox jumps over it");
  for (std::size_t cut = 0; cut <= whole.size(); ++cut) {
    const std::span<const std::uint8_t> all = whole;
    EXPECT_EQ(crc32c::sum(all.subspan(cut), crc32c::sum(all.first(cut))), crc32c::sum(whole)) << cut;
  }
}

TEST_F(JournalTest, IsMadeAtFullLengthAndGoesWhenItsRecordIsDone) {
  ASSERT_EQ(journal.create(file(), kDisk, 2), "");
  EXPECT_EQ(std::filesystem::file_size(file()), 4096U + 2 * 512);
  desktop.calls.clear();
  ASSERT_EQ(journal.record(77, sectors(2, 'a'), kPattern), "");
  EXPECT_EQ(std::ranges::count(desktop.calls, "FlushFileBuffers"), 1);
  EXPECT_EQ(desktop.calls.back(), "FlushFileBuffers");
  EXPECT_EQ(read_journal(file()).state, State::in_use);
  journal.close();
  const LeftJournal left = read_journal(file());
  EXPECT_EQ(left.state, State::readable);
  EXPECT_EQ(left.record.state, RecordState::pending);
  EXPECT_EQ(left.record.lba, 77);
  EXPECT_EQ(left.record.sectors, 2);
  EXPECT_EQ(left.record.pattern, kPattern);
  EXPECT_EQ(left.record.disk.model + left.record.disk.serial + left.record.disk.firmware + left.record.disk.file,
            kDisk.model + kDisk.serial + kDisk.firmware + kDisk.file);
  EXPECT_EQ(left.record.disk.sectors, kDisk.sectors);
  EXPECT_EQ(left.former, sectors(2, 'a'));

  std::filesystem::remove(file());
  make();
  EXPECT_EQ(journal.finish(), "");
  EXPECT_TRUE(std::filesystem::exists(file())) << "a pending record is needed";
  std::filesystem::remove(file());
  make();
  desktop.calls.clear();
  journal.mark_done();
  EXPECT_EQ(std::ranges::count(desktop.calls, "FlushFileBuffers"), 0) << "a visit flushes the journal once";
  EXPECT_EQ(journal.finish(), "");
  EXPECT_FALSE(std::filesystem::exists(file()));
}

TEST_F(JournalTest, NeverReplacesOneThatIsThere) {
  make();
  journal.close();
  const Bytes before = contents();
  EXPECT_THAT(journal.create(file(), kDisk, 2), HasSubstr("cannot be made: error 80 - "));
  EXPECT_FALSE(journal.is_open());
  EXPECT_EQ(contents(), before);
  EXPECT_THAT(journal.create(path("no/such/folder"), kDisk, 8), HasSubstr("cannot be made: error 2 - "));
  DiskIdentity long_name = kDisk;
  long_name.file = std::string(2048, 'x');
  EXPECT_THAT(journal.create(path("k.journal"), long_name, 8), HasSubstr("too long"));
}

TEST_F(JournalTest, IsNotMadeOrNotWrittenWhereAnyCallFailsOrIsCutShort) {
  for (const bool cuts : {false, true}) {
    for (int call = 1; call <= 6; ++call) {
      desktop = {};
      desktop.cuts_writes = cuts;
      desktop.fail_first = desktop.fail_last = cuts ? 0 : call;
      const std::string problem = journal.create(file(), kDisk, 2);
      EXPECT_THAT(problem, HasSubstr(cuts ? "error 112 - " : "error 1117 - ")) << call;
      EXPECT_FALSE(journal.is_open());
      EXPECT_FALSE(std::filesystem::exists(file())) << call;
    }
    for (int call = 1; call <= 5; ++call) {
      desktop = {};
      make();
      desktop.calls_made = 0;
      desktop.cuts_writes = cuts;
      desktop.fail_first = desktop.fail_last = cuts ? 0 : call;
      EXPECT_THAT(journal.record(100, sectors(2, 'b'), kPattern), HasSubstr("j.journal\" cannot be written: error "));
      journal.close();
      std::filesystem::remove(file());
    }
  }
}

/// A record that replaces another one is cut off at a byte: what is then read is the old one, the new one whole, or
/// nothing that could be written to a disk.
TEST_F(JournalTest, ATornRecordIsNeverTakenForAWholeOne) {
  make();
  journal.mark_done();
  journal.close();
  const Bytes before = contents();
  std::filesystem::remove(file());
  make();
  journal.mark_done();
  ASSERT_EQ(journal.record(200, sectors(2, 'b'), {}), "");
  journal.close();
  const Bytes after = contents();
  ASSERT_EQ(before.size(), after.size());

  const auto expect_harmless = [&](const Bytes& torn, std::size_t cut) {
    const LeftJournal left = take_journal(torn);
    const bool pending = left.state == State::readable && left.record.state == RecordState::pending;
    EXPECT_EQ(pending, torn == after) << cut;
    EXPECT_EQ(left.former, pending ? sectors(2, 'b') : Bytes()) << cut;
  };
  for (std::size_t cut = 0; cut <= after.size(); ++cut) {
    Bytes front = before;  // written from the front as far as the cut, and from the cut on
    std::copy_n(after.begin(), cut, front.begin());
    expect_harmless(front, cut);
    Bytes back = after;
    std::copy_n(before.begin(), cut, back.begin());
    expect_harmless(back, cut);
    expect_harmless(Bytes(after.begin(), after.begin() + static_cast<std::ptrdiff_t>(cut)), cut);
  }
}

TEST_F(JournalTest, AnyChangedBitMakesItUseless) {
  ASSERT_EQ(journal.create(file(), kDisk, 1), "");
  ASSERT_EQ(journal.record(77, sectors(1, 'a'), kPattern), "");
  journal.close();
  const Bytes whole = contents();
  ASSERT_EQ(take_journal(whole).state, State::readable);
  for (std::size_t bit = 0; bit < whole.size() * 8; ++bit) {
    Bytes changed = whole;
    changed[bit / 8] ^= static_cast<std::uint8_t>(1U << bit % 8);
    ASSERT_NE(take_journal(changed).state, State::readable) << bit;
  }
  EXPECT_EQ(take_journal({}).record.state, RecordState::empty) << "there is nothing to keep";
  EXPECT_EQ(take_journal(Bytes(10000)).state, State::damaged);
}

TEST_F(JournalTest, ARecordThatNoDiskCanHaveIsDamaged) {
  const Bytes former = sectors(1, 'x');
  const auto state_of = [&](const Record& record) {
    const Header header = encode(record, crc32c::sum(former));
    Bytes bytes(header.begin(), header.end());
    bytes.insert(bytes.end(), former.begin(), former.end());
    return take_journal(bytes).state;
  };
  Record record{.state = RecordState::pending, .lba = 4999, .sectors = 1, .pattern = {}, .disk = kDisk};
  EXPECT_EQ(state_of(record), State::readable);
  record.lba = 5000;
  EXPECT_EQ(state_of(record), State::damaged) << "behind the disk's end";
  record = {.state = RecordState::pending, .lba = -1, .sectors = 1, .pattern = {}, .disk = kDisk};
  EXPECT_EQ(state_of(record), State::damaged);
  record = {.state = RecordState::pending, .lba = 0, .sectors = 0, .pattern = {}, .disk = kDisk};
  EXPECT_EQ(state_of(record), State::damaged) << "a place of nothing";
  record = {.state = RecordState::pending, .lba = 0, .sectors = 2, .pattern = {}, .disk = kDisk};
  EXPECT_EQ(state_of(record), State::contents_damaged) << "the file is shorter";
  record.disk.sectors = INT64_MAX;
  record.sectors = INT64_MAX / 512;
  EXPECT_EQ(state_of(record), State::damaged) << "more than a transfer can be";
}

TEST_F(JournalTest, ThePatternCoversWhatTheTestFills) {
  Record record;
  record.pattern = {1, 2, 3};
  const Bytes former(512, 9);
  const Bytes now = overwritten(record, former);
  EXPECT_EQ(now[508], 2);
  EXPECT_EQ(now[509], 3);
  EXPECT_EQ(now[510], 9) << "part of a pattern is not filled";
  record.pattern.clear();
  EXPECT_EQ(overwritten(record, former), former);
}

}  // namespace
