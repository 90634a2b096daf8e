// Help for names that were misspelled.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace orvio::program {

/// ` (did you mean "Stress"?)` with the one of the known words that is spelled most like this one, whatever the case of
/// its letters; empty where none comes near. Three letters or more may also be the beginning of a known word. To stand
/// behind what a message says is not there.
std::string DidYouMean(std::string_view word, const std::vector<std::string>& known);

}  // namespace orvio::program
