#include "places/volume_requests.h"

#include <algorithm>
#include <string_view>

#include "places/shown_text.h"
#include "platform/bytes.h"

namespace {

constexpr std::uint32_t kGetVolumeBitmap = 0x9006F;  // FSCTL_GET_VOLUME_BITMAP
constexpr std::uint32_t kLookupStream = 0x901FC;     // FSCTL_LOOKUP_STREAM_FROM_CLUSTER
constexpr std::uint32_t kMoreData = 234;             // winerror.h: ERROR_MORE_DATA
constexpr std::uint32_t kInsufficientBuffer = 122;   // ERROR_INSUFFICIENT_BUFFER
constexpr std::uint32_t kInvalidData = 13;           // ERROR_INVALID_DATA
constexpr std::size_t kBitmapHeader = 16;
constexpr std::size_t kOwnersHeader = 12;
constexpr std::size_t kEntryName = 24;

/// "\dir\file.txt::$DATA" as a user knows it: without the type of the stream, and without the name of one that has
/// none.
std::string path_of(std::string_view name) {
  const std::size_t colon = name.find(':');
  if (colon == std::string_view::npos) return std::string(name);
  const std::size_t type = name.find(':', colon + 1);
  return std::string(name.substr(0, type == colon + 1 ? colon : type));
}

ClusterOwner owner_of(std::span<const std::uint8_t> entry) {
  // LOOKUP_STREAM_FROM_CLUSTER_ENTRY_FLAG_FS_SYSTEM_FILE and _TXF_SYSTEM_FILE; the attribute is in the highest byte.
  constexpr std::uint32_t kSystemFile = 0x4 | 0x8;
  constexpr std::uint32_t kAttributes = 0xFF000000;
  constexpr std::uint32_t kIndex = 0x02000000;
  const std::uint32_t flags = bytes::le32(entry, 4);
  const std::string name = text_of_utf16(entry.subspan(kEntryName));
  if ((flags & kSystemFile) != 0) {
    const std::string path = name.substr(0, name.find(':'));
    return {.kind = ClusterOwner::Kind::system, .path = path.starts_with('\\') ? path.substr(1) : path};
  }
  if ((flags & kAttributes) == kIndex) {
    return {.kind = ClusterOwner::Kind::folder, .path = name.substr(0, name.find(':'))};
  }
  return {.kind = ClusterOwner::Kind::file, .path = path_of(name)};
}

std::uint32_t ask_some_owners(const VolumeSender& send, std::span<const std::int64_t> clusters,
                              std::map<std::int64_t, ClusterOwner>* owners) {
  constexpr std::size_t kFirstRoom = std::size_t{1} << 20;
  constexpr std::size_t kMostRoom = std::size_t{16} << 20;
  constexpr std::size_t kCluster = 8;
  std::vector<std::uint8_t> request(kCluster + clusters.size() * kCluster);
  bytes::put_le(request, 4, 4, clusters.size());
  for (std::size_t i = 0; i < clusters.size(); ++i) {
    bytes::put_le(request, kCluster + i * kCluster, kCluster, static_cast<std::uint64_t>(clusters[i]));
  }
  std::vector<std::uint8_t> reply(kFirstRoom);
  for (bool again = true;; again = false) {
    std::uint32_t returned = 0;
    const std::uint32_t code = send(kLookupStream, request, reply, &returned);
    if (code != 0 && code != kMoreData && code != kInsufficientBuffer) return code;
    std::optional<ClusterOwners> found =
        decode_cluster_owners(std::span(reply).first(std::min<std::size_t>(returned, reply.size())));
    if (!found) return code != 0 ? code : kInvalidData;
    owners->merge(found->owners);
    const bool short_of_room = found->entries < found->matches && found->bytes_needed > reply.size();
    if (!short_of_room || !again) return 0;
    reply.resize(std::min<std::size_t>(found->bytes_needed, kMostRoom));
  }
}

}  // namespace

std::optional<bool> ClusterBitmap::used(std::int64_t cluster) const {
  const std::int64_t at = cluster - first;
  if (at < 0 || at >= clusters || at / 8 >= static_cast<std::int64_t>(bits.size())) return {};
  const unsigned byte = bits[static_cast<std::size_t>(at / 8)];
  return (byte >> static_cast<unsigned>(at % 8) & 1U) != 0;
}

std::optional<ClusterBitmap> decode_volume_bitmap(std::span<const std::uint8_t> reply) {
  if (reply.size() < kBitmapHeader) return {};
  const std::uint64_t first = bytes::le64(reply, 0);
  const std::uint64_t clusters = bytes::le64(reply, 8);
  if (first > INT64_MAX || clusters > INT64_MAX - first) return {};
  const std::span<const std::uint8_t> bits = reply.subspan(kBitmapHeader);
  return ClusterBitmap{.first = static_cast<std::int64_t>(first),
                       .clusters = static_cast<std::int64_t>(clusters),
                       .bits = {bits.begin(), bits.end()}};
}

std::optional<ClusterOwners> decode_cluster_owners(std::span<const std::uint8_t> reply) {
  if (reply.size() < kOwnersHeader) return {};
  ClusterOwners found{.owners = {}, .matches = bytes::le32(reply, 4), .bytes_needed = bytes::le32(reply, 8)};
  std::size_t at = bytes::le32(reply, 0);
  for (std::uint32_t step = 1; at >= kOwnersHeader && step != 0; at += step) {
    if (at > reply.size() || reply.size() - at < kEntryName) break;
    step = bytes::le32(reply, at);
    if (step != 0 && (step < kEntryName || step > reply.size() - at)) break;
    const std::size_t length = step != 0 ? step : reply.size() - at;
    const std::span<const std::uint8_t> entry = reply.subspan(at, length);
    ++found.entries;
    found.owners.emplace(static_cast<std::int64_t>(bytes::le64(entry, 16)), owner_of(entry));
  }
  return found;
}

std::uint32_t ask_bitmap(const VolumeSender& send, std::int64_t first, std::int64_t count, ClusterBitmap* bitmap) {
  constexpr std::int64_t kMost = std::int64_t{8} << 20;
  constexpr std::int64_t kRounding = 4096;  // how far in front of `first` a file system may begin
  const auto room = static_cast<std::size_t>((std::min(count, kMost) + kRounding) / 8);
  std::vector<std::uint8_t> request(8);
  bytes::put_le(request, 0, 8, static_cast<std::uint64_t>(first - first % 8));
  std::vector<std::uint8_t> reply(kBitmapHeader + room);
  std::uint32_t returned = 0;
  const std::uint32_t code = send(kGetVolumeBitmap, request, reply, &returned);
  if (code != 0 && code != kMoreData) return code;
  const auto decoded = decode_volume_bitmap(std::span(reply).first(std::min<std::size_t>(returned, reply.size())));
  if (!decoded) return kInvalidData;
  *bitmap = *decoded;
  return 0;
}

std::uint32_t ask_owners(const VolumeSender& send, std::span<const std::int64_t> clusters,
                         std::map<std::int64_t, ClusterOwner>* owners) {
  constexpr std::size_t kAtOnce = 4096;
  while (!clusters.empty()) {
    const std::size_t some = std::min(clusters.size(), kAtOnce);
    const std::uint32_t code = ask_some_owners(send, clusters.first(some), owners);
    if (code != 0) return code;
    clusters = clusters.subspan(some);
  }
  return 0;
}
