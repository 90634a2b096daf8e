// The arrays that orv link makes, read through the virtual datasets with HDF5 alone: every kind of block, partial ones,
// other orders of entities and components, changes put together, meshes that change. The frame is in
// link_command_test.cpp.

#include "program/linked_file.h"

namespace {

using namespace orv_test;
using testing::ElementsAre;
using testing::HasSubstr;

class LinkArrays : public LinkTest {
 protected:
  LinkArrays() {
    AddLinkedMesh(file_);
    AddVariable(file_, "TEMP", "", 0, {"T"});
    AddVariable(file_, "PAIR", "", 0, {"A", "B"});
    AddVariable(file_, "STRESS", "CLASS_STRESS", 2, {"SXX", "SYY", "SZZ", "SXY", "SXZ", "SYZ"});
  }

  static constexpr char kGroup[] = "/post/constant/variablegroup/BOTH/orvblock";

  /// TEMP and PAIR side by side.
  void AddGroup() {
    file_.at(kGroup)
        .integer("block", 32)
        .text("etypvar", "BOTH")
        .integer("ncoo", 3)
        .integer("nvar", 2)
        .dataset<std::int32_t>("cnt", {2}, {1, 2})
        .dataset<std::int32_t>("offs", {2}, {0, 1})
        .texts("varkey", 256, {2}, {"TEMP", "PAIR"});
  }
};

TEST_F(LinkArrays, FillWhatAStateLacks) {
  AddNodalValues(file_, 1, "TEMP", 1, {10, 20, 30, 40, 50, 60, 70}, {1, 2, 3, 4, 5, 6, 7});
  AddNodalValues(file_, 2, "PAIR", 2, {10, 20, 30, 40, 50, 60, 70}, std::vector<float>(14, 1));
  AddNodalValues(file_, 3, "TEMP", 1, {30, 40, 70}, {13, 14, 17});
  Link();
  EXPECT_THAT(Values<std::int64_t>("Steps/PointDataOffsets/TEMP"), ElementsAre(0, 7, 14));
  EXPECT_THAT(Values<float>("PointData/TEMP"),
              AreFloats({1,     2,     3,     4,     5,     6,  7,  kNone, kNone, kNone, kNone,
                         kNone, kNone, kNone, kNone, kNone, 13, 14, kNone, kNone, 17}));
  EXPECT_TRUE(IsVirtual("PointData/TEMP"));
  EXPECT_EQ(SourcesOf(Out(), "/VTKHDF/PointData/TEMP").size(), 2U);
}

TEST_F(LinkArrays, ShareTheRowsOfConstantValues) {
  AddNodalValues(file_, 1, "PAIR", 2, {10}, {1, 2});
  AddNodalValues(file_, 2, "PAIR", 2, {20}, {3, 4});
  AddNodalResult(file_, "/post/constant/", "TEMP", 1000, 7, 1)
      .dataset<std::int32_t>("entid", {7}, {10, 20, 30, 40, 50, 60, 70})
      .dataset<double>("res", {7, 1}, {1, 2, 3, 4, 5, 6, 0.1});
  Link();
  EXPECT_THAT(Values<std::int64_t>("Steps/PointDataOffsets/TEMP"), ElementsAre(0, 0));
  EXPECT_THAT(Values<double>("PointData/TEMP"), ElementsAre(1, 2, 3, 4, 5, 6, 0.1));
  EXPECT_EQ(RawFile(Out()).type_size("/VTKHDF/PointData/TEMP"), 8U);
}

TEST_F(LinkArrays, GoByIdsAndNotByRows) {
  AddNodalValues(file_, 1, "PAIR", 2, {70, 20, 30, 10, 99}, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10});
  const ProgramRun run = Link();
  EXPECT_THAT(Shape("PointData/PAIR"), ElementsAre(7, 2));
  EXPECT_THAT(Values<float>("PointData/PAIR"),
              AreFloats({7, 8, 3, 4, 5, 6, kNone, kNone, kNone, kNone, kNone, kNone, 1, 2}));
  EXPECT_THAT(run.err,
              HasSubstr("left out 1 values of PAIR of NODE: their ids are no points or cells, or stand twice"));
}

