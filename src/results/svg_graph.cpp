#include <array>
#include <vector>

#include "form/number_text.h"
#include "measure/bad_words.h"
#include "measure/graph_marks.h"
#include "measure/graph_scale.h"
#include "platform/clock.h"
#include "platform/text.h"
#include "results/result.h"

namespace {

// Pixels.
constexpr int kWidth = 900;
constexpr int kHeight = 440;
constexpr int kLeft = 70;
constexpr int kTop = 64;
constexpr int kPlotWidth = 800;
constexpr int kPlotHeight = 290;
constexpr int kBottom = kTop + kPlotHeight;
constexpr int kRight = kLeft + kPlotWidth;
constexpr int kMostTicksX = 12;
constexpr int kMostTicksY = 8;

constexpr const char* kStyle =
    "<style>text{font:12px sans-serif;fill:#222}.title{font-size:15px}.tick{stroke:#ddd}.frame{fill:none;stroke:#888}"
    ".band{fill:#a6cee3}.line{fill:none;stroke:#1f4e79;stroke-width:1.5}.point{fill:#1f4e79}"
    ".limit{stroke:#666;stroke-dasharray:6 4}.slow,.stalled{fill:#e08214;stroke:#7f3b08}"
    ".error{fill:none;stroke:#b2182b;stroke-width:2.5}.hover{fill:#000;fill-opacity:0}"
    ".hover:hover{fill-opacity:.08}</style>\n";

std::string number(double value) {
  return fixed_text(value, 1);
}

std::string place(double x, double y) {
  return number(x) + "," + number(y);
}

std::string text_at(double x, double y, const char* more, const std::string& escaped) {
  return "<text x=\"" + number(x) + "\" y=\"" + number(y) + "\"" + more + ">" + escaped + "</text>\n";
}

/// Where things stand: everything that drawing needs.
struct Drawing {
  const Measure& measured;
  Scale rates;
  double slow_limit;
  std::vector<PixelColumn> columns;
};

double y_at(const Drawing& drawing, double rate) {
  return kTop + y_of(drawing.rates, rate, kPlotHeight);
}

std::string heading(const Result& result, const Drawing& drawing) {
  const RateColumn whole = pixel_column(drawing.measured.map, 0, 1).facts;
  const std::string what = svg_text(result.operation + ", drive " + std::to_string(result.drive) + ", " +
                                    result.disk.Disk_Model + ", serial " + result.disk.Disk_Serial);
  const std::string facts = svg_text(platform::default_form(result.start_local)) + ", " +
                            number(drawing.measured.seconds) + " s, average " + number(average_rate(whole)) +
                            " MB/s, " + number(whole.lowest) + " to " + number(whole.highest) + " MB/s";
  return "<title>" + what + "</title>\n" + kStyle + "<rect width=\"100%\" height=\"100%\" fill=\"#fff\"/>\n" +
         text_at(kLeft, 24, " class=\"title\"", what) + text_at(kLeft, 44, "", facts);
}

std::string tick_line(double x1, double y1, double x2, double y2) {
  return "<line class=\"tick\" x1=\"" + number(x1) + "\" y1=\"" + number(y1) + "\" x2=\"" + number(x2) + "\" y2=\"" +
         number(y2) + "\"/>\n";
}

std::string axes(const Drawing& drawing) {
  const RateMap& map = drawing.measured.map;
  const Scale& rates = drawing.rates;
  std::string svg;
  for (int i = 0; i * rates.step <= rates.top * (1.0 + 1e-9); ++i) {
    const double y = y_at(drawing, i * rates.step);
    svg += tick_line(kLeft, y, kRight, y) +
           text_at(kLeft - 6, y + 4, " text-anchor=\"end\"", fixed_text(i * rates.step, rates.decimals));
  }
  const RangeAxis range = range_axis(map.first_lba, map.sectors, kMostTicksX);
  for (const RangeAxis::Tick& tick : range.ticks) {
    const double x = kLeft + tick.share * kPlotWidth;
    svg += tick_line(x, kTop, x, kBottom) +
           text_at(x, kBottom + 16, " text-anchor=\"middle\"", fixed_text(tick.value, range.decimals));
  }
  svg += text_at(kLeft - 40, kTop - 8, "", "MB/s") + text_at(kRight, kBottom + 32, " text-anchor=\"end\"", range.unit);
  return svg + "<rect class=\"frame\" x=\"" + std::to_string(kLeft) + "\" y=\"" + std::to_string(kTop) + "\" width=\"" +
         std::to_string(kPlotWidth) + "\" height=\"" + std::to_string(kPlotHeight) + "\"/>\n";
}

/// Calls `draw` with the first and the end of each run of columns that have rates.
template <typename Draw>
void each_stretch(const Drawing& drawing, Draw draw) {
  const std::size_t columns = drawing.columns.size();
  for (std::size_t i = 0; i < columns;) {
    const std::size_t first = i;
    while (i < columns && drawing.columns[i].facts.seconds > 0.0) ++i;
    if (i > first) draw(first, i);
    if (i == first) ++i;
  }
}

std::string band_and_line(const Drawing& drawing) {
  std::string band;
  std::string line;
  each_stretch(drawing, [&](std::size_t first, std::size_t end) {
    std::string back;
    std::string average;
    band += "<polygon class=\"band\" points=\"";
    for (std::size_t i = first; i < end; ++i) {
      const RateColumn& facts = drawing.columns[i].facts;
      const double x = kLeft + static_cast<double>(i) + 0.5;
      band += place(x, y_at(drawing, facts.highest)) + " ";
      back.insert(0, place(x, y_at(drawing, facts.lowest)) + " ");
      average += place(x, y_at(drawing, average_rate(facts))) + " ";
    }
    band += back + "\"/>\n";
    line += "<polyline class=\"line\" points=\"" + average + "\"/>\n";
  });
  return band + line;
}

std::string point_cloud(const Drawing& drawing) {
  const RateMap& map = drawing.measured.map;
  std::string path;
  for (const RatePoint& point : points(map)) {
    if (point.failed) continue;
    const double x = kLeft + x_of(map, point.lba, kPlotWidth);
    path += "M" + place(x - 1.5, y_at(drawing, point.rate) - 1.5) + "h3v3h-3z";
  }
  return "<path class=\"point\" d=\"" + path + "\"/>\n";
}

std::string limit_line(const Drawing& drawing) {
  const std::string y = number(y_at(drawing, drawing.slow_limit));
  return "<line class=\"limit\" x1=\"" + std::to_string(kLeft) + "\" x2=\"" + std::to_string(kRight) + "\" y1=\"" + y +
         "\" y2=\"" + y + "\"/>\n";
}

std::string range_text(std::int64_t first_lba, std::int64_t end_lba) {
  return "LBA " + std::to_string(first_lba) + " to " + std::to_string(end_lba - 1);
}

std::string milliseconds(double seconds) {
  return number(seconds * 1000.0) + " ms";
}

/// A triangle for slow transfers, a cross for errors; `x` and `y` are the middle.
std::string mark_shape(bool error, double x, double y) {
  return error ? "M" + place(x - 5, y - 5) + "l10,10m0,-10l-10,10" : "M" + place(x - 5, y + 4) + "h10l-5,-9z";
}

/// The exact sectors of a mark, behind what else its title says.
std::string bad_in(const GraphMark& mark, const std::vector<BadRange>& bad) {
  std::string text;
  for (const std::string& line : bad_range_lines(ranges_in(bad, mark.first_lba, mark.end_lba))) text += "; " + line;
  return text;
}

std::string marks(const Drawing& drawing, const std::vector<BadRange>& bad) {
  constexpr int kErrorLine = kTop + 10;
  constexpr int kWidestMark = 16;
  std::string svg;
  for (const GraphMark& mark : graph_marks(drawing.measured.map, kPlotWidth, kWidestMark)) {
    const double x = kLeft + static_cast<double>(mark.pixel) + 0.5;
    const double y = mark.error ? kErrorLine : y_at(drawing, mark.lowest_rate);
    const char* const kind = mark.error ? "error" : mark.stalled ? "stalled" : "slow";
    svg += std::string("<path class=\"") + kind + "\" data-first-lba=\"" + std::to_string(mark.first_lba) +
           "\" data-end-lba=\"" + std::to_string(mark.end_lba) + "\" d=\"" + mark_shape(mark.error, x, y) +
           "\"><title>" + kind + ": " + range_text(mark.first_lba, mark.end_lba) + ", " +
           (mark.error ? std::string() : number(mark.lowest_rate) + " MB/s, ") + milliseconds(mark.longest) +
           bad_in(mark, bad) + "</title></path>\n";
  }
  return svg;
}

/// Unseen strips that tell about their place.
std::string hover_strips(const Drawing& drawing) {
  constexpr int kStrips = 200;
  constexpr int kStripWidth = kPlotWidth / kStrips;
  std::array<PixelColumn, kStrips> strips;
  resample(drawing.measured.map, strips);
  std::string svg;
  for (int i = 0; i < kStrips; ++i) {
    const PixelColumn& strip = strips.at(static_cast<std::size_t>(i));
    if (strip.facts.transfers == 0) continue;
    svg += "<rect class=\"hover\" x=\"" + std::to_string(kLeft + i * kStripWidth) + "\" y=\"" + std::to_string(kTop) +
           "\" width=\"" + std::to_string(kStripWidth) + "\" height=\"" + std::to_string(kPlotHeight) + "\"><title>" +
           range_text(strip.first_lba, strip.end_lba) + ": " + number(average_rate(strip.facts)) + " MB/s (" +
           number(strip.facts.lowest) + " to " + number(strip.facts.highest) + "), up to " +
           milliseconds(strip.facts.longest) + "</title></rect>\n";
  }
  return svg;
}

std::string legend(const Drawing& drawing) {
  constexpr int kY = kBottom + 52;
  constexpr int kBelow = kBottom + 74;
  const Measure& measured = drawing.measured;
  std::string classes = "Transfers by the time beyond the usual: ";
  for (std::size_t i = 0; i < kLatencyClasses; ++i) {
    classes += std::string(i == 0 ? "" : ", ") + class_text(static_cast<LatencyClass>(i)) + ": " +
               std::to_string(measured.latency.classes.at(i));
  }
  return "<path class=\"slow\" d=\"" + mark_shape(false, kLeft + 6, kY - 4) + "\"/>\n" +
         text_at(kLeft + 18, kY, "",
                 "slow: " + std::to_string(measured.slow) + ", stalled: " + std::to_string(measured.stalled)) +
         "<path class=\"error\" d=\"" + mark_shape(true, kLeft + 186, kY - 4) + "\"/>\n" +
         text_at(kLeft + 198, kY, "", "errors: " + std::to_string(measured.failed)) + "<line class=\"limit\" x1=\"" +
         std::to_string(kLeft + 340) + "\" x2=\"" + std::to_string(kLeft + 376) + "\" y1=\"" + std::to_string(kY - 4) +
         "\" y2=\"" + std::to_string(kY - 4) + "\"/>\n" +
         text_at(kLeft + 384, kY, "", "slow limit: " + double_text(drawing.slow_limit) + " MB/s") +
         text_at(kLeft, kBelow, "", svg_text(classes));
}

}  // namespace

