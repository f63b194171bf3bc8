#include "virtualdisk/control.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <numeric>

#include "platform/bytes.h"
#include "tests/rooms/virtualdisk/bench.h"

namespace virtualdisk {
namespace {

using testing::Each;
using testing::ElementsAre;

constexpr std::uint32_t kVersion = 0x74080;
constexpr std::uint32_t kSend = 0x7C084;
constexpr std::uint32_t kReceive = 0x7C088;
constexpr std::uint32_t kGeometry = 0x70000;
constexpr std::uint32_t kLength = 0x7405C;
constexpr std::uint32_t kMiniport = 0x4D008;
constexpr std::uint32_t kPassThrough = 0x4D004;
constexpr std::size_t kDataReply = 528;

class ControlTest : public BenchTest {
 protected:
  static Bytes command(std::uint32_t size, std::uint8_t features, std::uint8_t low, std::uint8_t high,
                       std::uint8_t code, std::uint8_t drive = 0) {
    Bytes request(32);
    request[1] = static_cast<std::uint8_t>(size >> 8);
    const Bytes registers = {features, 1, 1, low, high, 0xA0, code, 0, drive};
    std::copy(registers.begin(), registers.end(), request.begin() + 4);
    return request;
  }
  static Bytes identify(std::uint8_t drive = 0) { return command(512, 0, 0, 0, 0xEC, drive); }
  static Bytes enable(std::uint8_t drive = 0) { return command(0, 0xD8, 0x4F, 0xC2, 0xB0, drive); }
  static Bytes attributes() { return command(512, 0xD0, 0x4F, 0xC2, 0xB0); }
  static Bytes thresholds() { return command(512, 0xD1, 0x4F, 0xC2, 0xB0); }

  static Bytes miniport() {
    Bytes request(576);
    const Bytes header = {28, 0, 0, 0, 'S',  'C', 'S', 'I', 'D', 'I', 'S',  'K',  2, 0,
                          0,  0, 1, 5, 0x1B, 0,   0,   0,   0,   0,   0x24, 0x02, 0, 0};
    std::copy(header.begin(), header.end(), request.begin());
    const Bytes inner = identify();
    std::copy(inner.begin(), inner.end(), request.begin() + 28);
    return request;
  }

  static Bytes capacity() {
    Bytes request(585);
    request[0] = 56;
    request[4] = 1;
    request[6] = 6;
    request[7] = 24;
    request[8] = 1;
    request[12] = 192;
    request[16] = 2;
    request[24] = 80;
    request[32] = 56;
    request[36] = 0x25;
    request[37] = 8;
    request[40] = 192;
    return request;
  }

  std::uint64_t number(std::size_t at, std::size_t size) const { return bytes::le(reply_, at, size); }

  /// An ATA string of the reply's IDENTIFY data, read as the drive's words hold it.
  std::string ata_text(std::size_t page, std::size_t word, std::size_t words) const {
    std::string text;
    for (std::size_t i = word; i < word + words; ++i) {
      text += static_cast<char>(reply_[page + 2 * i + 1]);
      text += static_cast<char>(reply_[page + 2 * i]);
    }
    return text;
  }

  /// The raw value of the attribute that stands at `entry`.
  std::uint64_t raw(std::size_t entry) {
    EXPECT_EQ(ask(kReceive, attributes(), kDataReply), (Outcome{0, kDataReply}));
    EXPECT_EQ(std::accumulate(reply_.begin() + 16, reply_.end(), 0U) % 256, 0U);
    return number(16 + 2 + 12 * entry + 5, 6);
  }

