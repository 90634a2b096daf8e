#pragma once

#include <algorithm>
#include <cctype>
#include <stdexcept>
#include <string>
#include <utility>

#include "orvio/orv_types.h"

namespace orv {

/// What could not be done: the file, what is wrong, the block and the state where that is known, and what to do about it.
/// `what()` says all of it in one line: "crash.orv: cannot be read (block /post/..., state 3); the file is damaged".
class Error : public std::runtime_error {
 public:
  static constexpr int kNoState = -1;

  Error(std::string file, const std::string& what, std::string hint, std::string block = {}, int state = kNoState)
      : std::runtime_error(line(file, what, hint, block, state)),
        file_(std::move(file)),
        block_(std::move(block)),
        hint_(std::move(hint)),
        state_(state) {}

  const std::string& file() const noexcept { return file_; }
  const std::string& block() const noexcept { return block_; }  ///< path of the block in the file, or empty
  const std::string& hint() const noexcept { return hint_; }
  int state() const noexcept { return state_; }  ///< 1-based, 0 for the constant section; kNoState where none is meant

 private:
  static std::string line(const std::string& file, const std::string& what, const std::string& hint,
                          const std::string& block, int state) {
    std::string place = block.empty() ? "" : "block " + block;
    if (state > 0) place += (place.empty() ? "state " : ", state ") + std::to_string(state);
    if (state == 0 && block.empty()) place = "constant section";  // else the path of the block tells
    std::string text = file + ": " + what + (place.empty() ? "" : " (" + place + ")") + "; " + hint;
    std::replace_if(  // names of a file may hold line ends
        text.begin(), text.end(), [](unsigned char c) { return std::iscntrl(c) != 0; }, ' ');
    return text;
  }

  std::string file_, block_, hint_;
  int state_;
};

namespace detail {

/// What the library says of a failure since the object was made. A failure without a text of its own leaves that of an
/// earlier one in place, which tells nothing.
class LibraryText {
 public:
  /// The text without what surrounds it, or `otherwise` where there is none.
  std::string or_else(const std::string& otherwise) const {
    const std::string now = ORVGetLastErrorText();
    const std::size_t first = now == before_ ? std::string::npos : now.find_first_not_of(kBlank);
    return first == std::string::npos ? otherwise : now.substr(first, now.find_last_not_of(kBlank) + 1 - first);
  }

 private:
  static constexpr char kBlank[] = " \t\r\n";

  std::string before_ = ORVGetLastErrorText();
};

}  // namespace detail
}  // namespace orv
