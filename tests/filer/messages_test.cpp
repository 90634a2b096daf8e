// Texts to the host: who receives them, how long they get, and that they can be held back. Which texts there are is
// tested where they are sent.

#include "filer/messages.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "filer/process_state.h"
#include "orvio/oh5_io.h"
#include "orvio/orv_filer.h"
#include "orvio/orv_switches.h"
#include "support/forged_file.h"
#include "support/messages.h"
#include "support/orv_test.h"
#include "support/raw_hdf5.h"

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

TEST_F(HostMessages, AreNoneForDataThatCannotBeReadOrWritten) {
  orv_test::ForgedFile file;
  file.at("/post/constant/b").dataset<std::int32_t>("ints", {2}, {1, 2}).texts("word", 8, {}, {"word"});
  const orv_test::Location place(file.path(), "/post/constant/b");
  const hsize_t zero[] = {0}, three[] = {3};
  std::int32_t values[3] = {};
  char text[4] = {};
  const Messages messages;
  EXPECT_EQ(OH5Read_DATASET(place.id(), "ints", 1, three, ORV_INT, values), 1);
  EXPECT_STREQ(ORVGetLastErrorText(), "DatasetIO::\n\t \"ints\" dimension mismatch");
  EXPECT_EQ(OH5Read_CHAR(place.id(), "word", 0, nullptr, 4, text), 1);
  EXPECT_STREQ(ORVGetLastErrorText(), "OH5Read_CHAR::\n\t \"word\" dimension mismatch");
  EXPECT_EQ(OH5Read_SELECTIVE(place.id(), "ints", 1, zero, three, nullptr, nullptr, ORV_INT, values), 1);
  EXPECT_STREQ(ORVGetLastErrorText(), "OH5Read_SELECTINE::\n\t \"ints\" block size more than dimension");
  EXPECT_EQ(OH5Read_ATTRIBUTE(place.id(), "nele", 0, nullptr, ORV_INT, values), 1);
  EXPECT_STREQ(ORVGetLastErrorText(), "OH5Read_ATTRIBUTE::\n\t \"nele\" attribute not exist");
  EXPECT_EQ(OH5write_ATTRIBUTE(place.id(), "nele", nullptr, ORV_INT, 0, values), 1);
  EXPECT_STREQ(ORVGetLastErrorText(), "OH5write_ATTRIBUTE::\n\t \"nele\" fail to write");
  EXPECT_TRUE(messages.all().empty());
}

TEST_F(HostMessages, AreSilencedByANullCallback) {
  const Messages messages;
  ORVFiler::SetVerbosCallback(nullptr);
  SendEach();
  EXPECT_TRUE(messages.all().empty());
}

}  // namespace
