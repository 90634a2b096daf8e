// The model: what results stand on.

#include <algorithm>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include "orvio/orvio.h"
#include "reading.h"

namespace orvio::fuzz {
namespace {

constexpr std::int64_t kMost = 1 << 18;  // elements of an array that is made for a claim of the file

/// Keeps copies of the blocks that a walk meets.
template <class Block>
class Scan : public Block {
 public:
  std::vector<Block> Run(const char* path, int state) {
    (void)this->IterateBlock(path, state, ORV_READ_HEADER, Take);
    return std::move(found_);
  }

 private:
  static _ORVAction Take(int status, int /*stage*/, void* /*where*/, void* block) {
    auto& scan = *static_cast<Scan*>(static_cast<ORVBlock*>(block));
    if (status == 0) scan.found_.push_back(static_cast<Block&>(scan));
    return scan.found_.size() < 32 ? ORV_ACTION_CONTINUE : ORV_ACTION_STOP;
  }

  std::vector<Block> found_;
};

/// Arrays of a block, of exactly the size that its counts ask for.
class Buffers {
 public:
  Buffers() = default;
  Buffers(const Buffers&) = delete;
  Buffers& operator=(const Buffers&) = delete;
  ~Buffers() {
    for (void* array : arrays_) std::free(array);
  }

  /// Null where the product is no sensible size.
  void* Make(std::int64_t rows, std::int64_t columns, std::int64_t size) {
    if (rows <= 0 || columns <= 0 || rows > kMost || columns > kMost || rows * columns > kMost) return nullptr;
    arrays_.push_back(std::calloc(static_cast<std::size_t>(rows * columns), static_cast<std::size_t>(size)));
    return arrays_.back();
  }

 private:
  std::vector<void*> arrays_;
};

void ReadConnectivities(const char* path, int state, Tally& tally) {
  for (ORVEleConnectivity& block : Scan<ORVEleConnectivity>().Run(path, state)) {
    Buffers buffers;
    block.m_ideleType = block.m_pidType = block.m_icType = block.m_iparamType = ORV_INT;
    block.m_fparamType = ORV_FLOAT;
    block.m_idele = buffers.Make(block.m_nele, 1, 4);
    block.m_pid = buffers.Make(block.m_nele, 1, 4);
    block.m_ic = buffers.Make(block.m_nele, block.m_npele, 4);
    block.m_iparam = buffers.Make(block.m_nele, block.m_nbint, 4);
    block.m_fparam = buffers.Make(block.m_nele, block.m_nbfloat, 4);
    if (!block.m_idele || !block.m_pid || !block.m_ic) continue;
    tally.Add(block.ReadBlock(path, state, ORV_READ_DATA), block.m_nele * (2 + block.m_npele));
    for (const _ORVBlockAtt item : {ORV_ATT_IDS, ORV_ATT_PID, ORV_ATT_IC}) {
      tally.Add(block.ReadAttribute(path, state, ORV_READ_DATA, item), block.m_nele);
    }
  }
}

void ReadActivations(const char* path, int state, Tally& tally) {
  for (ORVEleActivation& block : Scan<ORVEleActivation>().Run(path, state)) {
    Buffers buffers;
    block.m_entidType = block.m_statusType = ORV_INT;
    block.m_entid = buffers.Make(block.m_nent, 1, 4);
    block.m_status = buffers.Make(block.m_nent, 1, 4);
    if (!block.m_entid) continue;
    tally.Add(block.ReadBlock(path, state, ORV_READ_DATA), 2 * block.m_nent);
  }
}

void ReadParts(OpenFiler& open, int state, Tally& tally) {
  for (const ORVPart& part : Scan<ORVPart>().Run(open.path, state)) {
    std::vector<int> ids, materials, types;
    std::vector<std::string> names;
    tally.values += open.filer.GetPartInfo(part.m_etyppart, ids, names, materials, types, state);
    (void)open.filer.GetPartIdsAndNames(part.m_etyppart, ids, names, state);
  }
}

void ReadAttributes(OpenFiler& open, int state, Tally& tally) {
  ORVFiler& filer = open.filer;
  std::vector<ORVEntAttribute*> attributes;
  filer.GetEntityAttributes(state, ORV_READ_HEADER | ORV_READ_DATA, attributes);
  for (ORVEntAttribute* block : attributes) {
    tally.values += static_cast<std::uint64_t>(block->m_nent);
    filer.CleanUpEntAttribute(block);
    if (state > 0 && filer.IsAttributeIncrementalAtGivenState(*block, state)) {
      tally.Add(filer.ReadIncrDataValues(block, state, true, false), block->m_nent);
      filer.CleanUpEntAttribute(block);
    }
    delete block;
  }
  std::vector<ORVIdentifiers*> identifiers;
  filer.GetEntityIdentifiers(state, ORV_READ_HEADER | ORV_READ_DATA, identifiers);
  filer.CleanUpEntityIdentifierList(identifiers);
  std::vector<ORVCollector*> collectors;
  filer.GetCollector(state, ORV_READ_HEADER | ORV_READ_DATA, collectors);
  for (const ORVCollector* block : collectors) tally.values += static_cast<std::uint64_t>(block->m_nenttot);
  filer.DeleteCollector(collectors);
  ORVCollector fathers;
  (void)filer.ReadNodeFathers(&fathers, state);
  filer.CleanUpCollector(&fathers);
}

void ReadProperties(OpenFiler& open, Tally& tally) {
  ORVFiler& filer = open.filer;
  std::vector<ORVProperties*> blocks = filer.GetPropertiesBlocks(true);
  if (blocks.size() > 16) blocks.resize(16);
  for (ORVProperties* block : blocks) {
    ORVProperties copy = *block;
    const int status = filer.ReadProperty(&copy, ORV_READ_HEADER | ORV_READ_DATA, 1);
    tally.Add(status, copy.m_nent);
    filer.ClearProperty(&copy);
    int *ids = nullptr, *integers = nullptr, id_count = 0, integer_count = 0, real_count = 0;
    float* reals = nullptr;
    (void)filer.GetPropertyValues(1, block->m_etyp, block->m_etypvar, id_count, &ids, integer_count, &integers,
                                  real_count, &reals);
    const Owned<int> id_owner(ids), integer_owner(integers);
    const Owned<float> real_owner(reals);
  }
  (void)filer.HasSecureNodeProperty();
  (void)filer.HasSecureNodeCoordinateProperty();
}

}  // namespace

void ReadModel(OpenFiler& open, Tally& tally) {
  for (int state = 0; state <= open.states; ++state) {
    ReadParts(open, state, tally);
    ReadConnectivities(open.path, state, tally);
    ReadActivations(open.path, state, tally);
    ReadAttributes(open, state, tally);
  }
  ReadProperties(open, tally);
}

Tally ReadAll(const char* path) {
  Tally tally;
  ReadTyped(path, false, tally);
  OpenFiler open(path);
  AskQuestions(open, tally);
  ReadResultValues(open, tally);
  ReadModel(open, tally);
  return tally;
}

Tally ReadOnce(const char* path) {
  Tally tally;
  ReadTyped(path, false, tally);
  if (!tally.opened) return tally;
  OpenFiler open(path);
  open.states = std::min(open.states, 1);
  ReadResultsOnce(open, tally);
  ReadModel(open, tally);
  return tally;
}

}  // namespace orvio::fuzz
