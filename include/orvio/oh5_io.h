#pragma once

/// Typed access to datasets and attributes, and the making of files and groups. Status answers are 0 for
/// success and 1 for failure unless told otherwise; the text of a failure is in ORVGetLastErrorText().

#include <H5Epublic.h>
#include <H5Lpublic.h>

#include <string>

#include "orvio/orv_types.h"

// ---- Reading

/// Reads a whole dataset. `rank` and `dims` must be those of the stored one; rank 1 with the full element count
/// also takes a stored one of another rank whose first extent is that count; rank 0 takes exactly one element.
/// Integer types read each other and so do float types. With ORV_CHAR the last of `dims` is the text size.
ORVIO_EXPORT int OH5Read_DATASET(hid_t loc, const char* name, int rank, const hsize_t* dims, _ORVDataType type,
                                 void* buffer);

/// Reads fixed-length texts of exactly `size` bytes each.
ORVIO_EXPORT int OH5Read_CHAR(hid_t loc, const char* name, int rank, const hsize_t* dims, int size, char* buffer);

/// Reads a hyperslab into a flat buffer. `stride` counts only together with `block`; both may be null.
ORVIO_EXPORT int OH5Read_SELECTIVE(hid_t loc, const char* name, int rank, const hsize_t* start, const hsize_t* count,
                                   const hsize_t* stride, const hsize_t* block, _ORVDataType type, void* buffer);

/// Reads an attribute. Texts need a buffer of 256 bytes; one of fewer than 256 bytes is terminated.
ORVIO_EXPORT int OH5Read_ATTRIBUTE(hid_t loc, const char* name, int rank, const hsize_t* dims, _ORVDataType type,
                                   void* buffer);

/// Type of a dataset by name, whatever filters it has; ORV_NO_DATASET and status 0 when the link is missing.
ORVIO_EXPORT int OH5Read_DATATYPE(hid_t loc, const char* name, _ORVDataType* type);

/// Type of an open dataset; status 1 and ORV_UNKNOWN_TYPE for a stored type that the library does not know.
ORVIO_EXPORT int OH5DatasetType(hid_t dataset, _ORVDataType* type);

/// Takes the trailing blanks off a field of 256 bytes.
ORVIO_EXPORT void OH5TrimTrailingSpaces(char* field);

/// Path of `loc` (hard link, or neither name nor info) or value of a soft or external link, into a buffer of
/// 3000 bytes. For an external link the value is the object path. Empty for a link that lies in another file.
ORVIO_EXPORT void OH5GetLinkTarget(hid_t loc, const char* name, char* buffer, const H5L_info1_t* info);

/// Closes what is still open in a file except the file itself.
ORVIO_EXPORT void OH5CloseOpenObjects(hid_t file);

// ---- Writing

/// Writes a whole dataset of ORV_INT or ORV_LONG. One that exists is written over in place: it must be of
/// integer class, of no higher rank and of no more elements.
ORVIO_EXPORT int OH5Write_INT(hid_t loc, const char* name, int rank, const hsize_t* dims, _ORVDataType type,
                              const void* data);

/// The same for ORV_FLOAT and ORV_DOUBLE.
ORVIO_EXPORT int OH5Write_FLOAT(hid_t loc, const char* name, int rank, const hsize_t* dims, _ORVDataType type,
                                const void* data);

/// Writes texts of `size` bytes each.
ORVIO_EXPORT int OH5Write_CHAR(hid_t loc, const char* name, int rank, const hsize_t* dims, int size, const char* data);

/// Writes a hyperslab into a dataset that grows without limit; see the format page for how `extent` counts.
ORVIO_EXPORT int OH5Write_SELECTIVE(hid_t loc, const char* name, int rank, const hsize_t* start, const hsize_t* count,
                                    const hsize_t* stride, const hsize_t* block, _ORVDataType type,
                                    const hsize_t* extent, const void* data);

/// Writes a scalar attribute; `size` counts for texts only. `dims` is not used.
ORVIO_EXPORT int OH5write_ATTRIBUTE(hid_t loc, const char* name, const hsize_t* dims, _ORVDataType type, size_t size,
                                    const void* data);

/// Whether an integer dataset fits an update of `dims[0]` elements: 0 when it does. Other types always pass.
ORVIO_EXPORT int OH5CheckDataSet(hid_t loc, const char* name, const hsize_t* dims, _ORVDataType type);

/// HDF5 class, native type and element size of a type. Text counts 256 bytes in the write form, 1 in the read
/// form. 1 for an unknown type; the read form then gives class -1 and zeros.
ORVIO_EXPORT int OH5TypeInfo(_ORVDataType type, int& type_class, hid_t& native, size_t& size, bool write_form);

// ---- Files and groups

/// Opens a file for writing, `mode` being an _ORVFileMode. 4 when that fails. With ORV_FILE_APPEND a file that
/// exists but cannot be opened is never truncated.
ORVIO_EXPORT int OH5WriteOpenFile(const char* name, int mode, hid_t* file);
ORVIO_EXPORT int OH5WriteCloseFile(hid_t file);

/// Writes the tree of a new file as the current writer version has it. 1 when the file has a tree already.
ORVIO_EXPORT int OH5CreateSkeleton(hid_t file);

/// Path of a fixed group ("./post/constant") for an id of 0 to 21; 1 for an id that has none.
ORVIO_EXPORT int OH5GetGroupPath(int id, char* buffer);

/// Name of the group of a state with a 1-based number, such as "state000000000012".
ORVIO_EXPORT void OH5BuildStateName(int state, char* name);

/// Opens the state with a 0-based index, or with `create` adds it when it is the next one. The three ids belong
/// to the caller on success and are -1 after a failure.
ORVIO_EXPORT int OH5OpenStateGroup(const char* name, int index, hid_t* file, hid_t* singlestate, hid_t* state,
                                   bool create);
/// The same in an open file.
ORVIO_EXPORT int OH5OpenStateGroup(hid_t file, int index, hid_t* singlestate, hid_t* state, bool create);

/// Opens or makes the groups that a block's parts are written to. In the single layout the three ids are one.
ORVIO_EXPORT int OH5OpenBlockSubGroups(hid_t parent, const char* name, int what, hid_t* base, hid_t* header,
                                       hid_t* data, hid_t* index);
/// Closes each of them once.
ORVIO_EXPORT int OH5CloseBlockSubGroups(hid_t header, hid_t data, hid_t index);

/// Opens a file with the current access flags and opens or makes a path in it; "./post" is "/post". -1 on failure, with
/// `*file` -1.
ORVIO_EXPORT hid_t OH5OpenGroupChain(const char* name, hid_t* file, const std::string& path);

extern "C" {
/// H5Eset_auto2 for `stack`, or for the default stack when it is below 1. What a callback sets stays set.
ORVIO_EXPORT int OH5SetErrorHandler(hid_t stack, H5E_auto2_t func, void* data);
}
