#include "disk/sector_buffer.h"

#include <cstring>
#include <new>

namespace {
constexpr std::align_val_t kPage{4096};
}  // namespace

void SectorBuffer::Free::operator()(std::uint8_t* memory) const {
  ::operator delete[](memory, kPage);
}

void SectorBuffer::resize(std::int64_t bytes) {
  if (bytes > capacity_) {
    memory_.reset();
    memory_.reset(static_cast<std::uint8_t*>(::operator new[](static_cast<std::size_t>(bytes), kPage)));
    // The system gives memory when it is first touched: by the first transfer, whose rate would be several times too
    // low.
    std::memset(memory_.get(), 0, static_cast<std::size_t>(bytes));
    capacity_ = bytes;
  }
  size_ = bytes;
  allocated_ = true;
}
