// The extents of datasets, without their values.

#include "reading/stored_size.h"

#include <filesystem>

namespace orvio::program {
namespace {

constexpr double kValuesPerByte = 1000;  // more than any compression of a dataset of ours reaches

}  // namespace

bool FitsIntoFile(const std::string& file, double count) {
  std::error_code error;
  const auto bytes = static_cast<double>(std::filesystem::file_size(file, error));
  return !error && count <= bytes * kValuesPerByte;
}

bool HoldsValues(const std::string& file, const ORVBlock& block, const std::string& dataset, double count) {
  if (!FitsIntoFile(file, count)) return false;
  constexpr int kMaxRank = 32;
  OH5Reader reader(file.c_str());
  const bool is_single = block.GetBlkVersion() == ORV_BLK_VERSION_SINGLE;
  const hid_t place =
      reader.OpenGroup(reader.GetFileId(), (block.GetBlkPath() + (is_single ? "" : "/data")).c_str(), 0);
  if (place < 0) return false;
  int rank = 0;
  hsize_t extents[kMaxRank] = {};
  hsize_t total = 0;
  _ORVDataType type = ORV_UNKNOWN_TYPE;
  const int status = reader.GetDatasetInfo(place, dataset, rank, extents, total, type, nullptr);
  (void)reader.CloseGroup(place);  // the reader closes what is left
  return status == 0 && count <= static_cast<double>(total);
}

}  // namespace orvio::program
