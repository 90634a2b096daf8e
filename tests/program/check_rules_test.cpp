// orv check: each rule finds what it is there for, at its place, and nothing else. The files are sound but for one thing.

#include <gmock/gmock.h>

#include <cmath>
#include <functional>
#include <nlohmann/json.hpp>
#include <set>

#include "program/checked_file.h"
#include "program/sound_file.h"

namespace {

using namespace orv_test;
using nlohmann::json;
using testing::ElementsAre;

constexpr char kConstant[] = "/post/constant/";

struct Broken {
  const char* rule;
  const char* place;
  std::function<void(ForgedModel&)> act;
  bool with_groups = false;
  const char* what = "";  ///< where a rule has several cases

  friend std::ostream& operator<<(std::ostream& out, const Broken& broken) { return out << broken.rule << broken.what; }
};

class CheckRules : public CheckTest, public testing::WithParamInterface<Broken> {
 protected:
  static bool IsNote(const std::string& rule) {
    const json rules = json::parse(RunOrv({"check", "--json", "--explain", rule}).out).at("rules");
    return rules.at(0).at("level") == "note";
  }
};

TEST_P(CheckRules, FindTheOneThingThatIsWrong) {
  ForgedModel model;
  FillSoundFile(model, GetParam().with_groups);
  GetParam().act(model);
  const ProgramRun run = RunCheck(model.path());
  EXPECT_EQ(run.err, "");
  EXPECT_THAT(FindingsOf(run), ElementsAre(std::string(GetParam().rule) + " " + GetParam().place));
  EXPECT_EQ(run.exit_code, IsNote(GetParam().rule) ? 0 : 1);
}

std::function<void(ForgedModel&)> At(const std::string& place, const std::function<void(ForgedFile&)>& act) {
  return [place, act](ForgedModel& model) { act(model.file().at(place)); };
}

std::function<void(ForgedModel&)> Move(const std::string& from, const std::string& to) {
  return At("/", [from, to](ForgedFile& file) {
    file.raw([&](hid_t here) { Check(H5Lmove(here, from.c_str(), here, to.c_str(), H5P_DEFAULT, H5P_DEFAULT), from); });
  });
}

/// A dataset of integers with a creation list of its own, in place of what is there.
std::function<void(ForgedModel&)> Remake(const std::string& group, const char* name, hsize_t count,
                                         const std::function<void(hid_t)>& prepare, bool is_written) {
  return At(group, [=](ForgedFile& file) {
    file.drop(name).raw([&](hid_t here) {
      const Id list(H5Pcreate(H5P_DATASET_CREATE), "list"), space(H5Screate_simple(1, &count, nullptr), "space");
      prepare(list.get());
      const Id dataset(H5Dcreate2(here, name, H5T_NATIVE_INT, space.get(), H5P_DEFAULT, list.get(), H5P_DEFAULT), name);
      std::vector<int> values(count);
      for (hsize_t i = 0; i < count; ++i) values[i] = static_cast<int>(i) + 1;
      if (is_written)
        Check(H5Dwrite(dataset.get(), H5T_NATIVE_INT, H5S_ALL, H5S_ALL, H5P_DEFAULT, values.data()), name);
    });
  });
}

const std::string kAttributes = std::string(kConstant) + "attributes/NODE/orvblock";
const std::string kIdentifiers = std::string(kConstant) + "identifiers/NODE/orvblock";
const std::string kElements = std::string(kConstant) + "connectivities/QUAD4/orvblock";
const std::string kSet = std::string(kConstant) + "collector/SET/orvblock";
const std::string kStressVariable = std::string(kConstant) + "variable/STRESS/orvblock";
const std::string kPeVariable = std::string(kConstant) + "variable/PE/orvblock";
const std::string kStress1 = std::string(kSoundState1) + "/entityresults/NODE/STRESS/orvblock";
const std::string kStress2 = std::string(kSoundState2) + "/entityresults/NODE/STRESS/orvblock";
const std::string kPe1 = std::string(kSoundState1) + "/elementresults/QUAD4/PE/orvblock";
const std::string kPe2 = std::string(kSoundState2) + "/elementresults/QUAD4/PE/orvblock";
const std::string kStatus1 = std::string(kSoundState1) + "/activflags/QUAD4/orvblock";

const Broken kFrame[] = {
    {"F002", "/post/orvheader/orvheader", At("/post/orvheader", [](ForgedFile& f) { f.drop("orvheader"); })},
    {"F002", "/post/orvheader/orvheader", At("/post/orvheader", [](ForgedFile& f) { f.retype("orvheader"); }), false,
     "_class"},
    {"F003", "/post/orvheader/orvheader", At("/", [](ForgedFile& f) { f.header_bytes("NOT MAGIC 2 2 0"); })},
    {"F004", "/post/orvheader/orvheader", At("/", [](ForgedFile& f) { f.header(3, 0, 0); })},
    {"F004", "/post/orvheader/orvheader", At("/", [](ForgedFile& f) { f.header(2, 6, 0); }), false, "_minor"},
    {"F005", "/post", At("/post", [](ForgedFile& f) { f.drop("singlestate"); })},
    {"F006", "/post/constant", At("/post/constant", [](ForgedFile& f) { f.drop("identifiers"); })},
    {"F007", "/post/orvheader/orvheader",
     At("/post/orvheader", [](ForgedFile& f) { f.texts("orvheader", 80, {}, {"\x89ORV\r\n\x1A\n2 2 0"}); })},
};

const Broken kBlocks[] = {
    {"B001", "/post/constant/attributes/NODE/orvblock", At(kAttributes, [](ForgedFile& f) { f.drop("nent"); })},
    {"B001", "/post/constant/attributes/NODE/orvblock", At(kAttributes, [](ForgedFile& f) { f.drop("block"); }), false,
     "_key"},
    {"B001", "/post/constant/variable/PE/orvblock", At(kPeVariable, [](ForgedFile& f) { f.drop("ncoo"); }), false,
     "_variable"},
    {"B002", "/post/constant/attributes/NODE/orvblock", At(kAttributes, [](ForgedFile& f) { f.retype("nuid"); })},
    {"B002", "/post/constant/attributes/NODE/orvblock",
     At(kAttributes,
        [](ForgedFile& f) {
          f.integers("nuid", {0, 0});
        }),
     false, "_list"},
    {"B003", "/post/constant/attributes/NODE", At(kAttributes, [](ForgedFile& f) { f.integer("block", 77); })},
    {"B004", "/post/constant/identifiers/NODE",
     Move("/post/constant/attributes/NODE", "/post/constant/identifiers/NODE")},
    {"B004", "/post/constant/entityresults/NODE/PE",
     Move("/post/multistate/multientityresults/NODE/PE", "/post/constant/entityresults/NODE/PE"), false, "_section"},
    {"B005", "/post/constant/text/SPLIT",
     [](ForgedModel& model) {
       ForgedFile& file = model.file().at("/post/constant/text/SPLIT/data").texts("line", 8, {1}, {"one"});
       file.at("/post/constant/text/SPLIT/header").integer("block", 40).text("etyptext", "SPLIT");
       file.integer("nlines", 1).integer("length", 8);
     }},
    {"B006", "/post/constant/attributes/NODE/orvblock/entid",
     At(kAttributes, [](ForgedFile& f) { f.integer("nent", 5); })},
    {"B006", "/post/singlestate/state000000000001/entityresults/NODE/STRESS/orvblock/res",
     At(kStress1,
        [](ForgedFile& f) {
          f.dataset<float>("res", {2, 4}, {1, 2, 3, 4, 5, 6, 7, 8});
        }),
     false, "_order"},
    {"B007", "/post/singlestate/state000000000001/activflags/QUAD4/orvblock/status",
     At(kStatus1, [](ForgedFile& f) { f.dataset<float>("status", {1}, {1}); })},
    {"B008", "/post/singlestate/state000000000001/activflags/QUAD4/orvblock",
     At(kStatus1, [](ForgedFile& f) { f.drop("status"); })},
    {"B008", "/post/singlestate/state000000000001/entityresults/NODE/STRESS/orvblock",
     At(kStress1, [](ForgedFile& f) { f.drop("res"); }), false, "_values"},
    {"B009", "/post/constant/attributes/NODE/orvblock", At(kAttributes, [](ForgedFile& f) { f.integer("nuid", -1); })},
    {"B010", "/post/constant/text/BARE",
     At("/post/constant/text/BARE/orvblock", [](ForgedFile& f) { f.texts("line", 8, {1}, {"one"}); })},
};

const Broken kEntities[] = {
    {"E001", "/post/constant/attributes/NODE/orvblock/entid",
     At(kAttributes,
        [](ForgedFile& f) {
          f.dataset<std::int32_t>("entid", {4}, {1, 2, 2, 4});
        })},
    {"E002", "/post/singlestate/state000000000001/entityresults/NODE/STRESS/orvblock/entid",
     At(kStress1,
        [](ForgedFile& f) {
          f.dataset<std::int32_t>("entid", {4}, {1, 2, 3, 3});
        })},
    {"E003", "/post/constant/attributes/NODE/orvblock/entid",
     At(kAttributes,
        [](ForgedFile& f) {
          f.dataset<std::int32_t>("entid", {4}, {0, 1, 2, 3});
        })},
    {"E004", "/post/constant/connectivities/QUAD4",
     At(kElements,
        [](ForgedFile& f) {
          f.dataset<std::int32_t>("ic", {1, 4}, {1, 2, 3, 99});
        })},
    {"E005", "/post/constant/connectivities/QUAD4", At(kElements, [](ForgedFile& f) { f.text("etypnode", "KNOT"); })},
    {"E006", "/post/constant/connectivities/QUAD4",
     At(kElements, [](ForgedFile& f) { f.dataset<std::int32_t>("pid", {1}, {8}); })},
    {"E007", "/post/singlestate/state000000000001/elementresults/QUAD4/PE",
     At(kPe1, [](ForgedFile& f) { f.text("etypelem", "HEXA8"); })},
    {"E008", "/post/singlestate/state000000000001/elementresults/QUAD4/PE",
     At(kPe1, [](ForgedFile& f) { f.dataset<std::int32_t>("idele", {1}, {12}); })},
    {"E009", "/post/constant/collector/SET/orvblock/nent",
     At(kSet,
        [](ForgedFile& f) {
          f.dataset<std::int32_t>("nent", {2, 1}, {2, 2});
        })},
    {"E009", "/post/constant/collector/SET/orvblock/nent",
     At(kSet,
        [](ForgedFile& f) {
          f.dataset<std::int64_t>("nent", {2, 1}, {INT64_MAX, INT64_MAX});
        }),
     false, "_wrapping"},
};

const Broken kVariables[] = {
    {"V001", "/post/singlestate/state000000000002/entityresults/NODE/STRESS",
     At(kStress2, [](ForgedFile& f) { f.text("etypvar", "OTHER"); })},
    {"V001", "/post/singlestate/state000000000002/entityresults/NODE/STRESS",
     At(kStress2, [](ForgedFile& f) { f.text("etypvar", "TIME"); }), true, "_of_a_group"},
    {"V002", "/post/constant/variablegroup/PE",
     At("/post/constant/variablegroup/PE/orvblock", [](ForgedFile& f) { f.texts("varkey", 256, {1}, {"NONE"}); }),
     true},
    {"V003", "/post/constant/variablegroup/STRESS",
     At("/post/constant/variablegroup/STRESS/orvblock",
        [](ForgedFile& f) { f.dataset<std::int32_t>("offs", {1}, {1}); }),
     true},
    {"V004", "/post/constant/entityresults/NODE/COORDINATE",
     At("/post/constant/variable/COORDINATE/orvblock", [](ForgedFile& f) { f.integer("ncoo", 4); })},
    {"V004", "/post/constant/entityresults/NODE/COORDINATE",
     At("/post/constant/variablegroup/COORDINATE/orvblock", [](ForgedFile& f) { f.integer("ncoo", 4); }), true,
     "_of_a_group"},
    {"V005", "/post/constant/variable/STRESS/orvblock/ubid",
     At(kStressVariable,
        [](ForgedFile& f) {
          f.dataset<std::int32_t>("ubid", {2}, {1, 9});
        })},
    {"V005", "/post/constant/system/orvblock/udbid",
     At("/post/constant/system/orvblock",
        [](ForgedFile& f) {
          f.dataset<std::int32_t>("udbid", {2}, {1, 9});
        }),
     false, "_derived"},
    {"V006", "/post/constant/variable/STRESS/orvblock/mbunit",
     At(kStressVariable,
        [](ForgedFile& f) {
          f.dataset<std::int32_t>("mbunit", {2}, {1, 2});
        })},
    {"V006", "/post/constant/variable/STRESS/orvblock/mbunit",
     At(kStressVariable,
        [](ForgedFile& f) {
          f.dataset<std::int32_t>("mbunit", {2}, {3, -1});
        }),
     false, "_negative"},
    {"V006", "/post/constant/system/orvblock/ndbunit",
     At("/post/constant/system/orvblock", [](ForgedFile& f) { f.dataset<std::int32_t>("ndbunit", {1}, {3}); }), false,
     "_derived"},
    {"V007", "/post/constant/variable/STRESS",
     At(kStressVariable,
        [](ForgedFile& f) {
          f.dataset<std::int32_t>("subsoffs", {2}, {0, 50});
        })},
    {"V008", "/post/constant/variable/TWICE",
     [](ForgedModel& model) {
       model.variable({.name = "TWICE", .key = "TWICE"});
       model.file().at("/post/constant/variable/TWICE/orvblock").text("varkey", "STRESS");
     }},
    {"V009", "/post/constant/variable/PE", At(kPeVariable, [](ForgedFile& f) { f.integer("rank", 5); })},
    {"V010", "/post/constant/indices",
     At("/post/constant/indices/orvblock", [](ForgedFile& f) { f.text("etypvar", "OTHER"); }), true},
    {"V011", "/post/constant/variable/KEYLESS", [](ForgedModel& model) { model.variable({.name = "KEYLESS"}); }},
};

const Broken kStates[] = {
    {"T001", "/post/singlestate/state000000000003", Move(kSoundState2, "/post/singlestate/state000000000003")},
    {"T002", "/post/singlestate/state2", Move(kSoundState2, "/post/singlestate/state2")},
    {"T003", "/post/singlestate/state000000000002",
     [](ForgedModel& model) {
       for (const std::string& block : {kStress2, kPe2}) {
         model.file().at(block).integer("nindex", 0).drop("indexval").drop("indexident");
       }
     }},
    {"T004", "/post/singlestate/state000000000002/elementresults/QUAD4/PE",
     At(kPe2, [](ForgedFile& f) { f.drop("indexident"); })},
    {"T004", "/post/singlestate/state000000000002/entityresults/NODE/STRESS",
     At(kStress2,
        [](ForgedFile& f) {
          f.integer("nindex", 2)
              .dataset<float>("indexval", {2}, {1, 1})
              .dataset<std::int32_t>("indexident", {2}, {1, 1});
        }),
     false, "_other_state"},
    {"T005", "/post/singlestate/state000000000002",
     [](ForgedModel& model) {
       for (const std::string& block : {kStress2, kPe2}) model.file().at(block).dataset<float>("indexval", {1}, {0.5F});
     }},
    {"T006", "/post/singlestate/state000000000002", At(kSoundState2, [](ForgedFile& f) { f.drop("activflags"); })},
    {"T007", "/post/singlestate/state000000000003", At("/post/singlestate/state000000000003", [](ForgedFile&) {})},
    {"T008", "/post/singlestate/state000000000001/entityresults/NODE/STRESS",
     At(kStress1, [](ForgedFile& f) { f.integer32("indexic", 1); })},
    {"T008", "/post/singlestate/state000000000002/activflags/QUAD4",
     At(std::string(kSoundState2) + "/activflags/QUAD4/orvblock", [](ForgedFile& f) { f.integer32("indexic", 1); }),
     false, "_index"},
};

const Broken kValues[] = {
    {"D001", "/post/singlestate/state000000000001/entityresults/NODE/STRESS/orvblock/res",
     At(kStress1,
        [](ForgedFile& f) {
          f.dataset<float>("res", {4, 2}, {1, NAN, 3, INFINITY, 5, 6, 7, 8});
        })},
    {"D004", "/post/constant/attributes/NODE/orvblock/entid",
     Remake(
         kAttributes, "entid", 4, [](hid_t) {}, false)},
};

template <class Test>
std::string NameOf(const Test& test) {
  return std::string(test.param.rule) + test.param.what;
}

INSTANTIATE_TEST_SUITE_P(Frame, CheckRules, testing::ValuesIn(kFrame), NameOf<testing::TestParamInfo<Broken>>);
INSTANTIATE_TEST_SUITE_P(Blocks, CheckRules, testing::ValuesIn(kBlocks), NameOf<testing::TestParamInfo<Broken>>);
INSTANTIATE_TEST_SUITE_P(Entities, CheckRules, testing::ValuesIn(kEntities), NameOf<testing::TestParamInfo<Broken>>);
INSTANTIATE_TEST_SUITE_P(Variables, CheckRules, testing::ValuesIn(kVariables), NameOf<testing::TestParamInfo<Broken>>);
INSTANTIATE_TEST_SUITE_P(States, CheckRules, testing::ValuesIn(kStates), NameOf<testing::TestParamInfo<Broken>>);
INSTANTIATE_TEST_SUITE_P(Values, CheckRules, testing::ValuesIn(kValues), NameOf<testing::TestParamInfo<Broken>>);

/// What leads out of a file, or is unusual enough, may be refused before it is looked at.
class CheckRoads : public CheckRules {};

TEST_P(CheckRoads, AreFoundOrTheFileIsRefused) {
  ForgedModel model;
  FillSoundFile(model);
  GetParam().act(model);
  const ProgramRun run = RunCheck(model.path());
  EXPECT_EQ(run.exit_code, 1);
  const std::vector<std::string> findings = FindingsOf(run);
  ASSERT_EQ(findings.size(), 1U) << run.out;
  EXPECT_THAT(findings[0], testing::AnyOf("S001 /", std::string(GetParam().rule) + " " + GetParam().place));
}

void AddSourceOfVirtualDataset(hid_t list) {
  const hsize_t count = 4;
  const Id space(H5Screate_simple(1, &count, nullptr), "space");
  Check(H5Pset_virtual(list, space.get(), "other.h5", "/values", space.get()), "virtual");
}

const Broken kRoads[] = {
    {"R001", "/post/constant/text/OUT",
     At("/post/constant/text", [](ForgedFile& f) { f.external_link("OUT", "/etc/passwd", "/"); })},
    {"R001", "/post/constant/attributes/NODE/orvblock/uid",
     At(kAttributes, [](ForgedFile& f) { f.external_link("uid", "other.h5", "/uid"); }), false, "_dataset"},
    {"R002", "/post/constant/attributes/NODE/orvblock/entid",
     Remake(
         kAttributes, "entid", 4, [](hid_t list) { Check(H5Pset_external(list, "/etc/passwd", 0, 16), "external"); },
         false)},
    {"R002", "/post/constant/attributes/NODE/orvblock/entid",
     Remake(kAttributes, "entid", 4, AddSourceOfVirtualDataset, false), false, "_virtual"},
    {"R003", "/post/constant/attributes/NODE/orvblock/entid",
     Remake(
         kAttributes, "entid", 4,
         [](hid_t list) {
           const hsize_t chunk = 4;
           Check(H5Pset_chunk(list, 1, &chunk), "chunk");
           Check(H5Pset_nbit(list), "filter");
         },
         true)},
    {"R004", "/post/constant/attributes/NODE/orvblock/uid",
     At(kAttributes, [](ForgedFile& f) { f.soft_link("uid", "/post/nowhere"); })},
    {"R005", "/post/constant/text/NOTES/orvblock",
     At("/post/constant/text/NOTES/orvblock", [](ForgedFile& f) { f.variable_text("etyptext", "NOTES"); })},
    {"R006", "/post/constant/text/LOOP",
     At("/post/constant/text", [](ForgedFile& f) { f.hard_link("LOOP", "/post/constant"); })},
};

INSTANTIATE_TEST_SUITE_P(All, CheckRoads, testing::ValuesIn(kRoads), NameOf<testing::TestParamInfo<Broken>>);

using CheckRuleTests = CheckTest;

/// A rule without a test here would be one that nobody has seen at work.
TEST_F(CheckRuleTests, AreThereForEachRule) {
  std::set<std::string> tested = {"S001", "S002", "S003", "S004",
                                  "F001", "D002", "D003"};  // in the tests of whole files and of the guard
  const auto add = [&](const auto& list) {
    for (const Broken& broken : list) tested.insert(broken.rule);
  };
  add(kFrame);
  add(kBlocks);
  add(kEntities);
  add(kVariables);
  add(kStates);
  add(kValues);
  add(kRoads);
  std::set<std::string> rules;
  const json listed = json::parse(RunOrv({"check", "--list-rules", "--json"}).out).at("rules");
  for (const json& rule : listed) rules.insert(rule.at("id").get<std::string>());
  EXPECT_EQ(rules, tested);
}

}  // namespace
