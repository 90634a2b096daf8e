// The header of a netCDF file of the classic forms, looked at before the netCDF library does.
//
// That library trusts such a header: one whose counts are damaged makes it allocate and write without bounds. And it
// takes a file that was cut off for a whole one and answers zeros for what is missing: results that nobody computed.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

namespace orvio::exodus {

/// Which bytes the variables of a file take up.
struct ClassicHeader {
  std::uint64_t end_of_fixed = 0;   ///< of the header and all variables without records
  std::uint64_t whole_records = 0;  ///< of which no byte is missing, whatever number the file announces
};

/// Nothing for a file that does not begin like one of the classic forms. Fails for a header that contradicts itself or
/// the size of the file, but not for missing values: those the caller has to look for.
std::optional<ClassicHeader> CheckClassicHeader(const std::filesystem::path& path, std::uint64_t file_size);

}  // namespace orvio::exodus
