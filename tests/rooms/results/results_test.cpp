#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <regex>
#include <sstream>
#include <vector>

#include "app/handlers.h"
#include "eventlog/event_log.h"
#include "form/form1.h"
#include "form/output.h"
#include "measure/measure.h"
#include "results/csv_rows.h"
#include "results/json_text.h"
#include "results/output_file.h"
#include "results/result.h"
#include "tests/support/rig.h"

namespace {

using nlohmann::json;
using ::testing::Contains;
using ::testing::ContainsRegex;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

struct Row {
  double seconds = 0.0;
  std::string operation;
  std::int64_t lba = 0;
  std::int64_t sectors = 0;
  double milliseconds = 0.0;
  double rate = 0.0;
  std::int64_t error = 0;
  double beyond = 0.0;
};

class ResultsTest : public Rig {
 protected:
  /// The three switches, with files in this test's folder.
  static std::string files() {
    return " /CSV:" + path("r.csv") + " /JSON:" + path("r.json") + " /GRAPH:" + path("r.svg") + " ";
  }
  /// Drive 0, made from `disk_file`, and the switch that names it.
  static std::string drive_0(const std::string& disk_file) { return disk_switch(0, disk_file) + "/D:0 "; }
  static std::vector<Row> rows() {
    std::istringstream lines(read_file(path("r.csv")));
    std::vector<Row> all;
    std::string line;
    std::getline(lines, line);
    EXPECT_EQ(line, "seconds,operation,lba,sectors,milliseconds,mb_per_s,error,beyond_ms\r");
    while (std::getline(lines, line)) {
      std::istringstream fields(line);
      std::vector<std::string> texts;
      for (std::string text; std::getline(fields, text, ',');) texts.push_back(text);
      if (texts.size() != 8) throw std::runtime_error("not eight fields: " + line);
      all.push_back({std::stod(texts[0]), texts[1], std::stoll(texts[2]), std::stoll(texts[3]), std::stod(texts[4]),
                     std::stod(texts[5]), std::stoll(texts[6]), std::stod(texts[7])});
    }
    return all;
  }
  static json document() { return json::parse(read_file(path("r.json"))); }

