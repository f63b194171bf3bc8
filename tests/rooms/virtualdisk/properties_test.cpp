#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/bytes.h"
#include "tests/rooms/virtualdisk/bench.h"

namespace virtualdisk {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::SizeIs;

constexpr std::uint32_t kQuery = 0x2D1400;
constexpr std::uint32_t kPredict = 0x2D1100;
constexpr std::uint32_t kPassThrough = 0x4D004;
constexpr std::uint32_t kVersion = 0x74080;

class PropertiesTest : public BenchTest {
 protected:
  static Bytes property(std::uint32_t number, std::size_t bytes = 12) {
    Bytes query(bytes);
    bytes::put_le(query, 0, 4, number);
    return query;
  }

  /// STORAGE_PROPERTY_QUERY with STORAGE_PROTOCOL_SPECIFIC_DATA and the page's room behind it.
  static Bytes nvme(std::uint32_t number, std::uint32_t type, std::uint32_t value, std::uint32_t length,
                    std::size_t room) {
    Bytes query = property(number, 48 + room);
    bytes::put_le(query, 8, 4, 3);
    bytes::put_le(query, 12, 4, type);
    bytes::put_le(query, 16, 4, value);
    bytes::put_le(query, 24, 4, 40);
    bytes::put_le(query, 28, 4, length);
    return query;
  }
  static Bytes log(std::uint32_t length = 512, std::size_t room = 512) { return nvme(50, 2, 2, length, room); }

  static Bytes scsi(const Bytes& cdb, std::uint32_t data_bytes = 512, std::uint16_t header = 56) {
    Bytes request(96 + data_bytes);
    bytes::put_le(request, 0, 2, header);
    request[6] = static_cast<std::uint8_t>(cdb.size());
    request[7] = 32;
    request[8] = 1;
    bytes::put_le(request, 12, 4, data_bytes);
    bytes::put_le(request, 24, 8, 96);
    bytes::put_le(request, 32, 4, 56);
    std::copy(cdb.begin(), cdb.end(), request.begin() + 36);
    return request;
  }

  /// The data of a command that went well.
  Bytes answer(const Bytes& cdb) {
    const Bytes request = scsi(cdb);
    EXPECT_EQ(ask(kPassThrough, request, request.size()).code, 0U);
    EXPECT_EQ(reply_[2], 0);
    return {reply_.begin() + 96, reply_.begin() + 96 + static_cast<std::ptrdiff_t>(bytes::le32(reply_, 12))};
  }

  /// The sense bytes of one that did not.
  Bytes sense(const Bytes& cdb) {
    const Bytes request = scsi(cdb);
    EXPECT_EQ(ask(kPassThrough, request, request.size()).code, 0U);
    EXPECT_EQ(reply_[2], 2) << "check condition";
    return {reply_.begin() + 56, reply_.begin() + 56 + reply_[7]};
  }

