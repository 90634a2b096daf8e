#pragma once

// The model that the bench writes and looks for. Every number follows from where it stands, so that who looks at a file
// needs neither its writer nor a copy.

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace orvio::faults {

/// How a file is written: in the split or the single layout of blocks, its values packed with three digits or not.
struct Form {
  bool split = false;
  bool packed = false;
};
inline constexpr Form kForms[] = {{false, false}, {true, false}, {false, true}, {true, true}};
const char* NameOf(Form form);

inline constexpr int kNodes = 1000;
inline constexpr int kQuads = 200;
inline constexpr int kDigits = 3;

/// The result blocks of a state, in the order in which they are written.
struct BlockRow {
  const char* variable;
  int components;
};
inline constexpr std::array<BlockRow, 2> kBlocks = {{{"Temperature", 1}, {"Velocity", 3}}};
inline constexpr int kBlockCount = static_cast<int>(kBlocks.size());
inline constexpr char kNodeType[] = "NODE", kQuadType[] = "QUAD4";

/// What tells states that were written at different times apart: generation 0 is there from the beginning or is what a
/// fault meets, 1 what is appended afterwards.
using Generation = int;

float ValueOf(int block, Generation generation, int state, int node, int component);
std::vector<float> ValuesOf(int block, Generation generation, int state);
inline int IdOf(int node) { return 3 * node + 5; }
std::vector<int> NodeIds();
inline float TimeOf(int state) { return .5F * static_cast<float>(state); }
inline int IdentOf(int state) { return 7 * state; }
/// The nodes of the quads, four each.
std::vector<int> QuadNodes();

// Where HDF5 finds it.
std::string StateGroup(int state);  ///< the name of the group alone
std::string BlockGroup(int block);  ///< below the state
std::string PartOf(const std::string& block, const char* part, Form form);

}  // namespace orvio::faults
