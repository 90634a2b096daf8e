#pragma once

// An imported file seen two ways: through the library's public blocks and through HDF5 alone. Tests ask both the same.

#include <cstdint>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "orvio/orvio.h"
#include "support/raw_file.h"

namespace orv_test {

/// The values of a variable at the nodes. Doubles hold a float's bits without loss.
struct NodalResult {
  std::vector<std::int64_t> ids;
  std::int64_t components = 0;
  bool is_complex = false, is_double = false;
  std::vector<double> values;  ///< ids x components, x 2 for complex values
  std::vector<double> index;
  std::vector<std::int64_t> index_identifiers;
};

struct ElementsOfType {
  std::string type, part_type, node_type;
  std::int64_t dimension = 0, nodes_per_element = 0;
  std::vector<std::int64_t> ids, parts, nodes;
};

struct VariableDefinition {
  std::string name, class_word;
  std::int64_t rank = 0, tensor = 0;
  std::vector<std::string> components;
};

class ImportedFile {
 public:
  virtual ~ImportedFile() = default;
  virtual int States() = 0;
  virtual std::vector<std::string> ResultNames(int state) = 0;  ///< 0: constant ones
  virtual NodalResult Result(int state, const std::string& name) = 0;
  virtual std::vector<ElementsOfType> Elements() = 0;
  /// Those that values are stored of; what names the columns of the state index is left out.
  virtual std::vector<VariableDefinition> Variables() = 0;
};

/// Variables that name the columns of the state index, in the format versions that have them as such.
inline bool NamesAnIndexColumn(const std::string& variable) {
  return variable == "TIME" || variable == "FREQUENCY" || variable == "VALUE" || variable == "STEP";
}

inline std::string WithoutBlanks(std::string text) {
  text.erase(text.find_last_not_of(' ') + 1);
  return text;
}

/// Through HDF5 alone. Format versions from 2.0 on.
class RawImportedFile : public ImportedFile {
 public:
  explicit RawImportedFile(const std::string& path) : raw_(path) {}

  int States() override { return static_cast<int>(raw_.children("/post/singlestate").size()); }

  std::vector<std::string> ResultNames(int state) override {
    const std::string type = Section(state) + "/entityresults";
    if (raw_.children(type) != std::vector<std::string>{"NODE"}) throw std::runtime_error("not only nodes in " + type);
    return raw_.children(type + "/NODE");
  }

  NodalResult Result(int state, const std::string& name) override {
    const std::string block = Section(state) + "/entityresults/NODE/" + name + "/orvblock";
    NodalResult result;
    result.is_complex = raw_.attribute_int(block, "block") == 1001;
    result.components = raw_.attribute_int(block, "ncoo");
    result.ids = raw_.values<std::int64_t>(block + "/entid");
    result.values = raw_.values<double>(block + "/res");
    result.is_double = raw_.type_size(block + "/res") == 8;
    std::vector<hsize_t> shape = {result.ids.size(), static_cast<hsize_t>(result.components)};
    if (result.is_complex) shape.push_back(2);
    if (raw_.shape(block + "/res") != shape) throw std::runtime_error("shape of " + block);
    if (raw_.attribute_int(block, "nent") != static_cast<std::int64_t>(result.ids.size()))
      throw std::runtime_error("count of " + block);
    if (state > 0) result.index = raw_.values<double>(block + "/indexval");
    if (state > 0) result.index_identifiers = raw_.values<std::int64_t>(block + "/indexident");
    return result;
  }