std::string svg_text(std::string_view text) {
  std::string escaped;
  for (const char c : platform::utf8_of_ansi(text)) {
    switch (c) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '>':
        escaped += "&gt;";
        break;
      case '"':
        escaped += "&quot;";
        break;
      default:
        // XML 1.0 has no place for control characters, not even escaped.
        escaped += static_cast<unsigned char>(c) < 0x20 ? ' ' : c;
    }
  }
  return escaped;
}

std::string svg_graph(const Result& result, const Measure& measured) {
  Drawing drawing{measured, rate_scale(measured, result.rates.SlowRate, kMostTicksY), result.rates.SlowRate,
                  std::vector<PixelColumn>(kPlotWidth)};
  resample(measured.map, drawing.columns);
  const std::string size = "width=\"" + std::to_string(kWidth) + "\" height=\"" + std::to_string(kHeight) +
                           "\" viewBox=\"0 0 " + std::to_string(kWidth) + " " + std::to_string(kHeight) + "\"";
  return "<svg xmlns=\"http://www.w3.org/2000/svg\" " + size + ">\n" + heading(result, drawing) + axes(drawing) +
         (is_random(measured.plan.kind) ? point_cloud(drawing) : band_and_line(drawing)) + limit_line(drawing) +
         hover_strips(drawing) + marks(drawing, result.findings.bad) + legend(drawing) + "</svg>\n";
}
