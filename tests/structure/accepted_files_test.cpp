// What the structure check must let pass: everything that HDF5 writes and result files may hold, in each of the formats
// that HDF5 writes it in. What it refuses is in refused_files_test and damaged_files_test.

#include <gtest/gtest.h>

#include <numeric>

#include "structure/forged_structure.h"
#include "support/forged_file.h"
#include "support/orv_test.h"

namespace {

using namespace orv_test;

constexpr hsize_t kNoLimit = H5S_UNLIMITED;

// Groups and links.

void ManyGroups(hid_t file) {
  for (int i = 0; i < 60; ++i) {
    const Id group = Group(file, "group " + std::to_string(i));
    for (int j = 0; j < i % 20; ++j) Group(group.get(), std::string(static_cast<size_t>(j + 1), 'g'));
  }
}

void DeepGroups(hid_t file) {
  Id group = Group(file, "top");
  for (int i = 0; i < 150; ++i) group = Group(group.get(), "g");
}

void ManyLinks(hid_t file) {
  const Id group = Group(file, "many");
  const Id one = Group(file, "one");
  for (int i = 0; i < 1200; ++i) {
    Check(H5Lcreate_hard(file, "one", group.get(), ("link " + std::to_string(i)).c_str(), H5P_DEFAULT, H5P_DEFAULT),
          "link");
  }
}

void DeletedLinks(hid_t file) {
  ManyLinks(file);
  for (int i = 0; i < 1200; i += i % 3 + 1) {
    Check(H5Ldelete(file, ("many/link " + std::to_string(i)).c_str(), H5P_DEFAULT), "delete");
  }
}

void AllLinksDeleted(hid_t file) {
  ManyLinks(file);
  for (int i = 0; i < 1200; ++i) {
    Check(H5Ldelete(file, ("many/link " + std::to_string(i)).c_str(), H5P_DEFAULT), "delete");
  }
}

void DeletedObjects(hid_t file) {
  for (int i = 0; i < 40; ++i) Dataset(file, "values " + std::to_string(i), H5T_NATIVE_INT, {100});
  for (int i = 0; i < 40; i += 3)
    Check(H5Ldelete(file, ("values " + std::to_string(i)).c_str(), H5P_DEFAULT), "delete");
}

void LinksOfAllKinds(hid_t file) {
  const Id group = Group(file, "group");
  Dataset(group.get(), "values", H5T_NATIVE_INT, {3});
  Check(H5Lcreate_soft("/group/values", file, "soft", H5P_DEFAULT, H5P_DEFAULT), "soft");
  Check(H5Lcreate_soft("/nowhere", file, "dangling", H5P_DEFAULT, H5P_DEFAULT), "soft");
  Check(H5Lcreate_hard(file, "group", file, "twin", H5P_DEFAULT, H5P_DEFAULT), "hard");
  Check(H5Lcreate_hard(file, "group", group.get(), "circle", H5P_DEFAULT, H5P_DEFAULT), "hard");
  Check(H5Lcreate_hard(file, "/", group.get(), "root", H5P_DEFAULT, H5P_DEFAULT), "hard");
  Check(H5Lcreate_external("other.h5", "/there", file, "external", H5P_DEFAULT, H5P_DEFAULT), "external");
}

/// External links make HDF5 turn a group of the old kind into one of the new.
void ConvertedGroup(hid_t file) {
  const Id group = Group(file, "group");
  const Id sub = Group(group.get(), "sub");
  for (int i = 0; i < 20; ++i) Group(sub.get(), "g" + std::to_string(i));
  Check(H5Lcreate_external("other.h5", "/there", sub.get(), "external", H5P_DEFAULT, H5P_DEFAULT), "external");
  Check(H5Lcreate_hard(group.get(), "sub", file, "again", H5P_DEFAULT, H5P_DEFAULT), "hard");
}

void LongNames(hid_t file) {
  Group(file, std::string(3000, 'n'));
  Group(file, std::string(40000, 'm'));
  Check(H5Lcreate_soft(std::string(5000, 't').c_str(), file, "soft", H5P_DEFAULT, H5P_DEFAULT), "soft");
}

void TrackedOrder(hid_t file) {
  const Id list(H5Pcreate(H5P_GROUP_CREATE), "list");
  Check(H5Pset_link_creation_order(list.get(), H5P_CRT_ORDER_TRACKED | H5P_CRT_ORDER_INDEXED), "order");
  Check(H5Pset_attr_creation_order(list.get(), H5P_CRT_ORDER_TRACKED | H5P_CRT_ORDER_INDEXED), "order");
  for (const int count : {3, 300}) {
    const Id group(H5Gcreate2(file, std::to_string(count).c_str(), H5P_DEFAULT, list.get(), H5P_DEFAULT), "group");
    for (int i = 0; i < count; ++i) Group(group.get(), "g" + std::to_string(i));
    for (int i = 0; i < count; ++i) IntegerAttribute(group.get(), "a" + std::to_string(i), i);
  }
}

// Attributes.

void ManyAttributes(hid_t file) {
  const Id group = Group(file, "group");
  for (int i = 0; i < 120; ++i) IntegerAttribute(group.get(), "attribute " + std::to_string(i), i);
}

void DeletedAttributes(hid_t file) {
  ManyAttributes(file);
  for (int i = 0; i < 120; i += 2) {
    Check(H5Adelete_by_name(file, "group", ("attribute " + std::to_string(i)).c_str(), H5P_DEFAULT), "delete");
  }
}

void LargeAttributes(hid_t file) {
  const Id group = Group(file, "group");
  for (const hsize_t size : {1000U, 5000U, 16000U}) {
    Attribute(group.get(), std::to_string(size), H5T_NATIVE_INT, Space({size}), SomeValues());
  }
}

/// More than an object header can hold goes into dense storage.
void HugeAttributes(hid_t file) {
  const Id list(H5Pcreate(H5P_GROUP_CREATE), "list");
  Check(H5Pset_attr_phase_change(list.get(), 0, 0), "phase");
  const Id group(H5Gcreate2(file, "group", H5P_DEFAULT, list.get(), H5P_DEFAULT), "group");
  for (const hsize_t size : {1U, 900U, 2000U, 50000U, 120000U}) {
    Attribute(group.get(), std::to_string(size), H5T_NATIVE_INT, Space({size}), SomeValues());
  }
}

void TextsOfAnyLength(hid_t file) {
  const Id type = VariableText();
  const char* texts[] = {"a text", "", nullptr, "another text"};
  Attribute(file, "four", type.get(), Space({4}), texts);
  Attribute(file, "one", type.get(), Space({}), texts);
  Attribute(file, "never", type.get(), Space({2}), nullptr);
  const Id made(H5Dcreate2(file, "values", type.get(), Space({4}).get(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT), "d");
  Check(H5Dwrite(made.get(), type.get(), H5S_ALL, H5S_ALL, H5P_DEFAULT, texts), "write");
  const Id never(H5Dcreate2(file, "never", type.get(), Space({4}).get(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT), "d");
  const Id compact = Properties([](hid_t list) { H5Pset_layout(list, H5D_COMPACT); });
  const Id small(H5Dcreate2(file, "small", type.get(), Space({4}).get(), H5P_DEFAULT, compact.get(), H5P_DEFAULT), "d");
  Check(H5Dwrite(small.get(), type.get(), H5S_ALL, H5S_ALL, H5P_DEFAULT, texts), "write");
}

void ManyTextsOfAnyLength(hid_t file) {
  const Id type = VariableText();
  for (int i = 0; i < 80; ++i) {
    const std::string value(static_cast<size_t>(i * 7), 'v');
    const char* text = value.c_str();
    Attribute(Group(file, "g" + std::to_string(i)).get(), "text", type.get(), Space({}), &text);
  }
}

void SequencesOfAnyLength(hid_t file) {
  const Id type(H5Tvlen_create(H5T_NATIVE_INT), "type");
  int values[] = {1, 2, 3};
  hvl_t lists[] = {{3, values}, {0, nullptr}, {1, values}};
  Attribute(file, "lists", type.get(), Space({3}), lists);
}

// Types and spaces.

Id CompoundType() {
  struct Row {
    int number;
    double value;
    char text[8];
    float parts[3];
  };
  Id type(H5Tcreate(H5T_COMPOUND, sizeof(Row)), "type");
  const hsize_t three = 3;
  const Id array(H5Tarray_create2(H5T_NATIVE_FLOAT, 1, &three), "type");
  Check(H5Tinsert(type.get(), "number", HOFFSET(Row, number), H5T_NATIVE_INT), "member");
  Check(H5Tinsert(type.get(), "value", HOFFSET(Row, value), H5T_NATIVE_DOUBLE), "member");
  Check(H5Tinsert(type.get(), "text", HOFFSET(Row, text), FixedText(8).get()), "member");
  Check(H5Tinsert(type.get(), "parts of it", HOFFSET(Row, parts), array.get()), "member");
  return type;
}

Id EnumType() {
  Id type(H5Tenum_create(H5T_NATIVE_INT), "type");
  const int values[] = {0, 1, 7};
  Check(H5Tenum_insert(type.get(), "no", &values[0]), "member");
  Check(H5Tenum_insert(type.get(), "perhaps", &values[1]), "member");
  Check(H5Tenum_insert(type.get(), "yes", &values[2]), "member");
  return type;
}

void AllTypes(hid_t file) {
  const Id opaque(H5Tcreate(H5T_OPAQUE, 12), "type");
  Check(H5Tset_tag(opaque.get(), "what it is"), "tag");
  const Id compound = CompoundType();
  const Id enumeration = EnumType();
  const Id text = FixedText(20);
  const hsize_t extents[] = {2, 3};
  const Id array(H5Tarray_create2(compound.get(), 2, extents), "type");
  const hid_t types[] = {H5T_STD_I8LE,       H5T_STD_U16BE,      H5T_STD_I64LE,     H5T_IEEE_F32LE, H5T_IEEE_F64BE,
                         H5T_NATIVE_LDOUBLE, H5T_STD_B32LE,      H5T_VAX_F32,       H5T_UNIX_D32LE, H5T_VAX_F64,
                         opaque.get(),       compound.get(),     enumeration.get(), text.get(),     array.get(),
                         H5T_STD_REF_OBJ,    H5T_STD_REF_DSETREG};
  int number = 0;
  for (const hid_t type : types) {
    Dataset(file, "dataset " + std::to_string(number), type, Space({3}), Properties(), false);
    Attribute(file, "attribute " + std::to_string(number), type, Space({2, 2}), nullptr);
    ++number;
  }
}

void CommittedTypes(hid_t file) {
  const Id compound = CompoundType();
  const Id number(H5Tcopy(H5T_NATIVE_DOUBLE), "type");
  Check(H5Tcommit2(file, "rows", compound.get(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT), "commit");
  Check(H5Tcommit2(file, "number", number.get(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT), "commit");
  for (int i = 0; i < 4; ++i) {
    const Id group = Group(file, "group" + std::to_string(i));
    Dataset(group.get(), "rows", compound.get(), Space({3}), Properties(), false);
    Dataset(group.get(), "numbers", number.get(), {5});
    Attribute(group.get(), "rows", compound.get(), Space({2}), nullptr);
    Attribute(group.get(), "number", number.get(), Space({}), SomeValues());
  }
  IntegerAttribute(number.get(), "about the type", 1);
  Check(H5Ldelete(file, "number", H5P_DEFAULT), "delete");
}

void AllSpaces(hid_t file) {
  const Id null(H5Screate(H5S_NULL), "space");
  Dataset(file, "null", H5T_NATIVE_INT, null, Properties(), false);
  Attribute(file, "null", H5T_NATIVE_INT, null, nullptr);
  Dataset(file, "scalar", H5T_NATIVE_INT, std::vector<hsize_t>{});
  Dataset(file, "none", H5T_NATIVE_INT, Space({0}), Properties(), false);
  Dataset(file, "none of it", H5T_NATIVE_INT, Space({3, 0, 4}), Properties(), false);
  Dataset(file, "none yet", H5T_NATIVE_INT, Space({0, 3}, {kNoLimit, 3}), Chunked({10, 3}), false);
  Dataset(file, "wide", H5T_NATIVE_INT, std::vector<hsize_t>(32, 1));
}

// Storage.

void LayoutsWithoutChunks(hid_t file) {
  Dataset(file, "compact", H5T_NATIVE_INT, Space({50}),
          Properties([](hid_t list) { H5Pset_layout(list, H5D_COMPACT); }));
  Dataset(file, "contiguous", H5T_NATIVE_INT, {500});
  Dataset(file, "never", H5T_NATIVE_INT, Space({500}), Properties(), false);
  Dataset(file, "early", H5T_NATIVE_INT, Space({500}),
          Properties([](hid_t list) { H5Pset_alloc_time(list, H5D_ALLOC_TIME_EARLY); }), false);
  Dataset(file, "filled", H5T_NATIVE_INT, Space({500}), Properties([](hid_t list) {
            const int fill = 7;
            H5Pset_fill_value(list, H5T_NATIVE_INT, &fill);
            H5Pset_fill_time(list, H5D_FILL_TIME_NEVER);
          }));
  Dataset(file, "no fill", H5T_NATIVE_INT, Space({5}),
          Properties([](hid_t list) { H5Pset_fill_value(list, H5T_NATIVE_INT, nullptr); }));
}

void Deflate(hid_t list) { Check(H5Pset_deflate(list, 4), "deflate"); }

/// Every kind of chunk index, with and without a filter; the name tells what the latest format makes of it.
void ChunkIndexes(hid_t file, const std::function<void(hid_t)>& set) {
  Dataset(file, "single", H5T_NATIVE_INT, Space({40, 5}), Chunked({40, 5}, set));
  Dataset(file, "fixed array", H5T_NATIVE_INT, Space({45, 5}), Chunked({10, 3}, set));
  Dataset(file, "paged fixed array", H5T_NATIVE_INT, Space({5000}), Chunked({2}, set));
  Dataset(file, "partly written", H5T_NATIVE_INT, Space({5}, {100000}), Chunked({2}, set));
  Dataset(file, "extensible array", H5T_NATIVE_INT, Space({45, 5}, {kNoLimit, 5}), Chunked({10, 3}, set));
  Dataset(file, "long extensible array", H5T_NATIVE_INT, Space({2000}, {kNoLimit}), Chunked({2}, set));
  Dataset(file, "tree", H5T_NATIVE_INT, Space({45, 5}, {kNoLimit, kNoLimit}), Chunked({10, 3}, set));
  Dataset(file, "deep tree", H5T_NATIVE_INT, Space({50, 50}, {kNoLimit, kNoLimit}), Chunked({2, 2}, set));
  Dataset(file, "never", H5T_NATIVE_INT, Space({45, 5}, {kNoLimit, kNoLimit}), Chunked({10, 3}, set), false);
}
void PlainChunks(hid_t file) { ChunkIndexes(file, {}); }
void FilteredChunks(hid_t file) { ChunkIndexes(file, Deflate); }
void EarlyChunks(hid_t file) {
  ChunkIndexes(file, [](hid_t list) { H5Pset_alloc_time(list, H5D_ALLOC_TIME_EARLY); });
}
void SparedEdges(hid_t file) {
  ChunkIndexes(file, [](hid_t list) {
    Deflate(list);
    H5Pset_chunk_opts(list, H5D_CHUNK_DONT_FILTER_PARTIAL_CHUNKS);
  });
}

void ShrunkChunks(hid_t file) {
  PlainChunks(file);
  for (const char* name : {"extensible array", "tree"}) {
    const Id made(H5Dopen2(file, name, H5P_DEFAULT), name);
    const hsize_t less[] = {22, 5};
    Check(H5Dset_extent(made.get(), less), "shrink");
  }
}

void SparseChunks(hid_t file) {
  const Id made(H5Dcreate2(file, "sparse", H5T_NATIVE_INT, Space({600000}, {kNoLimit}).get(), H5P_DEFAULT,
                           Chunked({2}).get(), H5P_DEFAULT),
                "sparse");
  for (hsize_t start = 3; start < 600000; start *= 3) {
    const hsize_t one = 1;
    const Id there = Space({600000});
    Check(H5Sselect_hyperslab(there.get(), H5S_SELECT_SET, &start, nullptr, &one, nullptr), "select");
    Check(H5Dwrite(made.get(), H5T_NATIVE_INT, Space({1}).get(), there.get(), H5P_DEFAULT, SomeValues()), "write");
  }
}

void AllFilters(hid_t file) {
  const auto chunked = [file](const char* name, hid_t type, const std::function<void(hid_t)>& set) {
    Dataset(file, name, type, Space({1000}), Chunked({100}, set));
  };
  chunked("deflate", H5T_NATIVE_INT, Deflate);
  chunked("shuffle", H5T_NATIVE_INT, [](hid_t list) { H5Pset_shuffle(list); });
  chunked("checksum", H5T_NATIVE_INT, [](hid_t list) { H5Pset_fletcher32(list); });
  chunked("integers", H5T_NATIVE_INT, [](hid_t list) { H5Pset_scaleoffset(list, H5Z_SO_INT, 0); });
  chunked("unsigned", H5T_STD_U16BE, [](hid_t list) { H5Pset_scaleoffset(list, H5Z_SO_INT, 0); });
  chunked("all bits", H5T_NATIVE_INT, [](hid_t list) { H5Pset_scaleoffset(list, H5Z_SO_INT, 32); });
  chunked("floats", H5T_NATIVE_FLOAT, [](hid_t list) { H5Pset_scaleoffset(list, H5Z_SO_FLOAT_DSCALE, 3); });
  chunked("doubles", H5T_NATIVE_DOUBLE, [](hid_t list) { H5Pset_scaleoffset(list, H5Z_SO_FLOAT_DSCALE, 3); });
  chunked("filled", H5T_NATIVE_FLOAT, [](hid_t list) {
    const float fill = -1;
    H5Pset_fill_value(list, H5T_NATIVE_FLOAT, &fill);
    H5Pset_scaleoffset(list, H5Z_SO_FLOAT_DSCALE, 3);
  });
  chunked("bits", H5T_NATIVE_INT, [](hid_t list) { H5Pset_nbit(list); });
  chunked("three", H5T_NATIVE_INT, [](hid_t list) {
    H5Pset_shuffle(list);
    H5Pset_deflate(list, 9);
    H5Pset_fletcher32(list);
  });
  chunked("two", H5T_NATIVE_FLOAT, [](hid_t list) {
    H5Pset_scaleoffset(list, H5Z_SO_FLOAT_DSCALE, 3);
    H5Pset_deflate(list, 1);
  });
}

/// Values that are too wide for the digits are stored with all their bits.
void WideScaleOffset(hid_t file) {
  const Id list = Chunked({4}, [](hid_t made) { H5Pset_scaleoffset(made, H5Z_SO_FLOAT_DSCALE, 3); });
  const Id made(H5Dcreate2(file, "wide", H5T_NATIVE_FLOAT, Space({4}).get(), H5P_DEFAULT, list.get(), H5P_DEFAULT),
                "d");
  const float values[] = {-1e7F, 1e7F, 0, 1};
  Check(H5Dwrite(made.get(), H5T_NATIVE_FLOAT, H5S_ALL, H5S_ALL, H5P_DEFAULT, values), "write");
}

// The rest.

void Comments(hid_t file) {
  Dataset(file, "values", H5T_NATIVE_INT, {5});
  Check(H5Oset_comment_by_name(file, "values", "what it is", H5P_DEFAULT), "comment");
  Check(H5Oset_comment_by_name(file, "/", "all of it", H5P_DEFAULT), "comment");
}

void Nothing(hid_t /*file*/) {}

struct Case {
  const char* name;
  void (*contents)(hid_t file);
};
constexpr Case kCases[] = {
    {"Nothing", Nothing},
    {"ManyGroups", ManyGroups},
    {"DeepGroups", DeepGroups},
    {"ManyLinks", ManyLinks},
    {"DeletedLinks", DeletedLinks},
    {"AllLinksDeleted", AllLinksDeleted},
    {"DeletedObjects", DeletedObjects},
    {"LinksOfAllKinds", LinksOfAllKinds},
    {"ConvertedGroup", ConvertedGroup},
    {"LongNames", LongNames},
    {"TrackedOrder", TrackedOrder},
    {"ManyAttributes", ManyAttributes},
    {"DeletedAttributes", DeletedAttributes},
    {"LargeAttributes", LargeAttributes},
    {"TextsOfAnyLength", TextsOfAnyLength},
    {"ManyTextsOfAnyLength", ManyTextsOfAnyLength},
    {"SequencesOfAnyLength", SequencesOfAnyLength},
    {"AllTypes", AllTypes},
    {"CommittedTypes", CommittedTypes},
    {"AllSpaces", AllSpaces},
    {"LayoutsWithoutChunks", LayoutsWithoutChunks},
    {"PlainChunks", PlainChunks},
    {"FilteredChunks", FilteredChunks},
    {"EarlyChunks", EarlyChunks},
    {"SparedEdges", SparedEdges},
    {"ShrunkChunks", ShrunkChunks},
    {"SparseChunks", SparseChunks},
    {"AllFilters", AllFilters},
    {"WideScaleOffset", WideScaleOffset},
    {"Comments", Comments},
};

constexpr Format kFormats[] = {
    kOldest,
    kVersion18,
    kVersion110,
    kLatest,
    {"UserBlock", H5F_LIBVER_EARLIEST, 2048},
    {"LatestUserBlock", H5F_LIBVER_LATEST, 512},
    {"NarrowAddresses", H5F_LIBVER_EARLIEST, 0, 4},
    {"LatestNarrowAddresses", H5F_LIBVER_LATEST, 0, 4},
};

class AcceptedFile : public OrvTest, public ::testing::WithParamInterface<std::tuple<Case, Format>> {};

TEST_P(AcceptedFile, PassesInEachFormat) {
  const auto& [contents, format] = GetParam();
  const std::string bytes = Forge(format, contents.contents);
  const auto fault = FaultOf(bytes);
  EXPECT_FALSE(fault) << fault->what << " at " << fault->offset << " of " << bytes.size();
}

INSTANTIATE_TEST_SUITE_P(All, AcceptedFile,
                         ::testing::Combine(::testing::ValuesIn(kCases), ::testing::ValuesIn(kFormats)),
                         [](const auto& test) {
                           return std::string(std::get<0>(test.param).name) + std::get<1>(test.param).name;
                         });

class AcceptedCreation : public OrvTest {
 protected:
  static std::string WhatOfFile(const Format& format, const std::function<void(hid_t list)>& set,
                                const Contents& contents = ManyGroups) {
    const Id creation = CreationList(format);
    set(creation.get());
    return WhatOf(Forge(format, contents, creation));
  }
};

TEST_F(AcceptedCreation, MayGiveTreesOtherRanks) {
  for (const Format& format : {kOldest, kLatest}) {
    const auto set = [](hid_t list) {
      Check(H5Pset_sym_k(list, 3, 2), "ranks");
      Check(H5Pset_istore_k(list, 5), "ranks");
    };
    EXPECT_EQ(WhatOfFile(format, set), "");
    EXPECT_EQ(WhatOfFile(format, set, PlainChunks), "");
  }
}

TEST_F(AcceptedCreation, MayLeaveFreeSpaceUntracked) {
  const auto set = [](hid_t list) { Check(H5Pset_file_space_strategy(list, H5F_FSPACE_STRATEGY_NONE, false, 1), "s"); };
  EXPECT_EQ(WhatOfFile(kVersion110, set), "");
}

TEST_F(AcceptedCreation, MayPutAttributesOfAnySizeBesideTheObject) {
  EXPECT_EQ(WhatOf(Forge(kVersion18, HugeAttributes)), "");
  EXPECT_EQ(WhatOf(Forge(kLatest, HugeAttributes)), "");
}

TEST_F(AcceptedCreation, MayBeThatOfAResultFile) {
  ForgedFile file;
  file.at("/post/constant/b").integer("block", 500).text("etyp", "NODE").dataset<float>("res", {2}, {1, 2});
  file.at("/post/singlestate/state1/b/orvblock").integer32("n", 1).variable_text("v", "text").real("time", 1.5);
  file.at("/post").soft_link("s", "/post/constant").hard_link("h", "/post/constant");
  EXPECT_EQ(WhatOf(BytesOf(file.path())), "");
}

}  // namespace
