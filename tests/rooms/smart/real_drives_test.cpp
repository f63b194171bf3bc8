#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>

#include "disk/drive.h"
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

}  // namespace
