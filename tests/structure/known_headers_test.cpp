// Two objects with the same header: the one that is met second is known by the first. What is wrong with it must be
// found as it is found beside one with another header.

#include <gtest/gtest.h>

#include <array>
#include <cstring>

#include "structure/forged_structure.h"

namespace {

using namespace orv_test;

struct Range {
  std::uint64_t at;
  std::uint64_t size;
};

std::uint64_t Number(const std::string& bytes, std::uint64_t at, size_t width) {
  std::uint64_t value = 0;
  std::memcpy(&value, bytes.data() + at, width);
  return value;
}

std::uint64_t AddressOf(hid_t file, const char* name) {
  H5O_info2_t info;
  Check(H5Oget_info_by_name3(file, name, &info, H5O_INFO_BASIC, H5P_DEFAULT), name);
  std::uint64_t address = 0;
  std::memcpy(&address, &info.token, sizeof address);
  return address;
}

/// A file with twins "a" and "b", and where in it their headers are.
struct Twins {
  std::string bytes;
  std::array<Range, 2> messages;
};

Twins ForgeTwins(const std::function<void(hid_t file, const char* name)>& make) {
  Twins twins;
  twins.bytes = Forge(kOldest, [&](hid_t file) {
    for (const char* name : {"a", "b"}) make(file, name);
    twins.messages = {Range{AddressOf(file, "a"), 0}, Range{AddressOf(file, "b"), 0}};
  });
  return twins;
}

/// Groups as those of blocks: with attributes, which HDF5 moves to a continuation of the header.
Twins ForgeGroups() {
  Twins twins = ForgeTwins([](hid_t file, const char* name) {
    const Id group = Group(file, name);
    Attribute(group.get(), "blocktype", FixedText(256).get(), Space({}), std::string(256, *name).c_str());
    IntegerAttribute(group.get(), "nent", *name);
    IntegerAttribute(group.get(), "nindex", 10 * *name);
    Attribute(group.get(), "etyp", FixedText(256).get(), Space({}), std::string(256, *name).c_str());
  });
  for (Range& place : twins.messages) {
    const std::uint64_t header = place.at;
    place = {Number(twins.bytes, header + 24, 8), Number(twins.bytes, header + 32, 8)};
  }
  return twins;
}

Twins ForgeDatasets() {
  Twins twins = ForgeTwins([](hid_t file, const char* name) { Dataset(file, name, H5T_NATIVE_INT32, {30, 4}); });
  for (Range& place : twins.messages) place = {place.at, 16 + Number(twins.bytes, place.at + 8, 4)};
  return twins;
}

std::string WithChanged(std::string bytes, std::uint64_t at, int mask) {
  bytes[at] = static_cast<char>(bytes[at] ^ mask);
  return bytes;
}

std::string Told(const std::string& bytes) {
  const auto fault = FaultOf(bytes);
  return fault ? std::string(fault->what) + " at " + std::to_string(fault->offset) : "nothing";
}

/// Changes each byte of both headers, beside its twin and beside one that the byte at `harmless` makes another. At least
/// `least` changes in each are found.
void ExpectFound(const Twins& twins, std::uint64_t harmless, int least) {
  for (const size_t which : {0U, 1U}) {
    int found = 0;
    const Range& changed = twins.messages[which];
    const std::string apart = WithChanged(twins.bytes, twins.messages[1 - which].at + harmless, 1);
    EXPECT_EQ(Told(apart), "nothing");
    for (std::uint64_t i = 0; i < changed.size; ++i) {
      for (const int mask : {0x01, 0x40, 0x80, 0xff}) {
        const std::string told = Told(WithChanged(twins.bytes, changed.at + i, mask));
        EXPECT_EQ(told, Told(WithChanged(apart, changed.at + i, mask))) << "byte " << i << ", mask " << mask;
        if (told != "nothing") ++found;
      }
    }
    EXPECT_GE(found, least);
  }
}

TEST(GroupsWithTheSameAttributes, AreJudgedAsAmongOthers) {
  const Twins twins = ForgeGroups();
  ASSERT_EQ(WhatOf(twins.bytes), "");
  ASSERT_EQ(twins.messages[0].size, twins.messages[1].size);
  // All messages are in the continuation: the table, and 4 attributes with heads and values.
  ASSERT_EQ(Number(twins.bytes, twins.messages[0].at, 2), 0x11);
  ASSERT_GT(twins.messages[0].size, 24 + 2 * 256 + 2 * 8);
  const size_t name = twins.bytes.find("nindex", twins.messages[0].at);
  ExpectFound(twins, name - twins.messages[0].at, 400);
}

TEST(DatasetsWithTheSameHeader, AreJudgedAsAmongOthers) {
  const Twins twins = ForgeDatasets();
  ASSERT_EQ(WhatOf(twins.bytes), "");
  ASSERT_EQ(twins.messages[0].size, twins.messages[1].size);
  constexpr std::uint64_t kExtent = 16 + 8 + 8;
  ASSERT_EQ(Number(twins.bytes, twins.messages[0].at + kExtent, 8), 30);
  constexpr std::uint64_t kReserved = 16 + 5;  // in the head of the first message
  ExpectFound(twins, kReserved, 300);
}

TEST(GroupsWithTheSameAttributes, MayDifferInTheValuesOfThese) {
  const Twins twins = ForgeGroups();
  for (const Range& messages : twins.messages) {
    const size_t name = twins.bytes.find("nent", messages.at);
    ASSERT_LT(name, messages.at + messages.size);
    const std::uint64_t value = name + 8 + 16 + 8;  // behind the name, its type and its space
    ASSERT_TRUE(Number(twins.bytes, value, 8) == 'a' || Number(twins.bytes, value, 8) == 'b');
    EXPECT_EQ(WhatOf(WithChanged(twins.bytes, value, 0x7f)), "");
  }
}

}  // namespace
