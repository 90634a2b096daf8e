// Making a file and writing blocks to it: InitForWriting, WriteBlock, WriteBlkGivenPath, DeleteLinks and
// WriteSelectiveResultAttribute. All writes of a filer go out in the version given to InitForWriting, but for the
// last, which follows the file that the filer reads.

#include <hdf5.h>

#include <string>

#include "block/reader_lease.h"
#include "filer/container.h"
#include "filer/file_facts.h"
#include "filer/process_state.h"
#include "filer/write_file.h"
#include "h5/disk_names.h"
#include "h5/entry.h"
#include "h5/file_access.h"
#include "h5/group_paths.h"
#include "h5/remembered_names.h"
#include "h5/status.h"
#include "h5/text_field.h"
#include "orvio/orv_filer.h"
#include "orvio/orv_result.h"

using namespace orvio;

int ORVFiler::InitForWriting(const char* name, _ORVVersion version, _ORVFileMode mode, bool keepTree) {
  // For good, and not as an Entry does it: a writer's host wants no HDF5 output from here on.
  (void)h5::QuietHdf5::SetForGood(nullptr, nullptr);  // cannot fail for the default stack
  return h5::Entry(kFail, [&] {
    ORVContainer* made = nullptr;
    const int status = MakeFileForWriting(name, version, mode, keepTree, &made);
    if (made) Release(std::exchange(m_pWriteData, made));
    return status;
  });
}

namespace {

/// What the last error text names a block by: its names, or its place.
std::string Described(ORVBlock& block) {
  std::string path;
  if (const auto* result = dynamic_cast<const ORVResult*>(&block)) {
    return path.append(Content(result->m_etyp)).append("/").append(Content(result->m_etypvar));
  }
  if (ORVBlockAccess::AppendSchema(block, path) == kOk && !path.empty()) return path;
  return block.GetBlkPath();
}

/// Puts in front of the cause, if one is known, what could not be written.
void TellWhatFailed(ORVBlock& block, const std::string& place, const std::string& told_before) {
  const std::string cause = process().last_error;
  const bool is_known = !cause.empty() && cause != told_before;
  SetLastError("Write Failed ::\"%s\" in %s%s%s", Described(block).c_str(), place.c_str(), is_known ? "\n\t " : "",
               is_known ? cause.c_str() : "");
}

/// Runs a write. One that fails spoils the change that it is part of.
template <class Write>
int RunWrite(ORVContainer& container, ORVBlock& block, const std::string& place, Write&& write) {
  const std::string told_before = process().last_error;
  const int status = write();
  if (status == kOk) return status;
  if (container.change) container.change->Spoil();
  TellWhatFailed(block, place, told_before);
  return status;
}

/// Whether a state can be written without a gap before it.
bool MayBeWritten(hid_t file, int state) {
  if (state == 0) return true;
  const h5::Group section = h5::OpenGroup(file, h5::GroupPath(h5::kSinglestate).c_str());
  return section && state - 1 <= h5::StatesOfWriter(file, section.get()).count();
}

}  // namespace

int ORVFiler::BeginState(int state) {
  if (!m_pWriteData || m_pWriteData->change || state < 0) return kFail;
  return h5::Entry(kFail, [&] {
    const Swapped among_itself(process().is_among_itself, true);
    auto change = std::make_unique<h5::WriteFile>(h5::OpenFile(m_pWriteData->path.c_str(), H5F_ACC_RDWR));
    if (!*change || !MayBeWritten(change->get(), state)) return kFail;
    m_pWriteData->change = std::move(change);
    return kOk;
  });
}

int ORVFiler::EndState(bool keep) {
  if (!m_pWriteData || !m_pWriteData->change) return kFail;
  return h5::Entry(kFail, [&] {
    const std::unique_ptr<h5::WriteFile> change = std::move(m_pWriteData->change);
    return keep ? change->Finish(kOk) : change->GiveUp();
  });
}

int ORVFiler::WriteBlock(ORVBlock* block, int state, int what) {
  if (!block || !m_pWriteData) return kFail;
  return h5::Entry(kFail, [&] {
    const auto version = UseWriterVersion(*m_pWriteData);
    const std::string place = state > 0 ? "state " + std::to_string(state) : disk::constant;
    return RunWrite(*m_pWriteData, *block, place,
                    [&] { return block->WriteBlock(m_pWriteData->path.c_str(), state, what); });
  });
}

int ORVFiler::WriteBlkGivenPath(ORVBlock* block, const std::string& path, int what) {
  if (!block || !m_pWriteData) return kFail;
  return h5::Entry(kFail, [&] {
    const auto version = UseWriterVersion(*m_pWriteData);
    return RunWrite(*m_pWriteData, *block, path,
                    [&] { return block->WriteBlkGivenPath(m_pWriteData->path.c_str(), path, what); });
  });
}

int ORVFiler::DeleteLinks(ORVBlock* block, std::vector<std::string>& names) {
  if (!block || !m_pWriteData) return kFail;
  return h5::Entry(kFail, [&] {
    const auto version = UseWriterVersion(*m_pWriteData);
    std::vector<std::string> paths = LinksBelow(block->GetBlkPath(), names);
    const int status = block->DeleteLinks(m_pWriteData->path.c_str(), paths);
    if (status != kOk && m_pWriteData->change) m_pWriteData->change->Spoil();
    return status;
  });
}

int ORVFiler::WriteSelectiveResultAttribute(ORVResult* result, int state, int sections, _ORVBlockAtt att, int rank,
                                            std::uint64_t* start, std::uint64_t* count, std::uint64_t* stride,
                                            std::uint64_t* block, std::uint64_t* extent) {
  if (!result || !m_pData || !GetFileVersion()) return kFail;
  const auto version = UseWriterVersion(*m_pData);
  return result->WriteSelectiveAttribute(m_pData->path.c_str(), state, sections, att, rank, start, count, stride, block,
                                         extent);
}
