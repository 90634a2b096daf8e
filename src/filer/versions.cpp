// Version numbers and triples, and the exported queries that answer them.

#include "filer/versions.h"

#include <hdf5.h>

#include <algorithm>
#include <iterator>

#include "filer/process_state.h"
#include "h5/entry.h"

namespace orvio {
namespace {

struct VersionRow {
  int number;
  int major;
  int minor;
};

/// Rows 0 to 5 are those of _ORVVersion. The others come from other writers and are known by number only.
constexpr VersionRow kVersions[] = {
    {ORV_VERSION_1_0, 1, 0},
    {ORV_VERSION_1_1, 1, 1},
    {ORV_VERSION_1_2, 1, 2},
    {ORV_VERSION_2_0, 2, 0},
    {ORV_VERSION_2_1, 2, 1},
    {ORV_VERSION_2_2, 2, 2},
    {6, 2, 3},
    {7, 2, 4},
    {8, 2, 5},
};

}  // namespace

ORVFileVersion VersionOfNumber(int number) {
  if (number < ORV_VERSION_1_0 || number > ORV_VERSION_2_2) return {1, 1, 0};
  return {kVersions[number].major, kVersions[number].minor, 0};
}

int NumberOfVersion(const ORVFileVersion& version) {
  const auto* row = std::ranges::find_if(kVersions, [&](const VersionRow& candidate) {
    return candidate.major == version.m_major && candidate.minor == version.m_minor;
  });
  if (row != std::end(kVersions)) return row->number;
  if (version.m_major == 1) return ORV_VERSION_1_0;
  if (version.m_major == 2) return ORV_VERSION_2_0;
  return -1;
}

}  // namespace orvio

void ORVGetReaderVersion(int* major, int* minor, int* patch) {
  *major = 2;
  *minor = 0;
  *patch = 0;
}

void ORVGetWriterVersion(int* major, int* minor, int* patch) {
  const ORVFileVersion version = orvio::VersionOfNumber(orvio::process().g_nWriterVersion);
  *major = version.m_major;
  *minor = version.m_minor;
  *patch = version.m_patch;
}

void ORVGetHdfVersion(int* major, int* minor, int* patch) {
  *major = *minor = *patch = 0;
  unsigned found[3] = {};
  orvio::h5::EntryVoid([&] {
    if (H5get_libversion(&found[0], &found[1], &found[2]) < 0) return;
    *major = static_cast<int>(found[0]);
    *minor = static_cast<int>(found[1]);
    *patch = static_cast<int>(found[2]);
  });
}
