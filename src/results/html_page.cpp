#include <algorithm>
#include <array>
#include <vector>

#include "form/number_text.h"
#include "health/numbers.h"
#include "measure/bad_words.h"
#include "platform/clock.h"
#include "results/result.h"

namespace {

constexpr int kCellsInRow = 120;
constexpr std::int64_t kMostCells = 1800;
constexpr int kPitch = 8;  // pixels from cell to cell
constexpr int kCell = 7;
constexpr std::size_t kMostRanges = 1000;

/// The colours of latency classes, those of the window on white paper.
constexpr std::array<const char*, kLatencyClasses> kClassColors = {"#c4e5f7", "#56b4e9", "#0072b2", "#f0e442",
                                                                   "#e69f00", "#d55e00", "#000000"};
constexpr const char* kUntouched = "#f0f0f0";

constexpr const char* kStyle =
    "<style>\n"
    "body{font:15px/1.45 sans-serif;color:#222;max-width:960px;margin:24px auto;padding:0 16px}\n"
    "h1{font-size:22px;margin:0 0 4px}h2{font-size:17px;margin:28px 0 8px}\n"
    ".verdict{padding:10px 14px;border-radius:4px;font-size:18px;background:#c8c8c8;color:#000}\n"
    ".good{background:#009e73}.note{background:#56b4e9}.doubtful{background:#f0e442}.worse{background:#d55e00}\n"
    ".failing{background:#000;color:#fff}\n"
    "table{border-collapse:collapse;width:100%}td,th{padding:3px 10px 3px 0;text-align:left;vertical-align:top;"
    "border-bottom:1px solid #e4e4e4}th{font-weight:600}.number{text-align:right}\n"
    "svg{max-width:100%;height:auto}.key span{white-space:nowrap;margin-right:12px}"
    ".key i{display:inline-block;width:12px;height:12px;margin-right:4px;border:1px solid #999}\n"
    "pre{font:12px/1.4 monospace;white-space:pre-wrap;overflow-wrap:anywhere;background:#f7f7f7;padding:12px}\n"
    "@media print{body{margin:0;max-width:none}pre{font-size:9px;background:none;padding:0}"
    ".verdict,.key i,svg{-webkit-print-color-adjust:exact;print-color-adjust:exact}"
    "h2{break-after:avoid}tr,svg{break-inside:avoid}}\n"
    "</style>\n";

/// `text` with its line ends.
std::string lines_text(std::string_view text) {
  std::string html;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    html += svg_text(line) + "\n";
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return html;
}

std::string heading(const char* text) {
  return std::string("<h2>") + text + "</h2>\n";
}

std::string fact(const char* name, const std::string& value) {
  return value.empty() ? std::string()
                       : std::string("<tr><th>") + name + "</th><td>" + svg_text(value) + "</td></tr>\n";
}

std::string word_of_class(Grade grade) {
  std::string word = grade_name(grade);
  std::transform(word.begin(), word.end(), word.begin(),
                 [](char c) { return c == ' ' ? '-' : static_cast<char>(c | 0x20); });
  return word;
}

std::string drive_facts(const Result& result) {
  const Identification& id = result.disk;
  const std::int64_t sectors = id.Drive_Sectors;
  std::string rows = fact("Model", id.Disk_Model) + fact("Serial number", id.Disk_Serial) +
                     fact("Firmware", id.Disk_Firmware) + fact("Bus", bus_name(id.bus));
  if (sectors > 0) {
    rows += fact("Size", std::to_string(sectors) + " sectors of 512 bytes, " +
                             fixed_text(static_cast<double>(sectors) * SectorSize / 1e9, 1) + " GB");
  }
  return rows;
}

std::string health_facts(const Result& result) {
  std::string rows;
  const std::optional<Health>& last = result.health_after ? result.health_after : result.health_before;
  if (!last) return rows;
  for (const HealthNumber& number : health_numbers()) {
    if (const auto value = number.of(*last)) rows += fact(number.label, std::to_string(*value));
  }
  return rows;
}

std::string run_facts(const Result& result, const Measure& measured) {
  const RunPlan& plan = measured.plan;
  return fact("Command", result.operation + ", drive " + std::to_string(result.drive)) +
         fact("Outcome", result.outcome + (result.reason.empty() ? "" : ": " + result.reason)) +
         fact("Ended early", result.stopped) + fact("Begun", platform::default_form(result.start_local)) +
         fact("Ended", platform::default_form(result.end_local)) +
         fact("Range", "LBA " + std::to_string(plan.first_lba) + ", " + std::to_string(plan.sectors) + " sectors") +
         fact("Transfers", std::to_string(measured.transfers) + ", of them " + std::to_string(measured.failed) +
                               " failed, " + std::to_string(measured.stalled) + " stalled, " +
                               std::to_string(measured.slow) + " slow") +
         fact("Compare errors", result.counters.TotalCErrors > 0 ? std::to_string(result.counters.TotalCErrors) : "");
}

std::string key_entry(const char* color, const std::string& text) {
  return std::string(" <span><i style=\"background:") + color + "\"></i>" + text + "</span>";
}

std::string key(const Measure& measured) {
  std::string html =
      "<p class=\"key\">Each cell is a part of the range, in the colour of its slowest transfer, by the "
      "time beyond the usual:";
  for (std::size_t i = 0; i < kLatencyClasses; ++i) {
    html += key_entry(kClassColors.at(i), svg_text(class_text(static_cast<LatencyClass>(i))) + ": " +
                                              std::to_string(measured.latency.classes.at(i)));
  }
  return html + key_entry(kUntouched, "nothing went there") + "</p>\n";
}

std::string cell(std::int64_t i, const PixelColumn& column) {
  const bool touched = column.facts.transfers > 0;
  const char* const color = touched ? kClassColors.at(static_cast<std::size_t>(column.facts.worst)) : kUntouched;
  std::string html = "<rect x=\"" + std::to_string(i % kCellsInRow * kPitch) + "\" y=\"" +
                     std::to_string(i / kCellsInRow * kPitch) + "\" width=\"" + std::to_string(kCell) + "\" height=\"" +
                     std::to_string(kCell) + "\" fill=\"" + color + "\">";
  html += "<title>LBA " + std::to_string(column.first_lba) + " to " + std::to_string(column.end_lba - 1);
  if (touched) html += ", up to " + fixed_text(column.facts.longest * 1000.0, 1) + " ms";
  return html + "</title></rect>\n";
}

std::string block_map(const Measure& measured) {
  const std::int64_t count = std::min(measured.map.columns, kMostCells);
  std::vector<PixelColumn> cells(static_cast<std::size_t>(count));
  resample(measured.map, cells);
  const std::int64_t rows = (count + kCellsInRow - 1) / kCellsInRow;
  const std::string width = std::to_string(kCellsInRow * kPitch);
  const std::string height = std::to_string(rows * kPitch);
  std::string html = key(measured) + "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" + width + "\" height=\"" +
                     height + "\" viewBox=\"0 0 " + width + " " + height + "\">\n";
  for (std::int64_t i = 0; i < count; ++i) html += cell(i, cells[static_cast<std::size_t>(i)]);
  return html + "</svg>\n";
}

std::string bad_row(const BadRange& range) {
  const std::string number = "<td class=\"number\">";
  return "<tr>" + number + std::to_string(range.first_lba) + "</td>" + number + std::to_string(range.sectors) +
         "</td><td>" + bad_kind_text(range.kind) + "</td>" + number +
         (range.code == 0 ? "" : std::to_string(range.code)) + "</td>" + number + fixed_text(range.milliseconds, 0) +
         "</td><td>" +
         svg_text(range.partition + (range.partition.empty() || range.owner.empty() ? "" : "; ") + range.owner) +
         "</td></tr>\n";
}

std::string bad_table(const std::vector<BadRange>& bad) {
  if (bad.empty()) return "<p>None was found.</p>\n";
  std::string html =
      "<table>\n<tr><th class=\"number\">First LBA</th><th class=\"number\">Sectors</th><th>Kind</th><th "
      "class=\"number\">Error</th><th class=\"number\">ms</th><th>What lies there</th></tr>\n";
  const std::size_t shown = std::min(bad.size(), kMostRanges);
  for (std::size_t i = 0; i < shown; ++i) html += bad_row(bad[i]);
  html += "</table>\n";
  if (bad.size() > shown) html += "<p>... and " + std::to_string(bad.size() - shown) + " more.</p>\n";
  return html;
}

std::string measured_parts(const Result& result, const Measure& measured) {
  return heading("Transfer rate") + svg_graph(result, measured) + heading("Map") + block_map(measured) +
         heading("Bad places") + bad_table(result.findings.bad);
}

}  // namespace

std::string html_page(const Result& result, const Measure& measured) {
  const std::string title =
      svg_text((result.disk.Disk_Model.empty() ? "Drive " + std::to_string(result.drive) : result.disk.Disk_Model) +
               ", " + result.operation + " of " + platform::default_form(result.start_local));
  const std::string verdict = result.findings.judged ? verdict_line(result.findings.verdict) : "NO DATA";
  return "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n<title>" + title +
         "</title>\n<meta name=\"viewport\" content=\"width=device-width\">\n" + kStyle + "</head>\n<body>\n<h1>" +
         title + "</h1>\n<p>Made by Sectorix " + svg_text(result.version) + "</p>\n<p class=\"verdict " +
         word_of_class(result.findings.judged ? result.findings.verdict.grade : Grade::no_data) + "\">" +
         svg_text(verdict) + "</p>\n" + heading("Drive") + "<table>\n" + drive_facts(result) + health_facts(result) +
         "</table>\n" + heading("Run") + "<table>\n" + run_facts(result, measured) + "</table>\n" +
         (result.measured ? measured_parts(result, measured) : std::string()) + heading("Report") + "<pre>" +
         lines_text(result.report) + "</pre>\n</body>\n</html>\n";
}
