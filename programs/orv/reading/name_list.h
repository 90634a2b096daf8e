// Names of a file for who is about to type one.
#pragma once

#include <string>
#include <vector>

#include "reading/value_request.h"

namespace orvio::program {

enum class NameKind { kVariable, kComponent, kState, kEntity, kElementType, kPartType, kPart, kId };

struct ListedName {
  std::string word;
  std::string note;  ///< what it stands for, in a few words; may be empty
};

/// Names of a kind that begin with `beginning`; where none does, those that would in other case. Components are those of
/// the variable of the request, ids those of its values; lists that nobody would read are cut. Throws Trouble for a file
/// that is no result file.
std::vector<ListedName> ListNames(const std::string& file, NameKind kind, const ValueRequest& request,
                                  const std::string& beginning);

/// Keeps those of the names that begin with `beginning`, as above.
std::vector<ListedName> KeepBeginning(const std::vector<ListedName>& names, const std::string& beginning);

}  // namespace orvio::program
