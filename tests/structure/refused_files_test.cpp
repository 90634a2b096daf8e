// Files that HDF5 writes and the structure check refuses: they lead to other files, or use parts of HDF5 that result
// files do not. And what the check makes of sources that do not deliver.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstring>
#include <fstream>

#include "structure/file_bytes.h"
#include "structure/forged_structure.h"
#include "support/orv_test.h"

namespace {

using namespace orv_test;
using orvio::structure::ByteSource;
using orvio::structure::CheckStructure;
using orvio::structure::FileBytes;
using orvio::structure::MemoryBytes;

class RefusedFile : public OrvTest {
 protected:
  static std::string WhatOfFile(
      const Format& format, const std::function<void(hid_t list)>& set,
      const Contents& contents = [](hid_t file) { Group(file, "group"); }) {
    const Id creation = CreationList(format);
    set(creation.get());
    return WhatOf(Forge(format, contents, creation));
  }
};

TEST_F(RefusedFile, TakesValuesFromARawFile) {
  const auto contents = [](hid_t file) {
    Dataset(file, "values", H5T_NATIVE_CHAR, Space({100}),
            Properties([](hid_t list) { Check(H5Pset_external(list, "/etc/passwd", 0, 100), "external"); }), false);
  };
  EXPECT_EQ(WhatOf(Forge(kOldest, contents)), "dataset keeps its values in other files");
  EXPECT_EQ(WhatOf(Forge(kLatest, contents)), "dataset keeps its values in other files");
}

TEST_F(RefusedFile, TakesValuesFromOtherDatasets) {
  const auto contents = [](hid_t file) {
    const Id space = Space({10});
    Dataset(file, "values", H5T_NATIVE_INT, space, Properties([&](hid_t list) {
              Check(H5Pset_virtual(list, space.get(), "other.h5", "there", space.get()), "virtual");
            }),
            false);
  };
  EXPECT_EQ(WhatOf(Forge(kLatest, contents)), "dataset takes its values from other files");
}

TEST_F(RefusedFile, KeepsItsFreeSpace) {
  const auto set = [](hid_t list) {
    Check(H5Pset_file_space_strategy(list, H5F_FSPACE_STRATEGY_FSM_AGGR, true, 1), "strategy");
  };
  EXPECT_EQ(WhatOfFile(kLatest, set), "file keeps its free space");
}

TEST_F(RefusedFile, IsOrganisedInPages) {
  const auto set = [](hid_t list) {
    Check(H5Pset_file_space_strategy(list, H5F_FSPACE_STRATEGY_PAGE, false, 1), "strategy");
  };
  EXPECT_EQ(WhatOfFile(kLatest, set), "file is organised in pages");
}

TEST_F(RefusedFile, KeepsMessagesInATable) {
  const auto set = [](hid_t list) {
    Check(H5Pset_shared_mesg_nindexes(list, 1), "indexes");
    Check(H5Pset_shared_mesg_index(list, 0, H5O_SHMESG_ALL_FLAG, 10), "index");
  };
  EXPECT_EQ(WhatOfFile(kLatest, set), "file keeps messages in a table of its own");
}

TEST_F(RefusedFile, FiltersItsLinks) {
  const auto contents = [](hid_t file) {
    const Id list(H5Pcreate(H5P_GROUP_CREATE), "list");
    Check(H5Pset_deflate(list.get(), 3), "deflate");
    const Id group(H5Gcreate2(file, "group", H5P_DEFAULT, list.get(), H5P_DEFAULT), "group");
    for (int i = 0; i < 20; ++i) Group(group.get(), "g" + std::to_string(i));
  };
  EXPECT_EQ(WhatOf(Forge(kLatest, contents)), "fractal heap is filtered");
}

TEST_F(RefusedFile, HasALinkWithATooLongName) {
  const auto contents = [](hid_t file) { Group(file, std::string(70000, 'n')); };
  EXPECT_EQ(WhatOf(Forge(kOldest, contents)), "name of a link is too long");
}

/// A source that tells a size and delivers nothing behind some offset.
class PoorSource : public ByteSource {
 public:
  PoorSource(std::string bytes, std::uint64_t size, std::uint64_t good)
      : bytes_(std::move(bytes)), size_(size), good_(good) {}
  std::uint64_t Size() const override { return size_; }
  bool Read(std::uint64_t offset, void* buffer, std::size_t count) override {
    if (offset >= good_) return false;
    MemoryBytes held(bytes_.data(), bytes_.size());
    return held.Read(offset, buffer, count);
  }

