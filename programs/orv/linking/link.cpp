// The order of the work: the mesh, the arrays, and only then the sidecar, so that little is left to fail in the middle.

#include "linking/link.h"

#include <fmt/format.h>
#include <hdf5.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>

#include "linking/array_builder.h"
#include "linking/copied_rows.h"
#include "linking/mesh.h"
#include "linking/quantity.h"
#include "linking/sidecar.h"
#include "linking/topology.h"
#include "output_file.h"
#include "reading/words.h"
#include "trouble.h"

namespace orvio::program {
namespace {

namespace fs = std::filesystem;

// Reading one step takes HDF5 some 70 microseconds for each slab of the array and half a one for each run, be they of that
// step or not.
constexpr std::size_t kMostSlabs = 4000, kMostRuns = 100000;

fs::path FolderOf(const fs::path& path) { return path.has_parent_path() ? path.parent_path() : fs::path("."); }

/// The name of the result file as seen from the sidecar, so that both can be moved together.
std::string SourceName(const fs::path& file, const fs::path& out) {
  std::error_code error;
  if (fs::equivalent(FolderOf(file), FolderOf(out), error)) return file.filename().string();
  const fs::path relative = fs::relative(file, FolderOf(out), error);
  return error || relative.empty() ? fs::absolute(file).string() : relative.string();
}

/// Times are in order and none comes twice, or nobody could choose one.
bool AreInOrder(const std::vector<double>& times) {
  for (std::size_t i = 0; i < times.size(); ++i) {
    if (!std::isfinite(times[i]) || (i > 0 && times[i] <= times[i - 1])) return false;
  }
  return true;
}

class Linker {
 public:
  Linker(const fs::path& path, const fs::path& out) : file_(path.string()), out_(out) {
    report_.source = SourceName(path, out);
    std::error_code error;
    report_.source_bytes = fs::file_size(path, error);
  }

  LinkReport Run() {
    file_.LearnLaterResults(0);
    ReadSteps();
    Gather();
    OutputFile output(out_);
    Write(output.working_path());
    std::error_code error;
    report_.sidecar_bytes = fs::file_size(output.working_path(), error);
    output.Commit();
    return std::move(report_);
  }

 private:
  /// A file without states may have blocks that hold all of them; else it is a single picture.
  void ReadSteps() {
    mesh_ = ReadMesh(file_, file_.states());
    report_.left_out = mesh_.left_out;
    report_.notes = mesh_.notes;
    is_static_ = file_.states() == 0;
    if (is_static_) return ReadStepsOverStates();
    std::vector<std::vector<double>> index;
    for (int state = 1; state <= file_.states(); ++state) index.push_back(file_.IndexOf(state));
    FindTimes(index, file_.IndexNames());
  }

  void ReadStepsOverStates() {
    for (ORVResult* block : file_.filer().GetResultList(0)) {
      const std::vector<std::vector<double>> index = file_.IndexOver(*block);
      if (index.empty()) continue;
      is_static_ = false;
      mesh_.steps.resize(index.size(), mesh_.steps.front());
      mesh_.points.offsets.resize(index.size(), mesh_.points.offsets.front());
      return FindTimes(index, file_.IndexNames(index.front().size()));
    }
  }

  void FindTimes(const std::vector<std::vector<double>>& index, const std::vector<std::string>& names) {
    for (const char* word : {"TIME", "FREQUENCY"}) {
      const auto name = std::ranges::find_if(names, [&](const std::string& n) { return SameWord(n, word); });
      if (name == names.end()) continue;
      const auto column = static_cast<std::size_t>(name - names.begin());
      times_.clear();
      for (const std::vector<double>& row : index) times_.push_back(column < row.size() ? row[column] : NAN);
      report_.time = word;
      if (AreInOrder(times_)) return;
      Note(report_.notes,
           fmt::format("{} does not grow from state to state: steps have the numbers of the states", word));
    }
    times_.clear();
    for (std::size_t i = 1; i <= index.size(); ++i) times_.push_back(static_cast<double>(i));
    report_.time = "state number";
  }

  void Gather() {
    arrays_ = IdArrays(mesh_);
    ArrayBuilder builder(file_, mesh_, report_);
    for (const LinkedQuantity& quantity : FindQuantities(file_, mesh_, report_)) {
      for (LinkedArray& array : builder.Build(quantity)) arrays_.push_back(std::move(array));
    }
    std::set<std::pair<bool, std::string>> names;
    for (LinkedArray& array : arrays_) {
      const std::string name = array.name;
      for (int i = 2; !names.emplace(array.is_on_points, array.name).second; ++i)
        array.name = fmt::format("{}_{}", name, i);
    }
    LimitPieces(mesh_.points);
    for (LinkedArray& array : arrays_) LimitPieces(array);
  }

  /// Each state adds its share, so that many states in good order are no reason to copy.
  void LimitPieces(LinkedArray& array) const {
    const Pieces count = CountPieces(array);
    const bool is_fine = count.slabs <= std::max(kMostSlabs, 2 * array.pieces.size()) && count.runs <= kMostRuns;
    if (!array.why_copied.empty() || is_fine) return;
    array.why_copied = fmt::format("its ids are in another order, in {} runs", count.runs);
  }

