#include <algorithm>
#include <array>

#include "app/controls.h"
#include "platform/geometry.h"
#include "platform/units.h"

namespace {

using platform::Rect;
using Id = ControlId;

// All in pixels at 96 dpi. Three columns carry everything: fields, commands, and the buttons at the right edge.
constexpr int kMargin = 14;
constexpr int kRow = 26;       // a button's height
constexpr int kField = 23;     // an edit's height
constexpr int kPitch = 32;     // from row to row
constexpr int kApart = 8;      // before a row that is set apart
constexpr int kGroupGap = 12;  // between groups
constexpr int kLabelWidth = 150;
constexpr int kFieldsRight = 284;
constexpr int kFieldWidth = 120;
constexpr int kCommands = 312;  // the left edge of the commands
constexpr int kCommandWidth = 240;
constexpr int kSideWidth = 150;
constexpr int kControlsRight = kLeastSize.width - kMargin;  // where the panel stands beside them
constexpr int kLeastPanelWidth = 380;
constexpr int kLeastPanelHeight = 112;
constexpr int kFrameInset = 14;
constexpr int kPanelGap = 16;
constexpr int kFrameTitle = 24;
constexpr int kStatusHeight = 38;

/// Puts rectangles of the design grid into pixels. Edges are rounded, not sizes, so that neighbours never overlap.
class Placing {
 public:
  Placing(platform::Size client, int dpi, std::span<Rect> places)
      : dpi_(platform::fitting_dpi(client, kLeastSize, kWholeSize, dpi)),
        width_(client.width * kDesignDpi / dpi_),
        height_(client.height * kDesignDpi / dpi_),
        places_(places) {}

  int right() const { return width_ - kMargin; }
  int bottom() const { return height_ - kMargin; }

  /// True where the panel stands beside the commands.
  bool is_wide() const { return right() - kControlsRight - kPanelGap >= kLeastPanelWidth; }

  /// The right edge of the commands and their frame.
  int controls_right() const { return is_wide() ? kControlsRight : right(); }

  void put(Id id, int x, int y, int width, int height) {
    const int left = platform::scaled(x, dpi_);
    const int top = platform::scaled(y, dpi_);
    places_[static_cast<std::size_t>(id)] = {left, top, std::max(platform::scaled(x + width, dpi_) - left, 0),
                                             std::max(platform::scaled(y + height, dpi_) - top, 0)};
  }

  /// A label and its field, centred on a row of buttons that begins at `y`.
  void put_pair(Id label, int x, int label_width, Id field, int field_x, int field_width, int y) {
    constexpr int kInset = (kRow - kField) / 2;
    put(label, x, y, label_width, kRow);
    put(field, field_x, y + kInset, field_width, kField);
  }

