// Makes the seeds of the corpus: make_corpus FOLDER writes FOLDER/hdf5 and FOLDER/frd.

#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <string>

#include "program/frd_forge.h"
#include "seeds/models.h"
#include "seeds/recast.h"

namespace {

using namespace orvio::fuzz;
using orv_test::ForgedFile;
using orv_test::ForgedModel;

struct NamedForm {
  const char* name;
  Form form;
  const char* only;  ///< the one model that is written so; null for all
};

// With small nodes the superblock is of version 1.
constexpr NamedForm kForms[] = {
    {"plain", {Form::kOldest, false, true}, nullptr},         {"packed", {Form::kOldest, true, true}, nullptr},
    {"newer", {Form::kNewer, false, false}, "lists"},         {"latest", {Form::kLatest, false, false}, "model"},
    {"latest-packed", {Form::kLatest, true, false}, "nodes"},
};

void WriteForms(const std::string& from, const std::string& model, const std::string& prefix) {
  for (const NamedForm& form : kForms) {
    if (!form.only || model == form.only) Recast(from, prefix + model + "-" + form.name + ".h5", form.form);
  }
}

void WriteModels(const std::filesystem::path& folder) {
  for (const auto layout : {ForgedModel::kSplit, ForgedModel::kSingle}) {
    for (const Model& model : SmallModels()) {
      ForgedModel forged(layout);
      model.fill(forged, layout);
      WriteForms(forged.path(), model.name, folder / (layout == ForgedModel::kSplit ? "split-" : "single-"));
    }
  }
}

void WriteHostile(const std::filesystem::path& folder) {
  for (const HostileFile& hostile : HostileFiles()) {
    ForgedFile file("hostile");
    hostile.fill(file);
    std::filesystem::copy_file(file.path(), folder / (std::string("hostile-") + hostile.name + ".h5"),
                               std::filesystem::copy_options::overwrite_existing);
  }
}

void Write(const std::filesystem::path& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary) << bytes;
}

/// The same triangle and temperatures in the formats that a .frd file may have.
void WriteFrd(const std::filesystem::path& folder) {
  using namespace frd_forge;
  Write(folder / "text.frd", Mesh() + Temperatures() + kEnd);
  Write(folder / "no-end.frd", Mesh() + Temperatures());
  const std::string nodes = BlockLine("    2C", 2, 3) + Raw(1, 0.0, 1.0, 2.0, 2, 3.0, 4.0, 5.0);
  const std::string elements = BlockLine("    3C", 1, 2) + Raw(11, 7, 0, 1, 1, 2, 1);
  const std::string step = std::string(kStep);
  const std::string binary = StateLine(2, 2) + kTemperature + Raw(1, 370.0F, 2, 20.0F);
  const std::string doubles = StateLine(2, 3) + kTemperature + Raw(1, 370.0, 2, 20.0);
  Write(folder / "binary.frd", kHeader + nodes + elements + step + binary + step + doubles + kEnd);
  Write(folder / "points.dat",
        "\n                        S T E P       1\n\n"
        " stresses (elem, integ.pnt.,sxx,syy,szz,sxy,sxz,syz) for set EALL and time  0.1000000E+01\n\n"
        "         1   1  1.000000E+00  2.000000E+00  3.000000E+00  4.000000E+00  5.000000E+00  6.000000E+00\n"
        "         1   2  1.000000E+00  2.000000E+00  3.000000E+00  4.000000E+00  5.000000E+00  6.000000E+00\n");
}

}  // namespace

int main(int argument_count, char** arguments) {
  if (argument_count != 2) {
    (void)std::fputs("usage: make_corpus FOLDER\n", stderr);
    return 2;
  }
  try {
    const std::filesystem::path folder = arguments[1];
    std::filesystem::create_directories(folder / "hdf5");
    std::filesystem::create_directories(folder / "frd");
    WriteModels(folder / "hdf5");
    WriteHostile(folder / "hdf5");
    WriteFrd(folder / "frd");
  } catch (const std::exception& error) {
    (void)std::fprintf(stderr, "make_corpus: %s\n", error.what());
    return 1;
  }
  return 0;
}
