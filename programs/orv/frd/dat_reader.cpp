// Tables of integration points in a .dat file. A table is a heading, an empty line and rows in fixed columns:
//
//    stresses (elem, integ.pnt.,sxx,syy,szz,sxy,sxz,syz) for set EALL and time  0.1000000E+00
//
//            1   1  1.313276E-09  1.295357E-09  9.642656E+01 -1.812452E-11  1.521624E-10  1.508398E-10

#include "frd/dat_reader.h"

#include "frd/field.h"

namespace orvio::frd {
namespace {

constexpr std::string_view kColumns = "(elem, integ.pnt.,";
constexpr std::string_view kSet = "for set ", kTime = " and time ";
constexpr size_t kElementLast = 10, kPointLast = 14, kValueWidth = 14;

std::vector<std::string> Split(std::string_view list) {
  std::vector<std::string> words;
  while (!list.empty()) {
    const size_t comma = list.find(',');
    words.emplace_back(Trim(list.substr(0, comma)));
    list = comma == std::string_view::npos ? std::string_view() : list.substr(comma + 1);
  }
  return words;
}

}  // namespace

void DatReader::Fail(const PointResult& result, std::string_view what) const {
  throw Error(source_.Where() + ": " + Printable(result.name) + " of set " + Printable(result.set) + ": " +
              std::string(what));
}

/// Whether the line begins a table of integration points.
bool DatReader::ReadHeading(std::string_view line, PointResult& result) const {
  const size_t columns = line.find(kColumns);
  const size_t set = columns == std::string_view::npos ? columns : line.find(kSet, columns);
  const size_t time = set == std::string_view::npos ? set : line.find(kTime, set);
  if (time == std::string_view::npos) return false;
  const size_t first = columns + kColumns.size();
  const size_t last = line.find(')', first);
  if (last == std::string_view::npos || last > set) return false;
  const size_t name = set + kSet.size();
  result = {};
  result.name = Trim(line.substr(0, columns));
  result.components = Split(line.substr(first, last - first));
  result.set = Trim(line.substr(name, time - name));
  const auto value = ParseDouble(Trim(line.substr(time + kTime.size())));
  if (!value) Fail(result, "time is not a number: " + Quote(line.substr(time + kTime.size())));
  result.time = *value;
  return true;
}

bool DatReader::NextResult(PointResult& result) {
  std::string_view line;
  while (source_.NextLine(line)) {
    if (!ReadHeading(line, result)) continue;
    ReadRows(result);
    return true;
  }
  result = {};
  return false;
}

/// The rows end at an empty line or with the file.
void DatReader::ReadRows(PointResult& result) {
  std::string_view line;
  if (source_.NextLine(line) && !Trim(line).empty()) Fail(result, "no empty line below the heading");
  while (source_.NextLine(line) && !Trim(line).empty()) {
    if (!source_.ended()) Fail(result, "the file ends within a row");
    ReadRow(line, result);
  }
}

void DatReader::ReadRow(std::string_view line, PointResult& result) const {
  const auto element = ParseInt32(Columns(line, 1, kElementLast));
  const auto point = ParseInt32(Columns(line, kElementLast + 1, kPointLast));
  if (!element || !point || *point < 1) Fail(result, "no element and integration point: " + Quote(line));
  result.elements.push_back(*element);
  result.points.push_back(*point);
  size_t first = kPointLast + 1;
  for (size_t i = 0; i < result.components.size(); ++i, first += kValueWidth) {
    const std::string_view field = Columns(line, first, first + kValueWidth - 1);
    const auto value = ParseFloat(Trim(field));
    if (!value) Fail(result, result.components[i] + " is not a number: " + Quote(field));
    result.values.push_back(*value);
  }
  // Behind the values stands the name of the local axes that they refer to, where they do.
  const std::string_view rest = Trim(Columns(line, first, line.size()));
  if (!rest.empty()) Fail(result, "values in local axes " + Quote(rest) + "; print them with GLOBAL=YES");
}

}  // namespace orvio::frd
