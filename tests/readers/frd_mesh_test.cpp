// Header, nodes and elements of forged .frd files. Files cut off or lying about counts: frd_damage_test.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "frd/element_type.h"
#include "frd/reader.h"
#include "program/frd_forge.h"

namespace {

using namespace orvio::frd;
using namespace frd_forge;

Header HeaderOf(const std::string& bytes) {
  const TempFile file(bytes);
  return Reader(file.path()).ReadHeader();
}

Nodes NodesOf(const std::string& bytes) {
  const TempFile file(bytes);
  Reader reader(file.path());
  reader.ReadHeader();
  return reader.ReadNodes();
}

Elements ElementsOf(const std::string& bytes) {
  const TempFile file(bytes);
  Reader reader(file.path());
  reader.ReadHeader();
  reader.ReadNodes();
  return reader.ReadElements();
}

/// The message of the error in the elements of a file with these bytes behind the nodes.
std::string ElementError(const std::string& bytes) {
  try {
    ElementsOf(std::string(kHeader) + kNodes + bytes);
    return "no error";
  } catch (const Error& error) {
    return error.what();
  }
}

std::vector<int32_t> NodesOfElement(const Elements& elements, size_t index) {
  const auto nodes = elements.NodesOf(index);
  return {nodes.begin(), nodes.end()};
}

TEST(FrdHeader, GivesTextsAndMaterialsInTheirOrder) {
  const Header header =
      HeaderOf(std::string("    1Cplate\n    1U  heading of the deck          \n    1UUSER   \n    1U\n") +
               "    1UMAT   12STEEL                \n    1UMAT    2\n" + kNodes);
  EXPECT_EQ(header.case_name, "plate");
  EXPECT_EQ(header.texts, (std::vector<std::string>{"  heading of the deck", "USER", ""}));
  ASSERT_EQ(header.materials.size(), 2u);
  EXPECT_EQ(header.materials[0].number, 12);
  EXPECT_EQ(header.materials[0].name, "STEEL");
  EXPECT_EQ(header.materials[1].number, 2);
  EXPECT_EQ(header.materials[1].name, "");
}

TEST(FrdHeader, TakesAHeadingThatBeginsLikeAMaterialForText) {
  const Header header = HeaderOf(std::string("    1C\n    1UMATERIAL 12 TEST\n") + kNodes);
  EXPECT_EQ(header.texts, std::vector<std::string>{"MATERIAL 12 TEST"});
  EXPECT_TRUE(header.materials.empty());
}

TEST(FrdHeader, ReadsAMaterialNumberThatTouchesTheNameAndTheKey) {
  const Header header = HeaderOf(std::string("    1C\n    1UMAT123451STEEL\n") + kNodes);
  ASSERT_EQ(header.materials.size(), 1u);
  EXPECT_EQ(header.materials[0].number, 12345);
  EXPECT_EQ(header.materials[0].name, "1STEEL");
}

TEST(FrdNodes, AreCutByColumnAndNotByBlanks) {
  const Nodes nodes = NodesOf(std::string(kHeader) + BlockLine("    2C", 2, 1) +
                              " -12147483647-1.00000E+00-2.00000E+00-3.00000E+00\n"
                              " -1         7 1.00000-100 1.00000D+01 1.10000E+00\n -3\n");
  EXPECT_EQ(nodes.ids, (std::vector<int32_t>{2147483647, 7}));
  EXPECT_EQ(nodes.coordinates, (std::vector<float>{-1, -2, -3, 0, 10, 1.1f}));
  EXPECT_EQ(nodes.precise_coordinates, (std::vector<double>{-1, -2, -3, 1e-100, 10, 1.1}));
  EXPECT_FALSE(nodes.binary);
}

TEST(FrdNodes, AreReadFromShortText) {
  const Nodes nodes = NodesOf(std::string(kHeader) + BlockLine("    2C", 2, 0) +
                              " -199999-1.00000E+00-2.00000E+00-3.00000E+00\n"
                              " -1    7 4.00000E+00 5.00000E+00 6.00000E+00\n -3\n");
  EXPECT_EQ(nodes.ids, (std::vector<int32_t>{99999, 7}));
  EXPECT_EQ(nodes.coordinates, (std::vector<float>{-1, -2, -3, 4, 5, 6}));
}

TEST(FrdNodes, AreReadFromBinaryDoublesWithTheNextLineRightBehind) {
  const std::string mesh = kHeader + BlockLine("    2C", 2, 3) + Raw(10, 0.1, 0.2, 0.3) + Raw(7, -1.0, 1e-100, 5.0);
  const Nodes nodes = NodesOf(mesh + kElements);
  EXPECT_EQ(nodes.ids, (std::vector<int32_t>{10, 7}));
  EXPECT_EQ(nodes.precise_coordinates, (std::vector<double>{0.1, 0.2, 0.3, -1, 1e-100, 5}));
  EXPECT_EQ(nodes.coordinates, (std::vector<float>{0.1f, 0.2f, 0.3f, -1, 0, 5}));
  EXPECT_TRUE(nodes.binary);
  EXPECT_EQ(ElementsOf(mesh + kElements).items.size(), 1u);
}

TEST(FrdNodes, AreReadFromBinaryFloats) {
  const Nodes nodes = NodesOf(kHeader + BlockLine("    2C", 1, 2) + Raw(10, 0.1f, 0.2f, 0.3f));
  EXPECT_EQ(nodes.ids, std::vector<int32_t>{10});
  EXPECT_EQ(nodes.coordinates, (std::vector<float>{0.1f, 0.2f, 0.3f}));
  EXPECT_FALSE(nodes.binary);  // floats lose nothing as floats
}

TEST(FrdNodes, AreReadOverManyPiecesOfABinaryBlock) {
  std::string bytes = kHeader + BlockLine("    2C", 20000, 3);
  for (int i = 0; i < 20000; ++i) bytes += Raw(3 * i, 1.0 * i, 2.0 * i, 0.5 * i);
  const Nodes nodes = NodesOf(bytes);
  ASSERT_EQ(nodes.ids.size(), 20000u);
  for (size_t i = 0; i < 20000; ++i) {
    ASSERT_EQ(nodes.ids[i], static_cast<int32_t>(3 * i));
    ASSERT_EQ(nodes.precise_coordinates[3 * i + 2], 0.5 * static_cast<double>(i));
  }
}

TEST(FrdNodes, MayComeTwiceAndInAnyOrder) {
  const std::string node = " -1         5 0.00000E+00 0.00000E+00 0.00000E+00\n";
  const std::string other = " -1         2 0.00000E+00 0.00000E+00 0.00000E+00\n";
  const Nodes nodes = NodesOf(kHeader + BlockLine("    2C", 3, 1) + node + other + node + " -3\n");
  EXPECT_EQ(nodes.ids, (std::vector<int32_t>{5, 2, 5}));
}

TEST(FrdElements, KeepTheOrderOfTheFileWithTypeGroupAndMaterial) {
  const Elements elements = ElementsOf(std::string(kHeader) + kNodes + BlockLine("    3C", 3, 1) +
                                       " -1        20   12    3    2\n -2         1         5         2\n"
                                       " -1         4    9    0   -1\n -2         1         2         5         2\n"
                                       " -1         9   11    0    1\n -2         5         1\n -3\n");
  ASSERT_EQ(elements.items.size(), 3u);
  EXPECT_EQ(elements.items[0].id, 20);
  EXPECT_EQ(elements.items[0].type, 12);
  EXPECT_EQ(elements.items[0].group, 3);
  EXPECT_EQ(elements.items[0].material, 2);
  EXPECT_EQ(elements.items[1].id, 4);
  EXPECT_EQ(elements.items[1].material, -1);
  EXPECT_EQ(NodesOfElement(elements, 0), (std::vector<int32_t>{1, 5, 2}));
  EXPECT_EQ(NodesOfElement(elements, 1), (std::vector<int32_t>{1, 2, 5, 2}));
  EXPECT_EQ(NodesOfElement(elements, 2), (std::vector<int32_t>{5, 1}));
}

TEST(FrdElements, GoOnOnASecondLineAfterTenNodesAndTouchTheKey) {
  const Elements elements = ElementsOf(
      std::string(kHeader) + kNodes + BlockLine("    3C", 1, 1) +
      " -12147483647    512345    7\n"
      " -21000000001         2         3         4         5         6         7         8         91000000010\n"
      " -2        11        12        13        14        15\n -3\n");
  ASSERT_EQ(elements.items.size(), 1u);
  EXPECT_EQ(elements.items[0].id, 2147483647);
  EXPECT_EQ(elements.items[0].type, 5);
  EXPECT_EQ(elements.items[0].group, 12345);
  EXPECT_EQ(elements.items[0].material, 7);
  EXPECT_EQ(elements.nodes, (std::vector<int32_t>{1000000001, 2, 3, 4, 5, 6, 7, 8, 9, 1000000010, 11, 12, 13, 14, 15}));
}

TEST(FrdElements, AreReadFromShortTextWithFifteenNodesOnALine) {
  const Elements elements =
      ElementsOf(std::string(kHeader) + kNodes + BlockLine("    3C", 2, 0) +
                 " -1   31    4    0    1\n"
                 " -2    1    2    3    4    5    6    7    8    9   10   11   12   13   14   15\n"
                 " -2   16   17   18   19   20\n"
                 " -199999   11    0    1\n -29999899999\n -3\n");
  ASSERT_EQ(elements.items.size(), 2u);
  EXPECT_EQ(NodesOfElement(elements, 0),
            (std::vector<int32_t>{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20}));
  EXPECT_EQ(elements.items[1].id, 99999);
  EXPECT_EQ(NodesOfElement(elements, 1), (std::vector<int32_t>{99998, 99999}));
}

TEST(FrdElements, AreReadFromABinaryBlockOfSeveralTypes) {
  const Elements elements = ElementsOf(std::string(kHeader) + kNodes + BlockLine("    3C", 2, 2) +
                                       Raw(20, 12, 3, 2, 1, 5, 2) + Raw(4, 9, 0, 1, 1, 2, 5, 2) + kEnd);
  ASSERT_EQ(elements.items.size(), 2u);
  EXPECT_EQ(elements.items[0].type, 12);
  EXPECT_EQ(elements.items[0].group, 3);
  EXPECT_EQ(elements.items[0].material, 2);
  EXPECT_EQ(NodesOfElement(elements, 0), (std::vector<int32_t>{1, 5, 2}));
  EXPECT_EQ(elements.items[1].id, 4);
  EXPECT_EQ(NodesOfElement(elements, 1), (std::vector<int32_t>{1, 2, 5, 2}));
}

TEST(FrdElements, OfUnknownTypeAreRefusedWithTheirIdAndType) {
  EXPECT_EQ(ElementError(BlockLine("    3C", 1, 1) + " -1        77   13    0    1\n -2         1\n -3\n"),
            "line 10: element block, element 77: unknown element type 13");
  EXPECT_EQ(ElementError(BlockLine("    3C", 1, 1) + " -1        77         0    1\n -2         1\n -3\n"),
            "line 10: element block, element 77: unknown element type 0");
  const std::string in_binary = ElementError(BlockLine("    3C", 1, 2) + Raw(77, -5, 0, 1));
  EXPECT_TRUE(in_binary.ends_with(": element block, element 77: unknown element type -5")) << in_binary;
}

TEST(FrdElements, WithABlankNodeAreRefused) {
  EXPECT_EQ(ElementError(BlockLine("    3C", 1, 1) + " -1        77    7    0    1\n -2         1         2\n -3\n"),
            "line 11: element block: node id is not a number: \"\"");
}

TEST(FrdElements, WithMoreNodesThanTheirTypeAreRefused) {
  EXPECT_EQ(
      ElementError(BlockLine("    3C", 1, 1) + " -1        77   11    0    1\n -2         1         2         5\n"),
      "line 11: element block: text behind the last field: \"5\"");
}

TEST(FrdElementType, HasItsNameAndNodes) {
  struct Row {
    int32_t type;
    const char* name;
    size_t nodes;
  };
  constexpr Row kRows[] = {{1, "HE8", 8},   {2, "PE6", 6},   {3, "TE4", 4},  {4, "HE20", 20},
                           {5, "PE15", 15}, {6, "TE10", 10}, {7, "TR3", 3},  {8, "TR6", 6},
                           {9, "QU4", 4},   {10, "QU8", 8},  {11, "BE2", 2}, {12, "BE3", 3}};
  for (const Row& row : kRows) {
    const ElementType* type = FindElementType(row.type);
    ASSERT_NE(type, nullptr) << row.name;
    EXPECT_STREQ(type->name, row.name);
    EXPECT_EQ(type->nodes, row.nodes) << row.name;
  }
  EXPECT_EQ(FindElementType(0), nullptr);
  EXPECT_EQ(FindElementType(13), nullptr);
}

}  // namespace
