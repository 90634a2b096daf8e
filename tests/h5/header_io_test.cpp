// The verbs that block headers are read and written with, each in each case: absent, unreadable, present.

#include "h5/header_io.h"

#include <cstdint>
#include <functional>
#include <string>

#include "h5/h5_test.h"

namespace {

using namespace orv_test;
using orvio::Text;
using orvio::h5::Field;
using orvio::h5::HeaderReader;
using orvio::h5::HeaderWriter;

constexpr char kBlock[] = "/post/constant/b";

/// The members that a header line may fill, with what they held before.
struct Members {
  std::int64_t wide = -7;
  int narrow = -8;
  Text text = "before";
};

class HeaderLines : public H5Test {
 protected:
  HeaderLines() {
    file_.at(kBlock).integer("wide", 9000000000).integer32("narrow", 12).text("text", "SHELL");
    file_.text("no_number", "x").integer("no_text", 1);
  }

  /// Applies lines to the forged header and answers the reader's status.
  int Read(const std::function<void(HeaderReader&)>& lines) {
    OH5Reader reader;
    const Location header(file_.path(), kBlock);
    HeaderReader in(&reader, header.id());
    lines(in);
    EXPECT_EQ(in.ok(), in.status() == 0);
    return in.status();
  }

  ForgedFile file_{"header"};
  Members members_;
};

using Verb = void (*)(HeaderReader& in, const char* name, Field member);

struct VerbRow {
  const char* name;
  Verb apply;
  int when_absent;      ///< status
  bool keeps_absent;    ///< the member is left alone when the attribute is absent
  int when_unreadable;  ///< status; the member is left alone always
};

class HeaderVerb : public HeaderLines, public testing::WithParamInterface<VerbRow> {
 protected:
  int Apply(const char* name, Field member) {
    return Read([&](HeaderReader& in) { GetParam().apply(in, name, member); });
  }
};

TEST_P(HeaderVerb, ReadsAPresentAttribute) {
  EXPECT_EQ(Apply("wide", members_.wide), 0);
  EXPECT_EQ(members_.wide, 9000000000);
  EXPECT_EQ(Apply("narrow", members_.narrow), 0);
  EXPECT_EQ(members_.narrow, 12);
  EXPECT_EQ(Apply("narrow", members_.wide), 0);
  EXPECT_EQ(members_.wide, 12);
  EXPECT_EQ(Apply("text", members_.text), 0);
  EXPECT_EQ(std::string(members_.text), "SHELL" + std::string(251, ' '));
}

TEST_P(HeaderVerb, TreatsAnAbsentAttributeAsTheTableSays) {
  EXPECT_EQ(Apply("nowhere", members_.wide), GetParam().when_absent);
  EXPECT_EQ(members_.wide, GetParam().keeps_absent ? -7 : 31);
  EXPECT_EQ(Apply("nowhere", members_.narrow), GetParam().when_absent);
  EXPECT_EQ(members_.narrow, GetParam().keeps_absent ? -8 : 31);
  EXPECT_EQ(Apply("nowhere", members_.text), GetParam().when_absent);
  EXPECT_STREQ(members_.text, GetParam().keeps_absent ? "before" : "");
}

TEST_P(HeaderVerb, LeavesTheMemberOfAnUnreadableAttributeAlone) {
  EXPECT_EQ(Apply("no_number", members_.wide), GetParam().when_unreadable);
  EXPECT_EQ(members_.wide, -7);
  EXPECT_EQ(Apply("no_number", members_.narrow), GetParam().when_unreadable);
  EXPECT_EQ(members_.narrow, -8);
  EXPECT_EQ(Apply("no_text", members_.text), GetParam().when_unreadable);
  EXPECT_STREQ(members_.text, "before");
}

TEST_P(HeaderVerb, DoesNothingAfterAFailure) {
  EXPECT_EQ(Read([&](HeaderReader& in) {
              in.required("nowhere", members_.wide);
              GetParam().apply(in, "wide", members_.wide);
              GetParam().apply(in, "nowhere", members_.wide);
            }),
            1);
  EXPECT_EQ(members_.wide, -7);
}

TEST_P(HeaderVerb, DoesNothingWithoutAReader) {
  const Location header(file_.path(), kBlock);
  HeaderReader in(nullptr, header.id());
  GetParam().apply(in, "wide", members_.wide);
  EXPECT_EQ(in.status(), 1);
  EXPECT_FALSE(in.ok());
  EXPECT_EQ(members_.wide, -7);
}

TEST_P(HeaderVerb, TakesAHeaderThatIsNoLocationForAnEmptyOne) {
  OH5Reader reader;
  HeaderReader in(&reader, -1);
  GetParam().apply(in, "wide", members_.wide);
  EXPECT_EQ(in.status(), GetParam().when_absent);
}

INSTANTIATE_TEST_SUITE_P(
    Table, HeaderVerb,
    testing::Values(
        VerbRow{"required", [](HeaderReader& in, const char* name, Field member) { in.required(name, member); }, 1,
                true, 1},
        VerbRow{"if_present", [](HeaderReader& in, const char* name, Field member) { in.if_present(name, member); }, 0,
                true, 1},
        VerbRow{"defaulted", [](HeaderReader& in, const char* name, Field member) { in.defaulted(name, member, 31); },
                0, false, 1},
        VerbRow{"tolerated", [](HeaderReader& in, const char* name, Field member) { in.tolerated(name, member, 31); },
                0, false, 0},
        VerbRow{"attempted", [](HeaderReader& in, const char* name, Field member) { in.attempted(name, member); }, 0,
                true, 0}),
    [](const auto& row) { return std::string(row.param.name); });

TEST_F(HeaderLines, AttemptedTellsWhetherTheMemberWasRead) {
  EXPECT_EQ(Read([&](HeaderReader& in) {
              EXPECT_TRUE(in.attempted("wide", members_.wide));
              EXPECT_FALSE(in.attempted("nowhere", members_.wide));
              EXPECT_FALSE(in.attempted("no_number", members_.wide));
              in.required("nowhere", members_.wide);
              EXPECT_FALSE(in.attempted("wide", members_.wide));
            }),
            1);
}

TEST_F(HeaderLines, DefaultedAndToleratedGiveZeroUnlessTold) {
  EXPECT_EQ(Read([&](HeaderReader& in) {
              in.defaulted("nowhere", members_.wide);
              in.tolerated("nowhere", members_.narrow);
            }),
            0);
  EXPECT_EQ(members_.wide, 0);
  EXPECT_EQ(members_.narrow, 0);
}

TEST_F(HeaderLines, StripTakesTrailingBlanksOffAndDoesNothingAfterAFailure) {
  EXPECT_EQ(Read([&](HeaderReader& in) {
              in.required("text", members_.text);
              in.strip(members_.text);
            }),
            0);
  EXPECT_STREQ(members_.text, "SHELL");
  Text padded = "padded  ";
  EXPECT_EQ(Read([&](HeaderReader& in) {
              in.required("nowhere", members_.wide);
              in.strip(padded);
            }),
            1);
  EXPECT_STREQ(padded, "padded  ");
}

TEST_F(HeaderLines, TextsEndAtTheFirstZeroByteAndAreAlwaysTerminated) {
  file_.text("zero", std::string("ab\0cd", 5)).text("full", std::string(256, 'x')).text("short", "abc", 3);
  file_.text("large", "x", 257).variable_text("variable", std::string(300, 'v').c_str());
  EXPECT_EQ(Read([&](HeaderReader& in) { in.required("zero", members_.text); }), 0);
  EXPECT_STREQ(members_.text, "ab");
  EXPECT_EQ(Read([&](HeaderReader& in) { in.required("full", members_.text); }), 0);
  EXPECT_EQ(std::string(members_.text), std::string(256, 'x'));
  EXPECT_EQ(Read([&](HeaderReader& in) { in.required("short", members_.text); }), 0);
  EXPECT_STREQ(members_.text, "abc");
  EXPECT_EQ(Read([&](HeaderReader& in) { in.required("large", members_.text); }), 1);
  EXPECT_STREQ(members_.text, "abc");
  EXPECT_EQ(Read([&](HeaderReader& in) { in.required("variable", members_.text); }), 0);
  EXPECT_EQ(std::string(members_.text), std::string(255, 'v'));
}

class HeaderWrites : public HeaderLines {
 protected:
  int Write(const std::function<void(HeaderWriter&)>& lines) {
    const Location header(file_.path(), kBlock, H5F_ACC_RDWR);
    HeaderWriter out(header.id());
    lines(out);
    EXPECT_EQ(out.ok(), out.status() == 0);
    return out.status();
  }
};

TEST_F(HeaderWrites, StoreEachLineInItsType) {
  EXPECT_EQ(Write([](HeaderWriter& out) {
              out.integer("a", 9000000000);
              out.integer32("b", -5);
              out.text("c", "SOLID");
              out.attempted("d", 6);
            }),
            0);
  const RawFile file(file_.path());
  EXPECT_EQ(file.attribute_int(kBlock, "a"), 9000000000);
  EXPECT_EQ(file.attribute_size(kBlock, "a"), 8u);
  EXPECT_EQ(file.attribute_int(kBlock, "b"), -5);
  EXPECT_EQ(file.attribute_size(kBlock, "b"), 4u);
  EXPECT_EQ(file.attribute_text(kBlock, "c"), "SOLID" + std::string(251, ' '));
  EXPECT_EQ(file.attribute_int(kBlock, "d"), 6);
  EXPECT_EQ(file.attribute_size(kBlock, "d"), 8u);
}

TEST_F(HeaderWrites, CutTextsAt256Bytes) {
  const std::string text(300, 'x');
  EXPECT_EQ(Write([&](HeaderWriter& out) {
              out.text("a", text.c_str());
              out.text("b", "");
            }),
            0);
  const RawFile file(file_.path());
  EXPECT_EQ(file.attribute_text(kBlock, "a"), std::string(256, 'x'));
  EXPECT_EQ(file.attribute_text(kBlock, "b"), std::string(256, ' '));
}

TEST_F(HeaderWrites, DoNothingAfterALineThatFailed) {
  EXPECT_EQ(Write([](HeaderWriter& out) {
              out.integer("no_number", 1);
              out.integer("a", 1);
              out.integer32("b", 1);
              out.text("c", "x");
              out.attempted("d", 1);
            }),
            1);
  const RawFile file(file_.path());
  for (const char* name : {"a", "b", "c", "d"}) EXPECT_FALSE(file.has_attribute(kBlock, name)) << name;
}

TEST_F(HeaderWrites, GoOnAfterAnAttemptThatFailed) {
  EXPECT_EQ(Write([](HeaderWriter& out) {
              out.attempted("no_number", 1);
              out.integer("a", 1);
            }),
            0);
  EXPECT_EQ(RawFile(file_.path()).attribute_int(kBlock, "a"), 1);
}

}  // namespace
