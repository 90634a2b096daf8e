// The program at the top of the README is the one in examples/, which a test of the installation compiles and runs.

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>

namespace {

std::string TextOf(const std::string& name) {
  std::ifstream file(std::string(ORVIO_SOURCE_DIR) + "/" + name);
  return {std::istreambuf_iterator<char>(file), {}};
}

TEST(Readme, OpensWithTheProgramOfTheExamples) {
  const std::string readme = TextOf("README.md");
  const std::string fence = "```cpp\n";
  const size_t begin = readme.find(fence);
  ASSERT_NE(begin, std::string::npos);
  const size_t first = begin + fence.size();
  EXPECT_EQ(readme.substr(first, readme.find("```", first) - first), TextOf("examples/read_values.cpp"));
}

}  // namespace
