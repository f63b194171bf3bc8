#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace platform {

/// One field of the window as data: an edit's, memo's or label's text, an option button's state. The program reads and
/// changes fields at no more than the cost of a string; the window, where there is one, shows them when it gets to it.
class Field {
 public:
  /// A field that begins with `text`.
  static Field with_text(std::string text);

  /// A field whose state begins as on.
  static Field switched_on();

  const std::string& text() const { return covered_ ? cover_.get() : text_.get(); }

  /// Replaces the text. The caret goes to the start.
  void set_text(std::string text);

  /// Adds to the end, at the cost of `more` alone. The caret stays.
  void append(std::string_view more);

  /// Replaces the text by what `Build(facts)` gives, put together only when somebody looks.
  template <auto Build, typename Facts>
  void set_deferred(const Facts& facts) {
    text_.defer<Build>(facts);
    note_replaced(false);
  }

  /// The same over the text that is there: beneath() gives that one until the next change.
  template <auto Build, typename Facts>
  void cover_deferred(const Facts& facts) {
    cover_.defer<Build>(facts);
    note_replaced(true);
  }

  /// What the field said before it was covered; its text when it is not.
  const std::string& beneath() const { return text_.get(); }

  /// What the user typed, brought back by the window; counts as a change, so that nobody shows an older text over it.
  void set_typed(std::string text) { set_text(std::move(text)); }

  bool on() const { return on_; }
  void set_on(bool on);

  /// Index of the character before which the caret stands.
  std::size_t caret() const { return caret_; }
  void caret_to_end();

  /// Grows by one at every change.
  std::uint64_t revision() const { return revision_; }

  /// The revision of the last change that was no append: who has shown this revision or a later one needs only the
  /// rest.
  std::uint64_t replaced() const { return replaced_; }

 private:
  /// A text, or what it will be put together from.
  class Text {
   public:
    template <auto Build, typename Facts>
    void defer(const Facts& facts) {
      static_assert(std::is_trivially_copyable_v<Facts> && sizeof(Facts) <= sizeof(facts_));
      std::memcpy(facts_.data(), &facts, sizeof(Facts));
      build_ = [](const std::byte* raw) {
        Facts copy;
        std::memcpy(&copy, raw, sizeof(Facts));
        return Build(copy);
      };
    }
    void set(std::string text);
    const std::string& get() const;
    void append(std::string_view more);

   private:
    mutable std::string text_;
    mutable std::string (*build_)(const std::byte*) = nullptr;
    std::array<std::byte, 64> facts_{};
  };

  void note_replaced(bool by_cover) {
    covered_ = by_cover;
    caret_ = 0;
    replaced_ = ++revision_;
  }

  Text text_;
  Text cover_;
  bool covered_ = false;
  bool on_ = false;
  std::size_t caret_ = 0;
  std::uint64_t revision_ = 0;
  std::uint64_t replaced_ = 0;
};

}  // namespace platform
