// The one exception of the Exodus reader.
#pragma once

#include <stdexcept>

namespace orvio::exodus {

/// Says where and what, for a person: `connect2, row 17: 900 is none of the 242 nodes`. The name of the file is
/// not part of it; whoever opened the file adds it.
class Error : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace orvio::exodus
