// Datasets whose chunks went through the scale-offset filter, read without HDF5's decoder: what HDF5 gives where it is
// right, what the bytes hold where it fails, and failure where they do not tell. The bytes of single chunks are in
// scale_offset_decode_test.

#include "h5/scale_offset_read.h"

#include <cmath>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <limits>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "h5/entry.h"
#include "h5/h5_test.h"

namespace {

using namespace orv_test;
using orvio::h5::Decoded;
using orvio::h5::Extents;
using orvio::h5::ReadScaleOffset;
using orvio::h5::Slab;
using Shape = std::vector<hsize_t>;

constexpr float kInfinity = std::numeric_limits<float>::infinity();

template <class T>
hid_t Native() {
  if constexpr (std::is_floating_point_v<T>) {
    return sizeof(T) == 4 ? H5T_NATIVE_FLOAT : H5T_NATIVE_DOUBLE;
  } else if constexpr (sizeof(T) == 1) {
    return std::is_signed_v<T> ? H5T_NATIVE_SCHAR : H5T_NATIVE_UCHAR;
  } else if constexpr (sizeof(T) == 2) {
    return std::is_signed_v<T> ? H5T_NATIVE_SHORT : H5T_NATIVE_USHORT;
  } else if constexpr (sizeof(T) == 4) {
    return std::is_signed_v<T> ? H5T_NATIVE_INT : H5T_NATIVE_UINT;
  } else {
    return std::is_signed_v<T> ? H5T_NATIVE_LLONG : H5T_NATIVE_ULLONG;
  }
}

/// The library's type for a native one.
template <class T>
constexpr _ORVDataType kRow = std::is_floating_point_v<T> ? (sizeof(T) == 4 ? ORV_FLOAT : ORV_DOUBLE)
                                                          : (sizeof(T) == 4 ? ORV_INT : ORV_LONG);

std::optional<Extents> StoredExtents(hid_t dataset) {
  const Id space(H5Dget_space(dataset), "space");
  return orvio::h5::ExtentsOf(space.get());
}

/// A creation list with chunks and the filter of a class: digits of floats, bits of integers.
class Creation {
 public:
  Creation(const Shape& chunk, bool floats, int factor = 0) : list_(H5Pcreate(H5P_DATASET_CREATE), "list") {
    Check(H5Pset_chunk(list_.get(), static_cast<int>(chunk.size()), chunk.data()), "chunk");
    Check(H5Pset_scaleoffset(list_.get(), floats ? H5Z_SO_FLOAT_DSCALE : H5Z_SO_INT, factor), "scale-offset");
  }
  template <class T>
  Creation& fill(T value) {
    Check(H5Pset_fill_value(list_.get(), Native<T>(), &value), "fill value");
    return *this;
  }
  Creation& no_fill() {
    Check(H5Pset_fill_value(list_.get(), H5T_NATIVE_INT, nullptr), "no fill value");
    return *this;
  }
  hid_t id() const { return list_.get(); }

 private:
  Id list_;
};

class ScaleOffsetRead : public H5Test {
 protected:
  /// Makes "x" and closes it; what was not written is missing.
  void Forge(hid_t stored, const Shape& shape, const Creation& creation,
             const std::function<void(hid_t dataset)>& write) {
    file_.raw([&](hid_t here) {
      if (H5Lexists(here, "x", H5P_DEFAULT) > 0) Check(H5Ldelete(here, "x", H5P_DEFAULT), "x");
      const Shape unlimited(shape.size(), H5S_UNLIMITED);
      const Id space(H5Screate_simple(static_cast<int>(shape.size()), shape.data(), unlimited.data()), "space");
      const Id made(H5Dcreate2(here, "x", stored, space.get(), H5P_DEFAULT, creation.id(), H5P_DEFAULT), "x");
      write(made.get());
    });
  }
  template <class T>
  void Forge(hid_t stored, const Shape& shape, const Creation& creation, const std::vector<T>& values) {
    Forge(stored, shape, creation, [&](hid_t dataset) {
      Check(H5Dwrite(dataset, Native<T>(), H5S_ALL, H5S_ALL, H5P_DEFAULT, values.data()), "x");
    });
  }
  /// One row, one chunk.
  template <class T>
  void ForgeRow(hid_t stored, const std::vector<T>& values, int factor = 0) {
    Forge(stored, {values.size()}, Creation({values.size()}, std::is_floating_point_v<T>, factor), values);
  }
  /// One chunk of the bytes given; a bit of `left_out` for each filter that it did not go through.
  static void PutChunk(hid_t dataset, const std::vector<unsigned char>& bytes, unsigned left_out = 0) {
    const hsize_t offset[] = {0, 0};
    Check(H5Dwrite_chunk(dataset, H5P_DEFAULT, left_out, offset, bytes.size(), bytes.data()), "chunk");
  }

