#include "buffer/display.h"

#include <algorithm>
#include <string>
#include <string_view>

#include "buffer/hex_view.h"
#include "buffer/partition_table.h"
#include "buffer/pattern.h"
#include "disk/drive.h"
#include "form/form1.h"
#include "form/output.h"
#include "places/table_text.h"

namespace {

/// Sec_Buf as far as it was read from a drive's LBA 0 on, whichever drive is selected now; else empty.
std::span<const std::uint8_t> start_of_disk() {
  const Source& source = disk.source;
  if (source.kind != Source::Kind::sectors || source.lba != 0) return {};
  const std::int64_t bytes = std::min(disk.Sec_Buf.size(), source.sectors * SectorSize);
  return disk.Sec_Buf.bytes().first(static_cast<std::size_t>(bytes));
}

std::string further_in_buffer() {
  return further_partitions_in(start_of_disk(), disk.source.sizes.logical);
}

std::string further_on_drive() {
  return further_partitions_text(disk.source.drive, start_of_disk(), disk.source.sizes.logical);
}

void show(std::span<const std::uint8_t> buffer, std::string_view title, std::string (*further)()) {
  form1.Text1.append(hex_view(buffer, disk.Buf_LBA, disk.Buf_Secs, title));
  form1.Text1.caret_to_end();
  form1.report_in_front = true;
  if (disk.Buf_LBA != 0) return;
  ShowMBRParams();
  form1.Text1.append(further());
}

}  // namespace

void Display_Sec_Buf() {
  show(disk.Sec_Buf.bytes(), kViewTitle, further_in_buffer);
}

void show_sectors_and_tables() {
  show(disk.Sec_Buf.bytes(), kViewTitle, further_on_drive);
}

void Display_Buf(std::span<const std::uint8_t> buffer) {
  show(buffer, kEditTitle, further_in_buffer);
  form1.Text1.caret_to_end();
}

void ShowMBRParams() {
  form1.Text1.append(partition_table_text(disk.Sec_Buf.bytes(), disk.source.sizes.logical / SectorSize));
}

void show_buffer_for_editing() {
  if (!disk.Sec_Buf.allocated()) return;
  form1.Text1.set_text({});
  Display_Buf(disk.Sec_Buf.bytes());
}

bool fill_buffer() {
  const Pattern pattern = parse_pattern(form1.TxtPattern.text());
  if (pattern.replaced) tell_user(std::string(kPatternError));
  disk.Sec_Buf.resize(kChunkSectors * SectorSize);
  fill_pattern(disk.Sec_Buf.bytes(), pattern.span());
  const std::string text = pattern_text(pattern);
  form1.TxtPattern.set_text(text);
  form1.TxtStatus.set_text("Buffer filled with " + text + " OK.");
  disk.Buf_LBA = 0;
  // The length in bytes, not in sectors: docs/oddities.md, 5.
  disk.Buf_Secs = disk.Sec_Buf.size();
  disk.source = {.kind = Source::Kind::pattern};
  return !pattern.replaced;
}
