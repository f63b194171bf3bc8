#include <cstdint>
#include <cstdlib>

#include "device/storage_query.h"

/// Descriptor, Identify Controller and temperature: whatever the bytes, texts come from within them and are printable
/// once cleaned.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::span<const std::uint8_t> reply(data, size);
  if (const auto descriptor = decode_device_descriptor(reply)) {
    const std::size_t longest = size;
    if (descriptor->vendor.size() > longest || descriptor->serial.size() > longest) std::abort();
    for (const char c : model_of(*descriptor) + clean_id(descriptor->serial)) {
      if (static_cast<unsigned char>(c) < 32 || static_cast<unsigned char>(c) >= 128) std::abort();
    }
  }
  if (const auto controller = decode_nvme_controller(reply); controller && controller->model.size() != 40) std::abort();
  if (const auto celsius = decode_temperature(reply); celsius && *celsius == -32768) std::abort();
  return 0;
}
