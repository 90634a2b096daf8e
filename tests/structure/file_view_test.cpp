// What the walk rests on: bytes by their address, used addresses, attributes that are known already.

#include "structure/file_view.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "structure/forged_structure.h"
#include "structure/used_addresses.h"

namespace {

using namespace orv_test;
using orvio::structure::ByteSource;
using orvio::structure::Cursor;
using orvio::structure::FileView;
using orvio::structure::MemoryBytes;
using orvio::structure::Use;
using orvio::structure::UsedAddresses;

std::vector<std::uint8_t> SomeBytes(size_t count) {
  std::mt19937 random(7);
  std::vector<std::uint8_t> bytes(count);
  for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>(random());
  return bytes;
}

void ExpectBytes(FileView& view, const std::vector<std::uint8_t>& bytes, std::uint64_t at, std::uint64_t count) {
  const Cursor seen = view.At(at, count);
  ASSERT_TRUE(seen.ok()) << at << " " << count;
  ASSERT_EQ(seen.left(), count);
  EXPECT_TRUE(std::equal(seen.data(), seen.data() + count, bytes.begin() + static_cast<std::ptrdiff_t>(at)))
      << at << " " << count;
}

TEST(FileViewBytes, AreThoseOfTheSourceWhereverTheyLie) {
  const std::vector<std::uint8_t> bytes = SomeBytes(700'001);
  MemoryBytes source(bytes.data(), bytes.size());
  FileView view(source);
  std::mt19937 random(8);
  for (int i = 0; i < 20'000; ++i) {
    const std::uint64_t count = random() % (i % 50 == 0 ? 70'000 : 600);
    ExpectBytes(view, bytes, random() % (bytes.size() - count), count);
  }
}

TEST(FileViewBytes, AreInOnePieceAcrossPagesThatAreNoNeighboursInMemory) {
  const std::vector<std::uint8_t> bytes = SomeBytes(600'000);
  MemoryBytes source(bytes.data(), bytes.size());
  FileView view(source);
  for (std::uint64_t page = 1; page < 140; ++page) ExpectBytes(view, bytes, page * 4096 - 8, 16);
  for (std::uint64_t page = 139; page > 0; --page) ExpectBytes(view, bytes, page * 4096 - 8, 16);
}

TEST(FileViewBytes, OfAFileThatIsReadFromFrontToEndAreTheSame) {
  const std::vector<std::uint8_t> bytes = SomeBytes(900'123);
  MemoryBytes source(bytes.data(), bytes.size());
  FileView view(source);
  for (std::uint64_t at = 0; at + 300 <= bytes.size(); at += 300) ExpectBytes(view, bytes, at, 300);
}

/// Cannot deliver anything from some offset on.
class Torn : public ByteSource {
 public:
  Torn(const std::vector<std::uint8_t>& bytes, std::uint64_t at) : bytes_(bytes), at_(at) {}
  std::uint64_t Size() const override { return bytes_.size(); }
  bool Read(std::uint64_t offset, void* buffer, std::size_t count) override {
    if (offset + count > at_) return false;
    std::copy_n(bytes_.begin() + static_cast<std::ptrdiff_t>(offset), count, static_cast<std::uint8_t*>(buffer));
    return true;
  }

 private:
  const std::vector<std::uint8_t>& bytes_;
  std::uint64_t at_;
};

TEST(FileViewBytes, AreReadUpToThePageThatCannotBeRead) {
  const std::vector<std::uint8_t> bytes = SomeBytes(100'000);
  Torn source(bytes, 11 * 4096);
  FileView view(source);
  for (std::uint64_t page = 0; page < 11; ++page) ExpectBytes(view, bytes, page * 4096, 64);
  EXPECT_FALSE(view.Unreadable());
  EXPECT_FALSE(view.At(11 * 4096, 1).ok());
  EXPECT_TRUE(view.Unreadable());
}

TEST(FileViewBytes, EndWithTheFile) {
  const std::vector<std::uint8_t> bytes = SomeBytes(5000);
  MemoryBytes source(bytes.data(), bytes.size());
  FileView view(source);
  ExpectBytes(view, bytes, 4999, 1);
  EXPECT_FALSE(view.At(4999, 2).ok());
  EXPECT_FALSE(view.At(~std::uint64_t{0}, 1).ok());
}

TEST(UsedAddressesOfAFile, RememberTheFirstUseOfEach) {
  UsedAddresses used;
  // Neighbours, one in another region, far ones, and such that are no multiples of eight.
  const std::vector<std::uint64_t> addresses = {0, 8, 16, 4096, 4088, 1'000'000'000'000, 1, 9, 4095, 999'999'999'999};
  for (const std::uint64_t address : addresses) {
    EXPECT_EQ(used.Take(address, address % 3 == 0 ? Use::kObject : Use::kStructure), Use::kNothing) << address;
  }
  for (const std::uint64_t address : addresses) {
    const Use first = address % 3 == 0 ? Use::kObject : Use::kStructure;
    EXPECT_EQ(used.Take(address, Use::kObject), first) << address;
    EXPECT_EQ(used.Take(address, Use::kStructure), first) << address;
  }
  EXPECT_EQ(used.Take(24, Use::kObject), Use::kNothing);
}

/// Two groups have the same attribute: whichever is met later is known by what stands in front of its values.
class KnownAttribute : public testing::TestWithParam<int> {};

TEST_P(KnownAttribute, IsRefusedWhereItsValuesPassTheirMessage) {
  constexpr char kName[] = "a_name_of_some_length";
  std::string bytes = Forge(kOldest, [&](hid_t file) {
    const std::vector<std::int64_t> values = {11, 12, 13};
    for (const char* name : {"a", "b"}) {
      Attribute(Group(file, name).get(), kName, H5T_NATIVE_INT64, Space({3}), values.data());
    }
  });
  ASSERT_EQ(WhatOf(bytes), "");
  size_t place = bytes.find(kName);
  if (GetParam() == 1) place = bytes.find(kName, place + 1);
  ASSERT_NE(place, std::string::npos);
  // In front of the name are eight bytes of the attribute's head and eight of the message's, with its size.
  char& size = bytes[place - 16 + 2];
  size = static_cast<char>(size - 16);
  EXPECT_EQ(WhatOf(bytes), "values of an attribute pass its message");
}

INSTANTIATE_TEST_SUITE_P(Either, KnownAttribute, testing::Values(0, 1));

}  // namespace
