// A group of variables: its fields, its place in a file, its header and data, and the write of the whole block. What it
// answers for its variables is in variable_group_query.cpp and variable_group_handles.cpp.

#include <algorithm>
#include <string>

#include "block/block_keys.h"
#include "block/block_write.h"
#include "block/reader_lease.h"
#include "block/stored_shapes.h"
#include "h5/dataset_reader.h"
#include "h5/disk_names.h"
#include "h5/entry.h"
#include "h5/file_access.h"
#include "h5/group_paths.h"
#include "h5/header_io.h"
#include "h5/status.h"
#include "h5/text_field.h"
#include "orvio/oh5_io.h"
#include "orvio/orv_variable_grp.h"

using namespace orvio;

ORVVariableGrp::ORVVariableGrp()
    : m_grpName{}, m_nvar(0), m_ncoo(0), m_pCnt(nullptr), m_pOffs(nullptr), m_pKeys(nullptr) {
  m_BlkKey = kVariableGroupKey;
}

ORVVariableGrp::~ORVVariableGrp() = default;

void ORVVariableGrp::ReSetBlock(int flags) {
  if (flags & ORV_READ_HEADER) {
    Assign(m_grpName, "");
    m_nvar = m_ncoo = 0;
  }
  if (flags & ORV_READ_DATA) {
    m_pCnt = m_pOffs = nullptr;
    m_pKeys = nullptr;
  }
}

// ---- Where the block is

int ORVVariableGrp::AppendBlockSchema(std::string& path) {
  return h5::Entry(kFail, [&] {
    if (!path.empty()) path.append("/");
    path.append(Content(m_grpName, sizeof m_grpName));
    return kOk;
  });
}

hid_t ORVVariableGrp::GetVariableGroupBlkGrp(hid_t a, hid_t b) {
  IOH5Reader* reader = GetH5Reader();
  if (!reader) return H5I_INVALID_HID;
  if (GetBlkVersion() == ORV_BLK_VERSION_SINGLE) return reader->OpenGroup(a, m_BlkPath.c_str(), H5P_DEFAULT);
  return h5::Entry<hid_t>(H5I_INVALID_HID, [&] {
    const std::string name(Content(m_grpName, sizeof m_grpName));  // a host may have filled it to the last byte
    return reader->OpenGroup(b, name.c_str(), H5P_DEFAULT);
  });
}

/// A group that was found in a file is read again where it was found, any other one is looked for by its name.
int ORVVariableGrp::ReadBlock(const char* path, int state, int flags) {
  return h5::Entry(kFail, [&] {
    const ReaderLease reader(*this, path);
    if (!reader) return kFail;
    h5::Group group;
    if (GetBlkVersion() == ORV_BLK_VERSION_SINGLE) {
      group.reset(GetVariableGroupBlkGrp(reader->GetFileId(), H5I_INVALID_HID));
    }
    if (!group) group.reset(OpenBlockGroup(state));
    return group ? ReadBlockStepWrap(group.get(), flags) : kFail;
  });
}

int ORVVariableGrp::ReadBlockAt(const char* path, int state, int index, int flags) {
  return ORVBlock::ReadBlockAt(path, state, index, flags);
}

int ORVVariableGrp::ReadNumBlock(const char* path, int state, int* count) {
  return ORVBlock::ReadNumBlock(path, state, count);
}

int ORVVariableGrp::IterateBlock(const char* path, int state, int flags, ORVIterationCallBack action) {
  return ORVBlock::IterateBlock(path, state, flags, action);
}

// ---- Header and data

int ORVVariableGrp::ReadHeader(hid_t header, int flags) {
  if (!(flags & ORV_READ_HEADER)) return kFail;
  return h5::Entry(kFail, [&] {
    h5::HeaderReader in(GetH5Reader(), header);
    in.required(disk::block, m_BlkKey);
    in.required(disk::etypvar, m_grpName);
    in.required(disk::ncoo, m_ncoo);
    in.required(disk::nvar, m_nvar);
    in.strip(m_grpName);
    return in.status();
  });
}

int ORVVariableGrp::ReadData(hid_t data, int flags) {
  if (!(flags & ORV_READ_DATA) || m_nvar == 0) return kFail;
  return h5::Entry(kFail, [&] {
    h5::DatasetReader in(GetH5Reader(), data);
    // The arrays are of 4 bytes whatever the width in the file.
    if (m_pCnt) in.integers(disk::cnt, ORV_INT, m_pCnt, {m_nvar});
    if (m_pOffs) in.integers(disk::offs, ORV_INT, m_pOffs, {m_nvar});
    if (m_pKeys) in.texts(disk::varkey, disk::kTextWidth, m_pKeys, m_nvar);
    if (in.ok() && m_pKeys) StripEach(m_pKeys, static_cast<std::uint64_t>(m_nvar));
    return in.status();
  });
}

int ORVVariableGrp::WriteHeader(hid_t header) {
  return h5::Entry(kFail, [&] {
    h5::HeaderWriter out(header);
    out.integer(disk::block, m_BlkKey);
    out.text(disk::blocktype, disk::variablegroup);
    out.text(disk::etypvar, m_grpName);
    out.integer(disk::ncoo, m_ncoo);
    out.integer(disk::nvar, m_nvar);
    return out.status();
  });
}

int ORVVariableGrp::WriteData(hid_t data) {
  if (m_nvar <= 0) return kFail;
  return h5::Entry(kFail, [&] {
    const auto count = static_cast<hsize_t>(m_nvar);
    int status = OH5Write_INT(data, disk::cnt, 1, &count, ORV_INT, m_pCnt);
    if (status == kOk) status = OH5Write_INT(data, disk::offs, 1, &count, ORV_INT, m_pOffs);
    return status == kOk ? OH5Write_CHAR(data, disk::varkey, 1, &count, disk::kTextWidth, m_pKeys) : status;
  });
}

namespace {

/// The place of all groups, which older files lack, and the block in it.
int WriteInto(hid_t file, ORVVariableGrp& group, int what) {
  h5::Group constant = h5::OpenGroup(file, h5::GroupPath(h5::kConstant).c_str());
  h5::Group place = constant ? h5::OpenOrCreateGroup(constant.get(), disk::variablegroup) : h5::Group();
  if (!place) return kFail;
  const std::string name(Content(group.m_grpName, sizeof group.m_grpName));
  if (name.empty()) return kFail;
  const WrittenShapes shapes = {
      {disk::cnt, {group.m_nvar}}, {disk::offs, {group.m_nvar}}, {disk::varkey, {group.m_nvar}, disk::kTextWidth}};
  if (what & ORV_WRITE_DATA && !FitsStoredBlock(place.get(), name, shapes)) return kFail;
  int status = kFail;
  {
    BlockParts parts(place.get(), name.c_str(), what);
    if (parts) status = parts.Close(WriteStages(group, parts, what));
  }
  const bool closed = place.Close();
  return constant.Close() && closed ? status : kFail;
}

}  // namespace

int ORVVariableGrp::WriteBlock(const char* path, int /*state*/, int flags) {
  if (!path) return kFail;
  return h5::Entry(kFail, [&] {
    h5::WriteFile file(h5::OpenFile(path, H5F_ACC_RDWR));
    if (!file) return kFail;
    return file.Finish(WriteInto(file.get(), *this, flags & (ORV_WRITE_HEADER | ORV_WRITE_DATA)));
  });
}
