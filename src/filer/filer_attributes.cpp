// Attributes and identifiers of a file: ReadEntAttribute and ReadEntIdentifiers read one block, GetEntityAttributes and
// GetEntityIdentifiers all of a section, and the CleanUp operations free what these have made.

#include "entity/entity_lists.h"
#include "filer/container.h"
#include "h5/entry.h"
#include "h5/status.h"
#include "orvio/orv_filer.h"

using namespace orvio;

int ORVFiler::ReadEntAttribute(ORVEntAttribute* block, int mode, int state) {
  if (!block || !m_pData) return kFail;
  return h5::Entry(kFail, [&] { return ReadEntityList(*block, m_pData->path.c_str(), state, mode); });
}

int ORVFiler::ReadEntIdentifiers(ORVIdentifiers* block, int mode, int state) {
  return ReadEntAttribute(block, mode, state);
}

void ORVFiler::GetEntityAttributes(int state, int mode, std::vector<ORVEntAttribute*>& blocks) {
  if (m_pData) h5::EntryVoid([&] { ReadEntityLists(m_pData->path.c_str(), state, mode, blocks); });
}

void ORVFiler::GetEntityIdentifiers(int state, int mode, std::vector<ORVIdentifiers*>& blocks) {
  if (m_pData) h5::EntryVoid([&] { ReadEntityLists(m_pData->path.c_str(), state, mode, blocks); });
}

void ORVFiler::CleanUpEntAttribute(ORVEntAttribute* block) {
  if (block) FreeBuffers(*block);
}

void ORVFiler::CleanUpEntIdentifiers(ORVIdentifiers* block) { CleanUpEntAttribute(block); }

void ORVFiler::CleanUpEntityIdentifierList(std::vector<ORVIdentifiers*>& blocks) { DeleteEntityLists(blocks); }
