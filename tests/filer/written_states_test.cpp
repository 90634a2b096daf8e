// The names of the states that a writer keeps from one change to the next: they are those of the file, whoever changes it
// in between.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/stat.h>

#include "filer/two_nodes.h"
#include "h5/checked_files.h"
#include "orvio/oh5_io.h"
#include "orvio/orv_filer.h"
#include "orvio/orv_result.h"
#include "orvio/orv_switches.h"
#include "support/orv_test.h"
#include "support/raw_file.h"
#include "support/raw_hdf5.h"

namespace {

using namespace orv_test;
using orvio::h5::FileStamp;
using orvio::h5::KnownFiles;
using testing::ElementsAre;
using testing::Pointee;

constexpr char kStates[] = "/post/singlestate";

/// One that a host derives is handed ids by HDF5, and may do with them what it wants.
class HostsResult : public ORVResult {
 public:
  HostsResult() : ORVResult(ORV_RESULT_ENTITY) {}
  int WriteData(hid_t group) override {
    const Id file(H5Iget_file_id(group), "file");
    const Id made(H5Gcreate2(file.get(), "/post/singlestate/state000000000002", H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT),
                  "state");
    return ORVResult::WriteData(group);
  }
};

class WrittenStates : public OrvTest {
 protected:
  WrittenStates() {
    MaySilenceHdf5();
    EXPECT_EQ(filer_.InitForWriting(path_.c_str(), ORV_VERSION_2_2, ORV_FILE_CREATE, false), 0);
  }

  int Write(ORVResult& result, const char* variable, int state) {
    return WriteTwoNodes(filer_, result, variable, state, 1.5F);
  }
  int Write(const char* variable, int state) {
    ORVResult result(ORV_RESULT_ENTITY);
    return Write(result, variable, state);
  }

