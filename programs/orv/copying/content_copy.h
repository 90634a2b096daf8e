// Copies what a file holds, all of it or some, block by block.
#pragma once

#include "copying/content_writer.h"
#include "copying/extract_plan.h"
#include "copying/result_source.h"

namespace orvio::program {

struct CopyTask {
  ExtractPlan plan;
  bool chooses = false;  ///< definitions that nothing refers to go
  bool chooses_states = false;
  bool makes_whole = false;  ///< states that hold changes are put together
};

/// One block is in memory at a time, and with states that hold changes those that it builds upon, one after the other.
/// Throws Trouble.
CopyReport CopyContent(const CopyTask& task, ResultSource& source, ContentWriter& writer);

}  // namespace orvio::program
