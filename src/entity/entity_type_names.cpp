// Names of entity types that the format knows, and the tables of those with a fixed number.

#include "entity/entity_type_names.h"

#include <algorithm>
#include <iterator>

#include "h5/disk_names.h"
#include "h5/text_field.h"

namespace orvio {
namespace {

/// An element by its dimension and its nodes.
struct ShapeRow {
  int ndim, npele, orv_type;
};

constexpr ShapeRow kShapes[] = {
    {0, 1, 400}, {1, 2, 100}, {1, 3, 120}, {2, 3, 254},  {2, 4, 250},  {2, 6, 255},  {2, 8, 253},  {3, 4, 305},
    {3, 5, 308}, {3, 6, 303}, {3, 8, 301}, {3, 10, 306}, {3, 13, 309}, {3, 15, 304}, {3, 20, 302},
};

struct NameRow {
  std::string_view name;
  int orv_type;
};

constexpr NameRow kNastranNames[] = {
    {"CMASS1", 146}, {"PLOTEL", 131}, {"CPENTA", 303}, {"CMASS2", 147}, {"CQUAD8", 253},
    {"CQUAD4", 250}, {"CMASS3", 148}, {"CTRIA6", 255}, {"CTETRA", 305}, {"CMASS4", 149},
    {"PENTAH", 304}, {"CTRIA3", 254}, {"CONM2", 150},  {"TETRAH", 306}, {"CTRIAR", 254},
    {"RBAR", 132},   {"HEXAH", 302},  {"CQUADR", 252}, {"RROD", 133},   {"CHEXA", 301},
};

}  // namespace

const std::array<std::string_view, kEntityTypeNameCount> kEntityTypeNames = {
    "MODEL",
    "PART",
    "FPMPART",
    "MATERIAL",
    disk::FRAME,
    "NODE",
    "FPMNODE",
    "BEAM",
    "LINE3",
    "LINE2",
    "SPRING6DOF",
    "SPRINGBEAM",
    "MBSSPRING",
    "SPHERICALJOINT",
    "FLEXTORSJOINT",
    "KJOINT",
    "MBSJOINT",
    "MTOJN",
    "SPOTWELD",
    "PLINK",
    "SLINK",
    "TIED",
    "MUSCLE",
    "RBODY",
    "MULTIJOINT",
    "MI-SPOTWELD",
    "MPCPLink",
    "CBAR",
    "CBEAM",
    "CROD",
    "CONROD",
    "CBUSH",
    "CBEND",
    "CTUBE",
    "CELAS1",
    "CELAS2",
    "CELAS3",
    "CELAS4",
    "CDAMP1",
    "CDAMP2",
    "CDAMP3",
    "CDAMP4",
    "TRIA6",
    "SHEL6",
    "TRIA3",
    "SHELL",
    "THICKSHELL",
    "QUAD8",
    "SHEL8",
    "QUAD4",
    "MEMBR",
    "TOOL",
    "HEXA8",
    "HEXA",
    "PENTA6",
    "TETRA4",
    "BRICKSHELL",
    "TETRA10",
    "HEXA20",
    "PENTA15",
    "AIRBAG",
    "CHAMBER",
    "WALL",
    "CONTACT",
    "SECTION",
    "FLUIDCELL",
    "RIGIDWALL",
    "VENT",
    "CUBIC_CELL",
    "USERDEF",
    "ACOUSTIC_NODE",
    "POROUS_NODE",
    "CNT_ELE_EDG_EDG",
    "CNT_ELE_NOD_EDG",
    "CNT_ELE_NOD_SEG",
    "SLIDELINE",
    "SPH_OUTPUT",
    "FLUID_PARTICLE",
    "SURFACE",
    "FACE",
};

int EntityTypeOfShape(std::int64_t ndim, std::int64_t npele) {
  const auto* row = std::ranges::find_if(kShapes, [&](auto& r) { return r.ndim == ndim && r.npele == npele; });
  return row == std::end(kShapes) ? 0 : row->orv_type;
}

std::optional<int> NastranEntityTypeFromName(std::string_view name) {
  const auto* row = std::ranges::find_if(kNastranNames, [&](auto& r) { return EqualIgnoringCase(r.name, name); });
  return row == std::end(kNastranNames) ? std::nullopt : std::optional(row->orv_type);
}

}  // namespace orvio
