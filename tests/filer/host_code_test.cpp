// Code of a host that an operation calls: what it reads meanwhile is its own, and HDF5 knows all of it.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "filer/process_state.h"
#include "orvio/oh5_io.h"
#include "orvio/orv_filer.h"
#include "support/forged_model.h"
#include "support/orv_test.h"

namespace {

using namespace orv_test;

/// A class of a host, which asks HDF5 about the groups that it is handed.
class BlockOfHost : public ORVResult {
 public:
  BlockOfHost() : ORVResult(ORV_RESULT_ENTITY) { SetEntityAndVarName("NODE", "Heat"); }
  int ReadHeader(hid_t group, int /*stages*/) override {
    has_count = H5Aexists(group, "nent");
    return 0;
  }
  hid_t OpenFile(const std::string& path) {
    EXPECT_EQ(OpenH5Reader(path.c_str(), 0), 0);
    return GetH5Reader()->GetFileId();
  }

  using ORVResult::CloseH5Reader;

  htri_t has_count = -1;
};

/// Heat in both states; in the second, Speed with components, and Force that nothing is told about. What a test has put
/// into `act` is done by the host when a handler of measures or of messages of its own is called.
class HostCode : public OrvTest, public testing::WithParamInterface<int> {
 protected:
  HostCode() {
    model_.variable({.name = "Heat", .key = "Heat"});
    model_.variable({.name = "Speed", .key = "Speed", .ncoo = 3, .rank = 1, .tensor = 1, .labels = {"X", "Y", "Z"}});
    model_.in_state(1, {.variable = "Heat", .nent = 2}).in_state(2, {.variable = "Heat", .nent = 2});
    model_.in_state(2, {.variable = "Speed", .nent = 2, .ncoo = 3}).in_state(2, {.variable = "Force", .nent = 2});
    path_ = model_.path();
    filer_ = ORVFiler(path_.c_str());
    int next_id = 1;
    EXPECT_EQ(filer_.InitReader(next_id), 0);
    act = [] {};
    calls = 0;
  }
  ~HostCode() override { ORVFiler::SetVerbosCallback(nullptr); }

  void UpdateWith(const std::function<void()>& host, bool by_message) {
    act = host;
    if (by_message) {
      ORVFiler::SetVerbosCallback(TakeMessage);
    } else {
      filer_.SetExtedComputedTypeCallBackHandler(NoMeasures);
    }
    int added = 0;
    EXPECT_EQ(filer_.UpdateContainer(2, added, -1, 0), 0);
    EXPECT_EQ(added, 2);
    EXPECT_GE(calls, 1);
  }

  static void TakeMessage(_ORVMesgType, const char*) { Act(); }
  static ORVExtVarType* NoMeasures(void*, ORVFilerExtendComputedTypeCallBackData&) {
    Act();
    return nullptr;
  }
  static void Act() {
    if (calls++ == 0) act();
  }
  static std::function<void()> act;
  static int calls;

  const orvio::Swapped<double> at_once_{orvio::process().clock_step, -1};
  const orvio::Swapped<int> index_{orvio::process().file_index, GetParam()};
  ForgedModel model_;
  std::string path_;
  ORVFiler filer_{nullptr};
};

std::function<void()> HostCode::act;
int HostCode::calls = 0;

TEST_P(HostCode, GetsGroupsThatHdf5Knows) {
  for (const bool by_message : {false, true}) {
    calls = 0;
    filer_ = ORVFiler(path_.c_str());
    int next_id = 1;
    ASSERT_EQ(filer_.InitReader(next_id), 0);
    BlockOfHost block;
    UpdateWith([&] { EXPECT_EQ(block.ReadBlock(path_.c_str(), 1, ORV_READ_HEADER), 0); }, by_message);
    EXPECT_EQ(block.has_count, 1) << by_message;
  }
}

TEST_P(HostCode, KeepsAReaderForItself) {
  BlockOfHost block;
  hid_t file = -1;
  UpdateWith([&] { file = block.OpenFile(path_); }, false);
  EXPECT_GT(H5Iis_valid(file), 0);
  EXPECT_EQ(block.CloseH5Reader(), 0);
}

TEST_P(HostCode, IsReadForAmongTheReadsOfTheOperation) {
  ORVResult block(ORV_RESULT_ENTITY);
  block.SetEntityAndVarName("NODE", "Heat");
  UpdateWith([&] { EXPECT_EQ(block.ReadBlock(path_.c_str(), 1, ORV_READ_HEADER), 0); }, false);
  EXPECT_EQ(block.m_nent, 2);
}

int errors = 0;
herr_t CountErrors(hid_t, void*) {
  ++errors;
  return 0;
}

TEST_P(HostCode, GetsNoErrorsOfHdf5OutOfTheLibrary) {
  errors = 0;
  const auto host = [] {
    Check(H5Eset_auto2(H5E_DEFAULT, CountErrors, nullptr), "handler");
    int value = 0;
    EXPECT_EQ(OH5Read_ATTRIBUTE(-1, "x", 0, nullptr, ORV_INT, &value), 1);
    EXPECT_EQ(errors, 0);
    EXPECT_LT(H5Gopen2(-1, "x", H5P_DEFAULT), 0);
    EXPECT_EQ(errors, 1);
  };
  UpdateWith(host, false);
  EXPECT_EQ(errors, 1);
}

TEST_P(HostCode, SilencesHdf5ForGoodWhenItBeginsToWrite) {
  MaySilenceHdf5();
  ORVFiler writer(TempPath("written").c_str());
  const auto host = [&] {
    EXPECT_EQ(writer.InitForWriting(TempPath("written").c_str(), ORV_VERSION_2_2, ORV_FILE_CREATE, false), 0);
  };
  UpdateWith(host, false);
  H5E_auto2_t func = CountErrors;
  void* data = nullptr;
  EXPECT_GE(H5Eget_auto2(H5E_DEFAULT, &func, &data), 0);
  EXPECT_EQ(func, nullptr);
}

INSTANTIATE_TEST_SUITE_P(ByHdf5AndByWhatIsKnown, HostCode, testing::Values(0, 1));

}  // namespace
