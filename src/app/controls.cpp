#include "app/controls.h"

#include <array>

#include "app/handlers.h"
#include "app/waiting.h"
#include "form/form1.h"
#include "pictures/health_line.h"
#include "pictures/panel.h"
#include "pictures/progress_bar.h"

namespace {

using platform::Control;
using platform::ControlKind;
using platform::Stops;
using platform::WhileBusy;

constexpr const char* kDriveTip = "Select the desired disk (as detected by Windows)";

// A row for a drive button; only the first carries a tool tip while nothing is known of its drive.
Control drive_button(const char* name, const char* caption, std::size_t drive, void (*on_click)()) {
  return {name,
          ControlKind::option,
          caption,
          drive == 0 ? kDriveTip : "",
          &form1.options.at(drive),
          on_click,
          nullptr,
          WhileBusy::stays,
          nullptr,
          Stops::command,
          &form1.drive_tips.at(drive)};
}

Control button(const char* name, const char* caption, const char* tool_tip, void (*on_click)(),
               WhileBusy while_busy = WhileBusy::disabled, Stops stops = Stops::nothing) {
  return {name, ControlKind::button, caption, tool_tip, nullptr, on_click, nullptr, while_busy, nullptr, stops};
}

Control label(const char* name, const char* caption, platform::Field* field = nullptr) {
  return {name, ControlKind::label, caption, "", field, nullptr, nullptr, WhileBusy::stays};
}

Control edit(const char* name, const char* tool_tip, platform::Field* field, void (*on_click)() = nullptr,
             void (*on_typed)() = nullptr) {
  return {name, ControlKind::edit, "", tool_tip, field, on_click, on_typed, WhileBusy::read_only};
}

Control display(const char* name, const char* tool_tip, platform::Field* field) {
  return {name, ControlKind::display, "", tool_tip, field, nullptr, nullptr, WhileBusy::stays};
}

Control tab(const char* name, const char* caption, const char* tool_tip, platform::Field* field, void (*on_click)()) {
  return {name, ControlKind::tab, caption, tool_tip, field, on_click, nullptr, WhileBusy::stays};
}

Control picture(const char* name, const platform::Picture* what, const char* tool_tip = "") {
  return {name, ControlKind::picture, "", tool_tip, nullptr, nullptr, nullptr, WhileBusy::stays, what};
}

// The order is that of ControlId.
const std::array<Control, kControlCount> kControls = {{
    drive_button("Option1", "Drive 0", 0, Option1_Click),
    drive_button("Option2", "Drive 1", 1, Option2_Click),
    drive_button("Option3", "Drive 2", 2, Option3_Click),
    drive_button("Option4", "Drive 3", 3, Option4_Click),
    drive_button("Option5", "Drive 4", 4, Option5_Click),
    drive_button("Option6", "Drive 5", 5, Option6_Click),
    drive_button("Option7", "Drive 6", 6, Option7_Click),
    drive_button("Option8", "Drive 7", 7, Option8_Click),
    label("LblStart", "Start Block (0-n)", &form1.LblStart),
    edit("TxtStartLBA", "Set the start LBA position here", &form1.TxtStartLBA, TxtStartLBA_Click, range_typed),
    label("LblNoSectors", "No. Sectors"),
    edit("TxtNoSecs", "Set the number of 512 byte sectors you wish to transfer", &form1.TxtNoSecs, TxtNoSecs_Click,
         range_typed),
    label("LblCurrent", "Current LBA"),
    display("TxtCurrent", "Displays the current LBA being operated on", &form1.TxtCurrent),
    picture("progress_bar", &kProgressPicture),
    button("CmdRead", "Sequential &READ", "Read sectors from \"Start\" for \"No. Sectors\"", CmdRead_Click),
    button("CmdRndRD", "Rando&m READ", "Random Read over entire disk", CmdRndRD_Click),
    button("CmdFind", "&Search Disk", "Search disk for a pattern or string", CmdFind_Click),
    button("CmdRnd", "&Non-Destructive Random WRITE",
           "Random Write test over entire disk (Non-destructive but use with caution)", CmdRnd_Click),
    button("CmdSlowRate", "Set Slow Xfer &Limit", "Set the level at which a \"slow transfer\" is detected",
           CmdSlowRate_Click, WhileBusy::stays),
    button("cmdCancel", "&Cancel", "Cancel the current command", cmdCancel_Click, WhileBusy::stays, Stops::command),
    button("CmdHelp", "&Help", "Display command line usage", CmdHelp_Click, WhileBusy::stays),
    button("CmdExit", "E&xit", "Quit this application", CmdExit_Click, WhileBusy::stays, Stops::program),
    {"Frame1", ControlKind::frame, "  Sector Edit Functions ", "", nullptr, nullptr, nullptr, WhileBusy::stays},
    button("CmdDisplay", "&Display and Edit Buffer", "Display the buffer contents (first 20 sectors only)",
           CmdDisplay_Click),
    button("cmdWriteBuffer", "WRITE using &Buffer",
           "Write the contents of the buffer to disk  (will use edited data if in main window)", cmdWriteBuffer_Click),
    label("LblPattern", " Fill Pattern (hex)"),
    edit("TxtPattern", "Enter a Hex pattern (e.g. 01 or 0102 or 010203 or 01020304", &form1.TxtPattern),
    button("CmdFillBuffer", "&Fill Buff", "Fill the sector buffer with a pattern", CmdFillBuffer_Click),
    button("CmdWrite", "Fill Buffer with &Pattern and WRITE",
           "Write data in buffer to disk (destructive - do not use on any disk containing valid data!)",
           CmdWrite_Click),
    picture("health_line", &kHealthPicture, "How the drive is, by its own word and by what the last run met"),
    button("more_button", "M&ore...", "Exact bad sectors, history, result page, command line", more_click),
    tab("report_tab", "R&eport", "Show the report and the bytes to edit", &panel.report_tab, report_tab_click),
    tab("graph_tab", "Rate &graph", "Show the transfer rates over the range", &panel.graph_tab, graph_tab_click),
    tab("map_tab", "Bloc&k map", "Show the slowest transfer of each part of the range", &panel.map_tab, map_tab_click),
    picture("picture", &kPanelPicture),
    display("TxtStatus", "Current status is displayed here (some values may not be relevant for all tests)",
            &form1.TxtStatus),
    {"Text1", ControlKind::memo, "", "", &form1.Text1, nullptr, nullptr, WhileBusy::read_only},
}};

int arrangement(platform::Size client, int dpi) {
  return panel_in_front(panel_has_own_place(client, dpi)) ? kPictureInFront : kReportInFront;
}

}  // namespace

platform::WindowTable main_window() {
  return {.caption = &form1.Caption,
          .controls = kControls,
          .layout = place_controls,
          .arrangement = arrangement,
          .first = kFirstSize,
          .least = kLeastSize,
          .whole = kWholeSize,
          .on_close = window_closed,
          .on_help = show_command_line_help,
          .cancel = static_cast<std::size_t>(ControlId::cmdCancel),
          .status = static_cast<std::size_t>(ControlId::TxtStatus),
          .share = progress_share,
          .waiting = tell_waiting,
          .leaving = leaving_text};
}
