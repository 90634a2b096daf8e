#include "linking/topology.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>

#include "linking/cell_type.h"
#include "reading/elements.h"
#include "reading/words.h"

namespace orvio::program {
namespace {

class TopologyReader {
 public:
  TopologyReader(ResultFile& file, const std::vector<long long>& node_ids, std::vector<LeftOut>& left_out,
                 std::vector<std::string>& notes)
      : file_(file), left_out_(left_out), notes_(notes) {
    const RowMap all(node_ids);
    topology_.node_ids = node_ids;
    if (all.rows() != node_ids.size()) DropTwins();
    topology_.points = std::make_shared<const RowMap>(topology_.node_ids);
    topology_.offsets = {0};
  }

  /// `state` is where the block stands; 0 for the constant section.
  void Add(const ORVEleConnectivity& header, int state, const std::string& node_type) {
    const std::string type = TextOf(header.m_etypelem);
    if (header.m_nele == 0) return;
    const std::string what = fmt::format("{} elements of {}", header.m_nele, type);
    const std::string nodes = TextOf(header.m_etypnode);
    if (!SameWord(nodes, node_type)) return Note(left_out_, {what, "their nodes are of another type: " + nodes});
    const std::optional<CellType> cell = FindCellType(type, header.m_ndim, header.m_npele);
    if (!cell) {
      return Note(left_out_,
                  {what, fmt::format("VTK has no cell for their {} nodes{}", header.m_npele,
                                     header.m_ndim < 0 ? "" : fmt::format(" in {} dimensions", header.m_ndim))});
    }
    if (!cell->shown_as.empty()) Note(notes_, what + " are shown as " + cell->shown_as);
    AddCells(header, state, *cell);
  }

  Topology Take() { return std::move(topology_); }

 private:
  /// Of nodes with the same id the first counts.
  void DropTwins() {
    RowMap known;
    std::vector<long long> ids;
    for (const long long id : topology_.node_ids) {
      if (known.At(id) != RowMap::kNone) continue;
      known.Add(id, ids.size());
      ids.push_back(id);
    }
    topology_.node_ids = std::move(ids);
  }

  void AddCells(const ORVEleConnectivity& header, int state, const CellType& cell) {
    const orv::Elements elements = std::move(ReadElements(file_.file(), TextOf(header.m_etypelem), state).at(0));
    CellBlock block{elements.type,
                    elements.family,
                    {elements.ids.begin(), elements.ids.end()},
                    {elements.parts.begin(), elements.parts.end()},
                    {},
                    nullptr,
                    nullptr};
    std::size_t lost = 0;
    for (std::size_t i = 0; i < elements.size(); ++i) {
      const std::int64_t* nodes = elements.nodes.data() + i * elements.nodes_per_element;
      const bool added = AddCell(nodes, cell);
      block.cells.push_back(added ? topology_.cells() - 1 : RowMap::kNone);
      if (!added) ++lost;
    }
    if (lost > 0)
      Note(left_out_, {fmt::format("{} elements of {}", lost, elements.type), "they have nodes without coordinates"});
    FindStored(header, block);
    topology_.blocks.push_back(std::move(block));
  }

  /// False, with nothing added, for a cell of unknown nodes.
  bool AddCell(const std::int64_t* nodes, const CellType& cell) {
    const bool is_triangle = cell.number == kVtkQuadrangle && (nodes[3] == 0 || nodes[3] == nodes[2]);
    const std::size_t count = is_triangle ? 3 : cell.order.size();
    const std::size_t before = topology_.connectivity.size();
    for (std::size_t i = 0; i < count; ++i) {
      const hsize_t point = topology_.points->At(nodes[cell.order[i]]);
      if (point == RowMap::kNone) {
        topology_.connectivity.resize(before);
        return false;
      }
      topology_.connectivity.push_back(static_cast<long long>(point));
    }
    topology_.cell_types.push_back(is_triangle ? kVtkTriangle : cell.number);
    topology_.offsets.push_back(static_cast<long long>(topology_.connectivity.size()));
    return true;
  }

  void FindStored(const ORVEleConnectivity& header, CellBlock& block) {
    SourceFile source(file_.path());
    const auto find = [&](const char* name) -> std::shared_ptr<const StoredArray> {
      std::optional<StoredArray> array = source.Find(header, 0, name);
      const std::vector<hsize_t> extents = {block.ids.size()};
      if (!array || !IsInteger(*array) || array->extents != extents) return nullptr;
      return std::make_shared<const StoredArray>(std::move(*array));
    };
    block.stored_ids = find("idele");
    block.stored_parts = find("pid");
  }

