// Filling of the blocks that define: units, index types, variables.

#include "importer/block_writer.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <ctime>
#include <utility>

#include "importer/text_fields.h"
#include "trouble.h"

namespace orvio::program {
namespace {

constexpr const char* kAdvice = "check the free space and your permissions in its folder";

/// The labels of a variable in the two forms that format versions store.
struct Labels {
  explicit Labels(const std::vector<std::string>& components) : fields(Fields(components)) {
    for (std::size_t i = 0; i < components.size(); ++i) {
      const std::string label = components[i].substr(0, kNameWidth);
      offsets.push_back(static_cast<int>(packed.size()));
      lengths.push_back(static_cast<int>(label.size()));
      ids.push_back(static_cast<int>(i + 1));
      packed += label;
    }
  }

  std::vector<char> fields;  ///< 256 bytes each, blank padded
  std::string packed;        ///< one behind the other
  std::vector<int> lengths, offsets, ids;
};

/// The units of a variable's components: how many each has, and ids with exponents, component after component.
struct UnitTables {
  explicit UnitTables(std::size_t components) : base_counts(components, 0), derived_counts(components, 0) {}

  void Add(std::size_t component, const UnitProduct& product) {
    Append(product.base, base_counts[component], base_ids, base_exponents);
    Append(product.derived, derived_counts[component], derived_ids, derived_exponents);
  }

  std::vector<int> base_counts, derived_counts, base_ids, derived_ids;
  std::vector<float> base_exponents, derived_exponents;

 private:
  static void Append(const std::vector<std::pair<int, float>>& units, int& count, std::vector<int>& ids,
                     std::vector<float>& exponents) {
    count = static_cast<int>(units.size());
    for (const auto& [id, exponent] : units) {
      ids.push_back(id);
      exponents.push_back(exponent);
    }
  }
};

UnitTables UnitsOf(const Quantity& quantity, bool has_units) {
  UnitTables tables(quantity.components.size());
  for (std::size_t i = 0; has_units && i < std::min(quantity.components.size(), quantity.measures.size()); ++i) {
    tables.Add(i, UnitOf(quantity.measures[i]));
  }
  return tables;
}

constexpr char kIndexGroup[] = "INDEX";  // the name by which readers find the index types without being told

}  // namespace

BlockWriter::BlockWriter(const std::string& path, std::string shown_as, _ORVVersion version)
    : filer_(path.c_str()), shown_as_(std::move(shown_as)), version_(version) {
  const int status = filer_.InitForWriting(path.c_str(), version, ORV_FILE_CREATE, false);
  if (status != 0) throw Trouble(shown_as_, fmt::format("cannot be created: {}", ORVGetStatusText(status)), kAdvice);
}

void BlockWriter::Write(ORVBlock& block, int state, int what, const std::string& described_as) {
  if (filer_.WriteBlock(&block, state, what) == 0) return;
  throw Trouble(shown_as_, fmt::format("{} could not be written: {}", described_as, LibraryText("writing failed")),
                kAdvice);
}

void BlockWriter::FailState(int state) const {
  throw Trouble(shown_as_, fmt::format("state {} could not be written: {}", state, LibraryText("writing failed")),
                kAdvice);
}

// ---- Definitions

namespace {

/// The tables of a unit system as its block holds them.
struct SystemTables {
  explicit SystemTables(const UnitSystem& system) {
    std::vector<std::string> base_names, dimensions, derived_names;
    for (const BaseUnit& unit : system.base) {
      base_ids.push_back(unit.id);
      factors.push_back(unit.to_si);
      base_names.emplace_back(unit.name);
      dimensions.emplace_back(unit.dimension);
    }
    for (const DerivedUnit& unit : system.derived) {
      derived_ids.push_back(unit.id);
      counts.push_back(static_cast<int>(unit.of.size()));
      derived_names.emplace_back(unit.name);
      for (const auto& [id, exponent] : unit.of) {
        of_ids.push_back(id);
        of_exponents.push_back(exponent);
      }
    }
    shifts.assign(base_ids.size(), 0);
    scales.assign(derived_ids.size(), 1);  // the names are those of the products themselves
    base_fields = Fields(base_names);
    dimension_fields = Fields(dimensions);
    derived_fields = Fields(derived_names);
  }

