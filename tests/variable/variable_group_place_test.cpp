// Where the block of a group of variables is, its copies, and a write over one that exists. What is read and written is
// in variable_group_block_test.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "orvio/oh5_reader.h"
#include "orvio/orv_filer.h"
#include "orvio/orv_variable_grp.h"
#include "support/forged_model.h"
#include "support/orv_test.h"
#include "support/raw_file.h"
#include "variable/forged_variable.h"

namespace {

using orv_test::ForgedModel;
using orv_test::RawFile;
using testing::ElementsAre;

constexpr char kPlace[] = "/post/constant/variablegroup";
constexpr char kSingle[] = "/post/constant/variablegroup/LOADS/orvblock";

// ---- The group of the block

struct OpenableGroup : ORVVariableGrp {
  using ORVBlock::SetH5Reader;
};

class VariableGroupPlace : public orv_test::OrvTest {};

TEST_F(VariableGroupPlace, IsItsPathInTheSingleLayoutAndItsNameInTheSplitOne) {
  ForgedModel model;
  model.group("LOADS", 3, {{"FORCE", 3, 0}});
  OH5Reader reader(model.path().c_str());
  const hid_t file = reader.GetFileId();
  OpenableGroup group;
  std::strcpy(group.m_grpName, "LOADS");
  EXPECT_EQ(group.GetVariableGroupBlkGrp(file, file), -1);  // without a reader
  group.SetH5Reader(&reader);
  group.SetBlkPath(kSingle);
  const hid_t by_path = group.GetVariableGroupBlkGrp(file, -1);
  EXPECT_GT(by_path, 0);
  EXPECT_GT(H5Aexists(by_path, "nvar"), 0);
  H5Gclose(by_path);
  group.SetBlkPath("");
  const hid_t place = reader.OpenGroup(file, kPlace, 0);
  const hid_t by_name = group.GetVariableGroupBlkGrp(-1, place);
  EXPECT_GT(by_name, 0);
  EXPECT_GT(H5Lexists(by_name, "orvblock", H5P_DEFAULT), 0);
  H5Gclose(by_name);
  H5Gclose(place);
  group.SetH5Reader(nullptr);
}

TEST_F(VariableGroupPlace, OfANameWithoutAnEndIsThatOfItsWidth) {
  ForgedModel model;
  const std::string name(256, 'n');
  model.file().group(std::string(kPlace) + "/" + name);
  OH5Reader reader(model.path().c_str());
  OpenableGroup group;
  std::memcpy(group.m_grpName, name.data(), 256);
  group.m_nvar = 0x41414141;  // stands behind the name
  group.SetH5Reader(&reader);
  const hid_t place = reader.OpenGroup(reader.GetFileId(), kPlace, 0);
  const hid_t found = group.GetVariableGroupBlkGrp(-1, place);
  EXPECT_GT(found, 0);
  H5Gclose(found);
  H5Gclose(place);
  group.SetH5Reader(nullptr);
}

// ---- Copies, and writing again

class VariableGroupOverwrite : public orv_test::OrvTest {
 protected:
  VariableGroupOverwrite() {
    std::strcpy(group_.m_grpName, "LOADS");
    group_.m_ncoo = 9;
    Point(2);
  }

  void Point(int count) {
    group_.m_nvar = count;
    group_.m_pCnt = counts_;
    group_.m_pOffs = offsets_;
    group_.m_pKeys = keys_.data();
  }
  std::string Write() {
    MaySilenceHdf5();
    const std::string path = TempPath("written.orv");
    ORVFiler filer(path.c_str());
    EXPECT_EQ(filer.InitForWriting(path.c_str(), ORV_VERSION_2_2, ORV_FILE_CREATE, false), 0);
    EXPECT_EQ(filer.WriteBlock(&group_, 0, ORV_WRITE_HEADER | ORV_WRITE_DATA), 0);
    return path;
  }
  int WriteAgain(const std::string& path, int what = ORV_WRITE_HEADER | ORV_WRITE_DATA) {
    const orv_test::WriterVersion version(ORV_VERSION_2_2);
    return group_.WriteBlock(path.c_str(), 0, what);
  }

