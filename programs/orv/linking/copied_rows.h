// Values of arrays that are no plain view of the result file.
#pragma once

#include <functional>
#include <vector>

#include "linking/linked_array.h"
#include "reading/result_file.h"

namespace orvio::program {

/// The values of rows that follow each other from `first_row` on, components side by side.
using RowWriter = std::function<void(hsize_t first_row, const std::vector<double>& values)>;

/// Reads an array block by block and hands on the rows of each step, with `fill` where there is no value. Throws Trouble.
void CopyRows(ResultFile& file, const LinkedArray& array, double fill, const RowWriter& write);

}  // namespace orvio::program
