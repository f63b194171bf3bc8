#include "places/volume_requests.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/bytes.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

/// A reply with one entry for each name, the clusters counted from 7.
Bytes reply_of(const std::vector<std::pair<std::uint32_t, std::u16string>>& streams) {
  Bytes reply(16);
  bytes::put_le(reply, 0, 4, streams.empty() ? 0 : 16);
  bytes::put_le(reply, 4, 4, streams.size());
  std::uint64_t cluster = 7;
  for (const auto& [flags, name] : streams) {
    const std::size_t at = reply.size();
    const std::size_t length = 24 + 2 * name.size() + 2;
    reply.resize(at + length);
    bytes::put_le(reply, at, 4, cluster - 6 == streams.size() ? 0 : length);
    bytes::put_le(reply, at + 4, 4, flags);
    bytes::put_le(reply, at + 16, 8, cluster++);
    for (std::size_t i = 0; i < name.size(); ++i) bytes::put_le(reply, at + 24 + 2 * i, 2, name[i]);
  }
  return reply;
}

ClusterOwner only_owner(std::uint32_t flags, const std::u16string& name) {
  return decode_cluster_owners(reply_of({{flags, name}}))->owners.at(7);
}

TEST(ClusterOwnersReply, GivesPathsAsAUserKnowsThem) {
  EXPECT_EQ(only_owner(0x01000000, u"\\a\\b.txt::$DATA").path, "\\a\\b.txt");
  EXPECT_EQ(only_owner(0x01000000, u"\\a\\b.txt:note:$DATA").path, "\\a\\b.txt:note");
  EXPECT_EQ(only_owner(0x01000000, u"\\h\u00E4\u20AC\u4E2D\n::$DATA").path, "\\h\xE4\x80??");
  const ClusterOwner folder = only_owner(0x02000000, u"\\a:$I30:$INDEX_ALLOCATION");
  EXPECT_EQ(folder.kind, ClusterOwner::Kind::folder);
  EXPECT_EQ(folder.path, "\\a");
  const ClusterOwner system = only_owner(0x01000004, u"\\$Mft::$DATA");
  EXPECT_EQ(system.kind, ClusterOwner::Kind::system);
  EXPECT_EQ(system.path, "$Mft");
}

TEST(ClusterOwnersReply, LeavesOutWhatDoesNotLieInIt) {
  Bytes reply = reply_of({{0x01000000, u"\\a"}, {0x01000000, u"\\b"}});
  EXPECT_EQ(decode_cluster_owners(reply)->owners.size(), 2U);
  for (const std::uint32_t step : {1U, 23U, 1000U, 0xFFFFFFFFU}) {
    bytes::put_le(reply, 16, 4, step);
    EXPECT_EQ(decode_cluster_owners(reply)->entries, 0U) << step;
  }
  bytes::put_le(reply, 0, 4, 0xFFFFFFF0);
  EXPECT_EQ(decode_cluster_owners(reply)->entries, 0U);
  EXPECT_FALSE(decode_cluster_owners(std::span(reply).first(11)));
}

TEST(ClusterOwnersReply, IsAskedForAgainWithTheRoomThatItNeeds) {
  std::vector<std::size_t> rooms;
  const VolumeSender send = [&](std::uint32_t, std::span<const std::uint8_t> request, std::span<std::uint8_t> reply,
                                std::uint32_t* returned) {
    rooms.push_back(reply.size());
    EXPECT_EQ(bytes::le32(request, 4), 2U);
    const Bytes all = reply_of({{0x01000000, u"\\a"}, {0x01000000, u"\\b"}});
    const std::size_t given = rooms.size() == 1 ? 12 : all.size();
    std::copy_n(all.begin(), given, reply.begin());
    if (rooms.size() == 1) bytes::put_le(reply, 0, 4, 0);
    bytes::put_le(reply, 8, 4, 3 << 20);
    *returned = static_cast<std::uint32_t>(given);
    return 0U;
  };
  std::map<std::int64_t, ClusterOwner> owners;
  EXPECT_EQ(ask_owners(send, std::vector<std::int64_t>{7, 8}, &owners), 0U);
  EXPECT_THAT(rooms, testing::ElementsAre(1 << 20, 3 << 20));
  EXPECT_EQ(owners.size(), 2U);
}

TEST(VolumeBitmaps, BeginWhereTheFileSystemSays) {
  Bytes reply(16);
  reply[0] = 8;
  reply[8] = 10;
  reply.insert(reply.end(), {0x02, 0x03});
  const auto bitmap = decode_volume_bitmap(reply);
  ASSERT_TRUE(bitmap);
  EXPECT_EQ(bitmap->used(7), std::nullopt);
  EXPECT_EQ(bitmap->used(8), false);
  EXPECT_EQ(bitmap->used(9), true);
  EXPECT_EQ(bitmap->used(17), true);
  EXPECT_EQ(bitmap->used(18), std::nullopt) << "behind the volume's last cluster";
  reply.resize(17);
  EXPECT_EQ(decode_volume_bitmap(reply)->used(16), std::nullopt) << "the reply was cut off";
}

}  // namespace
