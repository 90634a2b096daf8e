// The header of a variable. It stands in the group "header" of files up to version 1.2 and in "orvblock" of later ones.

#include <algorithm>

#include "filer/process_state.h"
#include "filer/versions.h"
#include "h5/disk_names.h"
#include "h5/entry.h"
#include "h5/header_io.h"
#include "h5/status.h"
#include "orvio/oh5_io.h"
#include "orvio/orv_variable.h"
#include "variable/variable_identity.h"

using namespace orvio;

namespace {

/// QUIRK: the terminator never stands behind byte 255, so a text of exactly 256 characters loses its last one, and
/// may then end in a blank. Result blocks name their variable with the cut text; kept whole, no name of that length
/// would be found again. Pinned by VariableHeader.ATextOfExactly256CharactersLosesTheLast.
void Strip(h5::HeaderReader& in, Text& text) {
  in.strip(text);
  if (in.ok()) text[disk::kTextWidth - 1] = '\0';
}

/// A word that other writers leave out. One that cannot be read is left out too.
void ReadWord(h5::HeaderReader& in, const char* name, Text& text) {
  if (in.attempted(name, text)) Strip(in, text);
}

void ReadName(h5::HeaderReader& in, Text& name) {
  if (!in.attempted(disk::etypvar, name)) in.required(disk::varnam, name);
}

/// QUIRK: an empty word is filled with blanks in the object itself, so that it no longer counts as a variable without
/// a key until it is read again. Hosts look such objects up by a key of blanks and would lose them. Pinned by
/// VariableHeaderWrite.FillsEmptyWordsOfTheObjectWithBlanks.
const char* BlanksIfEmpty(Text& text) {
  if (text[0] == '\0') {
    std::fill_n(text, disk::kTextWidth, ' ');
    text[disk::kTextWidth] = '\0';
  }
  return text;
}

/// QUIRK: whether this could be written does not count: a variable without its `vmap` is of use all the same, and
/// files that hold the attribute with another class are rewritten without complaint. Pinned by
/// VariableHeaderWrite.IgnoresTheStatusOfLvmap.
void WriteMapFlag(const h5::HeaderWriter& out, hid_t header, std::int64_t lvmap) {
  const int flag = static_cast<int>(lvmap);
  if (out.ok()) (void)OH5write_ATTRIBUTE(header, disk::lvmap, nullptr, ORV_INT, 0, &flag);  // see above
}

}  // namespace

bool orvio::MayBeStoredIn(const ORVVariable& variable, IOH5Reader& reader, hid_t group) {
  const std::string_view asked = GroupNameOf(variable);
  if (asked.empty()) return true;
  ORVVariable stored;
  h5::HeaderReader in(&reader, group);
  ReadName(in, stored.m_varnam);
  Strip(in, stored.m_varnam);
  ReadWord(in, disk::varkey, stored.m_varkey);
  return in.ok() && EqualIgnoringCase(asked, GroupNameOf(stored));
}

int ORVVariable::ReadHeader(hid_t header, int flags) {
  if (!(flags & ORV_READ_HEADER)) return kFail;
  return h5::Entry(kFail, [&] {
    h5::HeaderReader in(GetH5Reader(), header);
    in.required(disk::block, m_BlkKey);
    ReadName(in, m_varnam);
    in.required(disk::ncoo, m_ncoo);
    if (in.ok()) m_originalCount = static_cast<std::uint64_t>(m_ncoo);
    Strip(in, m_varnam);
    in.required(disk::rank, m_rank);
    in.tolerated(disk::ndim, m_ndim);
    in.if_present(disk::idtrans, m_idtrans);
    ReadWord(in, disk::varkey, m_varkey);
    ReadWord(in, disk::varclass, m_varclass);
    ReadWord(in, disk::type, m_type);
    in.if_present(disk::lenb, m_lenb);
    in.if_present(disk::lend, m_lend);
    in.if_present(disk::subslen, m_subslen);
    in.if_present(disk::lvmap, m_lvmap);
    in.if_present(disk::tensor, m_tensor);
    return in.status();
  });
}

int ORVVariable::WriteHeader(hid_t header) {
  if (m_ncoo == 0) return kFail;
  return h5::Entry(kFail, [&] {
    h5::HeaderWriter out(header);
    out.integer(disk::block, m_BlkKey);
    out.integer(disk::rank, m_rank);
    out.integer(disk::ndim, m_ndim);
    out.integer(disk::ncoo, m_ncoo);
    if (process().g_nWriterVersion < kFirstSingleLayoutVersion) {
      out.text(disk::blocktype, disk::variables);
      out.text(disk::etypvar, m_varnam);
      out.integer(disk::idtrans, m_idtrans);
      return out.status();
    }
    out.text(disk::blocktype, disk::variable);
    out.text(disk::varnam, m_varnam);
    out.text(disk::varkey, BlanksIfEmpty(m_varkey));
    out.text(disk::varclass, BlanksIfEmpty(m_varclass));
    out.text(disk::type, BlanksIfEmpty(m_type));
    WriteMapFlag(out, header, m_lvmap);
    out.integer32(disk::subslen, static_cast<int>(m_subslen));
    out.integer32(disk::tensor, static_cast<int>(m_tensor));
    return out.status();
  });
}
