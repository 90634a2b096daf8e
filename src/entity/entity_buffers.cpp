// The arrays of entity attribute, identifiers and collector blocks.

#include <cstdlib>

#include "entity/entity_lists.h"
#include "h5/array_maker.h"
#include "h5/disk_names.h"

namespace orvio {
namespace {

void MakeArrays(ORVEntAttribute& block, h5::ArrayMaker& make) {
  make.numbers(block.m_entid, disk::entid, {block.m_nent});
  if (block.m_length > 0) make.texts(block.m_title, disk::title, {block.m_nent}, block.m_length);
  if (block.m_nuid > 0) make.numbers(block.m_uid, disk::uid, {block.m_nuid, block.m_nent});
}

void MakeArrays(ORVCollector& block, h5::ArrayMaker& make) {
  make.numbers(block.m_idcoll, disk::idcoll, {block.m_ncoll});
  if (block.m_ntyp != 0) {
    make.texts(block.m_etyp, disk::etyp, {block.m_ntyp}, disk::kTextWidth);
    make.numbers(block.m_nent, disk::nent, {block.m_ncoll, block.m_ntyp});
  }
  if (block.m_nenttot != 0) make.numbers(block.m_entid, disk::entid, {block.m_nenttot});
}

template <class Block>
bool MakeOrFree(Block& block, const h5::StoredElementsOf& stored) {
  h5::ArrayMaker make(stored);
  MakeArrays(block, make);
  if (!make.ok()) FreeBuffers(block);
  return make.ok();
}

}  // namespace

bool AllocateBuffers(ORVEntAttribute& block, const h5::StoredElementsOf& stored) {
  block.InitializeBlock(ORV_READ_DATA);
  return MakeOrFree(block, stored);
}

bool AllocateBuffers(ORVCollector& block, const h5::StoredElementsOf& stored) {
  block.m_idcollType = block.m_nentType = block.m_entidType = ORV_INT;
  return MakeOrFree(block, stored);
}

void FreeBuffers(ORVEntAttribute& block) {
  // QUIRK: a block without entities loses its arrays unfreed. No filer has made any for it: they are the host's own, of
  // whatever allocator. Pinned by FilerAttributesCleanUp.OfABlockWithoutEntitiesFreesNothing.
  if (block.m_nent != 0) {
    std::free(block.m_entid);
    if (block.m_length != 0) std::free(block.m_title);
    if (block.m_nuid != 0) std::free(block.m_uid);
  }
  block.InitializeBlock(ORV_READ_DATA);
}

void FreeBuffers(ORVCollector& block) {
  std::free(block.m_idcoll);
  std::free(block.m_etyp);
  std::free(block.m_nent);
  std::free(block.m_entid);
  block.InitializeBlock(ORV_READ_DATA);
}

}  // namespace orvio
