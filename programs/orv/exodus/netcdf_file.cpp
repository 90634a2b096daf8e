// Opening of netCDF files and reading of their variables.
#include "exodus/netcdf_file.h"

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <netcdf.h>

#include <algorithm>
#include <limits>
#include <numeric>
#include <string_view>
#include <system_error>

#include "exodus/classic_header.h"
#include "exodus/error.h"

namespace orvio::exodus {
namespace {

constexpr std::uint64_t kUnbackedBytes = std::uint64_t{64} << 20;  // may be allocated for what packs to nothing
constexpr std::uint64_t kPackingLimit = 1032;                      // no byte of a deflated stream makes more
constexpr std::uint64_t kLargestPacked = std::numeric_limits<std::uint64_t>::max() / kPackingLimit;

void Require(int status, const std::string& where) {
  if (status == NC_ENOMEM) throw std::bad_alloc();
  if (status != NC_NOERR) throw Error(fmt::format("{}: {}", where, nc_strerror(status)));
}

std::uint64_t SizeOfRegularFile(const std::filesystem::path& path) {
  std::error_code error;
  const auto status = std::filesystem::status(path, error);
  if (!std::filesystem::exists(status)) {
    const auto missing = std::make_error_code(std::errc::no_such_file_or_directory);
    throw Error("cannot be opened: " + (error ? error : missing).message());
  }
  if (std::filesystem::is_directory(status)) throw Error("is a directory, not a file");
  if (!std::filesystem::is_regular_file(status)) throw Error("is not a regular file");
  const auto size = std::filesystem::file_size(path, error);
  if (error) throw Error("cannot be opened: " + error.message());
  return size;
}

/// Up to the first zero byte, without trailing blanks. Writers pad with either.
std::string WithoutPadding(std::string_view text) {
  text = text.substr(0, text.find('\0'));
  const std::size_t last = text.find_last_not_of(' ');
  return std::string(text.substr(0, last == std::string_view::npos ? 0 : last + 1));
}

bool IsReal(int type) { return type == NC_FLOAT || type == NC_DOUBLE; }
bool IsInteger(int type) {
  return type == NC_BYTE || type == NC_UBYTE || type == NC_SHORT || type == NC_USHORT || type == NC_INT ||
         type == NC_UINT || type == NC_INT64 || type == NC_UINT64;
}

/// For messages.
const char* KindOf(int type) {
  if (IsReal(type)) return "floating-point numbers";
  if (IsInteger(type)) return "integers";
  return type == NC_CHAR ? "characters" : "values of an unknown kind";
}

void RequireKind(bool right, const Variable& variable, const char* wanted) {
  if (!right) throw Error(fmt::format("{}: {} where {} are expected", variable.name, KindOf(variable.type), wanted));
}

}  // namespace

bool Variable::IsDouble() const { return type == NC_DOUBLE; }

std::string Describe(const Shape& shape) {
  return shape.empty() ? "1 number" : fmt::format("{}", fmt::join(shape, " x "));
}

NetcdfFile::NetcdfFile(const std::filesystem::path& path) {
  CheckSize(path);
  // The full path of a file is no address of a network, whatever the given one looks like.
  std::error_code error;
  const std::filesystem::path full = std::filesystem::canonical(path, error);
  if (error) throw Error("cannot be opened: " + error.message());
  const int status = nc_open(full.c_str(), NC_NOWRITE, &id_);
  if (status == NC_ENOTNC) throw Error("is not an Exodus file: " + std::string(nc_strerror(status)));
  Require(status, "cannot be opened");
}

NetcdfFile::~NetcdfFile() { (void)nc_close(id_); }  // nothing was written

void NetcdfFile::CheckSize(const std::filesystem::path& path) {
  const std::uint64_t file_size = SizeOfRegularFile(path);
  const std::optional<ClassicHeader> classic = CheckClassicHeader(path, file_size);
  if (!classic) {
    most_bytes_ = std::max(kUnbackedBytes, std::min(file_size, kLargestPacked) * kPackingLimit);
    whole_records_ = std::numeric_limits<std::uint64_t>::max();
    return;
  }
  if (classic->end_of_fixed > file_size) {
    throw Error(fmt::format("was cut off: {} bytes of at least {} are there", file_size, classic->end_of_fixed));
  }
  most_bytes_ = file_size;
  whole_records_ = classic->whole_records;
}

int NetcdfFile::Count(const std::string& dimension) const {
  int id = -1;
  const int status = nc_inq_dimid(id_, dimension.c_str(), &id);
  if (status == NC_EBADDIM) return 0;
  Require(status, dimension);
  std::size_t length = 0;
  Require(nc_inq_dimlen(id_, id, &length), dimension);
  if (length > static_cast<std::size_t>(std::numeric_limits<int>::max())) {
    throw Error(fmt::format("{}: {} are more than can be imported", dimension, length));
  }
  return static_cast<int>(length);
}

std::optional<Variable> NetcdfFile::Find(const std::string& name) const {
  Variable variable;
  const int status = nc_inq_varid(id_, name.c_str(), &variable.id);
  if (status == NC_ENOTVAR) return std::nullopt;
  Require(status, name);
  variable.name = name;
  int rank = 0;
  Require(nc_inq_vartype(id_, variable.id, &variable.type), name);
  Require(nc_inq_varndims(id_, variable.id, &rank), name);
  std::vector<int> axes(static_cast<std::size_t>(rank));
  Require(nc_inq_vardimid(id_, variable.id, axes.data()), name);
  for (const int axis : axes) {
    std::size_t length = 0;
    Require(nc_inq_dimlen(id_, axis, &length), name);
    variable.shape.push_back(length);
  }
  return variable;
}

Variable NetcdfFile::Get(const std::string& name, const Shape& shape) const {
  std::optional<Variable> variable = Find(name);
  if (!variable) throw Error(name + ": is missing");
  if (variable->shape != shape) {
    throw Error(fmt::format("{}: {} where {} are expected", name, Describe(variable->shape), Describe(shape)));
  }
  return *variable;
}

Variable NetcdfFile::GetTexts(const std::string& name, std::size_t rows) const {
  std::optional<Variable> variable = Find(name);
  if (!variable) throw Error(name + ": is missing");
  const bool fits = variable->shape.size() == 2 && variable->shape[0] == rows && variable->shape[1] > 0;
  if (!fits) {
    throw Error(fmt::format("{}: {} where {} rows of characters are expected", name, Describe(variable->shape), rows));
  }
  return *variable;
}

std::vector<std::string> NetcdfFile::VariableNames() const {
  int count = 0;
  Require(nc_inq_nvars(id_, &count), "variables");
  std::vector<std::string> names;
  for (int variable = 0; variable < count; ++variable) {
    char name[NC_MAX_NAME + 1] = {};
    Require(nc_inq_varname(id_, variable, name), "variables");
    names.emplace_back(name);
  }
  return names;
}

std::size_t NetcdfFile::Elements(const Variable& variable, const Shape& count) const {
  std::size_t size = 0;
  Require(nc_inq_type(id_, variable.type, nullptr, &size), variable.name);
  std::size_t elements = 1;
  const bool is_empty = std::ranges::find(count, std::size_t{0}) != count.end();
  for (const std::size_t extent : count) {
    if (!is_empty && elements > most_bytes_ / size / extent) {
      throw Error(fmt::format("{}: {} are more than the file can hold", variable.name, Describe(count)));
    }
    elements *= extent;
  }
  return elements;
}

std::vector<int> NetcdfFile::Integers(const Variable& variable) const {
  RequireKind(IsInteger(variable.type), variable, "integers");
  std::vector<int> numbers(Elements(variable, variable.shape));
  if (numbers.empty()) return numbers;
  const int status = nc_get_var_int(id_, variable.id, numbers.data());
  if (status == NC_ERANGE) {
    throw Error(fmt::format("{}: holds a number beyond {}, the largest that can be imported", variable.name,
                            std::numeric_limits<int>::max()));
  }
  Require(status, variable.name);
  return numbers;
}

std::vector<double> NetcdfFile::Reals(const Variable& variable, const Shape& start, const Shape& count) const {
  RequireKind(IsReal(variable.type), variable, "floating-point numbers");
  std::vector<double> numbers(Elements(variable, count));
  if (numbers.empty()) return numbers;
  Require(nc_get_vara_double(id_, variable.id, start.data(), count.data(), numbers.data()), variable.name);
  return numbers;
}

std::vector<double> NetcdfFile::Reals(const Variable& variable) const {
  return Reals(variable, Shape(variable.shape.size(), 0), variable.shape);
}

std::vector<std::string> NetcdfFile::Texts(const Variable& variable) const {
  RequireKind(variable.type == NC_CHAR && !variable.shape.empty(), variable, "characters");
  std::vector<char> characters(Elements(variable, variable.shape));
  if (characters.empty()) return {};
  Require(nc_get_var_text(id_, variable.id, characters.data()), variable.name);
  const std::size_t width = variable.shape.back();
  std::vector<std::string> texts;
  for (std::size_t begin = 0; begin < characters.size(); begin += width) {
    texts.push_back(WithoutPadding({characters.data() + begin, width}));
  }
  return texts;
}

std::string NetcdfFile::TextAttribute(const Variable* variable, const std::string& name) const {
  const int owner = variable ? variable->id : NC_GLOBAL;
  const std::string where = variable ? variable->name + "." + name : name;
  nc_type type = NC_NAT;
  std::size_t length = 0;
  const int status = nc_inq_att(id_, owner, name.c_str(), &type, &length);
  if (status == NC_ENOTATT) return {};
  Require(status, where);
  if (type != NC_CHAR) return {};
  if (length > most_bytes_) throw Error(where + ": more characters than the file can hold");
  std::string text(length, '\0');
  Require(nc_get_att_text(id_, owner, name.c_str(), text.data()), where);
  return WithoutPadding(text);
}

}  // namespace orvio::exodus
