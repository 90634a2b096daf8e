#pragma once

// What the lifecycle operations of a filer rest on: the sharing of containers and the facts of a file.

#include "orvio/orv_types.h"

struct ORVContainer;

namespace orvio {

/// Answers of AvailableDatasets, and the flags by which lookups choose a list.
inline constexpr int kSinglestateData = 1;
inline constexpr int kMultistateData = 2;

/// One more sharer; null stays null.
ORVContainer* Share(ORVContainer* container);
/// One sharer less; the last one frees the container and all in it.
void Release(ORVContainer* container);
/// What a filer holds, for answers by reference: lists that stay empty for one that lack of memory left without a
/// container.
ORVContainer& DataOf(ORVContainer* container);
/// Frees what was read from the file.
void ClearContainer(ORVContainer& container);

/// Bit of a configuration number; the low five bits of the number count.
constexpr unsigned ConfigBit(int config) { return 1U << (static_cast<unsigned>(config) & 31U); }

/// The container's version, read from the file at the first call and never again.
ORVFileVersion* VersionOnDemand(ORVContainer& container);

int AvailableDatasets(const ORVContainer& container);

bool FileHasRootGroup(const char* file, const char* name);

}  // namespace orvio
