// orv parts: the parts of forged files.

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "program/forged_results.h"
#include "program/run_program.h"

namespace {

using namespace orv_test;
using nlohmann::json;

/// Two parts of the type PART, of which elements are of the second, and a type of its own with materials in state 2.
class PartsCommand : public ProgramTest {
 protected:
  void SetUp() override {
    FillForgedResults(file_);
    AddParts(file_, "/post/constant", "PART", {3, 7}, {"hood", "side, left"});
    AddParts(file_, "/post/singlestate/state000000000002", "LATE", {9}, {"patch"})
        .dataset<std::int32_t>("mid", {1}, {21})
        .dataset<std::int32_t>("mtyp", {1}, {5});
    path_ = file_.path();
  }

  static ForgedFile& AddParts(ForgedFile& file, const std::string& section, const std::string& type,
                              const std::vector<std::int32_t>& ids, const std::vector<std::string>& titles) {
    return file.at(section + "/parts/" + type + "/orvblock")
        .integer("block", 100)
        .text("etyppart", type)
        .integer("npart", static_cast<std::int64_t>(ids.size()))
        .integer("nindex", 0)
        .integer32("length", 12)
        .dataset<std::int32_t>("pid", {ids.size()}, ids)
        .texts("title", 12, {titles.size()}, titles);
  }

  std::string Parts(std::vector<std::string> options) const {
    options.insert(options.begin(), {"parts", path_});
    const ProgramRun run = RunOrv(options);
    EXPECT_EQ(run.exit_code, 0) << run.err;
    EXPECT_EQ(run.err, "");
    return run.out;
  }

  ForgedFile file_;
  std::string path_;
};

TEST_F(PartsCommand, ListsPartsWithTheirTitlesAndElements) {
  EXPECT_EQ(Parts({}),
            "type  id  title       material  material type  elements\n"
            "PART   3  hood                                        0\n"
            "PART   7  side, left                                  3\n");
}

TEST_F(PartsCommand, ListsThemAsCommaSeparatedValues) {
  EXPECT_EQ(Parts({"--csv"}),
            "type,id,title,material,material type,elements\nPART,3,hood,,,0\nPART,7,\"side, left\",,,3\n");
}

TEST_F(PartsCommand, ListsThoseOfAStateWithTheirMaterials) {
  const json answer = json::parse(Parts({"--json", "--state", "2"}));
  EXPECT_EQ(answer["state"], 2);
  EXPECT_EQ(answer["parts"], json::parse(R"([{"type": "LATE", "id": 9, "title": "patch", "elements": 0,
                                              "material": 21, "material_type": 5}])"));
}

TEST_F(PartsCommand, ChoosesByTypeWithoutRegardToCase) {
  EXPECT_EQ(json::parse(Parts({"--json", "--type", "part"}))["parts"].size(), 2U);
}

TEST_F(PartsCommand, OfAFileWithoutPartsAreNone) {
  ForgedFile file;
  FillForgedResults(file);
  const ProgramRun run = RunOrv({"parts", "--csv", file.path()});
  EXPECT_EQ(run.exit_code, 0);
  EXPECT_EQ(run.out, "type,id,title,material,material type,elements\n");
}

TEST_F(PartsCommand, OfAnUnknownTypeAreTrouble) {
  ExpectTrouble(RunOrv({"parts", path_, "--type", "WELD"}), path_, "has no parts of type \"WELD\"");
}

TEST_F(PartsCommand, OfAStateThatIsNotThereAreTrouble) {
  ExpectTrouble(RunOrv({"parts", path_, "--state", "3"}), path_, "has no state 3");
}

}  // namespace
