// What the structure check refuses in files that were sound before one field of them was changed. Messages that are not
// sound in themselves are in message_test.

#include <gtest/gtest.h>

#include <random>

#include "structure/forged_structure.h"
#include "structure/patched_file.h"
#include "support/orv_test.h"

namespace {

using namespace orv_test;

constexpr std::string_view kSuperblock = "\x89HDF";
constexpr std::uint64_t kNowhere = std::uint64_t{1} << 40;
constexpr std::uint64_t kNoAddress = ~std::uint64_t{0};
constexpr std::uint64_t kMany = 85;    ///< elements of an attribute
constexpr std::uint64_t kValues = 77;  ///< elements of a dataset
constexpr std::uint64_t kBytes = 4 * kValues;

void Plain(hid_t file) {
  const Id group = Group(file, "group");
  Attribute(group.get(), "many", H5T_NATIVE_INT, Space({kMany}), SomeValues());
  Group(file, "other");
  Dataset(file, "values", H5T_NATIVE_INT, {kValues});
}

void ManyLinks(hid_t file) {
  const Id group = Group(file, "many");
  for (int i = 0; i < 400; ++i) {
    Check(H5Lcreate_hard(file, "many", file, ("link " + std::to_string(i)).c_str(), H5P_DEFAULT, H5P_DEFAULT), "link");
  }
}

void LongName(hid_t file) {
  Group(file, std::string(3000, 'a'));
  for (const char* name : {"b", "c", "d", "e"}) Group(file, name);
}

void ManyAttributes(hid_t file) {
  for (int i = 0; i < 30; ++i) IntegerAttribute(file, "a" + std::to_string(i), i);
}

/// Object headers that grow in turn, so that neither can grow in its place.
void GrowingHeaders(hid_t file) {
  const Id groups[] = {Group(file, "one"), Group(file, "two")};
  for (int i = 0; i < 7; ++i) {
    for (const Id& group : groups) {
      Attribute(group.get(), "a" + std::to_string(i), H5T_NATIVE_INT, Space({60}), SomeValues());
    }
  }
}

void HugeAttributes(hid_t file) {
  const Id list(H5Pcreate(H5P_GROUP_CREATE), "list");
  Check(H5Pset_attr_phase_change(list.get(), 0, 0), "phase");
  const Id group(H5Gcreate2(file, "group", H5P_DEFAULT, list.get(), H5P_DEFAULT), "group");
  for (const char* name : {"one", "two"}) Attribute(group.get(), name, H5T_NATIVE_INT, Space({30000}), SomeValues());
}

void DenseAttributes(hid_t file) {
  for (int i = 0; i < 30; ++i) Attribute(file, "a" + std::to_string(i), H5T_NATIVE_INT, Space({30}), SomeValues());
  Check(H5Adelete(file, "a7"), "delete");
}

void Texts(hid_t file) {
  const char* texts[] = {"first", "second"};
  Attribute(file, "texts", VariableText().get(), Space({2}), texts);
}

void Filled(hid_t file) {
  Dataset(file, "filled", H5T_NATIVE_INT, Space({5}), Properties([](hid_t list) {
            const int fill = 0x0badf00d;
            H5Pset_fill_value(list, H5T_NATIVE_INT, &fill);
          }));
}

void Compact(hid_t file) {
  Dataset(file, "compact", H5T_NATIVE_INT, Space({50}),
          Properties([](hid_t list) { H5Pset_layout(list, H5D_COMPACT); }));
}

void Chunks(hid_t file) { Dataset(file, "chunks", H5T_NATIVE_INT, Space({45, 5}), Chunked({10, 3})); }
void PagedChunks(hid_t file) { Dataset(file, "chunks", H5T_NATIVE_INT, Space({5000}), Chunked({2})); }
void GrowingChunks(hid_t file) {
  Dataset(file, "chunks", H5T_NATIVE_INT, Space({9000}, {H5S_UNLIMITED}), Chunked({2}));
}
void TreeOfChunks(hid_t file) {
  Dataset(file, "chunks", H5T_NATIVE_INT, Space({45, 5}, {H5S_UNLIMITED, H5S_UNLIMITED}), Chunked({10, 3}));
}
void SingleChunk(hid_t file) {
  Dataset(file, "chunks", H5T_NATIVE_INT, Space({40, 5}),
          Chunked({40, 5}, [](hid_t list) { H5Pset_deflate(list, 1); }));
}
void SummedChunks(hid_t file) {
  Dataset(file, "chunks", H5T_NATIVE_INT, Space({100}), Chunked({100}, [](hid_t list) {
            H5Pset_deflate(list, 1);
            H5Pset_fletcher32(list);
          }));
}
void ScaledChunks(hid_t file) {
  Dataset(file, "chunks", H5T_NATIVE_INT, Space({100}),
          Chunked({100}, [](hid_t list) { H5Pset_scaleoffset(list, H5Z_SO_INT, 0); }));
}

void CommittedType(hid_t file) {
  const Id type(H5Tcopy(H5T_NATIVE_DOUBLE), "type");
  Check(H5Tcommit2(file, "type", type.get(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT), "commit");
  Dataset(file, "values", type.get(), {kValues});
}

// Places that more than one change begins with.

/// The object header of the root group in the oldest format. Its first message is the symbol table, at 16.
PatchedFile& OldRoot(PatchedFile& file) { return file.at(kSuperblock).follow(64); }

/// The extent of the dataset, in the dataspace message that its object header of the oldest format begins with.
PatchedFile& OldExtent(PatchedFile& file) { return file.at(kSuperblock).find(kValues); }

/// The header of the message behind that.
std::ptrdiff_t NextMessage(PatchedFile& file) { return -8 + static_cast<std::ptrdiff_t>(file.get(-14, 2)); }

/// Where the first text refers to its global heap.
PatchedFile& TextReference(PatchedFile& file) {
  const std::uint64_t heap = file.at("GCOL").place();
  std::string reference(reinterpret_cast<const char*>(&heap), sizeof heap);
  reference += std::string("\1\0\0\0", 4);
  return file.at(kSuperblock).find(reference);
}

struct Damage {
  const char* name;
  Format format;
  void (*contents)(hid_t file);
  void (*patch)(PatchedFile& file);
  const char* what;
};

const Damage kDamages[] = {
    // Superblock.
    {"Signature", kOldest, Plain, [](PatchedFile& f) { f.at(kSuperblock).put(1, 1, 'h'); },
     "file has no HDF5 signature"},
    {"SuperblockVersion", kOldest, Plain, [](PatchedFile& f) { f.at(kSuperblock).put(8, 1, 4); },
     "superblock has an unknown version"},
    {"AddressWidth", kOldest, Plain, [](PatchedFile& f) { f.at(kSuperblock).put(13, 1, 3); },
     "addresses or lengths are of an unknown width"},
    {"LengthWidth", kLatest, Plain, [](PatchedFile& f) { f.at(kSuperblock).put(10, 1, 16); },
     "addresses or lengths are of an unknown width"},
    {"LeafRank", kOldest, Plain, [](PatchedFile& f) { f.at(kSuperblock).put(16, 2, 0); },
     "superblock gives trees no room"},
    {"NodeRank", kOldest, Plain, [](PatchedFile& f) { f.at(kSuperblock).put(18, 2, 0); },
     "superblock gives trees no room"},
    {"FreeSpace", kOldest, Plain, [](PatchedFile& f) { f.at(kSuperblock).put(32, 8, 800); },
     "file keeps its free space"},
    {"Driver", kOldest, Plain, [](PatchedFile& f) { f.at(kSuperblock).put(48, 8, 800); },
     "file was written by a driver of its own"},
    {"Base", kOldest, Plain, [](PatchedFile& f) { f.at(kSuperblock).put(24, 8, kNowhere); },
     "file ends before it begins"},
    {"End", kOldest, Plain, [](PatchedFile& f) { f.at(kSuperblock).put(40, 8, f.get(40, 8) + 1); },
     "file is cut short"},
    {"Root", kOldest, Plain, [](PatchedFile& f) { f.at(kSuperblock).put(64, 8, kNowhere); },
     "link leads out of the file"},
    {"RootNote", kOldest, Plain, [](PatchedFile& f) { f.at(kSuperblock).put(80, 8, f.get(80, 8) + 8); },
     "symbol table entry disagrees with its group"},
    {"SuperblockChecksum", kLatest, Plain, [](PatchedFile& f) { f.at(kSuperblock).unchecked().put(44, 1, 0x77); },
     "superblock does not match its checksum"},
    {"Extension", kLatest, Plain, [](PatchedFile& f) { f.at(kSuperblock).put(20, 8, f.get(36, 8)); },
     "structure has two owners"},

    // Object headers.
    {"HeaderVersion1", kOldest, Plain, [](PatchedFile& f) { OldRoot(f).put(0, 1, 3); },
     "object header has an unknown version"},
    {"HeaderSize1", kOldest, Plain, [](PatchedFile& f) { OldRoot(f).put(8, 4, 0x7fffffff); },
     "structure passes the end of the file"},
    {"HeaderAtTheEnd", kOldest, Plain, [](PatchedFile& f) { f.at(kSuperblock).put(64, 8, f.get(40, 8) - 9); },
     "object header passes the end of the file"},
    {"MessageCount", kOldest, Plain, [](PatchedFile& f) { OldRoot(f).put(2, 2, 0); },
     "object header counts fewer messages than it holds"},
    {"MessageCountOfADataset", kOldest, Plain, [](PatchedFile& f) { OldExtent(f).put(-30, 2, 1); },
     "object header counts fewer messages than it holds"},
    {"EmptyMessagesAreCounted", kOldest, Plain,
     [](PatchedFile& f) {
       OldExtent(f);
       const std::ptrdiff_t end = -16 + static_cast<std::ptrdiff_t>(f.get(-24, 4));
       std::ptrdiff_t empty = -16;
       while (f.get(empty, 2) != 0) empty += 8 + static_cast<std::ptrdiff_t>(f.get(empty + 2, 2));
       for (; empty < end; empty += 8) f.put(empty, 8, 0);  // one large one becomes many small ones
     },
     "object header counts fewer messages than it holds"},
    {"MessageSize", kOldest, Plain, [](PatchedFile& f) { OldRoot(f).put(18, 2, 0xfff8); },
     "object header message passes its chunk"},
    {"MessageFlags", kOldest, Plain, [](PatchedFile& f) { OldRoot(f).put(20, 1, 6); },
     "object header message has contradicting flags"},
    {"WasUnknown", kOldest, Plain, [](PatchedFile& f) { OldRoot(f).put(20, 1, 32); },
     "object header message has contradicting flags"},
    {"Sharable", kOldest, Plain, [](PatchedFile& f) { OldRoot(f).put(20, 1, 64); },
     "object header message says that it can be shared"},
    {"UnknownMessage", kOldest, Plain, [](PatchedFile& f) { OldRoot(f).put(16, 2, 0x40).put(20, 1, 0x80); },
     "object holds an unknown message that must be known"},
    {"UnknownWhenWriting", kOldest, Plain, [](PatchedFile& f) { OldRoot(f).put(16, 2, 0x40).put(20, 1, 8); },
     "object holds an unknown message that must be known"},
    {"NoKind", kOldest, Plain, [](PatchedFile& f) { OldRoot(f).put(16, 2, 0); }, "object is no group, dataset or type"},
    {"ExternalFiles", kOldest, Plain, [](PatchedFile& f) { OldRoot(f).put(16, 2, 7); },
     "dataset keeps its values in other files"},
    {"SharedTable", kOldest, Plain, [](PatchedFile& f) { OldRoot(f).put(16, 2, 15); },
     "file keeps messages in a table of its own"},
    {"DriverMessage", kOldest, Plain, [](PatchedFile& f) { OldRoot(f).put(16, 2, 20); },
     "file was written by a driver of its own"},
    {"CacheImage", kOldest, Plain, [](PatchedFile& f) { OldRoot(f).put(16, 2, 24); },
     "file holds an image of a metadata cache"},
    {"SharedMessage", kOldest, Plain, [](PatchedFile& f) { OldRoot(f).put(20, 1, 2).put(24, 2, 0x0203); },
     "message of this kind is shared"},
    {"MessageTwice", kOldest, Plain, [](PatchedFile& f) { OldExtent(f).put(NextMessage(f), 2, 1); },
     "object holds a message twice"},
    {"EmptyContinuation", kOldest, ManyAttributes,
     [](PatchedFile& f) { OldRoot(f).find(std::string_view("\x10\0\x10\0", 4)).put(16, 8, 0); },
     "object header goes on with nothing"},
    {"CircularContinuation", kOldest, ManyAttributes,
     [](PatchedFile& f) {
       const std::uint64_t root = OldRoot(f).place();
       f.find(std::string_view("\x10\0\x10\0", 4)).put(8, 8, root);
     },
     "structure has two owners"},
    {"HeaderVersion2", kLatest, Plain, [](PatchedFile& f) { f.at("OHDR").put(4, 1, 3); },
     "object header has an unknown version"},
    {"HeaderFlags2", kLatest, Plain, [](PatchedFile& f) { f.at("OHDR").put(5, 1, f.get(5, 1) | 0x40); },
     "object header has an unknown version"},
    {"HeaderSize2", kLatest, Plain, [](PatchedFile& f) { f.at("OHDR").put(5, 1, f.get(5, 1) | 3); },
     "object header passes the end of the file"},
    {"HeaderChecksum2", kLatest, Plain, [](PatchedFile& f) { f.at("OHDR").unchecked().put(8, 1, f.get(8, 1) ^ 1); },
     "object header does not match its checksum"},
    {"ContinuationSignature", kLatest, GrowingHeaders, [](PatchedFile& f) { f.at("OCHK").put(0, 1, 'X'); },
     "object header does not go on where it says"},
    {"ContinuationChecksum", kLatest, GrowingHeaders,
     [](PatchedFile& f) { f.at("OCHK").unchecked().put(8, 1, f.get(8, 1) ^ 1); },
     "object header does not match its checksum"},

    // Groups of the old kind.
    {"TreeSignature", kOldest, Plain, [](PatchedFile& f) { f.at("TREE").put(0, 1, 'X'); },
     "B-tree node is not where it should be"},
    {"TreeType", kOldest, Plain, [](PatchedFile& f) { f.at("TREE").put(4, 1, 1); },
     "B-tree node is not where it should be"},
    {"TreeFull", kOldest, Plain, [](PatchedFile& f) { f.at("TREE").put(6, 2, 33); },
     "B-tree node holds more than fits"},
    {"TreeSibling", kOldest, Plain, [](PatchedFile& f) { f.at("TREE").put(8, 8, kNowhere); },
     "B-tree node has a sibling nowhere"},
    {"TreeKey", kOldest, Plain, [](PatchedFile& f) { f.at("TREE").put(24, 8, kNowhere); },
     "name does not end within its local heap"},
    {"TreeLastKey", kOldest, Plain, [](PatchedFile& f) { f.at("TREE").put(40, 8, kNowhere); },
     "name does not end within its local heap"},
    {"TreeLevel", kOldest, ManyLinks, [](PatchedFile& f) { f.at(std::string_view("TREE\0\1", 6)).put(5, 1, 2); },
     "B-tree node is of a wrong level"},
    {"TreeChildTwice", kOldest, ManyLinks,
     [](PatchedFile& f) { f.at(std::string_view("TREE\0\1", 6)).put(48, 8, f.get(32, 8)); },
     "structure has two owners"},
    {"NodeSignature", kOldest, Plain, [](PatchedFile& f) { f.at("SNOD").put(0, 1, 'X'); },
     "symbol node is not where it should be"},
    {"NodeFull", kOldest, Plain, [](PatchedFile& f) { f.at("SNOD").put(6, 2, 9); }, "symbol node holds more than fits"},
    {"EntryName", kOldest, Plain, [](PatchedFile& f) { f.at("SNOD").put(8, 8, kNowhere); },
     "name does not end within its local heap"},
    {"EntryWithoutName", kOldest, Plain, [](PatchedFile& f) { f.at("SNOD").put(8, 8, 0); }, "link has no name"},
    {"EntryHeader", kOldest, Plain, [](PatchedFile& f) { f.at("SNOD").put(16, 8, kNowhere); },
     "link leads out of the file"},
    {"EntryKind", kOldest, Plain, [](PatchedFile& f) { f.at("SNOD").put(24, 4, 3); },
     "symbol table entry is of an unknown kind"},
    {"SoftLinkTarget", kOldest, Plain, [](PatchedFile& f) { f.at("SNOD").put(24, 4, 2).put(32, 4, 0x7fffffff); },
     "name does not end within its local heap"},
    {"EntryNotes", kOldest, Plain, [](PatchedFile& f) { f.at("SNOD").put(56, 8, f.get(16, 8)); },
     "symbol table entries disagree about their group"},
    {"EntryNote", kOldest, Plain, [](PatchedFile& f) { f.at("SNOD").put(32, 8, f.get(32, 8) + 8); },
     "symbol table entry disagrees with its group"},
    {"HeapSignature", kOldest, Plain, [](PatchedFile& f) { f.at("HEAP").put(0, 1, 'X'); },
     "local heap is not where it should be"},
    {"HeapData", kOldest, Plain, [](PatchedFile& f) { f.at("HEAP").put(24, 8, kNowhere); },
     "structure passes the end of the file"},
    {"FreeOffset", kOldest, Plain, [](PatchedFile& f) { f.at("HEAP").put(16, 8, kNowhere); },
     "free list leaves its local heap"},
    {"FreeAlignment", kOldest, Plain, [](PatchedFile& f) { f.at("HEAP").put(16, 8, 4); },
     "free list leaves its local heap"},
    {"FreeSize", kOldest, Plain,
     [](PatchedFile& f) {
       const auto free = static_cast<std::ptrdiff_t>(f.at("HEAP").get(16, 8));
       f.follow(24).put(free + 8, 8, kNowhere);
     },
     "free part passes its local heap"},
    {"FreeCircle", kOldest, Plain,
     [](PatchedFile& f) {
       const std::uint64_t free = f.at("HEAP").get(16, 8);
       f.follow(24).put(static_cast<std::ptrdiff_t>(free), 8, free);
     },
     "free parts of a local heap overlap"},
    {"SharedNames", kOldest, LongName,
     [](PatchedFile& f) {
       f.at("SNOD");
       for (int i = 1; i < 5; ++i) f.put(8 + 40 * i, 8, f.get(8, 8));
     },
     "names take more room than their local heap has"},

    // Dataset and attribute.
    {"NoType", kOldest, Plain, [](PatchedFile& f) { OldExtent(f).put(NextMessage(f), 2, 0); },
     "dataset has no dataspace or no type"},
    {"Extent", kOldest, Plain, [](PatchedFile& f) { OldExtent(f).put(0, 8, kValues + 1).put(8, 8, kValues + 1); },
     "values are not of the size that the dataspace tells"},
    {"HugeExtent", kOldest, Plain,
     [](PatchedFile& f) { OldExtent(f).put(0, 8, kNoAddress / 2).put(8, 8, kNoAddress / 2); },
     "dataset has more bytes than can be counted"},
    {"ValuesAddress", kOldest, Plain, [](PatchedFile& f) { f.at(kSuperblock).find(kBytes, -8).put(0, 8, kNowhere); },
     "values pass the end of the file"},
    {"FillSize", kOldest, Filled, [](PatchedFile& f) { f.at(std::string_view("\x0d\xf0\xad\x0b", 4)).put(-4, 4, 2); },
     "fill value is not of the type's size"},
    {"CompactSize", kOldest, Compact,
     [](PatchedFile& f) { f.at(std::string_view("\x03\x00\xc8\x00", 4)).put(2, 2, 100); },
     "compact values are cut short"},
    {"AttributeExtent", kOldest, Plain,
     [](PatchedFile& f) { f.at(kSuperblock).find(kMany).put(0, 8, 9000).put(8, 8, 9000); },
     "values of an attribute pass its message"},

    // Chunks.
    {"ChunkRank", kOldest, Chunks, [](PatchedFile& f) { f.at(kSuperblock).find(45).put(-7, 1, 1).put(8, 8, 45); },
     "chunks and dataspace are of different rank"},
    {"ChunkElement", kOldest, Chunks,
     [](PatchedFile& f) { f.at(std::string_view("\x0a\0\0\0\3\0\0\0\4\0\0\0", 12)).put(8, 4, 2); },
     "chunks hold elements of another size than the type's"},
    {"ChunkTree", kOldest, Chunks, [](PatchedFile& f) { f.at("TREE\x01").put(6, 2, 65); },
     "B-tree node holds more than fits"},
    {"ChunkSize", kOldest, Chunks, [](PatchedFile& f) { f.at("TREE\x01").put(24, 4, 121); }, "chunk has a wrong size"},
    {"ChunkOffset", kOldest, Chunks, [](PatchedFile& f) { f.at("TREE\x01").put(32, 8, 5); },
     "chunk begins where none does"},
    {"ChunkOutside", kOldest, Chunks, [](PatchedFile& f) { f.at("TREE\x01").put(40, 8, 6); },
     "chunk begins where none does"},
    {"ChunkWithinElement", kOldest, Chunks, [](PatchedFile& f) { f.at("TREE\x01").put(48, 8, 4); },
     "chunk begins where none does"},
    {"ChunkAddress", kOldest, Chunks, [](PatchedFile& f) { f.at("TREE\x01").put(56, 8, kNowhere); },
     "chunk passes the end of the file"},
    {"EmptyFilteredChunk", kOldest, ScaledChunks, [](PatchedFile& f) { f.at("TREE\x01").put(24, 4, 0); },
     "chunk has a wrong size"},
    {"ChunkWithoutFilters", kOldest, ScaledChunks, [](PatchedFile& f) { f.at("TREE\x01").put(28, 4, 1); },
     "chunk has a wrong size"},
    {"ChunkChecksum", kOldest, SummedChunks, [](PatchedFile& f) { f.at("TREE\x01").put(24, 4, 3); },
     "chunk has no room for its checksum"},
    {"ScaleBits", kOldest, ScaledChunks, [](PatchedFile& f) { f.at("TREE\x01").follow(48).put(0, 4, 33); },
     "scale-offset chunk is not sound"},
    {"ScaleHeader", kOldest, ScaledChunks, [](PatchedFile& f) { f.at("TREE\x01").put(24, 4, 20); },
     "scale-offset chunk is not sound"},
    {"ScalePacked", kOldest, ScaledChunks, [](PatchedFile& f) { f.at("TREE\x01").follow(48).put(0, 4, 32); },
     "scale-offset chunk is cut short"},
    {"RowOfFilteredChunks", kLatest, SingleChunk,
     [](PatchedFile& f) { f.at("OHDR", 1).find("\x04\x02\x02\x03\x01\x28\x05\x04\x01").put(8, 1, 2); },
     "chunks in a row are filtered"},
    {"SingleChunk", kLatest, SingleChunk,
     [](PatchedFile& f) { f.at("OHDR", 1).find("\x04\x02\x02\x03\x01\x28\x05\x04\x01").put(21, 8, kNowhere); },
     "chunk passes the end of the file"},
    {"SingleChunkOfMany", kLatest, SingleChunk,
     [](PatchedFile& f) { f.at("OHDR", 1).find("\x04\x02\x02\x03\x01\x28\x05\x04\x01").put(5, 1, 20); },
     "single chunk is not the only one"},
    {"FixedSignature", kLatest, Chunks, [](PatchedFile& f) { f.at("FAHD").put(0, 1, 'X'); },
     "fixed array is not where it should be"},
    {"FixedFilter", kLatest, Chunks, [](PatchedFile& f) { f.at("FAHD").put(5, 1, 1); },
     "fixed array does not fit its dataset"},
    {"FixedCount", kLatest, Chunks, [](PatchedFile& f) { f.at("FAHD").put(8, 8, 11); },
     "fixed array does not fit its dataset"},
    {"FixedChecksum", kLatest, Chunks, [](PatchedFile& f) { f.at("FAHD").unchecked().put(24, 1, f.get(24, 1) ^ 1); },
     "fixed array does not match its checksum"},
    {"FixedBlock", kLatest, Chunks, [](PatchedFile& f) { f.at("FADB").put(0, 1, 'X'); },
     "fixed array is not where it should be"},
    {"FixedBlockChecksum", kLatest, Chunks,
     [](PatchedFile& f) { f.at("FADB").unchecked().put(14, 1, f.get(14, 1) ^ 1); },
     "fixed array does not match its checksum"},
    {"FixedElement", kLatest, Chunks, [](PatchedFile& f) { f.at("FADB").put(14, 8, kNowhere); },
     "chunk passes the end of the file"},
    {"FixedPage", kLatest, PagedChunks, [](PatchedFile& f) { f.at("FADB").put(19, 1, f.get(19, 1) ^ 1); },
     "fixed array does not match its checksum"},
    {"GrowingSignature", kLatest, GrowingChunks, [](PatchedFile& f) { f.at("EAHD").put(0, 1, 'X'); },
     "extensible array is not where it should be"},
    {"GrowingFilter", kLatest, GrowingChunks, [](PatchedFile& f) { f.at("EAHD").put(5, 1, 1); },
     "extensible array does not fit its dataset"},
    {"GrowingSizes", kLatest, GrowingChunks, [](PatchedFile& f) { f.at("EAHD").put(9, 1, 3); },
     "extensible array does not fit its dataset"},
    {"GrowingChecksum", kLatest, GrowingChunks, [](PatchedFile& f) { f.at("EAHD").unchecked().put(20, 1, 0x55); },
     "extensible array does not match its checksum"},
    {"GrowingIndex", kLatest, GrowingChunks, [](PatchedFile& f) { f.at("EAIB").put(0, 1, 'X'); },
     "extensible array is not where it should be"},
    {"GrowingIndexChecksum", kLatest, GrowingChunks, [](PatchedFile& f) { f.at("EAIB").unchecked().put(14, 1, 0x55); },
     "extensible array does not match its checksum"},
    {"GrowingSuper", kLatest, GrowingChunks, [](PatchedFile& f) { f.at("EASB").put(0, 1, 'X'); },
     "extensible array is not where it should be"},
    {"GrowingSuperChecksum", kLatest, GrowingChunks, [](PatchedFile& f) { f.at("EASB").unchecked().put(18, 1, 0x55); },
     "extensible array does not match its checksum"},
    {"GrowingData", kLatest, GrowingChunks, [](PatchedFile& f) { f.at("EADB").put(0, 1, 'X'); },
     "extensible array is not where it should be"},
    {"GrowingDataChecksum", kLatest, GrowingChunks, [](PatchedFile& f) { f.at("EADB").unchecked().put(18, 1, 0x55); },
     "extensible array does not match its checksum"},
    {"GrowingElement", kLatest, GrowingChunks, [](PatchedFile& f) { f.at("EAIB").put(14, 8, kNowhere); },
     "chunk passes the end of the file"},
    {"ChunkRecord", kLatest, TreeOfChunks, [](PatchedFile& f) { f.at("BTLF").put(14, 8, 5); },
     "chunk begins where none does"},

    // B-trees of version 2.
    {"Tree2Signature", kLatest, TreeOfChunks, [](PatchedFile& f) { f.at("BTHD").put(0, 1, 'X'); },
     "B-tree is not where it should be"},
    {"Tree2Type", kLatest, TreeOfChunks, [](PatchedFile& f) { f.at("BTHD").put(5, 1, 11); },
     "B-tree is for records of another kind"},
    {"Tree2RecordSize", kLatest, TreeOfChunks, [](PatchedFile& f) { f.at("BTHD").put(10, 2, 32); },
     "B-tree is for records of another kind"},
    {"Tree2Depth", kLatest, TreeOfChunks, [](PatchedFile& f) { f.at("BTHD").put(12, 2, 11); }, "B-tree is too deep"},
    {"Tree2SplitsEmptyNodes", kLatest, TreeOfChunks, [](PatchedFile& f) { f.at("BTHD").put(14, 1, 0); },
     "B-tree splits and merges its nodes at once"},
    {"Tree2SplitsFullerNodesThanFull", kLatest, TreeOfChunks, [](PatchedFile& f) { f.at("BTHD").put(14, 1, 101); },
     "B-tree splits and merges its nodes at once"},
    {"Tree2MergesNodesThatAreHalfOfSplitOnes", kLatest, TreeOfChunks,
     [](PatchedFile& f) { f.at("BTHD").put(15, 1, 50); }, "B-tree splits and merges its nodes at once"},
    {"Tree2NodeSize", kLatest, TreeOfChunks, [](PatchedFile& f) { f.at("BTHD").put(6, 4, 8); },
     "B-tree has nodes of an impossible size"},
    {"Tree2Total", kLatest, TreeOfChunks, [](PatchedFile& f) { f.at("BTHD").put(26, 8, 9); },
     "B-tree does not hold as many records as it says"},
    {"Tree2Root", kLatest, TreeOfChunks, [](PatchedFile& f) { f.at("BTHD").put(16, 8, kNoAddress); },
     "B-tree has lost its records"},
    {"Tree2Checksum", kLatest, TreeOfChunks, [](PatchedFile& f) { f.at("BTHD").unchecked().put(14, 1, 99); },
     "B-tree does not match its checksum"},
    {"Tree2Leaf", kLatest, TreeOfChunks, [](PatchedFile& f) { f.at("BTLF").put(0, 1, 'X'); },
     "B-tree node is not where it should be"},
    {"Tree2LeafFull", kLatest, TreeOfChunks, [](PatchedFile& f) { f.at("BTHD").put(24, 2, 60000); },
     "B-tree node holds more than fits"},
    {"Tree2LeafChecksum", kLatest, TreeOfChunks, [](PatchedFile& f) { f.at("BTLF").unchecked().put(6, 1, 0x55); },
     "B-tree does not match its checksum"},
    {"Tree2Inner", kLatest, ManyLinks, [](PatchedFile& f) { f.at("BTIN").put(0, 1, 'X'); },
     "B-tree node is not where it should be"},

    // Dense storage.
    {"HeapHeader", kLatest, ManyLinks, [](PatchedFile& f) { f.at("FRHP").put(0, 1, 'X'); },
     "fractal heap is not where it should be"},
    {"HeapFilter", kLatest, ManyLinks, [](PatchedFile& f) { f.at("FRHP").put(7, 2, 5); }, "fractal heap is filtered"},
    {"HeapFlags", kLatest, ManyLinks, [](PatchedFile& f) { f.at("FRHP").put(9, 1, 4); },
     "fractal heap has unknown flags"},
    {"HeapIds", kLatest, ManyLinks, [](PatchedFile& f) { f.at("FRHP").put(5, 2, 6); },
     "fractal heap has ids of an unknown size"},
    {"HeapWidth", kLatest, ManyLinks, [](PatchedFile& f) { f.at("FRHP").put(110, 2, 3); },
     "fractal heap has blocks of impossible sizes"},
    {"HeapRows", kLatest, ManyLinks, [](PatchedFile& f) { f.at("FRHP").put(140, 2, 50); },
     "fractal heap has blocks of impossible sizes"},
    {"HeapChecksum", kLatest, ManyLinks, [](PatchedFile& f) { f.at("FRHP").unchecked().put(14, 1, 9); },
     "fractal heap does not match its checksum"},
    {"HeapBlock", kLatest, ManyLinks, [](PatchedFile& f) { f.at("FHDB").put(0, 1, 'X'); },
     "fractal heap block is not where it should be"},
    {"HeapBlockOwner", kLatest, ManyLinks, [](PatchedFile& f) { f.at("FHDB").put(5, 8, 48); },
     "fractal heap block is not where it should be"},
    {"HeapBlockChecksum", kLatest, ManyLinks, [](PatchedFile& f) { f.at("FHDB").unchecked().put(40, 1, 0xee); },
     "fractal heap does not match its checksum"},
    {"HeapTable", kLatest, ManyLinks, [](PatchedFile& f) { f.at("FHIB").put(0, 1, 'X'); },
     "fractal heap block is not where it should be"},
    {"HeapTableChecksum", kLatest, ManyLinks, [](PatchedFile& f) { f.at("FHIB").unchecked().put(17, 1, 0xee); },
     "fractal heap does not match its checksum"},
    {"HeapBlockTwice", kLatest, ManyLinks, [](PatchedFile& f) { f.at("FHIB").put(25, 8, f.get(17, 8)); },
     "fractal heap block is not where it should be"},
    {"IdVersion", kLatest, ManyLinks, [](PatchedFile& f) { f.at("BTLF").put(10, 1, 0x40); },
     "id of a fractal heap has an unknown version"},
    {"IdKind", kLatest, ManyLinks, [](PatchedFile& f) { f.at("BTLF").put(10, 1, 0x30); },
     "id of a fractal heap is of an unknown kind"},
    {"IdTiny", kLatest, ManyLinks, [](PatchedFile& f) { f.at("BTLF").put(10, 1, 0x27); },
     "id of a fractal heap is of an unknown kind"},
    {"IdHuge", kLatest, ManyLinks, [](PatchedFile& f) { f.at("BTLF").put(10, 1, 0x10); },
     "object is not in its fractal heap"},
    {"IdOffset", kLatest, ManyLinks, [](PatchedFile& f) { f.at("BTLF").put(11, 4, 0x7fffffff); },
     "object is not in its fractal heap"},
    {"IdInFrame", kLatest, ManyLinks, [](PatchedFile& f) { f.at("BTLF").put(11, 4, 3); },
     "object is not in its fractal heap"},
    {"IdCutShort", kLatest, ManyLinks,
     [](PatchedFile& f) { f.at("FRHP").put(128, 2, 64).put(132, 8, kNoAddress).put(140, 2, 0).put(38, 8, kNoAddress); },
     "id of a fractal heap is cut short"},
    {"HugeAddress", kLatest, HugeAttributes,
     [](PatchedFile& f) { f.at(std::string_view("BTLF\0\1", 6)).put(6, 8, kNowhere); },
     "large object passes the end of the file"},
    {"HugeNumber", kLatest, HugeAttributes,
     [](PatchedFile& f) { f.at(std::string_view("BTLF\0\1", 6)).put(22, 8, kNoAddress); },
     "large object has no number"},
    {"HugeNumbers", kLatest, HugeAttributes,
     [](PatchedFile& f) { f.at(std::string_view("BTLF\0\1", 6)).put(46, 8, f.get(22, 8)); },
     "large objects share a number"},
    {"DenseShared", kLatest, DenseAttributes,
     [](PatchedFile& f) { f.at(std::string_view("BTLF\0\x08", 6)).put(14, 1, 2); },
     "message is in a heap for shared messages"},
    {"FreeSpaceClient", kLatest, DenseAttributes, [](PatchedFile& f) { f.at("FSHD").put(5, 1, 1); },
     "free space is not where it should be"},
    {"FreeSpaceChecksum", kLatest, DenseAttributes, [](PatchedFile& f) { f.at("FSHD").unchecked().put(6, 1, 0x55); },
     "free space does not match its checksum"},
    {"FreeSpaceList", kLatest, DenseAttributes, [](PatchedFile& f) { f.at("FSSE").put(0, 1, 'X'); },
     "free space is not where it should be"},
    {"FreeSpaceListChecksum", kLatest, DenseAttributes,
     [](PatchedFile& f) { f.at("FSSE").unchecked().put(13, 1, 0x55); }, "free space does not match its checksum"},

    // Global heaps.
    {"GlobalSignature", kOldest, Texts, [](PatchedFile& f) { f.at("GCOL").put(0, 1, 'X'); },
     "global heap is not where it should be"},
    {"GlobalSmall", kOldest, Texts, [](PatchedFile& f) { f.at("GCOL").put(8, 8, 4095); }, "global heap is too small"},
    {"GlobalLarge", kOldest, Texts, [](PatchedFile& f) { f.at("GCOL").put(8, 8, kNowhere); },
     "structure passes the end of the file"},
    {"GlobalObject", kOldest, Texts, [](PatchedFile& f) { f.at("GCOL").put(24, 8, kNowhere); },
     "object passes its global heap"},
    {"GlobalFreeNothing", kOldest, Texts, [](PatchedFile& f) { f.at("GCOL").put(16, 2, 0).put(24, 8, 0); },
     "object passes its global heap"},
    {"GlobalTwice", kOldest, Texts, [](PatchedFile& f) { f.at("GCOL").put(40, 2, 1); },
     "global heap holds an index twice"},
    {"ReferenceAddress", kOldest, Texts, [](PatchedFile& f) { TextReference(f).put(0, 8, kNowhere); },
     "value leads out of the file"},
    {"ReferenceIndex", kOldest, Texts, [](PatchedFile& f) { TextReference(f).put(8, 4, 99); },
     "value is not in its global heap"},
    {"ReferenceLength", kOldest, Texts, [](PatchedFile& f) { TextReference(f).put(-4, 4, 1000); },
     "value is longer than its place in the global heap"},
};

class DamagedFile : public OrvTest, public ::testing::WithParamInterface<Damage> {};

TEST_P(DamagedFile, IsRefusedForWhatIsWrongWithIt) {
  const Damage& damage = GetParam();
  PatchedFile file(Forge(damage.format, damage.contents));
  ASSERT_EQ(WhatOf(file.bytes()), "");
  damage.patch(file);
  EXPECT_EQ(WhatOf(file.bytes()), damage.what);
}

INSTANTIATE_TEST_SUITE_P(All, DamagedFile, ::testing::ValuesIn(kDamages),
                         [](const auto& test) { return std::string(test.param.name); });

class Damaged : public OrvTest {};

TEST_F(Damaged, FaultTellsTheByteWhereTheThingBegins) {
  PatchedFile file(Forge({"UserBlock", H5F_LIBVER_EARLIEST, 1024}, Plain));
  file.at("HEAP").put(0, 1, 'X');
  const auto fault = FaultOf(file.bytes());
  ASSERT_TRUE(fault);
  EXPECT_EQ(fault->offset, file.place());
}

TEST_F(Damaged, SharedTypeMustLeadToAType) {
  PatchedFile file(Forge(kOldest, CommittedType));
  const std::uint64_t root = file.at(kSuperblock).get(64, 8);
  OldExtent(file);
  const std::ptrdiff_t message = NextMessage(file);
  ASSERT_EQ(file.get(message, 2), 3U);
  ASSERT_EQ(file.get(message + 4, 1) & 2U, 2U);
  const std::uint64_t type = file.get(message + 10, 8);
  PatchedFile elsewhere = file;
  elsewhere.put(message + 10, 8, root);
  EXPECT_EQ(WhatOf(elsewhere.bytes()), "shared type leads to no type");
  PatchedFile nowhere = file;
  nowhere.put(message + 10, 8, kNowhere);
  EXPECT_EQ(WhatOf(nowhere.bytes()), "link leads out of the file");
  const std::string_view own("\x03\0\x18\0", 4);
  file.at(kSuperblock).find(std::string_view(file.bytes()).substr(type, 16)).find(own);
  file.put(4, 1, 2).put(8, 2, 0x0203);
  EXPECT_EQ(WhatOf(file.bytes()), "committed type is shared itself");
}

TEST_F(Damaged, StructuresThatOverlapDoNotKeepTheCheckBusy) {
  PatchedFile file(Forge(kOldest, [](hid_t made) {
    for (int i = 0; i < 12; ++i) Group(made, "g" + std::to_string(i));
  }));
  const std::uint64_t size = file.bytes().size();
  for (int i = 0; i < 12; ++i) {
    file.at("HEAP", i);
    file.put(8, 8, size - file.get(24, 8));
  }
  EXPECT_EQ(WhatOf(file.bytes()), "structures overlap");
}

class CutFile : public OrvTest, public ::testing::WithParamInterface<Format> {};

TEST_P(CutFile, IsRefusedAtAnyLength) {
  const std::string whole = Forge(GetParam(), Plain);
  for (size_t part = 0; part < 50; ++part) {
    const std::string cut = whole.substr(0, whole.size() * part / 50);
    EXPECT_EQ(WhatOf(cut), cut.size() < 8 ? "file has no HDF5 signature" : "file is cut short") << cut.size();
  }
}

TEST_P(CutFile, MayBeFollowedByOtherBytes) { EXPECT_EQ(WhatOf(Forge(GetParam(), Plain) + std::string(1000, 'x')), ""); }

INSTANTIATE_TEST_SUITE_P(All, CutFile, ::testing::Values(kOldest, kLatest),
                         [](const auto& test) { return std::string(test.param.name); });

class MutatedFile : public OrvTest, public ::testing::WithParamInterface<Format> {};

TEST_P(MutatedFile, NeverMakesTheCheckCrash) {
  std::mt19937 random(4711);
  for (const auto contents : {Plain, Texts, Chunks, TreeOfChunks, DenseAttributes}) {
    const std::string whole = Forge(GetParam(), contents);
    for (int i = 0; i < 200; ++i) {
      std::string mutant = whole;
      for (unsigned k = random() % 4 + 1; k > 0; --k) mutant[random() % mutant.size()] = static_cast<char>(random());
      const auto fault = FaultOf(mutant);
      EXPECT_STRNE(fault ? fault->what : "sound", "");
    }
  }
}

INSTANTIATE_TEST_SUITE_P(All, MutatedFile, ::testing::Values(kOldest, kLatest),
                         [](const auto& test) { return std::string(test.param.name); });

}  // namespace
