#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "platform/headless/headless.h"
#include "virtualdisk/state.h"
#include "virtualdisk/virtualdisk.h"

/// The words in which the tests of virtual disks are written.
namespace virtualdisk {

using Bytes = std::vector<std::uint8_t>;

inline constexpr std::uint32_t kReadWrite = platform::kGenericRead | platform::kGenericWrite;

/// A result of a call: the code and how many sectors or bytes came back.
struct Outcome {
  std::uint32_t code = 0;
  std::uint32_t moved = 0;
  bool operator==(const Outcome&) const = default;
};

inline void PrintTo(const Outcome& outcome, std::ostream* to) {
  *to << "code " << outcome.code << ", moved " << outcome.moved;
}

class BenchTest : public testing::Test {
 protected:
  void SetUp() override {
    headless::desktop = {};
    state = {};
  }
  void TearDown() override {
    state = {};
    std::filesystem::remove_all(path(""));
  }

  /// A name of this test's own, since tests run side by side.
  static std::string path(const std::string& name) {
    const testing::TestInfo& test = *testing::UnitTest::GetInstance()->current_test_info();
    const std::filesystem::path folder =
        std::filesystem::path(testing::TempDir()) /
        ("disks-" + std::to_string(getpid()) + "-" + std::string(test.test_suite_name()) + "-" + test.name());
    std::filesystem::create_directories(folder);
    return (folder / name).string();
  }

  static std::string make_file(const std::string& name, const std::string& contents) {
    std::ofstream(path(name), std::ios::binary) << contents;
    return path(name);
  }

  static std::string contents_of(const std::string& name) {
    std::ifstream file(path(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  /// Attaches a disk file of these lines as drive 0 and opens it.
  void disk(const std::string& lines, int drive = 0) {
    ASSERT_EQ(attach(drive, make_file("disk.vd", lines)), "");
    ASSERT_EQ(open_as(R"(\\.\PhysicalDrive)" + std::to_string(drive)), 0U);
  }

  std::uint32_t open_as(const std::string& name, std::uint32_t access = kReadWrite) {
    return open(name, access, 3, &handle_);
  }

  Outcome read_at(std::int64_t lba, std::uint32_t sectors) {
    buffer_.assign(sectors * 512U, 0xEE);
    std::uint32_t moved = 0;
    const std::uint32_t sought = seek(handle_, lba * 512, nullptr, platform::kFileBegin);
    const std::uint32_t code = sought != 0 ? sought : read(handle_, buffer_.data(), sectors * 512U, &moved);
    return {code, moved / 512};
  }

  Outcome write_at(std::int64_t lba, std::uint32_t sectors, std::uint8_t fill) {
    const Bytes data(sectors * 512U, fill);
    std::uint32_t moved = 0;
    const std::uint32_t sought = seek(handle_, lba * 512, nullptr, platform::kFileBegin);
    const std::uint32_t code = sought != 0 ? sought : write(handle_, data.data(), sectors * 512U, &moved);
    return {code, moved / 512};
  }

  /// The first byte of each of these sectors, or an empty answer when they cannot be read.
  Bytes first_bytes(std::int64_t lba, std::uint32_t sectors) {
    Bytes firsts;
    if (read_at(lba, sectors) != Outcome{0, sectors}) return firsts;
    for (std::size_t i = 0; i < sectors; ++i) firsts.push_back(buffer_[i * 512]);
    return firsts;
  }

  /// Sends a request; the answer is in reply_.
  Outcome ask(std::uint32_t code, const Bytes& request, std::size_t room) {
    reply_.assign(room, 0xEE);
    Outcome outcome;
    outcome.code = control(handle_, code, request.data(), static_cast<std::uint32_t>(request.size()), reply_.data(),
                           static_cast<std::uint32_t>(room), &outcome.moved);
    return outcome;
  }

  platform::Handle handle_ = platform::kInvalidHandle;
  Bytes buffer_;
  Bytes reply_;
};

}  // namespace virtualdisk
