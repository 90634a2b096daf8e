#include "faults/append.h"

#include <stdexcept>

#include "orvio/orvio.h"
#include "support/numbered_variable.h"

namespace orvio::faults {
namespace {

constexpr int kAll = ORV_WRITE_HEADER | ORV_WRITE_DATA | ORV_WRITE_INDEX;

template <std::size_t N>
void Name(char (&field)[N], const std::string& name) {
  (void)std::snprintf(field, N, "%s", name.c_str());
}

_ORVVersion VersionOf(Form form) { return form.split ? ORV_VERSION_1_1 : ORV_VERSION_2_2; }

void Demand(int status, const char* what) {
  if (status != 0) throw std::runtime_error(std::string("the base file cannot be made: ") + what);
}

int WriteMesh(ORVFiler& filer) {
  std::vector<int> ids, parts(kQuads, 1), nodes = QuadNodes();
  for (int quad = 0; quad < kQuads; ++quad) ids.push_back(quad + 1);
  ORVEleConnectivity mesh;
  Name(mesh.m_etypelem, kQuadType);
  Name(mesh.m_etyppart, "PART");
  Name(mesh.m_etypnode, kNodeType);
  mesh.m_nele = kQuads;
  mesh.m_npele = 4;
  mesh.m_ndim = 2;
  mesh.m_idele = ids.data();
  mesh.m_pid = parts.data();
  mesh.m_ic = nodes.data();
  return filer.WriteBlock(&mesh, 0, ORV_WRITE_HEADER | ORV_WRITE_DATA);
}

int WriteResult(ORVFiler& filer, Form form, int block, int state, Generation generation) {
  const BlockRow& row = kBlocks[static_cast<std::size_t>(block)];
  std::vector<int> ids = NodeIds();
  std::vector<float> values = ValuesOf(block, generation, state);
  int ident = IdentOf(state);
  float time = TimeOf(state);
  ORVResult result(ORV_RESULT_ENTITY);
  result.SetEntityAndVarName(kNodeType, row.variable);
  result.m_nent = kNodes;
  result.m_ncoo = row.components;
  result.m_nindex = 1;
  result.m_readIds = 1;
  result.m_entid = ids.data();
  result.m_res = values.data();
  result.m_indexident = &ident;
  result.m_indexval = &time;
  result.m_nCompressionFactor = form.packed ? kDigits : -1;
  return filer.WriteBlock(&result, state, kAll);
}

/// Arms the injector for its life.
class Armed {
 public:
  Armed(const Injection& injection, CallCount& count) { Arm(injection, count); }
  ~Armed() { Disarm(); }
  Armed(const Armed&) = delete;
  Armed& operator=(const Armed&) = delete;
};

void Say(Told& told, int block) {
  RecordMark(block);
  told.said[static_cast<std::size_t>(block)] = 1;
}

void AppendWithHdf5(const std::string& path, Form form, int state, Generation generation, Told& told) {
  for (int block = 0; block < kBlockCount; ++block) {
    if (WriteWithHdf5(path, form, block, state, generation) == 0) Say(told, block);
  }
}

void AppendBlocks(ORVFiler& filer, Form form, int state, Generation generation, Told& told) {
  for (int block = 0; block < kBlockCount; ++block) {
    if (WriteResult(filer, form, block, state, generation) == 0) Say(told, block);
  }
}

void AppendWhole(ORVFiler& filer, Form form, int state, Generation generation, Told& told) {
  if (filer.BeginState(state) != 0) return;
  for (int block = 0; block < kBlockCount; ++block) (void)WriteResult(filer, form, block, state, generation);
  if (filer.EndState() != 0) return;
  for (int block = 0; block < kBlockCount; ++block) Say(told, block);
}

}  // namespace

std::string NameOf(const Writer& writer) {
  if (writer.plain) return "HDF5 alone";
  static constexpr const char* kModes[] = {"plain", "kill-safe", "power-safe"};
  return std::string("orvio, ") + kModes[writer.durability] + (writer.whole ? ", whole states" : "");
}

void MakeBase(const std::string& path, Form form, int states) {
  ORVFiler filer(path.c_str());
  (void)ORVSetDurability(0);
  Demand(filer.InitForWriting(path.c_str(), VersionOf(form), ORV_FILE_CREATE, false), "its tree");
  for (const BlockRow& row : kBlocks) {
    Demand(orv_test::NumberedVariable(row.variable, row.components).Write(filer), "a variable");
  }
  Demand(WriteMesh(filer), "the mesh");
  for (int state = 1; state <= states; ++state) {
    for (int block = 0; block < kBlockCount; ++block) Demand(WriteResult(filer, form, block, state, 0), "a state");
  }
}

void AppendState(const std::string& path, Form form, const Writer& writer, int state, Generation generation,
                 const Injection& injection, Told& told) {
  (void)ORVSetDurability(writer.durability);
  const Armed armed(injection, told.count);
  if (writer.plain) {
    AppendWithHdf5(path, form, state, generation, told);
  } else {
    ORVFiler filer(path.c_str());
    told.opened = filer.InitForWriting(path.c_str(), VersionOf(form), ORV_FILE_APPEND, true) == 0 ? 1 : 0;
    if (told.opened) {
      (writer.whole ? AppendWhole : AppendBlocks)(filer, form, state, generation, told);
    }
  }
  told.ended = true;
}

void Recover(const std::string& path, Form form, const Writer& writer, const Injection& injection, Told& told) {
  (void)ORVSetDurability(writer.durability);
  const Armed armed(injection, told.count);
  ORVFiler filer(path.c_str());
  told.opened = filer.InitForWriting(path.c_str(), VersionOf(form), ORV_FILE_APPEND, true) == 0 ? 1 : 0;
  told.ended = true;
}

}  // namespace orvio::faults
