#include "places/gpt.h"

#include <algorithm>
#include <string_view>

#include "disk/error_text.h"
#include "places/crc32.h"
#include "places/gpt_checks.h"
#include "places/shown_text.h"
#include "platform/bytes.h"

namespace {

constexpr std::string_view kSignature = "EFI PART";
constexpr std::size_t kHeaderBytes = 92;
constexpr std::size_t kChecksumAt = 16;
constexpr std::uint32_t kSmallestEntry = 128;
constexpr std::uint32_t kLargestEntry = 4096;
constexpr std::int64_t kLargestTable = 262'144;  // 2048 entries of the usual 128 bytes

std::string place(const DiskReader& disk, std::int64_t lba) {
  return "LBA " + std::to_string(lba * disk.per_logical());
}

/// One of the two headers, with its entries.
struct Side {
  std::int64_t lba = 0;
  std::optional<GptHeader> header;
  std::vector<std::uint8_t> table;  // as far as the disk's reader holds it
  std::string missing{};            // sentence: what of the table it does not hold
  bool header_sound = false;
  bool sound = false;  // the entries too
};

/// What to do about a table that ends with logical sector `last`. A longer range is read in several transfers, and the
/// buffer holds the last one.
std::string advice(const DiskReader& disk, std::int64_t last) {
  const std::int64_t end = (last + 1) * disk.per_logical();
  return end > kLargeChunkSectors ? std::string()
                                  : " Read LBA 0 to " + std::to_string(end - 1) + " to show the whole table here.";
}

std::string missing_header_text(const DiskReader& disk) {
  constexpr std::int64_t kUsualTable = 16'384;  // 128 entries
  const std::int64_t table = (kUsualTable + disk.logical - 1) / disk.logical;
  return "The GUID partition table is not in the buffer." + advice(disk, 1 + table);
}

std::string missing_entries_text(const DiskReader& disk, std::int64_t first, std::int64_t last) {
  return "The GPT entries, " + place(disk, first) + " to " + std::to_string((last + 1) * disk.per_logical() - 1) +
         ", are not all in the buffer." + advice(disk, last);
}

/// Reads the entries that `side` leads to. Returns what is wrong with them; empty if nothing is.
std::string read_entries(const DiskReader& disk, Side* side) {
  const GptHeader& header = *side->header;
  const bool plausible = header.entry_bytes >= kSmallestEntry && header.entry_bytes <= kLargestEntry &&
                         header.entry_bytes % 8 == 0 && header.table_bytes() <= kLargestTable;
  if (!plausible) {
    return "are not read: " + std::to_string(header.entries) + " of " + std::to_string(header.entry_bytes) +
           " bytes cannot be";
  }
  const std::int64_t sectors = (header.table_bytes() + disk.logical - 1) / disk.logical;
  if (sectors == 0) return {};
  if (!disk.has(header.entries_lba) || !disk.has(header.entries_lba + sectors - 1)) {
    return "at " + place(disk, header.entries_lba) + " lie beyond the end of the disk";
  }
  const std::int64_t held = std::clamp<std::int64_t>(disk.held - header.entries_lba, 0, sectors);
  if (held < sectors) {
    side->missing = missing_entries_text(disk, header.entries_lba, header.entries_lba + sectors - 1);
    if (held == 0) return {};
  }
  std::vector<std::uint8_t> table(static_cast<std::size_t>(held * disk.logical));
  const std::uint32_t code = disk.read(header.entries_lba, table);
  const std::string where = "at " + place(disk, header.entries_lba);
  if (code != 0) return where + " cannot be read: " + coded_error_text(code);
  table.resize(std::min(table.size(), static_cast<std::size_t>(header.table_bytes())));
  const std::uint32_t found = crc32::sum(table);
  side->table = std::move(table);
  if (held < sectors || found == header.entries_checksum) return {};
  return where + " have a bad checksum: " + hex_digits(found, 8) + " instead of " +
         hex_digits(header.entries_checksum, 8);
}

Side read_side(const DiskReader& disk, std::int64_t lba, const std::string& name, std::vector<std::string>* damages) {
  Side side{.lba = lba, .header = {}, .table = {}};
  std::vector<std::uint8_t> sector(static_cast<std::size_t>(disk.logical));
  const std::string subject = "The " + name + " at " + place(disk, lba);
  const std::uint32_t code = disk.read(lba, sector);
  if (code != 0) {
    damages->push_back(subject + " cannot be read: " + coded_error_text(code));
    return side;
  }
  side.header = decode_gpt_header(sector);
  if (!side.header) {
    damages->push_back(subject + " is missing: no signature stands there.");
    return side;
  }
  const std::string fault = gpt_header_fault(*side.header, sector, lba);
  if (!fault.empty()) damages->push_back(subject + " " + fault + ".");
  const std::string entries_fault = read_entries(disk, &side);
  if (!entries_fault.empty()) damages->push_back("The " + name + "'s entries " + entries_fault + ".");
  side.header_sound = fault.empty();
  side.sound = fault.empty() && entries_fault.empty();
  return side;
}

/// The backup: at the disk's last sector or, where it is not there, where the first header says.
Side read_backup(const DiskReader& disk, const Side& first, std::vector<std::string>* damages) {
  const std::string name = "backup header";
  const std::int64_t told = first.header_sound ? first.header->other_lba : -1;
  const bool told_elsewhere = told > 1 && told != disk.sectors - 1 && disk.has(told);
  if (disk.sectors <= 1) {
    if (told_elsewhere) return read_side(disk, told, name, damages);
    damages->push_back("The backup header is not looked for: the disk's size is not known.");
    return {};
  }
  std::vector<std::string> at_end;
  Side last = read_side(disk, disk.sectors - 1, name, &at_end);
  if (last.header || !told_elsewhere) {
    damages->insert(damages->end(), at_end.begin(), at_end.end());
    return last;
  }
  damages->push_back("The backup header is told to lie at " + place(disk, told) + ", not at the disk's end, " +
                     place(disk, disk.sectors - 1) + ".");
  return read_side(disk, told, name, damages);
}

bool same_table(const GptHeader& a, const GptHeader& b) {
  return a.disk == b.disk && a.first_usable == b.first_usable && a.last_usable == b.last_usable &&
         a.entries == b.entries && a.entry_bytes == b.entry_bytes && a.entries_checksum == b.entries_checksum;
}

/// The header with its places in sectors of 512 bytes.
GptHeader in_small_sectors(GptHeader header, std::int64_t per_logical) {
  for (std::int64_t* lba : {&header.my_lba, &header.other_lba, &header.first_usable, &header.entries_lba}) {
    *lba *= per_logical;
  }
  header.last_usable = (header.last_usable + 1) * per_logical - 1;
  return header;
}

}  // namespace

