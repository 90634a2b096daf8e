// A filer starts up on a file and is asked everything: lists, names, indexes, and the model.

#include "byte_file.h"
#include "quiet.h"
#include "reading.h"
#include "target.h"

int LLVMFuzzerInitialize(int* /*argument_count*/, char*** /*arguments*/) {
  orvio::fuzz::PrepareHdf5();
  return 0;
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const orvio::fuzz::ByteFile file(data, size);
  {
    orvio::fuzz::OpenFiler open(file.path());
    orvio::fuzz::Tally tally;
    orvio::fuzz::AskQuestions(open, tally);
    orvio::fuzz::ReadModel(open, tally);
  }
  orvio::fuzz::ExpectNothingOpen();
  return 0;
}
