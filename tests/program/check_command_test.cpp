// orv check: its options, what it prints, exit codes. What the rules find is looked at elsewhere.

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <nlohmann/json.hpp>
#include <regex>
#include <set>

#include "program/run_program.h"
#include "program/small_result.h"
#include "program/sound_file.h"

namespace {

using namespace orv_test;
using nlohmann::json;
using testing::HasSubstr;
using testing::StartsWith;

class CheckCommand : public ProgramTest {
 protected:
  std::string Sound() const {
    return Forged([](ForgedFile&) {});
  }

  /// One error, one warning and one note.
  std::string Broken() const {
    return Forged([](ForgedFile& file) {
      file.at("/post/constant/attributes/NODE/orvblock").integer("nent", 5);
      file.at("/post/constant/connectivities/QUAD4/orvblock").dataset<std::int32_t>("pid", {1}, {8});
      file.at("/post/constant").drop("identifiers");
    });
  }

  std::string Forged(const std::function<void(ForgedFile&)>& act) const {
    ForgedModel model;
    FillSoundFile(model);
    act(model.file());
    return WriteFile("forged.orv", BytesOf(model.path()));
  }

  static json Rules() { return json::parse(RunOrv({"check", "--list-rules", "--json"}).out).at("rules"); }
};

TEST_F(CheckCommand, OfASoundFileEndsWithZero) {
  const ProgramRun run = RunOrv({"check", Sound()});
  EXPECT_EQ(run.exit_code, 0);
  EXPECT_EQ(run.out, "0 errors, 0 warnings, 0 notes; 19 blocks in 2 states looked at\n");
  EXPECT_EQ(run.err, "");
}

TEST_F(CheckCommand, TellsLevelRulePlaceAndASentence) {
  const ProgramRun run = RunOrv({"check", Broken()});
  EXPECT_EQ(run.exit_code, 1);
  EXPECT_EQ(run.out,
            "note F006 /post/constant: missing: identifiers\n"
            "error B006 /post/constant/attributes/NODE/orvblock/entid: the extents are 4; the header says 5 (nent)\n"
            "warning E006 /post/constant/connectivities/QUAD4: there is no part 8 of the type PART\n"
            "1 error, 1 warning, 1 note; 19 blocks in 2 states looked at\n");
  EXPECT_EQ(run.err, "");
}

TEST_F(CheckCommand, ShowsWhatIsOfTheLevelAskedForAndCountsAll) {
  const ProgramRun run = RunOrv({"check", "--level", "error", Broken()});
  EXPECT_EQ(run.exit_code, 1);
  EXPECT_THAT(run.out, StartsWith("error B006 "));
  EXPECT_THAT(run.out, HasSubstr("\n1 error, 1 warning, 1 note; "));
  EXPECT_THAT(run.out, testing::Not(HasSubstr("E006")));
  EXPECT_THAT(RunOrv({"check", "--level", "warning", Broken()}).out, testing::Not(HasSubstr("F006")));
}

TEST_F(CheckCommand, WithNotesAloneEndsWithZero) {
  const std::string path = Forged([](ForgedFile& file) { file.at("/post/constant").drop("identifiers"); });
  const ProgramRun run = RunOrv({"check", path});
  EXPECT_EQ(run.exit_code, 0);
  EXPECT_THAT(run.out, StartsWith("note F006 "));
}

TEST_F(CheckCommand, WithAWarningThatIsNotShownEndsWithOne) {
  const std::string path = Forged([](ForgedFile& file) {
    file.at("/post/constant/connectivities/QUAD4/orvblock").dataset<std::int32_t>("pid", {1}, {8});
  });
  EXPECT_EQ(RunOrv({"check", "--level", "error", path}).exit_code, 1);
}

TEST_F(CheckCommand, PrintsJsonOfAVersionedSchema) {
  const std::string path = Broken();
  const ProgramRun run = RunOrv({"check", "--json", path});
  EXPECT_EQ(run.exit_code, 1);
  const json report = json::parse(run.out);
  EXPECT_EQ(report.at("schema_version"), 1);
  EXPECT_EQ(report.at("file"), path);
  EXPECT_EQ(report.at("complete"), true);
  EXPECT_EQ(report.at("errors"), 1);
  EXPECT_EQ(report.at("warnings"), 1);
  EXPECT_EQ(report.at("notes"), 1);
  EXPECT_EQ(report.at("looked_at").at("states"), 2);
  EXPECT_EQ(report.at("looked_at").at("blocks"), 19);
  EXPECT_GT(report.at("looked_at").at("datasets"), 30);
  EXPECT_GT(report.at("looked_at").at("values"), 100);
  const json expected = {{"rule", "E006"},
                         {"level", "warning"},
                         {"name", "unknown-parts"},
                         {"place", "/post/constant/connectivities/QUAD4"},
                         {"text", "there is no part 8 of the type PART"}};
  EXPECT_EQ(report.at("findings").at(2), expected);
}

TEST_F(CheckCommand, ExplainsEachRuleWithoutAFile) {
  for (const json& rule : Rules()) {
    const std::string id = rule.at("id");
    const ProgramRun run = RunOrv({"check", "--explain", id});
    EXPECT_EQ(run.exit_code, 0);
    EXPECT_THAT(run.out, StartsWith(id + " " + rule.at("name").get<std::string>() + " ("));
    EXPECT_THAT(run.out, HasSubstr(rule.at("wants").get<std::string>()));
    EXPECT_THAT(run.out, HasSubstr("Why: " + rule.at("why").get<std::string>()));
    EXPECT_THAT(run.out, HasSubstr("What to do: " + rule.at("advice").get<std::string>()));
  }
  EXPECT_THAT(RunOrv({"check", "--explain", "b001"}).out, StartsWith("B001 "));
}

TEST_F(CheckCommand, HasRulesWithDistinctIdsInOrderAndAllTexts) {
  std::string last;
  std::set<std::string> names;
  const std::regex id_pattern("[SFBEVTRD][0-9]{3}");
  const std::string groups = "SFBEVTRD";
  for (const json& rule : Rules()) {
    const std::string id = rule.at("id");
    EXPECT_TRUE(std::regex_match(id, id_pattern)) << id;
    const auto rank = [&](const std::string& of) { return of.empty() ? "" : std::to_string(groups.find(of[0])) + of; };
    EXPECT_LT(rank(last), rank(id));
    EXPECT_TRUE(names.insert(rule.at("name")).second) << id;
    for (const char* text : {"wants", "why", "advice"})
      EXPECT_THAT(rule.at(text).get<std::string>(), testing::EndsWith("."));
    last = id;
  }
}

/// The page is where people read of the rules.
TEST_F(CheckCommand, HasTheRulesThatItsPageHas) {
  std::string page = BytesOf(std::string(ORVIO_SOURCE_DIR) + "/docs/check.md");
  std::vector<std::string> on_page, listed;
  const std::regex row(R"(\n\| ([A-Z][0-9]{3}) \| (\w+) \| `([^`]*)` \| ([^|]*) \|)");
  for (std::sregex_iterator match(page.begin(), page.end(), row), end; match != end; ++match) {
    on_page.push_back((*match)[1].str() + " " + (*match)[2].str() + " " + (*match)[3].str() + " " + (*match)[4].str());
  }
  for (const json& rule : Rules()) {
    listed.push_back(rule.at("id").get<std::string>() + " " + rule.at("level").get<std::string>() + " " +
                     rule.at("name").get<std::string>() + " " + rule.at("wants").get<std::string>());
  }
  EXPECT_EQ(on_page, listed);
}

TEST_F(CheckCommand, RefusesARuleThatIsNotThere) {
  ExpectTrouble(RunOrv({"check", "--explain", "B999"}), "B999", "no such rule");
}

TEST_F(CheckCommand, RefusesWordsThatItDoesNotKnow) {
  const std::string path = Sound();
  for (const std::vector<std::string>& words :
       std::vector<std::vector<std::string>>{{"check"},
                                             {"check", path, "--level", "fatal"},
                                             {"check", path, "--time", "0"},
                                             {"check", path, "--time", "nan"},
                                             {"check", path, "--memory", "-1"},
                                             {"check", path, "--despite-damage"},
                                             {"check", path, path}}) {
    const ProgramRun run = RunOrv(words);
    EXPECT_EQ(run.exit_code, 2) << testing::PrintToString(words);
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.err, HasSubstr("--help"));
  }
}

