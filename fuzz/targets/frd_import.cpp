// Plain .frd and .dat files of CalculiX, text and binary, in the order in which an import reads them.

#include <cstdlib>

#include "byte_file.h"
#include "frd/dat_reader.h"
#include "frd/reader.h"
#include "target.h"

namespace {

using namespace orvio;

void Expect(bool holds) {
  if (!holds) std::abort();
}

void ReadMesh(frd::Reader& reader) {
  const frd::Nodes nodes = reader.ReadNodes();
  Expect(nodes.coordinates.size() == 3 * nodes.ids.size());
  Expect(nodes.precise_coordinates.size() == 3 * nodes.ids.size());
  const frd::Elements elements = reader.ReadElements();
  std::size_t count = 0;
  for (std::size_t i = 0; i < elements.items.size(); ++i) count += elements.NodesOf(i).size();
  Expect(count == elements.nodes.size());
}

void ReadFrd(const char* path) {
  try {
    frd::Reader reader(path);
    (void)reader.ReadHeader();
    ReadMesh(reader);
    for (frd::Result result; reader.NextResult(result);) {
      Expect(result.values.size() == result.ids.size() * result.StoredComponents());
    }
    (void)reader.complete();
    (void)reader.fraction();
  } catch (const frd::Error&) {  // what is wrong with a file is told this way
  }
}

void ReadDat(const char* path) {
  try {
    frd::DatReader reader(path);
    for (frd::PointResult result; reader.NextResult(result);) {
      Expect(result.elements.size() == result.points.size());
      Expect(result.values.size() == result.elements.size() * result.components.size());
    }
  } catch (const frd::Error&) {  // likewise
  }
}

}  // namespace

int LLVMFuzzerInitialize(int* /*argument_count*/, char*** /*arguments*/) { return 0; }

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const bool packed = size > 1 && data[0] == 0x1F && data[1] == 0x8B;  // zlib's own business
  if (packed) return 0;
  const fuzz::ByteFile file(data, size);
  ReadFrd(file.path());
  ReadDat(file.path());
  return 0;
}
