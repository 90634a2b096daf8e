// With ORVIO_TEST_INDEX_AT_ONCE in the environment, what is known of a file is used from its second open on, however
// young the file is: all tests then go the way of the index as far as there is one.

#include <gtest/gtest.h>

#include <cstdlib>

#include "filer/process_state.h"

namespace {

class IndexAtOnce : public testing::Environment {
 public:
  void SetUp() override {
    if (std::getenv("ORVIO_TEST_INDEX_AT_ONCE")) orvio::process().clock_step = -1;
  }
};

const testing::Environment* const kIndexAtOnce = testing::AddGlobalTestEnvironment(new IndexAtOnce);

}  // namespace