  std::vector<ElementsOfType> Elements() override {
    std::vector<ElementsOfType> all;
    for (const std::string& name : raw_.children("/post/constant/connectivities")) {
      const std::string block = "/post/constant/connectivities/" + name + "/orvblock";
      ElementsOfType elements;
      elements.type = WithoutBlanks(raw_.attribute_text(block, "etypelem"));
      elements.part_type = WithoutBlanks(raw_.attribute_text(block, "etyppart"));
      elements.node_type = WithoutBlanks(raw_.attribute_text(block, "etypnode"));
      elements.dimension = raw_.attribute_int(block, "ndim");
      elements.nodes_per_element = raw_.attribute_int(block, "npele");
      elements.ids = raw_.values<std::int64_t>(block + "/idele");
      elements.parts = raw_.values<std::int64_t>(block + "/pid");
      elements.nodes = raw_.values<std::int64_t>(block + "/ic");
      const hsize_t width = static_cast<hsize_t>(elements.nodes_per_element);
      if (raw_.shape(block + "/ic") != std::vector<hsize_t>{elements.ids.size(), width} || elements.type != name)
        throw std::runtime_error("shape of " + block);
      all.push_back(std::move(elements));
    }
    return all;
  }

  std::vector<VariableDefinition> Variables() override {
    std::vector<VariableDefinition> all;
    for (const std::string& name : raw_.children("/post/constant/variable")) {
      if (NamesAnIndexColumn(name)) continue;
      const std::string block = "/post/constant/variable/" + name + "/orvblock";
      VariableDefinition variable;
      variable.name = WithoutBlanks(raw_.attribute_text(block, "varnam"));
      variable.class_word = WithoutBlanks(raw_.attribute_text(block, "varclass"));
      variable.rank = raw_.attribute_int(block, "rank");
      variable.tensor = raw_.attribute_int(block, "tensor");
      std::string packed;
      for (const std::string& letter : raw_.texts(block + "/subscr")) packed += letter;
      const auto lengths = raw_.values<std::int32_t>(block + "/subscnt");
      const auto offsets = raw_.values<std::int32_t>(block + "/subsoffs");
      for (std::int64_t i = 0; i < raw_.attribute_int(block, "ncoo"); ++i) {
        const auto at = static_cast<std::size_t>(i);
        variable.components.push_back(
            packed.substr(static_cast<std::size_t>(offsets.at(at)), static_cast<std::size_t>(lengths.at(at))));
      }
      if (WithoutBlanks(raw_.attribute_text(block, "varkey")) != name) throw std::runtime_error("key of " + block);
      all.push_back(std::move(variable));
    }
    return all;
  }

 private:
  static std::string Section(int state) {
    if (state == 0) return "/post/constant";
    const std::string number = std::to_string(state);
    return "/post/singlestate/state" + std::string(12 - number.size(), '0') + number;
  }

  RawFile raw_;
};

/// Through the library's public blocks.
class LibraryImportedFile : public ImportedFile {
 public:
  explicit LibraryImportedFile(std::string path) : path_(std::move(path)) {}

  int States() override {
    int count = -1;
    Require(ReadNumState(path_.c_str(), &count) == 0, "number of states");
    return count;
  }

  std::vector<std::string> ResultNames(int state) override {
    Names().clear();
    ORVResult probe(ORV_RESULT_ENTITY);
    Require(probe.DiscoverBlock(path_.c_str(), state, ORV_READ_HEADER, AppendName) == 0, "walk over results");
    return Names();
  }

  NodalResult Result(int state, const std::string& name) override {
    ORVResult block(ORV_RESULT_ENTITY);
    block.SetEntityAndVarName("NODE", name);
    Require(block.ReadBlock(path_.c_str(), state, ORV_READ_HEADER) == 0, "header of " + name);
    ORVResult types = block;
    Require(types.ReadBlock(path_.c_str(), state, ORV_READ_DATA_INFO) == 0, "types of " + name);
    NodalResult result;
    result.components = block.m_ncoo;
    result.is_complex = block.IsComplexBlk();
    result.is_double = types.m_resType == ORV_DOUBLE;
    result.ids.resize(static_cast<std::size_t>(block.m_nent));
    result.values.resize(result.ids.size() * static_cast<std::size_t>(block.m_ncoo) * (result.is_complex ? 2 : 1));
    block.m_entid = result.ids.data();
    block.m_entidType = ORV_LONG;
    block.m_readIds = 1;
    block.m_res = result.values.data();
    block.m_resType = ORV_DOUBLE;
    Require(block.ReadBlock(path_.c_str(), state, ORV_READ_DATA) == 0, "values of " + name);
    if (state > 0) ReadIndex(block, state, result);
    return result;
  }

