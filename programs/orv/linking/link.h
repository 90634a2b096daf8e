// A VTKHDF sidecar of a result file: ParaView opens it and finds the values in the result file itself.
#pragma once

#include <filesystem>

#include "linking/report.h"

namespace orvio::program {

/// Writes the sidecar of `file` to `out`, which appears when it is whole. Throws Trouble, and UnfinishedSidecar
/// when writing fails.
LinkReport LinkFile(const std::filesystem::path& file, const std::filesystem::path& out);

}  // namespace orvio::program
