#include "buffer/display.h"

#include <string_view>

#include "buffer/hex_view.h"
#include "buffer/partition_table.h"
#include "disk/drive.h"
#include "form/form1.h"

namespace {

void show(std::span<const std::uint8_t> buffer, std::string_view title) {
  form1.Text1.append(hex_view(buffer, disk.Buf_LBA, disk.Buf_Secs, title));
  form1.Text1.caret_to_end();
  if (disk.Buf_LBA == 0) ShowMBRParams();
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
  form1.Text1.append(partition_table_text(disk.Sec_Buf.bytes()));
}

void show_buffer_for_editing() {
  if (!disk.Sec_Buf.allocated()) return;
  form1.Text1.set_text({});
  Display_Buf(disk.Sec_Buf.bytes());
}
