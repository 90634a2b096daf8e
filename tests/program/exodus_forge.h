// Makes Exodus files for the tests of their reader with the netCDF library alone: nothing here knows the code under
// test. Files are of the classic forms: the other is HDF5's.
#pragma once

#include <gtest/gtest.h>
#include <netcdf.h>

#include <algorithm>
#include <cstddef>
#include <map>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace exodus_forge {

/// What a file shall hold; it is written as a whole. Calls return *this.
class ForgedExodus {
 public:
  using Names = std::vector<std::string>;

  /// Also changes a dimension; 0 for records without end.
  ForgedExodus& dimension(const std::string& name, std::size_t length) {
    const auto found = std::find_if(dimensions_.begin(), dimensions_.end(), [&](auto& d) { return d.first == name; });
    if (found != dimensions_.end()) {
      found->second = length;
    } else {
      dimensions_.emplace_back(name, length);
    }
    return *this;
  }
  /// Also changes a variable. Numbers that the shape has room for but nobody gave are 0.
  ForgedExodus& variable(const std::string& name, nc_type type, const Names& axes, const std::vector<double>& numbers) {
    Variable& made = At(name);
    made.type = type;
    made.axes = axes;
    made.numbers = numbers;
    return *this;
  }
  ForgedExodus& integers(const std::string& name, const Names& axes, const std::vector<double>& numbers) {
    return variable(name, NC_INT, axes, numbers);
  }
  ForgedExodus& doubles(const std::string& name, const Names& axes, const std::vector<double>& numbers) {
    return variable(name, NC_DOUBLE, axes, numbers);
  }
  ForgedExodus& texts(const std::string& name, const Names& axes, const Names& texts, char padding = '\0') {
    Variable& made = At(name);
    made.type = NC_CHAR;
    made.axes = axes;
    made.texts = texts;
    made.padding = padding;
    return *this;
  }
  /// Of a variable, or of the file for "".
  ForgedExodus& attribute(const std::string& variable, const std::string& name, const std::string& text) {
    (variable.empty() ? attributes_ : At(variable).attributes)[name] = text;
    return *this;
  }
  /// All numbers of a variable in another type.
  ForgedExodus& retype(const std::string& name, nc_type type) {
    At(name).type = type;
    return *this;
  }
  ForgedExodus& drop(const std::string& name) {
    std::erase_if(variables_, [&](const auto& entry) { return entry.first == name; });
    std::erase_if(dimensions_, [&](const auto& entry) { return entry.first == name; });
    return *this;
  }
  /// Records of which nothing is given are made, too.
  ForgedExodus& records(std::size_t count) {
    records_ = count;
    return *this;
  }

  std::string Write(const std::string& path, int form = NC_64BIT_OFFSET) const {
    int file = -1;
    Require(nc_create(path.c_str(), NC_CLOBBER | form, &file));
    std::map<std::string, int> ids;
    for (const auto& [name, length] : dimensions_) {
      Require(nc_def_dim(file, name.c_str(), length == 0 ? NC_UNLIMITED : length, &ids[name]));
    }
    for (const auto& [name, text] : attributes_) {
      Require(nc_put_att_text(file, NC_GLOBAL, name.c_str(), text.size(), text.c_str()));
    }
    for (const auto& [name, variable] : variables_) Define(file, name, variable, ids);
    Require(nc_enddef(file));
    for (const auto& [name, variable] : variables_) Put(file, name, variable);
    Require(nc_close(file));
    return path;
  }

 private:
  struct Variable {
    nc_type type = NC_INT;
    Names axes;
    std::vector<double> numbers;
    Names texts;
    char padding = '\0';
    std::map<std::string, std::string> attributes;
  };

  static void Require(int status) {
    if (status != NC_NOERR) throw std::runtime_error(nc_strerror(status));
  }

