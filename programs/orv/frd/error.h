// The one exception of the .frd reader.
#pragma once

#include <stdexcept>

namespace orvio::frd {

/// Says where and what, for a person: `line 4711: result STRESS, node 17: value is not a number: "abc"`. The name of
/// the file is not part of it; whoever opened the file adds it.
class Error : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace orvio::frd