  std::vector<int> base_ids, derived_ids, counts, of_ids;
  std::vector<float> factors, shifts, scales, of_exponents;
  std::vector<char> base_fields, dimension_fields, derived_fields;
};

/// Date and time in eight characters each, as the format has them.
void SetDates(ORVSystem& block) {
  const std::time_t now = std::time(nullptr);
  std::tm local = {};
  if (!localtime_r(&now, &local)) return;
  for (auto* date : {&block.m_cdate, &block.m_mdate}) (void)std::strftime(*date, sizeof *date, "%Y%m%d", &local);
  for (auto* time : {&block.m_ctime, &block.m_mtime}) (void)std::strftime(*time, sizeof *time, "%H:%M:%S", &local);
}

}  // namespace

void BlockWriter::WriteSystem(ORVSystem& block, const Origin& origin, int what) {
  Assign(block.m_title, origin.title);
  Assign(block.m_solverName, origin.solver);
  Assign(block.m_solverVers, origin.solver_version);
  SetDates(block);
  Write(block, 0, what, "the unit system");
}

void BlockWriter::WriteOrigin(const Origin& origin) {
  ORVSystem block;
  WriteSystem(block, origin, ORV_WRITE_HEADER);
}

void BlockWriter::WriteUnitSystem(const UnitSystem& system, const Origin& origin) {
  SystemTables tables(system);
  ORVSystem block;
  Assign(block.m_sys, system.name);
  block.m_nbunit = static_cast<std::int64_t>(tables.base_ids.size());
  block.m_pUbid = tables.base_ids.data();
  block.m_pUbtyp = tables.dimension_fields.data();
  block.m_pUbnam = tables.base_fields.data();
  block.m_pUbcon = tables.factors.data();
  block.m_pUbshift = tables.shifts.data();
  block.m_ndunit = static_cast<std::int64_t>(tables.derived_ids.size());
  block.m_pUdid = tables.derived_ids.data();
  block.m_pUdnam = tables.derived_fields.data();
  block.m_pUdscal = tables.scales.data();
  block.m_pNdbunit = tables.counts.data();
  block.m_pUdbid = tables.of_ids.data();
  block.m_pUdbexp = tables.of_exponents.data();
  WriteSystem(block, origin, ORV_WRITE_HEADER | ORV_WRITE_DATA);
  has_units_ = true;
}

void BlockWriter::WriteIndexTypes(const std::string& value_name) {
  std::vector<std::string> names = {value_name};
  if (has_steps_) names.emplace_back("STEP");
  std::vector<char> fields = Fields(names);
  ORVSimulationType block;
  block.m_nindex = static_cast<std::int64_t>(names.size());
  block.m_pEtypindex = fields.data();
  if (HasGroups()) {
    std::vector<Quantity> columns;
    columns.reserve(names.size());
    for (const std::string& name : names) columns.push_back(IndexQuantity(name));
    for (const Quantity& column : columns) WriteVariableBlock(column);
    WriteGroup(kIndexGroup, columns);
    Assign(block.m_etypvar, kIndexGroup);
  }
  Write(block, 0, ORV_WRITE_HEADER | ORV_WRITE_DATA, "the index types");
}

void BlockWriter::WriteGroup(const std::string& name, const std::vector<Quantity>& quantities) {
  std::vector<int> counts, offsets;
  std::vector<std::string> names;
  int offset = 0;
  for (const Quantity& quantity : quantities) {
    counts.push_back(static_cast<int>(quantity.components.size()));
    offsets.push_back(offset);
    names.push_back(quantity.name);
    offset += counts.back();
  }
  std::vector<char> keys = Fields(names);
  ORVVariableGrp group;
  Assign(group.m_grpName, name);
  group.m_nvar = static_cast<std::int64_t>(quantities.size());
  group.m_ncoo = offset;
  group.m_pCnt = counts.data();
  group.m_pOffs = offsets.data();
  group.m_pKeys = keys.data();
  Write(group, 0, ORV_WRITE_HEADER | ORV_WRITE_DATA, "variable group " + name);
}

void BlockWriter::WriteVariable(const Quantity& quantity) {
  WriteVariableBlock(quantity);
  if (HasGroups()) WriteGroup(quantity.name, {quantity});
}

void BlockWriter::WriteVariableBlock(const Quantity& quantity) {
  Labels labels(quantity.components);
  UnitTables units = UnitsOf(quantity, has_units_);
  ORVVariable variable;
  Assign(variable.m_varnam, quantity.name);
  Assign(variable.m_varkey, quantity.name);
  Assign(variable.m_varclass, quantity.class_word);
  variable.m_ncoo = static_cast<std::int64_t>(quantity.components.size());
  variable.SetOriginalCount(quantity.components.size());
  variable.m_rank = quantity.tensor_rank;
  variable.m_ndim = quantity.tensor_rank > 0 ? 3 : 0;
  variable.m_tensor = quantity.tensor_rank > 0 ? 1 : 0;
  variable.m_pMbunit = units.base_counts.data();
  variable.m_pMdunit = units.derived_counts.data();
  variable.m_pUbid = units.base_ids.data();
  variable.m_pUbexp = units.base_exponents.data();
  variable.m_pUdid = units.derived_ids.data();
  variable.m_pUdexp = units.derived_exponents.data();
  variable.m_pCname = labels.fields.data();
  variable.m_pCid = labels.ids.data();
  variable.m_subslen = static_cast<std::int64_t>(labels.packed.size());
  variable.m_pSubscr = labels.packed.data();
  variable.m_pSubscnt = labels.lengths.data();
  variable.m_pSubsoffs = labels.offsets.data();
  Write(variable, 0, ORV_WRITE_HEADER | ORV_WRITE_DATA, "variable " + quantity.name);
}

}  // namespace orvio::program
