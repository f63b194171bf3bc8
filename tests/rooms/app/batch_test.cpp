// What a batch file meets: values, mistakes, help, and how a run says that it ended.

#include <gmock/gmock.h>

#include <filesystem>
#include <nlohmann/json.hpp>

#include "app/handlers.h"
#include "form/asked.h"
#include "form/form1.h"
#include "form/output.h"
#include "results/results.h"
#include "tests/support/rig.h"

namespace {

using nlohmann::json;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;

class Batch : public Rig {
 protected:
  /// Starts a run of /OP on drive 0 with a JSON file.
  static std::uint32_t run(const std::string& disk_file, const std::string& switches) {
    headless::desktop.out.clear();
    headless::desktop.err.clear();
    return start(disk_switch(0, disk_file) + "/D:0 /JSON:" + path("r.json") + " " + switches);
  }
  static json document() { return json::parse(read_file(path("r.json"))); }

  /// The last line of the variables.
  static std::string result() {
    const std::vector<std::string> lines = lines_with(out(), "SET QV_RESULT=");
    return lines.size() == 1 ? lines.front() : std::to_string(lines.size()) + " lines";
  }

  static void expect(const std::string& outcome) {
    EXPECT_EQ(result(), "SET QV_RESULT=" + outcome);
    EXPECT_EQ(document()["outcome"], outcome);
  }
};

constexpr const char* kDisk = "sectors 100000\nserial S1\n";

TEST_F(Batch, NumbersAreTakenAsPeopleWriteThem) {
  const auto reads = [](const std::string& switches, const std::string& what) {
    EXPECT_EQ(run(kDisk, "/OP:READ " + switches), 0U) << switches << err();
    EXPECT_THAT(out(), HasSubstr("Reading " + what + " on drive 0\r\n")) << switches;
  };
  reads("/START:0x200 /COUNT:0X10", "16 sectors starting at LBA 512");
  reads("/START:1,000 /COUNT:10,000", "10000 sectors starting at LBA 1000");
  reads("/START:1MiB /COUNT:1.5mb", "2929 sectors starting at LBA 2048");
  reads("/START:50% /COUNT:12.5%", "12500 sectors starting at LBA 50000");
  reads("/START:50%", "50000 sectors starting at LBA 50000");
  reads("/START:50% /COUNT:50%", "50000 sectors starting at LBA 50000");
  reads("/START:29% /COUNT:71%", "71000 sectors starting at LBA 29000");
  reads("/START:0.7% /COUNT:64.064kb", "125 sectors starting at LBA 700");
  reads("/COUNT:100%", "100000 sectors starting at LBA 0");
  EXPECT_EQ(run(kDisk, "/OP:READ /START:100%"), 1U) << "there is no sector behind the last";
  EXPECT_EQ(run(kDisk, "/OP:READ /START:50% /COUNT:60%"), 1U);
  EXPECT_EQ(run("sectors 100000\nlogical 4096\n", "/OP:READ /START:33.3333%"), 0U);
  EXPECT_THAT(out(), HasSubstr("starting at LBA 33328")) << "a whole logical sector";
}

TEST_F(Batch, ABadValueSaysWhatIsGood) {
  for (const char* value : {"",
                            "x",
                            "-5",
                            "0x",
                            "0x1G",
                            "1,00",
                            "1,0000",
                            ",100",
                            "1000,000",
                            "1e3",
                            "101%",
                            "%",
                            "-1%",
                            "GB",
                            "-1GB",
                            "10XB",
                            "99999999999999999999",
                            "9999999999TB",
                            "1.5",
                            "0x-5",
                            "+5",
                            "1.%",
                            ".5%",
                            "1.1234567%",
                            "100.1%",
                            "1.5.5GB"}) {
    EXPECT_EQ(run(kDisk, std::string("/OP:READ /START:") + value), 1U) << value;
    EXPECT_EQ(err(), std::string("\"/START:") + value +
                         "\" has a bad value: good is an LBA or a place, as 1000, 0x200, 1,000, 10GB, 512MiB or "
                         "50%.\r\n");
  }
  const auto says = [](const std::string& line, const char* what) {
    EXPECT_EQ(run(kDisk, line), 1U) << line;
    EXPECT_THAT(err(), HasSubstr(what)) << line;
  };
  says("/OP:REED", "good is READ, WRITE, VERIFY,");
  says("/OP:READ /COUNT:0%", "has a bad value: good is sectors or an amount");
  says("/OP:READ /COUNT:100B", "has a bad value");
  says("/OP:READ /COUNT:1KB /START", "\"/START\" needs a value behind a colon: good is an LBA");
  says("/OP:READ /QUIET:yes", "/QUIET takes no value.");
  says("/OP:READ /PASSES:10GB", "good is a number from 1 to 2,147,483,647.");
  says("/OP:READ /MAXTEMP:200", "good is degrees Celsius from 20 to 120.");
  says("/OP:RANDOMREAD /COUNT:1%", "at most 2097152");
}

TEST_F(Batch, WhatLooksLikeASwitchAndIsNoneIsAMistakeWithTheNearestOne) {
  const auto says = [](const std::string& line, const char* what) {
    headless::desktop.err.clear();
    EXPECT_EQ(start(line), 1U) << line;
    EXPECT_EQ(count_of(err(), "\n"), 1) << line;
    EXPECT_THAT(err(), HasSubstr(what)) << line;
  };
  const std::string disk = disk_switch(0, kDisk);
  says(disk + "/D:0 /OP:READ --json:x", "\"--json:x\" is not understood: the nearest switch is /JSON; /? lists");
  says(disk + "/D:0 /OP:READ /CUONT:5", "the nearest switch is /COUNT;");
  says(disk + "/D:0 -raport", "the nearest switch is /REPORT;");
  says("/LIST --drive=1", "the nearest switch is /D:n;");
  says("/LIST -d:0", "the nearest switch is /D:n;");
  says(disk + "/D:0 /rep:x", "the nearest switch is /REPORT;");
  says(disk + "/D:0 /OP:READ word", "\"word\" is not understood; /? lists all switches.");
  open(disk + "/D:0 some text");
  EXPECT_TRUE(form1.CommandLineMode) << "text is no switch";
  open("-x");
  EXPECT_FALSE(form1.CommandLineMode) << "beside nothing that is a switch";
}

TEST_F(Batch, EveryWayToAskForHelpOrTheVersionIsAnswered) {
  for (const char* line : {"/?", "-?", "/h", "/HELP", "-h", "--help", "--HELP", "/D:0 --help"}) {
    headless::desktop.out.clear();
    EXPECT_EQ(start(line), 0U) << line;
    EXPECT_THAT(out(), HasSubstr("Exit codes of /OP:\r\n0 clean\r\n")) << line;
    EXPECT_THAT(out(), HasSubstr("  sectorix /D:1 /OP:READ ")) << line;
  }
  for (const char* line : {"/VERSION", "--version"}) {
    headless::desktop.out.clear();
    EXPECT_EQ(start(line), 0U) << line;
    EXPECT_EQ(out(), "Sectorix v.1.0.0 - disk read, write and test\r\n");
  }
}

TEST_F(Batch, ARunSaysInAWordHowItEnded) {
  EXPECT_EQ(run(kDisk, "/OP:READ"), 0U);
  expect("ok");
  EXPECT_EQ(document()["reason"], "");
  EXPECT_EQ(run(kDisk + std::string("fail read 50 1\n"), "/OP:READ"), 1U);
  expect("errors");
  EXPECT_EQ(run(kDisk + std::string("fail read 50 1\n"), "/OP:SEARCH /FIND:tx"), 0U);
  expect("errors");
  EXPECT_EQ(run(kDisk + std::string("smart 198 5 100 100 0 5\n"), "/OP:SMART"), 0U);
  expect("ok");
  EXPECT_EQ(run(kDisk, "/OP:READ /SERIAL:other"), 1U);
  expect("refused");
  EXPECT_THAT(document()["reason"], HasSubstr("not \"other\": nothing was done."));
  EXPECT_EQ(document()["exit_code"], 1);
  EXPECT_EQ(run("sectors 10\n", "/OP:RANDOMREAD /COUNT:11"), 1U);
  expect("refused");
  EXPECT_EQ(run(kDisk, "/OP:RESTORE /SERIAL:S1"), 1U);
  expect("refused");
  EXPECT_EQ(run(kDisk, "/OP:READ /COUNT:5x"), 1U);
  expect("mistake");
  EXPECT_THAT(document()["reason"], HasSubstr("\"/COUNT:5x\" has a bad value"));
  headless::desktop.at_pump = [](int pump) {
    if (pump == 4) headless::press_control_c();
  };
  headless::desktop.pumps = 0;
  EXPECT_EQ(run(kDisk, "/OP:READ"), 3U);
  expect("cancelled");
}

TEST_F(Batch, AMissingDriveGetsItsJsonAndNoOtherFile) {
  EXPECT_EQ(start("/D:4 /OP:READ /JSON:" + path("r.json") + " /CSV:" + path("r.csv") + " /MAP:" + path("r.map")), 1U);
  expect("missing");
  EXPECT_EQ(document()["reason"], "Drive 4 does not exist!");
  EXPECT_EQ(document()["disk"]["number"], 4);
  EXPECT_EQ(read_file(path("r.csv")) + read_file(path("r.map")), "");
}

TEST_F(Batch, AMistakesJsonNeverGoesToADisk) {
  const std::string image = write_image("victim.img", 100);
  const std::string before = read_file(image);
  EXPECT_EQ(start("/JSON:" + image + " /D:0 /OP:READ /FOO /VDISK:0=" + image), 1U);
  EXPECT_EQ(start("/JSON:" + image + " /D:0 /OP:READ /VDISK:9=" + image), 1U);
  EXPECT_EQ(start("/JSON:" + image + " /D:0 /OP:READ /COUNT:x /VDISK:0=" + image), 1U);
  EXPECT_EQ(start("/D:0 /OP:READ /COUNT:x /VARS:" + image), 1U);
  EXPECT_EQ(start("/D:0 /OP:READ /COUNT:x /JSON:" + path("of.img") + " " +
                  disk_switch(0, "image " + write_image("of.img", 50) + "\n")),
            1U);
  EXPECT_EQ(read_file(image), before);
  EXPECT_EQ(read_file(path("of.img")).size(), 50U * 512U);
  EXPECT_EQ(start("/D:0 /OP:READ /COUNT:x /VARS:" + path("v.cmd")), 1U);
  EXPECT_EQ(start("/D:0 /OP:READ /COUNT:x /VARS:" + path("v.cmd")), 1U);
  EXPECT_EQ(read_file(path("v.cmd")), "SET QV_RESULT=mistake\r\n\r\nSET QV_RESULT=mistake\r\n\r\n");
}

TEST_F(Batch, ARunThatDidNotBeginReplacesOnlyWhatAnEarlierRunWrote) {
  const std::string image = write_image("other.img", 100);
  const std::string before = read_file(image);
  const std::string good = disk_switch(0, kDisk);
  const std::string denied = disk_switch(2, "sectors 10\ndenied\n");
  for (const std::string line : {"/D:4 /OP:READ", "/D:0 /OP:READ /SERIAL:NO", "/D:0 /OP:READ /START:200000",
                                 "/D:2 /OP:SMART", "/D:0 /OP:READ /FOO"}) {
    headless::desktop.out.clear();
    EXPECT_EQ(start(good + denied + line + " /JSON:" + image + " /VARS:" + image), 1U) << line;
    EXPECT_EQ(start(good + denied + line + " /JSON:" + image), 1U) << line;
    EXPECT_EQ(start(good + denied + line + " /VARS:" + image), 1U) << line;
    EXPECT_EQ(read_file(image), before) << line;
    EXPECT_EQ(count_of(out(), "SET QV_RESULT="), 3) << "where it can be seen";
    const std::string json = path("again.json");
    EXPECT_EQ(start(good + denied + line + " /JSON:" + json), 1U);
    EXPECT_EQ(start(good + denied + line + " /JSON:" + json), 1U);
    EXPECT_EQ(json::parse(read_file(json))["operation"]["cancelled"], false) << line;
    EXPECT_EQ(start(good + denied + line + " /VARS:" + write_file("mine.cmd", "SET QV_OF=mine\r\n")), 1U);
    EXPECT_THAT(read_file(path("mine.cmd")), HasSubstr("mine\r\nSET QV_RESULT="));
  }
}

TEST_F(Batch, OneBadNameDoesNotSilenceTheOtherFiles) {
  const std::string line = disk_switch(0, kDisk) + "/D:0 /OP:READ /HTML:" + path("no/such.html");
  EXPECT_EQ(start(line + " /JSON:" + path("r.json") + " /VARS:" + path("v.cmd")), 1U);
  EXPECT_EQ(document()["outcome"], "mistake");
  EXPECT_EQ(read_file(path("v.cmd")), "SET QV_RESULT=mistake\r\n\r\n");
  EXPECT_EQ(start(line + " /VARS:" + path("no/v.cmd")), 1U);
  EXPECT_EQ(result(), "SET QV_RESULT=mistake");
}

TEST_F(Batch, AResumedMapIsReplacedByAMapAlone) {
  const std::string disk = disk_switch(0, kDisk) + "/D:0 /OP:READ /COUNT:1000 ";
  EXPECT_EQ(start(disk + "/MAP:" + path("m.map")), 0U);
  const std::string before = read_file(path("m.map"));
  for (const char* file : {"/JSON:", "/HTML:", "/REPORT:", "/VARS:", "/CSV:"}) {
    EXPECT_EQ(start(disk + "/RESUME:" + path("m.map") + " " + file + path("m.map")), 1U) << file;
    EXPECT_EQ(read_file(path("m.map")), before) << file;
  }
  EXPECT_EQ(start(disk + "/RESUME:" + path("m.map") + " /MAP:" + path("m.map")), 0U);
  EXPECT_EQ(start(disk + "/RESUME:" + path("m.map") + " /MAP:" + path("M.MAP")), 0U) << "the same file to Windows";
}

TEST_F(Batch, BitsTellKindsApart) {
  const auto bits = [](const std::string& disk_file, const std::string& switches) {
    return run(disk_file, switches + " /EXIT:BITS");
  };
  EXPECT_EQ(bits(kDisk, "/OP:READ"), 0U);
  EXPECT_EQ(bits(kDisk + std::string("fail read 50 1\n"), "/OP:READ"), 16U + 1024U) << "failed transfers are doubtful";
  EXPECT_EQ(document()["exit_code"], 16 + 1024);
  EXPECT_EQ(bits(kDisk + std::string("fail read 50 1\n"), "/OP:READ /STOPAFTER:1"), 16U + 512U + 1024U);
  EXPECT_EQ(bits(kDisk, "/OP:VERIFY /PATTERN:55"), 32U + 1024U);
  EXPECT_EQ(bits(kDisk, "/OP:READ /SERIAL:other"), 2U);
  EXPECT_EQ(bits("denied\n" + std::string(kDisk), "/OP:READ"), 2U);
  EXPECT_EQ(start("/D:4 /OP:READ /EXIT:BITS"), 4U);
  EXPECT_EQ(bits(kDisk, "/OP:READ /FOO"), 1U);
  headless::desktop.at_pump = [](int pump) {
    if (pump == 4) headless::press_control_c();
  };
  headless::desktop.pumps = 0;
  EXPECT_EQ(bits(kDisk, "/OP:READ"), 8U);
  headless::desktop.at_pump = nullptr;
  headless::desktop.out_fails = 112;
  EXPECT_EQ(bits(kDisk + std::string("fail read 50 1\n"), "/OP:READ"), 16U + 256U + 1024U);
}

TEST_F(Batch, AResultThatCannotBeWrittenHasItsOwnExitCode) {
  const std::string folder = path("gone");
  for (const char* file : {"/CSV:", "/JSON:", "/GRAPH:", "/HTML:", "/BADLIST:", "/MAP:"}) {
    std::filesystem::create_directory(folder);
    headless::desktop.pumps = 0;
    headless::desktop.at_pump = [&](int pump) {
      if (pump == 3) std::filesystem::remove_all(folder);
    };
    EXPECT_EQ(start(disk_switch(0, kDisk + std::string("fail read 50 1\n")) + "/D:0 /OP:READ " + file + folder + "/r"),
              100'010U)
        << file;
    EXPECT_THAT(out(), HasSubstr("SET QV_RESULT=errors")) << file;
  }
  headless::desktop.at_pump = nullptr;
  headless::desktop.out_fails = 112;
  EXPECT_EQ(run(kDisk, "/OP:READ /REPORT:" + path("r.txt") + " /HTML:" + path("r.html")), 100'010U);
  EXPECT_EQ(document()["exit_code"], 100'010) << "the variables came behind it";
  EXPECT_THAT(read_file(path("r.html")), HasSubstr("<td>errors</td>"));
}

TEST_F(Batch, AccessDeniedIsToldAsSuch) {
  const std::string denied = "sectors 4096\nmodel M\nserial S\nfirmware F\ndenied\n";
  EXPECT_EQ(run(denied, "/OP:READ"), 1U);
  expect("refused");
  EXPECT_EQ(err(), "Drive 0: Access is denied. Start Sectorix as administrator, or from an elevated prompt.\r\n");
  EXPECT_THAT(out(), Not(HasSubstr("not exist")));
  headless::desktop.out.clear();
  EXPECT_EQ(start("/LIST " + disk_switch(0, denied) + disk_switch(2, "sectors 10\nserial T\n")), 0U);
  EXPECT_THAT(out(), HasSubstr("0\tM\tS\tF\t4096\t2Mb\tSATA\taccess denied\r\n2\t"));
  EXPECT_THAT(err(), EndsWith("start Sectorix as administrator, or from an elevated prompt.\r\n"));
  open(disk_switch(0, denied));
  EXPECT_THAT(form1.TxtStatus.text(), HasSubstr("Drive 0: Access is denied. "));
}

TEST_F(Batch, ThePageHoldsWhatTheRunFound) {
  EXPECT_EQ(start("/VDISK:0=DEMO /D:0 /OP:READ /START:600000 /COUNT:100000 /PINPOINT /HTML:" + path("r.html")), 2U);
  const std::string page = read_file(path("r.html"));
  for (const char* part :
       {"<p class=\"verdict worse\">WORSE: ", "PRACTICE-0001", "<h2>Transfer rate</h2>\n<svg ", "<h2>Map</h2>",
        "fill=\"#000000\"", "<td class=\"number\">624000</td>", "<td>unreadable</td>", "HEALTH\n======\n",
        "<td>errors</td>", "</pre>\n</body>\n</html>\n"}) {
    EXPECT_THAT(page, HasSubstr(part));
  }
  EXPECT_EQ(count_of(page, "http"), 2) << "the namespace of graph and map";
  EXPECT_EQ(run("sectors 1000\nmodel <b>&\"x\n", "/OP:READ /HTML:" + path("r.html")), 0U);
  EXPECT_THAT(read_file(path("r.html")), Not(HasSubstr("<b>")));
}

TEST_F(Batch, TheButtonSavesTheLastRunsPageAndAsksBeforeItReplaces) {
  open(disk_switch(0, kDisk));
  EXPECT_EQ(why_no_page(), "There is no result to save yet: run a command first.");
  click(CmdRead_Click);
  EXPECT_EQ(why_no_page(), "");
  const std::string file = path("saved.html");
  headless::desktop.answers = {file};
  click(save_page);
  EXPECT_THAT(read_file(file), HasSubstr("<td>ok</td>"));
  EXPECT_EQ(form1.TxtStatus.text(), "Saved as " + file);
  write_file("saved.html", "mine");
  headless::desktop.answers = {file, "CANCEL"};
  click(save_page);
  EXPECT_EQ(read_file(file), "mine");
}

TEST_F(Batch, TheStatusSaysWhyNothingHappens) {
  open(disk_switch(0, kDisk));
  headless::desktop.answers = {"fast"};
  click(CmdSlowRate_Click);
  EXPECT_EQ(form1.TxtStatus.text(), "Slow limit: \"fast\" is neither a number of MB/s nor AUTO; the limit is 10 MB/s.");
}

}  // namespace
