// The common steps of a block write.

#include "block/block_write.h"

#include "h5/entry.h"
#include "h5/status.h"
#include "orvio/oh5_io.h"

namespace orvio {

BlockCompression::BlockCompression(int digits)
    : before_(std::exchange(process().compression, digits < 0 ? Compression{0, -1} : Compression{1, digits})) {}

BlockCompression::~BlockCompression() {
  // QUIRK: switches that were on with negative digits are not put back; the block's own setting stays in force.
  // Required: blocks written after such a call are stored differently otherwise. Pinned by
  // BlockCompression.StaysChangedAfterSwitchesThatWereOnWithoutDigits.
  const bool on_without_digits = before_.g_nCompressionOn != 0 && before_.g_nCompressionDigits < 0;
  if (!on_without_digits) process().compression = before_;
}

BlockParts::BlockParts(hid_t parent, const char* name, int what) : parent_(parent) {
  const h5::QuietHdf5 quiet;
  if (name && *name && !h5::LinkExists(parent, name)) {
    new_name_ = name;
    base_.reset(H5Gcreate_anon(parent, H5P_DEFAULT, H5P_DEFAULT));
    if (!base_) return;
    parent = base_.get();
    name = nullptr;
  }
  hid_t base = -1;
  status_ = OH5OpenBlockSubGroups(parent, name, what, &base, &header_, &data_, &index_);
  if (name) base_.reset(base);
}

BlockParts::~BlockParts() { (void)OH5CloseBlockSubGroups(header_, data_, index_); }  // after a failure only

bool BlockParts::GiveName() {
  return new_name_.empty() || H5Olink(base_.get(), parent_, new_name_.c_str(), H5P_DEFAULT, H5P_DEFAULT) >= 0;
}

int BlockParts::Close(int status) {
  const int closed = OH5CloseBlockSubGroups(header_, data_, index_);
  header_ = data_ = index_ = -1;
  const bool named = GiveName();  // a block whose steps have failed keeps what they wrote
  const bool base_closed = !base_ || base_.Close();
  if (status != kOk) return status;
  return closed == kOk && named && base_closed ? kOk : kFail;
}

int WriteStages(ORVBlock& block, const BlockParts& parts, int what) {
  int status = kOk;
  if (what & ORV_WRITE_HEADER) status = block.WriteHeader(parts.header());
  if (what & ORV_WRITE_DATA && status == kOk) {
    const BlockCompression compression(block.m_nCompressionFactor);
    status = block.WriteData(parts.data());
  }
  if (what & ORV_WRITE_INDEX && status == kOk) {
    const Swapped<Compression> compression(process().compression, Compression{0, -1});
    status = block.WriteIndex(parts.index());
  }
  return status;
}

int WriteIntoFixedGroup(ORVBlock& block, const char* file, h5::OH5GroupId group, int what,
                        const WrittenShapes& shapes) {
  h5::WriteFile opened(h5::OpenFile(file, H5F_ACC_RDWR));
  h5::Group home = opened ? h5::OpenGroup(opened.get(), h5::GroupPath(group).c_str()) : h5::Group();
  if (!home || (what & ORV_WRITE_DATA && !FitsStoredData(home.get(), shapes))) return kFail;
  int status = kFail;
  {
    BlockParts parts(home.get(), nullptr, what);
    if (parts) status = parts.Close(WriteStages(block, parts, what));
  }
  if (!home.Close() && status == kOk) status = kFail;
  return opened.Finish(status);
}

}  // namespace orvio
