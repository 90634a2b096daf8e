// Records of texts, integers and floats, in place of the values of a result: header, data, and single items. The way
// to the block is that of a result; finding all of them is in properties_discovery.cpp.

#include "orvio/orv_properties.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <optional>

#include "filer/process_state.h"
#include "h5/dataset_reader.h"
#include "h5/disk_names.h"
#include "h5/entry.h"
#include "h5/extents.h"
#include "h5/file_access.h"
#include "h5/header_io.h"
#include "h5/status.h"
#include "h5/stored_dataset.h"
#include "result/result_datasets.h"

using namespace orvio;

ORVProperties::ORVProperties()
    : ORVResult(ORV_RESULT_PROPERTIES),
      m_length(0),
      m_nbfloat(0),
      m_nbid(0),
      m_nbint(0),
      m_nbstring(0),
      m_cparam(nullptr),
      m_iparam(nullptr),
      m_fparam(nullptr),
      m_readCallBack(nullptr),
      m_readCallBackData(nullptr) {}

ORVProperties::~ORVProperties() = default;

void ORVProperties::Initialize() {
  m_length = m_nbfloat = m_nbid = m_nbint = m_nbstring = 0;
  m_cparam = nullptr;
  m_iparam = nullptr;
  m_fparam = nullptr;
}

int ORVProperties::ReadHeader(hid_t group, int flags) {
  h5::HeaderReader in(GetH5Reader(), group);
  in.required(disk::block, m_BlkKey);
  in.defaulted(disk::indexic, m_nIncremental);
  if (m_BlkKey != ORV_RESULT_PROPERTIES || !(flags & ORV_READ_HEADER)) return in.status();
  in.required(disk::etypprop, m_etypvar);
  in.required(disk::length, m_length);
  in.required(disk::nbfloat, m_nbfloat);
  in.required(disk::nbid, m_nbid);
  in.required(disk::nbint, m_nbint);
  in.required(disk::nbstring, m_nbstring);
  in.required(disk::etyp, m_etyp);
  in.required(disk::nent, m_nent);
  in.defaulted(disk::etypzone, m_etypzone);
  in.strip(m_etypzone);
  in.defaulted(disk::zoneid, m_zoneid);
  in.if_present(disk::nindex, m_nindex);
  in.strip(m_etyp);  // these two only now: both keep their blanks where a line above has failed
  in.strip(m_etypvar);
  return in.status();
}

namespace {

/// Bytes of the texts of a block with so many texts an entity; nothing for counts that are impossible.
std::optional<std::uint64_t> TextBytes(const ORVProperties& block, int texts) {
  if (block.m_length < 1 || block.m_nent < 1 || texts < 1) return std::nullopt;
  const hsize_t factors[] = {static_cast<hsize_t>(block.m_length), static_cast<hsize_t>(texts),
                             static_cast<hsize_t>(block.m_nent)};
  return h5::Product(3, factors);
}

/// The texts as they are stored: one or many in any shape.
std::optional<h5::Extents> StoredTexts(hid_t data) {
  h5::StoredDataset dataset(data, disk::cparam);
  return dataset ? std::optional(dataset.extents()) : std::nullopt;
}

/// Bytes that the stored texts of a length claim; nothing when they cannot be counted.
std::optional<std::uint64_t> BytesOf(const h5::Extents& stored, int length) {
  const hsize_t factors[] = {stored.points, static_cast<hsize_t>(length)};
  return h5::Product(2, factors);
}

/// Reads all stored texts, each of exactly `length` bytes, one behind the other, if they fit into `room` bytes.
[[nodiscard]] int ReadTexts(IOH5Reader* reader, hid_t data, int length, char* buffer, std::uint64_t room) {
  auto stored = StoredTexts(data);
  const auto bytes = stored && length > 0 ? BytesOf(*stored, length) : std::nullopt;
  if (!reader || !buffer || !bytes || *bytes > room || stored->rank >= H5S_MAX_RANK) return kFail;
  stored->dims[stored->rank] = static_cast<hsize_t>(length);
  return reader->ReadDatasetAll(data, disk::cparam, stored->rank + 1, stored->dims, ORV_CHAR, buffer);
}

/// Into the block's own buffer, which the caller has made for the counts of the header.
[[nodiscard]] int ReadOwnTexts(ORVProperties& block, IOH5Reader* reader, hid_t data) {
  const auto room = TextBytes(block, block.m_nbstring);
  return room ? ReadTexts(reader, data, block.m_length, block.m_cparam, *room) : kFail;
}

[[nodiscard]] int ReadIds(ORVProperties& block, IOH5Reader* reader, hid_t data) {
  h5::DatasetReader in(reader, data);
  in.integers(disk::entid, block.m_entidType, block.m_entid, {block.m_nent});
  return in.status();
}

/// QUIRK: ids that cannot be read end nothing, and records read behind them make it a success. Writers leave the ids
/// out where all entities have a record, and hosts read these records. Pinned by
/// PropertiesData.MissingIdsCountOnlyWithoutRecordsBehindThem.
[[nodiscard]] int ReadRecords(ORVProperties& block, IOH5Reader* reader, hid_t data) {
  int status = kOk;
  if (block.m_cparam && block.m_length != 0 && block.m_nbstring != 0) {
    status = ReadOwnTexts(block, reader, data);
    if (status != kOk) return status;
  }
  if (block.m_entid) status = ReadIds(block, reader, data);
  h5::DatasetReader in(reader, data);
  const bool integers = block.m_iparam && block.m_nbint != 0;
  const bool floats = block.m_fparam && block.m_nbfloat != 0;
  if (integers) in.integers(disk::iparam, ORV_INT, block.m_iparam, {block.m_nent, block.m_nbint});
  if (floats) in.floats(disk::fparam, ORV_FLOAT, block.m_fparam, {block.m_nent, block.m_nbfloat});
  return integers || floats ? in.status() : status;
}

}  // namespace