TEST_F(CheckCommand, RefusesWhatIsNoFile) {
  ExpectTrouble(RunOrv({"check", TempPath("none.orv")}), TempPath("none.orv"), "does not exist");
  ExpectTrouble(RunOrv({"check", TempPath("")}), TempPath(""), "is not a file");
  ASSERT_EQ(mkfifo(TempPath("pipe.orv").c_str(), 0600), 0);
  ExpectTrouble(RunOrv({"check", TempPath("pipe.orv")}), TempPath("pipe.orv"), "is not a file");
}

TEST_F(CheckCommand, RefusesAFileThatMayNotBeRead) {
  const std::string path = Sound();
  chmod(path.c_str(), 0);
  Surroundings surroundings;
  surroundings.keeps_permissions = true;
  if (RunOrv({"--version"}, surroundings).exit_code != 0) GTEST_SKIP() << "the super-user cannot be held back here";
  ExpectTrouble(RunOrv({"check", path}, surroundings), path, "may not be read");
}

TEST_F(CheckCommand, TellsOfOutputThatDoesNotReachItsReader) {
  Surroundings surroundings;
  surroundings.standard_output = "/dev/full";
  ExpectTrouble(RunOrv({"check", Sound()}, surroundings), "standard output", "cannot be written");
  const ProgramRun run = RunCommand("sh", {"-c", "\"$0\" check \"$1\" >&-", ORVIO_PROGRAM, Sound()});
  ExpectTrouble(run, "standard output", "cannot be written");
}

