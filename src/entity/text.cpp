// The block of a free text, read and written. It stands in "post/constant/text/<name>", or in the "text" of a state.

#include <climits>
#include <string>
#include <utility>

#include "block/block_keys.h"
#include "block/home_group.h"
#include "block/stored_shapes.h"
#include "h5/dataset_reader.h"
#include "h5/disk_names.h"
#include "h5/entry.h"
#include "h5/header_io.h"
#include "h5/status.h"
#include "h5/text_field.h"
#include "orvio/oh5_io.h"
#include "orvio/orv_definitions.h"

using namespace orvio;

ORVText::ORVText() {
  m_BlkKey = kTextKey;
  ORVText::InitializeBlock();
}

ORVText::~ORVText() = default;

void ORVText::InitializeBlock() {
  Assign(m_etyptext, "");
  m_nlines = m_length = 0;
  m_pLines = nullptr;
}

int ORVText::AppendBlockSchema(std::string& path) {
  return h5::Entry(kFail, [&] {
    if (!path.empty()) path += "/";
    path += Content(m_etyptext);
    return kOk;
  });
}

// ---- Reading

int ORVText::ReadHeader(hid_t header, int flags) {
  if (!(flags & ORV_READ_HEADER)) return kFail;
  h5::HeaderReader in(GetH5Reader(), header);
  in.required(disk::block, m_BlkKey);
  in.required(disk::etyptext, m_etyptext);
  in.required(disk::nlines, m_nlines);
  in.required(disk::length, m_length);
  in.strip(m_etyptext);
  in.tolerated(disk::indexic, m_nIncremental);  // other writers store it, this one never does
  return in.status();
}

int ORVText::ReadData(hid_t data, int flags) {
  if (!(flags & ORV_READ_DATA) || m_nlines == 0 || m_length == 0) return kFail;
  return h5::Entry(kFail, [&] {
    h5::DatasetReader in(GetH5Reader(), data);
    in.texts(disk::line, m_length, m_pLines, m_nlines);
    return in.status();
  });
}

int ORVText::ReadBlockOver(const char* file, int stages, ORVIterationCallBack action, int first, int last, int step,
                           const char* /*name*/) {
  if (!file || !action || Content(m_etyptext).empty()) return kFail;
  return h5::Entry(kFail, [&] {
    const std::string own = std::string("./") + disk::text + "/" + std::string(Content(m_etyptext));
    return ORVBlock::IterateBlockOver(file, stages, action, first, last, step, own.c_str(), 0);
  });
}

// ---- Writing

int ORVText::WriteHeader(hid_t header) {
  h5::HeaderWriter out(header);
  out.integer(disk::block, m_BlkKey);
  out.text(disk::blocktype, disk::text);
  out.text(disk::etyptext, m_etyptext);
  out.integer(disk::nlines, m_nlines);
  out.integer(disk::length, m_length);
  return out.status();
}

int ORVText::WriteData(hid_t data) {
  if (m_nlines < 1 || m_length < 1 || m_length > INT_MAX) return kFail;
  const auto count = static_cast<hsize_t>(m_nlines);
  return OH5Write_CHAR(data, disk::line, 1, &count, static_cast<int>(m_length), m_pLines);
}

namespace {

constexpr HomeRule kTextHome = {disk::text, false, false};

}  // namespace

int ORVText::WriteBlock(const char* path, int state, int flags) {
  if (!path) return kFail;
  const int what = flags & (ORV_WRITE_HEADER | ORV_WRITE_DATA);
  return h5::Entry(kFail, [&] {
    const WriteAccess access;
    Home home = OpenHome(path, state, kTextHome);
    const std::string_view name = Content(m_etyptext);
    const WrittenShapes lines = {{disk::line, {m_nlines}, static_cast<std::size_t>(m_length)}};
    if (!home.group || (what & ORV_WRITE_DATA && !FitsStoredBlock(home.group.get(), name, lines))) return kFail;
    return WriteIntoHome(*this, std::move(home), name, ExistingName::kIsWrittenInto, what);
  });
}

int ORVText::WriteSelectiveAttribute(const char* path, int state, int sections, _ORVBlockAtt att, int rank,
                                     std::uint64_t* start, std::uint64_t* count, std::uint64_t* stride,
                                     std::uint64_t* block, std::uint64_t* extent) {
  if (!path || !(sections & ORV_WRITE_DATA)) return kFail;
  return h5::Entry(kFail, [&] {
    const WriteAccess access;
    return WriteIntoHome(OpenHome(path, state, kTextHome), Content(m_etyptext), ExistingName::kIsWrittenInto,
                         ORV_WRITE_DATA, [&](const BlockParts& parts) {
                           return WriteSelAttData(parts.data(), att, rank, start, count, stride, block, extent);
                         });
  });
}

// NOLINTBEGIN(readability-non-const-parameter): the signature is fixed

int ORVText::WriteSelAttData(hid_t data, _ORVBlockAtt /*att*/, int rank, std::uint64_t* start, std::uint64_t* count,
                             std::uint64_t* stride, std::uint64_t* block, std::uint64_t* extent) {
  if (!extent && m_length < 1) return kFail;
  const auto width = extent ? *extent : static_cast<hsize_t>(m_length);
  return OH5Write_SELECTIVE(data, disk::line, rank, start, count, stride, block, ORV_CHAR, &width, m_pLines);
}

// NOLINTEND(readability-non-const-parameter)
