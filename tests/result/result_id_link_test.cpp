// Ids that result blocks share by a soft link, and those of their own in its place.

#include <algorithm>
#include <cstring>

#include "result/written_result.h"

namespace {

using namespace orv_test;

/// What the link callback was asked and what it answers.
struct LinkAnswer {
  std::string path;
  int asked = 0;
  int att = 0;
  ORVBlock* block = nullptr;
  void* reserved = nullptr;
  bool zeroed = false;
};
LinkAnswer* link_answer = nullptr;

_ORVAction AnswerLink(int att, ORVBlock* block, void* path, void* reserved) {
  auto* text = static_cast<char*>(path);
  link_answer->zeroed = std::string(text, 512) == std::string(512, '\0');
  link_answer->att = att;
  link_answer->block = block;
  link_answer->reserved = reserved;
  ++link_answer->asked;
  std::memcpy(text, link_answer->path.data(), std::min<size_t>(link_answer->path.size(), 512));
  return ORV_ACTION_CONTINUE;
}

class ResultIdLink : public OrvTest {
 protected:
  ResultIdLink() {
    link_answer = &answer_;
    file_->at("/post/constant/shared").dataset<int>("entid", {2}, {10, 20}).dataset<int>("longer", {3}, {1, 2, 3});
    file_->dataset<float>("floats", {2}, {1, 2})
        .dataset<int>("rows", {2, 1}, {1, 2})
        .texts("texts", 4, {2}, {"a", "b"});
    nodes_.block.SetLinkCallBack(AnswerLink);
  }
  ~ResultIdLink() override { link_answer = nullptr; }

  int Write(const std::string& answer) {
    answer_.path = answer;
    return nodes_.Write(file_->path(), 1, 2);
  }

  static constexpr char kIds[] = "/post/singlestate/state000000000001/entityresults/Node/VELOCITY/data/entid";
  LinkAnswer answer_;
  std::optional<ForgedFile> file_{std::in_place, "link"};
  Nodes nodes_;
};

TEST_F(ResultIdLink, LeadsToTheDatasetThatTheCallbackNames) {
  EXPECT_EQ(Write("post/constant/shared/entid"), 0);
  EXPECT_EQ(answer_.asked, 1);
  EXPECT_EQ(answer_.att, 13);
  EXPECT_EQ(answer_.block, &nodes_.block);
  EXPECT_EQ(answer_.reserved, nullptr);
  EXPECT_TRUE(answer_.zeroed);
  const RawFile raw(file_->path());
  ASSERT_TRUE(raw.is_soft_link(kIds));
  EXPECT_EQ(raw.link_target(kIds), "/post/constant/shared/entid");
  EXPECT_EQ(nodes_.block.m_readIds, 1);
}

TEST_F(ResultIdLink, IsReadLikeIds) {
  EXPECT_EQ(Write("post/constant/shared/entid"), 0);
  Nodes read;
  read.ids = {0, 0};
  EXPECT_EQ(read.block.ReadBlock(file_->path().c_str(), 1, ORV_READ_DATA), 0);
  EXPECT_EQ(read.ids, (Ints{10, 20}));
}

TEST_F(ResultIdLink, IsNotMadeForAnEmptyAnswer) {
  EXPECT_EQ(Write(""), 0);
  EXPECT_FALSE(RawFile(file_->path()).is_soft_link(kIds));
  EXPECT_EQ(RawFile(file_->path()).values<int>(kIds), (Ints{10, 20}));
}

TEST_F(ResultIdLink, IsNotMadeToADatasetThatDoesNotFit) {
  const char* answers[] = {"post/constant/shared/longer", "post/constant/shared/floats",
                           "post/constant/shared/rows",   "post/constant/shared/texts",
                           "post/constant/shared/none",   "post/none/none",
                           "post/constant/shared",        "post"};
  int state = 0;
  for (const char* answer : answers) {
    answer_.path = answer;
    EXPECT_EQ(nodes_.Write(file_->path(), ++state, 2), 0) << answer;
    const std::string ids =
        "/post/singlestate/state00000000000" + std::to_string(state) + "/entityresults/Node/VELOCITY/data/entid";
    EXPECT_FALSE(RawFile(file_->path()).is_soft_link(ids)) << answer;
    EXPECT_EQ(RawFile(file_->path()).values<int>(ids), (Ints{10, 20})) << answer;
  }
}

TEST_F(ResultIdLink, IsNotMadeForIdsThatAreNoIntegers) {
  Floats ids{10, 20};
  nodes_.block.m_entid = ids.data();
  nodes_.block.m_entidType = ORV_FLOAT;
  for (const char* answer : {"post/constant/shared/floats", "post/constant/shared/entid"}) {
    const Writer writer(1, 1);
    nodes_.block.m_readIds = 1;
    EXPECT_EQ(Write(answer), 1) << answer;
    EXPECT_EQ(nodes_.block.m_readIds, 0);
    EXPECT_FALSE(RawFile(file_->path()).exists(kIds)) << answer;
  }
}

TEST_F(ResultIdLink, OutgrowsNoBuffer) {
  EXPECT_EQ(Write(std::string(600, 'x')), 0);
  EXPECT_EQ(RawFile(file_->path()).values<int>(kIds), (Ints{10, 20}));
}

TEST_F(ResultIdLink, IsNotAskedForWithoutIds) {
  nodes_.block.m_readIds = 0;
  EXPECT_EQ(Write("post/constant/shared/entid"), 0);
  EXPECT_EQ(answer_.asked, 0);
  EXPECT_FALSE(RawFile(file_->path()).exists(kIds));
}

TEST_F(ResultIdLink, StaysWhenTheBlockIsWrittenAgain) {
  EXPECT_EQ(Write("post/constant/shared/entid"), 0);
  const Writer writer(1, 1);
  EXPECT_EQ(Write("post/constant/shared/entid"), 0);
  EXPECT_EQ(RawFile(file_->path()).link_target(kIds), "/post/constant/shared/entid");
}

TEST_F(ResultIdLink, GivesWayToOwnIdsWithoutChangingTheShared) {
  EXPECT_EQ(Write("post/constant/shared/entid"), 0);
  const Writer writer(1, 1);
  nodes_.ids = {77, 88};
  EXPECT_EQ(Write(""), 0);
  const RawFile raw(file_->path());
  EXPECT_FALSE(raw.is_soft_link(kIds));
  EXPECT_EQ(raw.values<int>(kIds), (Ints{77, 88}));
  EXPECT_EQ(raw.values<int>("/post/constant/shared/entid"), (Ints{10, 20}));
}

TEST_F(ResultIdLink, ComesBackWhenOwnIdsCannotBeStored) {
  EXPECT_EQ(Write("post/constant/shared/entid"), 0);
  const Writer writer(1, 1);
  nodes_.block.m_entid = nullptr;
  EXPECT_EQ(Write(""), 1);
  EXPECT_EQ(nodes_.block.m_readIds, 0);
  EXPECT_EQ(RawFile(file_->path()).link_target(kIds), "/post/constant/shared/entid");
}

}  // namespace
