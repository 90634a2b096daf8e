// Reads a CalculiX result file (.frd, or packed with gzip as .frd.gz) from front to end.
#pragma once

#include <filesystem>

#include "frd/error.h"
#include "frd/model.h"
#include "frd/scanner.h"

namespace orvio::frd {

/// One pass over one file: the header, the nodes, the elements, then one result block after the other. Each operation
/// continues where the one before it stopped, so they are called once each and in this order; NextResult() any number
/// of times. Never more than one result block is in memory, and never more than the file really delivers, whatever
/// counts it announces.
///
///     Reader reader(path);
///     const Header header = reader.ReadHeader();
///     const Nodes nodes = reader.ReadNodes();
///     const Elements elements = reader.ReadElements();
///     for (Result result; reader.NextResult(result);) Use(result);
///     if (!reader.complete()) Warn("the run broke off");
///
/// Everything that is wrong with the file is thrown as Error, which says where and what; the reader is of no further
/// use then. Not checked, because real files have it: ids without order, ids twice, results of nodes that the mesh
/// lacks, elements on such nodes, materials without a `1UMAT` line.
class Reader {
 public:
  explicit Reader(const std::filesystem::path& path) : in_(path) {}

  /// Lines up to the node block. A file that has no node block fails here: the solver writes such a file (only its
  /// first line) when it stops while reading its input.
  Header ReadHeader();
  Nodes ReadNodes();
  Elements ReadElements();

  /// The next result block into `result`, whose vectors are used again; false, with `result` empty, behind the last one.
  /// A file that ends within a block fails.
  bool NextResult(Result& result);

  /// Whether the end mark ` 9999` was read. False after the last result: the run broke off, or still goes on.
  bool complete() const { return complete_; }

  /// How much of the file has been read, 0 to 1.
  double fraction() const { return in_.fraction(); }

 private:
  enum class Stage { kHeader, kNodes, kElements, kResults, kEnd };

  void Advance(Stage from, Stage to);
  void ReadEnd();

  Scanner in_;
  Stage stage_ = Stage::kHeader;
  bool complete_ = false;
};

}  // namespace orvio::frd
