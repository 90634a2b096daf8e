// Exodus files that are cut off, lie about their counts or are none at all: an Error that says where and what, and never
// more memory than the file is large.

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <fstream>
#include <functional>

#include "exodus/reader.h"
#include "program/exodus_forge.h"
#include "program/run_program.h"

namespace {

using namespace orvio::exodus;
using namespace exodus_forge;
using testing::HasSubstr;
using testing::StartsWith;

struct Outcome {
  std::string error;  // empty: none
  int states = 0;
  bool complete = false;
  std::size_t values = 0;
};

void ReadValues(const Reader& reader, Outcome& outcome) {
  const Variables nodal = reader.ReadNodalVariables();
  const Variables of_elements = reader.ReadElementVariables();
  const Variables of_sets = reader.ReadNodeSetVariables();
  for (int state = 0; state < reader.states(); ++state) {
    (void)reader.ReadTime(state);
    for (std::size_t v = 0; v < nodal.names.size(); ++v) outcome.values += reader.ReadNodal(v, state).numbers.size();
    for (std::size_t block = 0; block < of_elements.present.size(); ++block) {
      for (const std::size_t v : of_elements.present[block]) {
        outcome.values += reader.ReadElements(v, block, state).numbers.size();
      }
    }
    for (std::size_t set = 0; set < of_sets.present.size(); ++set) {
      for (const std::size_t v : of_sets.present[set]) {
        outcome.values += reader.ReadNodeSet(v, set, state).numbers.size();
      }
    }
  }
}

Outcome ReadAll(const std::string& path) {
  Outcome outcome;
  try {
    const Reader reader(path);
    outcome.states = reader.states();
    outcome.complete = reader.complete();
    (void)reader.ReadHeader();
    (void)reader.ReadNodes();
    (void)reader.ReadElementIds();
    (void)reader.ReadBlocks();
    (void)reader.ReadNodeSets();
    (void)reader.ReadSideSets();
    ReadValues(reader, outcome);
  } catch (const Error& error) {
    outcome.error = error.what();
  }
  return outcome;
}

class ExodusDamage : public orv_test::ProgramTest {
 protected:
  std::string ErrorOf(const ForgedExodus& file, int form = NC_64BIT_OFFSET) const {
    return ReadAll(file.Write(TempPath("run.e"), form)).error;
  }

  Outcome ReadBytes(const std::string& bytes) const { return ReadAll(WriteFile("bytes.e", bytes)); }

