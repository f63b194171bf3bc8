#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "platform/win32/win_api.h"

namespace win32 {

/// Owns one reference to a COM interface.
template <typename Interface>
class Com {
 public:
  Com() = default;
  explicit Com(Interface* owned) : pointer_(owned) {}
  Com(Com&& other) noexcept : pointer_(std::exchange(other.pointer_, nullptr)) {}
  Com& operator=(Com&& other) noexcept {
    std::swap(pointer_, other.pointer_);
    return *this;
  }
  ~Com() {
    if (pointer_ != nullptr) pointer_->Release();
  }

  Interface* get() const { return pointer_; }
  Interface* operator->() const { return pointer_; }
  explicit operator bool() const { return pointer_ != nullptr; }

  /// Where a call leaves the reference that it gives. Only while empty.
  void** out() { return reinterpret_cast<void**>(&pointer_); }

 private:
  Interface* pointer_ = nullptr;
};

/// Owns what a VARIANT holds.
struct Variant : VARIANT {
  Variant() { ::VariantInit(this); }
  Variant(const Variant&) = delete;
  Variant& operator=(const Variant&) = delete;
  ~Variant() { ::VariantClear(this); }
};

/// UTF-16 to the ANSI code page and back.
std::string narrow(std::wstring_view text);
std::wstring wide(std::string_view text);

}  // namespace win32
