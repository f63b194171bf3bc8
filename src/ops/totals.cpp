#include "ops/totals.h"

#include <string>

#include "disk/counters.h"
#include "disk/progress.h"
#include "form/form1.h"
#include "form/output.h"
#include "platform/clock.h"
#include "platform/window.h"

void Clear_Counters() {
  counters = {};
  clear_progress();
}

void start_timing() {
  platform::show_now();
  counters.OpStartTime = platform::seconds_since_midnight();
}

void end_timing() {
  counters.OpEndTime = platform::seconds_since_midnight();
  platform::pump_events();
}

void Do_errors() {
  const std::string total = std::to_string(counters.TotalErrors);
  const std::string reads = std::to_string(counters.TotalRErrors);
  const std::string writes = std::to_string(counters.TotalWErrors);
  const std::string compares = std::to_string(counters.TotalCErrors);
  PrintReport("\r\nTotal Errors = " + total + "\r\nTotal Read errors = " + reads +
              "\r\nTotal Write errors = " + writes + "\r\nTotal Compare errors = " + compares + "\r\n");
  const std::string variables = "\r\nSET QV_D_TOTERR=" + total + "\r\nSET QV_D_READERR=" + reads +
                                "\r\nSET QV_D_WRITEERR=" + writes + "\r\nSET QV_D_CMPERR=" + compares + "\r\n";
  AppendReportVars(variables);
  form1.Text1.append(variables);
  add_to_exit_code(counters.TotalErrors);
}