TEST_F(LinkArrays, PutTheBlocksOfSeveralElementTypesInOneOrder) {
  AddElementValues(file_, 1, "QUAD4", "PAIR", 1, 2, {2, 1}, {21, 22, 11, 12});
  AddElementValues(file_, 1, "LINE2", "PAIR", 1, 2, {5}, {51, 52});
  AddElementValues(file_, 2, "QUAD4", "PAIR", 1, 2, {1, 2}, {1, 2, 3, 4});
  Link();
  EXPECT_THAT(Values<float>("CellData/PAIR"), AreFloats({51, 52, 11, 12, 21, 22, kNone, kNone, 1, 2, 3, 4}));
  EXPECT_THAT(Values<std::int64_t>("Steps/CellDataOffsets/PAIR"), ElementsAre(0, 3));
  EXPECT_TRUE(IsVirtual("CellData/PAIR"));
}

TEST_F(LinkArrays, HaveOneArrayForEachLayer) {
  AddElementValues(file_, 1, "QUAD4", "PAIR", 2, 2, {1, 2}, {1, 2, 3, 4, 5, 6, 7, 8});
  AddElementValues(file_, 1, "LINE2", "PAIR", 1, 2, {5}, {51, 52});
  Link();
  EXPECT_FALSE(Exists("CellData/PAIR"));
  EXPECT_THAT(Values<float>("CellData/PAIR_layer1"), AreFloats({51, 52, 1, 2, 5, 6}));
  EXPECT_THAT(Values<float>("CellData/PAIR_layer2"), AreFloats({kNone, kNone, 3, 4, 7, 8}));
  EXPECT_TRUE(IsVirtual("CellData/PAIR_layer1") && IsVirtual("CellData/PAIR_layer2"));
}

TEST_F(LinkArrays, HaveOneArrayForEachPartOfComplexValues) {
  AddIndex(AddNodalResult(file_, StatePlace(1), "PAIR", 1001, 2, 2), {0.25})
      .dataset<std::int32_t>("entid", {2}, {20, 10})
      .dataset<float>("res", {2, 2, 2}, {1, -1, 2, -2, 3, -3, 4, -4});
  Link();
  const std::vector<float> rest(10, kNone);
  std::vector<float> real = {3, 4, 1, 2}, imaginary = {-3, -4, -1, -2};
  real.insert(real.end(), rest.begin(), rest.end());
  imaginary.insert(imaginary.end(), rest.begin(), rest.end());
  EXPECT_THAT(Values<float>("PointData/PAIR_real"), AreFloats(real));
  EXPECT_THAT(Values<float>("PointData/PAIR_imag"), AreFloats(imaginary));
  EXPECT_TRUE(IsVirtual("PointData/PAIR_real") && IsVirtual("PointData/PAIR_imag"));
}

TEST_F(LinkArrays, ArrangeSymmetricTensorsAsVtkHasThem) {
  AddNodalValues(file_, 1, "STRESS", 6, {10, 20}, {1, 2, 3, 12, 13, 23, -1, -2, -3, -12, -13, -23});
  Link();
  std::vector<float> expected = {1, 2, 3, 12, 23, 13, -1, -2, -3, -12, -23, -13};
  expected.resize(42, kNone);
  EXPECT_THAT(Values<float>("PointData/STRESS"), AreFloats(expected));
  EXPECT_TRUE(IsVirtual("PointData/STRESS"));
}