std::optional<GptHeader> decode_gpt_header(std::span<const std::uint8_t> sector) {
  if (sector.size() < kHeaderBytes || !std::equal(kSignature.begin(), kSignature.end(), sector.begin())) return {};
  GptHeader header{.revision = bytes::le32(sector, 8),
                   .bytes = bytes::le32(sector, 12),
                   .checksum = bytes::le32(sector, kChecksumAt),
                   .my_lba = logical_sectors(bytes::le64(sector, 24)),
                   .other_lba = logical_sectors(bytes::le64(sector, 32)),
                   .first_usable = logical_sectors(bytes::le64(sector, 40)),
                   .last_usable = logical_sectors(bytes::le64(sector, 48)),
                   .entries_lba = logical_sectors(bytes::le64(sector, 72)),
                   .entries = bytes::le32(sector, 80),
                   .entry_bytes = bytes::le32(sector, 84),
                   .entries_checksum = bytes::le32(sector, 88)};
  constexpr std::size_t kDiskAt = 56;
  std::copy_n(sector.begin() + kDiskAt, kGuidBytes, header.disk.begin());
  return header;
}

std::string gpt_header_fault(const GptHeader& header, std::span<const std::uint8_t> sector, std::int64_t lba) {
  if (header.bytes < kHeaderBytes || header.bytes > sector.size()) {
    return "says that it has " + std::to_string(header.bytes) + " bytes, which it cannot";
  }
  std::vector<std::uint8_t> summed(sector.begin(), sector.begin() + header.bytes);
  bytes::put_le(summed, kChecksumAt, 4, 0);
  const std::uint32_t found = crc32::sum(summed);
  if (found != header.checksum) {
    return "has a bad checksum: " + hex_digits(found, 8) + " instead of " + hex_digits(header.checksum, 8);
  }
  return header.my_lba == lba ? std::string() : "says that it stands elsewhere";
}

std::vector<DiskPartition> decode_gpt_entries(std::span<const std::uint8_t> table, std::uint32_t entry_bytes,
                                              std::int64_t per_logical) {
  constexpr std::size_t kNameAt = 56;
  constexpr std::size_t kNameBytes = 72;
  std::vector<DiskPartition> partitions;
  if (entry_bytes < kSmallestEntry) return partitions;
  for (int number = 1; table.size() >= entry_bytes; ++number, table = table.subspan(entry_bytes)) {
    const GuidBytes type = table.first<kGuidBytes>();
    if (std::all_of(type.begin(), type.end(), [](std::uint8_t byte) { return byte == 0; })) continue;
    const std::int64_t first = logical_sectors(bytes::le64(table, 32));
    const std::int64_t last = logical_sectors(bytes::le64(table, 40));
    partitions.push_back({.number = number,
                          .first_lba = first * per_logical,
                          .sectors = (last + 1 - first) * per_logical,
                          .type = gpt_type_name(type),
                          .name = text_of_utf16(table.subspan(kNameAt, kNameBytes))});
  }
  return partitions;
}

GptTable read_gpt(const DiskReader& disk) {
  GptTable table;
  if (disk.held < 2) {
    table.missing = {missing_header_text(disk)};
    return table;
  }
  const Side first = read_side(disk, 1, "GPT header", &table.damages);
  if (!first.missing.empty()) table.missing.push_back(first.missing);
  const bool whole_disk = disk.held == kMostLogical;
  if (!whole_disk && first.header_sound) {
    table.missing.push_back("The backup header at " + place(disk, first.header->other_lba) + " was not checked.");
  }
  const Side backup = whole_disk ? read_backup(disk, first, &table.damages) : Side{};
  const bool alike = first.header && backup.header && same_table(*first.header, *backup.header);
  if (first.sound && backup.sound && !alike) {
    table.damages.push_back("The backup at " + place(disk, backup.lba) + " differs from the first table.");
  }
  if (first.sound && backup.sound && alike) table.backup_lba = backup.lba * disk.per_logical();
  const bool take_backup = !first.sound && (backup.sound || first.table.empty()) && backup.header;
  const Side& shown = take_backup ? backup : first;
  if (!shown.header) return table;
  table.header = in_small_sectors(*shown.header, disk.per_logical());
  table.header_lba = shown.lba * disk.per_logical();
  table.partitions = decode_gpt_entries(shown.table, shown.header->entry_bytes, disk.per_logical());
  check_gpt_partitions(*table.header, disk.sectors * disk.per_logical(), table.partitions, &table.damages);
  return table;
}