  /// The LBA ranges of the SVG's marks of one kind: first, and the first behind.
  static std::vector<std::pair<std::int64_t, std::int64_t>> marks(const std::string& kind) {
    const std::string svg = read_file(path("r.svg"));
    const std::regex mark("class=\"" + kind + R"re(" data-first-lba="(\d+)" data-end-lba="(\d+)")re");
    std::vector<std::pair<std::int64_t, std::int64_t>> all;
    for (std::sregex_iterator i(svg.begin(), svg.end(), mark), end; i != end; ++i) {
      all.emplace_back(std::stoll((*i)[1]), std::stoll((*i)[2]));
    }
    return all;
  }
  static bool exists(const std::string& name) { return std::filesystem::exists(path(name)); }
};

TEST_F(ResultsTest, ThePracticeDisksFaultsAreWhereAllThreeFilesSay) {
  start("/VDISK:0=DEMO /D:0 /OP:READ" + files());
  std::vector<std::int64_t> slow;
  std::vector<std::int64_t> bad;
  std::int64_t next = 0;
  for (const Row& row : rows()) {
    EXPECT_EQ(row.lba, next);
    next += row.sectors;
    EXPECT_EQ(row.operation, "read");
    if (row.error != 0) bad.push_back(row.lba);
    if (row.error == 0 && row.rate < 10.0) slow.push_back(row.lba);
    EXPECT_EQ(row.beyond > 1150.0, row.error == 0 && row.rate < 10.0);
  }
  EXPECT_EQ(next, 2097152);
  EXPECT_THAT(slow, ElementsAre(1228800, 1249280));
  EXPECT_THAT(bad, ElementsAre(614400)) << "the unreadable place is 624000";

  const json result = document();
  EXPECT_EQ(result["slow_zones"].size(), 1U);
  EXPECT_EQ(result["slow_zones"][0]["first_lba"], 1228800);
  EXPECT_EQ(result["slow_zones"][0]["sectors"], 40960);
  EXPECT_EQ(result["errors"][0]["lba"], 614400);
  EXPECT_EQ(result["errors"][0]["code"], 23);
  EXPECT_EQ(result["totals"]["read_errors"], 1);
  EXPECT_EQ(result["histogram"][6]["transfers"], 1);
  EXPECT_EQ(result["histogram"][5]["transfers"], 2) << "the slow zone, in its true class";
  EXPECT_EQ(result["totals"]["stalled_transfers"], 2);
  EXPECT_EQ(result["smart"]["difference"][1]["id"], 197);
  EXPECT_EQ(result["smart"]["difference"][1]["raw"], 8);

  ASSERT_EQ(marks("error").size(), 1U);
  EXPECT_NEAR(marks("error").front().first, 614400, 2622) << "a pixel column";
  EXPECT_NEAR(marks("error").back().second, 634880, 2622);
  EXPECT_NEAR(marks("slow").front().first, 1228800, 2622);
  EXPECT_NEAR(marks("slow").back().second, 1269760, 2622);
}

TEST_F(ResultsTest, ASearchHasNoSlowTransfersSinceItsReportHasNone) {
  start("/VDISK:0=DEMO /D:0 /OP:SEARCH /FIND:tSectorix_was_here" + files());
  EXPECT_EQ(document()["totals"]["slow_transfers"], 0);
  EXPECT_EQ(document()["slow_zones"].size(), 0U);
  EXPECT_EQ(count_of(form1.Text1.text(), "Slow xfer"), 0);
  EXPECT_TRUE(marks("slow").empty());
  EXPECT_EQ(document()["totals"]["stalled_transfers"], 2) << "whatever the limit is";
  EXPECT_FALSE(marks("stalled").empty());
}

TEST_F(ResultsTest, SmartDataAreToldOfADriveThatWasNotTested) {
  EXPECT_EQ(start("/VDISK:0=DEMO /D:0 /OP:SMART" + files()), 0U);
  const json result = document();
  EXPECT_EQ(result["operation"]["name"], "smart");
  EXPECT_EQ(result["operation"]["cancelled"], false);
  EXPECT_EQ(result["totals"]["transfers"], 0);
  EXPECT_TRUE(result["smart"]["before"].empty());
  EXPECT_FALSE(result["smart"]["after"].empty());
}

TEST_F(ResultsTest, TheDocumentTellsTheWholeRun) {
  headless::desktop.wmi_answers = {{.query = "SELECT * FROM Win32_NTLogEvent",
                                    .rows = {{{"TimeWritten", "20260301100001.000000+060"},
                                              {"RecordNumber", "77"},
                                              {"EventType", "1"},
                                              {"Message", "Bad block\r\n\"disk\" \xE4"}}}}};
  EXPECT_EQ(
      start(drive_0("sectors 1000\nmodel A<b>&\"c\"\nserial S-1\n") + "/OP:RANDOMREAD /PASSES:5 /COUNT:8" + files()),
      1U);
  const json result = document();
  EXPECT_EQ(result["format_version"], 1);
  EXPECT_THAT(result["command_line"].get<std::string>(), HasSubstr("/OP:RANDOMREAD"));
  EXPECT_EQ(result["start"]["utc"], "2026-03-01T09:00:00Z");
  EXPECT_EQ(result["start"]["local"], "2026-03-01T10:00:00");
  EXPECT_EQ(result["disk"]["model"], "A<b>&\"c\"");
  EXPECT_EQ(result["operation"]["name"], "random read");
  EXPECT_EQ(result["operation"]["sectors"], 1000);
  EXPECT_EQ(result["totals"]["transfers"], 5);
  EXPECT_EQ(result["totals"]["sectors"], 40);
  EXPECT_EQ(result["events"][0]["record"], "77");
  EXPECT_EQ(result["events"][0]["message"], "Bad block\r\n\"disk\" \xC3\xA4");
  EXPECT_EQ(result["exit_code"], 1);
  EXPECT_EQ(rows().size(), 5U);
  EXPECT_THAT(read_file(path("r.svg")), HasSubstr("A&lt;b&gt;&amp;&quot;c&quot;"));
}

TEST_F(ResultsTest, AMarkOfTheGraphNamesItsExactSectors) {
  start("/VDISK:0=DEMO /D:0 /OP:READ" + files());
  Result result;
  result.findings.bad = {{.first_lba = 624000, .sectors = 8},
                         {.first_lba = 1'000'000, .sectors = 1, .kind = BadKind::slow, .milliseconds = 700.0}};
  const std::string svg = svg_graph(result, measure);
  EXPECT_THAT(svg, HasSubstr(" ms; unreadable: LBA 624000 to 624007</title>"));
  EXPECT_EQ(svg.find("1000000"), std::string::npos) << "no mark stands there";
}

TEST_F(ResultsTest, EveryStepOfARandomWriteHasItsRow) {
  start(drive_0("sectors 1000\n") + "/OP:RANDOMWRITE /PASSES:2 /COUNT:8" + files());
  std::vector<std::string> operations;
  for (const Row& row : rows()) operations.push_back(row.operation);
  EXPECT_THAT(operations, ElementsAre("read", "write", "verify", "restore", "read", "write", "verify", "restore"));
  EXPECT_EQ(measure.plan.work, measure.done);
}

TEST_F(ResultsTest, TextsAreEscaped) {
  EXPECT_EQ(json_string("a\"\\\x01\n\x80"), "\"a\\\"\\\\\\u0001\\u000A\xE2\x82\xAC\"");
  EXPECT_EQ(svg_text("<&\">\x02\xE9"), "&lt;&amp;&quot;&gt; \xC3\xA9");
  JsonText text;
  text.number("small", 1LL << 53);
  text.number("large", (1LL << 53) + 1);
  text.real("none", std::strtod("nan", nullptr), 3);
  text.real("huge", 1e306, 3);
  const json read = json::parse(text.finish());
  EXPECT_EQ(read["large_text"], "9007199254740993");
  EXPECT_FALSE(read.contains("small_text"));
  EXPECT_TRUE(read["none"].is_null());
  EXPECT_EQ(read["huge"], 1e306);
}

TEST_F(ResultsTest, NamesOfDevicesAndFoldersAreRefusedBeforeAnythingIsWritten) {
  for (const char* name : {"\\\\.\\PhysicalDrive0", "//./c:", "\\\\?\\X:", "\\??\\X:", "nul", "c:\\x\\Com1.csv",
                           "aux .txt", "C:NUL", "z:con .x", "x\\", "x/", "C:"}) {
    EXPECT_THAT(why_no_file(name), testing::StartsWith("is a ")) << name;
  }
  EXPECT_EQ(why_no_file("c:\\com10\\console.csv"), "");
  const std::string disk = drive_0("sectors 10\n") + "/OP:READ /REPORT:" + path("r.txt");
  EXPECT_EQ(start(disk + " /CSV:" + path("")), 1U);
  std::filesystem::create_directories(path("folder"));
  EXPECT_EQ(start(disk + " /JSON:" + path("folder")), 1U);
  EXPECT_THAT(err(), HasSubstr("is a folder or cannot be written: error 5"));
  EXPECT_EQ(start(disk + " /JSON:" + path("missing/r.json")), 1U);
  EXPECT_EQ(start(disk + " /CSV:" + path("same") + " /JSON:" + path("same")), 1U);
  EXPECT_THAT(err(), HasSubstr("is named twice"));
  EXPECT_EQ(start(disk + " /CSV:" + path("one.tmp") + " /JSON:" + path("one")), 1U) << "the name while it is written";
  write_file("old.tmp", "an old report");
  EXPECT_EQ(start(drive_0("sectors 10\n") + "/OP:READ /REPORT:" + path("old.tmp") + " /CSV:" + path("old")), 1U);
  EXPECT_EQ(read_file(path("old.tmp")), "an old report") << "a refused run touches nothing";
  EXPECT_EQ(start(disk + " /CSV:" + path("d0.vd")), 1U);
  EXPECT_THAT(err(), HasSubstr("is a virtual disk of this run"));
  const std::string page = write_file("page.bin", std::string(512, 'x'));
  std::filesystem::create_hard_link(path("d0.vd"), path("other.vd"));
  for (const char* name : {"page.bin", "other.vd"}) {
    const std::string contents = read_file(path(name));
    for (const char* output : {" /REPORT:", " /VARS:", " /CSV:", " /JSON:"}) {
      EXPECT_EQ(start(drive_0("sectors 10\nidentify page.bin\n") + "/OP:READ" + output + path(name)), 1U) << output;
      EXPECT_EQ(read_file(path(name)), contents) << output;
    }
  }
  EXPECT_FALSE(exists("r.txt"));
  EXPECT_FALSE(exists("same.tmp"));
}

TEST_F(ResultsTest, WhicheverCallFailsNoHalfFileGetsTheName) {
  std::vector<std::string> told;
  for (std::int64_t number = 1; number <= 4; ++number) {
    csv_rows = {};
    begin_csv(path("r.csv"));
    add_csv_row({.lba = 1, .sectors = 2, .seconds = 0.1});
    headless::desktop.calls.clear();
    headless::desktop.fail_code = 112;
    headless::desktop.fail_first = headless::desktop.fail_last = headless::desktop.calls_made + number;
    const std::string problem = finish_csv();
    told.push_back(headless::desktop.calls.at(static_cast<std::size_t>(number) - 1) + (problem.empty() ? "" : " told"));
    EXPECT_EQ(exists("r.csv"), problem.empty());
    std::filesystem::remove(path("r.csv"));
  }
  EXPECT_THAT(told, ElementsAre("CreateFileA told", "WriteFile told", "CloseHandle", "MoveFileExA told"));
  EXPECT_EQ(headless::desktop.open_files, 0);
}

TEST_F(ResultsTest, AFullDiskIsToldOnceAndTheRunGoesOn) {
  begin_measuring({.kind = RunKind::read, .sectors = 100000});
  begin_csv(path("r.csv"));
  headless::desktop.fail_code = 112;
  headless::desktop.fail_first = headless::desktop.calls_made + 2;
  headless::desktop.fail_last = headless::desktop.fail_first;
  for (std::int64_t i = 0; i < 10000; ++i) add_csv_row({.lba = i, .sectors = 1, .seconds = 0.001});
  EXPECT_EQ(finish_csv(), "");
  EXPECT_EQ(count_of(err(), "cannot be written: error 112"), 1);
  EXPECT_FALSE(exists("r.csv"));
  EXPECT_FALSE(exists("r.csv.tmp"));
}

TEST_F(ResultsTest, NoFileOrConsoleIsWaitedForDuringAVisit) {
  begin_measuring({.kind = RunKind::random_write, .sectors = 100000});
  begin_csv(path("missing/r.csv"));
  headless::desktop.calls.clear();
  std::int64_t rows = 0;
  for (; headless::desktop.calls.empty() && rows < 10000; ++rows) {
    hold_report();
    for (int row = 0; row < 6; ++row) add_csv_row({.lba = rows, .sectors = 1, .seconds = 0.001});
    ASSERT_TRUE(headless::desktop.calls.empty()) << "after visit " << rows;
    release_report();
    add_csv_row({.lba = rows, .sectors = 1, .seconds = 0.001});
  }
  EXPECT_LT(rows, 10000);
  EXPECT_EQ(count_of(err(), "cannot be made"), 1);
  hold_report();
  tell_and_show("Told during a visit.");
  EXPECT_EQ(count_of(err(), "visit"), 0);
  release_report();
  EXPECT_EQ(count_of(err(), "Told during a visit.\r\n"), 1);
}

TEST_F(ResultsTest, TheTemporaryFileOfAFormerRunStays) {
  write_file("r.csv.tmp", "all that is left");
  start(drive_0("sectors 10\n") + "/OP:READ" + files());
  EXPECT_EQ(rows().size(), 1U);
  EXPECT_EQ(read_file(path("r.csv.tmp")), "all that is left");
  EXPECT_FALSE(exists("r.csv.tmp2"));
  for (int number = 2; number <= 9; ++number) write_file("r.csv.tmp" + std::to_string(number), "more");
  EXPECT_EQ(start(drive_0("sectors 10\n") + "/OP:READ" + files()), 1U);
  EXPECT_THAT(err(), HasSubstr("r.csv.tmp9\": error 80"));
}

TEST_F(ResultsTest, ManyRowsGoThroughABufferOfOneSize) {
  begin_measuring({.kind = RunKind::read, .sectors = 100000});
  begin_csv(path("r.csv"));
  for (std::int64_t i = 0; i < 10000; ++i) add_csv_row({.lba = i, .sectors = 1, .seconds = 0.001});
  EXPECT_TRUE(exists("r.csv.tmp"));
  EXPECT_FALSE(exists("r.csv"));
  EXPECT_EQ(finish_csv(), "");
  EXPECT_FALSE(exists("r.csv.tmp"));
  ASSERT_EQ(rows().size(), 10000U);
  EXPECT_EQ(rows().back().lba, 9999);
}

TEST_F(ResultsTest, LeavingInTheMiddleWritesWhatWasMeasuredSoFar) {
  for (void (*leave)() : {CmdExit_Click, window_closed}) {
    bool half_written = false;
    headless::desktop.at_pump = [&](int pump) {
      if (pump < 2500) return;
      half_written = exists("r.csv.tmp");
      leave();
    };
    headless::desktop.pumps = 0;
    start(drive_0("sectors 1000\n") + "/OP:RANDOMREAD /PASSES:3000 /COUNT:1" + files());
    EXPECT_TRUE(half_written);
    for (const char* name : {"r.csv.tmp", "r.json.tmp", "r.svg.tmp"}) EXPECT_FALSE(exists(name)) << name;
    EXPECT_TRUE(document()["operation"]["cancelled"]);
    EXPECT_EQ(document()["exit_code"], 1);
    EXPECT_FALSE(document()["events_complete"]) << "nobody asked for them";
    EXPECT_GT(rows().size(), 1000U);
    EXPECT_EQ(document()["totals"]["transfers"], rows().size());
    EXPECT_TRUE(exists("r.svg"));
    for (const char* name : {"r.csv", "r.json", "r.svg"}) std::filesystem::remove(path(name));
  }
}

TEST_F(ResultsTest, LeavingAfterACommandWritesNothing) {
  open(drive_0("sectors 1000\n") + files());
  click(CmdRead_Click);
  write_file("r.json", "mine by now");
  click(CmdExit_Click);
  EXPECT_EQ(read_file(path("r.json")), "mine by now");
}

TEST_F(ResultsTest, EachOperationOfTheWindowReplacesTheFiles) {
  open(drive_0("sectors 100000\n") + files());
  click(CmdRead_Click);
  EXPECT_EQ(document()["operation"]["sectors"], 100000);
  form1.TxtNoSecs.set_typed("7");
  range_typed();
  click(CmdDisplay_Click);
  EXPECT_EQ(document()["operation"]["sectors"], 100000) << "showing the buffer is no operation";
  click(CmdRead_Click);
  EXPECT_EQ(document()["operation"]["sectors"], 7);
  EXPECT_EQ(rows().size(), 1U);
  EXPECT_FALSE(exists("r.csv.tmp"));
}

/// The lines that a terminal shows of `written`: a carriage return goes back to the line's start.
std::vector<std::string> shown_lines(const std::string& written) {
  std::vector<std::string> lines(1);
  std::size_t column = 0;
  for (const char c : written) {
    if (c == '\r') {
      column = 0;
    } else if (c == '\n') {
      lines.emplace_back();
    } else {
      std::string& line = lines.back();
      if (line.size() <= column) line.resize(column + 1);
      line[column++] = c;
    }
  }
  for (std::string& line : lines) line.resize(line.find_last_not_of(' ') + 1);
  return lines;
}

TEST_F(ResultsTest, TheReportAndTheProgressLineShareATerminal) {
  headless::desktop.err_is_terminal = true;
  start("/VDISK:0=DEMO /D:0 /OP:READ");
  std::vector<std::string> report = shown_lines(out());
  report.pop_back();  // the one behind the last line end
  EXPECT_THAT(report, Contains("Error Reading Sector 614400 for 20480 sectors."));
  EXPECT_THAT(shown_lines(headless::desktop.terminal), testing::IsSupersetOf(report));
}

TEST_F(ResultsTest, TheProgressLineTellsShareTimeLeftAndPhase) {
  headless::desktop.err_is_terminal = true;
  start("/VDISK:0=DEMO /D:0 /OP:READ");
  EXPECT_THAT(err(), ContainsRegex("[0-9]+ sectors in 3.[0-9]s  .5[0-9]%.  .12"));
  EXPECT_THAT(err(), ContainsRegex("  .5[0-9]%, 0:0[45] left, reading, 34 C]"));
  EXPECT_THAT(err(), Not(HasSubstr("Drive 0")));
  std::istringstream lines(err());
  for (std::string line; std::getline(lines, line, '\r');) EXPECT_LE(count_of(line, "left, ") * line.size(), 79U);
}

}  // namespace