TEST_F(LinkArrays, ReadThroughFilters) {
  AddNodalValues(file_, 1, "TEMP", 1, {10, 20, 30, 40, 50, 60, 70}, {1, 2, 3, 4, 5, 6, 7}).drop("res");
  file_.raw([](hid_t here) {
    const hsize_t shape[] = {7, 1};
    const Id space(H5Screate_simple(2, shape, nullptr), "space");
    const Id list(H5Pcreate(H5P_DATASET_CREATE), "list");
    ASSERT_GE(H5Pset_chunk(list.get(), 2, shape), 0);
    ASSERT_GE(H5Pset_scaleoffset(list.get(), H5Z_SO_FLOAT_DSCALE, 2), 0);
    const Id res(H5Dcreate2(here, "res", H5T_NATIVE_FLOAT, space.get(), H5P_DEFAULT, list.get(), H5P_DEFAULT), "res");
    const float values[] = {1, 2.25F, 3, 4, 5, 6, 7.5F};
    ASSERT_GE(H5Dwrite(res.get(), H5T_NATIVE_FLOAT, H5S_ALL, H5S_ALL, H5P_DEFAULT, values), 0);
  });
  Link();
  EXPECT_TRUE(IsVirtual("PointData/TEMP"));
  EXPECT_THAT(Values<float>("PointData/TEMP"), AreFloats({1, 2.25F, 3, 4, 5, 6, 7.5F}));
}

TEST_F(LinkArrays, TakeStatesFromABlockThatHoldsAll) {
  AddNodalValues(file_, 1, "TEMP", 1, {10}, {1});
  AddNodalValues(file_, 2, "TEMP", 1, {10}, {2});
  AddNodalResult(file_, "/post/multistate/multi", "PAIR", 1050, 2, 2);
  file_.at("/post/multistate/multientityresults/NODE/PAIR/orvblock")
      .integer("nstate", 2)
      .dataset<std::int32_t>("entid", {2}, {20, 30})
      .dataset<float>("res", {2, 2, 2}, {1, 2, 3, 4, 5, 6, 7, 8});
  Link();
  std::vector<float> expected(28, kNone);
  for (std::size_t i = 0; i < 4; ++i) expected[2 + i] = static_cast<float>(i + 1);
  for (std::size_t i = 0; i < 4; ++i) expected[16 + i] = static_cast<float>(i + 5);
  EXPECT_THAT(Values<float>("PointData/PAIR"), AreFloats(expected));
  EXPECT_TRUE(IsVirtual("PointData/PAIR"));
}

TEST_F(LinkArrays, TakeStepsFromABlockThatHoldsAllWhereThereAreNoStates) {
  AddNodalResult(file_, "/post/multistate/multi", "TEMP", 1050, 2, 1)
      .integer("nstate", 3)
      .integer("nindex", 1)
      .dataset<std::int32_t>("indexident", {3, 1}, {1, 2, 3})
      .dataset<double>("indexval", {3, 1}, {0.5, 1, 4})
      .dataset<std::int32_t>("entid", {2}, {60, 70})
      .dataset<float>("res", {3, 2, 1}, {1, 2, 3, 4, 5, 6});
  Link();
  EXPECT_THAT(Values<double>("Steps/Values"), ElementsAre(0.5, 1, 4));
  EXPECT_THAT(Values<std::int64_t>("Steps/PointOffsets"), ElementsAre(0, 0, 0));
  const std::vector<float> shown = Values<float>("PointData/TEMP");
  ASSERT_EQ(shown.size(), 21U);
  EXPECT_THAT((std::vector<float>{shown[5], shown[6], shown[12], shown[13], shown[19], shown[20]}),
              AreFloats({1, 2, 3, 4, 5, 6}));
  EXPECT_THAT(shown[14], testing::IsNan());
}

TEST_F(LinkArrays, HaveOneArrayForEachVariableOfAGroup) {
  AddGroup();
  AddNodalValues(file_, 1, "BOTH", 3, {10, 20, 30, 40, 50, 60, 70},
                 {1, 11, 21, 2, 12, 22, 3, 13, 23, 4, 14, 24, 5, 15, 25, 6, 16, 26, 7, 17, 27});
  Link();
  EXPECT_THAT(Values<float>("PointData/TEMP"), AreFloats({1, 2, 3, 4, 5, 6, 7}));
  EXPECT_THAT(Values<float>("PointData/PAIR"), AreFloats({11, 21, 12, 22, 13, 23, 14, 24, 15, 25, 16, 26, 17, 27}));
  EXPECT_FALSE(Exists("PointData/BOTH"));
}