  /// Calls `act` with "x" of a file opened for reading.
  void With(const std::function<void(hid_t dataset)>& act) {
    const Location place(file_.path(), "/x");
    act(place.id());
  }

  /// What the library reads, kept in `values`; a value that it did not touch is 77.
  template <class T>
  Decoded Read(std::vector<T>& values, const Slab* slab = nullptr, hsize_t count = 0) {
    Decoded answer = Decoded::kNotOurs;
    With([&](hid_t dataset) {
      const auto stored = StoredExtents(dataset);
      ASSERT_TRUE(stored);
      values.assign(slab ? count : stored->points, T{77});
      answer = orvio::h5::Entry(Decoded::kFailed, [&] {
        return ReadScaleOffset(dataset, *stored, *orvio::h5::FindNumericType(kRow<T>), slab, values.data());
      });
    });
    return answer;
  }
  template <class T>
  std::vector<T> ReadDone(const Slab* slab = nullptr, hsize_t count = 0) {
    std::vector<T> values;
    EXPECT_EQ(Read(values, slab, count), Decoded::kDone);
    return values;
  }
  template <class T>
  Decoded Answer() {
    std::vector<T> values;
    return Read(values);
  }

  /// What HDF5 reads; nothing when it fails.
  template <class T>
  std::optional<std::vector<T>> Hdf5Reads() {
    std::optional<std::vector<T>> values;
    With([&](hid_t dataset) {
      values.emplace(StoredExtents(dataset)->points, T{77});
      const orvio::h5::QuietHdf5 quiet;
      if (H5Dread(dataset, Native<T>(), H5S_ALL, H5S_ALL, H5P_DEFAULT, values->data()) < 0) values.reset();
    });
    return values;
  }

  /// Both readers give the same to the last bit.
  template <class T>
  void ExpectAsHdf5(const std::string& what) {
    const auto theirs = Hdf5Reads<T>();
    ASSERT_TRUE(theirs) << what;
    const std::vector<T> ours = ReadDone<T>();
    ASSERT_EQ(ours.size(), theirs->size()) << what;
    EXPECT_EQ(std::memcmp(ours.data(), theirs->data(), ours.size() * sizeof(T)), 0) << what;
  }

  /// Doubles become the nearest floats. (HDF5 itself rounds the other way where two are as near, if it has to swap the
  /// bytes of the doubles as well.)
  void ExpectNarrowed(const std::string& what) {
    const std::vector<float> floats = ReadDone<float>();
    const auto doubles = Hdf5Reads<double>();
    ASSERT_TRUE(doubles) << what;
    for (size_t i = 0; i < floats.size(); ++i) {
      ASSERT_EQ(floats[i], static_cast<float>((*doubles)[i])) << what << ", " << i;
    }
  }

  /// HDF5 cannot read it, and the library gives the values that were written.
  template <class T>
  void ExpectRecovered(const std::vector<T>& values) {
    EXPECT_FALSE(Hdf5Reads<T>());
    EXPECT_EQ(ReadDone<T>(), values);
  }

  /// Changes bytes of the closed file, which must be there once.
  void Patch(const std::vector<unsigned>& words, size_t index, unsigned value) {
    const std::string path = file_.path();
    std::string bytes(std::filesystem::file_size(path), '\0');
    std::fstream file(path, std::ios::in | std::ios::out | std::ios::binary);
    file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    const std::string wanted(reinterpret_cast<const char*>(words.data()), words.size() * sizeof words[0]);
    const auto at = bytes.find(wanted);
    ASSERT_NE(at, std::string::npos);
    file.seekp(static_cast<std::streamoff>(at + index * sizeof value));
    file.write(reinterpret_cast<const char*>(&value), sizeof value);
  }

