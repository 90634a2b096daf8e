#include "reading/elements.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "reading/file_model.h"
#include "reading/words.h"
#include "suggestion.h"
#include "trouble.h"

namespace orvio::program {

std::vector<orv::Elements> ReadElements(orv::File& file, const std::string& type, int state) {
  std::vector<orv::Elements> elements = file.elements(state, type);
  if (!elements.empty() || type.empty()) return elements;
  std::vector<std::string> names;
  for (const ORVEleConnectivity& block : ReadElementHeaders(file.path(), state)) {
    if (block.m_nele != 0) names.push_back(TextOf(block.m_etypelem));
  }
  throw Trouble(file.path(), fmt::format("has no elements of type \"{}\"{}", type, DidYouMean(type, names)),
                names.empty() ? "it has no elements at all" : fmt::format("it has {}", fmt::join(names, ", ")));
}

}  // namespace orvio::program