  std::string SmallBytes() const { return orv_test::BytesOf(SmallExodus().Write(TempPath("small.e"))); }
};

// ---- No Exodus file

TEST_F(ExodusDamage, OfTheWholeFileIsTold) {
  EXPECT_EQ(ReadAll(TempPath("none.e")).error, "cannot be opened: No such file or directory");
  EXPECT_EQ(ReadAll(TempPath("")).error, "is a directory, not a file");
  ASSERT_EQ(mkfifo(TempPath("pipe").c_str(), 0600), 0);
  EXPECT_EQ(ReadAll(TempPath("pipe")).error, "is not a regular file");
  EXPECT_THAT(ReadBytes("").error, StartsWith("is not an Exodus file: "));
  EXPECT_THAT(ReadBytes("words and no numbers").error, StartsWith("is not an Exodus file: "));
}

TEST_F(ExodusDamage, OtherFilesOfNetcdfAreNoExodusFiles) {
  ForgedExodus file;
  file.dimension("latitude", 3).doubles("temperature", {"latitude"}, {1, 2, 3});
  EXPECT_EQ(ErrorOf(file), "is not an Exodus file: num_dim is missing");
}

TEST_F(ExodusDamage, FourDimensionsAreTooMany) {
  EXPECT_EQ(ErrorOf(SmallExodus().dimension("num_dim", 4)), "num_dim: 4 dimensions are too many");
}

// ---- Cut off

/// The library of netCDF would read zeros where bytes are missing.
TEST_F(ExodusDamage, OfAFileCutAnywhereIsNoticed) {
  const std::string bytes = SmallBytes();
  ASSERT_TRUE(ReadBytes(bytes).complete);
  constexpr std::size_t kState = 8 * (1 + 40 + 8 + 4 + 2);  // bytes of a state's values
  const std::size_t mesh = bytes.size() - 2 * kState;
  for (std::size_t size = 0; size < bytes.size(); size += size + 100 < mesh ? 7 : 1) {
    const Outcome outcome = ReadBytes(bytes.substr(0, size));
    EXPECT_FALSE(outcome.complete) << size;
    EXPECT_EQ(outcome.error.empty(), size >= mesh) << size << ": " << outcome.error;
    EXPECT_EQ(outcome.states, size >= mesh + kState ? 1 : 0) << size;
    EXPECT_EQ(outcome.values, size >= mesh + kState ? 54U : 0U) << size;
  }
}

TEST_F(ExodusDamage, OfACutMeshTellsHowMuchIsMissing) {
  const std::string bytes = SmallBytes();
  const std::string error = ReadBytes(bytes.substr(0, bytes.size() - 1000)).error;
  EXPECT_EQ(error, "was cut off: " + std::to_string(bytes.size() - 1000) + " bytes of at least " +
                       std::to_string(bytes.size() - 880) + " are there");
}

// ---- Counts

TEST_F(ExodusDamage, OfBitsAllOverTheFileNeverCrashes) {
  std::string bytes = SmallBytes();
  for (std::size_t i = 0; i < bytes.size(); i += 3) {  // comes by each byte of numbers of four and eight
    const char flip = i % 2 == 0 ? '\x01' : '\x80';
    bytes[i] ^= flip;
    const Outcome outcome = ReadBytes(bytes);
    EXPECT_LE(outcome.values, bytes.size());
    bytes[i] ^= flip;
  }
}

TEST_F(ExodusDamage, CountsThatNothingStandsBehindCostNothing) {
  // Nodes, elements, blocks and states without end; none of their variables.
  constexpr std::size_t kMany = 2000000000;
  ForgedExodus file;
  file.dimension("num_dim", 3).dimension("num_nodes", kMany);
  EXPECT_EQ(ErrorOf(file), "coordx: is missing");
  file = SmallExodus();
  EXPECT_EQ(ErrorOf(file.drop("elem_num_map").dimension("num_elem", kMany)),
            "num_elem: 2000000000 elements, but the blocks have 3");
  file = ForgedExodus();
  file.dimension("num_dim", 3).dimension("num_el_blk", kMany).dimension("num_elem", 1);
  file.dimension("num_nodes", 1);
  for (const char* axis : {"coordx", "coordy", "coordz"}) file.doubles(axis, {"num_nodes"}, {0});
  EXPECT_EQ(ErrorOf(file), "eb_prop1: is missing");
  file.dimension("num_node_sets", kMany).drop("num_el_blk").drop("num_elem");
  EXPECT_EQ(ErrorOf(file), "ns_prop1: is missing");
  file.drop("num_node_sets").dimension("num_nod_var", kMany);
  EXPECT_EQ(ErrorOf(file), "name_nod_var: is missing");
}

TEST_F(ExodusDamage, SizesBeyondTheFileAreNoticed) {
  std::string bytes = SmallBytes();
  const std::size_t name = bytes.find("num_nodes");
  ASSERT_NE(name, std::string::npos);
  bytes.replace(name + 12, 4, std::string("\x70\x00\x00\x00", 4));
  EXPECT_THAT(ReadBytes(bytes).error, StartsWith("was cut off: "));
}

/// The library of netCDF believes what a header says: it would allocate for these counts, or write behind its tables.
TEST_F(ExodusDamage, OfAHeaderIsNoticedBeforeItIsBelieved) {
  const std::string bytes = SmallBytes();
  const std::string wrong_header = "is not a whole file: its header is damaged or cut off";
  const std::size_t dimensions = 8, variables = bytes.find(std::string("\0\0\0\x0b\0\0\0", 7));
  ASSERT_NE(variables, std::string::npos);
  const auto error_with = [&](std::size_t place, const std::string& changed) {
    std::string damaged = bytes;
    return ReadBytes(damaged.replace(place, changed.size(), changed)).error;
  };
  EXPECT_EQ(error_with(dimensions, std::string("\0\0\0\x0b", 4)), wrong_header);  // a list of another kind
  EXPECT_EQ(error_with(dimensions + 4, "\x7f\xff\xff\xff"), wrong_header);        // entries
  EXPECT_EQ(error_with(dimensions + 8, "\x7f\xff\xff\xff"), wrong_header);        // letters of a name
  EXPECT_EQ(error_with(variables + 4, "\x7f\xff\xff\xff"), wrong_header);
  const std::size_t name = bytes.find("coordx", variables);
  ASSERT_NE(name, std::string::npos);
  EXPECT_EQ(error_with(name + 8, "\x7f\xff\xff\xff"), wrong_header);             // axes
  EXPECT_EQ(error_with(name + 12, "\x7f\xff\xff\xff"), wrong_header);            // a dimension
  EXPECT_EQ(error_with(name + 24, std::string("\0\0\0\x63", 4)), wrong_header);  // a type
  EXPECT_EQ(ReadBytes(bytes.substr(0, 100)).error, wrong_header);
}

TEST_F(ExodusDamage, CountsBeyondIntAreNoticed) {
  ForgedExodus file;
  file.dimension("num_dim", 3).dimension("num_nodes", 3000000000);
  EXPECT_EQ(ErrorOf(file), "num_nodes: 3000000000 are more than can be imported");
}

TEST_F(ExodusDamage, StatesWithoutTimesAreNoticed) {
  EXPECT_EQ(ErrorOf(SmallExodus().drop("time_whole")), "time_whole: is missing");
}

// ---- What refers to something else

struct Wrong {
  std::function<void(ForgedExodus&)> change;
  const char* error;
};

class WrongExodus : public ExodusDamage, public testing::WithParamInterface<Wrong> {};

TEST_P(WrongExodus, IsNoticed) {
  ForgedExodus file = SmallExodus();
  GetParam().change(file);
  EXPECT_EQ(ErrorOf(file), GetParam().error);
}

const Wrong kPositions[] = {
    {[](ForgedExodus& f) {
       f.integers("connect2", {"num_el_in_blk2", "num_nod_per_el2"}, {5, 6, 7, 8, 6, 9, 11, 7});
     },
     "connect2, row 2: 11 is none of the 10 nodes"},
    {[](ForgedExodus& f) {
       f.integers("connect1", {"num_el_in_blk1", "num_nod_per_el1"}, {0, 2, 3, 4, 5, 6, 7, 8});
     },
     "connect1, row 1: 0 is none of the 10 nodes"},
    {[](ForgedExodus& f) {
       f.integers("connect1", {"num_el_in_blk1", "num_nod_per_el1"}, {-1, 2, 3, 4, 5, 6, 7, 8});
     },
     "connect1, row 1: -1 is none of the 10 nodes"},
    {[](ForgedExodus& f) {
       f.integers("node_ns1", {"num_nod_ns1"}, {4, 11});
     },
     "node_ns1, row 2: 11 is none of the 10 nodes"},
    {[](ForgedExodus& f) {
       f.integers("elem_ss1", {"num_side_ss1"}, {4, 1});
     },
     "elem_ss1, row 1: 4 is none of the 3 elements"},
    {[](ForgedExodus& f) {
       f.integers("side_ss1", {"num_side_ss1"}, {2, 0});
     },
     "side_ss1, row 2: 0 is no side of an element"},
};
INSTANTIATE_TEST_SUITE_P(Positions, WrongExodus, testing::ValuesIn(kPositions));

const Wrong kShapes[] = {
    {[](ForgedExodus& f) {
       f.doubles("coordy", {"num_elem"}, {0, 0, 0});
     },
     "coordy: 3 where 10 are expected"},
    {[](ForgedExodus& f) {
       f.integers("node_num_map", {"num_elem"}, {1, 2, 3});
     },
     "node_num_map: 3 where 10 are expected"},
    {[](ForgedExodus& f) { f.integers("elem_num_map", {"num_nodes"}, {}); }, "elem_num_map: 10 where 3 are expected"},
    {[](ForgedExodus& f) { f.integers("eb_prop1", {}, {1}); }, "eb_prop1: 1 number where 2 are expected"},
    {[](ForgedExodus& f) { f.texts("eb_names", {"len_name"}, {"solid"}); },
     "eb_names: 33 where 2 rows of characters are expected"},
    {[](ForgedExodus& f) {
       f.integers("connect2", {"num_nod_per_el2", "num_el_in_blk2"}, {});
     },
     "connect2: 4 x 2 where 2 x 4 are expected"},
    {[](ForgedExodus& f) {
       f.integers("node_ns1", {"num_elem"}, {1, 2, 3});
     },
     "node_ns1: 3 where 2 are expected"},
    {[](ForgedExodus& f) {
       f.integers("side_ss1", {"num_elem"}, {1, 2, 3});
     },
     "side_ss1: 3 where 2 are expected"},
    {[](ForgedExodus& f) {
       f.doubles("time_whole", {"num_elem"}, {0, 0, 0});
     },
     "time_whole: 3 where 2 are expected"},
    {[](ForgedExodus& f) {
       f.texts("name_nod_var", {"num_elem", "len_name"}, {});
     },
     "name_nod_var: 3 x 33 where 4 rows of characters are expected"},
    {[](ForgedExodus& f) {
       f.doubles("vals_nod_var2", {"time_step", "num_elem"}, {});
     },
     "vals_nod_var2: 2 x 3 where 2 x 10 are expected"},
    {[](ForgedExodus& f) {
       f.doubles("vals_nod_var", {"time_step", "num_elem", "num_nodes"}, {});
     },
     "vals_nod_var: 2 x 3 x 10 where 2 x 4 x 10 are expected"},
    {[](ForgedExodus& f) {
       f.integers("elem_var_tab", {"num_elem_var", "num_el_blk"}, {});
     },
     "elem_var_tab: 9 x 2 where 2 x 9 are expected"},
    {[](ForgedExodus& f) { f.doubles("vals_elem_var8eb2", {"num_el_in_blk2"}, {}); },
     "vals_elem_var8eb2: 2 where 2 x 2 are expected"},
    {[](ForgedExodus& f) {
       f.doubles("vals_nset_var1ns1", {"time_step", "num_nodes"}, {});
     },
     "vals_nset_var1ns1: 2 x 10 where 2 x 2 are expected"},
};
INSTANTIATE_TEST_SUITE_P(Shapes, WrongExodus, testing::ValuesIn(kShapes));

const Wrong kMissing[] = {
    {[](ForgedExodus& f) { f.drop("coordz"); }, "coordz: is missing"},
    {[](ForgedExodus& f) { f.drop("eb_prop1"); }, "eb_prop1: is missing"},
    {[](ForgedExodus& f) { f.drop("ss_prop1"); }, "ss_prop1: is missing"},
    {[](ForgedExodus& f) { f.drop("connect1"); }, "connect1: is missing"},
    {[](ForgedExodus& f) { f.drop("connect1").drop("num_nod_per_el1").integers("connect1", {"num_el_in_blk1"}, {1}); },
     "connect1: elements without nodes"},
    {[](ForgedExodus& f) { f.drop("node_ns2"); }, "node_ns2: is missing"},
    {[](ForgedExodus& f) { f.drop("side_ss1"); }, "side_ss1: is missing"},
    {[](ForgedExodus& f) { f.drop("name_elem_var"); }, "name_elem_var: is missing"},
    {[](ForgedExodus& f) { f.drop("vals_nod_var3"); }, "vals_nod_var3: is missing"},
    {[](ForgedExodus& f) { f.drop("vals_elem_var9eb2"); }, "vals_elem_var9eb2: is missing"},
    {[](ForgedExodus& f) { f.drop("vals_nset_var1ns1"); }, "vals_nset_var1ns1: is missing"},
};
INSTANTIATE_TEST_SUITE_P(Missing, WrongExodus, testing::ValuesIn(kMissing));

const Wrong kKinds[] = {
    {[](ForgedExodus& f) { f.retype("coordx", NC_INT); }, "coordx: integers where floating-point numbers are expected"},
    {[](ForgedExodus& f) { f.retype("connect1", NC_DOUBLE); },
     "connect1: floating-point numbers where integers are expected"},
    {[](ForgedExodus& f) { f.retype("time_whole", NC_INT); },
     "time_whole: integers where floating-point numbers are expected"},
    {[](ForgedExodus& f) {
       f.integers("eb_names", {"num_el_blk", "len_name"}, {});
     },
     "eb_names: integers where characters are expected"},
    {[](ForgedExodus& f) { f.texts("elem_num_map", {"num_elem"}, {"abc"}); },
     "elem_num_map: characters where integers are expected"},
};
INSTANTIATE_TEST_SUITE_P(Kinds, WrongExodus, testing::ValuesIn(kKinds));

TEST_F(ExodusDamage, IdsBeyondIntAreRefused) {
  ForgedExodus file = SmallExodus();
  file.variable("node_num_map", NC_INT64, {"num_nodes"}, {1, 2, 3, 4, 5, 6, 7, 8, 9, 3000000000});
  EXPECT_EQ(ErrorOf(file, NC_64BIT_DATA),
            "node_num_map: holds a number beyond 2147483647, the largest that can be imported");
}

TEST_F(ExodusDamage, ElementsThatTheBlocksDoNotHaveAreNoticed) {
  EXPECT_EQ(ErrorOf(SmallExodus().drop("elem_num_map").dimension("num_elem", 4)),
            "num_elem: 4 elements, but the blocks have 3");
  EXPECT_EQ(ErrorOf(SmallExodus().drop("elem_num_map").dimension("num_elem", 2)),
            "num_elem: 2 elements, but the blocks have at least 3");
  EXPECT_EQ(ErrorOf(SmallExodus().drop("elem_num_map").drop("num_elem")),
            "num_elem: 0 elements, but the blocks have at least 1");
}

TEST_F(ExodusDamage, OddVariablesWithoutATableArePassedOver) {
  ForgedExodus file = SmallExodus().drop("elem_var_tab").drop("nset_var_tab");
  for (const char* name : {"vals_elem_var0eb1", "vals_elem_var10eb1", "vals_elem_var1eb3", "vals_elem_var1eb",
                           "vals_elem_vareb1", "vals_elem_var1eb1x", "vals_elem_var99999999999999999999eb1"}) {
    file.doubles(name, {"num_elem"}, {});
  }
  const Outcome outcome = ReadAll(file.Write(TempPath("run.e")));
  EXPECT_EQ(outcome.error, "");
  EXPECT_EQ(outcome.values, 108U);
}

}  // namespace