  int counts_[3] = {3, 6, 1}, offsets_[3] = {0, 3, 9};
  std::string keys_ = std::string(768, 'k');
  ORVVariableGrp group_;
};

TEST_F(VariableGroupOverwrite, ReplacesHeaderAndData) {
  const std::string path = Write();
  counts_[0] = 4;
  offsets_[1] = 5;
  keys_[0] = 'K';
  group_.m_ncoo = 11;
  EXPECT_EQ(WriteAgain(path), 0);
  const RawFile raw(path);
  EXPECT_EQ(raw.attribute_int(kSingle, "ncoo"), 11);
  EXPECT_EQ(raw.attribute_text(kSingle, "blocktype"), "variablegroup" + std::string(243, ' '));
  const std::string at = std::string(kSingle) + "/";
  EXPECT_THAT(raw.values<std::int32_t>(at + "cnt"), ElementsAre(4, 6));
  EXPECT_THAT(raw.values<std::int32_t>(at + "offs"), ElementsAre(0, 5));
  EXPECT_EQ(raw.texts(at + "varkey")[0], "K" + std::string(255, 'k'));
}

TEST_F(VariableGroupOverwrite, OfTheHeaderOrTheDataLeavesTheOtherAlone) {
  const std::string path = Write(), counts = std::string(kSingle) + "/cnt";
  group_.m_ncoo = 11;
  counts_[0] = 4;
  EXPECT_EQ(WriteAgain(path, ORV_WRITE_DATA), 0);
  EXPECT_EQ(RawFile(path).attribute_int(kSingle, "ncoo"), 9);
  EXPECT_THAT(RawFile(path).values<std::int32_t>(counts), ElementsAre(4, 6));
  counts_[0] = 5;
  EXPECT_EQ(WriteAgain(path, ORV_WRITE_HEADER), 0);
  EXPECT_EQ(RawFile(path).attribute_int(kSingle, "ncoo"), 11);
  EXPECT_THAT(RawFile(path).values<std::int32_t>(counts), ElementsAre(4, 6));
}

TEST_F(VariableGroupOverwrite, PutsADifferentKindOfBlocktypeAside) {
  ForgedModel model;
  model.file().at(kSingle).integer("blocktype", 3);
  EXPECT_EQ(WriteAgain(model.path(), ORV_WRITE_HEADER), 0);
  EXPECT_EQ(RawFile(model.path()).attribute_text(kSingle, "blocktype"), "variablegroup" + std::string(243, ' '));
}

TEST_F(VariableGroupOverwrite, ByAShorterOneFailsAndKeepsTheData) {
  Point(3);
  const std::string path = Write();
  Point(2);
  counts_[0] = 7;
  EXPECT_EQ(WriteAgain(path, ORV_WRITE_DATA), 1);
  EXPECT_THAT(RawFile(path).values<std::int32_t>(std::string(kSingle) + "/cnt"), ElementsAre(3, 6, 1));
}

TEST_F(VariableGroupOverwrite, ByAShorterOrALongerOneChangesNothing) {
  const std::string path = Write();
  const std::string before = orv_test::BytesOf(path);
  for (const int count : {1, 3}) {
    Point(count);
    EXPECT_EQ(WriteAgain(path), 1) << count;
    EXPECT_TRUE(orv_test::BytesOf(path) == before) << count;
  }
}

TEST_F(VariableGroupOverwrite, EndsAtTheFirstArrayThatIsMissing) {
  const std::string path = Write(), at = std::string(kSingle) + "/";
  keys_[0] = 'K';
  counts_[0] = 4;
  offsets_[0] = 5;
  group_.m_pOffs = nullptr;
  EXPECT_EQ(WriteAgain(path), 1);
  EXPECT_THAT(RawFile(path).values<std::int32_t>(at + "cnt"), ElementsAre(4, 6));
  EXPECT_EQ(RawFile(path).texts(at + "varkey")[0], std::string(256, 'k'));
  group_.m_pOffs = offsets_;
  group_.m_pCnt = nullptr;
  EXPECT_EQ(WriteAgain(path), 1);
  EXPECT_THAT(RawFile(path).values<std::int32_t>(at + "offs"), ElementsAre(0, 3));
}

TEST_F(VariableGroupOverwrite, WritesNoDataBehindAHeaderThatFails) {
  ForgedModel model;
  model.file().at(kSingle).real("ncoo", 1.5);  // no integer: the header ends there
  EXPECT_EQ(WriteAgain(model.path()), 1);
  EXPECT_FALSE(RawFile(model.path()).exists(std::string(kSingle) + "/cnt"));
}

TEST_F(VariableGroupOverwrite, IsOfACopyAsOfTheOriginal) {
  ORVVariable variable;
  group_.AppendVariable(&variable);
  ORVVariableGrp copy;
  copy = group_;
  EXPECT_STREQ(copy.m_grpName, "LOADS");
  EXPECT_EQ(copy.m_ncoo, 9);
  EXPECT_EQ(copy.m_nvar, 2);
  EXPECT_EQ(copy.m_pCnt, counts_);
  EXPECT_EQ(copy.m_pOffs, offsets_);
  EXPECT_EQ(copy.m_pKeys, keys_.data());
  EXPECT_THAT(copy.m_variables, ElementsAre(&variable));
}

}  // namespace
