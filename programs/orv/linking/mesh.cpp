// The mesh state by state: coordinates and elements of a state stand in the place of those before.

#include "linking/mesh.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <string_view>
#include <tuple>

#include "linking/topology.h"
#include "reading/block_values.h"
#include "reading/file_model.h"
#include "reading/words.h"
#include "trouble.h"

namespace orvio::program {
namespace {

/// Coordinates as they stand in one place.
struct Coordinates {
  ORVResult* block = nullptr;
  int state = 0;
  std::vector<long long> ids;
  std::shared_ptr<const StoredArray> values, stored_ids;
};

std::shared_ptr<const StoredArray> Shared(std::optional<StoredArray> array) {
  return array ? std::make_shared<const StoredArray>(std::move(*array)) : nullptr;
}

/// Coordinates of the nodes that the others lack.
Runs Missing(const Runs& all, const Runs& others, hsize_t rows) {
  std::vector<bool> taken(rows);
  for (const Run& run : others.list) std::fill_n(taken.begin() + static_cast<std::ptrdiff_t>(run.to), run.count, true);
  Runs missing;
  for (const Run& run : all.list) {
    for (hsize_t i = 0; i < run.count; ++i) {
      if (taken[run.to + i]) continue;
      Run* last = missing.list.empty() ? nullptr : &missing.list.back();
      const bool goes_on = last && last->to + last->count == run.to + i && last->from + last->count == run.from + i;
      if (goes_on) {
        ++last->count;
      } else {
        missing.list.push_back({run.from + i, run.to + i, 1});
      }
    }
  }
  return missing;
}

hsize_t CountOf(const Runs& runs) {
  hsize_t count = 0;
  for (const Run& run : runs.list) count += run.count;
  return count;
}

class MeshReader {
 public:
  explicit MeshReader(ResultFile& file) : file_(file) {}

  Mesh Read(int states) {
    TakeElements(0);
    for (int state = 1; state <= states && elements_.empty(); ++state) TakeElements(state);
    mesh_.node_type = elements_.empty() ? "NODE" : TextOf(elements_.front().m_etypnode);
    FindBlocks();
    StartPoints();
    if (constant_) constant_coordinates_ = ReadAt(*constant_, 0);
    TakeElements(0);
    if (states == 0) AddStep(0);
    for (int state = 1; state <= states; ++state) AddStep(state);
    if (!mesh_.points.merged.empty()) mesh_.points.why_copied = "coordinates hold changes alone in some states";
    return std::move(mesh_);
  }

 private:
  /// False where a state has none of its own: then those before it hold.
  bool TakeElements(int state) {
    std::vector<ORVEleConnectivity> own = ReadElementHeaders(file_.path(), state);
    if (own.empty() && state > 0) return false;
    elements_ = std::move(own);
    elements_state_ = state;
    return true;
  }

  void FindBlocks() {
    for (ORVResult* block : file_.filer().GetResultList(1)) {
      if (!IsCoordinates(*block, mesh_.node_type)) continue;
      ORVResult*& place = block->IsConstantBlk() ? constant_ : moving_;
      if (!place) place = block;
    }
    if (constant_ && !moving_) {
      moving_ = Assume(*constant_, "/post/constant/", "/post/singlestate/state000000000001/");
    } else if (moving_ && !constant_) {
      constant_ = Assume(*moving_, moving_->GetBlkPath().substr(0, kStatePlace), "/post/constant/");
      if (file_.CountAt(*constant_, 0) < 1) constant_ = nullptr;
    }
    if (constant_ || moving_) return;
    throw Trouble(file_.path(), fmt::format("has no coordinates of {}", mesh_.node_type),
                  "without them there is nothing to show; orv info tells what it has");
  }

  static constexpr std::size_t kStatePlace = std::string_view("/post/singlestate/state000000000001/").size();

  /// Of a result that is in the constant section as well as in states the library may list one block alone. This is the
  /// other, which stands at the same path below its place.
  ORVResult* Assume(const ORVResult& known, std::string_view place, std::string_view other) {
    const std::string& path = known.GetBlkPath();
    mesh_.assumed_coordinates = std::make_shared<ORVResult>(known);
    mesh_.assumed_coordinates->SetConstantBlk(!known.IsConstantBlk());
    if (path.starts_with(place)) {
      mesh_.assumed_coordinates->SetBlkPath(std::string(other) + path.substr(place.size()));
    }
    return mesh_.assumed_coordinates.get();
  }

  void StartPoints() {
    const ORVResult& block = constant_ ? *constant_ : *moving_;
    LinkedArray& points = mesh_.points;
    points.name = "Points";
    points.variable = TextOf(block.m_etypvar);
    points.components = 3;
    for (hsize_t i = 0; i < static_cast<hsize_t>(block.m_ncoo); ++i) points.columns.push_back(i);
  }

  Coordinates ReadAt(ORVResult& block, int state) {
    Coordinates read{&block, state, {}, nullptr, nullptr};
    {
      SourceFile source(file_.path());
      read.values = Shared(source.Find(block, state, "res"));
      read.stored_ids = Shared(source.Find(block, state, "entid"));
    }
    const auto count = static_cast<hsize_t>(file_.CountAt(block, state));
    const bool fits = read.values && IsReal(*read.values) && read.values->extents.size() == 2 &&
                      read.values->extents[0] >= count && read.values->extents[1] >= mesh_.points.columns.size();
    if (!fits) RefuseBlock(file_, block);
    read.ids = ReadIds(file_, block, state, static_cast<std::size_t>(count));
    const bool are_plain =
        read.stored_ids && IsInteger(*read.stored_ids) && read.stored_ids->extents == std::vector{count};
    if (!are_plain) read.stored_ids = nullptr;
    return read;
  }