  Variable& At(const std::string& name) {
    const auto found = std::find_if(variables_.begin(), variables_.end(), [&](auto& v) { return v.first == name; });
    return found == variables_.end() ? variables_.emplace_back(name, Variable()).second : found->second;
  }

  static void Define(int file, const std::string& name, const Variable& variable, std::map<std::string, int>& ids) {
    std::vector<int> axes;
    for (const std::string& axis : variable.axes) axes.push_back(ids.at(axis));
    int id = -1;
    Require(nc_def_var(file, name.c_str(), variable.type, static_cast<int>(axes.size()), axes.data(), &id));
    for (const auto& [attribute, text] : variable.attributes) {
      Require(nc_put_att_text(file, id, attribute.c_str(), text.size(), text.c_str()));
    }
  }

  std::vector<std::size_t> ShapeOf(const Variable& variable) const {
    std::vector<std::size_t> shape;
    for (const std::string& axis : variable.axes) {
      const auto found = std::find_if(dimensions_.begin(), dimensions_.end(), [&](auto& d) { return d.first == axis; });
      shape.push_back(found->second == 0 ? records_ : found->second);
    }
    return shape;
  }

  void Put(int file, const std::string& name, const Variable& variable) const {
    const std::vector<std::size_t> shape = ShapeOf(variable), start(shape.size(), 0);
    std::size_t count = 1;
    for (const std::size_t extent : shape) count *= extent;
    constexpr std::size_t kMost = 100000;  // what announces more is there to be refused
    if (count == 0 || count > kMost) return;
    int id = -1;
    Require(nc_inq_varid(file, name.c_str(), &id));
    if (variable.type == NC_CHAR) {
      std::string characters;
      for (std::string text : variable.texts) {
        text.resize(shape.back(), variable.padding);
        characters += text;
      }
      characters.resize(count, variable.padding);
      Require(nc_put_vara_text(file, id, start.data(), shape.data(), characters.c_str()));
      return;
    }
    std::vector<double> numbers = variable.numbers;
    numbers.resize(count);
    Require(nc_put_vara_double(file, id, start.data(), shape.data(), numbers.data()));
  }

  std::vector<std::pair<std::string, std::size_t>> dimensions_;
  std::vector<std::pair<std::string, Variable>> variables_;
  std::map<std::string, std::string> attributes_;
  std::size_t records_ = 0;
};

/// first, first + 1, ...
inline std::vector<double> Counted(double first, std::size_t count) {
  std::vector<double> numbers(count);
  for (std::size_t i = 0; i < count; ++i) numbers[i] = first + static_cast<double>(i);
  return numbers;
}

inline void AddMesh(ForgedExodus& file) {
  file.attribute("", "title", "a block on plates")
      .dimension("len_string", 33)
      .dimension("len_name", 33)
      .dimension("four", 4)
      .dimension("time_step", 0)
      .dimension("num_dim", 3)
      .dimension("num_nodes", 10)
      .dimension("num_elem", 3)
      .dimension("num_qa_rec", 2)
      .texts("qa_records", {"num_qa_rec", "four", "len_string"},
             {"solver", "1.2", "2020/09/29", "16:59:05", "joiner", "4", "2020/09/30", "08:00:00"})
      .doubles("coordx", {"num_nodes"}, {0, 1, 1, 0, 0, 1, 1, 0, 2, 2})
      .doubles("coordy", {"num_nodes"}, {0, 0, 1, 1, 0, 0, 1, 1, 0, 1})
      .doubles("coordz", {"num_nodes"}, {0, 0, 0, 0, 1, 1, 1, 1, 1, 1.25})
      .integers("node_num_map", {"num_nodes"}, Counted(101, 10))
      .integers("elem_num_map", {"num_elem"}, {11, 21, 22})
      .dimension("num_el_blk", 2)
      .integers("eb_prop1", {"num_el_blk"}, {10, 20})
      .texts("eb_names", {"num_el_blk", "len_name"}, {"solid", ""})
      .dimension("num_el_in_blk1", 1)
      .dimension("num_nod_per_el1", 8)
      .integers("connect1", {"num_el_in_blk1", "num_nod_per_el1"}, Counted(1, 8))
      .attribute("connect1", "elem_type", "HEX8")
      .dimension("num_el_in_blk2", 2)
      .dimension("num_nod_per_el2", 4)
      .integers("connect2", {"num_el_in_blk2", "num_nod_per_el2"}, {5, 6, 7, 8, 6, 9, 10, 7})
      .attribute("connect2", "elem_type", "SHELL");
}