TEST_F(LinkArrays, LeaveOutVariablesOfAGroupThatTheBlockHasNoComponentsOf) {
  AddGroup();
  AddNodalValues(file_, 1, "BOTH", 3, {10, 20}, {1, 11, 21, 2, 12, 22});
  for (const int offset : {2, 3, -1, 0x7fffffff}) {
    file_.at(kGroup).drop("offs").dataset<std::int32_t>("offs", {2}, {0, offset});
    Link();
    EXPECT_THAT(Values<float>("PointData/TEMP"), AreFloats({1, 2, kNone, kNone, kNone, kNone, kNone})) << offset;
    EXPECT_FALSE(Exists("PointData/PAIR")) << offset;
    std::filesystem::remove(Out());
  }
}

TEST_F(LinkArrays, CopyWhatChangesArePutTogetherFrom) {
  const auto add = [&](int state, int indexic, const std::vector<std::int32_t>& ids, const std::vector<float>& values) {
    AddNodalValues(file_, state, "TEMP", 1, ids, values);
    file_.integer32("indexic", indexic).dataset<std::int32_t>("indexident", {1}, {state});
  };
  add(1, 0, {10, 20, 30, 40, 50, 60, 70}, {1, 2, 3, 4, 5, 6, 7});
  add(2, 1, {30, 70}, {13, 17});
  add(3, 1, {30}, {23});
  const ProgramRun run = Link();
  EXPECT_FALSE(IsVirtual("PointData/TEMP"));
  EXPECT_THAT(Values<float>("PointData/TEMP"),
              AreFloats({1, 2, 3, 4, 5, 6, 7, 1, 2, 13, 4, 5, 6, 17, 1, 2, 23, 4, 5, 6, 17}));
  EXPECT_THAT(run.err, HasSubstr("copied TEMP of points: states hold changes alone"));
}

TEST_F(LinkArrays, HaveNamesThatVtkTakes) {
  AddVariable(file_, "p.max", "", 0, {"P"});
  AddVariable(file_, "id", "", 0, {"I"});
  AddNodalValues(file_, 1, "p.max", 1, {10, 20, 30, 40, 50, 60, 70}, {1, 2, 3, 4, 5, 6, 7});
  AddNodalValues(file_, 1, "id", 1, {10, 20, 30, 40, 50, 60, 70}, {11, 12, 13, 14, 15, 16, 17});
  Link();
  EXPECT_THAT(Values<float>("PointData/p_max"), AreFloats({1, 2, 3, 4, 5, 6, 7}));
  EXPECT_THAT(Values<std::int32_t>("PointData/id"), ElementsAre(10, 20, 30, 40, 50, 60, 70));
  EXPECT_THAT(Values<float>("PointData/id_2"), AreFloats({11, 12, 13, 14, 15, 16, 17}));
}

TEST_F(LinkArrays, JoinZonesUnlessTheyMeet) {
  const auto add = [&](const std::string& zone, const std::vector<std::int32_t>& ids,
                       const std::vector<float>& values) {
    AddNodalValues(file_, 1, "TEMP/" + zone, 1, ids, values).text("etypvar", "TEMP").text("etypzone", zone);
  };
  add("A", {10, 20}, {1, 2});
  add("B", {30}, {3});
  add("C", {20, 40}, {12, 14});
  Link();
  EXPECT_THAT(Values<float>("PointData/TEMP"), AreFloats({1, 2, 3, kNone, kNone, kNone, kNone}));
  EXPECT_THAT(Values<float>("PointData/TEMP_C"), AreFloats({kNone, 12, kNone, 14, kNone, kNone, kNone}));
}

