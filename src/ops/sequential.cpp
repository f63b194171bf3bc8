#include "ops/sequential.h"

#include <algorithm>
#include <string>

#include "buffer/edit.h"
#include "buffer/fill.h"
#include "disk/counters.h"
#include "disk/drive.h"
#include "disk/progress.h"
#include "disk/transfer.h"
#include "form/form1.h"
#include "form/number_text.h"
#include "form/output.h"
#include "measure/measure.h"
#include "ops/frame.h"
#include "ops/range.h"
#include "ops/totals.h"
#include "platform/clock.h"
#include "platform/window.h"

namespace {

void announce(const std::string& doing) {
  const std::string line = doing + " " + std::to_string(counters.No_Secs) + " sectors starting at LBA " +
                           form1.TxtStartLBA.text() + " on drive " + std::to_string(form1.SelectedDrive) + "\r\n";
  form1.Text1.set_text(line);
  PrintReport(line);
}

/// Transfers the whole range: first the whole chunks, then what is left of it.
void transfer_range(bool (*transfer)(std::int64_t*, std::int64_t, std::int64_t, Events), std::int64_t lba,
                    std::int64_t chunk) {
  start_timing();
  transfer(&lba, counters.No_Secs, chunk, Events::run);
  const std::int64_t left = counters.No_Secs - counters.Sectors_Done;
  if (left > 0) transfer(&lba, left, left, Events::run);
  end_timing();
}

void report_end(const std::string& before) {
  if (form1.Exit_Requested) return;
  const std::string line = before + "Time taken= " + single_text(elapsed_seconds()) + " seconds for " +
                           std::to_string(counters.No_Secs) + " sectors.\r\n";
  report_and_show(line);
  Do_errors();
  form1.Text1.append("\r\nFinished!\r\n");
}

}  // namespace

void Seq_Read() {
  Clear_Counters();
  const std::int64_t start = take_range();
  begin_measuring({.kind = RunKind::read, .first_lba = start, .sectors = counters.No_Secs});
  announce("Reading");
  const std::int64_t chunk = read_chunk(counters.No_Secs);
  remake_buffer(chunk * kSectorSize, start);
  transfer_range(Read_sectors, start, chunk);
  report_end("\r\n");
}

void Seq_Write() {
  Clear_Counters();
  const std::int64_t start = take_range();
  begin_measuring({.kind = RunKind::write, .first_lba = start, .sectors = counters.No_Secs});
  announce("Writing");
  // One step, unlike the read's two; kept, so that rates compare with earlier runs.
  constexpr std::int64_t kChunk = 16065;
  transfer_range(Write_sectors, start, std::min(counters.No_Secs, kChunk));
  report_end("");
}

void write_command() {
  fill_buffer();
  ShowMessage("Started HDD - WRITETOEND");
  if (confirm_write("WIPE DRIVE?")) run_writing(Seq_Write);
}

void write_buffer_command() {
  if (take_edits()) Write_Buffer_To_End();
}

void Write_Buffer_To_End() {
  ShowMessage("Started HDD - WRITEBUFFTOEND");
  if (confirm_write(write_buffer_title())) run_writing(Seq_Write);
}

void read_command() {
  ShowMessage("Started HDD - READTOEND");
  form1.Text1.set_text({});
  Start_Operation();
  Seq_Read();
  if (!form1.Exit_Requested) End_Operation();
}