  std::shared_ptr<const std::vector<std::string>> Kept() const {
    struct stat info = {};
    EXPECT_EQ(stat(path_.c_str(), &info), 0);
    return KnownFiles().FindNames(FileStamp(info));
  }
  std::vector<std::string> StatesOnDisk() const { return RawFile(path_).children(kStates); }
  /// Makes an empty state with HDF5 alone.
  void MakeState(const std::string& name) const {
    const Id file(H5Fopen(path_.c_str(), H5F_ACC_RDWR, H5P_DEFAULT), path_);
    const std::string path = std::string(kStates) + "/" + name;
    const Id made(H5Gcreate2(file.get(), path.c_str(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT), name);
  }

  const std::string path_ = TempPath("states.orv");
  ORVFiler filer_{path_.c_str()};
};

TEST_F(WrittenStates, AreKeptFromOneWriteToTheNext) {
  ASSERT_EQ(Write("Velocity", 1), 0);
  EXPECT_THAT(Kept(), Pointee(ElementsAre("state000000000001")));
  ASSERT_EQ(Write("Velocity", 2), 0);
  ASSERT_EQ(Write("Stress", 2), 0);
  EXPECT_THAT(Kept(), Pointee(ElementsAre("state000000000001", "state000000000002")));
  EXPECT_THAT(StatesOnDisk(), ElementsAre("state000000000001", "state000000000002"));
  EXPECT_EQ(Write("Velocity", 4), 1) << "there would be a gap";
}

TEST_F(WrittenStates, AreThoseBetweenBeginAndEnd) {
  ASSERT_EQ(Write("Velocity", 1), 0);
  ASSERT_EQ(filer_.BeginState(2), 0);
  ASSERT_EQ(Write("Velocity", 2), 0);
  ASSERT_EQ(Write("Stress", 2), 0);
  ASSERT_EQ(filer_.EndState(), 0);
  EXPECT_THAT(Kept(), Pointee(ElementsAre("state000000000001", "state000000000002")));
}

TEST_F(WrittenStates, AreForgottenWithAStateThatIsDropped) {
  ASSERT_EQ(Write("Velocity", 1), 0);
  ASSERT_EQ(filer_.BeginState(2), 0);
  ASSERT_EQ(Write("Velocity", 2), 0);
  ASSERT_EQ(filer_.EndState(false), 0);
  EXPECT_EQ(Kept(), nullptr);
  EXPECT_EQ(Write("Velocity", 3), 1) << "there would be a gap";
  ASSERT_EQ(Write("Velocity", 2), 0);
  EXPECT_THAT(StatesOnDisk(), ElementsAre("state000000000001", "state000000000002"));
}

TEST_F(WrittenStates, FollowWhatAnotherProgramAdds) {
  ASSERT_EQ(Write("Velocity", 1), 0);
  MakeState("state000000000002");
  ASSERT_EQ(Write("Velocity", 3), 0);
  EXPECT_THAT(StatesOnDisk(), ElementsAre("state000000000001", "state000000000002", "state000000000003"));
}

TEST_F(WrittenStates, AreFoundByTheirPlaceWhereNumbersAreMissing) {
  ASSERT_EQ(Write("Velocity", 1), 0);
  MakeState("state000000000007");
  ASSERT_EQ(Write("Velocity", 2), 0);  // the one that is there
  ASSERT_EQ(Write("Velocity", 3), 0);
  ASSERT_EQ(Write("Stress", 2), 0);  // by now another one
  EXPECT_THAT(StatesOnDisk(), ElementsAre("state000000000001", "state000000000003", "state000000000007"));
  const RawFile raw(path_);
  EXPECT_TRUE(raw.exists("/post/singlestate/state000000000007/entityresults/NODE/Velocity"));
  EXPECT_TRUE(raw.exists("/post/singlestate/state000000000003/entityresults/NODE/Stress"));
}

TEST_F(WrittenStates, AreNotKeptWhereABlockOfAHostWrites) {
  HostsResult result;
  ASSERT_EQ(Write("Velocity", 1), 0);
  ASSERT_EQ(filer_.BeginState(1), 0);
  ASSERT_EQ(Write("Strain", 1), 0);
  ASSERT_EQ(Write(result, "Stress", 1), 0);
  ASSERT_EQ(Write("Velocity", 3), 0) << "the block has made the second";
  ASSERT_EQ(filer_.EndState(), 0);
  EXPECT_EQ(Kept(), nullptr);
  EXPECT_THAT(StatesOnDisk(), ElementsAre("state000000000001", "state000000000002", "state000000000003"));
}

TEST_F(WrittenStates, AreNotKeptWhereAHostHasTheFileOpen) {
  ASSERT_EQ(Write("Velocity", 1), 0);
  ASSERT_EQ(filer_.BeginState(1), 0);
  hid_t file = -1;
  ASSERT_EQ(OH5WriteOpenFile(path_.c_str(), ORV_FILE_APPEND, &file), 0);
  {
    const Id made(H5Gcreate2(file, "/post/singlestate/state000000000002", H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT),
                  "state");
  }
  ASSERT_EQ(Write("Velocity", 3), 0);
  EXPECT_EQ(OH5WriteCloseFile(file), 0);
  ASSERT_EQ(filer_.EndState(), 0);
  EXPECT_EQ(Kept(), nullptr);
  EXPECT_THAT(StatesOnDisk(), ElementsAre("state000000000001", "state000000000002", "state000000000003"));
}

std::string file_of_callback;

/// Makes a second state with the ids that the library hands out.
_ORVAction MakeSecondState(int /*att*/, ORVBlock* /*block*/, void* /*path*/, void* /*reserved*/) {
  hid_t file = -1;
  EXPECT_EQ(OH5WriteOpenFile(file_of_callback.c_str(), ORV_FILE_APPEND, &file), 0);
  const Id made(H5Gcreate2(file, "/post/singlestate/state000000000002", H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT),
                "state");
  EXPECT_EQ(OH5WriteCloseFile(file), 0);
  return ORV_ACTION_CONTINUE;
}

TEST_F(WrittenStates, AreNotKeptWhereACallbackOpensTheFile) {
  file_of_callback = path_;
  ORVResult result(ORV_RESULT_ENTITY);
  result.SetLinkCallBack(MakeSecondState);
  ASSERT_EQ(Write("Velocity", 1), 0);
  ASSERT_EQ(Write(result, "Stress", 1), 0);
  EXPECT_EQ(Kept(), nullptr);
  ASSERT_EQ(Write("Velocity", 3), 0);
  EXPECT_THAT(StatesOnDisk(), ElementsAre("state000000000001", "state000000000002", "state000000000003"));
}

}  // namespace
