// The members of a variable, and how its block is found. What is read from and written into the block stands in
// variable_header.cpp, variable_data.cpp and variable_write.cpp.

#include "orvio/orv_variable.h"

#include <hdf5.h>

#include "block/reader_lease.h"
#include "h5/entry.h"
#include "h5/handle.h"
#include "h5/status.h"
#include "orvio/orv_unit.h"
#include "variable/variable_identity.h"

using namespace orvio;

ORVVariable::ORVVariable()
    : m_lenb(0),
      m_lend(0),
      m_pCompEid(nullptr),
      m_pCompType(nullptr),
      m_orgUnitCount(0),
      m_ppOrgUnitStr(nullptr),
      m_unitFlag(1) {
  m_BlkKey = 30;
  ReSetBlock(ORV_READ_HEADER | ORV_READ_DATA);
}

ORVVariable::ORVVariable(const ORVVariable& other) = default;

ORVVariable& ORVVariable::operator=(const ORVVariable& other) = default;

ORVVariable::~ORVVariable() {
  for (const ORVUnit* unit : m_units) delete unit;
}

void ORVVariable::ReSetBlock(int flags) {
  if (flags & ORV_READ_HEADER) {
    for (Text* text : {&m_varnam, &m_varkey, &m_varclass, &m_type}) Assign(*text, "");
    m_originalCount = 0;
    m_ncoo = m_rank = m_ndim = m_idtrans = m_tensor = m_lvmap = m_subslen = 0;
  }
  if (flags & ORV_READ_DATA) {
    m_mbunitType = m_mdunitType = m_ubidType = m_udidType = m_cidType = ORV_INT;
    m_ubexpType = m_udexpType = ORV_FLOAT;
    m_pMbunit = m_pMdunit = m_pUbid = m_pUdid = m_pCid = m_pSubscnt = m_pSubsoffs = nullptr;
    m_pUbexp = m_pUdexp = m_pVmap = nullptr;
    m_pCname = m_pSubscr = nullptr;
  }
}

// ---- Where the block is

int ORVVariable::AppendBlockSchema(std::string& path) {
  return h5::Entry(kFail, [&] {
    if (!path.empty()) path.append("/");
    path.append(GroupNameOf(*this));
    return kOk;
  });
}

hid_t ORVVariable::GetVariableBlkGrp(hid_t a, hid_t b) {
  IOH5Reader* reader = GetH5Reader();
  if (!reader) return H5I_INVALID_HID;
  return GetBlkVersion() == ORV_BLK_VERSION_SINGLE ? reader->OpenGroup(a, m_BlkPath.c_str(), H5P_DEFAULT)
                                                   : reader->OpenGroup(b, m_varnam, H5P_DEFAULT);
}

/// A variable that was found in a file is read again where it was found, one with another identity than is stored there
/// is looked for by it.
int ORVVariable::ReadBlock(const char* path, int state, int flags) {
  return h5::Entry(kFail, [&] {
    const ReaderLease reader(*this, path);
    if (!reader) return kFail;
    h5::Group group;
    if (GetBlkVersion() == ORV_BLK_VERSION_SINGLE) group.reset(GetVariableBlkGrp(reader->GetFileId(), H5I_INVALID_HID));
    if (group && !MayBeStoredIn(*this, *GetH5Reader(), group.get())) group.reset();
    if (!group) group.reset(OpenBlockGroup(state));
    return group ? ReadBlockStepWrap(group.get(), flags) : kFail;
  });
}

int ORVVariable::ReadBlockAt(const char* path, int state, int index, int flags) {
  return ORVBlock::ReadBlockAt(path, state, index, flags);
}

int ORVVariable::ReadNumBlock(const char* path, int state, int* count) {
  return ORVBlock::ReadNumBlock(path, state, count);
}

int ORVVariable::IterateBlock(const char* path, int state, int flags, ORVIterationCallBack action) {
  return ORVBlock::IterateBlock(path, state, flags, action);
}
