#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "places/crc32.h"
#include "platform/bytes.h"

/// Contents of disks, made sector by sector: partition tables and boot sectors for tests. Places are logical sectors.
struct DiskImage {
  explicit DiskImage(std::int64_t sectors, std::int64_t logical_bytes = 512)
      : logical(logical_bytes), bytes(static_cast<std::size_t>(sectors * logical_bytes)) {}

  std::int64_t logical;
  std::vector<std::uint8_t> bytes;

  std::span<std::uint8_t> at(std::int64_t lba) {
    return std::span(bytes).subspan(static_cast<std::size_t>(lba * logical));
  }

  std::int64_t sectors() const { return static_cast<std::int64_t>(bytes.size()) / logical; }

  std::string text() const { return {bytes.begin(), bytes.end()}; }

  /// Entry `number`, from 1, of the table in sector `lba`, which gets its signature.
  void mbr_entry(std::int64_t lba, std::size_t number, std::uint8_t type, std::uint32_t first, std::uint32_t count) {
    const std::span<std::uint8_t> sector = at(lba);
    const std::size_t entry = 430 + 16 * number;
    sector[entry + 4] = type;
    bytes::put_le(sector, entry + 8, 4, first);
    bytes::put_le(sector, entry + 12, 4, count);
    sector[510] = 0x55;
    sector[511] = 0xAA;
  }

  struct GptPartition {
    std::string type;  // 16 bytes as they stand in an entry
    std::int64_t first = 0;
    std::int64_t last = 0;
    std::string name;
  };

  /// A protective entry, both headers and 128 entries before each.
  void gpt(const std::vector<GptPartition>& partitions) {
    const std::int64_t table = 128 * 128 / logical;
    mbr_entry(0, 1, 0xEE, 1, static_cast<std::uint32_t>(sectors() - 1));
    gpt_entries(2, partitions);
    gpt_entries(sectors() - 1 - table, partitions);
    gpt_header(1, sectors() - 1, 2);
    gpt_header(sectors() - 1, 1, sectors() - 1 - table);
  }

  void gpt_entries(std::int64_t lba, const std::vector<GptPartition>& partitions) {
    std::size_t entry = 0;
    for (const GptPartition& partition : partitions) {
      const std::span<std::uint8_t> slot = at(lba).subspan(entry, 128);
      std::copy(partition.type.begin(), partition.type.end(), slot.begin());
      bytes::put_le(slot, 32, 8, static_cast<std::uint64_t>(partition.first));
      bytes::put_le(slot, 40, 8, static_cast<std::uint64_t>(partition.last));
      for (std::size_t i = 0; i < partition.name.size(); ++i)
        slot[56 + 2 * i] = static_cast<std::uint8_t>(partition.name[i]);
      entry += 128;
    }
  }

  void gpt_header(std::int64_t lba, std::int64_t other, std::int64_t entries) {
    const std::span<std::uint8_t> header = at(lba);
    constexpr std::string_view kSignature = "EFI PART";
    std::copy(kSignature.begin(), kSignature.end(), header.begin());
    const std::int64_t table = 128 * 128 / logical;
    const std::int64_t fields[] = {lba, other, 2 + table, sectors() - 2 - table};
    bytes::put_le(header, 8, 4, 0x10000);
    bytes::put_le(header, 12, 4, 92);
    for (std::size_t i = 0; i < 4; ++i) bytes::put_le(header, 24 + 8 * i, 8, static_cast<std::uint64_t>(fields[i]));
    header[56] = 0xD1;
    bytes::put_le(header, 72, 8, static_cast<std::uint64_t>(entries));
    bytes::put_le(header, 80, 4, 128);
    bytes::put_le(header, 84, 4, 128);
    bytes::put_le(header, 88, 4, crc32::sum(at(entries).first(128 * 128)));
    sum_header(lba);
  }

  void sum_header(std::int64_t lba) {
    const std::span<std::uint8_t> header = at(lba);
    bytes::put_le(header, 16, 4, 0);
    bytes::put_le(header, 16, 4, crc32::sum(header.first(92)));
  }

  /// The first sector of an NTFS volume of `count` sectors of 512 bytes, 8 to a cluster.
  void ntfs(std::int64_t lba, std::uint64_t count) {
    const std::span<std::uint8_t> sector = at(lba);
    constexpr std::string_view kName = "NTFS    ";
    std::copy(kName.begin(), kName.end(), sector.begin() + 3);
    bytes::put_le(sector, 11, 2, 512);
    sector[13] = 8;
    bytes::put_le(sector, 40, 8, count);
    sector[510] = 0x55;
    sector[511] = 0xAA;
  }

  /// Of a FAT16 volume: 4 sectors reserved, two tables of 32, a root directory of 512 entries, 2 sectors to a cluster.
  void fat16(std::int64_t lba, std::uint16_t count) {
    const std::span<std::uint8_t> sector = at(lba);
    constexpr std::string_view kName = "MSDOS5.0";
    std::copy(kName.begin(), kName.end(), sector.begin() + 3);
    sector[0] = 0xEB;
    bytes::put_le(sector, 11, 2, 512);
    sector[13] = 2;
    sector[14] = 4;
    sector[16] = 2;
    bytes::put_le(sector, 17, 2, 512);
    bytes::put_le(sector, 19, 2, count);
    sector[22] = 32;
    sector[510] = 0x55;
    sector[511] = 0xAA;
  }
};

/// Types as they stand in an entry.
inline const std::string kBasicData = "\xA2\xA0\xD0\xEB\xE5\xB9\x33\x44\x87\xC0\x68\xB6\xB7\x26\x99\xC7";
inline const std::string kLinuxData = "\xAF\x3D\xC6\x0F\x83\x84\x72\x47\x8E\x79\x3D\x69\xD8\x47\x7D\xE4";
