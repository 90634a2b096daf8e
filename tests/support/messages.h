#pragma once

// What the library tells a host.

#include <string>
#include <utility>
#include <vector>

#include "orvio/orv_filer.h"

namespace orv_test {

using Message = std::pair<int, std::string>;  ///< 0 error, 1 warning; the text

/// Receives the messages of all filers for the life of the scope. One at a time.
class Messages {
 public:
  Messages() : before_(ORVFiler::_m_pMessageFuc) {
    List().clear();
    ORVFiler::SetVerbosCallback(Take);
  }
  Messages(const Messages&) = delete;
  Messages& operator=(const Messages&) = delete;
  ~Messages() { ORVFiler::SetVerbosCallback(before_); }

  const std::vector<Message>& all() const { return List(); }

 private:
  static std::vector<Message>& List() {
    static std::vector<Message> list;
    return list;
  }
  static void Take(_ORVMesgType type, const char* text) { List().emplace_back(type, text); }

  ORVMessageCallBack before_;
};

}  // namespace orv_test