  std::string text_at(std::size_t at) const {
    const std::size_t offset = bytes::le32(reply_, at);
    return offset == 0 ? std::string() : reinterpret_cast<const char*>(reply_.data()) + offset;
  }
};

TEST_F(PropertiesTest, TheDescriptorNamesTheDriveAsItsBusDoes) {
  const auto told = [&](const std::string& bus) {
    disk("sectors 8\nmodel MAKER One two three four five\nserial S1\nfirmware F1\nbus " + bus);
    EXPECT_EQ(ask(kQuery, property(0), 1024).code, 0U);
    return std::to_string(bytes::le32(reply_, 28)) + ":" + text_at(12) + ":" + text_at(16) + ":" + text_at(24);
  };
  EXPECT_EQ(told("ata"), "11::MAKER One two three four five:S1");
  EXPECT_EQ(told("scsi"), "1:MAKER   :One two three fo:S1");
  EXPECT_EQ(told("usb"), "7:MAKER   :One two three fo:S1");
  EXPECT_EQ(told("sas"), "10:MAKER   :One two three fo:S1");
  EXPECT_EQ(told("raid"), "8:MAKER   :One two three fo:S1");
  EXPECT_EQ(told("nvme"), "17:NVMe:MAKER One two three four five:0025_3800_0000_0001.");
  EXPECT_EQ(told("nvme hidden\nserial-property X_1."), "8:NVMe:MAKER One two three four five:X_1.");
  disk("sectors 8\nbus none");
  EXPECT_EQ(ask(kQuery, property(0), 1024), (Outcome{1, 0}));
}

TEST_F(PropertiesTest, LengthsAreCheckedAsTheClassDriverDoes) {
  disk("sectors 8\nbus nvme");
  EXPECT_EQ(ask(kQuery, property(0, 11), 1024).code, 87U);
  EXPECT_EQ(ask(kQuery, property(0), 7).code, 122U);
  EXPECT_EQ(ask(kQuery, property(0), 40), (Outcome{0, 8})) << "the header alone, with the size to ask for";
  const std::size_t size = bytes::le32(reply_, 4);
  EXPECT_EQ(ask(kQuery, property(0), size), (Outcome{0, static_cast<std::uint32_t>(size)}));
  EXPECT_EQ(ask(kQuery, property(77), 1024).code, 1U);
  EXPECT_EQ(ask(kQuery, log(), 560), (Outcome{0, 560}));
  EXPECT_EQ(ask(kQuery, log(), 559).code, 87U);
  EXPECT_EQ(ask(kQuery, log(511), 560).code, 87U);
  EXPECT_EQ(ask(kQuery, log(0xFFFFFFF0), 560).code, 87U);
  EXPECT_EQ(ask(kQuery, nvme(50, 2, 3, 512, 512), 560).code, 1117U) << "an unknown log page";
  EXPECT_EQ(ask(kQuery, nvme(49, 1, 1, 4096, 4096), 4144), (Outcome{0, 4144}));
  EXPECT_EQ(ask(kPredict, {}, 516).code, 1U);
  disk("sectors 8");
  EXPECT_EQ(ask(kQuery, log(), 560).code, 1U);
  EXPECT_EQ(ask(kPredict, {}, 515).code, 122U);
}

TEST_F(PropertiesTest, PassThroughTakesTheHeaderOfA64BitProgramAlone) {
  const Bytes inquiry = {0x12, 0, 0, 0, 96, 0};
  disk("sectors 8\nmodel MAKER Disk\nserial S1\nbus sas");
  const Bytes good = scsi(inquiry);
  EXPECT_EQ(ask(kPassThrough, good, good.size()).code, 0U);
  EXPECT_EQ(ask(kPassThrough, scsi(inquiry, 512, 44), good.size()).code, 1306U);
  EXPECT_EQ(ask(kPassThrough, Bytes(good.begin(), good.begin() + 44), good.size()).code, 87U);
  EXPECT_EQ(ask(kPassThrough, good, good.size() - 1).code, 87U) << "no room for the data";
  Bytes wild = good;
  bytes::put_le(wild, 24, 8, UINT64_MAX - 8);
  EXPECT_EQ(ask(kPassThrough, wild, good.size()).code, 87U);
  for (const std::string bus : {"ata", "nvme", "nvme hidden", "none"}) {
    disk("sectors 8\nbus " + bus);
    EXPECT_EQ(ask(kPassThrough, good, good.size()).code, 1U) << bus;
  }
}

TEST_F(PropertiesTest, ASasDriveAnswersItsCommands) {
  disk(
      "sectors 8\nmodel MAKER Disk\nserial S1\nbus sas\nhealth asc 0x5D\nhealth ascq 16\nhealth grown-defects 3\n"
      "health read-uncorrected 7\nhealth temperature 41");
  EXPECT_EQ(ask(kVersion, {}, 24).code, 1U) << "no SMART requests";
  EXPECT_THAT(answer({0x12, 1, 0x80, 0, 252, 0}), ElementsAre(0, 0x80, 0, 2, 'S', '1'));
  EXPECT_THAT(answer({0x4D, 0, 0x6F, 0, 0, 0, 0, 0, 252, 0}),
              ElementsAre(0x2F, 0, 0, 8, 0, 0, 3, 4, 0x5D, 0x10, 41, 0));
  EXPECT_THAT(answer({0x4D, 0, 0x43, 0, 0, 0, 0, 0, 252, 0}),
              ElementsAre(3, 0, 0, 12, 0, 6, 3, 8, 0, 0, 0, 0, 0, 0, 0, 7));
  EXPECT_THAT(answer({0x37, 0, 0x0D, 0, 0, 0, 0, 0, 4, 0}), ElementsAre(0, 0x0D, 0, 24));
  EXPECT_EQ(sense({0x12, 1, 0x89, 2, 0x3C, 0})[12], 0x24) << "no ATA drive";
}

TEST_F(PropertiesTest, ABridgeThatTranslatesSaysSoAndOneThatDoesNotHangs) {
  const Bytes values = {0x85, 8, 0x0E, 0, 0xD0, 0, 1, 0, 0, 0, 0x4F, 0, 0xC2, 0, 0xB0, 0};
  const Bytes status = {0x85, 6, 0x2C, 0, 0xDA, 0, 0, 0, 0, 0, 0x4F, 0, 0xC2, 0, 0xB0, 0};
  disk("sectors 8\nbus usb sat\nsmart 5 1 36 36 36 9");
  const Bytes information = [&] {
    const Bytes request = scsi({0x12, 1, 0x89, 2, 0x3C, 0}, 572);
    EXPECT_EQ(ask(kPassThrough, request, request.size()).code, 0U);
    return Bytes(reply_.begin() + 96, reply_.end());
  }();
  EXPECT_EQ(information[1], 0x89);
  EXPECT_EQ(information[56], 0xEC);
  EXPECT_THAT(answer(values), SizeIs(512));
  EXPECT_THAT(sense(status), testing::AllOf(SizeIs(22), testing::Contains(0xF4), testing::Contains(0x2C)));
  disk("sectors 8\nbus usb");
  sense({0x12, 1, 0x89, 2, 0x3C, 0});
  EXPECT_EQ(read_at(0, 1).code, 0U);
  sense(values);
  EXPECT_EQ(read_at(0, 1).code, 1167U);
}

TEST_F(PropertiesTest, HealthComesFromFilesAndFieldsAndGrows) {
  std::string page(512, '\0');
  page[3] = 77;
  make_file("h.bin", page);
  make_file("later.bin", std::string(512, '\x5A'));
  make_file("c.bin", std::string(4096, 'c'));
  disk(
      "sectors 8\nbus nvme\ncontroller c.bin\nhealth h.bin\nhealth later later.bin\nhealth media-errors 5\n"
      "health temperature 40\ngrow temperature 2 on read");
  read_at(0, 1);
  ask(kQuery, log(), 560);
  EXPECT_EQ(reply_[48 + 3], 77);
  EXPECT_EQ(bytes::le16(reply_, 48 + 1), 40 + 273 + 2);
  EXPECT_EQ(reply_[48 + 160], 5);
  ask(kQuery, log(), 560);
  EXPECT_EQ(reply_[48 + 3], 0x5A) << "the later page";
  ask(kQuery, nvme(49, 1, 1, 4096, 4096), 4144);
  EXPECT_EQ(reply_[48 + 2000], 'c');
  disk("sectors 8\nbus nvme\nhealth host-reads 0x7FFFFFFFFFFFFFFF\ngrow host-reads 0x7FFFFFFFFFFFFFFF on read");
  for (int i = 0; i < 3; ++i) read_at(0, 1);
  ask(kQuery, log(), 560);
  EXPECT_EQ(reply_[48 + 64 + 8], 1) << "carried into the upper half";
  const auto mistake = [&](const std::string& line) { return attach(0, make_file("wrong.vd", "sectors 8\n" + line)); };
  EXPECT_THAT(mistake("health nonsense.bin"), HasSubstr("2: nonsense.bin"));
  EXPECT_THAT(mistake("health spare"), HasSubstr("2: "));
  EXPECT_THAT(mistake("health h.bin\nhealth h.bin"), HasSubstr("3: a second health file"));
  EXPECT_THAT(mistake("grow spare 1 at read"), HasSubstr("grow FIELD STEP on EVENT"));
  EXPECT_THAT(mistake("bus nvme shown"), HasSubstr("too much on the line"));
  EXPECT_THAT(mistake("controller h.bin"), HasSubstr("fewer than 4096 bytes"));
}

}  // namespace
}  // namespace virtualdisk
