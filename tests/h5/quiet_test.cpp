// The frame around exported operations: HDF5 prints nothing inside, a host's error handler comes back, and no exception
// leaves.

#include <new>
#include <stdexcept>

#include "h5/entry.h"
#include "h5/h5_test.h"

namespace {

using namespace orv_test;

int v2_calls = 0;
int v1_calls = 0;
int data_of_host = 0;

herr_t HandlerOfHost(hid_t, void*) {
  ++v2_calls;
  return 0;
}

herr_t OtherHandlerOfHost(hid_t, void*) { return 0; }

herr_t OldHandlerOfHost(void*) {
  ++v1_calls;
  return 0;
}

/// Calls operations of each kind that fail inside HDF5.
void FailInside() {
  int value = 0;
  hid_t file = -1;
  EXPECT_EQ(OH5Read_ATTRIBUTE(-1, "x", 0, nullptr, ORV_INT, &value), 1);
  EXPECT_EQ(OH5Write_INT(-1, "x", 0, nullptr, ORV_INT, &value), 1);
  EXPECT_EQ(OH5WriteOpenFile("/nowhere/at/all", ORV_FILE_CREATE, &file), 4);
}

/// The handler of HDF5's second generation that is set.
H5E_auto2_t HandlerNow() {
  H5E_auto2_t func = nullptr;
  void* data = nullptr;
  EXPECT_GE(H5Eget_auto2(H5E_DEFAULT, &func, &data), 0);
  return func;
}

class Quiet : public H5Test {
 protected:
  Quiet() {
    H5Eget_auto2(H5E_DEFAULT, &func_, &data_);
    v1_calls = v2_calls = 0;
  }
  ~Quiet() override { H5Eset_auto2(H5E_DEFAULT, func_, data_); }

  H5E_auto2_t func_ = nullptr;
  void* data_ = nullptr;
};

TEST_F(Quiet, PrintsNothingWhileHdf5sPrintingIsOn) {
  EXPECT_NE(func_, nullptr);
  FailInside();
}

TEST_F(Quiet, CallsNoHandlerOfTheHostAndPutsItBack) {
  ASSERT_GE(H5Eset_auto2(H5E_DEFAULT, HandlerOfHost, &data_of_host), 0);
  FailInside();
  EXPECT_EQ(v2_calls, 0);
  H5E_auto2_t func = nullptr;
  void* data = nullptr;
  EXPECT_GE(H5Eget_auto2(H5E_DEFAULT, &func, &data), 0);
  EXPECT_EQ(func, &HandlerOfHost);
  EXPECT_EQ(data, &data_of_host);
  EXPECT_LT(H5Gopen2(-1, "x", H5P_DEFAULT), 0);
  EXPECT_EQ(v2_calls, 1);
}

TEST_F(Quiet, PutsAHandlerOfTheFirstGenerationBack) {
  ASSERT_GE(H5Eset_auto1(OldHandlerOfHost, &data_of_host), 0);
  FailInside();
  EXPECT_EQ(v1_calls, 0);
  unsigned is_v2 = 9;
  EXPECT_GE(H5Eauto_is_v2(H5E_DEFAULT, &is_v2), 0);
  EXPECT_EQ(is_v2, 0u);
  H5E_auto1_t func = nullptr;
  void* data = nullptr;
  EXPECT_GE(H5Eget_auto1(&func, &data), 0);
  EXPECT_EQ(func, &OldHandlerOfHost);
  EXPECT_EQ(data, &data_of_host);
  EXPECT_LT(H5Gopen2(-1, "x", H5P_DEFAULT), 0);
  EXPECT_EQ(v1_calls, 1);
}

TEST_F(Quiet, LeavesPrintingOffWhereTheHostHadItOff) {
  ASSERT_GE(H5Eset_auto2(H5E_DEFAULT, nullptr, nullptr), 0);
  FailInside();
  H5E_auto2_t func = &HandlerOfHost;
  void* data = &data_of_host;
  EXPECT_GE(H5Eget_auto2(H5E_DEFAULT, &func, &data), 0);
  EXPECT_EQ(func, nullptr);
  EXPECT_EQ(data, nullptr);
}

TEST_F(Quiet, LeavesAHandlerThatIsSetInsideSeveralOperations) {
  for (const bool first_generation : {false, true}) {
    if (first_generation) {
      ASSERT_GE(H5Eset_auto1(OldHandlerOfHost, &data_of_host), 0);
    } else {
      ASSERT_GE(H5Eset_auto2(H5E_DEFAULT, func_, data_), 0);
    }
    orvio::h5::EntryVoid([] {
      Check(H5Eset_auto2(H5E_DEFAULT, OtherHandlerOfHost, nullptr),
            "set");  // as a host does, to be put back by the inner
      orvio::h5::EntryVoid([] { EXPECT_EQ(OH5SetErrorHandler(0, HandlerOfHost, &data_of_host), 0); });
      EXPECT_EQ(HandlerNow(), &HandlerOfHost);
    });
    EXPECT_EQ(HandlerNow(), &HandlerOfHost);
  }
  EXPECT_EQ(OH5SetErrorHandler(0, nullptr, nullptr), 0);
  EXPECT_EQ(HandlerNow(), nullptr);
}

TEST_F(Quiet, CallsNoHandlerThatCodeOfAHostHasSetInsideBeforeTheEnd) {
  orvio::h5::EntryVoid([] {
    const orvio::Swapped among_itself(orvio::process().is_among_itself, true);
    {
      const orvio::h5::HostCode with_host;
      EXPECT_EQ(OH5SetErrorHandler(0, HandlerOfHost, &data_of_host), 0);
      FailInside();
      EXPECT_EQ(v2_calls, 0);
      EXPECT_LT(H5Gopen2(-1, "x", H5P_DEFAULT), 0);
      EXPECT_EQ(v2_calls, 1);
    }
    FailInside();
    EXPECT_LT(H5Gopen2(-1, "x", H5P_DEFAULT), 0);
    EXPECT_EQ(v2_calls, 1);
  });
  EXPECT_EQ(HandlerNow(), &HandlerOfHost);
}

TEST_F(Quiet, LeavesPrintingAloneAfterCodeOfAHostThatNoOperationCalls) {
  { const orvio::h5::HostCode with_host; }
  EXPECT_NE(func_, nullptr);
  EXPECT_EQ(HandlerNow(), func_);
}

TEST_F(Quiet, TurnsExceptionsIntoTheFailureOfTheOperation) {
  EXPECT_EQ(orvio::h5::Entry(7, []() -> int { throw std::bad_alloc(); }), 7);
  EXPECT_EQ(orvio::h5::Entry(7, []() -> int { throw std::runtime_error("x"); }), 7);
  EXPECT_EQ(orvio::h5::Entry(7, [] { return 3; }), 3);
  EXPECT_NO_THROW(orvio::h5::EntryVoid([] { throw std::bad_alloc(); }));
  H5E_auto2_t func = nullptr;
  void* data = nullptr;
  EXPECT_GE(H5Eget_auto2(H5E_DEFAULT, &func, &data), 0);
  EXPECT_EQ(func, func_);
}

}  // namespace
