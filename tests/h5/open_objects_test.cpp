// Closing of what was left open in a file, and the targets of links.

#include <cstring>
#include <string>

#include "h5/h5_test.h"

namespace {

using namespace orv_test;

class OpenObjects : public H5Test {
 protected:
  ForgedFile file_ = std::move(ForgedFile("open").at("/post/constant"));
};

TEST_F(OpenObjects, AreClosedExceptTheFile) {
  file_.dataset<float>("d", {1}, {1}).integer("a", 1);
  const Id file(H5Fopen(file_.path().c_str(), H5F_ACC_RDONLY, H5P_DEFAULT), "file");
  const hid_t left[] = {H5Gopen2(file.get(), "/post/constant", H5P_DEFAULT),
                        H5Dopen2(file.get(), "/post/constant/d", H5P_DEFAULT),
                        H5Aopen_by_name(file.get(), "/post/constant", "a", H5P_DEFAULT, H5P_DEFAULT)};
  OH5CloseOpenObjects(file.get());
  for (const hid_t id : left) EXPECT_EQ(H5Iis_valid(id), 0);
  EXPECT_GT(H5Iis_valid(file.get()), 0);
  OH5CloseOpenObjects(file.get());
  EXPECT_GT(H5Iis_valid(file.get()), 0);
}

TEST_F(OpenObjects, OfAHostAreLeftAlone) {
  const Location host(file_.path(), "/post/constant");
  const Id file(H5Fopen(file_.path().c_str(), H5F_ACC_RDONLY, H5P_DEFAULT), "file");
  OH5CloseOpenObjects(file.get());
  EXPECT_GT(H5Iis_valid(host.id()), 0);
  EXPECT_GT(H5Iis_valid(host.file()), 0);
}

TEST_F(OpenObjects, AreNoneForAWrongId) {
  OH5CloseOpenObjects(-1);
  OH5CloseOpenObjects(12345);
}

class LinkTarget : public OpenObjects {
 protected:
  std::string TargetOf(const char* name) {
    const Location place(file_.path(), "/post/constant");
    char buffer[3000];
    std::memset(buffer, '-', sizeof buffer);
    OH5GetLinkTarget(place.id(), name, buffer, nullptr);
    return buffer;
  }
};

TEST_F(LinkTarget, OfASoftLinkIsItsPath) {
  file_.soft_link("soft", "../nowhere/at all");
  EXPECT_EQ(TargetOf("soft"), "../nowhere/at all");
}

TEST_F(LinkTarget, OfAnExternalLinkIsTheObjectsPath) {
  file_.external_link("out", "other.file", "/post/x");
  EXPECT_EQ(TargetOf("out"), "/post/x");
}

TEST_F(LinkTarget, OfAHardLinkOrWithoutANameIsThePathOfThePlace) {
  file_.group("hard");
  EXPECT_EQ(TargetOf("hard"), "/post/constant");
  EXPECT_EQ(TargetOf(nullptr), "/post/constant");
}

TEST_F(LinkTarget, IsEmptyForAMissingLinkAndForATargetThatDoesNotFit) {
  file_.soft_link("long", std::string(3000, 'x')).soft_link("fits", std::string(2999 - 1, 'y'));
  EXPECT_EQ(TargetOf("nowhere"), "");
  EXPECT_EQ(TargetOf("long"), "");
  EXPECT_EQ(TargetOf("fits"), std::string(2998, 'y'));
  OH5GetLinkTarget(-1, "x", nullptr, nullptr);
}

TEST_F(LinkTarget, IsEmptyForAPlaceWhosePathDoesNotFit) {
  for (const std::size_t length : {2998U, 2999U}) {  // behind the slash
    const std::string path = "/" + std::string(length, 'p');
    file_.group(path);
    const Location place(file_.path(), path.c_str());
    char buffer[3000] = "before";
    OH5GetLinkTarget(place.id(), nullptr, buffer, nullptr);
    EXPECT_EQ(buffer, length == 2998 ? path : std::string()) << length;
  }
}

TEST_F(LinkTarget, UsesTheInformationHandedIn) {
  file_.soft_link("soft", "/post/x");
  const Location place(file_.path(), "/post/constant");
  H5L_info1_t info = {};
  ASSERT_GE(H5Lget_info1(place.id(), "soft", &info, H5P_DEFAULT), 0);
  char buffer[3000] = "before";
  OH5GetLinkTarget(place.id(), "soft", buffer, &info);
  EXPECT_STREQ(buffer, "/post/x");
  OH5GetLinkTarget(place.id(), nullptr, buffer, &info);
  EXPECT_STREQ(buffer, "");
}

}  // namespace
