#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/clock.h"

/// Builds a JSON document (RFC 8259) in UTF-8, indented by two blanks. Texts come in the ANSI code page. A name is
/// given in objects and left empty in arrays.
class JsonText {
 public:
  JsonText() : text_("{") {}

  void open_object(std::string_view name = {}) { open(name, '{'); }
  void open_array(std::string_view name) { open(name, '['); }
  void close_object() { close('}'); }
  void close_array() { close(']'); }

  void text(std::string_view name, std::string_view value);

  /// A whole number; one beyond 2^53, which many readers round, stands once more as text under "NAME_text".
  void number(std::string_view name, std::int64_t value);

  /// `decimals` digits behind the point; null where it is no number.
  void real(std::string_view name, double value, int decimals);
  void truth(std::string_view name, bool value);

  /// Closes the document and gives it.
  std::string finish();

 private:
  void begin_value(std::string_view name);
  void open(std::string_view name, char bracket);
  void close(char bracket);
  void new_line();

  std::string text_;
  std::size_t depth_ = 1;
  bool first_ = true;  // nothing stands in the innermost object or array yet
};

/// "2026-03-02T10:00:00" (ISO 8601, without a zone).
std::string json_time(const platform::DateTime& when);

/// `text` (ANSI) as a JSON string in quotes.
std::string json_string(std::string_view text);
