// The start-up of a filer for a person at a command line.

#include "reading/result_file.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>

#include "reading/file_model.h"
#include "reading/words.h"

namespace orvio::program {
namespace {

/// File of the running ResultFile: a message comes with its text alone.
std::string& NamedInMessages() {
  static std::string path;
  return path;
}

/// One line, whatever the text has of line ends.
void PrintMessage(_ORVMesgType /*type*/, const char* text) {
  std::string line(text);
  std::ranges::replace_if(
      line, [](unsigned char c) { return std::iscntrl(c) != 0; }, ' ');
  line.erase(0, line.find_first_not_of(' '));
  fmt::print(stderr, "orv: {}: {}\n", NamedInMessages(), line);
}

}  // namespace

ResultFile::ResultFile(std::string path)
    : path_(std::move(path)), states_(CheckResultFile(path_)), filer_(path_.c_str()) {
  NamedInMessages() = path_;
  ORVFiler::SetVerbosCallback(PrintMessage);
  int next_id = 1;
  (void)filer_.InitReader(next_id);  // a file without results still has a mesh to show
}

ResultFile::~ResultFile() { ORVFiler::SetVerbosCallback(nullptr); }

void ResultFile::LearnLaterResults(int state) {
  int added = 0;
  constexpr int kNextAfterTheLargest = -1;
  (void)filer_.UpdateContainer(state, added, kNextAfterTheLargest, 0);  // what cannot be read is not there
}

std::vector<std::string> ResultFile::IndexNames() {
  std::vector<std::string> names;
  const ORVIndexBase<int, double>* index = filer_.GetStateIndexDP(false);
  const ORVSimulationType* types = filer_.GetIndexTypes();
  const bool has_rows = index && index->GetNumState() > 0;  // the number of columns alone is a claim of the file
  const std::int64_t columns = has_rows ? index->GetNumIndex() : 0;
  for (std::int64_t i = 0; i < columns; ++i) {
    const bool is_named = types && i < types->m_nindex;
    std::string name = is_named ? TextOf(types->m_pEtypindex + i * 256) : "";
    names.push_back(name.empty() ? fmt::format("index {}", i + 1) : name);
  }
  return names;
}

std::vector<double> ResultFile::IndexOf(int state) {
  const ORVIndexBase<int, double>* index = filer_.GetStateIndexDP(false);
  if (!index || state < 1 || state > index->GetNumState()) return {};
  const double* row = index->GetIndexVals() + (state - 1) * index->GetNumIndex();
  return {row, row + index->GetNumIndex()};
}

long long ResultFile::CountAt(const ORVResult& result, int state) const {
  ORVResult block = result;
  const int status = block.ReadAttribute(path_.c_str(), state, ORV_READ_HEADER, ORV_ATT_NENT);
  return status == 0 ? std::max<std::int64_t>(block.m_nent, 0) : 0;
}

bool ResultFile::IsDouble(ORVResult& result, int state) {
  std::vector<ORVResult*> list = {&result};
  return filer_.IsResultValueInDoublePrecision(list, state);
}

}  // namespace orvio::program