  ForgedFile file_{"scale_offset_read"};
};

// --- as HDF5 reads it

/// Values of a type between two bounds, some of them equal to a fill value.
template <class T>
std::vector<T> Values(size_t count, double low, double high, T fill, unsigned seed) {
  std::mt19937 random(seed);
  std::uniform_real_distribution<double> any(low, high);
  std::vector<T> values(count);
  for (size_t i = 0; i < count; ++i) values[i] = i % 7 == 3 ? fill : static_cast<T>(any(random));
  return values;
}

TEST_F(ScaleOffsetRead, GivesTheFloatsThatHdf5Gives) {
  for (const hid_t stored : {H5T_IEEE_F32LE, H5T_IEEE_F32BE}) {
    for (const int digits : {0, 1, 3, 6, 20}) {
      for (const double range : {1e-3, 0.4, 1.0, 1000.0, 2e9}) {
        const double high = std::min(range, 1.9e9 / std::pow(10.0, digits));
        const auto fill = static_cast<float>(high / 4);
        const std::vector<float> values = Values<float>(300, -high / 9, high, fill, 5);
        const std::string what = std::to_string(digits) + " digits to " + std::to_string(high);
        Forge(stored, {300}, Creation({100}, true, digits), values);
        ExpectAsHdf5<float>(what);
        Forge(stored, {300}, Creation({90}, true, digits).fill(fill), values);
        ExpectAsHdf5<float>(what + ", fill value");
        ExpectAsHdf5<double>(what + ", as doubles");
        Forge(stored, {300}, Creation({300}, true, digits).no_fill(), values);
        ExpectAsHdf5<float>(what + ", no fill value");
      }
    }
  }
}

TEST_F(ScaleOffsetRead, GivesTheDoublesThatHdf5Gives) {
  for (const hid_t stored : {H5T_IEEE_F64LE, H5T_IEEE_F64BE}) {
    for (const int digits : {0, 2, 9, 100}) {
      for (const double range : {1e-3, 1.0, 1e6, 9e18}) {
        const double high = std::min(range, 9e18 / std::pow(10.0, digits));
        const double fill = high / 4;
        const std::vector<double> values = Values<double>(300, -high / 99, high, fill, 6);
        const std::string what = std::to_string(digits) + " digits to " + std::to_string(high);
        Forge(stored, {300}, Creation({100}, true, digits), values);
        ExpectAsHdf5<double>(what);
        Forge(stored, {300}, Creation({90}, true, digits).fill(fill), values);
        ExpectAsHdf5<double>(what + ", fill value");
        ExpectNarrowed(what);
      }
    }
  }
}

template <class T>
struct IntegerCase {
  hid_t stored;
  double low, high;
};

#define ORVIO_INTEGERS(T, Name, ...)                                                            \
  TEST_F(ScaleOffsetRead, GivesThe##Name##ThatHdf5Gives) {                                      \
    for (const IntegerCase<T>& integers : std::initializer_list<IntegerCase<T>>{__VA_ARGS__}) { \
      const auto fill = static_cast<T>(integers.low);                                           \
      const std::vector<T> values = Values<T>(500, integers.low, integers.high, fill, 7);       \
      Forge(integers.stored, {500}, Creation({120}, false), values);                            \
      ExpectAsHdf5<int32_t>("as integers");                                                     \
      ExpectAsHdf5<int64_t>("as long integers");                                                \
      Forge(integers.stored, {500}, Creation({500}, false).fill(fill), values);                 \
      ExpectAsHdf5<int32_t>("fill value");                                                      \
      Forge(integers.stored, {500}, Creation({77}, false, 6).no_fill(), values);                \
      ExpectAsHdf5<int64_t>("six bits");                                                        \
    }                                                                                           \
  }
ORVIO_INTEGERS(int8_t, Bytes, {H5T_STD_I8LE, -60, 60}, {H5T_STD_I8BE, -3, 3}, {H5T_STD_I8LE, 5, 5})
ORVIO_INTEGERS(uint8_t, UnsignedBytes, {H5T_STD_U8LE, 100, 220}, {H5T_STD_U8BE, 0, 1})
ORVIO_INTEGERS(int16_t, ShortIntegers, {H5T_STD_I16LE, -16000, 16000}, {H5T_STD_I16BE, -9, 5})
ORVIO_INTEGERS(uint16_t, UnsignedShortIntegers, {H5T_STD_U16LE, 32768, 65535}, {H5T_STD_U16BE, 0, 9})
ORVIO_INTEGERS(int32_t, Integers, {H5T_STD_I32LE, -1e9, 1e9}, {H5T_STD_I32BE, -1e9, 5}, {H5T_STD_I32LE, 5, 6})
ORVIO_INTEGERS(uint32_t, UnsignedIntegers, {H5T_STD_U32LE, 2.2e9, 4.2e9}, {H5T_STD_U32BE, 0, 1e5})
ORVIO_INTEGERS(int64_t, LongIntegers, {H5T_STD_I64LE, -4e18, 4e18}, {H5T_STD_I64BE, -1e17, 1e16})
ORVIO_INTEGERS(uint64_t, UnsignedLongIntegers, {H5T_STD_U64LE, 9.3e18, 1.8e19}, {H5T_STD_U64BE, 0, 3e16})

TEST_F(ScaleOffsetRead, GivesIntegersOfOtherPrecision) {
  const Id type(H5Tcopy(H5T_STD_I32BE), "type");
  Check(H5Tset_precision(type.get(), 24), "precision");
  Check(H5Tset_offset(type.get(), 4), "offset");
  Forge<int32_t>(type.get(), {4}, Creation({4}, false), {-100, -90, -95, 8000000});
  EXPECT_EQ(ReadDone<int32_t>(), (std::vector<int32_t>{-100, -90, -95, 8000000}));
}

TEST_F(ScaleOffsetRead, GivesWhatWasJustWritten) {
  const std::vector<int32_t> values = {4, 5, 6, 7};
  Forge(H5T_STD_I32LE, {4}, Creation({4}, false), [&](hid_t dataset) {
    Check(H5Dwrite(dataset, H5T_NATIVE_INT, H5S_ALL, H5S_ALL, H5P_DEFAULT, values.data()), "x");
    Extents stored{1, {4}, 4};
    std::vector<int32_t> read(4);
    EXPECT_EQ(ReadScaleOffset(dataset, stored, *orvio::h5::FindNumericType(ORV_INT), nullptr, read.data()),
              Decoded::kDone);
    EXPECT_EQ(read, values);
  });
}

// --- what HDF5 cannot read

TEST_F(ScaleOffsetRead, RecoversFloatsTooWideForTheDigits) {
  for (const hid_t stored : {H5T_IEEE_F32LE, H5T_IEEE_F32BE}) {
    ForgeRow<float>(stored, {1e7F, -1e7F, 0.5F, 0}, 3);
    ExpectRecovered<float>({1e7F, -1e7F, 0.5F, 0});
  }
  ForgeRow<float>(H5T_IEEE_F32LE, {3e38F, -3e38F, 1}, 3);
  ExpectRecovered<float>({3e38F, -3e38F, 1});
  ForgeRow<double>(H5T_IEEE_F64BE, {1e16, -1e16, 0.5, 0}, 3);
  ExpectRecovered<double>({1e16, -1e16, 0.5, 0});
}

TEST_F(ScaleOffsetRead, RecoversFloatsAtTheBoundary) {
  ForgeRow<float>(H5T_IEEE_F32LE, {0, 2147483520.0F, 5, 1});
  ExpectAsHdf5<float>("31 bits");
  EXPECT_EQ(ReadDone<float>(), (std::vector<float>{0, 2147483520.0F, 5, 1}));
  ForgeRow<float>(H5T_IEEE_F32LE, {0, 2147483648.0F, 5, 1});
  ExpectRecovered<float>({0, 2147483648.0F, 5, 1});
  ForgeRow<double>(H5T_IEEE_F64LE, {0, 9223372036854774784.0, 5, 1});
  ExpectAsHdf5<double>("63 bits");
  ForgeRow<double>(H5T_IEEE_F64LE, {0, 9223372036854775808.0, 5, 1});
  ExpectRecovered<double>({0, 9223372036854775808.0, 5, 1});
}

TEST_F(ScaleOffsetRead, RecoversInfiniteFloats) {
  ForgeRow<float>(H5T_IEEE_F32LE, {1, kInfinity, 2, 3}, 3);
  ExpectRecovered<float>({1, kInfinity, 2, 3});
  ForgeRow<float>(H5T_IEEE_F32LE, {1, -kInfinity, 2, kInfinity}, 3);
  ExpectRecovered<float>({1, -kInfinity, 2, kInfinity});
  ForgeRow<double>(H5T_IEEE_F64LE, {kInfinity, kInfinity}, 3);
  ExpectRecovered<double>({kInfinity, kInfinity});
}

TEST_F(ScaleOffsetRead, RecoversDoublesThatBeginWithOneThatIsNoNumber) {
  ForgeRow<double>(H5T_IEEE_F64LE, {std::nan(""), 1, 2, std::nan("")}, 3);
  EXPECT_FALSE(Hdf5Reads<double>());
  const std::vector<double> values = ReadDone<double>();
  EXPECT_TRUE(std::isnan(values[0]));
  EXPECT_EQ(values[1], 1);
  EXPECT_EQ(values[2], 2);
  EXPECT_TRUE(std::isnan(values[3]));
}

TEST_F(ScaleOffsetRead, RecoversDoublesWithDigitsBeyondAllNumbers) {
  ForgeRow<double>(H5T_IEEE_F64LE, {0, 0, 1}, 400);
  ExpectRecovered<double>({0, 0, 1});
}

template <class T>
std::vector<T> FullRange() {
  return {std::numeric_limits<T>::min(), std::numeric_limits<T>::max(), 0, 5};
}

TEST_F(ScaleOffsetRead, RecoversIntegersOfTheFullRange) {
  for (const hid_t stored : {H5T_STD_I32LE, H5T_STD_I32BE}) {
    ForgeRow(stored, FullRange<int32_t>());
    ExpectRecovered(FullRange<int32_t>());
  }
  for (const hid_t stored : {H5T_STD_I64LE, H5T_STD_I64BE}) {
    ForgeRow(stored, FullRange<int64_t>());
    ExpectRecovered(FullRange<int64_t>());
  }
  ForgeRow(H5T_STD_I8LE, FullRange<int8_t>());
  ExpectRecovered<int32_t>({-128, 127, 0, 5});
  ForgeRow(H5T_STD_U8LE, FullRange<uint8_t>());
  ExpectRecovered<int32_t>({0, 255, 0, 5});
  ForgeRow(H5T_STD_I16BE, FullRange<int16_t>());
  ExpectRecovered<int32_t>({-32768, 32767, 0, 5});
  ForgeRow(H5T_STD_U16BE, FullRange<uint16_t>());
  ExpectRecovered<int64_t>({0, 65535, 0, 5});
  ForgeRow(H5T_STD_U32LE, FullRange<uint32_t>());
  ExpectRecovered<int64_t>({0, 4294967295, 0, 5});
}

TEST_F(ScaleOffsetRead, NarrowsRecoveredValuesAsHdf5Converts) {
  ForgeRow(H5T_STD_U32LE, FullRange<uint32_t>());
  ExpectRecovered<int32_t>({0, 2147483647, 0, 5});
  ForgeRow(H5T_STD_U64LE, FullRange<uint64_t>());
  ExpectRecovered<int64_t>({0, 9223372036854775807, 0, 5});
  ForgeRow<double>(H5T_IEEE_F64LE, {1e300, -1e16, 0.5}, 3);
  ExpectRecovered<float>({kInfinity, -1e16F, 0.5F});
}

TEST_F(ScaleOffsetRead, FailsForFloatsThatAreLost) {
  const float none = std::nanf("");
  for (const std::vector<float>& values :
       {std::vector<float>{none, none, none}, std::vector<float>{none, 1, 2}, std::vector<float>{kInfinity, kInfinity},
        std::vector<float>{3e38F, 3e38F}}) {
    ForgeRow(H5T_IEEE_F32LE, values, 3);
    EXPECT_EQ(Answer<float>(), Decoded::kFailed);
  }
  ForgeRow<float>(H5T_IEEE_F32LE, {0, 0, 0}, 39);
  EXPECT_EQ(Answer<float>(), Decoded::kFailed);
}

TEST_F(ScaleOffsetRead, CannotTellAValueThatIsNoNumberFromTheLeastOne) {
  ForgeRow<float>(H5T_IEEE_F32LE, {1, std::nanf(""), 2, 3}, 3);
  EXPECT_EQ(Hdf5Reads<float>(), (std::vector<float>{1, 1, 2, 3}));
  EXPECT_EQ(ReadDone<float>(), (std::vector<float>{1, 1, 2, 3}));
}

TEST_F(ScaleOffsetRead, FailsForAChunkThatIsCutShort) {
  // 17 bits each; HDF5 takes the four bits that are missing for zeros and calls it success.
  const std::vector<unsigned char> whole = {0x11, 0, 0, 0, 8, 0, 0,    0x50, 0xc0, 0,    0,    0, 0,    0,    0,
                                            0,    0, 0, 0, 0, 0, 0x08, 0x4d, 0x05, 0x9d, 0x80, 0, 0x19, 0x35, 0x20};
  std::vector<unsigned char> bytes = whole;
  Forge(H5T_IEEE_F32LE, {4}, Creation({4}, true, 3), [&](hid_t dataset) { PutChunk(dataset, bytes); });
  EXPECT_EQ(ReadDone<float>(), (std::vector<float>{1, 2.5F, -3.25F, 100}));
  bytes.pop_back();
  Forge(H5T_IEEE_F32LE, {4}, Creation({4}, true, 3), [&](hid_t dataset) { PutChunk(dataset, bytes); });
  EXPECT_TRUE(Hdf5Reads<float>());
  EXPECT_EQ(Answer<float>(), Decoded::kFailed);
}

TEST_F(ScaleOffsetRead, FailsForAChunkLargerThanAnyCanBe) {
  const std::vector<unsigned char> bytes(100, 0);
  Forge(H5T_STD_I32LE, {4}, Creation({4}, false), [&](hid_t dataset) { PutChunk(dataset, bytes); });
  EXPECT_EQ(Answer<int32_t>(), Decoded::kFailed);
}

// --- chunks without the filter

TEST_F(ScaleOffsetRead, GivesIntegersWithTheFormOfFloats) {
  for (const hid_t stored : {H5T_STD_I32LE, H5T_STD_I32BE}) {
    Forge<int32_t>(stored, {5}, Creation({2}, true, 3), {1, -2, 3, 100, 5});
    ExpectAsHdf5<int32_t>("never packed");
    EXPECT_EQ(ReadDone<int64_t>(), (std::vector<int64_t>{1, -2, 3, 100, 5}));
  }
}

TEST_F(ScaleOffsetRead, GivesIntegersThatAreToHaveAllBitsOrMore) {
  for (const int bits : {32, 40}) {
    for (const hid_t stored : {H5T_STD_I32LE, H5T_STD_I32BE}) {
      Forge<int32_t>(stored, {5}, Creation({2}, false, bits), {1, -2, 3, 100, 5});
      ExpectAsHdf5<int32_t>(std::to_string(bits));
      EXPECT_EQ(ReadDone<int32_t>(), (std::vector<int32_t>{1, -2, 3, 100, 5}));
    }
  }
}

TEST_F(ScaleOffsetRead, GivesAChunkThatAWriterLeftOut) {
  const std::vector<unsigned char> bytes = {0x3f, 0x80, 0, 0, 0x40, 0, 0, 0};
  Forge(H5T_IEEE_F32BE, {2}, Creation({2}, true, 3), [&](hid_t dataset) { PutChunk(dataset, bytes, 1); });
  EXPECT_EQ(ReadDone<float>(), (std::vector<float>{1, 2}));
}

TEST_F(ScaleOffsetRead, GivesChunksOverTheEndThatAreNotFiltered) {
  const std::string path = TempPath("latest.h5");
  const Id access(H5Pcreate(H5P_FILE_ACCESS), "access");
  Check(H5Pset_libver_bounds(access.get(), H5F_LIBVER_LATEST, H5F_LIBVER_LATEST), "bounds");
  const Id file(H5Fcreate(path.c_str(), H5F_ACC_TRUNC, H5P_DEFAULT, access.get()), "file");
  const hsize_t dims[] = {5, 3};
  const Id space(H5Screate_simple(2, dims, nullptr), "space");
  const Creation creation({4, 2}, false);
  Check(H5Pset_chunk_opts(creation.id(), H5D_CHUNK_DONT_FILTER_PARTIAL_CHUNKS), "options");
  const Id made(H5Dcreate2(file.get(), "x", H5T_STD_I32LE, space.get(), H5P_DEFAULT, creation.id(), H5P_DEFAULT), "x");
  const std::vector<int32_t> values = {100, 101, 102, 103, 104, 105, 106, 107, 108, 109, 110, 111, 112, 113, 114};
  Check(H5Dwrite(made.get(), H5T_NATIVE_INT, H5S_ALL, H5S_ALL, H5P_DEFAULT, values.data()), "x");
  std::vector<int32_t> read(15);
  const Extents stored{2, {5, 3}, 15};
  EXPECT_EQ(ReadScaleOffset(made.get(), stored, *orvio::h5::FindNumericType(ORV_INT), nullptr, read.data()),
            Decoded::kDone);
  EXPECT_EQ(read, values);
}

// --- selections

/// 0 to 59 in 6 rows of 10, chunks of 4 rows of 3.
class ScaleOffsetSelection : public ScaleOffsetRead {
 protected:
  ScaleOffsetSelection() {
    std::vector<int32_t> values(60);
    for (int i = 0; i < 60; ++i) values[static_cast<size_t>(i)] = i;
    Forge(H5T_STD_I32LE, {6, 10}, Creation({4, 3}, false), values);
  }
  /// Nothing when the library fails.
  std::vector<int32_t> Select(const Shape& start, const Shape& count, const Shape& stride = {},
                              const Shape& block = {}) {
    const Slab slab{start.data(), count.data(), stride.empty() ? nullptr : stride.data(),
                    block.empty() ? nullptr : block.data()};
    hsize_t points = 1;
    for (size_t i = 0; i < count.size(); ++i) points *= count[i] * (block.empty() ? 1 : block[i]);
    std::vector<int32_t> values;
    const Decoded answer = Read(values, &slab, points);
    EXPECT_NE(answer, Decoded::kNotOurs);
    return answer == Decoded::kDone ? values : std::vector<int32_t>();
  }
};

using Numbers = std::vector<int32_t>;

TEST_F(ScaleOffsetSelection, GivesAllRowByRow) {
  const std::vector<int32_t> values = ReadDone<int32_t>();
  for (int i = 0; i < 60; ++i) EXPECT_EQ(values[static_cast<size_t>(i)], i);
}

TEST_F(ScaleOffsetSelection, GivesABoxOverTheBordersOfChunks) {
  EXPECT_EQ(Select({3, 1}, {2, 4}), (Numbers{31, 32, 33, 34, 41, 42, 43, 44}));
  EXPECT_EQ(Select({5, 9}, {1, 1}), Numbers{59});
  EXPECT_EQ(Select({0, 2}, {6, 1}), (Numbers{2, 12, 22, 32, 42, 52}));
}

TEST_F(ScaleOffsetSelection, GivesEveryFewElements) {
  EXPECT_EQ(Select({0, 0}, {3, 4}, {2, 3}), (Numbers{0, 3, 6, 9, 20, 23, 26, 29, 40, 43, 46, 49}));
  EXPECT_EQ(Select({1, 0}, {2, 2}, {4, 9}), (Numbers{10, 19, 50, 59}));
}

TEST_F(ScaleOffsetSelection, GivesBlocks) {
  EXPECT_EQ(Select({0, 1}, {1, 2}, {1, 5}, {2, 3}), (Numbers{1, 2, 3, 6, 7, 8, 11, 12, 13, 16, 17, 18}));
  EXPECT_EQ(Select({4, 0}, {1, 5}, {1, 2}, {1, 2}), (Numbers{40, 41, 42, 43, 44, 45, 46, 47, 48, 49}));
  EXPECT_EQ(Select({2, 3}, {1, 1}, {}, {2, 2}), (Numbers{23, 24, 33, 34}));
}

TEST_F(ScaleOffsetSelection, FailsForWhatHdf5DoesNotSelect) {
  EXPECT_EQ(Select({3, 0}, {4, 1}), Numbers());
  EXPECT_EQ(Select({0, 10}, {1, 1}), Numbers());
  EXPECT_EQ(Select({0, HSIZE_UNDEF}, {1, 1}), Numbers());
  EXPECT_EQ(Select({0, 0}, {1, 2}, {1, HSIZE_UNDEF}, {1, 1}), Numbers());
  EXPECT_EQ(Select({0, 0}, {1, 3}, {1, 0}, {1, 1}), Numbers());
  EXPECT_EQ(Select({0, 0}, {1, 3}, {1, 1}, {1, 2}), Numbers());
  EXPECT_EQ(Select({0, 0}, {0, 1}), Numbers());
}

/// Draws a selection along one dimension that fits.
struct Drawn {
  hsize_t start, count, stride, block;
  template <class Random>
  static Drawn From(Random& random, hsize_t extent) {
    const auto upto = [&](hsize_t most) { return std::uniform_int_distribution<hsize_t>(1, most)(random); };
    Drawn drawn{upto(extent) - 1, 1, 1, 1};
    const hsize_t room = extent - drawn.start;
    drawn.block = upto(std::min<hsize_t>(room, 5));
    drawn.stride = drawn.block + upto(4) - 1;
    drawn.count = upto((room - drawn.block) / drawn.stride + 1);
    return drawn;
  }
};

TEST_F(ScaleOffsetRead, GivesTheSelectionsThatHdf5Gives) {
  const Shape shape = {11, 7, 23};
  std::vector<double> values = Values<double>(11 * 7 * 23, -50, 50, 0, 8);
  std::mt19937 random(9);
  for (const Shape& chunk : {Shape{11, 7, 23}, Shape{4, 7, 23}, Shape{3, 2, 5}, Shape{1, 1, 30}}) {
    Forge(H5T_IEEE_F64LE, shape, Creation(chunk, true, 4), values);
    With([&](hid_t dataset) {
      for (int round = 0; round < 100; ++round) {
        hsize_t start[3], count[3], stride[3], block[3], points = 1;
        for (size_t i = 0; i < 3; ++i) {
          const Drawn drawn = Drawn::From(random, shape[i]);
          start[i] = drawn.start, count[i] = drawn.count, stride[i] = drawn.stride, block[i] = drawn.block;
          points *= count[i] * block[i];
        }
        const Id in_file(H5Dget_space(dataset), "space");
        const Id in_memory(H5Screate_simple(1, &points, nullptr), "space");
        Check(H5Sselect_hyperslab(in_file.get(), H5S_SELECT_SET, start, stride, count, block), "selection");
        std::vector<double> theirs(points), ours(points);
        Check(H5Dread(dataset, H5T_NATIVE_DOUBLE, in_memory.get(), in_file.get(), H5P_DEFAULT, theirs.data()), "read");
        const Slab slab{start, count, stride, block};
        const Extents stored{3, {11, 7, 23}, 11 * 7 * 23};
        ASSERT_EQ(ReadScaleOffset(dataset, stored, *orvio::h5::FindNumericType(ORV_DOUBLE), &slab, ours.data()),
                  Decoded::kDone);
        ASSERT_EQ(ours, theirs) << round;
      }
    });
  }
}

TEST_F(ScaleOffsetRead, GivesOneComponentOfManyEntities) {
  std::vector<float> values(90000);
  for (size_t i = 0; i < values.size(); ++i) values[i] = static_cast<float>(i % 1000) / 4;
  Forge(H5T_IEEE_F32LE, {30000, 3}, Creation({30000, 3}, true, 2), values);
  const hsize_t start[] = {0, 1}, count[] = {30000, 1};
  const Slab slab{start, count, nullptr, nullptr};
  const std::vector<float> floats = ReadDone<float>(&slab, 30000);
  const std::vector<double> doubles = ReadDone<double>(&slab, 30000);
  for (size_t i = 0; i < 30000; ++i) {
    ASSERT_EQ(floats[i], values[3 * i + 1]) << i;
    ASSERT_EQ(doubles[i], values[3 * i + 1]) << i;
  }
}

// --- missing chunks

class ScaleOffsetMissing : public ScaleOffsetRead {
 protected:
  /// Eight integers in two chunks, the first of which is written.
  void ForgeHalf(const Creation& creation) {
    Forge(H5T_STD_I32LE, {8}, creation, [](hid_t dataset) {
      const int32_t values[] = {1, 2, 3, 4};
      const hsize_t start[] = {0}, count[] = {4};
      const Id in_file(H5Dget_space(dataset), "space"), in_memory(H5Screate_simple(1, count, nullptr), "space");
      Check(H5Sselect_hyperslab(in_file.get(), H5S_SELECT_SET, start, nullptr, count, nullptr), "selection");
      Check(H5Dwrite(dataset, H5T_NATIVE_INT, in_memory.get(), in_file.get(), H5P_DEFAULT, values), "x");
    });
  }
};

TEST_F(ScaleOffsetMissing, ChunksGiveTheFillValue) {
  ForgeHalf(Creation({4}, false));
  EXPECT_EQ(ReadDone<int32_t>(), (std::vector<int32_t>{1, 2, 3, 4, 0, 0, 0, 0}));
  ForgeHalf(Creation({4}, false).fill(-5));
  EXPECT_EQ(ReadDone<int64_t>(), (std::vector<int64_t>{1, 2, 3, 4, -5, -5, -5, -5}));
  ExpectAsHdf5<int64_t>("fill value");
}

TEST_F(ScaleOffsetMissing, DatasetsGiveTheFillValue) {
  Forge(H5T_IEEE_F32BE, {3}, Creation({2}, true, 3).fill(2.5F), [](hid_t) {});
  EXPECT_EQ(ReadDone<float>(), (std::vector<float>{2.5F, 2.5F, 2.5F}));
  EXPECT_EQ(ReadDone<double>(), (std::vector<double>{2.5, 2.5, 2.5}));
}

TEST_F(ScaleOffsetMissing, ChunksWithoutAFillValueFail) {
  ForgeHalf(Creation({4}, false).no_fill());
  EXPECT_EQ(Answer<int32_t>(), Decoded::kFailed);
  const hsize_t start[] = {1}, count[] = {3};
  const Slab slab{start, count, nullptr, nullptr};
  EXPECT_EQ(ReadDone<int32_t>(&slab, 3), (std::vector<int32_t>{2, 3, 4}));
}

TEST_F(ScaleOffsetMissing, ChunksWhoseFillValueIsNeverWrittenFail) {
  const Creation creation = std::move(Creation({4}, false).fill(5));
  Check(H5Pset_fill_time(creation.id(), H5D_FILL_TIME_NEVER), "fill time");
  ForgeHalf(creation);
  EXPECT_EQ(Answer<int32_t>(), Decoded::kFailed);
}

// --- not ours, or not sound

TEST_F(ScaleOffsetRead, LeavesOtherDatasetsToHdf5) {
  file_.dataset<int32_t>("x", {2}, {1, 2});
  EXPECT_EQ(Answer<int32_t>(), Decoded::kNotOurs);
  const Creation plain({2}, false);
  Check(H5Premove_filter(plain.id(), H5Z_FILTER_ALL), "filters");
  file_.drop("x");
  Forge<int32_t>(H5T_STD_I32LE, {2}, plain, {1, 2});
  EXPECT_EQ(Answer<int32_t>(), Decoded::kNotOurs);
  Check(H5Pset_shuffle(plain.id()), "shuffle");
  Forge<int32_t>(H5T_STD_I32LE, {2}, plain, {1, 2});
  EXPECT_EQ(Answer<int32_t>(), Decoded::kNotOurs);
}

TEST_F(ScaleOffsetRead, LeavesTheOtherClassToTheCaller) {
  ForgeRow<int32_t>(H5T_STD_I32LE, {1, 2});
  EXPECT_EQ(Answer<float>(), Decoded::kNotOurs);
}

TEST_F(ScaleOffsetRead, LeavesFurtherFiltersToHdf5) {
  const Creation creation({2}, false);
  Check(H5Pset_fletcher32(creation.id()), "fletcher32");
  Forge<int32_t>(H5T_STD_I32LE, {2}, creation, {1, 2});
  EXPECT_EQ(Answer<int32_t>(), Decoded::kNotOurs);
  EXPECT_EQ(Hdf5Reads<int32_t>(), (std::vector<int32_t>{1, 2}));
}

TEST_F(ScaleOffsetRead, FailsWhereTheFilterWasSetUpForOtherValues) {
  constexpr struct {
    const char* what;
    size_t index;
    unsigned value;
  } kRows[] = {{"elements", 2, 6}, {"class", 3, 1}, {"size", 4, 8}, {"sign", 5, 0}, {"order", 6, 1}, {"form", 0, 9}};
  for (const bool more : {false, true}) {
    for (const auto& row : kRows) {
      const Creation creation({5}, false);
      if (more) Check(H5Pset_fletcher32(creation.id()), "fletcher32");
      Forge<int32_t>(H5T_STD_I32LE, {5}, creation, {1, 2, 3, 4, 5});
      EXPECT_EQ(Answer<int32_t>(), more ? Decoded::kNotOurs : Decoded::kDone);
      Patch({2, 0, 5, 0, 4, 1, 0, 1}, row.index, row.value);
      EXPECT_EQ(Answer<int32_t>(), Decoded::kFailed) << row.what;
    }
  }
}

}  // namespace
