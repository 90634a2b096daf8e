#pragma once

// What the tests of result writes share: the switches they turn and a small block to write.

#include <string>
#include <vector>

#include "orvio/orv_switches.h"
#include "result/forged_result.h"
#include "support/raw_file.h"

namespace orv_test {

using Floats = std::vector<float>;
using Ints = std::vector<int>;
using Shape = std::vector<hsize_t>;
using Names = std::vector<std::string>;

/// The switches of a test; the fixture expects them back.
struct Writer {
  explicit Writer(int version, int overwrite = 0)
      : version_(ORVSetCurrentWriterVersion(version)), overwrite_(ORVGetResultBlockOverWriteMode()) {
    ORVSetResultBlockOverWriteMode(overwrite);
  }
  ~Writer() {
    ORVSetCurrentWriterVersion(version_);
    ORVSetResultBlockOverWriteMode(overwrite_);
  }
  Writer(const Writer&) = delete;
  Writer& operator=(const Writer&) = delete;

 private:
  int version_;
  int overwrite_;
};

struct CompressionSwitches {
  CompressionSwitches(int on, int digits) {
    OH5GetCompression(&on_, &digits_);
    OH5SetCompression(on, digits);
  }
  ~CompressionSwitches() { OH5SetCompression(on_, digits_); }
  CompressionSwitches(const CompressionSwitches&) = delete;
  CompressionSwitches& operator=(const CompressionSwitches&) = delete;

 private:
  int on_ = 0;
  int digits_ = 0;
};

/// Two nodes with two components, ids and an index.
struct Nodes {
  explicit Nodes(int kind = 1000) : block(NodeBlock(kind)) {
    block.m_nent = 2;
    block.m_ncoo = 2;
    block.m_nindex = 1;
    block.m_res = values.data();
    block.m_entid = ids.data();
    block.m_indexident = idents.data();
    block.m_indexval = index_values.data();
    block.m_readIds = 1;
  }
  int Write(const std::string& file, int state, int sections = 7) {
    return block.WriteBlock(file.c_str(), state, sections);
  }

  ORVResult block;
  Floats values{1, 2, 3, 4, 5, 6, 7, 8};
  Ints ids{10, 20};
  Ints idents{1, 1};
  Floats index_values{.5F, .75F};
};

inline constexpr char kState1[] = "/post/singlestate/state000000000001";

}  // namespace orv_test
