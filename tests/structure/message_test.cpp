// Messages of object headers, each on its own: what is wrong with them, told in words. Sound messages of all kinds and
// versions are in the files of accepted_files_test.

#include <gtest/gtest.h>

#include <functional>

#include "structure/attribute.h"
#include "structure/filters.h"
#include "structure/layout.h"
#include "structure/link.h"
#include "structure/small_messages.h"
#include "support/orv_test.h"

namespace {

using namespace orvio::structure;

std::string FromHex(std::string_view hex) {
  std::string bytes;
  std::string digits;
  for (const char c : hex) {
    if (c == ' ') continue;
    digits += c;
    if (digits.size() == 2) bytes += static_cast<char>(std::stoi(digits, nullptr, 16)), digits.clear();
  }
  return bytes;
}

using Parser = Verdict (*)(Cursor);

std::string Parse(Parser parser, const std::string& bytes, Widths widths = {}) {
  const Verdict verdict = parser(Cursor(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size(), widths));
  return verdict ? verdict : "";
}

// The parsers, with a result that nobody looks at.
template <class Result, Verdict (*Parse)(Cursor, Result&)>
Verdict Alone(Cursor in) {
  Result result{};
  return Parse(in, result);
}
constexpr Parser kSpace = Alone<Dataspace, ParseDataspace>;
constexpr Parser kPipeline = Alone<Pipeline, ParsePipeline>;
constexpr Parser kLayout = Alone<Layout, ParseLayout>;
constexpr Parser kAttribute = Alone<Attribute, ParseAttribute>;
constexpr Parser kLink = Alone<Link, ParseLink>;
constexpr Parser kLinkInfo = Alone<Dense, ParseLinkInfo>;
constexpr Parser kAttributeInfo = Alone<Dense, ParseAttributeInfo>;
constexpr Parser kFill = Alone<FillValue, ParseFillValue>;
constexpr Parser kOldFill = Alone<FillValue, ParseOldFillValue>;
constexpr Parser kTable = Alone<SymbolTable, ParseSymbolTable>;
constexpr Parser kContinuation = Alone<Continuation, ParseContinuation>;
constexpr Parser kShared = Alone<std::uint64_t, ParseShared>;
Verdict kType(Cursor in) {
  Datatype type;
  return ParseDatatype(in, type);
}
Verdict kRanks(Cursor in) {
  std::uint16_t ranks[3];
  return ParseTreeRanks(in, ranks[0], ranks[1], ranks[2]);
}

struct Row {
  const char* name;
  Parser parser;
  const char* hex;
  const char* what;
};

// A number of four bytes, and a float of four bytes.
#define INT4 "10 08 00 00 04 00 00 00 00 00 20 00 "
#define NO_ADDRESS "ff ff ff ff ff ff ff ff "
#define EIGHT(n) #n " 00 00 00 00 00 00 00 "

// clang-format off
constexpr Row kSound[] = {
    {"Space1", kSpace, "01 01 01 00 00 00 00 00 " EIGHT(05) EIGHT(06), "dataspace message is cut short"},
    {"Space2", kSpace, "02 01 01 01 " EIGHT(05) NO_ADDRESS, "dataspace message is cut short"},
    {"Integer", kType, INT4, "datatype message is cut short"},
    {"Float", kType, "11 20 1f 00 04 00 00 00 00 00 20 00 17 08 00 17 7f 00 00 00", "datatype message is cut short"},
    {"Time", kType, "12 00 00 00 04 00 00 00 20 00", "datatype message is cut short"},
    {"Bitfield", kType, "14 00 00 00 04 00 00 00 00 00 20 00", "datatype message is cut short"},
    {"Opaque", kType, "15 08 00 00 04 00 00 00 61 62 63 64 65 66 67 00", "datatype message is cut short"},
    {"Fill1", kFill, "01 01 00 01 04 00 00 00 07 00 00 00", "fill value message is cut short"},
    {"Fill2", kFill, "02 02 01 01 04 00 00 00 07 00 00 00", "fill value message is cut short"},
    {"Fill3", kFill, "03 29 04 00 00 00 07 00 00 00", "fill value message is cut short"},
    {"OldFill", kOldFill, "04 00 00 00 07 00 00 00", "fill value message is cut short"},
    {"HardLink", kLink, "01 00 01 61 " EIGHT(30), "link message is cut short"},
    {"SoftLink", kLink, "01 18 01 00 01 61 02 00 2f 61", "link message is cut short"},
    {"ExternalLink", kLink, "01 0c 40 " EIGHT(01) "01 61 05 00 00 66 00 61 00", "link message is cut short"},
    {"LinkInfo", kLinkInfo, "00 03 " EIGHT(05) NO_ADDRESS NO_ADDRESS NO_ADDRESS,
     "message about dense storage is cut short"},
    {"AttributeInfo", kAttributeInfo, "00 03 05 00 " EIGHT(10) EIGHT(20) EIGHT(30),
     "message about dense storage is cut short"},
    {"GroupInfo", ParseGroupInfo, "00 03 08 00 06 00 04 00 08 00", "group message is cut short"},
    {"Contiguous1", kLayout, "01 01 01 00 00 00 00 00 " EIGHT(40) "05 00 00 00", "layout message is cut short"},
    {"Compact2", kLayout, "02 01 00 00 00 00 00 00 05 00 00 00 02 00 00 00 aa bb", "layout message is cut short"},
    {"Compact3", kLayout, "03 00 02 00 aa bb", "layout message is cut short"},
    {"Contiguous3", kLayout, "03 01 " EIGHT(40) EIGHT(08), "layout message is cut short"},
    {"Chunked3", kLayout, "03 02 02 " EIGHT(40) "05 00 00 00 04 00 00 00", "layout message is cut short"},
    {"Single", kLayout, "04 02 02 02 01 05 04 01 " EIGHT(14) "00 00 00 00 " EIGHT(40), "layout message is cut short"},
    {"FixedArray", kLayout, "04 02 00 02 01 05 04 03 0a " EIGHT(40), "layout message is cut short"},
    {"ExtensibleArray", kLayout, "04 02 00 02 01 05 04 04 20 04 04 10 0a " EIGHT(40), "layout message is cut short"},
    {"Tree2", kLayout, "04 02 00 02 01 05 04 05 00 08 00 00 64 28 " EIGHT(40), "layout message is cut short"},
    {"Filters1", kPipeline, "01 01 00 00 00 00 00 00 01 00 08 00 01 00 01 00 61 00 00 00 00 00 00 00 06 00 00 00 00 00 00 00",
     "filter message is cut short"},
    {"Filters2", kPipeline, "02 01 00 01 02 00 01 00 01 00 61 00 06 00 00 00", "filter message is cut short"},
    {"Attribute1", kAttribute, "01 00 02 00 0c 00 08 00 61 00 00 00 00 00 00 00 " INT4 "00 00 00 00 01 00 00 00 00 00 00 00",
     "attribute message is cut short"},
    {"Attribute3", kAttribute, "03 00 02 00 0c 00 04 00 00 61 00 " INT4 "02 00 00 00", "attribute message is cut short"},
    {"Table", kTable, EIGHT(40) EIGHT(60), "symbol table message is cut short"},
    {"Continuation", kContinuation, EIGHT(40) EIGHT(60), "continuation message is cut short"},
    {"Ranks", kRanks, "00 20 00 10 00 04 00", "message about B-trees is not sound"},
    {"FileSpace", ParseFileSpace, "01 00 00 " EIGHT(01) "00 10 00 00 00 00 00 00 00 00 " NO_ADDRESS,
     "message about file space is not sound"},
    {"Comment", ParseComment, "61 62 00", "comment does not end"},
    {"Time1", ParseTime, "01 00 00 00 01 02 03 04", "modification time is not sound"},
    {"OldTime", ParseOldTime, "32 30 30 30 30 31 30 31 30 30 30 30 30 30 00 00", "modification time is not sound"},
    {"ReferenceCount", ParseReferenceCount, "00 02 00 00 00", "reference count is not sound"},
    {"Shared2", kShared, "02 00 " EIGHT(40), "shared message is cut short"},
    {"Shared3", kShared, "03 02 " EIGHT(40), "shared message is cut short"},
};

constexpr Row kUnsound[] = {
    {"SpaceVersion", kSpace, "03 01 00 01 " EIGHT(05), "dataspace message has an unknown version"},
    {"SpaceRank", kSpace, "02 21 00 01 " EIGHT(05), "dataspace has more than 32 dimensions"},
    {"SpaceFlags", kSpace, "01 01 02 00 00 00 00 00 " EIGHT(05), "dataspace message has unknown flags"},
    {"SpaceKind", kSpace, "02 00 00 03", "dataspace is of an unknown kind"},
    {"ScalarRank", kSpace, "02 01 00 00 " EIGHT(05), "dataspace without dimensions has some"},
    {"NullRank", kSpace, "02 01 00 02 " EIGHT(05), "dataspace without dimensions has some"},
    {"SpaceMaximum", kSpace, "02 01 01 01 " EIGHT(05) EIGHT(04), "dataspace is larger than its own maximum"},
    {"SpaceProduct", kSpace, "02 02 00 01 00 00 00 00 01 00 00 00 00 00 00 00 01 00 00 00",
     "dataspace has more elements than can be counted"},

    {"TypeVersion0", kType, "00 08 00 00 04 00 00 00 00 00 20 00", "datatype message has an unknown version"},
    {"TypeVersion5", kType, "50 08 00 00 04 00 00 00 00 00 20 00", "datatype message has an unknown version"},
    {"TypeClass", kType, "1b 08 00 00 04 00 00 00 00 00 20 00", "datatype is of an unknown class"},
    {"TypeSize", kType, "10 08 00 00 00 00 00 00 00 00 20 00", "datatype has no size"},
    {"IntegerBits", kType, "10 08 00 00 04 00 00 00 01 00 20 00", "number has bits outside its bytes"},
    {"IntegerNoBits", kType, "10 08 00 00 04 00 00 00 00 00 00 00", "number has bits outside its bytes"},
    {"FloatOrder", kType, "11 60 1f 00 04 00 00 00 00 00 20 00 17 08 00 17 7f 00 00 00",
     "floating-point number has an unknown byte order"},
    {"FloatNormalization", kType, "11 30 1f 00 04 00 00 00 00 00 20 00 17 08 00 17 7f 00 00 00",
     "floating-point number has an unknown normalization"},
    {"FloatWithoutImpliedBit", kType, "11 00 1f 00 04 00 00 00 00 00 20 00 17 08 00 17 7f 00 00 00",
     "floating-point number has an unknown normalization"},
    {"FloatSign", kType, "11 20 20 00 04 00 00 00 00 00 20 00 17 08 00 17 7f 00 00 00",
     "floating-point number has bits outside its bytes"},
    {"FloatExponent", kType, "11 20 1f 00 04 00 00 00 00 00 20 00 19 08 00 17 7f 00 00 00",
     "floating-point number has bits outside its bytes"},
    {"FloatMantissa", kType, "11 20 1f 00 04 00 00 00 00 00 20 00 17 08 0a 17 7f 00 00 00",
     "floating-point number has bits outside its bytes"},
    {"FloatNoMantissa", kType, "11 20 1f 00 04 00 00 00 00 00 20 00 17 08 00 00 7f 00 00 00",
     "floating-point number has bits outside its bytes"},
    {"TextPadding", kType, "13 03 00 00 04 00 00 00", "text has an unknown padding or character set"},
    {"TextCharacters", kType, "13 20 00 00 04 00 00 00", "text has an unknown padding or character set"},
    {"CompoundEmpty", kType, "16 00 00 00 04 00 00 00", "compound type has no members"},
    {"MemberName", kType, "36 01 00 00 04 00 00 00 61 62", "name of a type's member does not end"},
    {"MemberOffset", kType, "36 01 00 00 04 00 00 00 61 00 01 " INT4, "member passes the end of its type"},
    {"MemberRank", kType, "16 01 00 00 04 00 00 00 61 00 00 00 00 00 00 00 00 00 00 00 05 00 00 00 00 00 00 00 00 00 00 00 "
     "01 00 00 00 01 00 00 00 01 00 00 00 01 00 00 00 " INT4, "member of a type has more than 4 dimensions"},
    {"MemberExtent", kType, "16 01 00 00 04 00 00 00 61 00 00 00 00 00 00 00 00 00 00 00 01 00 00 00 00 00 00 00 00 00 00 00 "
     "00 00 00 00 01 00 00 00 01 00 00 00 01 00 00 00 " INT4, "member of a type has impossible extents"},
    {"MemberArray", kType, "16 01 00 00 04 00 00 00 61 00 00 00 00 00 00 00 00 00 00 00 01 00 00 00 00 00 00 00 00 00 00 00 "
     "02 00 00 00 01 00 00 00 01 00 00 00 01 00 00 00 " INT4, "member passes the end of its type"},
    {"ReferenceKind", kType, "17 05 00 00 08 00 00 00", "reference is of an unknown kind"},
    {"ReferenceSize", kType, "17 00 00 00 04 00 00 00", "reference has a wrong size"},
    {"RegionSize", kType, "17 01 00 00 08 00 00 00", "reference has a wrong size"},
    {"EnumBase", kType, "38 01 00 00 02 00 00 00 " INT4 "61 00 01 00 00 00", "enumeration is not of its integer's size"},
    {"EnumEmpty", kType, "38 00 00 00 04 00 00 00 " INT4, "enumeration has no members"},
    {"EnumCut", kType, "38 02 00 00 04 00 00 00 " INT4 "61 00 62 00 01 00 00 00", "datatype message is cut short"},
    {"VariableKind", kType, "19 02 00 00 10 00 00 00 " INT4, "variable-length type is of an unknown kind"},
    {"VariableSize", kType, "19 00 00 00 08 00 00 00 " INT4, "variable-length type has a wrong size"},
    {"ArrayVersion", kType, "1a 00 00 00 08 00 00 00 01 02 00 00 00 " INT4, "array type has an unknown version"},
    {"ArrayRank0", kType, "3a 00 00 00 08 00 00 00 00 " INT4, "array type has an impossible number of dimensions"},
    {"ArrayRank33", kType, "3a 00 00 00 08 00 00 00 21 " INT4, "array type has an impossible number of dimensions"},
    {"ArrayExtent", kType, "3a 00 00 00 08 00 00 00 01 00 00 00 00 " INT4, "array type has impossible extents"},
    {"ArraySize", kType, "3a 00 00 00 08 00 00 00 01 03 00 00 00 " INT4, "array type is not of its elements' size"},

    {"FillVersion", kFill, "04 00 00 00", "fill value message has an unknown version"},
    {"FillTimes", kFill, "02 04 00 00", "fill value message has unknown times"},
    {"FillWriteTime", kFill, "03 0c", "fill value message has unknown times"},
    {"FillFlags", kFill, "03 30 00 00 00 00", "fill value message has contradicting flags"},

    {"LinkVersion", kLink, "02 00 01 61 " EIGHT(30), "link message has an unknown version or flags"},
    {"LinkFlags", kLink, "01 20 01 61 " EIGHT(30), "link message has an unknown version or flags"},
    {"LinkKind", kLink, "01 08 02 01 61 " EIGHT(30), "link is of an unknown kind"},
    {"LinkCharacters", kLink, "01 10 02 01 61 " EIGHT(30), "name of a link has an unknown character set"},
    {"LinkNoName", kLink, "01 00 00 " EIGHT(30), "link has no name"},
    {"LinkLongName", kLink, "01 02 01 00 01 00 61 " EIGHT(30), "name of a link is too long"},
    {"SoftNoTarget", kLink, "01 08 01 01 61 00 00", "soft link has no target"},
    {"ExternalVersion", kLink, "01 08 40 01 61 05 00 10 66 00 61 00", "external link has no sound target"},
    {"ExternalFile", kLink, "01 08 40 01 61 03 00 00 66 61", "external link has no sound target"},
    {"ExternalObject", kLink, "01 08 40 01 61 04 00 00 66 00 61", "external link has no sound target"},
    {"LinkInfoVersion", kLinkInfo, "01 00 " NO_ADDRESS NO_ADDRESS,
     "message about dense storage has an unknown version or flags"},
    {"AttributeInfoFlags", kAttributeInfo, "00 04 " NO_ADDRESS NO_ADDRESS,
     "message about dense storage has an unknown version or flags"},
    {"NoNameIndex", kLinkInfo, "00 00 " EIGHT(40) NO_ADDRESS, "dense storage has no index of names"},
    {"GroupInfoVersion", ParseGroupInfo, "01 00", "group message has an unknown version or flags"},
    {"GroupInfoFlags", ParseGroupInfo, "00 04", "group message has an unknown version or flags"},
    {"GroupInfoLimits", ParseGroupInfo, "00 01 06 00 08 00", "group message has contradicting limits"},

    {"LayoutVersion0", kLayout, "00 01 01 00 00 00 00 00", "layout message has an unknown version"},
    {"LayoutVersion5", kLayout, "05 01 01 00 00 00 00 00", "layout message has an unknown version"},
    {"LayoutClass", kLayout, "03 04 " EIGHT(40) EIGHT(08), "layout is of an unknown class"},
    {"LayoutVirtual", kLayout, "04 03 " EIGHT(40) "00 00 00 00", "dataset takes its values from other files"},
    {"LayoutFlags", kLayout, "04 02 04 02 01 05 04 02 " EIGHT(40), "layout message has unknown flags"},
    {"ChunkWidth", kLayout, "04 02 00 02 09 05 04 02 " EIGHT(40), "chunks have extents of an impossible width"},
    {"ChunkRank1", kLayout, "03 02 01 " EIGHT(40) "04 00 00 00", "chunks have an impossible number of dimensions"},
    {"ChunkRank34", kLayout, "03 02 22 " EIGHT(40) "04 00 00 00", "chunks have an impossible number of dimensions"},
    {"ChunkExtent", kLayout, "03 02 02 " EIGHT(40) "00 00 00 00 04 00 00 00", "chunks have an extent of zero"},
    {"ChunkBytes", kLayout, "03 02 02 " EIGHT(40) "00 00 00 40 04 00 00 00", "chunks are too large"},
    {"ChunkElements", kLayout, "03 02 04 " EIGHT(40) "00 00 00 80 00 00 00 80 00 00 00 80 01 00 00 00",
     "chunks are too large"},
    {"ChunkIndex", kLayout, "04 02 00 02 01 05 04 06 " EIGHT(40), "chunks have an unknown kind of index"},
    {"ChunkIndex0", kLayout, "04 02 00 02 01 05 04 00 " EIGHT(40), "chunks have an unknown kind of index"},

    {"FilterVersion", kPipeline, "03 01 01 00 00 00 00 00", "filter message has an unknown version"},
    {"FilterNone", kPipeline, "02 00", "filter message has an impossible number of filters"},
    {"FilterMany", kPipeline, "02 21", "filter message has an impossible number of filters"},
    {"FilterNameLength", kPipeline, "01 01 00 00 00 00 00 00 01 00 07 00 01 00 00 00 61 00 00 00 00 00 00",
     "name of a filter has a wrong length"},
    {"FilterName", kPipeline, "02 01 00 01 02 00 01 00 00 00 61 61", "name of a filter does not end"},

    {"AttributeVersion", kAttribute, "04 00 02 00 0c 00 04 00 00 61 00 " INT4 "02 00 00 00",
     "attribute message has an unknown version"},
    {"AttributeFlags", kAttribute, "03 04 02 00 0c 00 04 00 00 61 00 " INT4 "02 00 00 00",
     "attribute message has unknown flags"},
    {"AttributeSpace", kAttribute, "03 02 02 00 0c 00 04 00 00 61 00 " INT4 "02 00 00 00",
     "dataspace of an attribute is shared"},
    {"AttributeNoName", kAttribute, "03 00 01 00 0c 00 04 00 00 00 " INT4 "02 00 00 00", "attribute has no name"},
    {"AttributeName", kAttribute, "03 00 02 00 0c 00 04 00 00 61 61 " INT4 "02 00 00 00",
     "name of an attribute does not end where it should"},
    {"AttributeNameEarly", kAttribute, "03 00 03 00 0c 00 04 00 00 61 00 00 " INT4 "02 00 00 00",
     "name of an attribute does not end where it should"},
    {"SharedVersion", kShared, "01 00 00 00 00 00 00 00 " EIGHT(40), "shared message has an unknown version"},
    {"SharedInHeap", kShared, "03 01 " EIGHT(40), "message is in a heap for shared messages"},

    {"RanksVersion", kRanks, "01 20 00 10 00 04 00", "message about B-trees is not sound"},
    {"RanksNone", kRanks, "00 20 00 00 00 04 00", "message about B-trees is not sound"},
    {"FileSpaceVersion", ParseFileSpace, "02 00 00 " EIGHT(01) EIGHT(00) "00 00 " NO_ADDRESS,
     "message about file space is not sound"},
    {"FileSpaceStrategy", ParseFileSpace, "01 04 00 " EIGHT(01) EIGHT(00) "00 00 " NO_ADDRESS,
     "message about file space is not sound"},
    {"TimeVersion", ParseTime, "02 00 00 00 01 02 03 04", "modification time is not sound"},
    {"ReferenceCountVersion", ParseReferenceCount, "01 02 00 00 00", "reference count is not sound"},
};
// clang-format on

std::string NameOf(const ::testing::TestParamInfo<Row>& row) { return row.param.name; }

class SoundMessage : public orv_test::OrvTest, public ::testing::WithParamInterface<Row> {};

TEST_P(SoundMessage, Passes) { EXPECT_EQ(Parse(GetParam().parser, FromHex(GetParam().hex)), ""); }

TEST_P(SoundMessage, IsRefusedWhereverItIsCut) {
  const std::string whole = FromHex(GetParam().hex);
  for (size_t length = 0; length < whole.size(); ++length) {
    EXPECT_NE(Parse(GetParam().parser, whole.substr(0, length)), "") << length;
  }
  EXPECT_EQ(Parse(GetParam().parser, whole.substr(0, whole.size() - 1)), GetParam().what);
}

INSTANTIATE_TEST_SUITE_P(All, SoundMessage, ::testing::ValuesIn(kSound), NameOf);

class UnsoundMessage : public orv_test::OrvTest, public ::testing::WithParamInterface<Row> {};

TEST_P(UnsoundMessage, IsRefusedForWhatIsWrongWithIt) {
  EXPECT_EQ(Parse(GetParam().parser, FromHex(GetParam().hex)), GetParam().what);
}

INSTANTIATE_TEST_SUITE_P(All, UnsoundMessage, ::testing::ValuesIn(kUnsound), NameOf);

TEST(Datatype, MayBeNested16DeepAndNoDeeper) {
  const auto nested = [](int depth) {
    std::string hex;
    for (int i = 0; i < depth; ++i) hex += "19 00 00 00 10 00 00 00 ";
    return Parse(kType, FromHex(hex + INT4));
  };
  EXPECT_EQ(nested(16), "");
  EXPECT_EQ(nested(17), "datatype is nested too deep");
}

Pipeline OneFilter(std::uint16_t id, std::uint16_t count, std::initializer_list<std::uint32_t> values) {
  Pipeline pipeline;
  pipeline.count = 1;
  pipeline.filters[0].id = id;
  pipeline.filters[0].value_count = count;
  std::copy(values.begin(), values.end(), pipeline.filters[0].values.begin());
  return pipeline;
}

std::string JudgeOne(const Pipeline& pipeline, const char* type_hex, std::uint64_t elements = 100) {
  Datatype type;
  const std::string bytes = FromHex(type_hex);
  Cursor in(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size(), {});
  EXPECT_EQ(ParseDatatype(in, type), nullptr);
  const Verdict verdict = JudgePipeline(pipeline, type, elements);
  return verdict ? verdict : "";
}

TEST(FilterParameters, OfDeflateAreOneLevelUpTo9) {
  EXPECT_EQ(JudgeOne(OneFilter(1, 1, {9}), INT4), "");
  EXPECT_EQ(JudgeOne(OneFilter(1, 1, {10}), INT4), "deflate filter has wrong parameters");
  EXPECT_EQ(JudgeOne(OneFilter(1, 0, {}), INT4), "deflate filter has wrong parameters");
}

TEST(FilterParameters, OfShuffleAreTheSizeOfAnElement) {
  EXPECT_EQ(JudgeOne(OneFilter(2, 1, {4}), INT4), "");
  EXPECT_EQ(JudgeOne(OneFilter(2, 1, {8}), INT4), "shuffle filter is set up for another type");
  EXPECT_EQ(JudgeOne(OneFilter(2, 1, {0}), INT4), "shuffle filter is set up for another type");
  EXPECT_EQ(JudgeOne(OneFilter(2, 0, {}), INT4), "shuffle filter is set up for another type");
}

TEST(FilterParameters, OfAChecksumAreNone) {
  EXPECT_EQ(JudgeOne(OneFilter(3, 0, {}), INT4), "");
  EXPECT_EQ(JudgeOne(OneFilter(3, 1, {0}), INT4), "checksum filter has parameters");
}

TEST(FilterParameters, OfAnUnknownFilterAreLeftToWhoKnowsIt) { EXPECT_EQ(JudgeOne(OneFilter(32000, 3, {}), INT4), ""); }

TEST(FilterParameters, OfScaleOffsetAreThoseOfTheDataset) {
  // Kind of scaling, digits or bits, elements of a chunk, class, size, sign, byte order, fill value.
  constexpr char kOther[] = "scale-offset filter is set up for another dataset";
  EXPECT_EQ(JudgeOne(OneFilter(6, 20, {2, 0, 100, 0, 4, 1, 0, 0}), INT4), "");
  EXPECT_EQ(JudgeOne(OneFilter(6, 19, {2, 0, 100, 0, 4, 1, 0, 0}), INT4),
            "scale-offset filter has a wrong number of parameters");
  EXPECT_EQ(JudgeOne(OneFilter(6, 20, {0, 0, 100, 0, 4, 1, 0, 0}), INT4), kOther);
  EXPECT_EQ(JudgeOne(OneFilter(6, 20, {2, 0, 101, 0, 4, 1, 0, 0}), INT4), kOther);
  EXPECT_EQ(JudgeOne(OneFilter(6, 20, {2, 0, 100, 1, 4, 1, 0, 0}), INT4), kOther);
  EXPECT_EQ(JudgeOne(OneFilter(6, 20, {2, 0, 100, 0, 8, 1, 0, 0}), INT4), kOther);
  EXPECT_EQ(JudgeOne(OneFilter(6, 20, {2, 0, 100, 0, 4, 0, 0, 0}), INT4), kOther);
  EXPECT_EQ(JudgeOne(OneFilter(6, 20, {2, 0, 100, 0, 4, 1, 1, 0}), INT4), kOther);
  EXPECT_EQ(JudgeOne(OneFilter(6, 20, {2, 0, 100, 0, 4, 1, 0, 2}), INT4), kOther);
  EXPECT_EQ(JudgeOne(OneFilter(6, 20, {2, 0, 100, 0, 3, 1, 0, 0}), "10 08 00 00 03 00 00 00 00 00 18 00"), kOther);
  EXPECT_EQ(JudgeOne(OneFilter(6, 20, {2, 0, 100, 0, 4, 1, 0, 0}), "13 00 00 00 04 00 00 00"), kOther);
}

}  // namespace
