#include "health/pages.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <numeric>

#include "device/storage_query.h"
#include "platform/bytes.h"

namespace {

using Page = std::vector<std::uint8_t>;

Page nvme_log() {
  Page page(512);
  bytes::put_le(page, 1, 2, 312);
  page[3] = 100;
  page[4] = 10;
  page[5] = 3;
  bytes::put_le(page, 128, 8, 3149);
  bytes::put_le(page, 160, 8, 2);
  return page;
}

struct Entry {
  std::uint8_t id;
  std::uint64_t raw;
};

Page ata_page(std::initializer_list<Entry> entries) {
  Page page(512);
  std::size_t at = 2;
  for (const Entry& entry : entries) {
    page[at] = entry.id;
    page[at + 3] = 100;
    bytes::put_le(page, at + 5, 6, entry.raw);
    at += 12;
  }
  page[511] = static_cast<std::uint8_t>(0U - std::accumulate(page.begin(), page.end(), 0U));
  return page;
}

TEST(NvmeLog, TellsWhatTheDriveMeans) {
  Health health;
  ASSERT_TRUE(take_nvme_log(nvme_log(), &health));
  EXPECT_EQ(health.celsius, 39);
  EXPECT_EQ(health.spare, 100);
  EXPECT_EQ(health.spare_threshold, 10);
  EXPECT_EQ(health.used, 3);
  EXPECT_EQ(health.power_on_hours, 3149U);
  EXPECT_EQ(health.media_errors, 2U);
}

TEST(NvmeLog, ARealPageIsReadAsItsBytesStand) {
  // linux-nvme/nvme-cli issue 2759, 1 April 2025: get-log of page 02h, as far as it is published.
  Page page(512);
  const Page head = {0x00, 0x38, 0x01, 0x64, 0x0A, 0x01};
  std::copy(head.begin(), head.end(), page.begin());
  bytes::put_le(page, 32, 8, 0x0828BC3A);
  bytes::put_le(page, 48, 8, 0x034CFCC4);
  Health health;
  ASSERT_TRUE(take_nvme_log(page, &health));
  EXPECT_EQ(health.critical_warning, 0);
  EXPECT_EQ(health.celsius, 39);
  EXPECT_EQ(health.spare, 100);
  EXPECT_EQ(health.spare_threshold, 10);
  EXPECT_EQ(health.used, 1);
  EXPECT_EQ(health.data_read, 136'887'354U);
  EXPECT_EQ(health.data_written, 55'377'092U);
}

TEST(NvmeLog, NoTemperatureIsNoneAndAReservedThresholdToo) {
  Page page = nvme_log();
  page[1] = page[2] = 0;
  page[4] = 101;
  Health health;
  ASSERT_TRUE(take_nvme_log(page, &health));
  EXPECT_FALSE(health.celsius) << "0 K is no temperature";
  EXPECT_FALSE(health.spare_threshold);
}

TEST(NvmeLog, CountersBeyond64BitsStopAtTheLargest) {
  Page page = nvme_log();
  page[168] = 1;
  Health health;
  ASSERT_TRUE(take_nvme_log(page, &health));
  EXPECT_EQ(health.media_errors, std::numeric_limits<std::uint64_t>::max());
}

TEST(NvmeLog, PagesThatNoDriveCanMeanAreNone) {
  Health health;
  EXPECT_FALSE(take_nvme_log(Page(512), &health)) << "nothing but zeros";
  EXPECT_FALSE(take_nvme_log(Page(512, 0xFF), &health));
  EXPECT_FALSE(take_nvme_log(Page(511, 1), &health));
  Page page = nvme_log();
  page[3] = 101;
  EXPECT_FALSE(take_nvme_log(page, &health)) << "more than all of the spare";
  EXPECT_FALSE(health.answered || health.spare || health.celsius);
}

TEST(NvmeController, IsOneWithAVendorAndANamespace) {
  Page page(4096, ' ');
  const std::string model = "Model";
  std::copy(model.begin(), model.end(), page.begin() + 24);
  ASSERT_TRUE(decode_nvme_controller(page));
  EXPECT_EQ(clean_id(decode_nvme_controller(page)->model), "Model");
  bytes::put_le(page, 516, 4, 0);
  EXPECT_FALSE(decode_nvme_controller(page));
  EXPECT_FALSE(decode_nvme_controller(Page(4095, ' ')));
}

TEST(AtaPages, RawValuesHaveAllSixBytesAndSectorsTheirOwnMeaning) {
  Health health;
  ASSERT_TRUE(take_ata_pages(ata_page({{241, 0x060504030201}, {5, 70'000}, {197, 500}, {190, 0x1900001D}}), {}, false,
                             &health));
  EXPECT_EQ(attribute_of(health, 241)->raw, 0x060504030201U);
  EXPECT_EQ(health.reallocated, 70'000U) << "more than two bytes";
  EXPECT_EQ(health.pending, 500U);
  EXPECT_EQ(health.celsius, 29);
  ASSERT_TRUE(take_ata_pages(ata_page({{5, 7249925243267}}), {}, true, &health));
  EXPECT_EQ(health.reallocated, 387U) << "the maker keeps other counts above";
}

TEST(AtaPages, AWrongChecksumOrAnEmptyListIsNoPage) {
  Health health;
  Page page = ata_page({{5, 1}});
  page[20] ^= 1;
  EXPECT_FALSE(take_ata_pages(page, {}, false, &health));
  EXPECT_FALSE(take_ata_pages(ata_page({}), {}, false, &health));
  EXPECT_FALSE(take_ata_pages({}, {}, false, &health));
  EXPECT_FALSE(health.answered);
}

TEST(SmartStatus, IsToldByTwoRegistersHoweverTheyCome) {
  EXPECT_EQ(status_of_registers(0x4F, 0xC2), std::optional(false));
  EXPECT_EQ(status_of_registers(0xF4, 0x2C), std::optional(true));
  EXPECT_EQ(status_of_registers(0x4F, 0x2C), std::nullopt);
  Page descriptor(22);
  descriptor[0] = 0x72;
  descriptor[8] = 9;
  descriptor[9] = 12;
  descriptor[17] = 0xF4;
  descriptor[19] = 0x2C;
  EXPECT_EQ(status_of_sense(descriptor), std::optional(true));
  EXPECT_EQ(status_of_sense(Bytes(descriptor).first(21)), std::nullopt);
  Page fixed(18);
  fixed[0] = 0x70;
  fixed[10] = 0x4F;
  fixed[11] = 0xC2;
  fixed[13] = 0x1D;
  EXPECT_EQ(status_of_sense(fixed), std::optional(false));
  fixed[12] = 0x24;
  EXPECT_EQ(status_of_sense(fixed), std::nullopt) << "another sense code: the registers are none";
}

TEST(ScsiPages, ParametersAreFoundBehindOthersAndNeverBehindTheEnd) {
  const Page exceptions = {0x6F, 0, 0, 17, 0, 1, 3, 1, 9, 0, 0, 3, 8, 0x5D, 0x10, 41, 0, 0, 0, 0, 0};
  Health health;
  ASSERT_TRUE(take_exceptions(exceptions, &health));
  EXPECT_EQ(health.asc, 0x5D);
  EXPECT_EQ(health.ascq, 0x10);
  EXPECT_EQ(health.celsius, 41);
  for (std::size_t size = 0; size < 15; ++size) {
    Health nothing;
    EXPECT_FALSE(take_exceptions(Bytes(exceptions).first(size), &nothing)) << size;
  }
  EXPECT_FALSE(take_exceptions(Page{0x0D, 0, 0, 6, 0, 0, 3, 2, 0x5D, 0}, &health)) << "another page";
  EXPECT_EQ(uncorrected_errors(Page{3, 0, 0, 8, 0, 6, 3, 4, 0, 0, 1, 2}, 3), 258U);
  EXPECT_EQ(uncorrected_errors(Page{3, 0, 0, 8, 0, 5, 3, 4, 0, 0, 1, 2}, 3), std::nullopt);
  EXPECT_EQ(grown_defects(Page{0, 0x0D, 0, 24}), 3U);
  EXPECT_EQ(grown_defects(Page{0, 0x05, 0, 24}), std::nullopt) << "no list of grown ones";
  EXPECT_EQ(grown_defects(Page{0, 0x0B, 0, 24}), std::nullopt) << "entries of no known length";
}

TEST(Temperature, IsTheFirstThatIsReported) {
  Page reply(24 + 32);
  bytes::put_le(reply, 12, 2, 9);  // more than there are
  bytes::put_le(reply, 26, 2, 0x8000);
  bytes::put_le(reply, 42, 2, 0xFFFB);
  EXPECT_EQ(decode_temperature(reply), -5);
  EXPECT_EQ(decode_temperature(Bytes(reply).first(40)), std::nullopt);
  EXPECT_EQ(decode_temperature(Bytes(reply).first(23)), std::nullopt);
}

TEST(Descriptor, TextsThatDoNotEndInTheReplyAreAbsent) {
  Page reply(60, 'x');
  std::fill(reply.begin(), reply.begin() + 36, std::uint8_t{0});
  bytes::put_le(reply, 4, 4, 60);
  bytes::put_le(reply, 12, 4, 40);
  bytes::put_le(reply, 16, 4, 50);
  bytes::put_le(reply, 20, 4, 3);
  bytes::put_le(reply, 24, 4, 0xFFFFFFFF);
  reply[44] = 0;
  const auto told = decode_device_descriptor(reply);
  ASSERT_TRUE(told);
  EXPECT_EQ(told->vendor, "xxxx");
  EXPECT_EQ(told->product + told->revision + told->serial, "");
  EXPECT_FALSE(decode_device_descriptor(Bytes(reply).first(35)));
  EXPECT_EQ(model_of({.vendor = "NVMe    ", .product = "Model\x01 2 "}), "Model  2");
  EXPECT_EQ(model_of({.vendor = "SEAGATE ", .product = "ST600"}), "SEAGATE ST600");
}

}  // namespace
