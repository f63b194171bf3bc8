#include "form/output.h"

#include <limits>
#include <utility>

#include "device/kernel32.h"
#include "form/asked.h"
#include "form/form1.h"
#include "form/outcome.h"
#include "form/progress_line.h"
#include "platform/console.h"

namespace {

constexpr std::string_view kTitle = "Sectorix";

/// Gives 0, or the system's code.
std::uint32_t write_all(kernel32::Handle file, std::string_view text) {
  std::uint32_t moved = 0;
  if (!kernel32::WriteFile(file, text.data(), static_cast<std::uint32_t>(text.size()), &moved)) {
    return kernel32::GetLastError();
  }
  return moved == text.size() ? 0 : platform::kDiskFull;
}

/// Standard output, which may be the terminal on which the progress line stands.
std::uint32_t write_standard(std::string_view text) {
  clear_progress_line();
  return platform::write_out(text);
}

void write_report(std::string_view text) {
  const bool standard = output.report_handle == kernel32::kInvalidHandle;
  const std::uint32_t code = standard ? write_standard(text) : write_all(output.report_handle, text);
  if (code == 0 || output.report_failure_told) return;
  output.report_failure_told = true;
  command_end.results_lost = true;
  tell_on_stderr("The report cannot be written: error " + std::to_string(code) + ". The run goes on.");
}

}  // namespace

std::uint32_t append_to_file(const std::string& name, std::string_view lines) {
  const kernel32::Handle file =
      kernel32::CreateFileA(name.c_str(), platform::kGenericWrite, platform::kShareRead, platform::kOpenAlways, 0);
  if (file == kernel32::kInvalidHandle) return kernel32::GetLastError();
  std::int64_t end = 0;
  const bool at_end = kernel32::SetFilePointerEx(file, 0, &end, platform::kFileEnd);
  const std::uint32_t code = at_end ? write_all(file, lines) : kernel32::GetLastError();
  // A line that breaks off would set a variable to something else.
  if (at_end && code != 0 && kernel32::SetFilePointerEx(file, end, nullptr, platform::kFileBegin))
    kernel32::SetEndOfFile(file);
  kernel32::CloseHandle(file);
  return code;
}

std::string open_report(const std::string& file) {
  output.report_handle = kernel32::kInvalidHandle;
  if (file != "-") {
    output.report_handle =
        kernel32::CreateFileA(file.c_str(), platform::kGenericWrite, platform::kShareRead, platform::kCreateAlways, 0);
    if (output.report_handle == kernel32::kInvalidHandle) {
      return "The report file \"" + file + "\" cannot be made: error " + std::to_string(kernel32::GetLastError()) + ".";
    }
  }
  output.ReportFileNumber = 1;
  return {};
}

void close_report() {
  if (output.report_handle != kernel32::kInvalidHandle) kernel32::CloseHandle(output.report_handle);
  output.report_handle = kernel32::kInvalidHandle;
  output.ReportFileNumber = 0;
}

void PrintReport(std::string_view text) {
  if (!form1.CommandLineMode || output.ReportFileNumber < 1) return;
  std::string line(text);
  line += "\r\n";
  if (output.report_held) {
    output.held_lines += line;
  } else {
    write_report(line);
  }
}

void hold_report() {
  output.report_held = true;
}

void release_report() {
  output.report_held = false;
  if (!output.held_lines.empty()) write_report(output.held_lines);
  if (!output.held_errors.empty()) tell_at_once(output.held_errors);
  output.held_lines.clear();
  output.held_errors.clear();
}

void tell_on_stderr(std::string_view line) {
  std::string text(line);
  text += "\r\n";
  if (output.report_held) {
    output.held_errors += text;
  } else {
    tell_at_once(text);
  }
}

void tell_and_show(const std::string& line) {
  tell_on_stderr(line);
  form1.Text1.append(line + "\r\n");
}

void tell_at_once(std::string_view lines) {
  clear_progress_line();
  platform::write_err(lines);
}

void report_and_show(std::string_view text) {
  PrintReport(text);
  form1.Text1.append(text);
}

void report_line(const std::string& line) {
  PrintReport(line);
  form1.Text1.append(line + "\r\n");
}

bool AppendReportVars(std::string_view text) {
  if (!form1.CommandLineMode) return true;
  std::string lines(text);
  lines += "\r\n";
  const std::string& name = output.ReportFileName;
  if (name.empty()) return false;
  const std::uint32_t code = name == "-" ? write_standard(lines) : append_to_file(name, lines);
  if (code != 0) {
    command_end.results_lost = true;
    tell_on_stderr("The variables cannot be written to \"" + name + "\": error " + std::to_string(code) + ".");
  }
  return code == 0;
}

void ShowMessage(const std::string& text) {
  if (!output.MessagesEnabled) return;
  if (form1.CommandLineMode) {
    PrintReport(text);
  } else {
    tell_user(text);
  }
}

void tell_user(const std::string& text, platform::BoxIcon icon) {
  if (in_batch()) {
    tell_on_stderr(text);
  } else {
    platform::message_box(text, platform::Buttons::ok, std::string(kTitle), icon);
  }
}

bool ask_user(const std::string& text, const std::string& title) {
  if (!in_batch())
    return platform::message_box(text, platform::Buttons::ok_cancel, title.empty() ? std::string(kTitle) : title);
  tell_on_stderr(title.empty() ? text : title + " " + text);
  return false;
}

std::string ask_line(const std::string& prompt, const std::string& title, const std::string& default_answer) {
  if (!in_batch()) return platform::input_box(prompt, title.empty() ? std::string(kTitle) : title, default_answer);
  tell_on_stderr(prompt);
  return {};
}

void add_to_exit_code(std::int64_t count) {
  using Limits = std::numeric_limits<std::int16_t>;
  if (count < Limits::min() || count > Limits::max()) return;
  const std::int64_t sum = output.ExitCode + count;
  if (sum >= Limits::min() && sum <= Limits::max()) output.ExitCode = static_cast<std::int16_t>(sum);
}

std::int32_t exit_code() {
  if (command_end.results_lost && in_batch() && !asked.exit_by_bits) return kResultsLost;
  return output.asked_code.value_or(output.ExitCode);
}

void ExitProgram() {
  if (auto* const tell = std::exchange(output.before_exit, nullptr)) tell();
  constexpr std::uint32_t kNoCode = 0;
  kernel32::ExitProcess(output.InDevelopmentEnvironment ? kNoCode : static_cast<std::uint32_t>(exit_code()));
}

void MyUsage() {
  tell_user(
      "Usage: Sectorix {/D:n}  where n is the initial disk drive number\r\n"
      "PLEASE NOTE: Must be run with Administrator privileges.\r\n"
      "If you get a 'Write error' when writing to a removable disk, try 'Ejecting' the drive first.\r\n"
      "Reported variables:\r\n"
      "QV_S_xxx = SMART statistics\r\n"
      "QV_D_xxx = Disk statistics\r\n"
      "QV_E_xxx = Event log statistics.");
}