  std::vector<ElementsOfType> Elements() override {
    std::vector<ElementsOfType> all;
    ORVEleConnectivity block;
    int count = 0;
    Require(block.ReadNumBlock(path_.c_str(), 0, &count) == 0, "number of element types");
    for (int i = 0; i < count; ++i) {
      Require(block.ReadBlockAt(path_.c_str(), 0, i, ORV_READ_HEADER) == 0, "header of elements");
      ElementsOfType elements{
          block.m_etypelem, block.m_etyppart, block.m_etypnode, block.m_ndim, block.m_npele, {}, {}, {}};
      elements.ids.resize(static_cast<std::size_t>(block.m_nele));
      elements.parts.resize(elements.ids.size());
      elements.nodes.resize(elements.ids.size() * static_cast<std::size_t>(block.m_npele));
      block.m_idele = elements.ids.data();
      block.m_pid = elements.parts.data();
      block.m_ic = elements.nodes.data();
      block.m_ideleType = block.m_pidType = block.m_icType = ORV_LONG;
      Require(block.ReadBlockAt(path_.c_str(), 0, i, ORV_READ_DATA) == 0, "elements");
      all.push_back(std::move(elements));
    }
    return all;
  }

  std::vector<VariableDefinition> Variables() override {
    std::vector<VariableDefinition> all;
    int count = 0;
    Require(ORVVariable().ReadNumBlock(path_.c_str(), 0, &count) == 0, "number of variables");
    for (int i = 0; i < count; ++i) all.push_back(Variable(i));
    std::erase_if(all, [](const VariableDefinition& variable) { return NamesAnIndexColumn(variable.name); });
    return all;
  }

 protected:
  static void Require(bool fine, const std::string& what) {
    if (!fine) throw std::runtime_error("the library does not read: " + what);
  }

 private:
  static std::vector<std::string>& Names() {
    static std::vector<std::string> names;
    return names;
  }

  static _ORVAction AppendName(int status, int stage, void* /*where*/, void* block) {
    const bool read = status == 0 && stage == ORV_READ_HEADER;
    if (read) Names().emplace_back(static_cast<ORVResult*>(static_cast<ORVBlock*>(block))->m_etypvar);
    return ORV_ACTION_CONTINUE;
  }

  void ReadIndex(ORVResult& block, int state, NodalResult& result) {
    result.index.resize(static_cast<std::size_t>(block.m_nindex));
    result.index_identifiers.resize(result.index.size());
    block.m_indexval = result.index.data();
    block.m_indexvalType = ORV_DOUBLE;
    block.m_indexident = result.index_identifiers.data();
    block.m_indexidentType = ORV_LONG;
    Require(block.ReadBlock(path_.c_str(), state, ORV_READ_INDEX) == 0, "index");
  }

  VariableDefinition Variable(int i) {
    ORVVariable block;
    Require(block.ReadBlockAt(path_.c_str(), 0, i, ORV_READ_HEADER) == 0, "header of a variable");
    const auto components = static_cast<std::size_t>(block.m_ncoo);
    std::vector<int> lengths(components), offsets(components);
    std::string packed(static_cast<std::size_t>(block.m_subslen), '\0');
    block.m_pSubscnt = lengths.data();
    block.m_pSubsoffs = offsets.data();
    block.m_pSubscr = packed.data();
    Require(block.ReadBlockAt(path_.c_str(), 0, i, ORV_READ_DATA) == 0, "labels of a variable");
    VariableDefinition variable{block.m_varnam, block.m_varclass, block.m_rank, block.m_tensor, {}};
    for (std::size_t c = 0; c < components; ++c) {
      variable.components.push_back(
          packed.substr(static_cast<std::size_t>(offsets[c]), static_cast<std::size_t>(lengths[c])));
    }
    return variable;
  }

  std::string path_;
};

}  // namespace orv_test
