#include "tests/support/state.h"

#include "buffer/edit.h"
#include "device/kernel32.h"
#include "device/wmi.h"
#include "disk/counters.h"
#include "disk/drive.h"
#include "disk/early_end.h"
#include "disk/progress.h"
#include "disk/transfer.h"
#include "disk/volume.h"
#include "eventlog/event_log.h"
#include "form/asked.h"
#include "form/form1.h"
#include "form/outcome.h"
#include "form/output.h"
#include "form/progress_line.h"
#include "journal/journal.h"
#include "measure/findings.h"
#include "measure/measure.h"
#include "measure/run_map.h"
#include "ops/drive_health.h"
#include "ops/frame.h"
#include "ops/operations.h"
#include "ops/random_choices.h"
#include "ops/restore.h"
#include "ops/visit.h"
#include "ops/write_guard.h"
#include "pictures/panel.h"
#include "pictures/progress_bar.h"
#include "platform/headless/headless.h"
#include "results/csv_rows.h"
#include "results/results.h"
#include "smart/compare.h"
#include "smart/identification.h"
#include "smart/snapshot.h"
#include "virtualdisk/state.h"

void reset_program() {
  asked = {};
  command_end = {};
  comparison = {};
  counters = {};
  csv_rows = {};
  between_transfers = {};
  disk = {};
  drive_health = {};
  early_end = {};
  editor = {};
  event_log = {};
  form1 = {};
  run_findings = {};
  run_map = {};
  frame = {};
  identification = {};
  journal = {};
  kernel32::state = {};
  measure = {};
  output = {};
  panel = {};
  progress = {};
  progress_bar = {};
  progress_line = {};
  random_numbers = {};
  random_test = {};
  restore_run = {};
  results = {};
  search_run = {};
  smart = {};
  verify_run = {};
  visits = {};
  volumes = {};
  wmi::state = {};
  write_guard = {};
}

void reset_all() {
  reset_program();
  virtualdisk::state = {};
  headless::desktop = {};
}
