#include "faults/recording.h"

#include <fstream>
#include <stdexcept>

namespace orvio::faults {

std::vector<Call> ReadRecording(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) throw std::runtime_error("no recording " + path);
  std::vector<Call> calls;
  CallRecord record;
  while (in.read(reinterpret_cast<char*>(&record), sizeof record)) {
    Call call{record};
    if (call.op == Op::kWrite) {
      call.bytes.resize(static_cast<std::size_t>(call.size));
      if (!in.read(call.bytes.data(), call.size)) throw std::runtime_error("a recording that ends in a call");
    }
    calls.push_back(std::move(call));
  }
  if (in.gcount() != 0) throw std::runtime_error("a recording that ends in a call");
  return calls;
}

}  // namespace orvio::faults
