#include "buffer/display.h"

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

void show(std::span<const std::uint8_t> buffer, std::string_view title) {
  form1.Text1.append(hex_view(buffer, disk.Buf_LBA, disk.Buf_Secs, title));
  form1.Text1.caret_to_end();
  form1.report_in_front = true;
  if (disk.Buf_LBA == 0) ShowMBRParams();
}

/// True where Sec_Buf holds what the selected drive's first sector held when it was read.
bool shows_first_sector() {
  const Source& source = disk.source;
  return source.kind == Source::Kind::sectors && source.drive == form1.SelectedDrive && source.lba == 0 &&
         source.sectors > 0 && disk.Buf_LBA == 0;
}

}  // namespace

void Display_Sec_Buf() {
  show(disk.Sec_Buf.bytes(), kViewTitle);
}

void Display_Buf(std::span<const std::uint8_t> buffer) {
  show(buffer, kEditTitle);
  form1.Text1.caret_to_end();
}

void ShowMBRParams() {
  const std::span<const std::uint8_t> sector = disk.Sec_Buf.bytes();
  form1.Text1.append(partition_table_text(sector, sectors_per_logical()));
  if (!shows_first_sector()) return;
  form1.Text1.append(further_partitions_text(disk.source.drive, sector, disk.sizes.logical));
}

void show_buffer_for_editing() {
  if (!disk.Sec_Buf.allocated()) return;
  form1.Text1.set_text({});
  Display_Buf(disk.Sec_Buf.bytes());
}

bool fill_buffer() {
  const Pattern pattern = parse_pattern(form1.TxtPattern.text());
  if (pattern.replaced) tell_user(std::string(kPatternError));
  disk.Sec_Buf.resize(kChunkSectors * kSectorSize);
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
