// Texts to the host, through the three message callbacks of the process.

#include "filer/messages.h"

#include <cstdarg>
#include <cstdio>
#include <utility>

#include "filer/process_state.h"
#include "h5/entry.h"
#include "orvio/orv_filer.h"

namespace orvio {
namespace {

constexpr std::size_t kMessageBytes = 2048;  // room for two names of full width and a path

void Send(ORVMessageCallBack callback, _ORVMesgType type, const char* format, va_list arguments) {
  if (!callback) return;
  const h5::HostCode with_host;
  char text[kMessageBytes];
  (void)std::vsnprintf(text, sizeof text, format, arguments);  // cut where it is too long
  callback(type, text);
}

}  // namespace

void SendMessage(_ORVMesgType type, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  Send(ORVFiler::_m_pMessageFuc, type, format, arguments);
  va_end(arguments);
}

void SendVariableMessage(_ORVMesgType type, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  Send(process().extended_variable_message, type, format, arguments);
  va_end(arguments);
}

void SendFetchMessage(_ORVMesgType type, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  Send(process().fetch_message, type, format, arguments);
  va_end(arguments);
}

SilencedMessages::SilencedMessages()
    : before_{std::exchange(ORVFiler::_m_pMessageFuc, nullptr),
              std::exchange(process().extended_variable_message, nullptr),
              std::exchange(process().fetch_message, nullptr)} {}

SilencedMessages::~SilencedMessages() {
  ORVFiler::_m_pMessageFuc = before_[0];
  process().extended_variable_message = before_[1];
  process().fetch_message = before_[2];
}

}  // namespace orvio