 private:
  static constexpr int kDesignDpi = 96;
  int dpi_;
  int width_;
  int height_;
  std::span<Rect> places_;
};

/// The drive buttons in one row. Returns where the next group begins.
int place_drives(Placing* placing, int y) {
  constexpr int kHeight = 22;
  constexpr int kWidest = 96;
  const int step = std::min((placing->right() - kMargin) / kDriveCount, kWidest);
  for (int drive = 0; drive < kDriveCount; ++drive) {
    const auto id = static_cast<Id>(static_cast<int>(Id::Option1) + drive);
    placing->put(id, kMargin + drive * step, y, step, kHeight);
  }
  return y + kHeight + kGroupGap;
}

/// The range, the commands over the whole disk and the side buttons; the command that writes and Exit stand apart.
int place_commands(Placing* placing, int y) {
  const int second = y + kPitch;
  const int third = second + kPitch;
  const int last = third + kPitch + kApart;
  constexpr int kFieldX = kFieldsRight - kFieldWidth;
  placing->put_pair(Id::LblStart, kMargin, kLabelWidth, Id::TxtStartLBA, kFieldX, kFieldWidth, y);
  placing->put_pair(Id::LblNoSectors, kMargin, kLabelWidth, Id::TxtNoSecs, kFieldX, kFieldWidth, second);
  placing->put_pair(Id::LblCurrent, kMargin, kLabelWidth, Id::TxtCurrent, kFieldX, kFieldWidth, third);

  placing->put(Id::CmdRead, kCommands, y, kCommandWidth, kRow);
  placing->put(Id::CmdRndRD, kCommands, second, kCommandWidth, kRow);
  placing->put(Id::CmdFind, kCommands, third, kCommandWidth, kRow);
  placing->put(Id::CmdRnd, kCommands, last, kCommandWidth, kRow);

  // The bar belongs to the range above it, and ends level with the command beside it.
  placing->put(Id::progress_bar, kMargin, last - kApart, kFieldsRight - kMargin, kRow + kApart);

  const int side = placing->controls_right() - kSideWidth;
  placing->put(Id::CmdSlowRate, side, y, kSideWidth, kRow);
  placing->put(Id::cmdCancel, side, second, kSideWidth, kRow);
  placing->put(Id::CmdHelp, side, third, kSideWidth, kRow);
  placing->put(Id::CmdExit, side, last, kSideWidth, kRow);
  return last + kRow + kGroupGap;
}

/// The frame: what shows and fills the buffer above, what writes it to the disk set apart below.
int place_sector_functions(Placing* placing, int y) {
  constexpr int kHeight = kFrameTitle + 2 * kRow + 2 * kApart + kFrameInset;
  constexpr int kLeft = kMargin + kFrameInset;
  constexpr int kLeftWidth = kFieldsRight - kLeft;
  constexpr int kPatternLabel = 120;
  constexpr int kPatternX = kCommands + kPatternLabel + kApart;
  constexpr int kFillX = kCommands + kCommandWidth + kApart;
  constexpr int kFillWidth = 96;
  const int upper = y + kFrameTitle;
  const int lower = upper + kRow + 2 * kApart;
  placing->put(Id::Frame1, kMargin, y, placing->controls_right() - kMargin, kHeight);
  placing->put(Id::CmdDisplay, kLeft, upper, kLeftWidth, kRow);
  placing->put(Id::cmdWriteBuffer, kLeft, lower, kLeftWidth, kRow);
  placing->put_pair(Id::LblPattern, kCommands, kPatternLabel, Id::TxtPattern, kPatternX,
                    kCommands + kCommandWidth - kPatternX, upper);
  placing->put(Id::CmdFillBuffer, kFillX, upper, kFillWidth, kRow);
  placing->put(Id::CmdWrite, kCommands, lower, kCommandWidth, kRow);
  return y + kHeight + kGroupGap;
}

/// The drive's health, the tabs and their picture. Where there is room for the health beside the tabs it takes none
/// of the picture's height.
void place_panel(Placing* placing, int x, int y, int height) {
  constexpr int kTabWidth = 92;
  constexpr int kMoreWidth = 92;
  constexpr int kGap = 6;
  constexpr int kLeastHealth = 380;
  const int more = placing->right() - kMoreWidth;
  const int beside = x + 2 * kTabWidth + 2 * kGap;
  const bool in_row = more - kGap - beside >= kLeastHealth;
  const int tabs = in_row ? y : y + kRow + kGap;
  placing->put(Id::health_line, in_row ? beside : x, y, (in_row ? more - kGap - beside : placing->right() - x), kRow);
  placing->put(Id::more_button, more, tabs, kMoreWidth, kRow);
  placing->put(Id::graph_tab, x, tabs, kTabWidth, kRow);
  placing->put(Id::map_tab, x + kTabWidth, tabs, kTabWidth, kRow);
  const int picture = tabs + kRow + kGap;
  placing->put(Id::picture, x, picture, placing->right() - x, y + height - picture);
}

/// The height of a panel that stands above the status at `y`; 0 where there is none: the text keeps most of the height.
int panel_height_above(const Placing& placing, int y) {
  constexpr int kShare = 45;  // percent
  constexpr int kMost = 260;
  const int room = placing.bottom() - y - kGroupGap - kStatusHeight - kApart;
  const int height = std::min(room * kShare / 100, kMost);
  return height < kLeastPanelHeight ? 0 : height;
}

/// The tabs of what shares the rest of the window, in one row with the drive's health, and `front` below them. The
/// window is small: the row is low.
void place_shared(Placing* placing, int y, Id front) {
  constexpr int kMoreWidth = 76;
  constexpr int kHeight = 22;
  constexpr int kGap = 4;
  int x = kMargin;
  struct Tab {
    Id id;
    int width;
  };
  for (const Tab& tab : {Tab{Id::report_tab, 58}, Tab{Id::graph_tab, 76}, Tab{Id::map_tab, 72}}) {
    placing->put(tab.id, x, y, tab.width, kHeight);
    x += tab.width;
  }
  const int more = placing->right() - kMoreWidth;
  placing->put(Id::health_line, x + kApart, y, more - kApart - x - kApart, kHeight);
  placing->put(Id::more_button, more, y, kMoreWidth, kHeight);
  const int below = y + kHeight + kGap;
  placing->put(front, kMargin, below, placing->right() - kMargin, placing->bottom() - below);
}

}  // namespace

bool panel_has_own_place(platform::Size client, int dpi) {
  std::array<Rect, kControlCount> places;
  place_controls(client, dpi, kReportInFront, places);
  return places.at(static_cast<std::size_t>(Id::report_tab)).width == 0;
}

void place_controls(platform::Size client, int dpi, int arrangement, std::span<Rect> places) {
  std::fill(places.begin(), places.end(), Rect{});
  Placing placing(client, dpi, places);
  const int commands = place_drives(&placing, kMargin);
  int y = place_commands(&placing, commands);
  y = place_sector_functions(&placing, y);
  const int width = placing.right() - kMargin;
  const int panel_height = panel_height_above(placing, y);
  if (placing.is_wide()) {
    place_panel(&placing, kControlsRight + kPanelGap, commands, y - kGroupGap - commands);
  } else if (panel_height > 0) {
    place_panel(&placing, kMargin, y, panel_height);
    y += panel_height + kGroupGap;
  }
  placing.put(Id::TxtStatus, kMargin, y, width, kStatusHeight);
  y += kStatusHeight + kApart;
  if (placing.is_wide() || panel_height > 0) {
    placing.put(Id::Text1, kMargin, y, width, placing.bottom() - y);
  } else {
    place_shared(&placing, y, arrangement == kPictureInFront ? Id::picture : Id::Text1);
  }
}
