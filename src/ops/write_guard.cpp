#include "ops/write_guard.h"

#include <algorithm>

#include "device/volume_disk.h"
#include "disk/drive.h"
#include "disk/error_text.h"
#include "disk/transfer.h"
#include "form/asked.h"
#include "form/form1.h"
#include "form/number_text.h"
#include "form/outcome.h"
#include "form/output.h"
#include "platform/window.h"
#include "smart/identification.h"
#include "virtualdisk/virtualdisk.h"

namespace {

constexpr const char* kLineEnd = "\r\n";

/// A range of sectors on the selected drive.
struct Range {
  std::int64_t lba = 0;
  std::int64_t sectors = 0;
};

bool is_plain(const std::string& name, const platform::Field& field) {
  if (is_plain_number(field.text())) return true;
  tell_user(name + ": \"" + field.text() + "\" is not a plain decimal number. Nothing was written; please correct it.");
  return false;
}

/// What the fields say, as the write takes it.
Range range_in_fields() {
  return {number_in(form1.TxtStartLBA.text()), std::max<std::int64_t>(number_in(form1.TxtNoSecs.text()), 1)};
}

std::string range_text(const Range& range) {
  return "LBA " + std::to_string(range.lba) + " to " + std::to_string(lba_after(range.lba, range.sectors - 1));
}

std::string drive_text(int drive, const std::string& serial) {
  return "drive " + std::to_string(drive) + " (serial number " + (serial.empty() ? "unknown" : serial) + ")";
}

/// Asks the selected drive what it is, at the first question of a command.
void look_at_drive() {
  if (write_guard.looked) return;
  GetandOpenDrive();
  write_guard.looked = true;
  write_guard.found = Check_drv(form1.SelectedDrive);
  write_guard.model = identification.Disk_Model;
  write_guard.serial = identification.Disk_Serial;
  write_guard.sectors = identification.Drive_Sectors;
}

/// What a write does that does not end where logical sectors end.
std::string ends_text(const Range& range) {
  const Stretch whole = widened({range.lba, range.sectors});
  if (whole.sectors == range.sectors) return {};
  const std::int64_t last = lba_after(whole.lba, whole.sectors - sectors_per_logical());
  const bool first_in_part = whole.lba != range.lba;
  const bool last_in_part = lba_after(whole.lba, whole.sectors) != lba_after(range.lba, range.sectors);
  const bool two = first_in_part && last_in_part && last != whole.lba;
  return std::string(kLineEnd) + "The drive's sector" + (two ? "s" : "") + " of " + std::to_string(disk.sizes.logical) +
         " bytes at LBA " + std::to_string(first_in_part ? whole.lba : last) +
         (two ? " and " + std::to_string(last) + " are" : " is") + " read, changed in part and written back.";
}

std::string named_drive() {
  look_at_drive();
  std::string text = std::string(kLineEnd) + kLineEnd;
  if (!write_guard.found) return text + "The drive does not answer." + kLineEnd;
  text += "Model: " + write_guard.model + kLineEnd + "Serial number: " + write_guard.serial +
          (serial_is_its_own() ? "" : " (told by the SCSI port of that number, perhaps another drive's)") + kLineEnd +
          "Size: " + std::to_string(write_guard.sectors) + " sectors, " +
          std::to_string(write_guard.sectors / kSectorsPerMb) + "Mb" + sector_sizes_text() + kLineEnd;
  const std::string& file = asked.virtual_disks.at(static_cast<std::size_t>(form1.SelectedDrive));
  return file.empty() ? text : text + "Virtual disk: " + file + kLineEnd;
}

std::string what_the_buffer_holds() {
  const Source& source = disk.source;
  if (source.kind == Source::Kind::nothing || source.sectors == 0) return "The buffer holds nothing that was read.";
  return "The buffer holds " + range_text({source.lba, source.sectors}) + " of " +
         drive_text(source.drive, source.serial) + ".";
}

/// Every chunk of a write is taken from the buffer's start: only one chunk can be what was read there.
bool goes_back_to_its_place(const Range& range) {
  const Source& source = disk.source;
  return source.kind == Source::Kind::sectors && source.drive == form1.SelectedDrive &&
         source.serial == write_guard.serial && source.lba == range.lba &&
         range.sectors <= std::min(source.sectors, whole_below(kChunkSectors));
}

/// True when the selected drive, which the question is to name, is not written to at all.
bool refused() {
  look_at_drive();
  const std::string reason = write_guard.found ? why_not_written() : std::string();
  if (!reason.empty()) tell_user(reason);
  return !reason.empty();
}

bool ask_with_read_back(const std::string& question, const std::string& title) {
  platform::CheckBox read_back{"&Read back and compare afterwards", form1.read_back};
  if (!platform::checked_box(question, title, &read_back)) return false;
  form1.read_back = read_back.ticked;
  write_guard.read_back = read_back.ticked;
  return true;
}

/// The object's name: of the drive's number, or of a virtual disk's image; empty for a disk in this process's memory.
std::string object_name() {
  constexpr std::size_t kLongest = 200;  // of the system's 260 characters
  const std::string prefix = "Global\\Sectorix-";
  if (!virtualdisk::attached(form1.SelectedDrive)) {
    return prefix + "PhysicalDrive" + std::to_string(form1.SelectedDrive);
  }
  std::string image = upper_case(virtualdisk::image_of(form1.SelectedDrive));
  if (image.empty()) return image;
  std::replace(image.begin(), image.end(), '\\', '/');
  return prefix + image.substr(image.size() - std::min(image.size(), kLongest));
}

}  // namespace

