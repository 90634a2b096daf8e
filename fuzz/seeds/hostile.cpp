#include <hdf5.h>

#include "seeds/models.h"
#include "support/raw_hdf5.h"

namespace orvio::fuzz {
namespace {

using orv_test::Check;
using orv_test::ForgedFile;
using orv_test::Id;

constexpr char kNodes[] = "/post/singlestate/state000000000001/entityresults/NODE";
constexpr hsize_t kCount[1] = {4};

/// A result block without its values.
ForgedFile& Block(ForgedFile& file) {
  file.at("/post/constant/variable/V/orvblock").integer("block", 30).text("varnam", "V").text("varkey", "V");
  file.integer("ncoo", 1).integer("rank", 0).integer("ndim", 3);
  return file.at(std::string(kNodes) + "/V/orvblock")
      .integer("block", 1000)
      .text("etypvar", "V")
      .text("etyp", "NODE")
      .integer("nent", 4)
      .integer("ncoo", 1)
      .integer("nindex", 0);
}

/// Makes the values with a creation list of its own.
void Values(ForgedFile& file, void (*prepare)(hid_t list), bool written) {
  Block(file).raw([&](hid_t here) {
    const Id list(H5Pcreate(H5P_DATASET_CREATE), "creation list"), space(H5Screate_simple(1, kCount, nullptr), "space");
    prepare(list.get());
    const Id made(H5Dcreate2(here, "res", H5T_NATIVE_FLOAT, space.get(), H5P_DEFAULT, list.get(), H5P_DEFAULT), "res");
    const float values[4] = {1, 2, 3, 4};
    if (written) Check(H5Dwrite(made.get(), H5T_NATIVE_FLOAT, H5S_ALL, H5S_ALL, H5P_DEFAULT, values), "values");
  });
}

void External(hid_t list) { Check(H5Pset_external(list, "/etc/hostname", 0, 16), "external storage"); }

void Virtual(hid_t list) {
  const Id space(H5Screate_simple(1, kCount, nullptr), "space");
  Check(H5Pset_virtual(list, space.get(), "/nowhere.h5", "/res", space.get()), "virtual dataset");
}

void Deflated(hid_t list) {
  Check(H5Pset_chunk(list, 1, kCount), "chunk");
  Check(H5Pset_shuffle(list), "shuffle");
  Check(H5Pset_deflate(list, 6), "deflate");
  Check(H5Pset_fletcher32(list), "checksum");
}

/// A filter that nobody has: optional, so that HDF5 lets the file be made.
void Unknown(hid_t list) {
  const unsigned values[2] = {1, 2};
  Check(H5Pset_chunk(list, 1, kCount), "chunk");
  Check(H5Pset_filter(list, 32099, H5Z_FLAG_OPTIONAL, 2, values), "filter");
}

void FillCycles(ForgedFile& file) {
  Block(file);
  file.at(kNodes).soft_link("round", kNodes).soft_link("one", std::string(kNodes) + "/two");
  file.soft_link("two", std::string(kNodes) + "/one").soft_link("nowhere", "/post/nowhere");
  file.hard_link("self", kNodes).hard_link("up", "/post/singlestate");
}

void FillExternalLink(ForgedFile& file) {
  Block(file);
  file.at(kNodes).external_link("outside", "/nowhere.h5", "/post/constant");
  file.at("/post/constant").external_link("variables", "/etc/hostname", "/");
}

/// Attributes and datasets of types that no result has.
void FillTypes(ForgedFile& file) {
  Block(file).variable_text("etyp", "NODE").variable_text("series", nullptr).real("nent", 4).integers("ncoo", {1, 2});
  file.raw([](hid_t here) {
    const Id space(H5Screate_simple(1, kCount, nullptr), "space");
    const Id pair(H5Tcreate(H5T_COMPOUND, 8), "compound"), array(H5Tarray_create2(H5T_NATIVE_INT, 1, kCount), "array");
    Check(H5Tinsert(pair.get(), "a", 0, H5T_NATIVE_INT), "a");
    Check(H5Tinsert(pair.get(), "b", 4, H5T_NATIVE_FLOAT), "b");
    const Id list(H5Tvlen_create(H5T_NATIVE_INT), "sequence"), word(H5Tenum_create(H5T_NATIVE_INT), "enumeration");
    const int one = 1;
    Check(H5Tenum_insert(word.get(), "one", &one), "one");
    const std::pair<const char*, hid_t> all[] = {
        {"res", pair.get()},       {"entid", array.get()},        {"indexval", list.get()}, {"fid", word.get()},
        {"eloc", H5T_STD_REF_OBJ}, {"indexident", H5T_STD_I16BE}, {"line", H5T_IEEE_F64BE}};
    for (const auto& [name, type] : all) {
      const Id made(H5Dcreate2(here, name, type, space.get(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT), name);
    }
  });
}

}  // namespace

std::vector<HostileFile> HostileFiles() {
  return {{"external-storage", [](ForgedFile& file) { Values(file, External, false); }},
          {"virtual-dataset", [](ForgedFile& file) { Values(file, Virtual, false); }},
          {"unknown-filter", [](ForgedFile& file) { Values(file, Unknown, true); }},
          {"deflated", [](ForgedFile& file) { Values(file, Deflated, true); }},
          {"cycles", FillCycles},
          {"external-link", FillExternalLink},
          {"strange-types", FillTypes}};
}

}  // namespace orvio::fuzz
