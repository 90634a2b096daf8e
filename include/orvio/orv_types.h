#pragma once

/// Types that cross the boundary of the library: enumerations, small records, version and status texts.

#include <cstddef>
#include <cstdint>

#include "orvio/orvio_export.h"

/// HDF5's identifier and size types, declared here as HDF5 declares them, so that a host needs no HDF5 header
/// for the plain operations. A negative identifier means failure.
typedef std::int64_t hid_t;
typedef std::uint64_t hsize_t;

/// Type of a stored value and of a caller's buffer.
enum _ORVDataType : int {
  ORV_UNKNOWN_TYPE = 0,  ///< not determined
  ORV_NO_DATASET = 1,    ///< answer of a type query: the dataset does not exist
  ORV_INT = 2,           ///< 32-bit signed integer
  ORV_FLOAT = 3,         ///< 32-bit IEEE float
  ORV_CHAR = 4,          ///< fixed-length text
  ORV_CHAR_FIXED = 5,    ///< text in a selective write, treated like ORV_CHAR there
  ORV_LONG = 6,          ///< 64-bit signed integer
  ORV_DOUBLE = 7,        ///< 64-bit IEEE float
};

/// Format versions that the library can write.
enum _ORVVersion : int {
  ORV_VERSION_1_0 = 0,
  ORV_VERSION_1_1 = 1,
  ORV_VERSION_1_2 = 2,
  ORV_VERSION_2_0 = 3,
  ORV_VERSION_2_1 = 4,
  ORV_VERSION_2_2 = 5,
};

/// How the parts of a block lie in its group.
enum _ORVBlkVersion : int {
  ORV_BLK_VERSION_SPLIT = 0,   ///< child groups "header", "data" and "index"
  ORV_BLK_VERSION_SINGLE = 1,  ///< one child group "orvblock" with everything in it
};

/// Mode of OH5WriteOpenFile and ORVFiler::InitForWriting.
enum _ORVFileMode : int {
  ORV_FILE_CREATE = 0,  ///< create, truncating what is there
  ORV_FILE_APPEND = 1,  ///< open for read and write; create where no file is
};

/// Bit numbers of a filer's configuration word, not masks.
enum _ORVFilerConfig : int {
  ORV_CONFIG_ASSIGN_UNITS = 0,      ///< make objects of the units of the file
  ORV_CONFIG_SKIP_SINGLESTATE = 1,  ///< do not discover result blocks of the states
  ORV_CONFIG_SKIP_CONSTANT = 2,     ///< do not discover constant result blocks, nor those of the states
  ORV_CONFIG_SKIP_MULTISTATE = 3,   ///< do not discover multi-state result blocks
};

/// Stages of a block read; a combination selects several.
enum _ORVReadStage : int {
  ORV_READ_HEADER = 0x01,
  ORV_READ_DATA = 0x02,
  ORV_READ_INDEX = 0x04,
  ORV_READ_HEADER_INFO = 0x08,
  ORV_READ_DATA_INFO = 0x10,   ///< types and sizes of the datasets, not their values
  ORV_READ_INDEX_INFO = 0x20,  ///< types of the index datasets, not their values
};

/// Stages of a block write; a combination selects several.
enum _ORVWriteStage : int {
  ORV_WRITE_HEADER = 1,
  ORV_WRITE_DATA = 2,
  ORV_WRITE_INDEX = 4,
};

/// Answer of an iteration callback.
enum _ORVAction : int {
  ORV_ACTION_CONTINUE = 0,  ///< go on with the next stage
  ORV_ACTION_STOP = 1,      ///< end the whole iteration
  ORV_ACTION_SKIP = 2,      ///< leave the stages of this block and go to the next
};

/// Kind of a text sent to the message callback.
enum _ORVMesgType : int {
  ORV_MESG_ERROR = 0,
  ORV_MESG_WARNING = 1,
};

