#pragma once

/// The way from a block to an open result file.

#include <string>
#include <vector>

#include "orvio/orv_types.h"

/// What a block may ask of an open file. Status answers are 0 for success and 1 for failure. A `loc` is any
/// HDF5 location. A host may implement the interface for files of its own.
class ORVIO_EXPORT IOH5Reader {
 public:
  virtual ~IOH5Reader();

  virtual void ReadReaderVersion(int& major, int& minor, int& patch) = 0;
  /// True when the file's major version is at most `n`, and for a file whose version cannot be read.
  virtual bool IsFileMajorAtMost(unsigned n) = 0;
  virtual int OpenFile(const char* name, unsigned flags) = 0;
  virtual int CloseFile() = 0;
  virtual int ReadFileVersion(int& major, int& minor, int& patch) = 0;
  virtual hid_t GetFileId() = 0;
  /// Appends "/post".
  virtual int GetPostPath(std::string& path) = 0;
  virtual int ReadDatasetAll(hid_t loc, const char* name, int rank, hsize_t* dims, _ORVDataType type, void* buffer) = 0;
  virtual int ReadDatasetSelective(hid_t loc, const char* name, int rank, hsize_t* start, hsize_t* count,
                                   hsize_t* stride, hsize_t* block, _ORVDataType type, void* buffer) = 0;
  virtual int ReadAttributeValue(hid_t loc, const char* name, int rank, hsize_t* dims, _ORVDataType type,
                                 void* buffer) = 0;
  virtual int ReadDatasetType(hid_t loc, const char* name, _ORVDataType* type) = 0;
  virtual hid_t OpenGroup(hid_t loc, const char* name, hid_t access) = 0;
  virtual int CloseGroup(hid_t group) = 0;
  /// Number of links in a group; 0 on failure.
  virtual int GetNumLinks(hid_t group) = 0;
  /// Name of the link with a 0-based `index`, by name. With `child` given, opens that group too; its id may be
  /// negative although the answer is 0. On failure `name` is left alone and `*child` is -1.
  virtual int GetChildByIndex(hid_t group, int index, std::string& name, hid_t* child, hid_t access) = 0;
  virtual int GetLocationStrings(std::string& first, std::string& second, std::string& third, std::string& fourth) = 0;
  /// Rank, extents, element count and type of a dataset. `dims` has room for 32 entries. `filters` may be null,
  /// else the ids of the dataset's filters are appended, those that no read goes through, too. A stored type that the
  /// library does not know gives ORV_UNKNOWN_TYPE and status 0.
  virtual int GetDatasetInfo(hid_t loc, const std::string& name, int& rank, hsize_t* dims, hsize_t& total,
                             _ORVDataType& type, std::vector<int>* filters) = 0;
  virtual hid_t OpenObject(hid_t loc, const char* name, hid_t access) = 0;
  virtual int CloseObject(hid_t object) = 0;
  virtual void GetLinkInfo(hid_t loc, const std::string& name, std::string& target, std::string& file) = 0;
  /// Empties `roots` and fills it with the root groups ("/post") that hold a readable file header.
  virtual void ListPostRoots(std::vector<std::string>& roots) = 0;
  virtual bool GetReaderFlag() = 0;
};

/// The reader for files on disk.
class ORVIO_EXPORT OH5Reader : public IOH5Reader {
 public:
  /// A closed reader; with a name it opens as OpenFile does, and GetFileId tells whether that worked.
  explicit OH5Reader(const char* name = nullptr, unsigned flags = 0);
  ~OH5Reader() override;
  OH5Reader(const OH5Reader&) = delete;
  OH5Reader& operator=(const OH5Reader&) = delete;

  void ReadReaderVersion(int& major, int& minor, int& patch) override;
  bool IsFileMajorAtMost(unsigned n) override;
  /// `flags` are those of H5Fopen: 0 read-only, 1 read and write. A file that is open is closed first.
  int OpenFile(const char* name, unsigned flags) override;
  /// 1 when nothing is open or the close fails. Objects of the file that were left open are closed too.
  int CloseFile() override;
  int ReadFileVersion(int& major, int& minor, int& patch) override;
  hid_t GetFileId() override;
  int GetPostPath(std::string& path) override;
  int ReadDatasetAll(hid_t loc, const char* name, int rank, hsize_t* dims, _ORVDataType type, void* buffer) override;
  int ReadDatasetSelective(hid_t loc, const char* name, int rank, hsize_t* start, hsize_t* count, hsize_t* stride,
                           hsize_t* block, _ORVDataType type, void* buffer) override;
  int ReadAttributeValue(hid_t loc, const char* name, int rank, hsize_t* dims, _ORVDataType type,
                         void* buffer) override;
  int ReadDatasetType(hid_t loc, const char* name, _ORVDataType* type) override;
  hid_t OpenGroup(hid_t loc, const char* name, hid_t access) override;
  int CloseGroup(hid_t group) override;
  int GetNumLinks(hid_t group) override;
  int GetChildByIndex(hid_t group, int index, std::string& name, hid_t* child, hid_t access) override;
  int GetLocationStrings(std::string& first, std::string& second, std::string& third, std::string& fourth) override;
  int GetDatasetInfo(hid_t loc, const std::string& name, int& rank, hsize_t* dims, hsize_t& total, _ORVDataType& type,
                     std::vector<int>* filters) override;
  hid_t OpenObject(hid_t loc, const char* name, hid_t access) override;
  int CloseObject(hid_t object) override;
  void GetLinkInfo(hid_t loc, const std::string& name, std::string& target, std::string& file) override;
  void ListPostRoots(std::vector<std::string>& roots) override;
  bool GetReaderFlag() override;

 private:
  void ListGroupLinks(hid_t group, std::vector<std::string>& names, std::vector<int>& types);
  int ReadHeaderBytes(const std::string& root, char* buffer);

 protected:
  hid_t m_file = -1;

 private:
  unsigned m_major = 0;  ///< major version of the file, 0 until asked for
};

extern "C" {
/// Number of states in a file. 0 when the file could be opened (a file without states has count 0), 1 when it
/// could not or an argument is null; the count is then 0.
ORVIO_EXPORT int ReadNumState(const char* file, int* count);
}