TEST_F(LinkArrays, FollowNodesThatMove) {
  AddNodalValues(file_, 1, "COORDINATE", 3, {10, 20, 30, 40, 50, 60, 70}, std::vector<float>(21, 1));
  AddNodalValues(file_, 2, "COORDINATE", 3, {70, 10}, {7, 7, 7, 8, 8, 8});
  AddNodalValues(file_, 3, "TEMP", 1, {10}, {1});
  Link();
  EXPECT_THAT(Values<std::int64_t>("NumberOfPoints"), ElementsAre(7));
  EXPECT_THAT(Values<std::int64_t>("Steps/PointOffsets"), ElementsAre(0, 7, 14));
  EXPECT_THAT(Values<std::int64_t>("Steps/PartOffsets"), ElementsAre(0, 0, 0));
  std::vector<float> expected(21, 1);
  const std::vector<float> moved = {8, 8, 8, 1, 0, 0, 2, 0, 0, 0, 1, 0, 1, 1, 0, 2, 1, 0, 7, 7, 7};
  const std::vector<float> constant = {0, 0, 0, 1, 0, 0, 2, 0, 0, 0, 1, 0, 1, 1, 0, 2, 1, 0, 3, 0, 0.5F};
  expected.insert(expected.end(), moved.begin(), moved.end());
  expected.insert(expected.end(), constant.begin(), constant.end());
  EXPECT_THAT(Values<float>("Points"), AreFloats(expected));
  EXPECT_TRUE(IsVirtual("Points"));
}

TEST_F(LinkArrays, TakeConstantCoordinatesWhereAStateHasNone) {
  ForgedFile undefined("undefined");
  const std::vector<std::int32_t> ids = {1, 2};
  AddNodalResult(undefined, "/post/constant/", "COORDINATE", 1000, 2, 3)
      .dataset<std::int32_t>("entid", {2}, ids)
      .dataset<float>("res", {2, 3}, {1, 2, 3, 4, 5, 6});
  AddNodalValues(undefined, 1, "TEMP", 1, ids, {1, 2});
  AddNodalValues(undefined, 2, "COORDINATE", 3, ids, {7, 8, 9, 10, 11, 12});
  AddNodalValues(undefined, 3, "COORDINATE", 3, ids, {0, 0, 1, 0, 0, 2});
  std::filesystem::copy_file(undefined.path(), In());
  LinkFileAtIn();
  EXPECT_THAT(Values<std::int64_t>("Steps/PointOffsets"), ElementsAre(0, 2, 4));
  EXPECT_THAT(Values<float>("Points"), AreFloats({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 0, 0, 1, 0, 0, 2}));
}

TEST_F(LinkArrays, FollowAMeshThatChanges) {
  AddNodalValues(file_, 1, "TEMP", 1, {10, 20, 30, 40, 50, 60, 70}, {1, 2, 3, 4, 5, 6, 7});
  AddNodalValues(file_, 2, "TEMP", 1, {80, 20}, {18, 12});
  AddNodalValues(file_, 2, "COORDINATE", 3, {10, 20, 80}, {0, 0, 0, 1, 0, 0, 0, 9, 0});
  file_.at(StatePlace(2) + "connectivities/TRIA3/orvblock")
      .integer("block", 300)
      .text("etypelem", "TRIA3")
      .text("etyppart", "PART")
      .text("etypnode", "NODE")
      .integer("nele", 1)
      .integer("npele", 3)
      .integer("ndim", 2)
      .dataset<std::int32_t>("idele", {1}, {31})
      .dataset<std::int32_t>("pid", {1}, {8})
      .dataset<std::int32_t>("ic", {1, 3}, {10, 20, 80});
  AddElementValues(file_, 2, "TRIA3", "PAIR", 1, 2, {31}, {5, 6});
  Link();
  EXPECT_THAT(Values<std::int64_t>("NumberOfPoints"), ElementsAre(7, 3));
  EXPECT_THAT(Values<std::int64_t>("NumberOfCells"), ElementsAre(3, 1));
  EXPECT_THAT(Values<std::int64_t>("NumberOfConnectivityIds"), ElementsAre(10, 3));
  EXPECT_THAT(Values<std::int64_t>("Offsets"), ElementsAre(0, 2, 6, 10, 0, 3));
  EXPECT_THAT(Values<std::int64_t>("Steps/PartOffsets"), ElementsAre(0, 1));
  EXPECT_THAT(Values<std::int64_t>("Steps/PointOffsets"), ElementsAre(0, 7));
  EXPECT_THAT(Values<std::int64_t>("Steps/CellOffsets"), ElementsAre(0, 3));
  EXPECT_THAT(Values<std::int64_t>("Steps/ConnectivityIdOffsets"), ElementsAre(0, 10));
  EXPECT_THAT(Values<std::int32_t>("PointData/id"), ElementsAre(10, 20, 30, 40, 50, 60, 70, 10, 20, 80));
  EXPECT_THAT(Values<std::int32_t>("CellData/part"), ElementsAre(7, 7, 7, 8));
  EXPECT_THAT(Values<float>("PointData/TEMP"), AreFloats({1, 2, 3, 4, 5, 6, 7, kNone, 12, 18}));
  EXPECT_THAT(Values<float>("CellData/PAIR"), AreFloats({kNone, kNone, kNone, kNone, kNone, kNone, 5, 6}));
}

