// What a catalogue tells of a file, and where it says that it does not know. Whether that is what HDF5 answers in all
// corners is looked for with damaged files: see docs/fuzzing.md.

#include "structure/catalogue.h"

#include <gtest/gtest.h>

#include <cstring>

#include "structure/patched_file.h"

namespace {

using namespace orv_test;
using orvio::structure::ArrayShape;
using orvio::structure::Catalogue;
using orvio::structure::ElementKind;
using Answer = Catalogue::Answer;

std::unique_ptr<const Catalogue> CatalogueOf(const std::string& bytes) {
  orvio::structure::MemoryBytes source(bytes.data(), bytes.size());
  std::unique_ptr<const Catalogue> made;
  EXPECT_EQ(orvio::structure::CheckStructure(source, made), std::nullopt);
  return made;
}

std::unique_ptr<const Catalogue> CatalogueOf(const Contents& contents, const Format& format = kOldest) {
  return CatalogueOf(Forge(format, contents));
}

Answer AnswerOf(const Catalogue& catalogue, const char* name) { return catalogue.Child(catalogue.root(), name).answer; }

Catalogue::Id Find(const Catalogue& catalogue, const char* name) {
  const auto found = catalogue.Child(catalogue.root(), name);
  EXPECT_EQ(found.answer, Answer::kYes) << name;
  return found.object;
}

bool HasValues(const Contents& contents) {
  const auto catalogue = CatalogueOf(contents);
  return catalogue->HasValues(Find(*catalogue, "values"));
}

TEST(Catalogue, TellsTheLinksOfAGroupInTheOrderOfNames) {
  const auto catalogue = CatalogueOf([](hid_t file) {
    for (const char* name : {"b", "ab", "c", "a"}) Group(file, name);
  });
  ASSERT_EQ(catalogue->CountLinks(catalogue->root()), 4U);
  const char* const names[] = {"a", "ab", "b", "c"};
  for (std::uint32_t i = 0; i < 4; ++i) EXPECT_EQ(catalogue->LinkName(catalogue->root(), i), names[i]);
}

TEST(Catalogue, TellsEachOfManyLinks) {
  constexpr int kLinks = 6000;  // a tree of three levels
  const auto catalogue = CatalogueOf([](hid_t file) {
    const Id group = Group(file, "many");
    for (int i = 0; i < kLinks; ++i) Group(group.get(), std::to_string(i * 7919 % kLinks));
  });
  const Catalogue::Id many = Find(*catalogue, "many");
  ASSERT_EQ(catalogue->CountLinks(many), static_cast<std::uint32_t>(kLinks));
  for (int i = 0; i < kLinks; ++i) {
    const auto found = catalogue->Child(many, std::to_string(i));
    ASSERT_EQ(found.answer, Answer::kYes) << i;
    ASSERT_EQ(catalogue->PathOf(found.object), "/many/" + std::to_string(i));
  }
  EXPECT_EQ(catalogue->Child(many, "6000").answer, Answer::kNo);
}

TEST(Catalogue, TellsWhatIsLeftOfDeletedLinks) {
  const auto catalogue = CatalogueOf([](hid_t file) {
    for (int i = 0; i < 300; ++i) Group(file, "group " + std::to_string(i));
    for (int i = 0; i < 300; i += 2) {
      Check(H5Ldelete(file, ("group " + std::to_string(i)).c_str(), H5P_DEFAULT), "delete");
    }
  });
  ASSERT_TRUE(catalogue->IsGroup(catalogue->root())) << "the keys of the tree are not those of its names";
  EXPECT_EQ(catalogue->CountLinks(catalogue->root()), 150U);
  EXPECT_EQ(AnswerOf(*catalogue, "group 2"), Answer::kNo);
  EXPECT_EQ(AnswerOf(*catalogue, "group 3"), Answer::kYes);
}

TEST(Catalogue, KnowsThatThereIsNoLink) {
  const auto catalogue = CatalogueOf([](hid_t file) { Group(file, "here"); });
  EXPECT_EQ(AnswerOf(*catalogue, "her"), Answer::kNo);
  EXPECT_EQ(AnswerOf(*catalogue, "here "), Answer::kNo);
}

TEST(Catalogue, DoesNotKnowWhereASoftLinkLeads) {
  const auto catalogue = CatalogueOf([](hid_t file) {
    Group(file, "group");
    Check(H5Lcreate_soft("/group", file, "soft", H5P_DEFAULT, H5P_DEFAULT), "link");
  });
  EXPECT_EQ(AnswerOf(*catalogue, "soft"), Answer::kUnknown);
  EXPECT_EQ(AnswerOf(*catalogue, "group"), Answer::kYes);
  EXPECT_FALSE(catalogue->HasHardLinksOnly(catalogue->root()));
}

TEST(Catalogue, DoesNotTellOfGroupsThatAreReachedInSeveralWays) {
  const auto catalogue = CatalogueOf([](hid_t file) {
    Group(file, "group");
    Dataset(file, "values", H5T_NATIVE_INT, {3});
    Check(H5Lcreate_hard(file, "group", file, "other", H5P_DEFAULT, H5P_DEFAULT), "link");
    Check(H5Lcreate_hard(file, "values", file, "others", H5P_DEFAULT, H5P_DEFAULT), "link");
    Check(H5Lcreate_hard(file, "/", file, "root", H5P_DEFAULT, H5P_DEFAULT), "link");
  });
  EXPECT_EQ(AnswerOf(*catalogue, "group"), Answer::kUnknown);
  EXPECT_EQ(AnswerOf(*catalogue, "other"), Answer::kUnknown);
  EXPECT_EQ(AnswerOf(*catalogue, "root"), Answer::kUnknown);
  EXPECT_EQ(Find(*catalogue, "values"), Find(*catalogue, "others"));
}

TEST(Catalogue, DoesNotKnowTheLinksOfGroupsInTheNewFormat) {
  const auto catalogue = CatalogueOf([](hid_t file) { Group(file, "group"); }, kLatest);
  EXPECT_EQ(AnswerOf(*catalogue, "group"), Answer::kUnknown);
  EXPECT_EQ(AnswerOf(*catalogue, "absent"), Answer::kUnknown);
}

TEST(Catalogue, DoesNotKnowTheLinksOfAGroupWhoseNamesAreOutOfOrder) {
  std::string bytes = Forge(kOldest, [](hid_t file) {
    for (const char* name : {"first_one", "second_one"}) Group(file, name);
  });
  bytes.replace(bytes.find("first_one"), 5, "third");
  EXPECT_EQ(AnswerOf(*CatalogueOf(bytes), "second_one"), Answer::kUnknown);
}

TEST(Catalogue, DoesNotKnowTheLinksOfAGroupWhoseFirstKeyIsNotTheEmptyText) {
  std::string bytes = Forge(kOldest, [](hid_t file) { Group(file, "group"); });
  const size_t heap = bytes.find("HEAP");
  std::uint64_t data = 0;
  std::memcpy(&data, bytes.data() + heap + 24, sizeof data);
  bytes[data] = 'z';  // followed by zeros
  EXPECT_EQ(AnswerOf(*CatalogueOf(bytes), "group"), Answer::kUnknown);
}

TEST(Catalogue, TellsTypeExtentsAndPlaceOfValues) {
  for (const hsize_t user_block : {hsize_t{0}, hsize_t{1024}}) {
    std::uint64_t address = 0;
    Format format = kOldest;
    format.user_block = user_block;
    const auto catalogue = CatalogueOf(
        [&](hid_t file) {
          Dataset(file, "values", H5T_IEEE_F64LE, {5, 3, 2});
          const Id dataset(H5Dopen2(file, "values", H5P_DEFAULT), "values");
          address = H5Dget_offset(dataset.get());
        },
        format);
    const Catalogue::Id object = Find(*catalogue, "values");
    ASSERT_TRUE(catalogue->HasValues(object));
    const Catalogue::Values values = catalogue->ValuesOf(object);
    EXPECT_EQ(values.offset, address);
    EXPECT_EQ(values.shape.kind, ElementKind::kFloat);
    EXPECT_EQ(values.shape.element_size, 8U);
    EXPECT_EQ(values.shape.rank, 3U);
    EXPECT_EQ(values.shape.extents, (std::array<std::uint64_t, ArrayShape::kMostRank>{5, 3, 2}));
    EXPECT_EQ(values.shape.points, 30U);
  }
}

TEST(Catalogue, TellsThePlaceOfEachOfManyDatasetsThatLookAlike) {
  std::vector<std::uint64_t> addresses;
  const auto catalogue = CatalogueOf([&](hid_t file) {
    for (int i = 0; i < 20; ++i) {
      const std::string name = "values " + std::to_string(i);
      Dataset(file, name, H5T_STD_I32LE, {100});
      const Id dataset(H5Dopen2(file, name.c_str(), H5P_DEFAULT), name);
      addresses.push_back(H5Dget_offset(dataset.get()));
    }
  });
  for (int i = 0; i < 20; ++i) {
    const auto values = catalogue->ValuesOf(Find(*catalogue, ("values " + std::to_string(i)).c_str()));
    EXPECT_EQ(values.offset, addresses[static_cast<size_t>(i)]);
    EXPECT_EQ(values.shape.kind, ElementKind::kSigned);
  }
}

TEST(Catalogue, TellsOfPlainValuesInOnePieceAlone) {
  const auto with_type = [](hid_t type) { return [type](hid_t file) { Dataset(file, "values", type, {10}); }; };
  EXPECT_TRUE(HasValues(with_type(H5T_STD_I64LE)));
  EXPECT_TRUE(HasValues(with_type(H5T_IEEE_F32LE)));
  EXPECT_TRUE(HasValues(with_type(FixedText(12).get())));
  EXPECT_FALSE(HasValues(with_type(H5T_STD_U32LE)));
  EXPECT_FALSE(HasValues(with_type(H5T_STD_I32BE)));
  EXPECT_FALSE(HasValues(with_type(H5T_IEEE_F32BE)));
  EXPECT_FALSE(HasValues(with_type(H5T_NATIVE_LDOUBLE)));
  Id narrow(H5Tcopy(H5T_STD_I32LE), "type");
  Check(H5Tset_precision(narrow.get(), 20), "precision");
  EXPECT_FALSE(HasValues(with_type(narrow.get())));
  Id skewed(H5Tcopy(H5T_IEEE_F32LE), "type");
  Check(H5Tset_ebias(skewed.get(), 126), "bias");
  EXPECT_FALSE(HasValues(with_type(skewed.get())));
}

TEST(Catalogue, DoesNotTellOfValuesThatAreElsewhere) {
  EXPECT_FALSE(HasValues([](hid_t file) { Dataset(file, "values", H5T_NATIVE_INT, Space({10}), Chunked({5})); }));
  EXPECT_FALSE(HasValues([](hid_t file) {
    const Id compact = Properties([](hid_t list) { Check(H5Pset_layout(list, H5D_COMPACT), "layout"); });
    Dataset(file, "values", H5T_NATIVE_INT, Space({10}), compact);
  }));
  EXPECT_FALSE(
      HasValues([](hid_t file) { Dataset(file, "values", H5T_NATIVE_INT, Space({10}), Properties(), false); }));
  EXPECT_FALSE(HasValues([](hid_t file) { Dataset(file, "values", H5T_NATIVE_INT, {0}); }));
  EXPECT_FALSE(HasValues([](hid_t file) { Dataset(file, "values", H5T_NATIVE_INT, {1, 1, 1, 1, 1, 1, 1, 1, 1}); }));
}

/// The attributes of "group".
class CataloguedAttributes : public testing::Test {
 protected:
  void Make(const std::function<void(hid_t group)>& contents, const Format& format = kOldest) {
    catalogue_ = CatalogueOf(
        [&](hid_t file) {
          const Id group = Group(file, "group");
          contents(group.get());
        },
        format);
  }
  Answer Look(const char* name) { return catalogue_->FindAttribute(Find(*catalogue_, "group"), name, found_); }

