// The tables of the format, for the checks alone: the library's own reading does not use them.

#include "checking/block_format.h"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace orvio::program {
namespace {

constexpr StoredClass kInt = StoredClass::kInteger, kReal = StoredClass::kFloat, kText = StoredClass::kText;
constexpr bool kRequired = true, kOptional = false;

constexpr AttributeRow kSystemAttributes[] = {
    {"block", kInt, kRequired},        {"title", kText, kRequired},       {"sys", kText, kRequired},
    {"solver_name", kText, kRequired}, {"solver_vers", kText, kRequired}, {"cdate", kText, kRequired},
    {"ctime", kText, kRequired},       {"mdate", kText, kRequired},       {"mtime", kText, kRequired},
    {"nbunit", kInt, kRequired},       {"ndunit", kInt, kRequired},       {"cversion", kInt, kOptional},
};
constexpr DatasetRow kSystemDatasets[] = {
    {"ubid", kInt, "nbunit", Need::kWithBaseUnits},       {"ubtyp", kText, "nbunit", Need::kWithBaseUnits},
    {"ubnam", kText, "nbunit", Need::kWithBaseUnits},     {"ubcon", kReal, "nbunit", Need::kWithBaseUnits},
    {"ubshift", kReal, "nbunit", Need::kOptional},        {"udid", kInt, "ndunit", Need::kWithDerivedUnits},
    {"udnam", kText, "ndunit", Need::kWithDerivedUnits},  {"udscal", kReal, "ndunit", Need::kWithDerivedUnits},
    {"ndbunit", kInt, "ndunit", Need::kWithDerivedUnits}, {"udbid", kInt, nullptr, Need::kOptional},
    {"udbexp", kReal, nullptr, Need::kOptional},
};

constexpr AttributeRow kIndicesAttributes[] = {
    {"block", kInt, kRequired}, {"nindex", kInt, kRequired}, {"etypvar", kText, kOptional}};
constexpr DatasetRow kIndicesDatasets[] = {{"etypindex", kText, "nindex", Need::kOptional}};

constexpr AttributeRow kVariableAttributes[] = {
    {"block", kInt, kRequired},   {"rank", kInt, kRequired},     {"ndim", kInt, kOptional},
    {"ncoo", kInt, kRequired},    {"etypvar", kText, kOptional}, {"varnam", kText, kOptional},
    {"idtrans", kInt, kOptional}, {"varkey", kText, kOptional},  {"varclass", kText, kOptional},
    {"type", kText, kOptional},   {"lvmap", kInt, kOptional},    {"subslen", kInt, kOptional},
    {"tensor", kInt, kOptional},  {"lenb", kInt, kOptional},     {"lend", kInt, kOptional},
};
constexpr DatasetRow kVariableDatasets[] = {
    {"cname", kText, "ncoo", Need::kOptional},     {"cid", kInt, "ncoo", Need::kOptional},
    {"subscr", kText, "subslen", Need::kOptional}, {"subscnt", kInt, "ncoo", Need::kOptional},
    {"subsoffs", kInt, "ncoo", Need::kOptional},   {"vmap", kReal, nullptr, Need::kOptional},
    {"mbunit", kInt, "ncoo", Need::kOptional},     {"ubid", kInt, nullptr, Need::kOptional},
    {"ubexp", kReal, nullptr, Need::kOptional},    {"mdunit", kInt, "ncoo", Need::kOptional},
    {"udid", kInt, nullptr, Need::kOptional},      {"udexp", kReal, nullptr, Need::kOptional},
};

constexpr AttributeRow kGroupAttributes[] = {
    {"block", kInt, kRequired}, {"etypvar", kText, kRequired}, {"ncoo", kInt, kRequired}, {"nvar", kInt, kRequired}};
constexpr DatasetRow kGroupDatasets[] = {{"cnt", kInt, "nvar", Need::kAlways},
                                         {"offs", kInt, "nvar", Need::kAlways},
                                         {"varkey", kText, "nvar", Need::kAlways}};

constexpr AttributeRow kTextAttributes[] = {{"block", kInt, kRequired},
                                            {"etyptext", kText, kRequired},
                                            {"nlines", kInt, kRequired},
                                            {"length", kInt, kRequired},
                                            {"indexic", kInt, kOptional}};
constexpr DatasetRow kTextDatasets[] = {{"line", kText, "nlines", Need::kAlways}};

constexpr AttributeRow kPartsAttributes[] = {{"block", kInt, kRequired},
                                             {"etyppart", kText, kRequired},
                                             {"npart", kInt, kRequired},
                                             {"length", kInt, kOptional},
                                             {"nindex", kInt, kRequired}};
constexpr DatasetRow kPartsDatasets[] = {
    {"pid", kInt, "npart", Need::kAlways},      {"pcol", kInt, "npart", Need::kOptional},
    {"mid", kInt, "npart", Need::kOptional},    {"mtyp", kInt, "npart", Need::kOptional},
    {"title", kText, "npart", Need::kOptional}, {"pvtyp", kInt, "npart", Need::kOptional},
};

constexpr AttributeRow kEntityTableAttributes[] = {
    {"block", kInt, kRequired},  {"etyp", kText, kRequired},  {"nent", kInt, kRequired},   {"nuid", kInt, kOptional},
    {"nindex", kInt, kOptional}, {"length", kInt, kOptional}, {"indexic", kInt, kOptional}};
constexpr DatasetRow kEntityTableDatasets[] = {{"entid", kInt, "nent", Need::kAlways},
                                               {"uid", kInt, "nent,nuid", Need::kOptional},
                                               {"title", kText, "nent", Need::kOptional}};

constexpr AttributeRow kConnectivityAttributes[] = {
    {"block", kInt, kRequired},     {"etypelem", kText, kRequired}, {"etyppart", kText, kRequired},
    {"etypnode", kText, kRequired}, {"nele", kInt, kRequired},      {"npele", kInt, kRequired},
    {"ndim", kInt, kOptional},      {"nbint", kInt, kOptional},     {"nbfloat", kInt, kOptional},
    {"nindex", kInt, kOptional},    {"etyp", kText, kOptional},     {"indexic", kInt, kOptional},
};
constexpr DatasetRow kConnectivityDatasets[] = {
    {"idele", kInt, "nele", Need::kAlways},
    {"pid", kInt, "nele", Need::kAlways},
    {"ic", kInt, "nele,npele", Need::kAlways},
    {"iparam", kInt, "nele,nbint", Need::kOptional},
    {"fparam", kReal, "nele,nbfloat", Need::kOptional},
    {"mbunit", kInt, "nbfloat", Need::kOptional},
    {"mdunit", kInt, "nbfloat", Need::kOptional},
};

constexpr AttributeRow kCollectorAttributes[] = {{"block", kInt, kRequired},   {"etypcoll", kText, kRequired},
                                                 {"ncoll", kInt, kRequired},   {"ntyp", kInt, kRequired},
                                                 {"nenttot", kInt, kRequired}, {"nindex", kInt, kRequired},
                                                 {"indexic", kInt, kOptional}};
constexpr DatasetRow kCollectorDatasets[] = {{"idcoll", kInt, "ncoll", Need::kAlways},
                                             {"etyp", kText, "ntyp", Need::kAlways},
                                             {"nent", kInt, "ncoll,ntyp", Need::kAlways},
                                             {"entid", kInt, "nenttot", Need::kAlways}};

constexpr AttributeRow kPropertiesAttributes[] = {
    {"block", kInt, kRequired},  {"indexic", kInt, kOptional},   {"etypprop", kText, kRequired},
    {"length", kInt, kRequired}, {"nbfloat", kInt, kRequired},   {"nbid", kInt, kRequired},
    {"nbint", kInt, kRequired},  {"nbstring", kInt, kRequired},  {"etyp", kText, kRequired},
    {"nent", kInt, kRequired},   {"etypzone", kText, kOptional}, {"zoneid", kInt, kOptional},
    {"nindex", kInt, kOptional},
};
constexpr DatasetRow kPropertiesDatasets[] = {{"cparam", kText, nullptr, Need::kOptional},
                                              {"entid", kInt, "nent", Need::kOptional},
                                              {"iparam", kInt, "nent,nbint", Need::kOptional},
                                              {"fparam", kReal, "nent,nbfloat", Need::kOptional}};

constexpr AttributeRow kEntityAttributes[] = {
    {"block", kInt, kRequired},     {"etypvar", kText, kRequired},   {"ncoo", kInt, kRequired},
    {"etypzone", kText, kOptional}, {"etypframe", kText, kOptional}, {"zoneid", kInt, kOptional},
    {"etyp", kText, kRequired},     {"nent", kInt, kRequired},       {"nstate", kInt, kOptional},
    {"nindex", kInt, kOptional},    {"fswitch", kInt, kOptional},    {"series", kText, kOptional},
    {"indexic", kInt, kOptional},
};
constexpr AttributeRow kElementAttributes[] = {
    {"block", kInt, kRequired},     {"etypvar", kText, kRequired},   {"ncoo", kInt, kRequired},
    {"etypzone", kText, kOptional}, {"etypframe", kText, kOptional}, {"zoneid", kInt, kOptional},
    {"etypelem", kText, kRequired}, {"nele", kInt, kRequired},       {"numl", kInt, kRequired},
    {"ndim", kInt, kRequired},      {"nindex", kInt, kOptional},     {"fswitch", kInt, kOptional},
    {"series", kText, kOptional},   {"indexic", kInt, kOptional},
};
constexpr AttributeRow kMultiElementAttributes[] = {
    {"block", kInt, kRequired},     {"etypvar", kText, kRequired},   {"ncoo", kInt, kRequired},
    {"etypzone", kText, kOptional}, {"etypframe", kText, kOptional}, {"zoneid", kInt, kOptional},
    {"etypelem", kText, kRequired}, {"nele", kInt, kRequired},       {"nindex", kInt, kOptional},
    {"fswitch", kInt, kOptional},   {"series", kText, kOptional},    {"indexic", kInt, kOptional},
};

template <const char* const& Shape>
constexpr DatasetRow kEntityRows[] = {{"res", kReal, Shape, Need::kAlways},
                                      {"entid", kInt, "nent", Need::kOptional},
                                      {"fid", kInt, "nent", Need::kOptional},
                                      {"fidglob", kInt, "1", Need::kOptional}};
template <const char* const& Shape>
constexpr DatasetRow kElementRows[] = {{"res", kReal, Shape, Need::kAlways},
                                       {"idele", kInt, "nele", Need::kOptional},
                                       {"eloc", kReal, "numl,ndim", Need::kOptional},
                                       {"fid", kInt, "nele", Need::kOptional},
                                       {"fidglob", kInt, "1", Need::kOptional}};

constexpr const char* kShape1000 = "nent,ncoo";
constexpr const char* kShape1001 = "nent,ncoo,2";
constexpr const char* kShape1050 = "nstate,nent,ncoo";
constexpr const char* kShape1051 = "nstate,nent,ncoo,2";
constexpr const char* kShape1100 = "nele,numl,ncoo";
constexpr const char* kShape1101 = "nele,numl,ncoo,2";
constexpr const char* kShape1150 = "*,nele,*,ncoo";
constexpr const char* kShape1151 = "*,nele,*,ncoo,2";

constexpr AttributeRow kActivationAttributes[] = {{"block", kInt, kRequired},
                                                  {"etyp", kText, kRequired},
                                                  {"nent", kInt, kRequired},
                                                  {"nindex", kInt, kRequired},
                                                  {"indexic", kInt, kOptional}};
constexpr DatasetRow kActivationDatasets[] = {{"entid", kInt, "nent", Need::kAlways},
                                              {"status", kInt, "nent", Need::kAlways}};

constexpr unsigned kByState = kInConstant | kInStates;

constexpr KindRow kKinds[] = {
    {10, "unit system", "system", kInConstant, kSystemAttributes, kSystemDatasets},
    {20, "index types", "indices", kInConstant, kIndicesAttributes, kIndicesDatasets},
    {30, "variable", "variable|variables", kInConstant, kVariableAttributes, kVariableDatasets},
    {32, "group of variables", "variablegroup", kInConstant, kGroupAttributes, kGroupDatasets},
    {40, "text", "text", kByState, kTextAttributes, kTextDatasets},
    {100, "parts", "parts", kByState, kPartsAttributes, kPartsDatasets},
    {200, "attributes", "attributes", kByState, kEntityTableAttributes, kEntityTableDatasets},
    {250, "identifiers", "identifiers", kByState, kEntityTableAttributes, kEntityTableDatasets},
    {300, "connectivity", "connectivities", kByState, kConnectivityAttributes, kConnectivityDatasets},
    {400, "collector", "collector", kByState, kCollectorAttributes, kCollectorDatasets},
    {500, "properties", nullptr, kByState, kPropertiesAttributes, kPropertiesDatasets},
    {1000, "result of entities", "entityresults", kByState, kEntityAttributes, kEntityRows<kShape1000>},
    {1001, "complex result of entities", "entityresults", kByState, kEntityAttributes, kEntityRows<kShape1001>},
    {1050, "result of entities over all states", "multientityresults", kInMultistate, kEntityAttributes,
     kEntityRows<kShape1050>},
    {1051, "complex result of entities over all states", "multientityresults", kInMultistate, kEntityAttributes,
     kEntityRows<kShape1051>},
    {1100, "result of elements", "elementresults", kByState, kElementAttributes, kElementRows<kShape1100>},
    {1101, "complex result of elements", "elementresults", kByState, kElementAttributes, kElementRows<kShape1101>},
    {1150, "result of elements over all states", "elementresults", kInMultistate, kMultiElementAttributes,
     kElementRows<kShape1150>},
    {1151, "complex result of elements over all states", "elementresults", kInMultistate, kMultiElementAttributes,
     kElementRows<kShape1151>},
    {2100, "activation", "activflags", kInStates, kActivationAttributes, kActivationDatasets},
};

}  // namespace

const KindRow* FindKind(std::int64_t key) {
  const auto* kind = std::ranges::find(kKinds, key, &KindRow::key);
  return kind == std::end(kKinds) ? nullptr : kind;
}

bool IsGroupOf(const KindRow& kind, const char* word) {
  if (!kind.group) return true;
  std::string_view groups = kind.group;
  const std::size_t bar = groups.find('|');
  return groups.substr(0, bar) == word || (bar != std::string_view::npos && groups.substr(bar + 1) == word);
}

bool IsTypeGroup(const char* word) {
  return std::ranges::any_of(kKinds, [&](const KindRow& kind) { return kind.group && IsGroupOf(kind, word); });
}

}  // namespace orvio::program
