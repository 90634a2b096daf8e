// A filter as HDF5 loads it when a file names one that it does not have. That it was loaded shows in the environment.

#include <H5PLextern.h>
#include <hdf5.h>

#include <cstdlib>

namespace {

struct Trap {
  Trap() { setenv("ORVIO_TRAP", "sprung", 1); }
};

const Trap trap;

size_t PassThrough(unsigned, size_t, const unsigned[], size_t bytes, size_t*, void**) { return bytes; }

const H5Z_class2_t kFilter = {H5Z_CLASS_T_VERS, 32101, 1, 1, "trap", nullptr, nullptr, PassThrough};

}  // namespace

H5PL_type_t H5PLget_plugin_type(void) { return H5PL_TYPE_FILTER; }

const void* H5PLget_plugin_info(void) { return &kFilter; }
