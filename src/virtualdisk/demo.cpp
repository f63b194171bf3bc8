#include <algorithm>
#include <array>
#include <cstdint>
#include <string>

#include "platform/bytes.h"
#include "platform/units.h"
#include "virtualdisk/content.h"
#include "virtualdisk/page.h"

namespace virtualdisk {
namespace {

constexpr std::string_view kText = R"(# The practice disk: 1 GiB in memory at a hard disk's pace, with two faults.
# DEMO attaches the same disk, with a partition table and some text to find.

sectors 2097152
model Practice disk
serial PRACTICE-0001
firmware 1.0

# From 180 MB/s at the first sector to 78 MB/s at the last.
rate 180 78

# A place that the drive reads only after many attempts, where two transfers of
# 20480 sectors meet: each of the two is reported as slow.
slow 1249248 64 1200

# A place that cannot be read until it is written.
fail read 624000 8
heal

# Counters of an ordinary drive.
#     id flags  current worst threshold raw
smart 1   0x000F 100 100 51 0
smart 3   0x0003  97  96 21 4316
smart 4   0x0032 100 100  0 812
smart 5   0x0033 100 100 10 0
smart 7   0x000E 100 253  0 0
smart 9   0x0032  89  89  0 8123
smart 10  0x0013 100 100 51 0
smart 12  0x0032 100 100  0 640
smart 194 0x0022 113 103  0 34
smart 196 0x0032 200 200  0 0
smart 197 0x0012 200 200  0 0
smart 198 0x0010 200 200  0 0
smart 199 0x003E 200 200  0 0

# What the faults do to them.
grow 1 1 on slow
grow 1 8 on read-error
grow 197 8 on read-error
grow 198 8 on read-error
)";

struct Partition {
  std::uint8_t status;
  std::uint8_t type;
  std::uint32_t first;
  std::uint32_t sectors;
};

constexpr std::array<Partition, 3> kPartitions = {{
    {0x80, 0x07, 2048, 819200},
    {0x00, 0x0C, 821248, 614400},
    {0x00, 0x83, 1435648, 661504},
}};

/// Text that fills the sectors from `first` on, each line with the sector's number.
struct Story {
  std::int64_t first;
  std::int64_t sectors;
  std::string_view line;
};

constexpr std::array<Story, 3> kStories = {{
    {2048, 64, "Sectorix practice disk"},
    {500000, 16, "The needle lies in the haystack"},
    {1500000, 16, "Lorem ipsum at the end of the practice disk"},
}};

/// A partition entry's three bytes of cylinder, head and sector, for 255 heads and 63 sectors.
void put_place(Page& page, std::size_t at, std::uint32_t sector) {
  constexpr std::uint32_t kHeads = 255;
  constexpr std::uint32_t kTrackSectors = 63;
  const std::uint32_t cylinder = sector / (kHeads * kTrackSectors);
  page[at] = static_cast<std::uint8_t>(sector / kTrackSectors % kHeads);
  page[at + 1] = static_cast<std::uint8_t>((sector % kTrackSectors + 1) | (cylinder >> 2 & 0xC0));
  page[at + 2] = static_cast<std::uint8_t>(cylinder & 0xFF);
}

Page partition_sector() {
  constexpr std::size_t kTable = 446;
  constexpr std::size_t kEntryBytes = 16;
  Page page{};
  constexpr std::string_view kNote = "Practice disk: nothing starts from here.";
  std::copy(kNote.begin(), kNote.end(), page.begin() + 3);
  page[0] = 0xEB;  // a jump to itself
  page[1] = 0xFE;
  std::size_t at = kTable;
  for (const Partition& partition : kPartitions) {
    page[at] = partition.status;
    put_place(page, at + 1, partition.first);
    page[at + 4] = partition.type;
    put_place(page, at + 5, partition.first + partition.sectors - 1);
    bytes::put_le(page, at + 8, 4, partition.first);
    bytes::put_le(page, at + 12, 4, partition.sectors);
    at += kEntryBytes;
  }
  page[510] = 0x55;
  page[511] = 0xAA;
  return page;
}

std::string story_sector(const Story& story, std::int64_t sector) {
  std::string text;
  while (text.size() < SectorSize) {
    text += std::string(story.line) + ", sector " + std::to_string(sector) + ".\r\n";
  }
  text.resize(SectorSize);
  return text;
}

void put(Content& content, std::int64_t sector, const void* bytes) {
  std::uint32_t moved = 0;
  content.write(static_cast<std::uint64_t>(sector * SectorSize), bytes, SectorSize, &moved);
}

}  // namespace

std::string_view demo_text() {
  return kText;
}

void fill_demo(Content& content) {
  put(content, 0, partition_sector().data());
  for (const Story& story : kStories) {
    for (std::int64_t sector = story.first; sector < story.first + story.sectors; ++sector) {
      put(content, sector, story_sector(story, sector).data());
    }
  }
}

}  // namespace virtualdisk
