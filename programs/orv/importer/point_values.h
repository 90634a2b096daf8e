// The integration-point values of a .dat file, state by state.
#pragma once

#include <cstddef>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "frd/dat_reader.h"
#include "importer/quantity.h"

namespace orvio::program {

/// Values of one quantity at the points of elements that have equally many of them.
struct PointBlock {
  std::string element_type;
  int layers = 0;             ///< points per element
  std::vector<int> ids;       ///< of elements
  std::vector<float> values;  ///< ids x layers x components, row-major
  bool has_siblings = false;  ///< other elements of the type have another number of points
};

/// One quantity of a state.
struct PointQuantity {
  Quantity quantity;
  std::vector<PointBlock> blocks;
};

/// Hands out what a .dat file prints at a time. Its times have seven digits and those of a .frd file six.
class PointValues {
 public:
  /// `types` names the type of each element of the mesh by its id; it must outlive the object. With `partial` a table
  /// that is cut off ends the file.
  PointValues(std::filesystem::path path, const std::map<int, std::string>& types, bool partial);

  /// What was printed at the time of a state; times are asked for in the order of the file. Tables of one quantity for
  /// several element sets are joined, and an element counts once.
  std::vector<PointQuantity> At(double time);

  /// Tables that belong to no time asked for so far. Reads the file to its end.
  std::size_t CountLeftOver();

 private:
  bool Peek();
  std::vector<frd::PointResult> TakeTables(double time);
  const std::string& TypeOf(int element) const;
  void Add(const frd::PointResult& table, std::vector<PointQuantity>& quantities) const;

  std::filesystem::path path_;
  frd::DatReader reader_;
  const std::map<int, std::string>& types_;
  bool partial_;
  frd::PointResult next_;
  bool has_next_ = false;
  std::size_t left_over_ = 0;
};

}  // namespace orvio::program
