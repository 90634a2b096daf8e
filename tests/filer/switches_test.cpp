// The process-wide switches, the default error handler, and the texts of statuses and failures.

#include "orvio/orv_switches.h"

#include <hdf5.h>

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <string>

#include "filer/process_state.h"
#include "orvio/oh5_io.h"
#include "orvio/orv_filer.h"
#include "support/orv_test.h"

namespace {

using namespace orv_test;
using orvio::process;
using orvio::Swapped;

using ProcessSwitches = OrvTest;

TEST_F(ProcessSwitches, BeginAsWrittenDown) {
  EXPECT_EQ(ORVGetCurrentWriterVersion(), 1);
  EXPECT_EQ(ORVGetResultBlockOverWriteMode(), 0);
  int on = 9, digits = 9;
  OH5GetCompression(&on, &digits);
  EXPECT_EQ(on, 0);
  EXPECT_EQ(digits, -1);
  EXPECT_EQ(process().g_nReadAccess, 0u);
  EXPECT_EQ(process().error_handler, nullptr);
  EXPECT_EQ(process().error_stream, stderr);
  EXPECT_EQ(ORVFiler::_m_pMessageFuc, nullptr);
  EXPECT_EQ(process().extended_variable_message, nullptr);
  EXPECT_EQ(process().fetch_message, nullptr);
}

TEST_F(ProcessSwitches, ForTheWriterVersionAnswerTheOldValueAndCheckNothing) {
  EXPECT_EQ(ORVSetCurrentWriterVersion(4), 1);
  EXPECT_EQ(ORVGetCurrentWriterVersion(), 4);
  EXPECT_EQ(ORVSetCurrentWriterVersion(-77), 4);
  EXPECT_EQ(ORVSetCurrentWriterVersion(1), -77);
}

TEST_F(ProcessSwitches, ForOverwritingAreStoredAsTheyAre) {
  ORVSetResultBlockOverWriteMode(5);
  EXPECT_EQ(ORVGetResultBlockOverWriteMode(), 5);
  ORVSetResultBlockOverWriteMode(0);
  EXPECT_EQ(ORVGetResultBlockOverWriteMode(), 0);
}

TEST_F(ProcessSwitches, ForCompressionAreStoredAsTheyAre) {
  int on = 9, digits = 9;
  OH5SetCompression(1, -1);
  OH5GetCompression(&on, &digits);
  EXPECT_EQ(on, 1);
  EXPECT_EQ(digits, -1);
  OH5SetCompression(-3, 40);
  OH5GetCompression(&on, &digits);
  EXPECT_EQ(on, -3);
  EXPECT_EQ(digits, 40);
  OH5SetCompression(0, -1);
}

struct CompressionRow {
  int on, digits, stored_on, stored_digits;
};

class GlobalCompression : public OrvTest, public testing::WithParamInterface<CompressionRow> {};

TEST_P(GlobalCompression, IsOnOnlyWithDigits) {
  OH5SetCompression(7, 7);
  ORVFiler::SetGlobalCompressionParameters(GetParam().on, GetParam().digits);
  int on = 9, digits = 9;
  OH5GetCompression(&on, &digits);
  OH5SetCompression(0, -1);
  EXPECT_EQ(on, GetParam().stored_on);
  EXPECT_EQ(digits, GetParam().stored_digits);
}

INSTANTIATE_TEST_SUITE_P(Rows, GlobalCompression,
                         testing::Values(CompressionRow{1, 3, 1, 3}, CompressionRow{1, 0, 1, 0},
                                         CompressionRow{-2, 3, -2, 3}, CompressionRow{1, -1, 0, -1},
                                         CompressionRow{0, 3, 0, -1}, CompressionRow{0, -1, 0, -1}));

TEST_F(ProcessSwitches, ForTheShallowFormatDoNothing) {
  ORVSetShallowFormatSupportFlag(1);
  ORVSetShallowFormatSupportFlag(0);
}

void TakeMessage(_ORVMesgType, const char*) {}

TEST_F(ProcessSwitches, ForMessagesAreThreeOfOneValue) {
  ORVFiler::SetVerbosCallback(TakeMessage);
  EXPECT_EQ(ORVFiler::_m_pMessageFuc, &TakeMessage);
  EXPECT_EQ(process().extended_variable_message, &TakeMessage);
  EXPECT_EQ(process().fetch_message, &TakeMessage);
  ORVFiler::SetVerbosCallback(nullptr);
  EXPECT_EQ(ORVFiler::_m_pMessageFuc, nullptr);
  EXPECT_EQ(process().extended_variable_message, nullptr);
  EXPECT_EQ(process().fetch_message, nullptr);
}

int handled_code = 0;
const char* handled_text = nullptr;

void TakeError(int code, const char* text) {
  handled_code = code;
  handled_text = text;
}

class DefaultErrorHandler : public OrvTest {
 protected:
  /// What the handler prints to the error stream.
  static std::string Printed(int code, const char* text) {
    FILE* stream = std::tmpfile();
    {
      const Swapped target(process().error_stream, stream);
      ORVErrorDefultHandler(code, text);
    }
    std::string printed(static_cast<size_t>(std::ftell(stream)), '\0');
    std::rewind(stream);
    EXPECT_EQ(std::fread(printed.data(), 1, printed.size(), stream), printed.size());
    EXPECT_EQ(std::fclose(stream), 0);
    return printed;
  }
};

TEST_F(DefaultErrorHandler, PrintsTheCodeWithoutAText) { EXPECT_EQ(Printed(7, nullptr), "\nError Code :: 7"); }

TEST_F(DefaultErrorHandler, PrintsNothingForAnEmptyText) { EXPECT_EQ(Printed(7, ""), ""); }

TEST_F(DefaultErrorHandler, PrintsTheTextAsItIs) { EXPECT_EQ(Printed(7, "disk 100%s full"), "\ndisk 100%s full"); }

TEST_F(DefaultErrorHandler, PrintsNothingWithoutAStream) {
  const Swapped<FILE*> target(process().error_stream, nullptr);
  ORVErrorDefultHandler(7, nullptr);
  ORVErrorDefultHandler(7, "text");
}

TEST_F(DefaultErrorHandler, PassesTheCallOnToAHook) {
  const Swapped hook(process().error_handler, &TakeError);
  const char* text = "text";
  EXPECT_EQ(Printed(7, text), "");
  EXPECT_EQ(handled_code, 7);
  EXPECT_EQ(handled_text, text);
  EXPECT_EQ(Printed(8, nullptr), "");
  EXPECT_EQ(handled_code, 8);
  EXPECT_EQ(handled_text, nullptr);
}

herr_t HandleStack(hid_t, void*) { return 0; }

class Hdf5ErrorHandler : public OrvTest {
 protected:
  static void ExpectHandler(hid_t stack, H5E_auto2_t expected, const void* expected_data) {
    H5E_auto2_t func = nullptr;
    void* data = nullptr;
    EXPECT_GE(H5Eget_auto2(stack, &func, &data), 0);
    EXPECT_EQ(func, expected);
    EXPECT_EQ(data, expected_data);
  }
};

TEST_F(Hdf5ErrorHandler, IsSetForTheDefaultStackForIdsBelowOne) {
  H5E_auto2_t func = nullptr;
  void* data = nullptr;
  int of_host = 0;
  ASSERT_GE(H5Eget_auto2(H5E_DEFAULT, &func, &data), 0);
  for (const hid_t stack : {hid_t{0}, hid_t{-1}}) {
    EXPECT_EQ(OH5SetErrorHandler(stack, HandleStack, &of_host), 0);
    ExpectHandler(H5E_DEFAULT, HandleStack, &of_host);
    EXPECT_EQ(OH5SetErrorHandler(stack, nullptr, nullptr), 0);
    ExpectHandler(H5E_DEFAULT, nullptr, nullptr);
  }
  EXPECT_EQ(OH5SetErrorHandler(0, func, data), 0);
}

TEST_F(Hdf5ErrorHandler, IsSetForAStackOfTheHost) {
  const hid_t stack = H5Ecreate_stack();
  EXPECT_EQ(OH5SetErrorHandler(stack, HandleStack, nullptr), 0);
  ExpectHandler(stack, HandleStack, nullptr);
  EXPECT_GE(H5Eclose_stack(stack), 0);
}

TEST_F(Hdf5ErrorHandler, IsRefusedInSilenceForAnIdThatIsNoStack) {
  EXPECT_EQ(OH5SetErrorHandler(12345, HandleStack, nullptr), 1);
  EXPECT_EQ(OH5SetErrorHandler(H5P_FILE_ACCESS, HandleStack, nullptr), 1);
}

struct StatusRow {
  int status;
  const char* text;
};

class StatusText : public OrvTest, public testing::WithParamInterface<StatusRow> {};

TEST_P(StatusText, IsFixedForEachCode) { EXPECT_STREQ(ORVGetStatusText(GetParam().status), GetParam().text); }

INSTANTIATE_TEST_SUITE_P(Rows, StatusText,
                         testing::Values(StatusRow{4, "File open error"}, StatusRow{5, "File read error"},
                                         StatusRow{6, "Invalid file"}, StatusRow{7, "Invalid arguments"},
                                         StatusRow{8, "Invalid file handle"}, StatusRow{9, "Invalid version string"},
                                         StatusRow{10, "Higher Major file version than reader"},
                                         StatusRow{11, "Higher Minor file version than reader"},
                                         StatusRow{12, "Group not found"}, StatusRow{13, "Not applicable"},
                                         StatusRow{0, "UNKNOWN_ERROR(0)"}, StatusRow{1, "UNKNOWN_ERROR(1)"},
                                         StatusRow{3, "UNKNOWN_ERROR(3)"}, StatusRow{14, "UNKNOWN_ERROR(14)"},
                                         StatusRow{18, "UNKNOWN_ERROR(18)"}, StatusRow{1010, "UNKNOWN_ERROR(1010)"},
                                         StatusRow{-2147483647 - 1, "UNKNOWN_ERROR(-2147483648)"}));

TEST_F(ProcessSwitches, KeepTheLastErrorTextUntilTheNext) {
  orvio::SetLastError("%s", "first");
  EXPECT_STREQ(ORVGetLastErrorText(), "first");
  EXPECT_EQ(orvio::Fail("%s %d", "second", 2), 1);
  EXPECT_STREQ(ORVGetLastErrorText(), "second 2");
  orvio::SetLastError("%s", std::string(600, 'x').c_str());
  EXPECT_EQ(std::string(ORVGetLastErrorText()), std::string(511, 'x'));
}

TEST_F(ProcessSwitches, AreChangedForAScope) {
  int value = 1;
  {
    const Swapped changed(value, 2);
    EXPECT_EQ(value, 2);
    value = 3;
  }
  EXPECT_EQ(value, 1);
}

TEST_F(ProcessSwitches, LeaveTheRecordOfAnExternalLinkClear) {
  ORVExternalLink link;
  EXPECT_EQ(link.m_first, 0);
  EXPECT_EQ(link.m_second, 0);
  EXPECT_EQ(std::count(std::begin(link.m_text), std::end(link.m_text), '\0'), 512);
  std::fill(std::begin(link.m_text), std::end(link.m_text), 'x');
  link.m_first = link.m_second = 5;
  const ORVExternalLink copy = link;
  EXPECT_EQ(copy.m_second, 5);
  link.Initialize();
  EXPECT_EQ(link.m_first, 0);
  EXPECT_EQ(link.m_second, 0);
  EXPECT_EQ(std::count(std::begin(link.m_text), std::end(link.m_text), '\0'), 512);
}

}  // namespace
