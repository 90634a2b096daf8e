// Parts of a filer's file: GetPartInfo tells ids, titles and materials of the parts of a type, GetPartIdsAndNames ids
// and titles alone.

#include <optional>
#include <utility>

#include "entity/part_info.h"
#include "filer/container.h"
#include "h5/entry.h"
#include "orvio/orv_filer.h"

using namespace orvio;

std::uint64_t ORVFiler::GetPartInfo(const std::string& partType, std::vector<int>& ids, std::vector<std::string>& names,
                                    std::vector<int>& materialIds, std::vector<int>& materialTypes, int state) {
  std::optional<PartInfo> info;
  if (m_pData) h5::EntryVoid([&] { info = ReadPartInfo(m_pData->path.c_str(), partType, state); });
  names.clear();  // only now: the type may be one of them
  if (!info) return 0;
  ids = std::move(info->ids);
  names = std::move(info->names);
  materialIds = std::move(info->material_ids);
  materialTypes = std::move(info->material_types);
  return ids.size();
}

std::uint64_t ORVFiler::GetPartIdsAndNames(const std::string& partType, std::vector<int>& ids,
                                           std::vector<std::string>& names, int state) {
  std::vector<int> material_ids;
  std::vector<int> material_types;
  return GetPartInfo(partType, ids, names, material_ids, material_types, state);
}