  /// Changes each of the first `bytes` bytes of a good request in turn; gives the places where nobody minded.
  std::vector<std::size_t> unminded(std::uint32_t code, const Bytes& good, std::size_t bytes, std::size_t room) {
    EXPECT_EQ(ask(code, good, room).code, 0U);
    std::vector<std::size_t> places;
    for (std::size_t i = 0; i < bytes; ++i) {
      Bytes bad = good;
      bad[i] ^= 0x40;
      if (ask(code, bad, room) != Outcome{87, 0}) places.push_back(i);
    }
    EXPECT_EQ(ask(code, Bytes(good.begin(), good.begin() + 31), room).code, 87U);
    return places;
  }
};

TEST_F(ControlTest, IdentifyTellsWhatTheDriveIs) {
  disk("sectors 1000000\nmodel Model X\nserial S1\nfirmware 12345678", 5);
  EXPECT_EQ(ask(kReceive, identify(5), kDataReply), (Outcome{0, kDataReply}));
  EXPECT_EQ(number(0, 4), 512U);
  EXPECT_EQ(number(4, 8), 0U);
  EXPECT_EQ(ata_text(16, 27, 20), "Model X" + std::string(33, ' '));
  EXPECT_EQ(ata_text(16, 10, 10), "S1" + std::string(18, ' '));
  EXPECT_EQ(ata_text(16, 23, 4), "12345678");
  EXPECT_EQ(number(16 + 2, 2), 992U);
  EXPECT_EQ(number(16 + 6, 2), 16U);
  EXPECT_EQ(number(16 + 112, 2), 63U);
  EXPECT_EQ(number(16 + 120, 4), 1000000U);
  EXPECT_EQ(number(16 + 200, 8), 1000000U);
  EXPECT_EQ(std::accumulate(reply_.begin() + 16, reply_.end(), 0U) % 256, 0U);
}

TEST_F(ControlTest, SizesStopAtWhatEachAnswerCanHold) {
  disk("sectors 0x1000000000000");
  ask(kReceive, identify(), kDataReply);
  EXPECT_EQ(number(16 + 120, 4), 0x0FFFFFFFU);
  EXPECT_EQ(number(16 + 200, 8), 0xFFFFFFFFFFFFU);
  EXPECT_EQ(ask(kGeometry, {}, 24), (Outcome{0, 24}));
  EXPECT_EQ(number(0, 8), 0x1000000000000U / 16065);
  EXPECT_EQ(number(8, 8), 12U | std::uint64_t{255} << 32);
  EXPECT_EQ(number(16, 8), 63U | std::uint64_t{512} << 32);
  EXPECT_EQ(ask(kLength, {}, 8), (Outcome{0, 8}));
  EXPECT_EQ(number(0, 8), std::uint64_t{1} << 57);
  disk("bus scsi\nsectors 0x1000000000000");
  EXPECT_EQ(ask(kPassThrough, capacity(), 585), (Outcome{0, 88}));
  EXPECT_THAT(Bytes(reply_.begin() + 80, reply_.begin() + 88), ElementsAre(255, 255, 255, 255, 0, 0, 2, 0));
}

TEST_F(ControlTest, GeometryAndLengthAnswerAsTold) {
  disk("sectors 8\ngeometry 3 2 1\nlength 12345");
  ask(kGeometry, {}, 24);
  EXPECT_EQ(number(0, 8), 3U);
  EXPECT_EQ(number(12, 8), 2U | std::uint64_t{1} << 32);
  ask(kLength, {}, 8);
  EXPECT_EQ(number(0, 8), 12345U);
  EXPECT_EQ(ask(kGeometry, {}, 23), (Outcome{122, 0}));
  EXPECT_EQ(ask(kLength, {}, 7), (Outcome{122, 0}));
  disk("sectors 8\ngeometry none\nlength none");
  EXPECT_EQ(ask(kGeometry, {}, 24), (Outcome{1, 0}));
  EXPECT_EQ(ask(kLength, {}, 8), (Outcome{1, 0}));
}

TEST_F(ControlTest, EveryByteOfARequestThatMattersIsLookedAt) {
  disk("sectors 8");
  EXPECT_THAT(unminded(kReceive, identify(), 13, kDataReply), ElementsAre(11));
  EXPECT_THAT(unminded(kSend, enable(), 13, 16), ElementsAre(11));
  EXPECT_THAT(unminded(kReceive, attributes(), 13, kDataReply), ElementsAre(11));
  EXPECT_EQ(ask(kReceive, identify(), kDataReply - 1).code, 122U);
  EXPECT_EQ(ask(kSend, enable(), 15).code, 122U);
  EXPECT_EQ(ask(kVersion, {}, 23).code, 122U);
  disk("sectors 8\nbus miniport");
  open_as(R"(\\.\Scsi0:)");
  EXPECT_THAT(unminded(kMiniport, miniport(), 39, 576), ElementsAre(12, 13, 14, 15, 20, 21, 22, 23));
  EXPECT_EQ(ask(kMiniport, miniport(), 575).code, 122U);
}

TEST_F(ControlTest, BusDecidesWhatAnswers) {
  disk("sectors 8\nmodel M\nbus miniport");
  for (const std::uint32_t code : {kVersion, kSend, kReceive, kMiniport, kPassThrough}) {
    EXPECT_EQ(ask(code, identify(), 600), (Outcome{1, 0})) << code;
  }
  ASSERT_EQ(open_as(R"(\\.\Scsi0:)"), 0U);
  EXPECT_EQ(ask(kMiniport, miniport(), 576), (Outcome{0, 576}));
  EXPECT_EQ(ata_text(44, 27, 1), "M ");
  EXPECT_EQ(ask(kReceive, identify(), kDataReply).code, 1U);
  EXPECT_EQ(read_at(0, 1).code, 1U);
  disk("sectors 8\nbus none");
  EXPECT_EQ(ask(kPassThrough, capacity(), 585).code, 1U);
  EXPECT_EQ(ask(kGeometry, {}, 24).code, 0U);
}

TEST_F(ControlTest, RequestsNeedTheAccessTheirCodesName) {
  disk("sectors 8");
  open_as(R"(\\.\PhysicalDrive0)", platform::kGenericRead);
  EXPECT_EQ(ask(kReceive, identify(), kDataReply).code, 5U);
  EXPECT_EQ(ask(kLength, {}, 8).code, 0U);
  open_as(R"(\\.\PhysicalDrive0)", 0);
  EXPECT_EQ(ask(kLength, {}, 8).code, 5U);
  EXPECT_EQ(ask(kGeometry, {}, 24).code, 0U);
}

TEST_F(ControlTest, RequestsTakeTheTimeThatTheDiskFileSays) {
  disk("sectors 10\nrequests 1500\nvolume Q:");
  ask(kLength, {}, 8);
  read_at(0, 1);
  EXPECT_EQ(headless::desktop.steady, 1.5) << "not transfers";
}

TEST_F(ControlTest, DeviceMapHasTheBitOfTheDrive) {
  const auto map = [&](const std::string& lines, int drive) {
    disk("sectors 8\n" + lines, drive);
    EXPECT_EQ(ask(kVersion, {}, 24), (Outcome{0, 24}));
    EXPECT_EQ(number(0, 2), 0x0101U);
    EXPECT_EQ(number(4, 4), 7U);
    return reply_[3];
  };
  EXPECT_EQ(map("", 0), 0x01);
  EXPECT_EQ(map("", 6), 0x40);
  EXPECT_EQ(map("smart nobit", 2), 0x00);
  EXPECT_EQ(map("smart atapi", 2), 0x44);
  EXPECT_EQ(map("smart atapi", 5), 0x20);
  disk("sectors 8\nsmart off");
  EXPECT_EQ(ask(kVersion, {}, 24).code, 1U);
}

TEST_F(ControlTest, SmartPagesAnswerOnceEnabled) {
  disk("sectors 8\nsmart 5 0x1233 99 98 10 0x060504030201\nsmart 194 2 3 4 5 40");
  EXPECT_EQ(ask(kReceive, attributes(), kDataReply), (Outcome{1117, 0}));
  EXPECT_EQ(ask(kSend, enable(), 16), (Outcome{0, 16}));
  EXPECT_THAT(reply_, Each(0));
  EXPECT_EQ(raw(1), 40U);
  EXPECT_THAT(Bytes(reply_.begin() + 16, reply_.begin() + 31),
              ElementsAre(0x10, 0, 5, 0x33, 0x12, 99, 98, 1, 2, 3, 4, 5, 6, 0, 194));
  EXPECT_EQ(ask(kReceive, thresholds(), kDataReply).code, 0U);
  EXPECT_THAT(Bytes(reply_.begin() + 16, reply_.begin() + 20), ElementsAre(0x10, 0, 5, 10));
  EXPECT_EQ(number(16 + 14, 2), 194U | 5U << 8);
  disk("sectors 8\nsmart disabled");
  EXPECT_EQ(ask(kSend, enable(), 16).code, 1117U);
}

TEST_F(ControlTest, CountersGrowAtTheirEvents) {
  disk(
      "sectors 100\nfail read 50 1\nfail write 60 1\nslow 70 1 5\n"
      "smart 1 0 0 0 0 0\nsmart 2 0 0 0 0 0\nsmart 3 0 0 0 0 0\nsmart 4 0 0 0 0 0\nsmart 5 0 0 0 0 0\n"
      "smart 6 0 0 0 0 0xFFFFFFFFFFFF\ngrow 1 1 on read\ngrow 2 10 on write\ngrow 3 3 on read-error\n"
      "grow 4 300 on write-error\ngrow 5 5 on slow\ngrow 6 2 on snapshot");
  ask(kSend, enable(), 16);
  EXPECT_EQ(raw(5), 0xFFFFFFFFFFFFU);
  EXPECT_EQ(raw(5), 1U);
  read_at(0, 1);
  read_at(50, 1);
  read_at(70, 1);
  read_at(99, 2);
  write_at(0, 1, 1);
  write_at(60, 11, 1);
  EXPECT_EQ(raw(0), 2U);
  EXPECT_EQ(raw(1), 10U);
  EXPECT_EQ(raw(2), 3U);
  EXPECT_EQ(raw(3), 300U);
  EXPECT_EQ(raw(4), 10U);
}

TEST_F(ControlTest, PagesOfARealDriveAnswerAsTheyStand) {
  std::string page(512, '\x11');
  page[2] = 5;
  make_file("a.page", page);
  make_file("i.page", std::string(512, 'i'));
  make_file("t.page", std::string(512, 't'));
  disk("sectors 8\nidentify i.page\nattributes a.page\nthresholds t.page\ngrow 5 1 on read");
  ask(kSend, enable(), 16);
  ask(kReceive, identify(), kDataReply);
  EXPECT_THAT(Bytes(reply_.begin() + 16, reply_.end()), Each('i'));
  ask(kReceive, thresholds(), kDataReply);
  EXPECT_THAT(Bytes(reply_.begin() + 16, reply_.end()), Each('t'));
  ask(kReceive, attributes(), kDataReply);
  EXPECT_EQ(std::string(reply_.begin() + 16, reply_.end()), page);
  read_at(0, 1);
  ask(kReceive, attributes(), kDataReply);
  EXPECT_EQ(number(16 + 7, 6), 0x111111111112U);
}

}  // namespace
}  // namespace virtualdisk