 private:
  std::string bytes_;
  std::uint64_t size_;
  std::uint64_t good_;
};

std::string ManyGroups() {
  return Forge(kOldest, [](hid_t file) {
    for (int i = 0; i < 60; ++i) Group(file, "group " + std::to_string(i));
  });
}

TEST_F(RefusedFile, CannotBeReadToItsEnd) {
  const std::string bytes = ManyGroups();
  PoorSource whole(bytes, bytes.size(), bytes.size());
  EXPECT_FALSE(CheckStructure(whole));
  PoorSource part(bytes, bytes.size(), 1000);
  const auto fault = CheckStructure(part);
  ASSERT_TRUE(fault);
  EXPECT_STREQ(fault->what, "file cannot be read");
}

TEST_F(RefusedFile, IsTooLarge) {
  PoorSource source(ManyGroups(), (std::uint64_t{1} << 48) + 1, 0);
  const auto fault = CheckStructure(source);
  ASSERT_TRUE(fault);
  EXPECT_STREQ(fault->what, "file is too large");
}

TEST_F(RefusedFile, IsEmptyOrNoHdf5File) {
  EXPECT_EQ(WhatOf(""), "file has no HDF5 signature");
  EXPECT_EQ(WhatOf(std::string(100000, 'x')), "file has no HDF5 signature");
  EXPECT_EQ(WhatOf("\x89HDF\r\n\x1a\n"), "file is cut short");
}

class FileBytesTest : public OrvTest {
 protected:
  int Open(const std::string& bytes) {
    const std::string path = TempPath("bytes");
    std::ofstream(path, std::ios::binary) << bytes;
    descriptor_ = open(path.c_str(), O_RDONLY);
    return descriptor_;
  }
  ~FileBytesTest() override {
    if (descriptor_ >= 0) close(descriptor_);
  }

 private:
  int descriptor_ = -1;
};

TEST_F(FileBytesTest, ReadsAnywhereWithoutMovingThePosition) {
  FileBytes bytes(Open("0123456789"), 10);
  char read[5] = {};
  EXPECT_EQ(bytes.Size(), 10U);
  EXPECT_TRUE(bytes.Read(6, read, 4));
  EXPECT_STREQ(read, "6789");
  EXPECT_TRUE(bytes.Read(0, read, 2));
  EXPECT_EQ(std::string(read, 2), "01");
  EXPECT_TRUE(bytes.Read(10, read, 0));
}

TEST_F(FileBytesTest, DoesNotReadBehindTheSizeItWasGiven) {
  FileBytes bytes(Open("0123456789"), 8);
  char read[5] = {};
  EXPECT_FALSE(bytes.Read(6, read, 3));
  EXPECT_FALSE(bytes.Read(9, read, 1));
  EXPECT_FALSE(bytes.Read(~std::uint64_t{0}, read, 2));
}

TEST_F(FileBytesTest, TellsThatTheFileHasBecomeShorter) {
  FileBytes bytes(Open("0123456789"), 20);
  char read[5] = {};
  EXPECT_FALSE(bytes.Read(8, read, 4));
}

TEST_F(FileBytesTest, CheckPassesAFileFromADescriptor) {
  const std::string bytes = ManyGroups();
  FileBytes source(Open(bytes), bytes.size());
  EXPECT_FALSE(CheckStructure(source));
}

}  // namespace
