#include "health/verdict.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>

namespace {

Health nvme() {
  Health health;
  health.protocol = HealthProtocol::nvme;
  health.answered = true;
  health.critical_warning = 0;
  health.celsius = 40;
  health.spare = 100;
  health.spare_threshold = 10;
  health.used = 3;
  health.power_on_hours = 3149;
  health.power_cycles = 16;
  health.data_read = 1000;
  health.data_written = 2000;
  health.unsafe_shutdowns = 12;
  health.media_errors = 0;
  health.error_log_entries = 22;
  health.critical_minutes = 0;
  return health;
}

Health ata() {
  Health health;
  health.protocol = HealthProtocol::ata;
  health.answered = true;
  health.status_says_failing = false;
  health.attributes = {{.id = 5, .flags = 0x33, .current = 100, .worst = 100, .threshold = 36},
                       {.id = 9, .flags = 0x32, .current = 50, .worst = 50, .threshold = 0},
                       {.id = 194, .flags = 0x22, .current = 30, .worst = 30, .threshold = 0}};
  health.celsius = 30;
  health.reallocated = health.pending = health.uncorrectable = health.reported_uncorrectable = health.crc_errors = 0;
  health.power_cycles = 640;
  return health;
}

Health sas() {
  Health health;
  health.protocol = HealthProtocol::scsi;
  health.answered = true;
  health.asc = health.ascq = 0;
  health.read_uncorrected = health.write_uncorrected = health.grown_defects = 0;
  return health;
}

std::string judged(const Health& before, const Health& after, const RunTotals& totals = {}) {
  return verdict_line(judge(before, after, totals));
}

/// The verdict after `change` of a drive that was well before.
template <typename Change>
std::string after(const Health& well, Change change) {
  Health now = well;
  change(now);
  return judged(well, now);
}

/// The verdict on a drive that was already so before the run.
template <typename Change>
std::string always(Health health, Change change) {
  change(health);
  return judged(health, health);
}

TEST(VerdictTest, ADriveThatIsWellIsGood) {
  EXPECT_EQ(judged(nvme(), nvme()), "GOOD: no sign of trouble in the health log and the run");
  EXPECT_EQ(judged(ata(), ata()), "GOOD: no sign of trouble in the SMART attributes, the SMART status and the run");
  EXPECT_EQ(judged(sas(), sas()), "GOOD: no sign of trouble in the log pages and the run");
}

TEST(VerdictTest, NoPageIsNoDataWithTheReasons) {
  Health none;
  none.unanswered = {{"NVMe log page 02h", 1, "the driver does not pass it on"}, {"X", 5, "no permission"}};
  EXPECT_EQ(judged(none, none), "NO DATA: NVMe log page 02h: the driver does not pass it on; X: no permission");
  none.driver_predicts_failure = false;
  EXPECT_EQ(judged(none, none).substr(0, 7), "NO DATA");
  none.driver_predicts_failure = true;
  EXPECT_EQ(judged(none, none), "FAILING: its driver predicts failure");
}

TEST(VerdictTest, AnAtaDriveFailsByItsOwnWord) {
  EXPECT_EQ(always(ata(),
                   [](Health& h) {
                     h.attributes[0].current = 1;
                     h.pending = 500;
                     h.uncorrectable = 77;
                   }),
            "FAILING: attribute 5 REALLOC_SECTOR_COUNT at 1, threshold 36; 500 sectors pending; "
            "77 sectors uncorrectable");
  EXPECT_EQ(always(ata(), [](Health& h) { h.status_says_failing = true; }),
            "FAILING: its SMART status predicts failure");
  EXPECT_EQ(always(ata(), [](Health& h) { h.attributes[0].current = 36; }),
            "FAILING: attribute 5 REALLOC_SECTOR_COUNT at 36, threshold 36");
  EXPECT_EQ(always(ata(), [](Health& h) { h.attributes[0].current = 37; }).substr(0, 4), "GOOD");
  EXPECT_EQ(always(ata(), [](Health& h) { h.attributes[1].current = 0; }).substr(0, 4), "GOOD") << "no threshold";
  EXPECT_EQ(always(ata(), [](Health& h) { h.attributes[1].threshold = 60; }),
            "DOUBTFUL: attribute 9 POWER_ON_HOURS_COUNT at 50, threshold 60");
}

TEST(VerdictTest, AnNvmeDriveFailsByItsWarningsAndItsSpare) {
  EXPECT_EQ(always(nvme(), [](Health& h) { h.spare = 9; }),
            "FAILING: available spare at 9 percent, threshold 10 percent");
  EXPECT_EQ(always(nvme(), [](Health& h) { h.spare = 10; }).substr(0, 4), "GOOD");
  EXPECT_EQ(always(nvme(), [](Health& h) { h.spare = 0, h.spare_threshold.reset(); }).substr(0, 4), "GOOD");
  const std::array<const char*, 8> grades = {"FAILING", "DOUBTFUL", "FAILING", "FAILING",
                                             "FAILING", "DOUBTFUL", "GOOD",    "GOOD"};
  for (unsigned bit = 0; bit < grades.size(); ++bit) {
    const std::string line =
        always(nvme(), [bit](Health& h) { h.critical_warning = static_cast<std::uint8_t>(1U << bit); });
    EXPECT_EQ(line.substr(0, line.find(':')), grades[bit]) << bit;
  }
}

TEST(VerdictTest, WhatGrewInTheRunIsWorse) {
  EXPECT_EQ(after(ata(), [](Health& h) { h.pending = 8; }), "WORSE: pending sectors grew from 0 to 8");
  EXPECT_EQ(after(ata(), [](Health& h) { h.reported_uncorrectable = 1; }),
            "WORSE: reported uncorrectable errors grew from 0 to 1");
  EXPECT_EQ(after(nvme(), [](Health& h) { h.media_errors = 3; }), "WORSE: media errors grew from 0 to 3");
  EXPECT_EQ(after(sas(), [](Health& h) { h.read_uncorrected = 2; }), "WORSE: uncorrected read errors grew from 0 to 2");
  Health full = nvme();
  full.media_errors = std::numeric_limits<std::uint64_t>::max();
  EXPECT_EQ(judged(full, full), "DOUBTFUL: 18446744073709551615 media errors") << "no growth is known at the largest";
}

TEST(VerdictTest, WhatIsBadButStoodStillIsDoubtful) {
  EXPECT_EQ(always(ata(), [](Health& h) { h.reallocated = 1; }), "DOUBTFUL: 1 sector reallocated");
  EXPECT_EQ(always(ata(), [](Health& h) { h.reported_uncorrectable = 9; }).substr(0, 4), "GOOD");
  EXPECT_EQ(always(ata(), [](Health& h) { h.celsius = 80; }), "DOUBTFUL: 80 degrees Celsius, too warm for any drive");
  EXPECT_EQ(always(nvme(), [](Health& h) { h.used = 100; }), "DOUBTFUL: 100 percent of its rated endurance used");
  EXPECT_EQ(always(nvme(), [](Health& h) { h.warning_celsius = h.celsius; }),
            "DOUBTFUL: 40 degrees Celsius, its limit is 40 degrees Celsius");
  EXPECT_EQ(always(nvme(), [](Health& h) { h.celsius = 84, h.warning_celsius = 85; }).substr(0, 4), "GOOD");
  EXPECT_EQ(always(sas(), [](Health& h) { h.grown_defects = 2; }), "DOUBTFUL: 2 grown defects");
  EXPECT_EQ(always(sas(), [](Health& h) { h.asc = 11, h.ascq = 1; }),
            "DOUBTFUL: the drive reports an exception (ASC 11, ASCQ 1)");
  EXPECT_EQ(always(sas(), [](Health& h) { h.asc = 93, h.ascq = 16; }),
            "FAILING: the drive predicts its failure (ASC 93, ASCQ 16)");
}

TEST(VerdictTest, NotesAreForWhatSpeaksOfMoreThanTheMedium) {
  EXPECT_EQ(after(ata(), [](Health& h) { h.crc_errors = 4; }),
            "NOTE: interface CRC errors grew from 0 to 4, which points at the cable");
  EXPECT_EQ(after(ata(), [](Health& h) { h.power_cycles = 641; }), "NOTE: the drive lost its power meanwhile");
  EXPECT_EQ(always(nvme(), [](Health& h) { h.used = 90; }), "NOTE: 90 percent of its rated endurance used");
  EXPECT_EQ(after(nvme(), [](Health& h) { h.unsafe_shutdowns = 13; }), "NOTE: unsafe shutdowns grew");
  EXPECT_EQ(after(nvme(), [](Health& h) { h.error_log_entries = 900; }).substr(0, 4), "GOOD") << "hosts provoke them";
}

TEST(VerdictTest, WhatTheRunMetCounts) {
  EXPECT_EQ(judged(ata(), ata(), {.failed_transfers = 2}), "DOUBTFUL: 2 transfers of the run failed");
  EXPECT_EQ(judged({}, {}, {.compare_errors = 1}), "DOUBTFUL: 1 compare error in the run");
  EXPECT_EQ(judged(nvme(), nvme(), {.slow_transfers = 1}), "NOTE: 1 slow transfer in the run");
  EXPECT_EQ(judged(nvme(), nvme(), {.highest_celsius = 81}), "DOUBTFUL: 81 degrees Celsius, too warm for any drive");
}

TEST(VerdictTest, APageThatTurnsToNonsenseInTheRunIsNotBelieved) {
  EXPECT_EQ(after(nvme(),
                  [](Health& h) {
                    h.critical_warning = 0xFF;
                    h.power_on_hours = 12;
                  }),
            "DOUBTFUL: the health data after the run contradict those before it: power-on hours fell from 3149 to 12");
  EXPECT_EQ(judged(nvme(), {}), "DOUBTFUL: the drive gave no health data any more after the run");
  EXPECT_EQ(judged({}, nvme()).substr(0, 4), "GOOD") << "only the last snapshot came";
}

}  // namespace
