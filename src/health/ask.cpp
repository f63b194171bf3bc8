#include "health/ask.h"

#include <array>

#include "device/drive_command.h"
#include "device/scsi_command.h"
#include "device/storage_query.h"
#include "disk/error_text.h"
#include "form/number_text.h"
#include "health/pages.h"
#include "platform/bytes.h"
#include "smart/identification.h"
#include "smart/identify_data.h"
#include "smart/snapshot.h"

namespace {

/// The code of a driver that does not know a request.
bool is_unknown_request(std::uint32_t code) {
  return code == 1 || code == 50 || code == 87;  // winerror.h: INVALID_FUNCTION, NOT_SUPPORTED, INVALID_PARAMETER
}

/// A drive that is asked, and what it answers.
struct Asking {
  kernel32::Handle drive = kernel32::kInvalidHandle;
  int number = 0;
  Health health;

  void in_vain(std::string request, std::uint32_t code) {
    health.unanswered.push_back({std::move(request), code, reason_of(code)});
  }
  void in_vain(std::string request, std::string reason) {
    health.unanswered.push_back({std::move(request), 0, std::move(reason)});
  }
  void keep(std::string name, std::vector<std::uint8_t> page) {
    health.pages.push_back({std::move(name), std::move(page)});
  }
};

std::string why_not(const ScsiReply& reply) {
  if (reply.code != 0) return reason_of(reply.code);
  return "the drive refuses the command";
}

/// A command whose answer must be there; empty, and told, where it is not.
std::vector<std::uint8_t> asked_scsi(const std::string& name, Bytes cdb, std::size_t data_bytes, Asking* asking) {
  ScsiReply reply = send_scsi(asking->drive, cdb, data_bytes);
  if (reply.good() && !reply.data.empty()) {
    asking->keep(name, reply.data);
    return reply.data;
  }
  asking->health.unanswered.push_back({name, reply.code, why_not(reply)});
  return {};
}

bool packs_counts(const std::string& model) {
  return upper_case(model).find("FUJITSU") != std::string::npos;
}

constexpr const char* kNoSuchPage = "the page is none that a drive can mean";

// NVMe.

void ask_nvme(Asking* asking) {
  constexpr const char* kName = "NVMe log page 02h";
  StorageReply log = ask_nvme_health(through(asking->drive));
  if (log.code != 0) {
    asking->in_vain(kName, log.code);
    return;
  }
  if (!take_nvme_log(log.data, &asking->health)) asking->in_vain(kName, kNoSuchPage);
  asking->keep(kName, std::move(log.data));
  const StorageReply page = ask_nvme_controller(through(asking->drive));
  const std::optional<NvmeController> controller = decode_nvme_controller(page.data);
  if (!controller) {
    asking->in_vain("NVMe Identify Controller", page.code == 0 ? kMalformed : page.code);
    return;
  }
  if (controller->warning_kelvin != 0) asking->health.warning_celsius = controller->warning_kelvin - kKelvin;
  if (controller->critical_kelvin != 0) asking->health.critical_celsius = controller->critical_kelvin - kKelvin;
}

// ATA.

constexpr const char* kValues = "SMART attribute values";
constexpr const char* kThresholds = "SMART thresholds";
constexpr const char* kStatus = "SMART status";

void take_ata(const std::vector<std::uint8_t>& values, const std::vector<std::uint8_t>& thresholds,
              const std::string& model, Asking* asking) {
  if (!take_ata_pages(values, thresholds, packs_counts(model), &asking->health)) asking->in_vain(kValues, kNoSuchPage);
}

/// SMART RETURN STATUS; the reply's data are the drive's registers.
void ask_status(Asking* asking) {
  constexpr std::uint8_t kReturnStatus = 0xDA;
  constexpr std::uint32_t kRegisters = 8;  // IDEREGS
  const DriveCommand command{.features = kReturnStatus,
                             .cylinder_low = 0x4F,
                             .cylinder_high = 0xC2,
                             .command = kSmartCommand,
                             .drive_number = static_cast<std::uint8_t>(asking->number)};
  CommandReply reply{};
  std::uint32_t returned = 0;
  if (!send_command(asking->drive, kSmartSendDriveCommand, command, kReplyHeader + kRegisters, &reply, &returned)) {
    asking->in_vain(kStatus, kernel32::GetLastError());
    return;
  }
  const Bytes registers = Bytes(reply).subspan(kReplyHeader, kRegisters);
  const bool driver_failed = bytes::le(reply, 4, 1) != 0;
  if (returned >= kReplyHeader + kRegisters && !driver_failed)
    asking->health.status_says_failing = status_of_registers(registers[3], registers[4]);
  if (!asking->health.status_says_failing) asking->in_vain(kStatus, "the driver gives no registers back");
}

/// By what the snapshot read. True where it has read something.
bool take_snapshot(Asking* asking) {
  if (smart.values.data.empty()) return false;
  asking->keep(kValues, smart.values.data);
  if (smart.thresholds.data.empty()) {
    asking->in_vain(kThresholds, smart.thresholds.code);
  } else {
    asking->keep(kThresholds, smart.thresholds.data);
  }
  take_ata(smart.values.data, smart.thresholds.data, identification.Disk_Model, asking);
  ask_status(asking);
  return true;
}

// ATA behind SCSI: ATA PASS-THROUGH (16) (SAT-3, 12.2.3).

std::array<std::uint8_t, 16> smart_read(std::uint8_t features) {
  return {0x85, 0x08, 0x0E, 0, features, 0, 1, 0, 0, 0, 0x4F, 0, 0xC2, 0, kSmartCommand, 0};
}

void ask_translated_status(Asking* asking) {
  // No data; the registers come back as sense bytes.
  constexpr std::array<std::uint8_t, 16> kReturnStatus = {0x85, 0x06, 0x2C, 0, 0xDA, 0, 0,    0,
                                                          0,    0,    0x4F, 0, 0xC2, 0, 0xB0, 0};
  const ScsiReply reply = send_scsi(asking->drive, kReturnStatus, 0);
  if (reply.code != 0) {
    asking->in_vain(kStatus, reply.code);
    return;
  }
  asking->health.status_says_failing = status_of_sense(reply.sense);
  if (!asking->health.status_says_failing) asking->in_vain(kStatus, "the bridge gives no registers back");
}

/// True where the drive is an ATA drive behind a translation: the ATA Information page says so.
bool ask_translated(Asking* asking) {
  constexpr std::size_t kInformationBytes = 572;
  constexpr std::array<std::uint8_t, 6> kInformation = {0x12, 1, 0x89, 0x02, 0x3C, 0};
  const ScsiReply information = send_scsi(asking->drive, kInformation, kInformationBytes);
  const std::optional<Bytes> identify = information.good() ? identify_in(information.data) : std::nullopt;
  if (!identify) {
    const bool usb = identification.bus == StorageBus::usb;
    const std::string why = information.code != 0 ? reason_of(information.code)
                            : usb ? "the bridge does not say that it passes ATA commands on, so it got none"
                                  : "the drive is no ATA drive";
    asking->health.unanswered.push_back({"ATA Information, page 89h", information.code, why});
    return false;
  }
  const std::vector<std::uint8_t> values = asked_scsi(kValues, smart_read(0xD0), kPageBytes, asking);
  if (values.empty()) return true;
  const std::vector<std::uint8_t> thresholds = asked_scsi(kThresholds, smart_read(0xD1), kPageBytes, asking);
  take_ata(values, thresholds, clean_id(decode_identify(*identify).model), asking);
  ask_translated_status(asking);
  return true;
}

// SCSI.

std::vector<std::uint8_t> log_sense(const std::string& name, std::uint8_t page, Asking* asking) {
  constexpr std::uint8_t kCurrentValues = 0x40;
  constexpr std::uint8_t kRoom = 252;
  const std::array<std::uint8_t, 10> cdb = {0x4D,  0, static_cast<std::uint8_t>(kCurrentValues | page), 0, 0, 0, 0, 0,
                                            kRoom, 0};
  return asked_scsi(name, cdb, kRoom, asking);
}

void ask_scsi(Asking* asking) {
  constexpr const char* kExceptions = "Informational Exceptions, log page 2Fh";
  Health& health = asking->health;
  const std::vector<std::uint8_t> exceptions = log_sense(kExceptions, 0x2F, asking);
  if (exceptions.empty()) return;
  if (!take_exceptions(exceptions, &health)) asking->in_vain(kExceptions, kNoSuchPage);
  take_scsi_temperature(log_sense("Temperature, log page 0Dh", 0x0D, asking), &health);
  health.write_uncorrected = uncorrected_errors(log_sense("Write Error Counters, log page 02h", 2, asking), 2);
  health.read_uncorrected = uncorrected_errors(log_sense("Read Error Counters, log page 03h", 3, asking), 3);
  // The header of the list alone, in the format of physical sectors.
  constexpr std::array<std::uint8_t, 10> kReadDefects = {0x37, 0, 0x0D, 0, 0, 0, 0, 0, 4, 0};
  health.grown_defects = grown_defects(asked_scsi("list of grown defects", kReadDefects, 4, asking));
}

// Every bus.

void ask_prediction(Asking* asking) {
  constexpr const char* kName = "IOCTL_STORAGE_PREDICT_FAILURE";
  constexpr std::size_t kPageAt = 4;
  const StorageReply reply = ask_predict_failure(through(asking->drive));
  if (reply.code != 0) {
    asking->in_vain(kName, reply.code);
    return;
  }
  asking->health.driver_predicts_failure = bytes::le32(reply.data, 0) != 0;
  const std::vector<std::uint8_t> page(reply.data.begin() + kPageAt, reply.data.end());
  // Drivers of ATA drives hand their attributes on, also to users who may not ask the drive itself.
  if (!asking->health.answered && take_ata_pages(page, {}, packs_counts(identification.Disk_Model), &asking->health))
    asking->keep(kName, page);
}

void ask_by_bus(Asking* asking) {
  if (identification.bus == StorageBus::nvme) {
    ask_nvme(asking);
    return;
  }
  if (take_snapshot(asking)) return;
  asking->in_vain(kValues, smart.values.code);
  switch (identification.bus) {
    case StorageBus::ata:
    case StorageBus::sata:
      if (is_unknown_request(smart.values.code)) ask_translated(asking);
      break;
    case StorageBus::raid:
      // Its driver may pass on what an NVMe drive behind it says.
      ask_nvme(asking);
      if (!asking->health.answered && !ask_translated(asking)) ask_scsi(asking);
      break;
    case StorageBus::scsi:
    case StorageBus::fibre:
    case StorageBus::iscsi:
    case StorageBus::sas:
      if (!ask_translated(asking)) ask_scsi(asking);
      break;
    case StorageBus::usb:
      ask_translated(asking);
      break;
    default:
      break;
  }
}

}  // namespace

