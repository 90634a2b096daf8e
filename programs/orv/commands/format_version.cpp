#include "commands/format_version.h"

#include <map>

namespace orvio::program {
namespace {

const std::map<std::string, _ORVVersion> kVersions = {
    {"1.0", ORV_VERSION_1_0}, {"1.1", ORV_VERSION_1_1}, {"1.2", ORV_VERSION_1_2},
    {"2.0", ORV_VERSION_2_0}, {"2.1", ORV_VERSION_2_1}, {"2.2", ORV_VERSION_2_2},
};

}  // namespace

std::vector<std::string> VersionNames() {
  std::vector<std::string> names;
  for (const auto& [name, version] : kVersions) names.push_back(name);
  return names;
}

_ORVVersion VersionNamed(const std::string& name) { return kVersions.at(name); }

}  // namespace orvio::program
