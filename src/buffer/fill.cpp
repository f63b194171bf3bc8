#include "buffer/fill.h"

#include <string>

#include "buffer/pattern.h"
#include "disk/drive.h"
#include "form/form1.h"
#include "form/output.h"

void fill_buffer() {
  const Pattern pattern = parse_pattern(form1.TxtPattern.text());
  if (pattern.replaced) tell_user(std::string(kPatternError));
  disk.Sec_Buf.resize(kFillSectors * kSectorSize);
  fill_pattern(disk.Sec_Buf.bytes(), pattern.span());
  const std::string text = pattern_text(pattern);
  form1.TxtPattern.set_text(text);
  form1.TxtStatus.set_text("Buffer filled with " + text + " OK.");
  disk.Buf_LBA = 0;
  // The length in bytes, not in sectors: kept; the view shows 20 sectors at most in any case.
  disk.Buf_Secs = disk.Sec_Buf.size();
}