/// Block keys of the kinds that ORVResult serves. Odd keys hold complex values.
enum _ORVResultKind : int {
  ORV_RESULT_PROPERTIES = 500,
  ORV_RESULT_ENTITY = 1000,
  ORV_RESULT_ENTITY_COMPLEX = 1001,
  ORV_RESULT_MULTI_ENTITY = 1050,
  ORV_RESULT_MULTI_ENTITY_COMPLEX = 1051,
  ORV_RESULT_ELEMENT = 1100,
  ORV_RESULT_ELEMENT_COMPLEX = 1101,
  ORV_RESULT_MULTI_ELEMENT = 1150,
  ORV_RESULT_MULTI_ELEMENT_COMPLEX = 1151,
};

/// Items of a block that can be read or written one at a time.
enum _ORVBlockAtt : int {
  ORV_ATT_BLOCK = 1,
  ORV_ATT_ETYP = 2,
  ORV_ATT_ETYPNODE = 3,
  ORV_ATT_ETYPPART_NAME = 4,
  ORV_ATT_NENT = 5,
  ORV_ATT_NELE = 6,
  ORV_ATT_ETYPVAR = 7,
  ORV_ATT_NCOO = 8,
  ORV_ATT_NUML = 9,
  ORV_ATT_NDIM = 10,
  ORV_ATT_FSWITCH = 11,
  ORV_ATT_NINDEX = 12,
  ORV_ATT_IDS = 13,
  ORV_ATT_IDS_SECOND = 14,
  ORV_ATT_FIDGLOB = 15,
  ORV_ATT_FID = 16,
  ORV_ATT_ELOC = 17,
  ORV_ATT_RES = 18,
  ORV_ATT_INDEXIDENT = 19,
  ORV_ATT_INDEXVAL = 20,
  ORV_ATT_PID = 21,
  ORV_ATT_IC = 22,
  ORV_ATT_NPELE = 23,
  ORV_ATT_ETYPPART = 24,
  ORV_ATT_ZONEID = 25,
  ORV_ATT_IPARAM = 26,
  ORV_ATT_FPARAM = 27,
  ORV_ATT_CPARAM = 29,
  ORV_ATT_NSTATE = 30,
};

/// Kind of an entity, looked up from its type name; -1 when there is none.
enum _ORVEntityType : int;

/// One row of the table that gives a block key its type group.
struct _OH5BlockKeyMap {
  std::int64_t key;  ///< block key
  const char* name;  ///< name of the type group, not owned
};

/// Version of a file or of a writer.
struct ORVFileVersion {
  int m_major = 0;
  int m_minor = 0;
  int m_patch = 0;
};

/// Record of a link into another file, for hosts that keep such links. All fields are cleared at first.
struct ORVIO_EXPORT ORVExternalLink {
  ORVExternalLink();
  void Initialize();  ///< clears all fields

  char m_text[512];
  std::int64_t m_first;
  std::int64_t m_second;
};

/// Callback of a walk over blocks. `status` is that of the read just done, `stage` the single stage bit or -1,
/// `where` a name or a 0-based state index as the walk documents it, `block` the scratch block of the walk.
typedef _ORVAction (*ORVIterationCallBack)(int status, int stage, void* where, void* block);

/// Receives the texts that the filer sends.
typedef void (*ORVMessageCallBack)(_ORVMesgType type, const char* text);

extern "C" {

/// Version of the reader: 2, 0, 0.
ORVIO_EXPORT void ORVGetReaderVersion(int* major, int* minor, int* patch);

/// Version that belongs to the current writer version number; 1, 1, 0 for a number outside _ORVVersion.
ORVIO_EXPORT void ORVGetWriterVersion(int* major, int* minor, int* patch);

/// Version of the HDF5 library in use.
ORVIO_EXPORT void ORVGetHdfVersion(int* major, int* minor, int* patch);

/// Fixed text of a status code, such as "File open error" for 4. A code without a text gives
/// "UNKNOWN_ERROR(n)"; that answer lives until the next call.
ORVIO_EXPORT const char* ORVGetStatusText(int status);

/// The last text that a failing operation composed, at most 511 bytes, or an empty text. It stays until the
/// next failure with a text of its own: operations that fail silently leave it alone.
ORVIO_EXPORT const char* ORVGetLastErrorText();
}
