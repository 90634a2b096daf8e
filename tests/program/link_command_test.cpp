// orv link as a command: the frame of the sidecar as VTKHDF wants it, the two files as a pair, what is told, and what
// failures leave behind. The values of the arrays are in link_arrays_test.cpp.

#include "program/linked_file.h"

namespace {

using namespace orv_test;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class LinkCommand : public LinkTest {
 protected:
  LinkCommand() {
    AddLinkedMesh(file_);
    AddVariable(file_, "TEMP", "", 0, {"T"});
  }

  void AddTemperatures() {
    AddNodalValues(file_, 1, "TEMP", 1, {10, 20, 30, 40, 50, 60, 70}, {1, 2, 3, 4, 5, 6, 7});
    AddNodalValues(file_, 2, "TEMP", 1, {10, 20, 30, 40, 50, 60, 70}, {11, 12, 13, 14, 15, 16, 17});
  }
};

TEST_F(LinkCommand, NamesVersionAndType) {
  AddTemperatures();
  Link();
  const RawFile out(Out());
  EXPECT_THAT(out.children("/"), ElementsAre("VTKHDF"));
  EXPECT_EQ(out.attribute_rank("/VTKHDF", "Version"), 1);
  EXPECT_EQ(out.attribute_class("/VTKHDF", "Version"), H5T_INTEGER);
  EXPECT_EQ(out.attribute_text("/VTKHDF", "Type"), "UnstructuredGrid");  // its size is that of the text
  EXPECT_EQ(out.attribute_rank("/VTKHDF", "Type"), 0);
  const Id file(H5Fopen(Out().c_str(), H5F_ACC_RDONLY, H5P_DEFAULT), "file");
  const Id version(H5Aopen_by_name(file.get(), "/VTKHDF", "Version", H5P_DEFAULT, H5P_DEFAULT), "version");
  int numbers[2] = {};
  ASSERT_GE(H5Aread(version.get(), H5T_NATIVE_INT, numbers), 0);
  EXPECT_THAT(numbers, ElementsAre(2, 0));
  const Id type(H5Aopen_by_name(file.get(), "/VTKHDF", "Type", H5P_DEFAULT, H5P_DEFAULT), "type");
  const Id text(H5Aget_type(type.get()), "text");
  EXPECT_EQ(H5Tis_variable_str(text.get()), 0);
  EXPECT_EQ(H5Tget_cset(text.get()), H5T_CSET_ASCII);
}

TEST_F(LinkCommand, WritesTheMeshByPositions) {
  AddTemperatures();
  Link();
  EXPECT_THAT(Values<std::int64_t>("NumberOfPoints"), ElementsAre(7));
  EXPECT_THAT(Values<std::int64_t>("NumberOfCells"), ElementsAre(3));
  EXPECT_THAT(Values<std::int64_t>("NumberOfConnectivityIds"), ElementsAre(10));
  // Blocks stand in the order of their names: the line comes first.
  EXPECT_THAT(Values<std::int64_t>("Connectivity"), ElementsAre(2, 6, 0, 1, 4, 3, 1, 2, 5, 4));
  EXPECT_THAT(Values<std::int64_t>("Offsets"), ElementsAre(0, 2, 6, 10));
  EXPECT_THAT(Values<std::int32_t>("Types"), ElementsAre(3, 9, 9));
  EXPECT_EQ(RawFile(Out()).type_size("/VTKHDF/Types"), 1U);
  EXPECT_EQ(RawFile(Out()).type_size("/VTKHDF/Connectivity"), 8U);
  EXPECT_THAT(Shape("Points"), ElementsAre(7, 3));
  EXPECT_THAT(Values<float>("Points"), AreFloats({0, 0, 0, 1, 0, 0, 2, 0, 0, 0, 1, 0, 1, 1, 0, 2, 1, 0, 3, 0, 0.5F}));
}

TEST_F(LinkCommand, GivesPointsAndCellsTheirIdsAndParts) {
  AddTemperatures();
  Link();
  EXPECT_THAT(Values<std::int32_t>("PointData/id"), ElementsAre(10, 20, 30, 40, 50, 60, 70));
  EXPECT_THAT(Values<std::int32_t>("CellData/id"), ElementsAre(5, 1, 2));
  EXPECT_THAT(Values<std::int32_t>("CellData/part"), ElementsAre(7, 7, 7));
  EXPECT_TRUE(IsVirtual("PointData/id") && IsVirtual("CellData/id") && IsVirtual("CellData/part"));
}

TEST_F(LinkCommand, WritesEveryListOfSteps) {
  AddTemperatures();
  Link();
  EXPECT_EQ(RawFile(Out()).attribute_int("/VTKHDF/Steps", "NSteps"), 2);
  EXPECT_THAT(Values<double>("Steps/Values"), ElementsAre(0.25, 0.5));
  EXPECT_THAT(Values<std::int64_t>("Steps/PartOffsets"), ElementsAre(0, 0));
  EXPECT_THAT(Values<std::int64_t>("Steps/NumberOfParts"), ElementsAre(1, 1));
  EXPECT_THAT(Values<std::int64_t>("Steps/PointOffsets"), ElementsAre(0, 0));
  EXPECT_THAT(Shape("Steps/CellOffsets"), ElementsAre(2, 1));
  EXPECT_THAT(Values<std::int64_t>("Steps/CellOffsets"), ElementsAre(0, 0));
  EXPECT_THAT(Shape("Steps/ConnectivityIdOffsets"), ElementsAre(2, 1));
  EXPECT_THAT(Values<std::int64_t>("Steps/ConnectivityIdOffsets"), ElementsAre(0, 0));
  EXPECT_THAT(RawFile(Out()).children("/VTKHDF/Steps/PointDataOffsets"), ElementsAre("TEMP", "id"));
  EXPECT_THAT(Values<std::int64_t>("Steps/PointDataOffsets/TEMP"), ElementsAre(0, 7));
  EXPECT_THAT(Values<std::int64_t>("Steps/PointDataOffsets/id"), ElementsAre(0, 0));
  EXPECT_THAT(RawFile(Out()).children("/VTKHDF/Steps/CellDataOffsets"), ElementsAre("id", "part"));
  EXPECT_THAT(Values<std::int64_t>("Steps/CellDataOffsets/part"), ElementsAre(0, 0));
}

TEST_F(LinkCommand, MapsTheDatasetsOfTheResultFile) {
  AddTemperatures();
  Link();
  ASSERT_TRUE(IsVirtual("PointData/TEMP"));
  const std::vector<VirtualSource> sources = SourcesOf(Out(), "/VTKHDF/PointData/TEMP");
  ASSERT_EQ(sources.size(), 2U);
  EXPECT_EQ(sources[0].file, "results.orv");
  EXPECT_EQ(sources[0].dataset, "/post/singlestate/state000000000001/entityresults/NODE/TEMP/orvblock/res");
  EXPECT_EQ(sources[1].dataset, "/post/singlestate/state000000000002/entityresults/NODE/TEMP/orvblock/res");
  EXPECT_THAT(Values<float>("PointData/TEMP"), AreFloats({1, 2, 3, 4, 5, 6, 7, 11, 12, 13, 14, 15, 16, 17}));
}

TEST_F(LinkCommand, KeepsAPairThatIsMovedTogether) {
  AddTemperatures();
  std::filesystem::create_directories(TempPath("views/here"));
  Link({"-o", TempPath("views/here/view.vtkhdf")});
  EXPECT_EQ(SourcesOf(TempPath("views/here/view.vtkhdf"), "/VTKHDF/PointData/TEMP").at(0).file, "../../results.orv");
  std::filesystem::create_directory(TempPath("moved"));
  std::filesystem::rename(TempPath("views"), TempPath("moved/views"));
  std::filesystem::rename(In(), TempPath("moved/results.orv"));
  const RawFile moved(TempPath("moved/views/here/view.vtkhdf"));
  EXPECT_THAT(moved.values<float>("/VTKHDF/PointData/TEMP"),
              AreFloats({1, 2, 3, 4, 5, 6, 7, 11, 12, 13, 14, 15, 16, 17}));
}

TEST_F(LinkCommand, TakesAPercentSignForItself) {
  AddTemperatures();
  std::filesystem::copy_file(file_.path(), TempPath("50%b.orv"));
  ASSERT_EQ(RunOrv({"link", "50%b.orv"}, {"", TempPath("")}).exit_code, 0);
  EXPECT_THAT(RawFile(TempPath("50%b.vtkhdf")).values<float>("/VTKHDF/PointData/TEMP"),
              AreFloats({1, 2, 3, 4, 5, 6, 7, 11, 12, 13, 14, 15, 16, 17}));
}

TEST_F(LinkCommand, MakesTheSameFileAgain) {
  AddTemperatures();
  Link();
  const std::string first = BytesOf(Out());
  Link();
  EXPECT_EQ(BytesOf(Out()), first);
}

TEST_F(LinkCommand, ShowsAFileWithoutStatesAsItIs) {
  AddNodalResult(file_, "/post/constant/", "TEMP", 1000, 2, 1)
      .dataset<std::int32_t>("entid", {2}, {20, 70})
      .dataset<float>("res", {2, 1}, {0.5F, 2});
  Link();
  EXPECT_FALSE(Exists("Steps"));
  EXPECT_THAT(Values<float>("PointData/TEMP"), AreFloats({kNone, 0.5F, kNone, kNone, kNone, kNone, 2}));
}

TEST_F(LinkCommand, NumbersStepsWhoseTimesDoNotGrow) {
  AddNodalValues(file_, 1, "TEMP", 1, {10}, {1});
  AddIndex(AddNodalResult(file_, StatePlace(2), "TEMP", 1000, 1, 1), {0.25})
      .dataset<std::int32_t>("entid", {1}, {10})
      .dataset<float>("res", {1, 1}, {2});
  const ProgramRun run = Link();
  EXPECT_THAT(Values<double>("Steps/Values"), ElementsAre(1, 2));
  EXPECT_THAT(run.err, HasSubstr("TIME does not grow from state to state: steps have the numbers of the states"));
}

TEST_F(LinkCommand, TellsWhatItMade) {
  AddTemperatures();
  const ProgramRun run = Link();
  EXPECT_EQ(run.out, "");
  EXPECT_THAT(run.err, HasSubstr(Out() + ": 7 points, 3 cells, 2 steps, 5 arrays, 5 of them virtual, "));
}

TEST_F(LinkCommand, ReportsInJson) {
  AddTemperatures();
  AddVariable(file_, "MASS", "", 0, {"M"});
  AddNodalValues(file_, 1, "MASS", 1, {7}, {2}).text("etyp", "PART");
  const nlohmann::json report = nlohmann::json::parse(Link({"--json"}).out);
  EXPECT_EQ(report["schema_version"], 1);
  EXPECT_EQ(report["command"], "link");
  EXPECT_EQ(report["file"], In());
  EXPECT_EQ(report["out"], Out());
  EXPECT_EQ(report["source"], "results.orv");
  EXPECT_EQ(report["points"], 7);
  EXPECT_EQ(report["cells"], 3);
  EXPECT_EQ(report["steps"], 2);
  EXPECT_EQ(report["time"], "TIME");
  EXPECT_EQ(report["virtual"], 5);
  EXPECT_EQ(report["copied"], 0);
  const nlohmann::json left_out = {{{"what", "MASS of PART"}, {"why", "it is neither of the points nor of the cells"}}};
  EXPECT_EQ(report["left_out"], left_out);
  EXPECT_EQ(report["arrays"][4]["name"], "TEMP");
  EXPECT_EQ(report["arrays"][4]["on"], "points");
  EXPECT_EQ(report["arrays"][4]["virtual"], true);
  EXPECT_EQ(report["arrays"][4]["bytes"], 56);
  EXPECT_EQ(report["bytes"]["out"], std::filesystem::file_size(Out()));
  EXPECT_EQ(report["bytes"]["file"], std::filesystem::file_size(In()));
}

TEST_F(LinkCommand, RefusesToReplaceTheResultFile) {
  AddTemperatures();
  std::filesystem::copy_file(file_.path(), TempPath("mine.vtkhdf"));
  const std::string before = BytesOf(TempPath("mine.vtkhdf"));
  ExpectTrouble(RunOrv({"link", TempPath("mine.vtkhdf")}), TempPath("mine.vtkhdf"), "is the result file itself");
  std::filesystem::create_symlink("mine.vtkhdf", TempPath("other.vtkhdf"));
  ExpectTrouble(RunOrv({"link", TempPath("mine.vtkhdf"), "-o", TempPath("other.vtkhdf")}), TempPath("other.vtkhdf"),
                "is the result file itself");
  EXPECT_EQ(BytesOf(TempPath("mine.vtkhdf")), before);
}

TEST_F(LinkCommand, RefusesAFileWithoutCoordinates) {
  AddTemperatures();
  file_.at("/post/constant/entityresults/NODE").drop("COORDINATE");
  std::filesystem::create_directory(TempPath("out"));
  const ProgramRun run = RunOrv({"link", file_.path(), "-o", TempPath("out/view.vtkhdf")});
  ExpectTrouble(run, file_.path(), "has no coordinates of NODE");
  EXPECT_THAT(NamesIn(TempPath("out")), IsEmpty());
}

TEST_F(LinkCommand, LeavesNothingOnAFullDisk) {
  AddTemperatures();
  std::filesystem::create_directory(TempPath("out"));
  const std::string out = TempPath("out/view.vtkhdf");
  std::filesystem::copy_file(file_.path(), In());
  ASSERT_EQ(RunOrv({"link", In(), "-o", out}).exit_code, 0);
  const std::string before = BytesOf(out);
  for (const long largest : {0L, 500L, 1000L, 3000L, 9000L, static_cast<long>(before.size()) - 1}) {
    ExpectTrouble(RunOrv({"link", In(), "-o", out}, {"", "", largest}), out, "cannot be written");
    EXPECT_EQ(BytesOf(out), before);
    EXPECT_THAT(NamesIn(TempPath("out")), ElementsAre("view.vtkhdf"));
  }
}

TEST_F(LinkCommand, LeavesOutWhatVtkHasNoCellFor) {
  AddTemperatures();
  AddElements(file_, "ODD", 3, 7, {9}, {10, 20, 30, 40, 50, 60, 70});
  AddElements(file_, "TRIA3", 2, 3, {11, 12}, {10, 20, 40, 10, 20, 99});
  const ProgramRun run = Link();
  EXPECT_THAT(run.err, AllOf(HasSubstr("left out 1 elements of ODD: VTK has no cell for their 7 nodes in 3 dimensions"),
                             HasSubstr("left out 1 elements of TRIA3: they have nodes without coordinates")));
  EXPECT_THAT(Values<std::int32_t>("Types"), ElementsAre(3, 9, 9, 5));
  EXPECT_THAT(Values<std::int32_t>("CellData/id"), ElementsAre(5, 1, 2, 11));
}

}  // namespace