  /// The coordinates of a state: its own, the constant ones, else those before.
  void AddStep(int state) {
    const bool has_elements = state > 0 && TakeElements(state);
    const bool moves = moving_ && state > 0 && file_.CountAt(*moving_, state) > 0;
    if (moves && file_.IsIncremental(*moving_, state) && !mesh_.topologies.empty())
      return AddMerged(state, has_elements);
    std::optional<Coordinates> read;
    if (moves) read = ReadAt(*moving_, state);
    if (!moves && constant_) read = constant_coordinates_;
    if (!read && last_) read = last_;
    if (!read) read = FirstOf(state);
    Place(*read, state, has_elements);
    last_ = std::move(read);
  }

  /// States before the first one with coordinates have those.
  Coordinates FirstOf(int state) {
    while (state <= file_.states() && file_.CountAt(*moving_, state) < 1) ++state;
    if (state > file_.states()) RefuseBlock(file_, *moving_);
    return ReadAt(*moving_, state);
  }

  void AddMerged(int state, bool has_elements) {
    if (has_elements) AddTopology(mesh_.topologies.back().node_ids, mesh_.topologies.back().stored_node_ids);
    const Topology& topology = mesh_.topologies.back();
    mesh_.steps.push_back({state, mesh_.topologies.size() - 1});
    mesh_.points.merged.push_back({moving_, state, 0, topology.points, mesh_.points.rows});
    Advance();
  }

  void Place(const Coordinates& read, int state, bool has_elements) {
    if (mesh_.topologies.empty() || has_elements || !Fits(read)) {
      const bool is_whole = !constant_ || read.state == 0 || !IsPartOf(read.ids, constant_coordinates_->ids);
      const Coordinates& all = is_whole ? read : *constant_coordinates_;
      AddTopology(all.ids, all.stored_ids);
    }
    const std::size_t topology = mesh_.topologies.size() - 1;
    mesh_.steps.push_back({state, topology});
    const auto [place, is_new] = placed_.try_emplace({read.block, read.state, topology}, mesh_.points.rows);
    if (!is_new) return mesh_.points.offsets.push_back(place->second);
    const RowMap& rows = *mesh_.topologies.back().points;
    const auto runs = std::make_shared<const Runs>(FindRuns(read.ids, rows));
    AddPiece(read, runs);
    if (CountOf(*runs) < rows.rows() && constant_ && read.state != 0) {
      const Runs all = FindRuns(constant_coordinates_->ids, rows);
      AddPiece(*constant_coordinates_, std::make_shared<const Runs>(Missing(all, *runs, rows.rows())));
    }
    Advance();
  }

  void AddPiece(const Coordinates& read, SharedRuns runs) {
    if (read.values->type == ORV_DOUBLE) mesh_.points.kind = NumberKind::kDouble;
    mesh_.points.pieces.push_back({read.values, {0, 0}, 0, 1, std::move(runs), mesh_.points.rows});
  }

  void Advance() {
    mesh_.points.offsets.push_back(mesh_.points.rows);
    mesh_.points.rows += mesh_.topologies.back().points->rows();
  }

  void AddTopology(const std::vector<long long>& node_ids, const std::shared_ptr<const StoredArray>& stored_ids) {
    Topology topology =
        ReadTopology(file_, elements_, elements_state_, mesh_.node_type, node_ids, mesh_.left_out, mesh_.notes);
    const bool has_twins = topology.points->rows() != node_ids.size();
    topology.stored_node_ids = has_twins ? nullptr : stored_ids;
    mesh_.topologies.push_back(std::move(topology));
  }

  static bool IsPartOf(const std::vector<long long>& ids, const std::vector<long long>& all) {
    return FindRuns(ids, RowMap(all)).strangers == 0;
  }

  /// Whether the nodes are those of the last mesh, or a part of them beside constant ones.
  bool Fits(const Coordinates& read) const {
    const Topology& last = mesh_.topologies.back();
    if (last.node_ids == read.ids) return true;
    const Runs runs = FindRuns(read.ids, *last.points);
    return runs.strangers == 0 && (constant_ || CountOf(runs) == last.points->rows());
  }

  ResultFile& file_;
  Mesh mesh_;
  ORVResult* constant_ = nullptr;
  ORVResult* moving_ = nullptr;
  std::optional<Coordinates> constant_coordinates_, last_;
  std::vector<ORVEleConnectivity> elements_;
  int elements_state_ = 0;  ///< where they stand; 0: in the constant section
  std::map<std::tuple<const ORVResult*, int, std::size_t>, hsize_t> placed_;
};

}  // namespace

bool IsCoordinates(const ORVResult& block, const std::string& node_type) {
  const bool is_plain = block.IsEntityResult() && !block.IsComplexBlk() && !block.IsMultistateBlk();
  return is_plain && block.m_ncoo >= 1 && block.m_ncoo <= 3 && SameWord(TextOf(block.m_etypvar), "COORDINATE") &&
         SameWord(TextOf(block.m_etyp), node_type);
}

Mesh ReadMesh(ResultFile& file, int states) { return MeshReader(file).Read(states); }

}  // namespace orvio::program
