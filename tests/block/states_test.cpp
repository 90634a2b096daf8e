// The listing of states, and the opening of a block in each of them.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

#include "block/reader_lease.h"
#include "block/states.h"
#include "h5/entry.h"
#include "h5/file_access.h"
#include "support/forged_file.h"
#include "support/orv_test.h"

namespace orv_test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class States : public OrvTest {
 protected:
  States() {
    for (const char* name : {"b", "a"}) file_.group(std::string("/post/singlestate/") + name + "/entityresults/Node");
    file_.group("/post/singlestate/b/elementresults");
    file_.group("/post/multistate/multientityresults/Node");
  }

  std::vector<std::string> Names() {
    const orvio::ReaderLease reader(block_, file_.path().c_str());
    return orvio::StateNames(*reader);
  }
  /// Path of what is opened for a block of this key and path; empty when nothing is.
  std::string Opened(std::int64_t key, const char* path, const char* state) {
    HelperWithKey block(key);
    block.SetBlkPath(path);
    const orvio::ReaderLease reader(block, file_.path().c_str());
    const orvio::h5::Group group = orvio::OpenInState(block, state);
    return group ? orvio::h5::NameOf(group.get()) : "";
  }

  struct HelperWithKey : ORVBlockHelper {
    explicit HelperWithKey(std::int64_t key) { m_BlkKey = key; }
  };

  ForgedFile file_;
  ORVBlockHelper block_;
  const orvio::h5::QuietHdf5 quiet_;  // as in every exported operation
};

TEST_F(States, AreListedInTheOrderOfTheirNames) { EXPECT_THAT(Names(), ElementsAre("a", "b")); }

TEST_F(States, WithANameThatIsTooLongKeepTheirPlace) {
  file_.group("/post/singlestate/aa" + std::string(511, 'x')).group("/post/singlestate/ab" + std::string(509, 'x'));
  EXPECT_THAT(Names(), ElementsAre("a", "", "ab" + std::string(509, 'x'), "b"));
}

TEST_F(States, OfAFileWithoutThemAreNone) {
  file_.at("/post").drop("singlestate");
  EXPECT_THAT(Names(), IsEmpty());
}

TEST_F(States, OfAFileThatIsNotThereAreNone) {
  const orvio::ReaderLease reader(block_, TempPath("none").c_str());
  EXPECT_THAT(orvio::StateNames(*reader), IsEmpty());
}

TEST_F(States, HoldABlockUnderItsOwnPath) {
  EXPECT_EQ(Opened(-1, "/post/singlestate/a/entityresults/Node", "b"), "/post/singlestate/b/entityresults/Node");
  EXPECT_EQ(Opened(1000, "/post/singlestate/a/entityresults/Node", "b"), "/post/singlestate/b/entityresults/Node");
}

TEST_F(States, HoldABlockBelowTheTypeGroupOfItsKey) {
  EXPECT_EQ(Opened(1100, "/post/singlestate/a/entityresults", "b"), "/post/singlestate/b/elementresults");
}

TEST_F(States, WithoutTheBlockOpenNothing) {
  EXPECT_EQ(Opened(-1, "/post/singlestate/b/elementresults", "a"), "");
  EXPECT_EQ(Opened(-1, "/post/singlestate/a/entityresults", "c"), "");
  EXPECT_EQ(Opened(-1, "/post/singlestate/a/entityresults", ""), "");
}

TEST_F(States, ForABlockWithoutAPathOpenNothing) { EXPECT_EQ(Opened(-1, "", "a"), ""); }

TEST_F(States, ForAKeyWithoutATypeGroupOpenNothing) {
  EXPECT_EQ(Opened(4711, "/post/singlestate/a/entityresults", "b"), "");
}

TEST_F(States, DoNotMatterForAKeyOfAFixedSection) {
  EXPECT_EQ(Opened(1050, "/post/multistate/multientityresults/Node", "b"), "/post/multistate/multientityresults/Node");
}

}  // namespace
}  // namespace orv_test
