#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

/// Bytes of a volume.
struct VolumeStretch {
  std::int64_t first = 0;
  std::int64_t bytes = 0;
};

/// Of how many clusters in use one stretch asks the owner.
inline constexpr std::size_t kMostNamedClusters = 64;

/// What owns each stretch of the volume `name` ("E:") of drive `drive`, in their order: "file \photos\img_0042.jpg", up
/// to three files and how many more, "free space", "file system's own area ($MFT)", or "owner cannot be learned: " and
/// why; behind it the clusters in the file system's own count, "(cluster 4711)". Opens the volume for reading and
/// closes it.
std::vector<std::string> volume_owners(int drive, const std::string& name, std::span<const VolumeStretch> stretches);
