#include "places/volume_owners.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>

#include "device/kernel32.h"
#include "disk/drive.h"
#include "disk/error_text.h"
#include "places/boot_sector.h"
#include "places/disk_reader.h"
#include "places/shown_text.h"
#include "places/volume_requests.h"

namespace {

constexpr const char* kNotLearned = "owner cannot be learned: ";

/// A volume opened for reading, as long as this lives.
class OpenVolume {
 public:
  OpenVolume(int drive, const std::string& name) {
    const std::string device = R"(\\.\)" + name;
    handle_ = kernel32::open_volume_of(drive, device.c_str(), platform::kGenericRead,
                                       platform::kShareRead | platform::kShareWrite, 0);
    if (handle_ == kernel32::kInvalidHandle) code_ = std::max(kernel32::GetLastError(), 1U);
  }
  ~OpenVolume() {
    if (handle_ != kernel32::kInvalidHandle) kernel32::CloseHandle(handle_);
  }
  OpenVolume(const OpenVolume&) = delete;
  OpenVolume& operator=(const OpenVolume&) = delete;

  kernel32::Handle get() const { return handle_; }
  std::uint32_t code() const { return code_; }

 private:
  kernel32::Handle handle_ = kernel32::kInvalidHandle;
  std::uint32_t code_ = 0;
};

VolumeSender through_volume(kernel32::Handle volume) {
  return [volume](std::uint32_t code, std::span<const std::uint8_t> request, std::span<std::uint8_t> reply,
                  std::uint32_t* returned) {
    const bool done =
        kernel32::DeviceIoControl(volume, code, request.data(), static_cast<std::uint32_t>(request.size()),
                                  reply.data(), static_cast<std::uint32_t>(reply.size()), returned);
    return done ? 0U : std::max(kernel32::GetLastError(), 1U);
  };
}

/// What is known of one stretch before the owners of its clusters are asked for.
struct Found {
  std::vector<std::string> areas;      // the file system's own, by name
  std::vector<std::int64_t> clusters;  // in use, to be asked for
  std::int64_t unasked = 0;            // in use beyond those
  std::string numbers{};               // of the clusters, in the file system's own count
  bool has_free = false;
  std::uint32_t code = 0;  // the bitmap could not be read
};

void add_once(std::vector<std::string>* names, const std::string& name) {
  if (std::find(names->begin(), names->end(), name) == names->end()) names->push_back(name);
}

/// Looks which of the clusters from `first` to before `end` are in use.
void look_at_clusters(const VolumeSender& send, std::int64_t first, std::int64_t end, Found* found) {
  ClusterBitmap bitmap;
  found->code = ask_bitmap(send, first, end - first, &bitmap);
  if (found->code != 0) return;
  for (std::int64_t cluster = first; cluster < end; ++cluster) {
    const std::optional<bool> used = bitmap.used(cluster);
    if (!used) {
      found->unasked += end - cluster;
      return;
    }
    if (!*used) {
      found->has_free = true;
    } else if (found->clusters.size() < kMostNamedClusters) {
      found->clusters.push_back(cluster);
    } else {
      ++found->unasked;
    }
  }
}

std::string numbers_text(std::int64_t first, std::int64_t last) {
  if (first == last) return " (cluster " + std::to_string(first) + ")";
  return " (clusters " + std::to_string(first) + " to " + std::to_string(last) + ")";
}

Found look_at(const VolumeSender& send, const BootSector& boot, const VolumeStretch& stretch) {
  Found found;
  const std::int64_t end = stretch.first + stretch.bytes;
  if (stretch.first < boot.heap_start) {
    for (const std::int64_t byte : {stretch.first, boot.fat_start, boot.fat_end}) {
      const bool inside = byte >= stretch.first && byte < std::min(end, boot.heap_start);
      if (inside) add_once(&found.areas, own_area_name(boot, byte));
    }
  }
  if (end > boot.heap_end()) add_once(&found.areas, own_area_name(boot, boot.heap_end()));
  const std::int64_t first_byte = std::max(stretch.first, boot.heap_start) - boot.heap_start;
  const std::int64_t end_byte = std::min(end, boot.heap_end()) - boot.heap_start;
  if (first_byte >= end_byte) return found;
  const std::int64_t first = first_byte / boot.bytes_per_cluster;
  const std::int64_t last = (end_byte - 1) / boot.bytes_per_cluster;
  found.numbers = numbers_text(first + boot.first_number, last + boot.first_number);
  look_at_clusters(send, first, last + 1, &found);
  return found;
}

/// "file \a, file \b, file \c and 2 files more".
std::string files_text(const std::vector<std::string>& files) {
  constexpr std::size_t kNamed = 3;
  const std::size_t named = std::min(files.size(), kNamed);
  const std::string text = joined({files.begin(), files.begin() + static_cast<std::ptrdiff_t>(named)});
  const std::size_t more = files.size() - named;
  return more == 0 ? text : text + " and " + std::to_string(more) + (more == 1 ? " file more" : " files more");
}

std::string owner_text(const Found& found, const std::map<std::int64_t, ClusterOwner>& owners,
                       std::uint32_t lookup_code) {
  std::vector<std::string> files;
  std::vector<std::string> areas = found.areas;
  bool unowned = false;
  for (const std::int64_t cluster : found.clusters) {
    const auto owner = owners.find(cluster);
    if (owner == owners.end()) {
      unowned = true;
    } else if (owner->second.kind == ClusterOwner::Kind::system) {
      add_once(&areas, owner->second.path);
    } else {
      add_once(&files, (owner->second.kind == ClusterOwner::Kind::folder ? "folder " : "file ") + owner->second.path);
    }
  }
  std::vector<std::string> parts;
  if (!files.empty()) parts.push_back(files_text(files));
  if (!areas.empty()) parts.push_back("file system's own area (" + joined(areas) + ")");
  if (found.has_free) parts.emplace_back("free space");
  if (found.code != 0) {
    parts.push_back(kNotLearned + coded_error_text(found.code));
  } else if (unowned) {
    parts.push_back(kNotLearned +
                    (lookup_code != 0 ? coded_error_text(lookup_code) : std::string("in use, but no file has it")));
  }
  if (found.unasked > 0) {
    const std::string clusters = std::to_string(found.unasked) + (found.unasked == 1 ? " cluster" : " clusters");
    parts.push_back(clusters + (parts.empty() ? " not looked at" : " more not looked at"));
  }
  return joined(parts) + found.numbers;
}

/// The volume's boot sector; where there is none of a known file system, `why` says so.
std::optional<BootSector> read_boot_sector(const OpenVolume& volume, std::string* why) {
  std::vector<std::uint8_t> sector(static_cast<std::size_t>(disk.sizes.logical));
  const std::uint32_t code = volume.code() != 0 ? volume.code() : read_bytes(volume.get(), 0, sector);
  if (code != 0) {
    *why = kNotLearned + coded_error_text(code);
    return {};
  }
  const std::optional<BootSector> boot = decode_boot_sector(sector);
  if (!boot) *why = std::string(kNotLearned) + "the volume does not begin with NTFS, FAT or exFAT";
  return boot;
}

}  // namespace

std::vector<std::string> volume_owners(int drive, const std::string& name, std::span<const VolumeStretch> stretches) {
  const OpenVolume volume(drive, name);
  std::string why;
  const std::optional<BootSector> boot = read_boot_sector(volume, &why);
  if (!boot) return std::vector<std::string>(stretches.size(), why);
  const VolumeSender send = through_volume(volume.get());
  std::vector<Found> found;
  std::set<std::int64_t> asked;
  for (const VolumeStretch& stretch : stretches) {
    found.push_back(look_at(send, *boot, stretch));
    asked.insert(found.back().clusters.begin(), found.back().clusters.end());
  }
  std::map<std::int64_t, ClusterOwner> owners;
  const std::vector<std::int64_t> clusters(asked.begin(), asked.end());
  const std::uint32_t code = ask_owners(send, clusters, &owners);
  std::vector<std::string> texts(found.size());
  std::transform(found.begin(), found.end(), texts.begin(),
                 [&](const Found& one) { return owner_text(one, owners, code); });
  return texts;
}
