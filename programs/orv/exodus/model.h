// What an Exodus II file holds, as it stands there: nothing is renamed, reordered or put together.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace orvio::exodus {

/// A program that the file went through, in the order of time: the solver first, then what joined or changed its file.
struct QaRecord {
  std::string program, version, date, time;
};

struct Header {
  std::string title;
  std::vector<QaRecord> records;
  int dimension = 0;  ///< 1 to 3 coordinates per node
  int nodes = 0;
  int elements = 0;  ///< of all blocks, whatever their kind
};

/// Ids of nodes or elements. Everything else in a file names them by their positions, which count from 1.
struct IdMap {
  std::vector<int> ids;  ///< empty: the ids are the positions

  int IdAt(int position) const { return ids.empty() ? position : ids[static_cast<std::size_t>(position) - 1]; }
};

struct Nodes {
  IdMap ids;
  std::vector<double> coordinates;  ///< three per node, those the file does not have are 0
  bool is_double = false;           ///< whether the file itself holds doubles
};

/// Elements of one kind. Their positions follow on those of the block before it.
struct ElementBlock {
  int id = 0;
  std::string name;            ///< may be empty
  std::string type;            ///< "HEX8", "hex", "SHELL": the word that the solver chose
  int first = 1;               ///< position of its first element
  int elements = 0;            ///< 0 in a block that only reserves its id
  int nodes_per_element = 0;   ///< 0: polygons or polyhedra, whose numbers of nodes differ
  std::vector<int> positions;  ///< of nodes, elements x nodes_per_element, row-major
};

struct NodeSet {
  int id = 0;
  std::string name;            ///< may be empty
  std::vector<int> positions;  ///< of nodes
};

struct SideSet {
  int id = 0;
  std::string name;            ///< may be empty
  std::vector<int> positions;  ///< of elements
  std::vector<int> sides;      ///< of those elements, numbered as Exodus does, from 1
};

/// The variables of the model as a whole, of the nodes, of the elements or of the node sets.
struct Variables {
  std::vector<std::string> names;
  /// For each block or set which variables it has, as places in `names`, ascending. One entry for the model and for the nodes.
  std::vector<std::vector<std::size_t>> present;
};

/// One variable at one state, or one of the model at all states.
struct Values {
  std::vector<double> numbers;  ///< one per state, per node, per element of the block or per node of the set
  bool is_double = false;       ///< whether the file itself holds doubles; floats are kept without loss
};

}  // namespace orvio::exodus
