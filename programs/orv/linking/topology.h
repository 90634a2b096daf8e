// Elements of a result file as cells of VTK.
#pragma once

#include <orvio/orvio.h>

#include <string>
#include <vector>

#include "linking/mesh.h"

namespace orvio::program {

/// The cells of these blocks of a state (0 for the constant section) over these nodes, in the order of the blocks. What has no place among them is noted. Throws
/// Trouble for a block that cannot be read.
Topology ReadTopology(ResultFile& file, const std::vector<ORVEleConnectivity>& headers, int state,
                      const std::string& node_type, const std::vector<long long>& node_ids,
                      std::vector<LeftOut>& left_out, std::vector<std::string>& notes);

/// Appends it unless it is there already.
void Note(std::vector<LeftOut>& left_out, LeftOut entry);
void Note(std::vector<std::string>& notes, const std::string& note);

}  // namespace orvio::program
