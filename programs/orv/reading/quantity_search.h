// What the name of a quantity means in a file: the blocks that hold it, and their components.
#pragma once

#include <orvio/orvio.h>

#include <string>
#include <vector>

#include "reading/result_file.h"
#include "reading/value_request.h"

namespace orvio::program {

/// A component of a block: what it is called, and the handle by which it is fetched.
struct ComponentColumn {
  std::string label, unit;
  int iid;
};

/// The blocks of a name.
struct FoundQuantity {
  std::string NameIn(const ORVResult& block) const;

  std::vector<ORVResult*> blocks;
  const ORVExtVar* handle = nullptr;  ///< set when the name is that of a component
};

/// Where results are looked up.
enum class ResultList { kSingleState = 1, kMultiState = 2 };

/// By key or name of a variable, by its name where it has another key, or by the name of a handle.
FoundQuantity FindQuantity(ResultFile& file, const std::string& name, ResultList list);

/// All names that FindQuantity knows; those of later states once the file has learned them.
std::vector<std::string> QuantityNames(ResultFile& file);
/// Entity and element types that have results.
std::vector<std::string> EntityNames(ResultFile& file);

/// What DidYouMean() says of a variable or an entity type of a request that the file does not have; empty when it has
/// both.
std::string SuggestionFor(ResultFile& file, const ValueRequest& request);

/// Throws Trouble when the blocks of that name lack a definition: they have no components to ask for.
void CheckDefinition(ResultFile& file, const std::string& name);

/// The blocks of that variable and entity type in one of the lists.
FoundQuantity FindBlocks(ResultFile& file, const ValueRequest& request, ResultList list);

/// Throws Trouble for a component that a block of that variable and entity type does not have.
void CheckComponent(ResultFile& file, const ValueRequest& request, ResultList list);

/// The stored components of a block that a request asks for. Throws Trouble for a component that there is not.
std::vector<ComponentColumn> ColumnsOf(ResultFile& file, const ValueRequest& request, const FoundQuantity& quantity,
                                       const ORVResult& block);

}  // namespace orvio::program
