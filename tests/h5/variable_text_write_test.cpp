// Writes over datasets of variable-length texts, which other writers make and this one does not.

#include <string>

#include "h5/h5_test.h"

namespace {

using namespace orv_test;

constexpr char kBlock[] = "/post/constant/b";

class VariableText : public H5Test {
 protected:
  VariableText() {
    file_.raw([](hid_t here) {
      const hsize_t dims[] = {2}, unlimited[] = {H5S_UNLIMITED};
      const Id type(H5Tcopy(H5T_C_S1), "type");
      Check(H5Tset_size(type.get(), H5T_VARIABLE), "size");
      const Id space(H5Screate_simple(1, dims, unlimited), "space");
      const Id list(H5Pcreate(H5P_DATASET_CREATE), "list");
      Check(H5Pset_chunk(list.get(), 1, dims), "chunk");
      const Id made(H5Dcreate2(here, "t", type.get(), space.get(), H5P_DEFAULT, list.get(), H5P_DEFAULT), "t");
      const char* texts[] = {"one", "two"};
      Check(H5Dwrite(made.get(), type.get(), H5S_ALL, H5S_ALL, H5P_DEFAULT, texts), "t");
    });
  }
  ~VariableText() override {
    EXPECT_EQ(RawFile(file_.path()).shape(std::string(kBlock) + "/t"), std::vector<hsize_t>{2}) << "has grown";
  }

  ForgedFile file_ = std::move(ForgedFile("variable").at(kBlock));
};

TEST_F(VariableText, IsNotWrittenOverWhole) {
  const Location place(file_.path(), kBlock, H5F_ACC_RDWR);
  const hsize_t dims[] = {2};
  for (const int size : {4, static_cast<int>(sizeof(char*))}) {
    ForgetText();
    EXPECT_EQ(OH5Write_CHAR(place.id(), "t", 1, dims, size, "0123456789abcdef"), 1);
    EXPECT_EQ(LastText(), "OH5Write_CHAR::\n\t existing \"t\" dataset is not ORV_CHAR type");
  }
}

TEST_F(VariableText, DoesNotGrow) {
  const Location place(file_.path(), kBlock, H5F_ACC_RDWR);
  const hsize_t start[] = {2}, count[] = {1}, size[] = {8};
  EXPECT_EQ(OH5Write_SELECTIVE(place.id(), "t", 1, start, count, nullptr, nullptr, ORV_CHAR, size, "01234567"), 1);
  EXPECT_EQ(LastText(), "OH5Write_SELECTIVE::\n\t Failed to write ::\"t\"");
}

}  // namespace
