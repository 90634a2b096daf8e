// Every dataset and header attribute of a file by the typed reads, with right and with wrong shapes and types.

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
  orvio::fuzz::Tally tally;
  orvio::fuzz::ReadTyped(file.path(), true, tally);
  orvio::fuzz::ExpectNothingOpen();
  return 0;
}