  ResultFile& file_;
  Topology topology_;
  std::vector<LeftOut>& left_out_;
  std::vector<std::string>& notes_;
};

/// An array of integers over all meshes, virtual if each of its lists is stored.
class IdArray {
 public:
  IdArray(const Mesh& mesh, std::string name, bool is_on_points) : mesh_(mesh) {
    array_.name = std::move(name);
    array_.is_on_points = is_on_points;
    array_.kind = NumberKind::kInt;
    array_.columns = {0};
  }

  /// The rows of a further mesh.
  void Begin(hsize_t rows) {
    starts_.push_back(array_.rows);
    array_.rows += rows;
    array_.numbers.resize(array_.rows);
  }

  void Add(const std::vector<long long>& numbers, const std::vector<hsize_t>& rows,
           const std::shared_ptr<const StoredArray>& stored) {
    Runs runs;
    for (std::size_t i = 0; i < rows.size(); ++i) {
      if (rows[i] == RowMap::kNone) continue;
      array_.numbers[starts_.back() + rows[i]] = numbers[i];
      Run* last = runs.list.empty() ? nullptr : &runs.list.back();
      const bool goes_on = last && last->from + last->count == i && last->to + last->count == rows[i];
      if (goes_on) {
        ++last->count;
      } else {
        runs.list.push_back({i, rows[i], 1});
      }
    }
    is_stored_ = is_stored_ && stored;
    if (!stored) return;
    if (stored->type == ORV_LONG) array_.kind = NumberKind::kLong;
    array_.pieces.push_back({stored, {0}, 0, -1, std::make_shared<const Runs>(std::move(runs)), starts_.back()});
  }

  LinkedArray Take() {
    for (const Step& step : mesh_.steps) array_.offsets.push_back(starts_[step.topology]);
    if (is_stored_) {
      array_.numbers.clear();
    } else {
      array_.kind = NumberKind::kLong;
      array_.pieces.clear();
      array_.why_copied = "ids are not stored as plain integers";
    }
    return std::move(array_);
  }

 private:
  const Mesh& mesh_;
  LinkedArray array_;
  std::vector<hsize_t> starts_;
  bool is_stored_ = true;
};

}  // namespace

RowMap Topology::CellsOf(const std::string& type) const {
  RowMap cells;
  for (const bool is_generic : {false, true}) {
    for (const CellBlock& block : blocks) {
      if (!SameWord(is_generic ? block.generic_type : block.type, type)) continue;
      for (std::size_t i = 0; i < block.ids.size(); ++i) {
        if (block.cells[i] != RowMap::kNone) cells.Add(block.ids[i], block.cells[i]);
      }
    }
  }
  return cells;
}

Topology ReadTopology(ResultFile& file, const std::vector<ORVEleConnectivity>& headers, int state,
                      const std::string& node_type, const std::vector<long long>& node_ids,
                      std::vector<LeftOut>& left_out, std::vector<std::string>& notes) {
  TopologyReader reader(file, node_ids, left_out, notes);
  for (const ORVEleConnectivity& header : headers) reader.Add(header, state, node_type);
  return reader.Take();
}

std::vector<LinkedArray> IdArrays(const Mesh& mesh) {
  IdArray nodes(mesh, "id", true), elements(mesh, "id", false), parts(mesh, "part", false);
  for (const Topology& topology : mesh.topologies) {
    nodes.Begin(topology.points->rows());
    elements.Begin(topology.cells());
    parts.Begin(topology.cells());
    std::vector<hsize_t> rows(topology.node_ids.size());
    for (std::size_t i = 0; i < rows.size(); ++i) rows[i] = i;
    nodes.Add(topology.node_ids, rows, topology.stored_node_ids);
    for (const CellBlock& block : topology.blocks) {
      elements.Add(block.ids, block.cells, block.stored_ids);
      parts.Add(block.parts, block.cells, block.stored_parts);
    }
  }
  std::vector<LinkedArray> arrays;
  arrays.push_back(nodes.Take());
  arrays.push_back(elements.Take());
  arrays.push_back(parts.Take());
  return arrays;
}

void Note(std::vector<LeftOut>& left_out, LeftOut entry) {
  if (std::ranges::find(left_out, entry) == left_out.end()) left_out.push_back(std::move(entry));
}

void Note(std::vector<std::string>& notes, const std::string& note) {
  if (std::ranges::find(notes, note) == notes.end()) notes.push_back(note);
}

}  // namespace orvio::program