bool range_is_plain() {
  return is_plain("Start", form1.TxtStartLBA) && is_plain("No. Sectors", form1.TxtNoSecs);
}

std::string named_range() {
  const Range range = range_in_fields();
  const std::string drive = named_drive();
  return drive + range_text(range) + ", " + std::to_string(range.sectors) + " sectors" + ends_text(range);
}

bool confirm_write(const std::string& title, Overwritten what, bool offers_read_back) {
  if (form1.CommandLineMode) return true;
  if (refused()) return false;
  const std::string warning = "Warning: This Disk " + std::to_string(form1.SelectedDrive) +
                              " Write operation will overwrite all existing data!";
  if (offers_read_back) return ask_with_read_back(warning + named_range(), title);
  if (what == Overwritten::range) return ask_user(warning + named_range(), title);
  return ask_user(warning + named_drive() + "Places anywhere in " + std::to_string(write_guard.sectors) + " sectors",
                  title);
}

bool confirm_source() {
  if (disk.source.kind == Source::Kind::pattern) return true;
  look_at_drive();
  const Range range = range_in_fields();
  if (goes_back_to_its_place(range)) return true;
  std::string text = what_the_buffer_holds() + kLineEnd + "It is about to be written to " + range_text(range) + " of " +
                     drive_text(form1.SelectedDrive, write_guard.serial) + ".";
  if (const std::int64_t chunk = whole_below(kChunkSectors); range.sectors > chunk) {
    text += std::string(kLineEnd) + "Every " + std::to_string(chunk) +
            " sectors are written from the buffer's start again.";
  }
  return ask_user(text, "WRITE TO ANOTHER PLACE?");
}

void note_source() {
  disk.source = {.kind = Source::Kind::sectors,
                 .sizes = disk.sizes,
                 .drive = form1.SelectedDrive,
                 .serial = identification.Disk_Serial,
                 .lba = disk.Buf_LBA,
                 .sectors = disk.Buf_Secs};
}

std::string why_not_written() {
  switch (holds_windows(form1.SelectedDrive)) {
    case OnDrive::yes:
      return "Windows runs from this disk: it is not written to.";
    case OnDrive::unknown:
      return "It cannot be learned which disk Windows runs from: no real disk is written to.";
    case OnDrive::no:
      break;
  }
  return {};
}

bool still_the_drive() {
  if (in_batch()) return true;  // the run's drive was looked at when it was opened
  const bool found = identification.Drive_Sectors > 0;
  std::string reason = found ? why_not_written() : std::string();
  if (write_guard.looked &&
      (identification.Disk_Model != write_guard.model || identification.Disk_Serial != write_guard.serial ||
       identification.Drive_Sectors != write_guard.sectors)) {
    reason = "Drive " + std::to_string(form1.SelectedDrive) +
             " is not the one that the question named any more: nothing was written.";
  }
  if (reason.empty()) return true;
  report_line(reason);
  tell_user(reason);
  end_before_transfers(Outcome::refused, reason);
  return false;
}

bool hold_drive() {
  const std::string name = object_name();
  if (name.empty()) return true;
  write_guard.held = kernel32::make_named_object(name.c_str());
  if (write_guard.held != kernel32::kInvalidHandle) return true;
  const std::uint32_t code = kernel32::GetLastError();
  const bool taken = code == platform::kAlreadyExists || code == platform::kAccessDenied;
  const std::string drive = "drive " + std::to_string(form1.SelectedDrive) + ": ";
  const std::string line =
      taken ? "Another Sectorix is writing to " + drive + "nothing was done."
            : "Nothing was done, since other programs cannot be kept from " + drive + coded_error_text(code);
  PrintReport(line);
  tell_user(line);
  end_before_transfers(Outcome::refused, line);
  output.ExitCode = 1;
  return false;
}

void release_drive() {
  if (write_guard.held != kernel32::kInvalidHandle) kernel32::CloseHandle(write_guard.held);
  write_guard = {};
}
