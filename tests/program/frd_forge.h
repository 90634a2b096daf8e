// Makes .frd files for the tests of their reader, byte by byte: nothing here knows the code under test.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>
#include <zlib.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

namespace frd_forge {

/// A file in the folder of temporary files, removed at the end of the scope.
class TempFile {
 public:
  explicit TempFile(std::string_view bytes) : path_(NewPath()) { std::ofstream(path_, std::ios::binary) << bytes; }
  ~TempFile() { std::filesystem::remove_all(path_); }
  TempFile(const TempFile&) = delete;
  TempFile& operator=(const TempFile&) = delete;
  const std::filesystem::path& path() const { return path_; }

  static std::filesystem::path NewPath() {
    static int number = 0;
    const auto name = "orvio_frd_" + std::to_string(getpid()) + "_" + std::to_string(++number);
    return std::filesystem::path(testing::TempDir()) / name;
  }

 private:
  std::filesystem::path path_;
};

/// The bytes packed with gzip.
inline std::string Packed(std::string_view bytes) {
  const TempFile file("");
  const gzFile stream = gzopen(file.path().c_str(), "wb");
  gzwrite(stream, bytes.data(), static_cast<unsigned>(bytes.size()));
  gzclose(stream);
  std::ifstream in(file.path(), std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

/// The little-endian bytes of numbers, as a binary block holds them.
template <class... T>
std::string Raw(T... numbers) {
  std::string bytes;
  const auto append = [&](const auto& number) {
    char raw[sizeof number];
    std::memcpy(raw, &number, sizeof number);
    bytes.append(raw, sizeof number);
  };
  (append(numbers), ...);
  return bytes;
}

inline constexpr char kHeader[] =
    "    1C\n"
    "    1Ucantilever                                                        \n"
    "    1UMAT    1STEEL                                                     \n";

/// One triangle.
inline constexpr char kNodes[] =
    "    2C                             3                                     1\n"
    " -1         1 0.00000E+00 0.00000E+00 0.00000E+00\n"
    " -1         2 1.00000E+00 0.00000E+00 0.00000E+00\n"
    " -1         5 0.00000E+00 1.00000E+00-7.45058E-09\n"
    " -3\n";
inline constexpr char kElements[] =
    "    3C                             1                                     1\n"
    " -1        11    7    0    1\n"
    " -2         1         2         5\n"
    " -3\n";

inline constexpr char kStep[] = "    1PSTEP                         1           2           3          \n";
inline constexpr char kState[] = "  100CL  101 396.5944823           2                     0    1           1\n";
inline constexpr char kTemperature[] =
    " -4  NDTEMP      1    1\n"
    " -5  T           1    1    0    0\n";
inline constexpr char kTemperatures[] =
    " -1         1 3.70000E+02\n"
    " -1         5-1.68156E-44\n"
    " -3\n";
inline constexpr char kEnd[] = " 9999\n";

inline std::string Mesh() { return std::string(kHeader) + kNodes + kElements; }
inline std::string Temperatures() { return std::string(kStep) + kState + kTemperature + kTemperatures; }

/// The first line of a block: `key` to column 6, the count in columns 25-36, the format code in columns 74-75.
inline std::string BlockLine(const char* key, long long count, int format) {
  char line[100];
  std::snprintf(line, sizeof line, "%-6.6s%18s%12lld%37s%2d\n", key, "", count, "", format);
  return line;
}

/// The `100C` line of a block of state 1.
inline std::string StateLine(long long count, int format) {
  char line[100];
  std::snprintf(line, sizeof line, "  100CL  101 1.00000E+00%12lld%20s%2d%5d%10s%2d\n", count, "", 0, 1, "", format);
  return line;
}

}  // namespace frd_forge