  void Write(const std::string& path) {
    (void)H5Eset_auto2(H5E_DEFAULT, nullptr, nullptr);  // what fails is told in our own words
    Sidecar sidecar(path, out_.string(), report_.source);
    WriteMesh(sidecar);
    for (const char* group : {"PointData", "CellData"}) sidecar.AddGroup(group);
    for (const LinkedArray& array : arrays_) {
      WriteArray(sidecar, std::string(array.is_on_points ? "PointData/" : "CellData/") + array.name, array);
    }
    if (!is_static_) WriteSteps(sidecar);
    sidecar.Close();
    report_.points = mesh_.topologies[mesh_.steps.front().topology].points->rows();
    report_.cells = mesh_.topologies[mesh_.steps.front().topology].cells();
    report_.steps = is_static_ ? 0 : mesh_.steps.size();
    report_.meshes = mesh_.topologies.size();
  }

  void WriteMesh(Sidecar& sidecar) {
    std::vector<long long> points, cells, ids, connectivity, offsets;
    std::vector<std::uint8_t> types;
    for (const Topology& topology : mesh_.topologies) {
      first_cells_.push_back(static_cast<long long>(types.size()));
      first_ids_.push_back(static_cast<long long>(connectivity.size()));
      points.push_back(static_cast<long long>(topology.points->rows()));
      cells.push_back(static_cast<long long>(topology.cells()));
      ids.push_back(static_cast<long long>(topology.connectivity.size()));
      connectivity.insert(connectivity.end(), topology.connectivity.begin(), topology.connectivity.end());
      offsets.insert(offsets.end(), topology.offsets.begin(), topology.offsets.end());
      types.insert(types.end(), topology.cell_types.begin(), topology.cell_types.end());
    }
    sidecar.Write("NumberOfPoints", {points.size()}, points);
    sidecar.Write("NumberOfCells", {cells.size()}, cells);
    sidecar.Write("NumberOfConnectivityIds", {ids.size()}, ids);
    sidecar.Write("Connectivity", {connectivity.size()}, connectivity);
    sidecar.Write("Offsets", {offsets.size()}, offsets);
    sidecar.Write("Types", {types.size()}, types);
    WriteArray(sidecar, "Points", mesh_.points);
    report_.arrays.back().on = "mesh";
  }

  void WriteArray(Sidecar& sidecar, const std::string& name, const LinkedArray& array) {
    const bool is_integer = array.kind == NumberKind::kInt || array.kind == NumberKind::kLong;
    const bool is_mesh = &array == &mesh_.points;
    const double fill = is_integer || is_mesh ? 0 : std::numeric_limits<double>::quiet_NaN();
    ArrayReport report{array.name,      array.is_on_points ? "points" : "cells", array.components, array.rows, 0, 0,
                       array.why_copied};
    report.bytes = array.rows * array.components * SizeOf(array.kind);
    if (array.why_copied.empty()) {
      sidecar.WriteVirtual(name, array, fill);
      report.slabs = CountPieces(array).slabs;
    } else if (!array.numbers.empty()) {
      sidecar.Write(name, {array.numbers.size()}, array.numbers);
    } else {
      Sidecar::Rows rows = sidecar.StartRows(name, array);
      CopyRows(file_, array, fill,
               [&](hsize_t first, const std::vector<double>& values) { rows.Write(first, values); });
      rows.Close();
    }
    if (!array.why_copied.empty()) report_.copied_bytes += report.bytes;
    report_.arrays.push_back(std::move(report));
  }

  void WriteSteps(Sidecar& sidecar) {
    const std::size_t steps = mesh_.steps.size();
    std::vector<long long> parts, cells, ids;
    for (const Step& step : mesh_.steps) {
      parts.push_back(static_cast<long long>(step.topology));
      cells.push_back(first_cells_[step.topology]);
      ids.push_back(first_ids_[step.topology]);
    }
    sidecar.AddSteps(static_cast<std::int64_t>(steps));
    sidecar.Write("Steps/Values", {steps}, times_);
    sidecar.Write("Steps/PartOffsets", {steps}, parts);
    sidecar.Write("Steps/NumberOfParts", {steps}, std::vector<long long>(steps, 1));
    WriteOffsets(sidecar, "Steps/PointOffsets", mesh_.points);
    sidecar.Write("Steps/CellOffsets", {steps, 1}, cells);
    sidecar.Write("Steps/ConnectivityIdOffsets", {steps, 1}, ids);
    for (const char* group : {"Steps/PointDataOffsets", "Steps/CellDataOffsets"}) sidecar.AddGroup(group);
    for (const LinkedArray& array : arrays_) {
      const char* group = array.is_on_points ? "Steps/PointDataOffsets/" : "Steps/CellDataOffsets/";
      WriteOffsets(sidecar, group + array.name, array);
    }
  }

  static void WriteOffsets(Sidecar& sidecar, const std::string& name, const LinkedArray& array) {
    sidecar.Write(name, {array.offsets.size()}, std::vector<long long>(array.offsets.begin(), array.offsets.end()));
  }

  ResultFile file_;
  fs::path out_;
  Mesh mesh_;
  std::vector<double> times_;
  std::vector<LinkedArray> arrays_;
  std::vector<long long> first_cells_, first_ids_;  ///< of each mesh
  bool is_static_ = false;
  LinkReport report_;
};

}  // namespace

LinkReport LinkFile(const fs::path& file, const fs::path& out) {
  std::error_code error;
  if (fs::equivalent(file, out, error)) {
    throw Trouble(out.string(), "is the result file itself", "choose another name for the output");
  }
  return Linker(file, out).Run();
}

}  // namespace orvio::program
