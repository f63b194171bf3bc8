#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <vector>

/// What a mounted file system tells of its clusters: FSCTL_GET_VOLUME_BITMAP and FSCTL_LOOKUP_STREAM_FROM_CLUSTER
/// (Windows SDK, winioctl.h). Neither changes anything. A volume is asked through a handle that may read: with one that
/// may nothing, the request never reaches the file system.

/// Sends the control request `code` and fills `reply`. Gives a system error code, 0 for success; `returned` is how much
/// of the reply came, which with 234, more data, is its beginning.
using VolumeSender = std::function<std::uint32_t(std::uint32_t code, std::span<const std::uint8_t> request,
                                                 std::span<std::uint8_t> reply, std::uint32_t* returned)>;

/// VOLUME_BITMAP_BUFFER: a bit for each cluster from `first` on, the lowest bit of a byte first.
struct ClusterBitmap {
  std::int64_t first = 0;
  std::int64_t clusters = 0;  // that the volume has from there on
  std::vector<std::uint8_t> bits;

  /// Nothing for a cluster that the bitmap does not reach.
  std::optional<bool> used(std::int64_t cluster) const;
};

std::optional<ClusterBitmap> decode_volume_bitmap(std::span<const std::uint8_t> reply);

/// A stream that owns a cluster, as LOOKUP_STREAM_FROM_CLUSTER_ENTRY tells.
struct ClusterOwner {
  enum class Kind : std::uint8_t { file, folder, system } kind = Kind::file;
  std::string path;  // "\photos\img_0042.jpg", with ":stream" behind for another than the file's own
};

/// LOOKUP_STREAM_FROM_CLUSTER_OUTPUT and its entries, by cluster. Entries from the first that does not lie in the reply
/// on are left out.
struct ClusterOwners {
  std::map<std::int64_t, ClusterOwner> owners;
  std::size_t entries = 0;    // that stood in the reply
  std::uint32_t matches = 0;  // that the file system found
  std::uint32_t bytes_needed = 0;
};

std::optional<ClusterOwners> decode_cluster_owners(std::span<const std::uint8_t> reply);

/// The bitmap of `count` clusters from `first` on, up to 8 million. Gives a system error code, 0 for success.
std::uint32_t ask_bitmap(const VolumeSender& send, std::int64_t first, std::int64_t count, ClusterBitmap* bitmap);

/// The owners of `clusters`, added to `owners`. Windows reads the whole master file table for one such request, so that
/// many clusters are asked for at once. Gives a system error code, 0 for success.
std::uint32_t ask_owners(const VolumeSender& send, std::span<const std::int64_t> clusters,
                         std::map<std::int64_t, ClusterOwner>* owners);