TEST_F(CheckCommand, GivesUpWhenTheTimeIsOver) {
  const ProgramRun run = RunOrv({"check", "--json", "--time", "0.001", Sound()});
  EXPECT_EQ(run.exit_code, 1);
  const json report = json::parse(run.out);
  EXPECT_EQ(report.at("complete"), false);
  EXPECT_EQ(report.at("findings").back().at("rule"), "S003");
  EXPECT_EQ(report.at("findings").back().at("text"), "reading was not done after 0.001 s");
}

/// A chunk of 1 GiB that takes a few bytes in the file: HDF5 needs room for all of it.
TEST_F(CheckCommand, GivesUpWhenTheMemoryIsUsedUp) {
  if (kIsSanitized) GTEST_SKIP() << "sanitizers take all memory there is";
  const std::string path = Forged([](ForgedFile& file) {
    file.at("/post/constant/attributes/BIG/orvblock").integer("block", 200).text("etyp", "BIG");
    constexpr hsize_t kCount = 1 << 28;
    file.integer("nent", kCount).integer("nuid", 0).integer("nindex", 0).raw([&](hid_t here) {
      const Id list(H5Pcreate(H5P_DATASET_CREATE), "list"), space(H5Screate_simple(1, &kCount, nullptr), "space");
      Check(H5Pset_chunk(list.get(), 1, &kCount), "chunk");
      Check(H5Pset_deflate(list.get(), 1), "filter");
      const Id entid(H5Dcreate2(here, "entid", H5T_NATIVE_INT, space.get(), H5P_DEFAULT, list.get(), H5P_DEFAULT), "");
      const int one = 1;
      const hsize_t single = 1;
      const Id memory(H5Screate_simple(1, &single, nullptr), "space"), place(H5Scopy(space.get()), "space");
      const hsize_t start = 0;
      Check(H5Sselect_hyperslab(place.get(), H5S_SELECT_SET, &start, nullptr, &single, nullptr), "place");
      Check(H5Dwrite(entid.get(), H5T_NATIVE_INT, memory.get(), place.get(), H5P_DEFAULT, &one), "write");
    });
  });
  const ProgramRun run = RunOrv({"check", "--json", "--memory", "512", path});
  EXPECT_EQ(run.exit_code, 1);
  const json report = json::parse(run.out);
  EXPECT_EQ(report.at("complete"), false);
  EXPECT_EQ(report.at("findings").back().at("rule"), "S004");
  EXPECT_EQ(report.at("findings").back().at("place"), "/post/constant/attributes/BIG");
}

TEST_F(CheckCommand, LeavesTheFileAlone) {
  const std::string path = Broken();
  const std::string before = BytesOf(path);
  (void)RunOrv({"check", path});
  EXPECT_EQ(BytesOf(path), before);
  EXPECT_EQ(NamesIn(TempPath("")), std::vector<std::string>{"forged.orv"});
}

/// Bytes wrong anywhere: an answer, and no word beside it.
TEST_F(CheckCommand, SurvivesAFileWithWrongBytes) {
  const std::string bytes = BytesOf(Sound());
  for (size_t at = 0; at + 8 < bytes.size(); at += bytes.size() / 61) {
    SCOPED_TRACE(at);
    std::string damaged = bytes;
    damaged.replace(at, 8, 8, '\xFF');
    const ProgramRun run = RunOrv({"check", "--json", WriteFile("damaged.orv", damaged)});
    EXPECT_THAT(run.exit_code, testing::AnyOf(0, 1));
    EXPECT_EQ(json::parse(run.out).at("schema_version"), 1);
  }
}

}  // namespace
