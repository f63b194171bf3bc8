#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

#include "app/handlers.h"
#include "device/drive_command.h"
#include "form/form1.h"
#include "form/output.h"
#include "health/ask.h"
#include "measure/findings.h"
#include "measure/measure.h"
#include "ops/drive_health.h"
#include "pictures/health_line.h"
#include "smart/identification.h"
#include "tests/support/rig.h"
#include "virtualdisk/state.h"

namespace {

using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

constexpr const char* kDying =
    "sectors 40000\nmodel Dying\nserial D1\nsmart 5 0x33 1 1 36 1900\nsmart 197 0x12 100 100 0 500\n"
    "smart 198 0x10 100 100 0 77\nsmart 241 0x32 100 100 0 0x0605040302FF\n";

class HealthRun : public Rig {
 protected:
  static std::uint32_t run(const std::string& disk, const std::string& switches = "") {
    return start(disk_switch(0, disk) + "/D:0 /OP:READ " + switches);
  }

  /// The last value of a variable; "?" where it is not set.
  static std::string variable(const std::string& name) {
    const std::vector<std::string> lines = lines_with(out(), "SET QV_" + name + "=");
    return lines.empty() ? "?" : lines.back().substr(lines.back().find('=') + 1);
  }
};

TEST_F(HealthRun, ADriveThatDiesByItsOwnWordIsSaidToFailAndNothingElseChanges) {
  EXPECT_EQ(run(kDying), 0U) << "the exit code is nobody's but who asks for it";
  EXPECT_EQ(variable("S_ERRORS"), "0");
  EXPECT_EQ(variable("H_VERDICT"), "FAILING");
  EXPECT_EQ(variable("H_WHY"),
            "attribute 5 REALLOC_SECTOR_COUNT at 1, threshold 36; its SMART status predicts failure; "
            "its driver predicts failure; 500 sectors pending; 77 sectors uncorrectable; 1900 sectors reallocated");
  EXPECT_EQ(variable("H_PENDING"), "500");
  const std::string& report = out();
  EXPECT_GT(report.find("\r\nHEALTH\r\n======\r\n"), report.find("SMART DATA AFTER OPERATION")) << "the last block";
  EXPECT_GT(report.find("SET QV_H_VERDICT"), report.find("HEALTH"));
  EXPECT_EQ(run(kDying, "/EXIT:VERDICT"), 100'006U);
}

TEST_F(HealthRun, ACommandThatTransferredNothingIsNotBlamedForTheRunBefore) {
  open_on("sectors 40000\nserial S\nsmart 5 0x33 100 100 36 0\nfail read 5 1\n");
  click(CmdRead_Click);
  EXPECT_THAT(form1.Text1.text(), HasSubstr("SET QV_H_WHY=1 transfer of the run failed"));
  headless::desktop.answers = {"CANCEL"};
  click(CmdRndRD_Click);
  EXPECT_THAT(form1.Text1.text(), HasSubstr("SET QV_H_VERDICT="));
  EXPECT_THAT(form1.Text1.text(), Not(HasSubstr("of the run failed")));
}

TEST_F(HealthRun, TheExitCodeIsTheVerdictsOnlyOfARunThatCameToItsEnd) {
  const std::string well = "sectors 40000\nserial S\nbus nvme\n";
  EXPECT_EQ(run(well, "/EXIT:VERDICT"), 100'001U);
  EXPECT_EQ(run(well + "health used 95\n", "/EXIT:VERDICT"), 100'002U);
  EXPECT_EQ(run("sectors 40000\nbus nvme hidden\n", "/EXIT:VERDICT"), 100'003U);
  EXPECT_EQ(run(well + "health used 101\n", "/EXIT:VERDICT"), 100'004U);
  EXPECT_EQ(run(well + "grow media-errors 1 on read\n", "/EXIT:VERDICT"), 100'005U);
  EXPECT_EQ(start("/D:3 /OP:READ /EXIT:VERDICT"), 1U) << "missing";
  EXPECT_EQ(run(well, "/EXIT:VERDICT /SERIAL:OTHER"), 1U) << "refused";
  EXPECT_EQ(run(well + "fail read 0 1 5\n", "/EXIT:VERDICT"), 1U) << "failures that the verdict does not tell of";
  headless::desktop.at_pump = [](int) { console_cancel(); };
  EXPECT_EQ(run(well, "/EXIT:VERDICT"), 3U) << "cancelled";
  EXPECT_THAT((start("/EXIT:VERDICT"), err()), HasSubstr("/EXIT needs /OP."));
}

TEST_F(HealthRun, AnNvmeDriveIsKnownAndWrittenToByItsOwnSerialNumber) {
  const std::string disk = "sectors 40000\nmodel Fast Drive\nserial S3RIAL\nfirmware FW9\nbus nvme\n";
  EXPECT_EQ(start(disk_switch(0, disk) + "/LIST"), 0U);
  EXPECT_EQ(out(), "0\tFast Drive\tS3RIAL\tFW9\t40000\t19Mb\tNVMe\r\n");
  EXPECT_EQ(start(disk_switch(0, disk) + "/D:0 /OP:WRITE /SERIAL:0025_3800_0000_0001."), 1U) << "that is the EUI-64";
  EXPECT_EQ(start(disk_switch(0, disk) + "/D:0 /OP:WRITE /SERIAL:S3RIAL"), 0U);
  EXPECT_EQ(variable("D_MODEL"), "Fast Drive");
  EXPECT_EQ(variable("H_VERDICT"), "GOOD");
  EXPECT_EQ(variable("H_SPARE"), "100");
  EXPECT_EQ(variable("H_BUS"), "NVMe");
  EXPECT_THAT(form1.Text1.text(),
              HasSubstr("serial number S3RIAL, firmware FW9, bus NVMe, told by Identify Controller"));
}

TEST_F(HealthRun, WhatWasAskedInVainIsSaidWithTheReason) {
  run("sectors 40000\nmodel M\nbus nvme hidden\n");
  EXPECT_EQ(variable("D_MODEL"), "M") << "the descriptor knows it";
  EXPECT_THAT(variable("H_WHY"), HasSubstr("NVMe log page 02h: the driver does not pass it on"));
  EXPECT_THAT(out(), HasSubstr("Not answered: NVMe log page 02h, error 1: the driver does not pass it on\r\n"));
  run("sectors 40000\nmodel M\nbus usb\n");
  EXPECT_THAT(variable("H_WHY"), HasSubstr("the bridge does not say that it passes ATA commands on, so it got none"));
  EXPECT_FALSE(virtualdisk::state.disks[0]->hangs) << "an unknown bridge is left alone";
  EXPECT_EQ(variable("D_TOTERR"), "0");
  EXPECT_EQ(reason_of(5), "no permission: run as administrator");
}

TEST_F(HealthRun, EveryBusTellsItsHealthInItsOwnWay) {
  const std::string pages = "smart 5 1 100 100 36 0\nsmart 194 0 1 1 0 41\n";
  run("sectors 40000\nserial U\nbus usb sat\n" + pages);
  EXPECT_EQ(variable("H_VERDICT") + variable("H_TEMP"), "GOOD41");
  EXPECT_EQ(drive_health.after->status_says_failing, std::optional(false));
  run("sectors 40000\nserial U\nbus usb sat\nsmart 5 1 3 3 36 0\n");
  EXPECT_THAT(variable("H_WHY"), StartsWith("attribute 5 REALLOC_SECTOR_COUNT at 3, threshold 36; its SMART status"));
  for (const std::string bus : {"sas", "raid"}) {
    run("sectors 40000\nmodel MAKER Disk\nserial SAS1\nhealth temperature 33\nbus " + bus);
    EXPECT_EQ(variable("H_VERDICT") + variable("H_TEMP"), "GOOD33") << bus;
    EXPECT_EQ(variable("D_MODEL") + variable("D_SNO"), "MAKER DiskSAS1");
  }
  run("sectors 40000\nbus sas\nhealth asc 0x5D\nhealth failing 1\n");
  EXPECT_EQ(variable("H_WHY"), "the drive predicts its failure (ASC 93, ASCQ 0); its driver predicts failure");
  run("sectors 40000\nbus sas\ngrow write-uncorrected 2 on read\n");
  EXPECT_EQ(variable("H_WHY"), "uncorrected write errors grew from 0 to 4");
}

TEST_F(HealthRun, APageThatTurnsToNonsenseIsNotBelieved) {
  write_file("ff.bin", std::string(512, '\xFF'));
  run("sectors 40000\nbus nvme\nhealth later ff.bin\n");
  EXPECT_EQ(variable("H_VERDICT") + variable("H_WHY"), "DOUBTFULthe drive gave no health data any more after the run");
  EXPECT_THAT(out(), HasSubstr("Not answered: NVMe log page 02h: the page is none that a drive can mean\r\n"));
  run("sectors 40000\nbus nvme\ngrow error-log-entries 5 on snapshot\ngrow error-log-entries 7 on read\n");
  EXPECT_EQ(variable("H_VERDICT"), "GOOD");
}

TEST_F(HealthRun, TheNumberOfAnScsiPortIsNoProof) {
  const std::string disk = "sectors 40000\nmodel M\nserial P1\nbus miniport\ngeometry none\n";
  start(disk_switch(2, disk) + "/LIST");
  EXPECT_EQ(out(), "2\tM\tP1\t1.0\t40000\t19Mb\tSCSI\tidentity of SCSI port 2\r\n");
  EXPECT_EQ(start(disk_switch(2, disk) + "/D:2 /OP:WRITE /SERIAL:P1"), 1U);
  EXPECT_THAT(err(), HasSubstr("was told by the SCSI port of that number, which may be another drive's"));
  EXPECT_EQ(count_of(out(), "Writing"), 0);
}

TEST_F(HealthRun, AnAnswerThatCarriesNoPageIsNotBelieved) {
  std::vector<std::uint8_t> reply(528);
  EXPECT_TRUE(carries_page(reply, 528));
  EXPECT_FALSE(carries_page(reply, 527)) << "a byte is missing";
  reply[4] = 1;
  EXPECT_FALSE(carries_page(reply, 528)) << "the driver says that the command failed";
}

TEST_F(HealthRun, TheJsonFileHasBothSnapshotsWithEveryByte) {
  run(kDying, "/JSON:" + path("r.json"));
  const std::string json = read_file(path("r.json"));
  EXPECT_THAT(json, HasSubstr("\"verdict\": \"FAILING\""));
  EXPECT_THAT(json, HasSubstr("\"raw_bytes\": \"FF0203040506\""));
  EXPECT_EQ(count_of(json, "\"name\": \"SMART attribute values\""), 2);
  EXPECT_THAT(json, HasSubstr("\"pending_sectors\": 500"));
  run("sectors 40000\nbus nvme hidden\n", "/JSON:" + path("r.json"));
  EXPECT_THAT(read_file(path("r.json")), HasSubstr("\"answered\": false")) << "no SMART is not no attributes";
  start(disk_switch(0, kDying) + "/D:0 /OP:SMART /EXIT:VERDICT /JSON:" + path("r.json"));
  EXPECT_EQ(output.asked_code, 100'006);
  EXPECT_THAT(read_file(path("r.json")), HasSubstr("\"exit_code\": 100006"));
}

TEST_F(HealthRun, TheTemperatureIsLookedAtBetweenTransfersAndCostsThemNothing) {
  const std::string disk = "sectors 200000\nbus nvme\nrate 1\ngrow temperature 1 on read\nrequests 20\n";
  run(disk);
  const TemperatureTrack& track = run_findings.temperature;
  ASSERT_EQ(track.samples.size(), 4U) << "at the start and every 30 of 98 seconds";
  EXPECT_EQ(track.samples[0].celsius, 34);
  EXPECT_NEAR(track.samples[1].seconds, 30.0, 10.0);
  EXPECT_GT(track.samples[1].celsius, 34);
  EXPECT_EQ(variable("H_TEMP_HIGHEST"), std::to_string(*track.highest));
  const double longest = measure.latency.slowest.at(0).seconds;
  EXPECT_NEAR(longest, 10.0, 0.001) << "the 20 ms of a look are in no transfer of 10 MiB";
  run("sectors 200000\nbus nvme\nrate 1\nrequests 60\n", "/MAXTEMP:50");
  EXPECT_TRUE(run_findings.temperature.samples.empty()) << "a drive that takes its time is not asked";
  EXPECT_THAT(err(), HasSubstr("/MAXTEMP does nothing"));
  EXPECT_THAT(out(), HasSubstr("/MAXTEMP did nothing: the drive does not tell its temperature"));
}

TEST_F(HealthRun, ARunPausesUntilTheDriveIsFiveDegreesCooler) {
  const std::string disk = "sectors 200000\nbus nvme\nrate 1\nhealth temperature 48\ngrow temperature 1 on read\n";
  std::vector<std::string> statuses;
  headless::desktop = {};
  headless::desktop.at_pump = [&statuses](int) {
    if (form1.TxtStatus.text().rfind("Paused at", 0) != 0) return;
    if (statuses.empty() || statuses.back() != form1.TxtStatus.text()) {
      statuses.push_back(form1.TxtStatus.text());
      virtualdisk::set_health(virtualdisk::state.disks[0]->health,
                              {virtualdisk::health_field("temperature"), statuses.size() == 1 ? 46U : 45U});
    }
  };
  run(disk, "/MAXTEMP:50");
  EXPECT_THAT(statuses, ElementsAre("Paused at 51 degrees Celsius, goes on at 45",
                                    "Paused at 46 degrees Celsius, goes on at 45"));
  EXPECT_EQ(run_findings.temperature.pauses, 1);
  EXPECT_NEAR(run_findings.temperature.paused_seconds, 20.0, 0.5);
  EXPECT_THAT(out(), HasSubstr("Paused 1 time, 20 seconds, for the temperature\r\n"));
  headless::desktop.at_pump = [](int) {
    if (form1.TxtStatus.text().rfind("Paused at", 0) == 0) console_cancel();
  };
  EXPECT_EQ(run(disk, "/MAXTEMP:50"), 3U) << "Cancel ends a pause";
}

TEST_F(HealthRun, TheHistorySaysWhatGrewSince) {
  const std::string folder = path("");
  const auto disk = [](int pending) {
    return "sectors 40000\nmodel H\nserial H/1\nsmart 197 0 100 100 0 " + std::to_string(pending) + "\n";
  };
  headless::desktop.now = {2026, 3, 2, 9, 0, 0};
  run(disk(0), "/HISTORY:" + folder);
  EXPECT_EQ(variable("H_SINCE"), "");
  headless::desktop.now = {2026, 11, 5, 9, 0, 0};
  run(disk(8), "/HISTORY:" + folder);
  EXPECT_EQ(variable("H_SINCE"), "pending sectors 0 on 2 March, 8 now");
  EXPECT_THAT(out(), HasSubstr("Grown since: pending sectors 0 on 2 March, 8 now\r\n"));
  const std::string file = path("sectorix-H_1.jsonl");
  EXPECT_EQ(count_of(read_file(file), "\r\n"), 2);
  std::ofstream(file, std::ios::app | std::ios::binary) << "{\"date\":\"2026-12";
  headless::desktop.now = {2027, 1, 5, 9, 0, 0};
  run(disk(9), "/HISTORY:" + folder);
  EXPECT_EQ(variable("H_SINCE"), "pending sectors 8 on 5 November 2026, 9 now") << "a torn line is passed over";
  EXPECT_EQ(count_of(read_file(file), "\r\n{"), 3) << "and the next begins on a line of its own";
  run("sectors 40000\nmodel Other\nserial H-1\nsmart 197 0 100 100 0 10\n", "/HISTORY:" + folder);
  EXPECT_EQ(variable("H_SINCE"), "") << "another drive";
  EXPECT_EQ(run(disk(9), "/HISTORY:" + path("none")), 100'010U);
  EXPECT_THAT(err(), HasSubstr("cannot be written: error "));
}

TEST_F(HealthRun, TheDriveButtonsTellWhatDrivesAre) {
  open(disk_switch(0, "sectors 40000\nmodel A\nserial A1\n") +
       disk_switch(3, "sectors 4000000\nmodel B\nserial B1\nbus nvme\n"));
  EXPECT_EQ(form1.drive_tips[0].text(),
            "Select the desired disk (as detected by Windows)\r\nDrive 0: A, serial number A1, 19Mb, SATA");
  EXPECT_EQ(form1.drive_tips[3].text(), "Drive 3: B, serial number B1, 1953Mb, NVMe");
  EXPECT_EQ(form1.drive_tips[1].text(), "");
}

TEST_F(HealthRun, TheLineAboveTheGraphIsAboutTheSelectedDrive) {
  open(disk_switch(0, kDying) + disk_switch(1, "sectors 40000\nserial S\n"));
  EXPECT_EQ(health_words().text, "Drive 0: its health is read with the next command.");
  click(CmdRead_Click);
  EXPECT_EQ(health_words().grade, "FAILING");
  EXPECT_THAT(health_words().text, StartsWith("attribute 5"));
  EXPECT_THAT(form1.Text1.text(), HasSubstr("SET QV_H_SINCE=\r\n\r\n\r\nBAD PLACES\r\n"));
  click(Option2_Click);
  EXPECT_EQ(health_words().grade, "");
}

}  // namespace