  std::unique_ptr<const Catalogue> catalogue_;
  Catalogue::Attribute found_ = {};
};

TEST_F(CataloguedAttributes, AreToldWithTypeAndValue) {
  Make([](hid_t group) {
    IntegerAttribute(group, "nent", -77);
    Attribute(group, "etyp", FixedText(6).get(), Space({}), "QUAD4 ");
    const double real = .25;
    Attribute(group, "real", H5T_IEEE_F64LE, Space({1}), &real);
  });
  ASSERT_EQ(Look("nent"), Answer::kYes);
  std::int64_t number = 0;
  std::memcpy(&number, found_.bytes, sizeof number);
  EXPECT_EQ(number, -77);
  EXPECT_EQ(found_.shape->kind, ElementKind::kSigned);
  EXPECT_EQ(found_.shape->rank, 0U);
  ASSERT_EQ(Look("etyp"), Answer::kYes);
  EXPECT_EQ(found_.shape->kind, ElementKind::kText);
  EXPECT_EQ(std::memcmp(found_.bytes, "QUAD4 ", 6), 0);
  ASSERT_EQ(Look("real"), Answer::kYes);
  EXPECT_EQ(found_.shape->rank, 1U);
  double real = 0;
  std::memcpy(&real, found_.bytes, sizeof real);
  EXPECT_EQ(real, .25);
  EXPECT_EQ(Look("absent"), Answer::kNo);
}

TEST_F(CataloguedAttributes, OfAnotherKindAreThereWithoutAValue) {
  Make([](hid_t group) {
    const std::uint32_t number = 7;
    Attribute(group, "unsigned", H5T_STD_U32LE, Space({}), &number);
    const char* text = "text";
    Attribute(group, "variable", VariableText().get(), Space({}), &text);
    IntegerAttribute(group, "last", 5);
  });
  for (const char* name : {"unsigned", "variable"}) {
    ASSERT_EQ(Look(name), Answer::kYes);
    EXPECT_EQ(found_.shape->kind, ElementKind::kOther) << name;
  }
  ASSERT_EQ(Look("last"), Answer::kYes);
  EXPECT_EQ(found_.bytes[0], 5);
}

TEST_F(CataloguedAttributes, InAHeapOfTheirOwnAreNotKnown) {
  Make(
      [](hid_t group) {
        for (int i = 0; i < 20; ++i) IntegerAttribute(group, "attribute " + std::to_string(i), i);
      },
      kVersion18);
  // The group itself is in the new format, and so is the root.
  EXPECT_EQ(AnswerOf(*catalogue_, "group"), Answer::kUnknown);
}

TEST(Catalogue, KeepsTheAttributesOfGroupsThatLookAlikeApart) {
  const auto catalogue = CatalogueOf([](hid_t file) {
    for (char name = 'a'; name <= 'z'; ++name) {
      const Id group = Group(file, std::string(1, name));
      Attribute(group.get(), "etyp", FixedText(256).get(), Space({}), std::string(256, name).c_str());
      IntegerAttribute(group.get(), "nent", name % 3);
    }
  });
  for (char name = 'a'; name <= 'z'; ++name) {
    const Catalogue::Id object = Find(*catalogue, std::string(1, name).c_str());
    Catalogue::Attribute found = {};
    ASSERT_EQ(catalogue->FindAttribute(object, "etyp", found), Answer::kYes);
    EXPECT_EQ(found.bytes[255], name);
    ASSERT_EQ(catalogue->FindAttribute(object, "nent", found), Answer::kYes);
    EXPECT_EQ(found.bytes[0], name % 3);
  }
}

TEST(Catalogue, OfADamagedFileIsNone) {
  std::string bytes = Forge(kOldest, [](hid_t file) { Group(file, "group"); });
  bytes.replace(bytes.find("SNOD"), 4, "DONS");
  orvio::structure::MemoryBytes source(bytes.data(), bytes.size());
  std::unique_ptr<const Catalogue> made;
  EXPECT_NE(orvio::structure::CheckStructure(source, made), std::nullopt);
  EXPECT_EQ(made, nullptr);
}

}  // namespace
