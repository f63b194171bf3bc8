#include "platform/fields.h"

#include <utility>

namespace platform {

Field Field::with_text(std::string text) {
  Field field;
  field.set_text(std::move(text));
  return field;
}

Field Field::switched_on() {
  Field field;
  field.set_on(true);
  return field;
}

void Field::Text::set(std::string text) {
  build_ = nullptr;
  text_ = std::move(text);
}

const std::string& Field::Text::get() const {
  if (build_ != nullptr) {
    text_ = build_(facts_.data());
    build_ = nullptr;
  }
  return text_;
}

void Field::Text::append(std::string_view more) {
  get();
  text_ += more;
}

void Field::set_text(std::string text) {
  text_.set(std::move(text));
  note_replaced(false);
}

void Field::append(std::string_view more) {
  (covered_ ? cover_ : text_).append(more);
  ++revision_;
}

void Field::set_on(bool on) {
  on_ = on;
  ++revision_;
}

void Field::caret_to_end() {
  caret_ = text().size();
  ++revision_;
}

}  // namespace platform