int ORVProperties::ReadData(hid_t group, int flags) {
  if (!(flags & ORV_READ_DATA) || m_nent == 0) return kOk;
  return h5::Entry(kFail, [&] { return ReadRecords(*this, GetH5Reader(), group); });
}

int ORVProperties::ReadIndex(hid_t group, int flags) {
  return ReadIndexComm(group, static_cast<hsize_t>(m_nindex), static_cast<hsize_t>(m_nstate), flags, &m_indexidentType,
                       m_indexident, &m_indexvalType, m_indexval);
}

// ---- One item

int ORVProperties::ReadSelAtt(hid_t group, int state, _ORVBlockAtt att, int rank, std::uint64_t* start,
                              std::uint64_t* count, std::uint64_t* stride, std::uint64_t* block) {
  if (att != ORV_ATT_CPARAM) return ORVResult::ReadSelAtt(group, state, att, rank, start, count, stride, block);
  return h5::Entry(kFail, [&] {
    const ResultParts parts(group);
    const hid_t data = parts.of(ResultPart::kData);
    if (ReadOwnTexts(*this, GetH5Reader(), data) != kOk) return kFail;
    return m_readIds && m_entid ? ReadIds(*this, GetH5Reader(), data) : kOk;
  });
}

namespace {

struct Free {
  void operator()(void* memory) const { std::free(memory); }
};
using Bytes = std::unique_ptr<char, Free>;

/// Writers leave the ids out where all entities have a record.
[[nodiscard]] int ReadIdsThatExist(ORVProperties& block, IOH5Reader* reader, hid_t data) {
  return h5::LinkExists(data, disk::entid) ? ReadIds(block, reader, data) : kOk;
}

/// Zeroed room for texts of a length and a terminator; null when nothing in the file stands behind its size.
Bytes MakeRoom(std::uint64_t room, int length, hid_t data) {
  const auto each = static_cast<std::uint64_t>(length);
  if (room >= h5::kUnbackedBytes && room / each > h5::BackedElements(data, disk::cparam, each)) return nullptr;
  return Bytes(static_cast<char*>(std::calloc(static_cast<std::size_t>(room) + 1, 1)));
}

}  // namespace

int ORVProperties::ReadSelAttWithCallBack(hid_t group, int state, _ORVBlockAtt att, int rank, std::uint64_t* start,
                                          std::uint64_t* count, std::uint64_t* stride, std::uint64_t* block) {
  const bool hands_over = m_readCallBack && m_length != 0 && m_nent != 0 && att == ORV_ATT_RES && m_entid && m_readIds;
  if (!hands_over) return ReadSelAtt(group, state, att, rank, start, count, stride, block);
  return h5::Entry(kFail, [&] {
    const ResultParts parts(group);
    const hid_t data = parts.of(ResultPart::kData);
    const auto room = TextBytes(*this, std::max(m_nbstring, 1));
    const Bytes texts = room ? MakeRoom(*room, m_length, data) : nullptr;
    if (!texts) return kFail;
    const int ids_status = ReadIdsThatExist(*this, GetH5Reader(), data);
    const int texts_status = ReadTexts(GetH5Reader(), data, m_length, texts.get(), *room);
    const int status = texts_status != kOk ? texts_status : ids_status;
    const Swapped<char*> for_the_call(m_cparam, texts.get());
    m_readCallBack(status, this, m_readCallBackData);
    return status;
  });
}
