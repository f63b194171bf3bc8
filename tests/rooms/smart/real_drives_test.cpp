#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>

#include "disk/drive.h"
#include "health/ask.h"
#include "health/numbers.h"
#include "health/verdict.h"
#include "smart/identification.h"
#include "smart/snapshot.h"
#include "tests/support/rig.h"

namespace {

std::filesystem::path data(const std::string& name) {
  return std::filesystem::path(__FILE__).parent_path() / "../../real_drives" / name;
}

/// A page as the drive sent it, from its text: words of four digits, low byte first, or bytes of two.
std::string page(const std::string& text) {
  std::string bytes;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    std::istringstream numbers(line.substr(0, line.find('#')));
    for (std::string digits; numbers >> digits;) {
      const unsigned long value = std::stoul(digits, nullptr, 16);
      bytes += static_cast<char>(value & 0xFFU);
      if (digits.size() == 4) bytes += static_cast<char>(value >> 8U);
    }
  }
  EXPECT_TRUE(bytes.size() >= 256 && bytes.size() <= 512) << bytes.size();
  bytes.resize(512);
  return bytes;
}

/// What another tool told of an attribute, and what this program makes of it.
struct Told {
  unsigned id = 0, flags = 0, current = 0, worst = 0, threshold = 0;
  std::int64_t raw = 0, counted = 0;
  std::string name;
};

std::istream& operator>>(std::istream& in, Told& told) {
  in >> told.id >> std::hex >> told.flags >> std::dec >> told.current >> told.worst >> told.threshold >> told.raw;
  return std::getline(in >> told.counted >> std::ws, told.name);
}

std::string listing_line(const Told& told) {
  std::array<char, 160> line{};
  const auto byte = [&told](int k) { return static_cast<unsigned>(told.raw >> (8 * k) & 0xFF); };
  std::snprintf(line.data(), line.size(),
                "%03u %-29s Flags=%c%c %02Xh %02Xh  Current=%03u  Worst=%03u  Attribs=%02Xh %02Xh %02Xh %02Xh %02Xh "
                "%02Xh  \r\n",
                told.id, told.name.c_str(), (told.flags & 1U) != 0 ? 'W' : 'w', (told.flags & 2U) != 0 ? 'O' : 'F',
                told.flags & 0xFFU, told.flags >> 8U, told.current, told.worst, byte(0), byte(1), byte(2), byte(3),
                byte(4), byte(5));
  return line.data();
}

class RealDrivesTest : public Rig, public ::testing::WithParamInterface<const char*> {
 protected:
  RealDrivesTest() {
    const std::string drive = GetParam();
    for (const std::string kind : {".identify", ".attributes", ".thresholds"}) {
      if (exists(data(drive + kind + ".txt")))
        write_file(drive + kind + ".bin", page(read_file(data(drive + kind + ".txt"))));
    }
    std::ifstream text(data(drive + ".told.txt"));
    for (std::string word; text >> word;) {
      if (word == "attribute") {
        text >> attributes.emplace_back();
      } else {
        std::getline(text >> std::ws, facts[word]);
      }
    }
  }

  std::map<std::string, std::string> facts;  // model, firmware, sectors, lba28
  std::vector<Told> attributes;
};

TEST_P(RealDrivesTest, TellsWhatOtherToolsTold) {
  attach(0, read_file(data(std::string(GetParam()) + ".vd")));
  OpenDrive(0);
  ASSERT_TRUE(Check_drv(0));
  EXPECT_EQ(identification.Disk_Model, facts.at("model"));
  EXPECT_EQ(identification.Disk_Firmware, facts.at("firmware"));
  EXPECT_EQ(identification.Drive_Sectors, std::stoll(facts.at("sectors")));
  EXPECT_EQ(identification.Id_Total_Sectors, std::stoll(facts.at("lba28")));

  const Snapshot snapshot = Get_Smart_Data(0);
  ASSERT_EQ(snapshot.Attr_Count, attributes.size());
  std::string listing;
  for (std::size_t i = 0; i < attributes.size(); ++i) {
    listing += listing_line(attributes[i]);
    EXPECT_EQ(snapshot.Attributes[i].Threshold, attributes[i].threshold) << attributes[i].id;
    EXPECT_EQ(snapshot.Attributes[i].Raw, attributes[i].counted) << attributes[i].id;
  }
  EXPECT_EQ(smart.Smart_List, listing);
}

INSTANTIATE_TEST_SUITE_P(, RealDrivesTest,
                         ::testing::Values("fujitsu_mhv2100at", "hitachi_hde721010sla330", "hitachi_hds721050dle630",
                                           "hitachi_hua722010cla330", "maxtor_6b200m0", "maxtor_6y120l0",
                                           "samsung_870_qvo", "seagate_st3160023as", "wdc_wd140edfz", "wdc_wd300bb"),
                         [](const auto& drive) { return std::string(drive.param); });

/// NVMe drives: every figure that a source told, and the verdict that it came to.
class RealNvmeDrives : public Rig, public ::testing::WithParamInterface<const char*> {};

TEST_P(RealNvmeDrives, TellWhatOtherToolsTold) {
  const std::string drive = std::string("nvme/") + GetParam();
  attach(0, read_file(data(drive + ".vd")));
  OpenDrive(0);
  ASSERT_TRUE(Check_drv(0));
  Get_Smart_Data(0);
  const Health health = ask_health(0);
  std::ifstream told(data(drive + ".told.txt"));
  int figures = 0;
  for (std::string name, value; told >> name && std::getline(told >> std::ws, value);) {
    if (name == "#") continue;
    ++figures;
    if (name == "model") {
      EXPECT_EQ(identification.Disk_Model, value);
    } else if (name == "verdict") {
      EXPECT_EQ(grade_name(judge(health, health, {}).grade), value);
    } else {
      const auto numbers = health_numbers();
      const auto row =
          std::find_if(numbers.begin(), numbers.end(), [&](const HealthNumber& n) { return n.key == name; });
      ASSERT_NE(row, numbers.end()) << name;
      EXPECT_EQ(row->of(health), std::stoll(value)) << name;
    }
  }
  EXPECT_GE(figures, 7);
}

INSTANTIATE_TEST_SUITE_P(, RealNvmeDrives,
                         ::testing::Values("crucial_ct250p2ssd8", "hgst_husmr7632bhp301", "intel_mempek1w032ga",
                                           "intel_ssdpedmd400g4", "samsung_970_evo_plus", "samsung_mzvl2512hcjq",
                                           "toshiba_kxg60znv512g"),
                         [](const auto& drive) { return std::string(drive.param); });

}  // namespace
