// Stored datatypes looked up by the room that their values take. By exact size: dataset_read_test; the types of the
// interface: dataset_write_test.

#include "h5/data_type.h"

#include "h5/h5_test.h"

namespace {

using namespace orv_test;
using orvio::h5::RoomyType;

class StoredType : public H5Test {
 protected:
  /// A type of that class and size, made from a native one.
  static Id Sized(hid_t native, size_t size) {
    Id type(H5Tcopy(native), "type");
    Check(H5Tset_size(type.get(), size), "size");
    return type;
  }
};

TEST_F(StoredType, OfUpToFourBytesTakesTheSmallTypeOfItsClass) {
  EXPECT_EQ(RoomyType(H5T_STD_I8LE), ORV_INT);
  EXPECT_EQ(RoomyType(H5T_STD_U16BE), ORV_INT);
  EXPECT_EQ(RoomyType(Sized(H5T_STD_I32LE, 3).get()), ORV_INT);
  EXPECT_EQ(RoomyType(H5T_NATIVE_INT), ORV_INT);
  EXPECT_EQ(RoomyType(H5T_IEEE_F32BE), ORV_FLOAT);
}

TEST_F(StoredType, OfFiveToEightBytesTakesTheLargeTypeOfItsClass) {
  EXPECT_EQ(RoomyType(Sized(H5T_STD_I64LE, 5).get()), ORV_LONG);
  EXPECT_EQ(RoomyType(H5T_STD_U64LE), ORV_LONG);
  EXPECT_EQ(RoomyType(H5T_IEEE_F64LE), ORV_DOUBLE);
}

TEST_F(StoredType, OfMoreBytesOrAnotherClassIsUnknown) {
  EXPECT_EQ(RoomyType(Sized(H5T_STD_I64LE, 9).get()), ORV_UNKNOWN_TYPE);
  EXPECT_EQ(RoomyType(Sized(H5T_IEEE_F64LE, 16).get()), ORV_UNKNOWN_TYPE);
  EXPECT_EQ(RoomyType(H5T_C_S1), ORV_UNKNOWN_TYPE);
  EXPECT_EQ(RoomyType(H5T_STD_B32LE), ORV_UNKNOWN_TYPE);
  EXPECT_EQ(RoomyType(Id(H5Tcreate(H5T_OPAQUE, 4), "opaque").get()), ORV_UNKNOWN_TYPE);
}

}  // namespace
