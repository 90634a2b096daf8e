// The groups that writes go to: states, the parts of a block, paths of any depth.

#include <string>
#include <vector>

#include "h5/h5_test.h"

namespace {

using namespace orv_test;
using Names = std::vector<std::string>;

std::string NameOf(hid_t id) {
  char name[512] = {};
  EXPECT_GE(H5Iget_name(id, name, sizeof name), 0);
  return name;
}

class StateGroup : public H5Test {
 protected:
  struct Ids {
    hid_t file = 5, singlestate = 5, state = 5;
  };

  /// Opens by path with the access flags given, looks at the state's name and closes. Empty after a failure.
  std::string Open(int index, bool create, unsigned access = H5F_ACC_RDWR) {
    const orvio::Swapped flags(orvio::process().g_nReadAccess, access);
    Ids ids;
    const int status = OH5OpenStateGroup(file_.path().c_str(), index, &ids.file, &ids.singlestate, &ids.state, create);
    if (status != 0) {
      EXPECT_EQ(status, 1);
      EXPECT_EQ(ids.file, -1);
      EXPECT_EQ(ids.singlestate, -1);
      EXPECT_EQ(ids.state, -1);
      return "";
    }
    EXPECT_EQ(orvio::process().g_hLastFile, ids.file);
    EXPECT_EQ(NameOf(ids.singlestate), "/post/singlestate");
    std::string name = NameOf(ids.state);
    EXPECT_GE(H5Gclose(ids.state), 0);
    EXPECT_GE(H5Gclose(ids.singlestate), 0);
    EXPECT_GE(H5Fclose(ids.file), 0);
    return name;
  }
  Names States() { return RawFile(file_.path()).children("/post/singlestate"); }

