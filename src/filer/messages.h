#pragma once

// Texts to the host.

#include "orvio/orv_types.h"

namespace orvio {

/// Composes a text and gives it to the message callback of the filers; nothing without one. A long name is cut.
[[gnu::format(printf, 2, 3)]] void SendMessage(_ORVMesgType type, const char* format, ...);

/// The same to the callback of the handles of components.
[[gnu::format(printf, 2, 3)]] void SendVariableMessage(_ORVMesgType type, const char* format, ...);

/// The same to the callback of the value fetch.
[[gnu::format(printf, 2, 3)]] void SendFetchMessage(_ORVMesgType type, const char* format, ...);

/// Nobody receives a text for the life of the scope: all three callbacks are null, and put back at its end.
class [[nodiscard]] SilencedMessages {
 public:
  SilencedMessages();
  ~SilencedMessages();
  SilencedMessages(const SilencedMessages&) = delete;
  SilencedMessages& operator=(const SilencedMessages&) = delete;

 private:
  ORVMessageCallBack before_[3];
};

}  // namespace orvio
