// What kind of file a filer has: composites, modules, root groups, and what the solver's name tells. What secures nodes is
// in filer_properties_list_test.

#include <cstring>
#include <filesystem>

#include "entity/entity_list_forge.h"
#include "filer/model_file.h"

namespace orv_test {
namespace {

class FileKinds : public OrvTest, public ::testing::WithParamInterface<Layout> {
 protected:
  ModelFiler& filer() {
    filer_ = std::make_unique<ModelFiler>(file_.path().c_str());
    return *filer_;
  }

  ForgedFile file_;

 private:
  std::unique_ptr<ModelFiler> filer_;
};
INSTANTIATE_TEST_SUITE_P(Layouts, FileKinds, ::testing::Values(Layout::kSplit, Layout::kSingle),
                         [](const auto& layout) { return NameOf(layout.param); });

TEST_P(FileKinds, AreCompositeByAnAttributeOfTheConstantSection) {
  EXPECT_FALSE(filer().IsComposite());
  AddEntities(file_, kAttributes, "COMPLAYER", GetParam());
  EXPECT_TRUE(filer().IsComposite());
  EXPECT_FALSE(filer().IsModularData());
}

TEST_P(FileKinds, AreModularByIdentifiersOfTheConstantSection) {
  EXPECT_FALSE(filer().IsModularData());
  AddEntities(file_, kIdentifiers, "MODULE_HIERARCHY", GetParam());
  EXPECT_TRUE(filer().IsModularData());
  EXPECT_FALSE(filer().IsComposite());
}

TEST_P(FileKinds, AreTakenFromTheHeaderAlone) {
  AddEntities(file_, kAttributes, "COMPLAYER", GetParam()).integer("nent", 0);
  AddEntities(file_, kIdentifiers, "MODULE_HIERARCHY", GetParam()).integer("nent", 1'000'000'000);
  EXPECT_TRUE(filer().IsComposite());
  EXPECT_TRUE(filer().IsModularData());
}

TEST_P(FileKinds, AreNotTakenFromAnotherGroupStateOrName) {
  AddEntities(file_, kAttributes, "MODULE_HIERARCHY", GetParam());
  AddEntities(file_, kAttributes, "COMPLAYER2", GetParam());
  AddEntities(file_, kIdentifiers, "COMPLAYER", GetParam());
  AddEntities(file_, InState(1, "attributes"), "COMPLAYER", GetParam());
  AddEntities(file_, InState(1, "identifiers"), "MODULE_HIERARCHY", GetParam());
  EXPECT_FALSE(filer().IsComposite());
  EXPECT_FALSE(filer().IsModularData());
}

TEST_P(FileKinds, AreNotTakenFromAHeaderThatCannotBeRead) {
  AddEntities(file_, kAttributes, "COMPLAYER", GetParam()).retype("nent");
  AddEntities(file_, kIdentifiers, "MODULE_HIERARCHY", GetParam()).drop("nent");
  EXPECT_FALSE(filer().IsComposite());
  EXPECT_FALSE(filer().IsModularData());
}

class FileKind : public OrvTest {
 protected:
  ForgedFile file_;
};

TEST_F(FileKind, IsNoneWithoutAFile) {
  ORVFiler nameless(nullptr);
  ORVFiler missing(TempPath("missing.orv").c_str());
  ModelFiler without_data(file_.path().c_str());
  const WithoutData without(without_data);
  for (ORVFiler* filer : {&nameless, &missing, static_cast<ORVFiler*>(&without_data)}) {
    EXPECT_FALSE(filer->IsComposite());
    EXPECT_FALSE(filer->IsModularData());
    EXPECT_FALSE(filer->IsCATCSMOutput());
    EXPECT_FALSE(filer->HasFPM());
    EXPECT_FALSE(filer->HasRootGroup("post"));
    EXPECT_FALSE(filer->HasSecureNodeProperty());
    EXPECT_FALSE(filer->HasSecureNodeCoordinateProperty());
  }
}

// ---- Root groups

TEST_F(FileKind, HasRootGroupsButNoOtherObjectsUnderAName) {
  file_.scalar<std::int32_t>("number", 1).group("/CATCSM");
  file_.external_link("elsewhere", "other.orv", "/").soft_link("dangling", "/nowhere");
  ORVFiler filer(file_.path().c_str());
  EXPECT_TRUE(filer.HasRootGroup("CATCSM"));
  for (const char* name : {"number", "elsewhere", "dangling", "catcsm", "", static_cast<const char*>(nullptr)}) {
    EXPECT_FALSE(filer.HasRootGroup(name)) << (name ? name : "null");
  }
}

TEST_F(FileKind, IsThatOfASolverByItsRootGroup) {
  EXPECT_FALSE(ORVFiler(file_.path().c_str()).IsCATCSMOutput());
  file_.group("/CATCSM");
  EXPECT_TRUE(ORVFiler(file_.path().c_str()).IsCATCSMOutput());
}

TEST_F(FileKind, IsThatOfASolverByAGroupAlone) {
  file_.scalar<std::int32_t>("CATCSM", 1);
  EXPECT_FALSE(ORVFiler(file_.path().c_str()).IsCATCSMOutput());
}

TEST_F(FileKind, IsAskedOfTheFileOnce) {
  ORVFiler none(file_.path().c_str());
  EXPECT_FALSE(none.IsCATCSMOutput());
  file_.group("/CATCSM");
  ORVFiler has(file_.path().c_str());
  EXPECT_TRUE(has.IsCATCSMOutput());
  EXPECT_FALSE(none.IsCATCSMOutput());
  file_.at("/").drop("CATCSM");
  (void)file_.path();
  EXPECT_TRUE(has.IsCATCSMOutput());
  EXPECT_FALSE(none.IsCATCSMOutput());
  EXPECT_FALSE(has.HasRootGroup("CATCSM"));
  EXPECT_TRUE(ORVFiler(has).IsCATCSMOutput()) << "copies remember too";
}

TEST_F(FileKind, IsRememberedOfAFileThatCouldNotBeOpened) {
  const std::string path = TempPath("later.orv");
  ORVFiler filer(path.c_str());
  EXPECT_FALSE(filer.IsCATCSMOutput());
  file_.group("/CATCSM");
  std::filesystem::copy(file_.path(), path);
  EXPECT_FALSE(filer.IsCATCSMOutput());
  EXPECT_TRUE(ORVFiler(path.c_str()).IsCATCSMOutput());
}

// ---- The solver's name

bool HasFPM(const std::string& solver) {
  ModelFiler filer("/not/there");
  filer.data()->system = std::make_unique<ORVSystem>();
  std::strncpy(filer.data()->system->m_solverName, solver.c_str(), 256);
  return filer.HasFPM();
}

TEST_F(FileKind, HasFPMByTheThirdPartOfTheSolversName) {
  for (const char* name : {"A:B:FPM", "A:B:fpm", "a:b:Fpm:INC", "::FPM", "FPM:FPM:FPM:"}) {
    EXPECT_TRUE(HasFPM(name)) << name;
  }
}

TEST_F(FileKind, HasNoFPMByAnyOtherName) {
  for (const char* name : {"", "FPM", "A:FPM", "FPM:FPM", "A:FPM:B", "A:B:FPM2", "A:B:XFPM", "A:B: FPM", "A:B:", "A:B",
                           "A:B:C:FPM", "ZAM-CSM NVH-ACOUSTIC", "zam-csm nvh-acoustic"}) {
    EXPECT_FALSE(HasFPM(name)) << name;
  }
}

TEST_F(FileKind, HasFPMInANameOfFullWidth) {
  EXPECT_TRUE(HasFPM(std::string(248, 'A') + ":BBB:FPM"));
  EXPECT_FALSE(HasFPM(std::string(249, 'A') + ":BBB:FPM"));  // the last letter is cut off
}

TEST_F(FileKind, HasFPMOnceTheUnitSystemIsRead) {
  ForgedModel model;
  model.system().file().at("/post/constant/system/orvblock").text("solver_name", "A:B:FPM");
  ORVFiler filer(model.path().c_str());
  EXPECT_FALSE(filer.HasFPM());
  EXPECT_EQ(filer.ReadSystemBlock(), 0);
  EXPECT_TRUE(filer.HasFPM());
}

}  // namespace
}  // namespace orv_test