  ForgedFile file_ = std::move(ForgedFile("state").at("/post/singlestate"));
};

TEST_F(StateGroup, IsFoundByItsPlaceAndNotByItsName) {
  file_.group("b").group("a");
  EXPECT_EQ(Open(0, false, H5F_ACC_RDONLY), "/post/singlestate/a");
  EXPECT_EQ(Open(1, false, H5F_ACC_RDONLY), "/post/singlestate/b");
  EXPECT_EQ(Open(1, true), "/post/singlestate/b");
  EXPECT_EQ(States(), (Names{"a", "b"}));
}

TEST_F(StateGroup, IsMadeWhenItIsTheNextOne) {
  EXPECT_EQ(Open(0, true), "/post/singlestate/state000000000001");
  EXPECT_EQ(Open(1, true), "/post/singlestate/state000000000002");
  EXPECT_EQ(States(), (Names{"state000000000001", "state000000000002"}));
}

TEST_F(StateGroup, OpensAGroupThatHasTheNameOfTheNextOneAlready) {
  file_.group("state000000000002/inner");
  EXPECT_EQ(Open(1, true), "/post/singlestate/state000000000002");
  EXPECT_EQ(States(), Names{"state000000000002"});
  EXPECT_TRUE(RawFile(file_.path()).exists("/post/singlestate/state000000000002/inner"));
}

TEST_F(StateGroup, IsNotMadeBeyondTheNextOne) {
  file_.group("state000000000001");
  EXPECT_EQ(Open(2, true), "");
  EXPECT_EQ(Open(100, true), "");
  EXPECT_EQ(States(), Names{"state000000000001"});
}

TEST_F(StateGroup, IsNotMadeBeyondTheFirstOneWhereThereAreNone) {
  EXPECT_EQ(Open(1, true), "");
  EXPECT_EQ(Open(5, true), "");
  EXPECT_EQ(States(), Names{});
}

TEST_F(StateGroup, IsNotFoundUnderANameThatIsTooLong) {
  file_.group(std::string(512, 'a')).group(std::string(511, 'b'));
  EXPECT_EQ(Open(0, false, H5F_ACC_RDONLY), "");
  EXPECT_EQ(Open(0, true), "");
  EXPECT_TRUE(Open(1, false, H5F_ACC_RDONLY).starts_with("/post/singlestate/bbb"));
  EXPECT_TRUE(Open(1, true).starts_with("/post/singlestate/bbb"));
}

TEST_F(StateGroup, IsNotMadeUnlessAskedFor) {
  EXPECT_EQ(Open(0, false), "");
  EXPECT_EQ(States(), Names{});
}

TEST_F(StateGroup, IsNotMadeWithReadAccess) {
  EXPECT_EQ(Open(0, true, H5F_ACC_RDONLY), "");
  EXPECT_EQ(States(), Names{});
}

TEST_F(StateGroup, IsNotFoundForANegativeIndex) {
  file_.group("state000000000001");
  EXPECT_EQ(Open(-1, true), "");
  EXPECT_EQ(Open(-1, false), "");
  EXPECT_EQ(States(), Names{"state000000000001"});
}

TEST_F(StateGroup, DoesNotOpenWhereALinkDanglesOrLeadsToADataset) {
  file_.soft_link("a", "/nowhere").dataset<float>("b", {1}, {1});
  EXPECT_EQ(Open(0, true), "");
  EXPECT_EQ(Open(1, true), "");
}

TEST_F(StateGroup, FailsWithoutTheSection) {
  file_.at("/post").drop("singlestate");
  EXPECT_EQ(Open(0, true), "");
}

TEST_F(StateGroup, FailsWithoutAFileOrArguments) {
  Ids ids;
  EXPECT_EQ(OH5OpenStateGroup(nullptr, 0, &ids.file, &ids.singlestate, &ids.state, true), 1);
  EXPECT_EQ(ids.state, -1);
  EXPECT_EQ(OH5OpenStateGroup(TempPath("nowhere").c_str(), 0, &ids.file, &ids.singlestate, &ids.state, true), 1);
  EXPECT_EQ(ids.file, -1);
  EXPECT_EQ(OH5OpenStateGroup(file_.path().c_str(), 0, nullptr, &ids.singlestate, &ids.state, true), 1);
  EXPECT_EQ(OH5OpenStateGroup(file_.path().c_str(), 0, &ids.file, nullptr, &ids.state, true), 1);
  EXPECT_EQ(OH5OpenStateGroup(file_.path().c_str(), 0, &ids.file, &ids.singlestate, nullptr, true), 1);
}

TEST_F(StateGroup, IsFoundAndMadeInAnOpenFileToo) {
  file_.group("state000000000001");
  const Location place(file_.path(), "/", H5F_ACC_RDWR);
  for (const char* expected : {"/post/singlestate/state000000000001", "/post/singlestate/state000000000002"}) {
    hid_t singlestate = 5, state = 5;
    ASSERT_EQ(OH5OpenStateGroup(place.file(), std::string(expected).back() - '1', &singlestate, &state, true), 0);
    EXPECT_EQ(NameOf(singlestate), "/post/singlestate");
    EXPECT_EQ(NameOf(state), expected);
    EXPECT_GE(H5Gclose(state), 0);
    EXPECT_GE(H5Gclose(singlestate), 0);
  }
  hid_t singlestate = 5, state = 5;
  EXPECT_EQ(OH5OpenStateGroup(place.file(), 3, &singlestate, &state, true), 1);
  EXPECT_EQ(singlestate, -1);
  EXPECT_EQ(state, -1);
  EXPECT_EQ(OH5OpenStateGroup(-1, 0, &singlestate, &state, true), 1);
  EXPECT_EQ(OH5OpenStateGroup(place.file(), 0, nullptr, &state, true), 1);
}

class BlockSubGroups : public H5Test {
 protected:
  struct Ids {
    hid_t base = 5, header = 5, data = 5, index = 5;
  };

  int Open(const Location& parent, int version, const char* name, int what, Ids& ids) {
    const orvio::Swapped writer(orvio::process().g_nWriterVersion, version);
    return OH5OpenBlockSubGroups(parent.id(), name, what, &ids.base, &ids.header, &ids.data, &ids.index);
  }
  static void Close(const Location& parent, const Ids& ids) {
    if (ids.header > 0 || ids.data > 0 || ids.index > 0) {
      EXPECT_EQ(OH5CloseBlockSubGroups(ids.header, ids.data, ids.index), 0);
    }
    if (ids.base > 0 && ids.base != parent.id()) {
      EXPECT_GE(H5Gclose(ids.base), 0);
    }
  }
  Names Tree() { return RawFile(file_.path()).tree(kParent); }