TEST_F(LinkArrays, OfAnyOrderOfIdsAreRight) {
  // 1,000 nodes from the last to the first: too many slabs over ten states, so the values are copied.
  ForgedFile many("many");
  constexpr int kNodes = 1000;
  std::vector<std::int32_t> ids, backwards;
  for (int i = 1; i <= kNodes; ++i) ids.push_back(i);
  backwards.assign(ids.rbegin(), ids.rend());
  AddNodalResult(many, "/post/constant/", "COORDINATE", 1000, kNodes, 3)
      .dataset<std::int32_t>("entid", {kNodes}, ids)
      .dataset<float>("res", {kNodes, 3}, std::vector<float>(3 * kNodes, 0.5F));
  AddVariable(many, "COORDINATE", "", 1, {"X", "Y", "Z"});
  AddVariable(many, "TEMP", "", 0, {"T"});
  for (int state = 1; state <= 9; ++state) {
    std::vector<float> values;
    for (const std::int32_t id : backwards) values.push_back(static_cast<float>(1000 * state + id));
    AddNodalValues(many, state, "TEMP", 1, backwards, values);
  }
  std::filesystem::copy_file(many.path(), In());
  const ProgramRun run = LinkFileAtIn();
  EXPECT_THAT(run.err, HasSubstr("copied TEMP of points: its ids are in another order, in 9000 runs"));
  const std::vector<float> shown = Values<float>("PointData/TEMP");
  ASSERT_EQ(shown.size(), 9000U);
  EXPECT_EQ(shown[0], 1001);
  EXPECT_EQ(shown[999], 2000);
  EXPECT_EQ(shown[8000], 9001);
  EXPECT_EQ(shown[8999], 10000);
}

TEST_F(LinkArrays, WithGapsAreVirtualAllTheSame) {
  ForgedFile many("many");
  constexpr int kNodes = 3000;
  std::vector<std::int32_t> ids, some;
  std::vector<float> values, expected;
  for (int i = 1; i <= kNodes; ++i) {
    ids.push_back(i);
    const bool has = i % 2 == 0 || i % 7 == 0;
    if (has) some.push_back(i);
    if (has) values.push_back(static_cast<float>(i) / 4);
    expected.push_back(has ? static_cast<float>(i) / 4 : kNone);
  }
  AddNodalResult(many, "/post/constant/", "COORDINATE", 1000, kNodes, 3)
      .dataset<std::int32_t>("entid", {kNodes}, ids)
      .dataset<float>("res", {kNodes, 3}, std::vector<float>(3 * kNodes, 0.5F));
  AddVariable(many, "TEMP", "", 0, {"T"});
  AddNodalValues(many, 1, "TEMP", 1, some, values);
  std::filesystem::copy_file(many.path(), In());
  LinkFileAtIn();
  EXPECT_TRUE(IsVirtual("PointData/TEMP"));
  EXPECT_EQ(SourcesOf(Out(), "/VTKHDF/PointData/TEMP").size(), 3U);
  EXPECT_THAT(Values<float>("PointData/TEMP"), AreFloats(expected));
}

}  // namespace
