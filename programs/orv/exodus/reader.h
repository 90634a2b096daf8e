// Reads an Exodus II file: a mesh with results in a netCDF file.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "exodus/error.h"
#include "exodus/model.h"
#include "exodus/netcdf_file.h"

namespace orvio::exodus {

/// One file. The operations may be called in any order and any number of times, and hold no more of the file than they
/// answer: one variable at one state at most.
///
/// Everything that is wrong with the file is thrown as Error, which says where and what. Checked is all that the file
/// itself refers to: nodes and elements by their positions, variables by their shapes. Not checked, because real files
/// have it: ids that occur twice, the title, values that are not finite.
class Reader {
 public:
  /// Counts states and nodes; fails for what is no Exodus file.
  explicit Reader(const std::filesystem::path& path);

  Header ReadHeader() const;
  Nodes ReadNodes() const;
  IdMap ReadElementIds() const;
  /// Blocks of all kinds, in the order of the file, which is that of the elements.
  std::vector<ElementBlock> ReadBlocks() const;
  std::vector<NodeSet> ReadNodeSets() const;
  std::vector<SideSet> ReadSideSets() const;

  /// States that are there in full.
  int states() const { return states_; }
  /// States that the file announces.
  int announced_states() const { return announced_states_; }
  /// Whether that is the same. If not, the file was cut off.
  bool complete() const { return states_ == announced_states_; }
  /// Value of time of a state, which counts from 0.
  double ReadTime(int state) const;

  /// Of the model as a whole: one entry.
  Variables ReadGlobalVariables() const;
  /// An entry for all nodes.
  Variables ReadNodalVariables() const;
  /// An entry per block.
  Variables ReadElementVariables() const;
  /// An entry per node set.
  Variables ReadNodeSetVariables() const;

  /// One value per state, of the variable at a place in the list of names.
  Values ReadGlobal(std::size_t variable) const;
  /// The values at a state of the variable at a place in the list of names. Blocks and sets count from 0.
  Values ReadNodal(std::size_t variable, int state) const;
  Values ReadElements(std::size_t variable, std::size_t block, int state) const;
  Values ReadNodeSet(std::size_t variable, std::size_t set, int state) const;

 private:
  int ReadDimension() const;
  std::vector<std::string> ReadNames(const std::string& variable, int count) const;
  std::vector<int> ReadIds(const std::string& variable, int count) const;
  IdMap ReadIdMap(const std::string& variable, int count) const;
  std::vector<int> ReadPositions(const std::string& variable, const Shape& shape, int most, const char* of) const;
  std::vector<int> ReadSides(const std::string& variable, int count) const;
  ElementBlock ReadBlock(std::size_t block, int first) const;
  Variables ReadVariablesOfAll(const std::string& kind) const;
  Variables ReadVariables(const std::string& kind, const std::string& place, const std::vector<int>& sizes) const;
  Values ReadAtState(const Variable& variable, int state, const Shape& start, const Shape& count) const;
  Values ReadOfPlace(const std::string& variable, int count, int state) const;

  NetcdfFile file_;
  int nodes_ = 0, elements_ = 0;
  int announced_states_ = 0, states_ = 0;
};

}  // namespace orvio::exodus
