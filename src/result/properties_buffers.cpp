// The arrays of a properties block.

#include "result/properties_buffers.h"

#include <cstdlib>

#include "h5/disk_names.h"

namespace orvio {
namespace {

void MakeArrays(ORVProperties& block, h5::ArrayMaker& make) {
  make.numbers(block.m_entid, disk::entid, {block.m_nent});
  if (block.m_nbint != 0) make.numbers(block.m_iparam, disk::iparam, {block.m_nbint, block.m_nent});
  if (block.m_nbfloat != 0) make.numbers(block.m_fparam, disk::fparam, {block.m_nbfloat, block.m_nent});
  if (block.m_length != 0 && block.m_nbstring != 0) {
    make.texts(block.m_cparam, disk::cparam, {block.m_nbstring, block.m_nent}, block.m_length);
  }
}

void ForgetArrays(ORVProperties& block) {
  block.m_entid = nullptr;
  block.m_iparam = nullptr;
  block.m_fparam = nullptr;
  block.m_cparam = nullptr;
}

}  // namespace

bool AllocateBuffers(ORVProperties& block, const h5::StoredElementsOf& stored) {
  if (block.m_nent < 1) return false;
  ForgetArrays(block);
  block.m_entidType = ORV_INT;
  h5::ArrayMaker make(stored);
  MakeArrays(block, make);
  if (!make.ok()) FreeBuffers(block);
  return make.ok();
}

void FreeBuffers(ORVProperties& block) {
  // QUIRK: a block without entities keeps its arrays, and what the counts do not have is forgotten unfreed. A filer has
  // not made these for the counts as they are: they are the host's own, of whatever allocator, or older than the counts.
  // Pinned by FilerPropertiesClear.FreesNothingThatTheCountsDoNotHave.
  if (block.m_nent == 0) return;
  std::free(block.m_entid);
  if (block.m_nbint != 0) std::free(block.m_iparam);
  if (block.m_nbfloat != 0) std::free(block.m_fparam);
  if (block.m_nbstring != 0 && block.m_length != 0) std::free(block.m_cparam);
  ForgetArrays(block);
}

bool HasBuffers(const ORVProperties& block) {
  return block.m_entid || block.m_iparam || block.m_fparam || block.m_cparam;
}

}  // namespace orvio
