#include <algorithm>
#include <array>

#include "smart/snapshot.h"

namespace {

struct AttributeName {
  std::uint8_t id;
  const char* name;
};

// Makers' common names. Two stand twice, some are cut: docs/oddities.md, 7.
constexpr std::array<AttributeName, 49> kNames = {{
    {0, "ATTR_INVALID"},
    {1, "READ_ERROR_RATE"},
    {2, "THROUGHPUT_PERFORMANCE"},
    {3, "SPIN_UP_TIME"},
    {4, "START_STOP_COUNT"},
    {5, "REALLOC_SECTOR_COUNT"},
    {6, "READ_CHANNEL_MARGIN"},
    {7, "SEEK_ERROR_RATE"},
    {8, "SEEK_TIME_PERF"},
    {9, "POWER_ON_HOURS_COUNT"},
    {10, "SPIN_RETRY_COUNT"},
    {11, "CALIBRATION_RETRY_COUNT"},
    {12, "POWER_CYCLE_COUNT"},
    {13, "SOFT_READ_ERROR_RATE"},
    {191, "G_SENSE_ERROR_RATE"},
    {192, "POWER_OFF_RETRACT_COUNT"},
    {193, "LOAD_UNLOAD_CYCLE_COUNT"},
    {194, "TEMPERATURE_Deg_C_or_F"},
    {195, "HARDWARE_ECC_RECOVERED"},
    {196, "REALLOCATION_EVENTS_COUNT"},
    {197, "CURRENT_PENDING_SECTOR_COUNT"},
    {198, "UNCORRECTABLE_SECTOR_COUNT"},
    {199, "ULTRA_DMA_CRC_ERROR_RATE"},
    {200, "WRITE_PREAMP_ERROR_RATE"},
    {201, "SOFT_READ_ERROR_RATE"},
    {202, "DATA_ADDRESS_MARK_ERROR"},
    {203, "RUN_OUT"},
    {204, "SOFT_ECC_ERRORS"},
    {205, "THERMAL_ASPERITY RATES"},
    {206, "FLYING_HEIGHT"},
    {207, "SPIN_HIGH_CURRENT"},
    {208, "SPIN_BUZZ"},
    {209, "OFF_LINE_SEEK_PERFORMANCE"},
    {210, "VIBRATION_DURING_WRITE"},
    {211, "VIBRATION_DURING_READ"},
    {212, "SHOCK_DURING_WRITE"},
    {220, "DISK_SHIFT"},
    {221, "G_SENSE_ERROR_RATEII"},
    {222, "LOADED_HOURS"},
    {223, "LOAD_UNLOAD_RETRY_COUNT"},
    {224, "LOAD_FRICTION"},
    {225, "LOAD_UNLOAD_CYCLE_COUNTIN"},
    {226, "LOAD_IN_TIME"},
    {227, "TORQUE_AMPLIFICATION_COUNT"},
    {228, "POWER_OFF_RETRACT_COUNT"},
    {230, "GMR_HEAD_AMPLITUDE"},
    {231, "TEMPERATUREII"},
    {240, "TRANSFER_ERROR_RATE"},
    {250, "READ_ERROR_RETRY_RATE"},
}};

}  // namespace

std::string AttName(std::uint8_t id) {
  constexpr std::size_t kWidth = 29;
  const auto* const row =
      std::find_if(kNames.begin(), kNames.end(), [id](const AttributeName& n) { return n.id == id; });
  std::string name = row == kNames.end() ? "(unknown parameter)" : row->name;
  name.resize(kWidth, ' ');
  return name;
}
