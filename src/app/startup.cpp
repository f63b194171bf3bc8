#include <array>
#include <string>

#include "app/commands.h"
#include "app/handlers.h"
#include "app/program.h"
#include "device/kernel32.h"
#include "form/asked.h"
#include "form/form1.h"
#include "form/output.h"
#include "ops/selection.h"

namespace {

constexpr const char* kInstructions =
    "\r\n"
    "\r\nINSTRUCTIONS"
    "\r\n============"
    "\r\nLeave the Number of sectors alone to read all disk sectors,"
    "\r\n  OR set the Number of sectors to 1 to read just one sector,"
    "\r\n  OR use the 'Search' button to find a sequence of bytes."
    "\r\nClick 'Sequential Read' to read the sectors into the buffer."
    "\r\nClick on 'Display and Edit Buffer' to display the bytes read."
    "\r\n   You can edit the bytes table as you wish (max 20 sectors)."
    "\r\n   Do NOT change the spacing between the hex bytes."
    "\r\nClick on 'Write Buffer' to write the buffer (or changed contents)."
    "\r\n"
    "\r\nCOMMANDS"
    "\r\n========"
    "\r\nSearch Disk - enter a search string or byte sequence."
    "\r\nRandom Read - you set number of passes and number of sectors per operation."
    "\r\nNon-destructive Random Write - read - write random data - read&verify - write back original contents."
    "\r\nFill buffer with Pattern and Write - the buffer will be as large as the last read operation."
    "\r\nSet slow Xfer limit - set the allowable delay before a 'slow xfer' error is reported."
    "\r\n    for sequential operations - random operations may require a longer delay setting."
    "\r\n"
    "\r\nSmart data and any errors are shown at the end of each operation."
    "\r\nSlow transfers on sequential reads will be detected (default=10ms).";

/// Switching an option on runs its handler; one that is on already stays as it is.
void switch_on(int drive) {
  if (!form1.options.at(static_cast<std::size_t>(drive)).on()) option_click(drive);
}

/// Every drive that the command line names is selected in turn, so the highest number stays.
void select_named_drives() {
  for (const int drive : asked.named_drives) {
    form1.SelectedDrive = drive;
    switch_on(drive);
  }
}

}  // namespace

std::string version_line() {
  return "Sectorix v." + program_version() + " - disk read, write and test";
}

std::string program_version() {
  return std::to_string(SECTORIX_MAJOR) + "." + std::to_string(SECTORIX_MINOR) + "." +
         std::to_string(SECTORIX_REVISION);
}

void set_command_line_mode(bool on) {
  form1.CommandLineMode = on;
  form1.Caption.set_text(version_line() + (on ? " - COMMAND-LINE MODE: writes without asking" : ""));
}

void offer_left_over(const LeftOver& left) {
  if (left.lines.empty()) return;
  report_and_show("\r\n\r\nUNDO JOURNALS\r\n=============\r\n");
  for (const std::string& line : left.lines) report_line(line);
  form1.Text1.caret_to_end();
  if (form1.CommandLineMode) {
    form1.TxtStatus.set_text(left.lines.front());
    return;
  }
  const int selected = form1.SelectedDrive;
  for (const Restorable& place : left.restorable) {
    const std::string question = place.what + "\r\n\r\nGive their former contents back from \"" + place.file + "\"?";
    if (!ask_user(question, "INTERRUPTED TEST")) continue;
    show_option(place.drive);
    SelectDrive();
    run_command("RESTORE");
    show_option(selected);
    select_drive_keeping_text();
  }
}

bool GetOsVersion() {
  constexpr std::uint32_t kPlatformNt = 2;  // winnt.h: VER_PLATFORM_WIN32_NT
  kernel32::OsVersion version;
  if (!kernel32::GetVersionExA(&version)) return false;
  form1.OsMajorVersion = version.major;
  return version.platform_id == kPlatformNt;
}

void Form_Load() {
  output.InDevelopmentEnvironment = false;
  form1.OsIsNT = GetOsVersion();
  form1.RangeEdited = false;
  form1.TxtCurrent.set_text({});
  form1.SelectedDrive = kNoDrive;
  form1.Text1.set_text({});
  form1.TxtPattern.set_text("2C2CAA55");
  set_command_line_mode(asked.mode == Mode::command_line || in_batch());
  if (form1.CommandLineMode) select_named_drives();
  if (form1.SelectedDrive != kNoDrive) {
    // Only a selector that was on before start-up leaves MyCancel clear: then nothing was selected.
    if (!form1.MyCancel) ExitProgram();
  } else {
    form1.SelectedDrive = 0;
    show_option(0);
    SelectDrive();
  }
  resolve_percentages();
  if (!in_batch() && (asked.start_lba != 0 || asked.count != 0)) {
    // From here on the fields alone say what is read and written. A run with /OP fills them when it begins.
    show_range_of_command_line();
    form1.RangeEdited = true;
  }
  form1.Text1.set_text("    WARNING: " + form1.TxtStatus.text() + " selected!" + kInstructions);
}
