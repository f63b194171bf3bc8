#include "app/handlers.h"

#include <array>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "app/command_line.h"
#include "app/commands.h"
#include "app/controls.h"
#include "app/program.h"
#include "device/kernel32.h"
#include "disk/drive.h"
#include "disk/progress.h"
#include "form/asked.h"
#include "form/form1.h"
#include "form/outcome.h"
#include "form/output.h"
#include "ops/selection.h"
#include "ops/visit.h"
#include "platform/window.h"
#include "results/health_report.h"
#include "results/results.h"

namespace {

constexpr std::uint32_t kLeaveAfter = 1000;  // milliseconds
constexpr std::int16_t kLeft = 1;

void press_option(int drive) {
  option_click(drive);
  run_pending_command();
}

}  // namespace

void TxtStartLBA_Click() {
  form1.RangeEdited = true;
}

void TxtNoSecs_Click() {
  form1.RangeEdited = true;
}

void range_typed() {
  form1.RangeEdited = true;
}

void option_click(int drive) {
  form1.MyCancel = true;
  form1.RangeEdited = false;
  form1.pending_command.clear();
  show_option(drive);
  if (form1.selecting_drive) return;
  form1.selecting_drive = true;
  platform::pump_events();
  form1.selecting_drive = false;
  if (!form1.command_running) {
    SelectDrive();
  } else if (in_batch()) {
    command_end.cancelled = true;
    output.ExitCode = kCancelled;  // a run is of one drive: it ends here
  } else {
    form1.pending_drive = drive;
  }
}

void Option1_Click() {
  press_option(0);
}

void Option2_Click() {
  press_option(1);
}

void Option3_Click() {
  press_option(2);
}

void Option4_Click() {
  press_option(3);
}

void Option5_Click() {
  press_option(4);
}

void Option6_Click() {
  press_option(5);
}

void Option7_Click() {
  press_option(6);
}

void Option8_Click() {
  press_option(7);
}

void CmdRead_Click() {
  run_command("READ");
}

void CmdWrite_Click() {
  run_command("WRITE");
}

void cmdWriteBuffer_Click() {
  run_command("WRITE BUFFER");
}

void CmdDisplay_Click() {
  run_command("SHOW BUFFER");
}

void CmdFillBuffer_Click() {
  run_command("FILL BUFFER");
}

void CmdFind_Click() {
  run_command("SEARCH");
}

void CmdRnd_Click() {
  run_command("RANDOMWRITE");
}

void CmdRndRD_Click() {
  run_command("RANDOMREAD");
}

void Cmd_Destructive_Random_Write() {
  run_command("DESTRUCTIVE TEST");
}

void Cmd_OffTrack_Write() {
  run_command("OFF-TRACK TEST");
}

void CmdSlowRate_Click() {
  ask_slow_rate();
}

void CmdHelp_Click() {
  MyUsage();
}

void show_command_line_help() {
  tell_user(switch_names() + "\r\n" + exit_code_help() + "\r\n" + example_help());
}

void more_click() {
  struct Entry {
    const char* caption;
    const char* hint;
    std::string (*why_not)();  // null for an entry that can always be chosen
    void (*run)();
  };
  constexpr std::array kEntries = {
      Entry{"Find exact bad &sectors", "Read what failed or stalled again in pieces", why_no_exact_search,
            find_exact_sectors},
      Entry{"&History folder...", "Keep a line for every run, and compare with the last one", nullptr,
            ask_history_folder},
      Entry{"Save result &page...", "Save verdict, graph, map, bad places and report as one page", why_no_page,
            save_page},
      Entry{"Command line &help\tF1", "Show switches, exit codes and examples", nullptr, show_command_line_help}};
  std::vector<platform::MenuItem> items;
  for (const Entry& entry : kEntries) {
    const std::string why = entry.why_not == nullptr ? std::string() : entry.why_not();
    items.push_back({entry.caption, why.empty() ? entry.hint : why, why.empty()});
  }
  const std::optional<std::size_t> chosen =
      platform::pick_from_menu(items, static_cast<std::size_t>(ControlId::more_button));
  if (chosen) kEntries.at(*chosen).run();
}

void cmdCancel_Click() {
  form1.MyCancel = true;
  form1.pending_command.clear();
  command_end.cancelled = true;
  set_command_line_mode(false);
  form1.Text1.caret_to_end();
  output.ExitCode = kCancelled;
}

void CmdExit_Click() {
  output.ExitCode = kLeft;
  end_journal();
  report_visits();
  leave_results();
  kernel32::Sleep(kLeaveAfter);
  ExitProgram();
}

void window_closed() {
  output.ExitCode = kLeft;
  close_drive();
  end_journal();
  report_visits();
  close_report();
  leave_results();
  kernel32::Sleep(kLeaveAfter);
  ExitProgram();
}

void console_cancel() {
  form1.MyCancel = true;
  command_end.cancelled = true;
  output.ExitCode = kCancelled;
}
