#pragma once

#include <cstdint>
#include <memory>
#include <span>

/// Page-aligned bytes that know their length. Shrinking, and growing to what it once was, keep the memory.
class SectorBuffer {
 public:
  /// Makes the buffer `bytes` long; its contents are unspecified afterwards.
  void resize(std::int64_t bytes);

  /// True once resize() was called.
  bool allocated() const { return allocated_; }

  std::int64_t size() const { return size_; }
  std::uint8_t* data() { return memory_.get(); }
  std::span<std::uint8_t> bytes() { return {memory_.get(), static_cast<std::size_t>(size_)}; }
  std::span<const std::uint8_t> bytes() const { return {memory_.get(), static_cast<std::size_t>(size_)}; }

 private:
  struct Free {
    void operator()(std::uint8_t* memory) const;
  };
  std::unique_ptr<std::uint8_t[], Free> memory_;
  std::int64_t size_ = 0;
  std::int64_t capacity_ = 0;
  bool allocated_ = false;
};
