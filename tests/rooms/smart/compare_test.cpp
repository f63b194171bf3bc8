#include "smart/compare.h"

#include <gmock/gmock.h>

#include "disk/counters.h"
#include "disk/progress.h"
#include "form/form1.h"
#include "form/output.h"
#include "smart/identification.h"
#include "tests/support/rig.h"

namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;

class CompareTest : public Rig {
 protected:
  CompareTest() {
    form1.CommandLineMode = true;
    output.ReportFileName = "-";
  }

  static Snapshot snapshot(const std::vector<std::pair<std::uint8_t, std::int64_t>>& raw_values) {
    Snapshot made;
    made.Drive_Type = 1;
    made.Attributes.clear();
    for (const auto& [id, raw] : raw_values) {
      made.Attributes.push_back({.Attr_Id = id, .Attr_Name = "NAME", .Raw = raw});
    }
    made.Attr_Count = static_cast<std::uint8_t>(raw_values.size());
    made.Attributes.emplace_back();
    return made;
  }

  static void compare(const Snapshot& before, const Snapshot& after) {
    smart.Smart_Snapshot = after;
    form1.Text1.set_text({});
    headless::desktop.out.clear();
    Compare_smart_info(before);
  }
};

TEST_F(CompareTest, DifferencesAreListedReportedAndCounted) {
  compare(snapshot({{5, 0}, {7, 9}, {9, 100}, {12, 3}, {194, 30}}),
          snapshot({{5, 2}, {7, 8}, {9, 100}, {194, 80}, {199, 1}}));
  EXPECT_THAT(form1.Text1.text(),
              EndsWith("\r\nSMART DATA\r\n"
                       "001 READ_ERROR_RATE               was            now            DIFFERENCE=0\r\n"
                       "005 NAME was 0          now 2          DIFFERENCE=2\r\n"
                       "007 NAME was 9          now 8          DIFFERENCE=-1\r\n"
                       "009 NAME was 100        now 100        DIFFERENCE=0\r\n"
                       "010 SPIN_RETRY_COUNT              was            now            DIFFERENCE=0\r\n"
                       "011 CALIBRATION_RETRY_COUNT       was            now            DIFFERENCE=0\r\n"
                       "012 NAME was 3          now            DIFFERENCE=-3\r\n"
                       "196 REALLOCATION_EVENTS_COUNT     was            now            DIFFERENCE=0\r\n"
                       "194 NAME was 30         now 80         DIFFERENCE=50\r\n"
                       "198 UNCORRECTABLE_SECTOR_COUNT    was            now            DIFFERENCE=0\r\n"
                       "199 NAME was            now 1          DIFFERENCE=1\r\n"))
      << "the name comes from the snapshot that has the attribute, else from the table";
  EXPECT_THAT(out(), HasSubstr("SET QV_S_REALLOC_SECT=2\r\nSET QV_S_SEEK_ERR_RATE=-1\r\nSET QV_S_CALIB_RETRY=0\r\n"));
  EXPECT_THAT(out(), HasSubstr("SET QV_S_FINAL_POWER_ON_HOURS=100\r\nSET QV_S_FINAL_TEMP=80\r\n"));
  EXPECT_THAT(out(), HasSubstr("SET QV_S_ERRORS=4\r\nSET QV_S_WARNINGS=1\r\nSET QV_S_INFO=0\r\n"));
  EXPECT_EQ(output.ExitCode, 4);
}

TEST_F(CompareTest, ATemperatureThatIsAbsentAtTheEndIsBlank) {
  compare(snapshot({{194, 90}}), snapshot({{5, 0}}));
  EXPECT_THAT(out(), HasSubstr("SET QV_S_FINAL_TEMP=\r\n"));
  EXPECT_THAT(out(), HasSubstr("SET QV_S_ERRORS=0\r\n"));
}

TEST_F(CompareTest, EveryFindingHasItsClass) {
  progress.SlowXfers = 4;
  compare(snapshot({}), snapshot({{12, 1}, {198, 1}, {5, 1}, {7, 1}, {194, 79}, {11, 1}, {196, 1}, {199, 1}, {1, 1}}));
  EXPECT_EQ(comparison.errors, 4) << "79 degrees are none";
  EXPECT_EQ(comparison.warnings, 4);
  EXPECT_EQ(comparison.info, 1);
}

TEST_F(CompareTest, WithoutSmartDataTheKeptValuesStayAndNothingCounts) {
  compare(snapshot({{9, 0}, {194, 0}}), snapshot({{9, 0}, {194, 90}}));
  EXPECT_THAT(out(), HasSubstr("SET QV_S_FINAL_POWER_ON_HOURS=\r\n")) << "no hours are the empty text";
  output.ExitCode = 0;
  compare({}, {});
  EXPECT_THAT(form1.Text1.text(), HasSubstr("\r\nSMART DATA\r\nWarning: No SMART data available"));
  EXPECT_THAT(out(), HasSubstr("SET QV_S_FINAL_TEMP=90\r\n"));
  EXPECT_THAT(out(), HasSubstr("SET QV_S_ERRORS=0\r\n"));
  EXPECT_EQ(output.ExitCode, 0);
}

TEST_F(CompareTest, TheDrivesSizesAndRates) {
  identification.Drive_Sectors = 1953525168;
  progress.LowRate = 45.9;
  progress.HighRate = 123.25;
  compare({}, {});
  EXPECT_THAT(out(),
              HasSubstr("SET QV_D_SECTORS=1953525168\r\nSET QV_D_SIZE_DECMB=1000204\r\nSET QV_D_SIZE_GB=931\r\n"));
  EXPECT_THAT(out(), HasSubstr("SET QV_D_XFER_RATE_L=45\r\nSET QV_D_XFER_RATE_H=123.25\r\n"));
  identification.Drive_Sectors = 18014398509481983;
  compare({}, {});
  EXPECT_THAT(out(), HasSubstr("SET QV_D_SIZE_DECMB=9223372036854\r\n"));
}

TEST_F(CompareTest, TheTimeOfTheOperationSaysInWhichUnitPowerOnCounts) {
  counters.OpStartTime = 36000.0;
  for (const auto& [end, hours] : {std::pair{36070.0, "432000"}, std::pair{36100.0, "2"}, std::pair{42000.0, "7200"}}) {
    counters.OpEndTime = end;
    compare(snapshot({{9, 431900}}), snapshot({{9, 432000}}));
    EXPECT_THAT(out(), HasSubstr(std::string("SET QV_S_FINAL_POWER_ON_HOURS=") + hours + "\r\n")) << end;
  }
}

TEST_F(CompareTest, ADriveCannotSpeakToTheCommandInterpreter) {
  identification.Disk_Model = "X&del %TEMP%|\"<>^!";
  compare({}, {});
  EXPECT_THAT(out(), HasSubstr("SET QV_D_MODEL=X_del _TEMP_______\r\n"));
  EXPECT_THAT(form1.Text1.text(), HasSubstr("SET QV_D_MODEL=X&del %TEMP%|\"<>^!\r\n"));
}

TEST(PowerOn, ACounterInSecondsIsDividedTwiceInMinutesOnce) {
  EXPECT_EQ(power_on_hours(7200, 0, 100), 7200);
  EXPECT_EQ(power_on_hours(7200, 100, 70), 7200) << "too short to tell";
  EXPECT_EQ(power_on_hours(432000, 95, 100), 2) << "seconds";
  EXPECT_EQ(power_on_hours(7200, 2, 120), 120) << "minutes";
  EXPECT_EQ(power_on_hours(7200, 1, 120), 7200) << "not more than a minute count would grow";
}

}  // namespace
