// Texts to the host: who receives them, how long they get, and that they can be held back. Which texts there are is
// tested where they are sent.

#include "filer/messages.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "filer/process_state.h"
#include "orvio/orv_filer.h"
#include "support/messages.h"
#include "support/orv_test.h"

namespace {

using orv_test::Message;
using orv_test::Messages;
using orvio::process;
using orvio::SendFetchMessage;
using orvio::SendMessage;
using orvio::SendVariableMessage;
using orvio::SilencedMessages;
using orvio::Swapped;

using HostMessages = orv_test::OrvTest;

void SendEach() {
  SendMessage(ORV_MESG_ERROR, "%s %d", "filer", 1);
  SendVariableMessage(ORV_MESG_WARNING, "%s %d", "variable", 2);
  SendFetchMessage(ORV_MESG_ERROR, "%s %d", "fetch", 3);
}

TEST_F(HostMessages, GoToNobodyWithoutACallback) { SendEach(); }

TEST_F(HostMessages, AreComposedWithTheirKind) {
  const Messages messages;
  SendEach();
  EXPECT_EQ(messages.all(), (std::vector<Message>{{0, "filer 1"}, {1, "variable 2"}, {0, "fetch 3"}}));
}

TEST_F(HostMessages, GoToTheCallbackOfTheirOwn) {
  const Messages messages;
  {
    const Swapped<ORVMessageCallBack> none(ORVFiler::_m_pMessageFuc, nullptr);
    SendEach();
  }
  EXPECT_EQ(messages.all(), (std::vector<Message>{{1, "variable 2"}, {0, "fetch 3"}}));
  {
    const Swapped<ORVMessageCallBack> none(process().extended_variable_message, nullptr);
    SendEach();
  }
  EXPECT_EQ(messages.all().size(), 4U);
  {
    const Swapped<ORVMessageCallBack> none(process().fetch_message, nullptr);
    SendEach();
  }
  EXPECT_EQ(messages.all().back(), (Message{1, "variable 2"}));
}

TEST_F(HostMessages, AreCutWhereTheyAreTooLong) {
  const Messages messages;
  SendMessage(ORV_MESG_ERROR, "%s", std::string(5000, 'x').c_str());
  ASSERT_EQ(messages.all().size(), 1U);
  EXPECT_EQ(messages.all()[0].second, std::string(2047, 'x'));
}

TEST_F(HostMessages, AreHeldBackForAScope) {
  const Messages messages;
  {
    const SilencedMessages outer;
    {
      const SilencedMessages inner;
      SendEach();
    }
    SendEach();
    EXPECT_EQ(ORVFiler::_m_pMessageFuc, nullptr);
  }
  EXPECT_TRUE(messages.all().empty());
  SendEach();
  EXPECT_EQ(messages.all().size(), 3U);
}

TEST_F(HostMessages, AreSilencedByANullCallback) {
  const Messages messages;
  ORVFiler::SetVerbosCallback(nullptr);
  SendEach();
  EXPECT_TRUE(messages.all().empty());
}

}  // namespace
