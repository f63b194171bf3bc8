#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "platform/fields.h"
#include "platform/units.h"

/// The main window's fields and flags. The fields are data; where there is a window it shows them.
struct Form1 {
  platform::Field Caption;
  platform::Field Text1;        // running report, hex view and editor
  platform::Field TxtStatus;    // status line
  platform::Field TxtStartLBA;  // first LBA of an operation
  platform::Field TxtNoSecs;    // number of sectors
  platform::Field TxtCurrent;   // LBA being worked on
  platform::Field TxtPattern;   // fill pattern, hex
  platform::Field LblStart{platform::Field::with_text("Start Block (0-n)")};
  std::array<platform::Field, kDriveCount> drive_tips;  // tool tips of the drive buttons
  int drives_learned = 0;                               // drives 0 to this one less have their tool tip
  std::array<platform::Field, kDriveCount> options;     // Option1 to Option8: drive 0 to 7

  bool MyCancel = false;         // every loop of transfers stops at its next test of it
  bool RangeEdited = false;      // the user touched the range: a drive selection keeps it
  int SelectedDrive = kNoDrive;  // 0 to 7, or kNoDrive
  bool read_back = false;        // how the check box of the pattern write's question was left last
  bool CommandLineMode = false;  // "/D:" was on the command line: no questions, report output is written
  bool OsIsNT = false;           // what the system said it is; nothing is gated on it
  std::uint32_t OsMajorVersion = 0;
  bool command_running = false;
  bool report_in_front = true;   // in a window in which Text1 and the pictures share a place: Text1 is shown
  int pending_drive = kNoDrive;  // pressed while a command ran; selected when it has ended
  bool selecting_drive = false;
  std::string pending_command;  // pressed while a drive was being selected; runs afterwards
};

inline Form1 form1;
