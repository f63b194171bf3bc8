// What is read from a journal is within what was read, and a record that holds has as many contents as it says. Sums
// are put right first, since no mutation hits one.

#include <algorithm>
#include <cstdlib>
#include <vector>

#include "journal/crc32c.h"
#include "journal/journal.h"
#include "platform/bytes.h"
#include "platform/units.h"

namespace {

void expect(bool holds) {
  if (!holds) std::abort();
}

void check(const LeftJournal& left) {
  if (left.state == LeftJournal::State::damaged) return;
  const Record& record = left.record;
  const bool pending = left.state == LeftJournal::State::readable && record.state == RecordState::pending;
  expect(static_cast<std::int64_t>(left.former.size()) == (pending ? record.sectors * SectorSize : 0));
  expect(record.lba >= 0 && record.sectors <= record.disk.sectors - record.lba);
  expect(overwritten(record, left.former).size() == left.former.size());
  const std::optional<Record> again = decode(encode(record, 0));
  expect(again && again->lba == record.lba && again->disk.serial == record.disk.serial &&
         again->pattern == record.pattern);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::vector<std::uint8_t> bytes(data, data + size);
  check(take_journal(bytes));
  if (size < kHeaderBytes) return 0;
  constexpr std::size_t kSums = kHeaderBytes - 8;
  const std::span<std::uint8_t> all = bytes;
  bytes::put_le(all, kSums, 4, crc32c::sum(all.first(kSums)));
  const LeftJournal left = take_journal(all);
  check(left);
  if (left.state != LeftJournal::State::contents_damaged) return 0;
  const std::size_t contents = static_cast<std::size_t>(left.record.sectors * SectorSize);
  if (size - kHeaderBytes < contents) return 0;
  bytes::put_le(all, kSums + 4, 4, crc32c::sum(all.first(kSums), crc32c::sum(all.subspan(kHeaderBytes, contents))));
  const LeftJournal whole = take_journal(all);
  expect(whole.state == LeftJournal::State::readable);
  check(whole);
  return 0;
}
