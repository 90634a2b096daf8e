// What orv asks back when a name was misspelled. That it then fails as it does for any unknown name is tested with the
// commands.

#include <gmock/gmock.h>

#include "program/forged_results.h"
#include "program/run_program.h"

namespace {

using namespace orv_test;
using testing::HasSubstr;
using Words = std::vector<std::string>;

class Suggestion : public ProgramTest {
 protected:
  void SetUp() override {
    ProgramTest::SetUp();
    ForgedFile file;
    FillForgedResults(file);
    AddPart(file, 7);
    path_ = WriteFile("whole.orv", BytesOf(file.path()));
  }

  /// What a run says is wrong, without what to do about it.
  std::string Complaint(Words words) const {
    words.insert(words.begin() + 1, path_);
    const ProgramRun run = RunOrv(words);
    ExpectTrouble(run, path_, "");
    return run.err.substr(0, run.err.find("; "));
  }
  std::string ComplaintAbout(const std::string& variable) const { return Complaint({"values", "--var", variable}); }

  std::string path_;
};

TEST_F(Suggestion, IsTheNearestName) {
  EXPECT_THAT(ComplaintAbout("STRES"), testing::EndsWith(R"(values of "STRES" (did you mean "STRESS"?))"));
  EXPECT_THAT(ComplaintAbout("STRAESS"), HasSubstr(R"((did you mean "STRESS"?))"));
  EXPECT_THAT(ComplaintAbout("STRESX"), HasSubstr(R"((did you mean "STRESS"?))"));
  EXPECT_THAT(ComplaintAbout("TSRESS"), HasSubstr(R"((did you mean "STRESS"?))"));
  EXPECT_THAT(ComplaintAbout("OOD"), HasSubstr(R"((did you mean "ODD"?))"));
  EXPECT_THAT(ComplaintAbout("STRESS_SYX"), HasSubstr(R"((did you mean "STRESS_SXX"?))"));
}

TEST_F(Suggestion, DoesNotCareForCase) {
  EXPECT_THAT(ComplaintAbout("stres"), HasSubstr(R"((did you mean "STRESS"?))"));
}

TEST_F(Suggestion, MayBeLongerThanTheWord) {
  EXPECT_THAT(ComplaintAbout("Str"), HasSubstr(R"((did you mean "STRESS"?))"));
  EXPECT_THAT(ComplaintAbout("St"), testing::Not(HasSubstr("did you mean")));
}

TEST_F(Suggestion, IsNotMadeForAWordThatIsLikeNoOther) {
  EXPECT_THAT(ComplaintAbout("Pressure"), testing::EndsWith(R"(values of "Pressure")"));
  EXPECT_THAT(ComplaintAbout("O"), testing::EndsWith(R"(values of "O")"));
  EXPECT_THAT(ComplaintAbout("0"), testing::Not(HasSubstr("did you mean")));
  EXPECT_THAT(ComplaintAbout(""), testing::EndsWith(R"(values of "")"));
  EXPECT_THAT(ComplaintAbout(std::string(100000, 'S')), testing::Not(HasSubstr("did you mean")));
}

TEST_F(Suggestion, IsNotMadeForANameThatTheFileHasElsewhere) {
  const std::string complaint = Complaint({"values", "--var", "WAVE", "--state", "2"});
  EXPECT_THAT(complaint, testing::EndsWith(R"(state 2 has no values of "WAVE")"));
}

TEST_F(Suggestion, IsMadeForEverythingThatAFileNames) {
  EXPECT_THAT(Complaint({"history", "--var", "stresses"}), HasSubstr(R"((did you mean "STRESS"?))"));
  EXPECT_THAT(Complaint({"values", "--var", "STRESS", "--state", "1", "--component", "SX"}),
              HasSubstr(R"(no component "SX" (did you mean "SXX"?))"));
  EXPECT_THAT(Complaint({"values", "--var", "STRESS", "--state", "1", "--entity", "SHEL"}),
              HasSubstr(R"(of "SHEL" (did you mean "SHELL"?))"));
  EXPECT_THAT(Complaint({"elements", "--type", "SOLIT"}), HasSubstr(R"((did you mean "SOLID"?))"));
  EXPECT_THAT(Complaint({"parts", "--type", "PARTS"}), HasSubstr(R"((did you mean "PART"?))"));
}

TEST_F(Suggestion, IsMadeForThePathsOfListings) {
  const auto complaint = [&](const std::string& place) { return RunOrv({"ls", path_ + ":" + place}).err; };
  EXPECT_THAT(complaint("singlestat"), HasSubstr(R"(/post/singlestat (did you mean "singlestate"?))"));
  EXPECT_THAT(complaint("constant/variabel/ODD"), HasSubstr(R"((did you mean "variable"?))"));
  EXPECT_THAT(complaint("/pots"), HasSubstr(R"((did you mean "post"?))"));
  EXPECT_THAT(complaint("constant/variable/ODD/orvblock/subscr/x"), testing::Not(HasSubstr("did you mean")));
}

}  // namespace
