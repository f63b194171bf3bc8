#include "places/table_text.h"

#include <algorithm>

#include "disk/error_text.h"
#include "form/number_text.h"
#include "places/shown_text.h"

namespace {

constexpr const char* kLine = "\r\n";
constexpr const char* kBlock = "\r\n\r\n";
constexpr double kSectorsPerGB = 2048.0 * 1024.0;

std::string sectors_text(std::int64_t sectors) {
  return std::to_string(sectors) + (sectors < 0 ? "" : " (" + hex_digits(static_cast<std::uint64_t>(sectors)) + ")");
}

std::string partition_text(const std::string& title, const DiskPartition& partition) {
  std::string text = kBlock + title + " " + std::to_string(partition.number) +
                     " (SIZE=" + fixed_text(static_cast<double>(partition.sectors) / kSectorsPerGB, 3) +
                     "GB)  Type: " + partition.type;
  if (!partition.name.empty()) text += "  Name: " + partition.name;
  return text + kLine + "FIRST (LBA) = " + sectors_text(partition.first_lba) +
         "   LAST (LBA) = " + sectors_text(partition.end_lba() - 1) +
         "   SIZE (LBA) = " + sectors_text(partition.sectors);
}

std::string damage_text(const std::vector<std::string>& damages) {
  std::string text;
  for (const std::string& damage : damages) text += (text.empty() ? kBlock : kLine) + ("DAMAGED: " + damage);
  return text;
}

std::string missing_text(const std::vector<std::string>& missing) {
  return missing.empty() ? std::string() : kBlock + joined(missing, kLine);
}

std::string header_text(const GptTable& table) {
  const GptHeader& header = *table.header;
  const unsigned major = header.revision >> 16U;
  const unsigned minor = header.revision & 0xFFFFU;
  std::string text = std::string(kBlock) + "GUID PARTITION TABLE (header at LBA " + std::to_string(table.header_lba) +
                     ", revision " + std::to_string(major) + "." + std::to_string(minor) +
                     ")  Disk: " + guid_text(header.disk);
  text += kLine + ("ENTRIES = " + std::to_string(header.entries)) + " of " + std::to_string(header.entry_bytes) +
          " bytes at LBA " + std::to_string(header.entries_lba) +
          "   USABLE (LBA) = " + std::to_string(header.first_usable) + " to " + std::to_string(header.last_usable);
  if (table.backup_lba >= 0) {
    text += kLine + ("The backup at LBA " + std::to_string(table.backup_lba)) + " says the same.";
  }
  return text;
}

}  // namespace

bool has_further_partitions(std::span<const std::uint8_t> sector) {
  const std::array<MbrEntry, 4> entries = decode_mbr(sector);
  return std::any_of(entries.begin(), entries.end(),
                     [](const MbrEntry& entry) { return entry.type == kProtectiveType || is_extended(entry.type); });
}

std::string gpt_text(const GptTable& table) {
  std::string text = table.header ? header_text(table) : std::string();
  text += damage_text(table.damages);
  for (const DiskPartition& partition : table.partitions) text += partition_text("GPT entry", partition);
  return text + missing_text(table.missing);
}

std::string logical_text(const LogicalTable& table) {
  std::string text;
  for (const DiskPartition& partition : table.partitions) text += partition_text("Logical partition", partition);
  return text + damage_text(table.damages) + missing_text(table.missing);
}

namespace {

std::string further_text(const DiskReader& disk, std::span<const std::uint8_t> sector) {
  const std::array<MbrEntry, 4> entries = decode_mbr(sector);
  const bool protective =
      std::any_of(entries.begin(), entries.end(), [](const MbrEntry& entry) { return entry.type == kProtectiveType; });
  return (protective ? gpt_text(read_gpt(disk)) : std::string()) + logical_text(read_logical(disk, entries));
}

}  // namespace

std::string further_partitions_text(int drive, std::span<const std::uint8_t> sector, std::int64_t logical) {
  if (!has_further_partitions(sector)) return {};
  const ReadOnlyDrive opened(drive);
  if (opened.code() != 0) {
    return std::string(kBlock) + "The further partitions cannot be read: " + coded_error_text(opened.code());
  }
  return further_text(opened.reader(logical), sector);
}

std::string further_partitions_in(std::span<const std::uint8_t> bytes, std::int64_t logical) {
  return further_text(reader_of_buffer(bytes, logical), bytes);
}
