// The exported switches of the process, the default error handler and the texts of failures.

#include "orvio/orv_switches.h"

#include <hdf5.h>

#include <algorithm>
#include <iterator>
#include <utility>

#include "filer/process_state.h"
#include "h5/entry.h"
#include "h5/kept_files.h"
#include "orvio/oh5_io.h"
#include "orvio/orv_filer.h"

using orvio::process;

int ORVSetCurrentWriterVersion(int version) { return std::exchange(process().g_nWriterVersion, version); }

int ORVGetCurrentWriterVersion() { return process().g_nWriterVersion; }

void ORVSetResultBlockOverWriteMode(int mode) { process().g_nResultOverwriteMode = mode; }

int ORVGetResultBlockOverWriteMode() { return process().g_nResultOverwriteMode; }

void OH5SetCompression(int on, int digits) { process().compression = {on, digits}; }

void OH5GetCompression(int* on, int* digits) {
  *on = process().compression.g_nCompressionOn;
  *digits = process().compression.g_nCompressionDigits;
}

int ORVSetChunkEntities(int entities) {
  const int before = process().chunk_entities;
  if (entities >= 0) process().chunk_entities = entities;
  return before;
}

namespace {

/// A switch of how files are read. Files that are open were opened under its old setting.
int SetReading(int& place, int mode) {
  const int before = place;
  if (mode != 0 && mode != 1) return before;
  place = mode;
  if (mode != before && process().kept_files) orvio::h5::EntryVoid([] { process().kept_files->CloseAll(); });
  return before;
}

}  // namespace

int ORVSetFileCheck(int mode) { return SetReading(process().file_check, mode); }

int ORVSetFileIndex(int mode) { return SetReading(process().file_index, mode); }

int ORVSetDurability(int mode) {
  const int before = process().durability;
  if (mode >= 0 && mode <= 2) process().durability = mode;
  return before;
}

int ORVSetLockTimeout(int milliseconds) {
  const int before = process().lock_timeout;
  if (milliseconds >= 0) process().lock_timeout = milliseconds;
  return before;
}

void ORVSetShallowFormatSupportFlag(int /*flag*/) {}

void ORVErrorDefultHandler(int code, const char* text) {
  const orvio::ProcessState& state = process();
  if (state.error_handler) return state.error_handler(code, text);
  if (!state.error_stream) return;
  if (!text) {
    (void)std::fprintf(state.error_stream, "\nError Code :: %d", code);  // nobody to tell if stderr is gone
  } else if (*text) {
    (void)std::fprintf(state.error_stream, "\n%s", text);
  }
}

int OH5SetErrorHandler(hid_t stack, H5E_auto2_t func, void* data) {
  // Not an Entry: the setting made here is to stay. HDF5 would tell of a wrong id aloud.
  if (stack < 1) return orvio::h5::QuietHdf5::SetForGood(func, data) < 0 ? 1 : 0;
  if (H5Iget_type(stack) != H5I_ERROR_STACK) return 1;
  return H5Eset_auto2(stack, func, data) < 0 ? 1 : 0;
}

void ORVFiler::SetVerbosCallback(ORVMessageCallBack callback) {
  _m_pMessageFuc = callback;
  process().extended_variable_message = callback;
  process().fetch_message = callback;
}

void ORVFiler::SetGlobalCompressionParameters(int on, int digits) {
  if (on != 0 && digits >= 0) {
    OH5SetCompression(on, digits);
  } else {
    OH5SetCompression(0, -1);
  }
}

const char* ORVGetLastErrorText() { return process().last_error; }

namespace {

struct StatusRow {
  int status;
  const char* text;
};

constexpr StatusRow kStatusTexts[] = {
    {4, "File open error"},
    {5, "File read error"},
    {6, "Invalid file"},
    {7, "Invalid arguments"},
    {8, "Invalid file handle"},
    {9, "Invalid version string"},
    {10, "Higher Major file version than reader"},
    {11, "Higher Minor file version than reader"},
    {12, "Group not found"},
    {13, "Not applicable"},
};

}  // namespace

const char* ORVGetStatusText(int status) {
  const auto* row = std::ranges::find(kStatusTexts, status, &StatusRow::status);
  if (row != std::end(kStatusTexts)) return row->text;
  char(&unknown)[64] = process().status_text;
  (void)std::snprintf(unknown, sizeof unknown, "UNKNOWN_ERROR(%d)", status);
  return unknown;
}

ORVExternalLink::ORVExternalLink() { Initialize(); }

void ORVExternalLink::Initialize() {
  std::fill(std::begin(m_text), std::end(m_text), '\0');
  m_first = 0;
  m_second = 0;
}
