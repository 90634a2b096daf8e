#pragma once

// Small results that together hold every kind of block.

#include <functional>
#include <string>
#include <vector>

#include "support/forged_model.h"

namespace orvio::fuzz {

struct Model {
  const char* name;
  std::function<void(orv_test::ForgedModel&, orv_test::ForgedModel::Layout)> fill;
};

std::vector<Model> SmallModels();

/// Files that lead to other files, in circles, or to what no reader knows.
struct HostileFile {
  const char* name;
  std::function<void(orv_test::ForgedFile&)> fill;
};

std::vector<HostileFile> HostileFiles();

}  // namespace orvio::fuzz
