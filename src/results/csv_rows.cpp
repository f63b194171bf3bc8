#include "results/csv_rows.h"

#include <charconv>
#include <cstring>

#include "form/output.h"

namespace {

constexpr std::size_t kLongestRow = 512;
constexpr std::size_t kRowsOfVisit = 8;  // at least

void put(std::string_view text) {
  std::memcpy(csv_rows.buffer.data() + csv_rows.used, text.data(), text.size());
  csv_rows.used += text.size();
}

template <typename... Format>
void put_number(auto number, Format... format) {
  char* const end = csv_rows.buffer.data() + csv_rows.buffer.size();
  const auto result = std::to_chars(csv_rows.buffer.data() + csv_rows.used, end, number, format...);
  csv_rows.used = static_cast<std::size_t>(result.ptr - csv_rows.buffer.data());
}

void put_fixed(double number, int decimals) {
  put_number(number, std::chars_format::fixed, decimals);
}

/// Gives an empty text, or what failed.
std::string flush() {
  std::string error;
  if (csv_rows.file.handle == kernel32::kInvalidHandle) error = open_output(csv_rows.name, &csv_rows.file);
  if (error.empty()) error = write_output({csv_rows.buffer.data(), csv_rows.used}, &csv_rows.file);
  csv_rows.used = 0;
  csv_rows.failed = !error.empty();
  return error;
}

}  // namespace

std::string_view csv_header() {
  return "seconds,operation,lba,sectors,milliseconds,mb_per_s,error,beyond_ms\r\n";
}

void begin_csv(const std::string& name) {
  abandon_csv();
  csv_rows.name = name;
  csv_rows.failed = false;
  csv_rows.used = 0;
  put(csv_header());
}

void add_csv_row(const Transfer& transfer) {
  constexpr int kMicroseconds = 6;  // decimals of a second
  constexpr int kThousandths = 3;
  if (csv_rows.failed) return;
  put_fixed(transfer.start, kMicroseconds);
  put(",");
  put(phase_name(transfer.phase));
  put(",");
  put_number(transfer.lba);
  put(",");
  put_number(transfer.sectors);
  put(",");
  put_fixed(transfer.seconds * 1000.0, kThousandths);
  put(",");
  put_fixed(rate_of(transfer), kThousandths);
  put(",");
  put_number(transfer.error);
  put(",");
  put_fixed(transfer.beyond * 1000.0, kThousandths);
  put("\r\n");
  // Between a visit's write and its write-back no file is waited for either: there is room for the visit's other rows.
  const std::size_t rows_of_room = output.report_held ? 1 : kRowsOfVisit;
  if (csv_rows.used + rows_of_room * kLongestRow <= csv_rows.buffer.size()) return;
  const std::string error = flush();
  if (!error.empty()) tell_and_show(error + " The run goes on.");
}

std::string finish_csv() {
  if (csv_rows.failed) return {};
  std::string error = flush();
  return error.empty() ? finish_output(&csv_rows.file) : error;
}

void abandon_csv() {
  abandon_output(&csv_rows.file);
}
