// Every command from start to end: what goes to the report, the variables, standard error, boxes and fields, in which
// order, and which system calls are made. Each line of a recording that begins with "== " is a scenario; what follows
// is what it did when it was recorded. SECTORIX_RECORD=1 records anew.

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "app/controls.h"
#include "app/handlers.h"
#include "form/form1.h"
#include "form/output.h"
#include "tests/support/rig.h"
#include "virtualdisk/virtualdisk.h"

namespace {

constexpr const char* kMark = "== ";

/// Writes runs of the same few events as one line with their number.
std::string folded(const std::vector<std::string>& events) {
  constexpr std::size_t kLongest = 8;
  std::string text;
  for (std::size_t at = 0; at < events.size();) {
    std::size_t best_length = 1;
    std::size_t best_times = 1;
    for (std::size_t length = 1; length <= kLongest; ++length) {
      std::size_t times = 1;
      while (at + (times + 1) * length <= events.size() &&
             std::equal(events.begin() + at, events.begin() + at + length, events.begin() + at + times * length)) {
        ++times;
      }
      if (times > 1 && times * length > best_times * best_length) {
        best_length = length;
        best_times = times;
      }
    }
    for (std::size_t i = 0; i < best_length; ++i) text += (i == 0 ? "" : " ") + events[at + i];
    text += best_times > 1 ? " x" + std::to_string(best_times) + "\n" : "\n";
    at += best_length * best_times;
  }
  return text;
}

std::vector<std::string> split(const std::string& text, const std::string& by) {
  std::vector<std::string> parts;
  for (std::size_t from = 0; from <= text.size();) {
    const std::size_t end = std::min(text.find(by, from), text.size());
    parts.push_back(text.substr(from, end - from));
    from = end + by.size();
  }
  return parts;
}

/// Without carriage returns, and bytes that are no plain text as "\\AA".
std::string plain(const std::string& text) {
  constexpr const char* kDigits = "0123456789ABCDEF";
  std::string shown;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '\r') continue;
    if (c == '\n' || (byte >= ' ' && byte < 0x7F)) {
      shown += c;
    } else {
      shown += {'\\', kDigits[byte / 16], kDigits[byte % 16]};
    }
  }
  return shown;
}

class Recordings : public Rig, public ::testing::WithParamInterface<const char*> {
 protected:
  Recordings() {
    const char* const here = std::getenv("SECTORIX_RECORDINGS");
    folder_ = here != nullptr ? here : std::filesystem::absolute(__FILE__).parent_path().string();
    std::filesystem::copy_file(std::filesystem::path(__FILE__).parent_path() / "faulty.vd", path("faulty.vd"));
    std::filesystem::current_path(path(""));
    // A name that is the same in every run.
    std::filesystem::create_directory("local");
    ::setenv("LOCALAPPDATA", "./local", 1);
  }
  ~Recordings() override { std::filesystem::current_path(before_); }

  static void press(const std::string& name) {
    if (name == "Cmd_Destructive_Random_Write") return Cmd_Destructive_Random_Write();
    if (name == "Cmd_OffTrack_Write") return Cmd_OffTrack_Write();
    if (name == "ControlC") return headless::press_control_c();
    if (name == "Close") return main_window().on_close();
    control(name).on_click();
  }

  static const platform::Control& control(const std::string& name) {
    for (const platform::Control& row : main_window().controls) {
      if (row.name == name) return row;
    }
    throw std::runtime_error("no control " + name);
  }

  /// "?answer", "Field=text", "@pump:Control" pressed at that pump from now on, or "Control" pressed.
  static void step(const std::string& what) {
    if (what[0] == '?') {
      headless::desktop.answers.push_back(what.substr(1));
    } else if (what[0] == '@') {
      const int pump = headless::desktop.pumps + std::stoi(what.substr(1));
      const std::string name = what.substr(what.find(':') + 1);
      headless::desktop.at_pump = [pump, name](int now) {
        if (now == pump) press(name);
      };
    } else if (const std::size_t equals = what.find('='); equals != std::string::npos) {
      const platform::Control& field = control(what.substr(0, equals));
      field.field->set_typed(what.substr(equals + 1));
      if (field.on_typed != nullptr) field.on_typed();
    } else {
      press(what);
    }
  }

  /// Runs "switches | step | step ..." and tells all that happened.
  std::string record(const std::string& scenario) {
    headless::desktop = {};
    headless::desktop.keeps_events = true;
    const std::vector<std::string> parts = split(scenario, " | ");
    std::string end;
    headless::desktop.has_display = parts.size() > 1;
    std::size_t next = 1;
    for (; next < parts.size() && parts[next][0] == '@'; ++next) step(parts[next]);
    const std::uint32_t code = start(parts[0]);
    try {
      for (; next < parts.size(); ++next) step(parts[next]);
      end = "returned " + std::to_string(code);
    } catch (const headless::ProcessEnded& ended) {
      end = "ended with " + std::to_string(ended.code);
    } catch (const std::runtime_error& unanswered) {
      end = unanswered.what();
    }
    std::string text = folded(headless::desktop.events) + end + "\n";
    text += "exit code " + std::to_string(output.ExitCode) + ", pumps " + std::to_string(headless::desktop.pumps) +
            ", drive " + std::to_string(form1.SelectedDrive) + ", handles " +
            std::to_string(virtualdisk::open_handles()) + ", files " + std::to_string(headless::desktop.open_files) +
            "\n";
    for (const platform::Control& row : main_window().controls) {
      if (row.field == nullptr) continue;
      if (row.kind == platform::ControlKind::option || row.kind == platform::ControlKind::tab) {
        if (row.field->on()) text += std::string(row.name) + " on\n";
      } else {
        text += std::string(row.name) + ": " + row.field->text() + "\n";
      }
    }
    virtualdisk::detach_all();
    for (const auto& file : std::filesystem::recursive_directory_iterator(".")) {
      const std::string name = file.path().filename().string();
      if (name == "faulty.vd" || file.is_directory()) continue;
      const std::string contents = read_file(file.path().string());
      text += "file " + name + ": ";
      text += contents.size() < 100000
                  ? contents
                  : std::to_string(contents.size()) + " bytes, " + std::to_string(std::hash<std::string>{}(contents));
      text += "\n";
      std::remove(file.path().c_str());
    }
    return text;
  }

  std::string folder_;
  std::filesystem::path before_ = std::filesystem::current_path();
};

TEST_P(Recordings, EveryCommandDoesWhatItDid) {
  const std::string file = folder_ + "/" + GetParam() + ".txt";
  std::string recorded = "\n" + read_file(file);
  recorded.pop_back();
  ASSERT_NE(recorded.find(kMark), std::string::npos) << file << " holds no scenario";
  std::string now;
  for (const std::string& part : split(recorded, std::string("\n") + kMark)) {
    if (part.empty()) continue;
    const std::string scenario = part.substr(0, part.find('\n'));
    std::string text = kMark + scenario + "\n" + record(scenario);
    text = plain(text);
    now += text;
    EXPECT_EQ(kMark + part + "\n", text) << scenario;
  }
  if (std::getenv("SECTORIX_RECORD") != nullptr) std::ofstream(file, std::ios::binary) << now;
}

INSTANTIATE_TEST_SUITE_P(Disks, Recordings, ::testing::Values("practice", "faulty", "missing"),
                         [](const auto& info) { return std::string(info.param); });

}  // namespace