inline void AddSets(ForgedExodus& file) {
  file.dimension("num_node_sets", 2)
      .integers("ns_prop1", {"num_node_sets"}, {7, 8})
      .texts("ns_names", {"num_node_sets", "len_name"}, {"fixed", ""})
      .dimension("num_nod_ns1", 2)
      .integers("node_ns1", {"num_nod_ns1"}, {4, 1})
      .dimension("num_nod_ns2", 1)
      .integers("node_ns2", {"num_nod_ns2"}, {9})
      .dimension("num_side_sets", 1)
      .integers("ss_prop1", {"num_side_sets"}, {5})
      .texts("ss_names", {"num_side_sets", "len_name"}, {"loaded"})
      .dimension("num_side_ss1", 2)
      .integers("elem_ss1", {"num_side_ss1"}, {3, 1})
      .integers("side_ss1", {"num_side_ss1"}, {2, 6});
}

/// The value of variable v (from 1) at state s and entity e (both from 0) is 100 v + 10 s + e; stresses are in another
/// order than that of a tensor.
inline void AddResults(ForgedExodus& file) {
  file.records(2)
      .doubles("time_whole", {"time_step"}, {0.5, 1.5})
      .dimension("num_nod_var", 4)
      .texts("name_nod_var", {"num_nod_var", "len_name"}, {"displ_z", "displ_x", "displ_y", "temp"})
      .dimension("num_elem_var", 9)
      .texts(
          "name_elem_var", {"num_elem_var", "len_name"},
          {"stress_xx", "stress_xy", "stress_yy", "stress_yz", "stress_zx", "stress_zz", "eqps_2", "eqps_1", "thick"})
      .integers("elem_var_tab", {"num_el_blk", "num_elem_var"}, {1, 1, 1, 1, 1, 1, 1, 1, 0, 0, 0, 0, 0, 0, 0, 0, 1, 1})
      .dimension("num_nset_var", 1)
      .texts("name_nset_var", {"num_nset_var", "len_name"}, {"reaction"})
      .integers("nset_var_tab", {"num_node_sets", "num_nset_var"}, {1, 0})
      .doubles("vals_nset_var1ns1", {"time_step", "num_nod_ns1"}, {100, 101, 110, 111});
  const auto values = [](double variable, std::size_t entities) {
    std::vector<double> both = Counted(100 * variable, entities), second = Counted(100 * variable + 10, entities);
    both.insert(both.end(), second.begin(), second.end());
    return both;
  };
  for (int v = 1; v <= 4; ++v) {
    file.doubles("vals_nod_var" + std::to_string(v), {"time_step", "num_nodes"}, values(v, 10));
  }
  for (int v = 1; v <= 8; ++v) {
    file.doubles("vals_elem_var" + std::to_string(v) + "eb1", {"time_step", "num_el_in_blk1"}, values(v, 1));
  }
  for (int v = 8; v <= 9; ++v) {
    file.doubles("vals_elem_var" + std::to_string(v) + "eb2", {"time_step", "num_el_in_blk2"}, values(v, 2));
  }
}

/// A hexahedron on two plates: ten nodes of the ids 101 to 110, elements 11, 21 and 22, two states.
inline ForgedExodus SmallExodus() {
  ForgedExodus file;
  AddMesh(file);
  AddSets(file);
  AddResults(file);
  return file;
}

}  // namespace exodus_forge
