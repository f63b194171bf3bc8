#include "results/json_text.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <utility>

#include "form/number_text.h"
#include "platform/text.h"

std::string json_time(const platform::DateTime& when) {
  std::array<char, 96> text{};
  std::snprintf(text.data(), text.size(), "%04d-%02d-%02dT%02d:%02d:%02d", when.year, when.month, when.day, when.hour,
                when.minute, when.second);
  return text.data();
}

std::string json_string(std::string_view text) {
  std::string quoted = "\"";
  for (const char c : platform::utf8_of_ansi(text)) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '"' || c == '\\') {
      quoted += {'\\', c};
    } else if (byte < 0x20 || byte == 0x7F) {
      std::array<char, 8> escape{};
      std::snprintf(escape.data(), escape.size(), "\\u%04X", unsigned{byte});
      quoted += escape.data();
    } else {
      quoted += c;
    }
  }
  return quoted + "\"";
}

void JsonText::new_line() {
  text_ += "\n" + std::string(2 * depth_, ' ');
}

void JsonText::begin_value(std::string_view name) {
  if (!first_) text_ += ",";
  first_ = false;
  new_line();
  if (!name.empty()) text_ += json_string(name) + ": ";
}

void JsonText::open(std::string_view name, char bracket) {
  begin_value(name);
  text_ += bracket;
  ++depth_;
  first_ = true;
}

void JsonText::close(char bracket) {
  --depth_;
  if (!first_) new_line();
  text_ += bracket;
  first_ = false;
}

void JsonText::text(std::string_view name, std::string_view value) {
  begin_value(name);
  text_ += json_string(value);
}

void JsonText::number(std::string_view name, std::int64_t value) {
  constexpr std::int64_t kExact = std::int64_t{1} << 53;
  begin_value(name);
  text_ += std::to_string(value);
  if (value > kExact || value < -kExact) text(std::string(name) + "_text", std::to_string(value));
}

void JsonText::real(std::string_view name, double value, int decimals) {
  begin_value(name);
  text_ += std::isfinite(value) ? fixed_text(value, decimals) : "null";
}

void JsonText::truth(std::string_view name, bool value) {
  begin_value(name);
  text_ += value ? "true" : "false";
}

std::string JsonText::finish() {
  close('}');
  return std::move(text_) + "\n";
}