Health ask_health(int drive) {
  Asking asking{.drive = open_to_ask(drive), .number = drive, .health = {}};
  if (asking.drive == kernel32::kInvalidHandle) {
    asking.in_vain("the drive", kernel32::GetLastError());
    return asking.health;
  }
  ask_by_bus(&asking);
  ask_prediction(&asking);
  if (!asking.health.celsius) asking.health.celsius = decode_temperature(ask_temperature(through(asking.drive)).data);
  kernel32::CloseHandle(asking.drive);
  return asking.health;
}

std::optional<int> ask_celsius(int drive) {
  const kernel32::Handle handle = open_for_properties(drive);
  if (handle == kernel32::kInvalidHandle) return std::nullopt;
  std::optional<int> celsius = decode_temperature(ask_temperature(through(handle)).data);
  if (!celsius && identification.bus == StorageBus::nvme) {
    Health health;
    if (take_nvme_log(ask_nvme_health(through(handle)).data, &health)) celsius = health.celsius;
  }
  kernel32::CloseHandle(handle);
  return celsius;
}

std::string reason_of(std::uint32_t code) {
  if (is_unknown_request(code)) return "the driver does not pass it on";
  switch (code) {
    case 0:
    case kMalformed:
      return "the answer carries no such page";
    case platform::kAccessDenied:
      return "no permission: run as administrator";
    case 1117:  // winerror.h: ERROR_IO_DEVICE
      return "the drive refuses it";
    default:
      return SystemErrorText(code);
  }
}