  static constexpr char kParent[] = "/post/constant/attributes";
  ForgedFile file_ = std::move(ForgedFile("parts").at(kParent));
};

TEST_F(BlockSubGroups, OfTheSplitLayoutAreThoseAskedFor) {
  for (const int version : {0, 1, 2, -1}) {
    const std::string name = "b" + std::to_string(version);
    const std::string path = kParent + ("/" + name);
    const Location parent(file_.path(), kParent, H5F_ACC_RDWR);
    Ids ids;
    ASSERT_EQ(Open(parent, version, name.c_str(), ORV_WRITE_HEADER | ORV_WRITE_DATA | ORV_WRITE_INDEX, ids), 0);
    EXPECT_EQ(NameOf(ids.base), path);
    EXPECT_EQ(NameOf(ids.header), path + "/header");
    EXPECT_EQ(NameOf(ids.data), path + "/data");
    EXPECT_EQ(NameOf(ids.index), path + "/index");
    Close(parent, ids);
  }
}

TEST_F(BlockSubGroups, OfTheSplitLayoutStayClosedWithoutTheirBit) {
  {
    const Location parent(file_.path(), kParent, H5F_ACC_RDWR);
    Ids ids;
    ASSERT_EQ(Open(parent, 1, "b", ORV_WRITE_DATA, ids), 0);
    EXPECT_EQ(ids.header, -1);
    EXPECT_GE(ids.data, 0);
    EXPECT_EQ(ids.index, -1);
    Close(parent, ids);
    ASSERT_EQ(Open(parent, 1, "c", 0, ids), 0);
    EXPECT_GE(ids.base, 0);
    EXPECT_EQ(ids.data, -1);
    Close(parent, ids);
  }
  EXPECT_EQ(Tree(),
            (Names{"/post/constant/attributes/b", "/post/constant/attributes/b/data", "/post/constant/attributes/c"}));
}

TEST_F(BlockSubGroups, OfTheSingleLayoutAreOneWhateverIsAskedFor) {
  for (const int version : {3, 4, 5, 100}) {
    for (const int what : {0, 1, 2, 4, 7}) {
      const Location parent(file_.path(), kParent, H5F_ACC_RDWR);
      Ids ids;
      ASSERT_EQ(Open(parent, version, "b", what, ids), 0);
      EXPECT_EQ(NameOf(ids.base), "/post/constant/attributes/b");
      EXPECT_EQ(NameOf(ids.header), "/post/constant/attributes/b/orvblock");
      EXPECT_EQ(ids.data, ids.header);
      EXPECT_EQ(ids.index, ids.header);
      Close(parent, ids);
    }
  }
  EXPECT_EQ(Tree(), (Names{"/post/constant/attributes/b", "/post/constant/attributes/b/orvblock"}));
}

TEST_F(BlockSubGroups, WithoutANameLieInTheParent) {
  const Location parent(file_.path(), kParent, H5F_ACC_RDWR);
  Ids ids;
  ASSERT_EQ(Open(parent, 3, nullptr, 7, ids), 0);
  EXPECT_EQ(ids.base, parent.id());
  EXPECT_EQ(NameOf(ids.header), "/post/constant/attributes/orvblock");
  Close(parent, ids);
}

TEST_F(BlockSubGroups, ThatExistAreOpened) {
  file_.at(kParent).group("b/header").group("b/data");
  const Location parent(file_.path(), kParent, H5F_ACC_RDWR);
  Ids ids;
  ASSERT_EQ(Open(parent, 1, "b", ORV_WRITE_HEADER | ORV_WRITE_DATA, ids), 0);
  EXPECT_EQ(NameOf(ids.header), "/post/constant/attributes/b/header");
  EXPECT_EQ(NameOf(ids.data), "/post/constant/attributes/b/data");
  Close(parent, ids);
}

TEST_F(BlockSubGroups, AnExistingIndexGroupLeadsToTheDataGroup) {
  file_.at(kParent).group("b/index").group("b/data").group("only/index");
  const Location parent(file_.path(), kParent, H5F_ACC_RDWR);
  Ids ids;
  ASSERT_EQ(Open(parent, 2, "b", 7, ids), 0);
  EXPECT_EQ(NameOf(ids.index), "/post/constant/attributes/b/data");
  EXPECT_NE(ids.index, ids.data);
  Close(parent, ids);
  ASSERT_EQ(Open(parent, 2, "b", ORV_WRITE_INDEX, ids), 0);
  EXPECT_EQ(NameOf(ids.index), "/post/constant/attributes/b/data");
  Close(parent, ids);
  EXPECT_EQ(Open(parent, 2, "only", ORV_WRITE_INDEX, ids), 1);
  EXPECT_EQ(ids.index, -1);
}

TEST_F(BlockSubGroups, AreAllClosedAfterAFailure) {
  file_.at(kParent).group("b/header").soft_link("lost", "/nowhere").dataset<float>("values", {1}, {1});
  file_.at("/post/constant/attributes/b").dataset<float>("data", {1}, {1}).dataset<float>("orvblock", {1}, {1});
  const Location parent(file_.path(), kParent, H5F_ACC_RDWR);
  for (const int version : {1, 3}) {
    for (const char* name : {"b", "lost", "values"}) {
      Ids ids;
      EXPECT_EQ(Open(parent, version, name, 7, ids), 1) << name;
      EXPECT_EQ(ids.base, -1);
      EXPECT_EQ(ids.header, -1);
      EXPECT_EQ(ids.data, -1);
      EXPECT_EQ(ids.index, -1);
    }
  }
  Ids ids;
  EXPECT_EQ(OH5OpenBlockSubGroups(parent.id(), "b", 7, nullptr, &ids.header, &ids.data, &ids.index), 1);
}

TEST_F(BlockSubGroups, AreClosedOnceEach) {
  const Location parent(file_.path(), kParent, H5F_ACC_RDWR);
  const auto open = [&] { return H5Gopen2(parent.file(), kParent, H5P_DEFAULT); };
  const hid_t one = open();
  EXPECT_EQ(OH5CloseBlockSubGroups(one, one, one), 0);
  EXPECT_EQ(OH5CloseBlockSubGroups(open(), open(), open()), 0);
  EXPECT_EQ(OH5CloseBlockSubGroups(-1, open(), -1), 0);
  EXPECT_EQ(OH5CloseBlockSubGroups(-1, -1, -1), 0);
  EXPECT_EQ(OH5CloseBlockSubGroups(one, -1, -1), 1);
}

class GroupChain : public H5Test {
 protected:
  /// Opens or makes a path, closes what came back and answers the name of the group.
  std::string Open(const std::string& path, unsigned access = H5F_ACC_RDWR) {
    const orvio::Swapped flags(orvio::process().g_nReadAccess, access);
    hid_t file = 5;
    const hid_t group = OH5OpenGroupChain(file_.path().c_str(), &file, path);
    if (group < 0) {
      EXPECT_EQ(group, -1);
      EXPECT_EQ(file, -1);
      return "";
    }
    std::string name = NameOf(group);
    EXPECT_GE(H5Gclose(group), 0);
    EXPECT_EQ(H5Fget_obj_count(file, H5F_OBJ_ALL), 1) << "a group on the way was left open";
    EXPECT_GE(H5Fclose(file), 0);
    return name;
  }
  ForgedFile file_{"chain"};
};

TEST_F(GroupChain, OpensWhatIsThere) {
  EXPECT_EQ(Open("post/constant", H5F_ACC_RDONLY), "/post/constant");
  EXPECT_EQ(Open("/post/constant", H5F_ACC_RDONLY), "/post/constant");
}

TEST_F(GroupChain, MakesWhatIsMissing) {
  EXPECT_EQ(Open("post/constant/a/b/c"), "/post/constant/a/b/c");
  EXPECT_EQ(RawFile(file_.path()).tree("/post/constant"),
            (Names{"/post/constant/a", "/post/constant/a/b", "/post/constant/a/b/c"}));
}

TEST_F(GroupChain, PassesOverEmptyParts) {
  EXPECT_EQ(Open("//post///constant//x/"), "/post/constant/x");
  EXPECT_EQ(RawFile(file_.path()).tree("/post/constant"), Names{"/post/constant/x"});
}

TEST_F(GroupChain, TakesThePathsOfTheFixedGroups) {
  EXPECT_EQ(Open("./post/constant", H5F_ACC_RDONLY), "/post/constant");
  EXPECT_EQ(Open("./post/./constant/y/."), "/post/constant/y");
  EXPECT_EQ(RawFile(file_.path()).tree("/post/constant"), Names{"/post/constant/y"});
}

TEST_F(GroupChain, DoesNothingForAnEmptyPath) { EXPECT_EQ(Open(""), ""); }

TEST_F(GroupChain, FailsForAPathThatEndsAtTheFile) {
  EXPECT_EQ(Open("/"), "");
  EXPECT_EQ(Open("///"), "");
  EXPECT_EQ(Open("."), "");
}

TEST_F(GroupChain, BreaksAtADatasetADanglingLinkAndInAFileOpenForReading) {
  file_.at("/post/constant").dataset<float>("d", {1}, {1}).soft_link("lost", "/nowhere");
  EXPECT_EQ(Open("post/constant/d/x"), "");
  EXPECT_EQ(Open("post/constant/lost/x"), "");
  EXPECT_EQ(Open("post/constant/new", H5F_ACC_RDONLY), "");
}

TEST_F(GroupChain, FailsWithoutAFileOrArguments) {
  hid_t file = 5;
  EXPECT_EQ(OH5OpenGroupChain(TempPath("nowhere").c_str(), &file, "post"), -1);
  EXPECT_EQ(file, -1);
  EXPECT_EQ(OH5OpenGroupChain(nullptr, &file, "post"), -1);
  EXPECT_EQ(OH5OpenGroupChain(file_.path().c_str(), nullptr, "post"), -1);
}

}  // namespace
