// A solver writes a file while a post-processor reads it: two processes, both through the shared library. Neither waits
// for the other, and neither is ever refused; a state is there whole or not at all, block by block.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <hdf5.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "orvio/orvio.h"
#include "support/forged_model.h"
#include "support/orv_test.h"
#include "support/raw_file.h"

namespace {

using orv_test::ForgedModel;

constexpr char kPathVariable[] = "ORVIO_TEST_GROWING_FILE";  // set for the process that writes
constexpr char kSplitIndex[] = "/post/constant/multientityresults/NODE/Speed/index";
constexpr int kStates = 30;
constexpr int kNodes = 50;
constexpr int kMostLooks = 20'000;  // with a pause after each: a bound for a test that hangs, never reached

void Pause() { (void)usleep(100); }

// What a number of a state means; the writer writes it and the reader expects it.

float ValueOf(int state, int node) { return static_cast<float>(1000 * state + node); }
float HeatOf(int state, int node) { return static_cast<float>(-1000 * state - node); }
float TimeOf(int state) { return .5F * static_cast<float>(state); }
int IdentOf(int state) { return 7 * state; }

// ---- The writer

struct Nodes {
  Nodes(int kind, const char* variable, float (*value_of)(int, int), int state) : block(kind) {
    for (int node = 0; node < kNodes; ++node) {
      ids.push_back(node + 1);
      values.push_back(value_of(state, node));
    }
    ident = IdentOf(state);
    time = TimeOf(state);
    block.SetEntityAndVarName("NODE", variable);
    block.m_nent = kNodes;
    block.m_ncoo = 1;
    block.m_nindex = 1;
    block.m_nstate = block.IsMultistateBlk() ? state : 0;
    block.m_readIds = 1;
    block.m_entid = ids.data();
    block.m_res = values.data();
    block.m_indexident = &ident;
    block.m_indexval = &time;
  }

  ORVResult block;
  std::vector<int> ids;
  std::vector<float> values;
  int ident;
  float time;
};

/// A writer opens the file anew for every block.
class Writer {
 public:
  explicit Writer(std::string path) : path_(std::move(path)), filer_(path_.c_str()) {
    version_ = static_cast<_ORVVersion>(filer_.GetFileVersion()->m_major == 1 ? ORV_VERSION_1_1 : ORV_VERSION_2_2);
  }

  /// 0 when everything of the state is written.
  int WriteState(int state) {
    if (filer_.InitForWriting(path_.c_str(), version_, ORV_FILE_APPEND, true) != 0) return 10;
    Nodes speed(ORV_RESULT_ENTITY, "Speed", ValueOf, state);
    if (filer_.WriteBlock(&speed.block, state, 7) != 0) return 11;
    Nodes heat(ORV_RESULT_ENTITY, "Heat", HeatOf, state);
    if (filer_.WriteBlock(&heat.block, state, 7) != 0) return 12;
    return 0;
  }

  /// Lets the history grow by a state: its values, both parts of its index and its number of states, each by an open of
  /// its own.
  int WriteHistory(int state) {
    Nodes row(ORV_RESULT_MULTI_ENTITY, "Speed", ValueOf, state);
    const auto at = static_cast<std::uint64_t>(state - 1);
    const bool first = state == 1;
    std::uint64_t values_start[] = {at, 0, 0}, values_count[] = {1, kNodes, 1}, values_extent[] = {1, 0, 0};
    const int grown =
        filer_.WriteSelectiveResultAttribute(&row.block, 0, ORV_WRITE_DATA, ORV_ATT_RES, 3, values_start, values_count,
                                             nullptr, nullptr, first ? nullptr : values_extent);
    if (grown != 0) return 20;
    if (GrowIndex(row, ORV_ATT_INDEXVAL) != 0) return 21;
    if (GrowIndex(row, ORV_ATT_INDEXIDENT) != 0) return 22;
    if (filer_.InitForWriting(path_.c_str(), version_, ORV_FILE_APPEND, true) != 0) return 23;
    const int overwrite = ORVGetResultBlockOverWriteMode();
    ORVSetResultBlockOverWriteMode(1);
    const int status = filer_.WriteBlock(&row.block, 0, ORV_WRITE_HEADER);
    ORVSetResultBlockOverWriteMode(overwrite);
    return status == 0 ? 0 : 24;
  }

 private:
  /// One part of the index. In the split layout a selective write finds an existing "index" no more: there a host
  /// writes into the group that it has opened itself.
  int GrowIndex(Nodes& row, _ORVBlockAtt att) {
    std::uint64_t start[] = {static_cast<std::uint64_t>(row.block.m_nstate - 1), 0}, count[] = {1, 1},
                  extent[] = {1, 0};
    std::uint64_t* by = start[0] == 0 ? nullptr : extent;
    if (version_ == ORV_VERSION_2_2) {
      return filer_.WriteSelectiveResultAttribute(&row.block, 0, ORV_WRITE_INDEX, att, 2, start, count, nullptr,
                                                  nullptr, by);
    }
    hid_t file = -1;
    if (OH5WriteOpenFile(path_.c_str(), ORV_FILE_APPEND, &file) != 0) return 1;
    const hid_t group = H5Gopen2(file, kSplitIndex, H5P_DEFAULT);
    const bool values = att == ORV_ATT_INDEXVAL;
    const void* data = values ? row.block.m_indexval : row.block.m_indexident;
    const int status = OH5Write_SELECTIVE(group, values ? "indexval" : "indexident", 2, start, count, nullptr, nullptr,
                                          values ? ORV_FLOAT : ORV_INT, by, data);
    EXPECT_GE(H5Gclose(group), 0);
    EXPECT_EQ(OH5WriteCloseFile(file), 0);
    return status;
  }

  std::string path_;
  ORVFiler filer_;
  _ORVVersion version_;
};

/// A file with the variables and the first state. The growing write of a multi-state block goes to the constant
/// section, so the multi-state one leads there.
void MakeFile(ForgedModel& model, bool split) {
  model.variable({.name = "Speed", .key = "Speed"}).variable({.name = "Heat", .key = "Heat"});
  model.file().group("/post/constant/multientityresults").at("/post/multistate");
  model.file().soft_link("multientityresults", "/post/constant/multientityresults");
  if (split) model.file().group(kSplitIndex);
  Writer writer(model.path());
  EXPECT_EQ(writer.WriteState(1), 0);
  EXPECT_EQ(writer.WriteHistory(1), 0);
}

// ---- The process that writes

class GrowingFileWriter : public orv_test::OrvTest {};

/// Run by the tests below as a process of its own; by itself it writes a file of its own.
TEST_F(GrowingFileWriter, AddsStates) {
  MaySilenceHdf5();
  const char* path = std::getenv(kPathVariable);
  ForgedModel own;
  if (!path) MakeFile(own, false);
  Writer writer(path ? path : own.path());
  for (int state = 2; state <= kStates; ++state) {
    ASSERT_EQ(writer.WriteState(state), 0) << state;
    ASSERT_EQ(writer.WriteHistory(state), 0) << state;
    for (int pauses = 0; path && pauses < 30; ++pauses) Pause();  // a solver computes in between
  }
}

class WriterProcess {
 public:
  /// What it tells goes into a file.
  WriterProcess(const std::string& path, const std::string& log) {
    std::vector<std::string> settings = {std::string(kPathVariable) + "=" + path};
    for (char** setting = environ; *setting; ++setting) {
      // What this test program was told about the choice of its tests is not for the other one.
      if (std::string_view(*setting).substr(0, 6) != "GTEST_") settings.emplace_back(*setting);
    }
    std::vector<std::string> arguments = {"/proc/self/exe", "--gtest_filter=GrowingFileWriter.AddsStates",
                                          "--gtest_brief=1"};
    posix_spawn_file_actions_t actions;
    EXPECT_EQ(posix_spawn_file_actions_init(&actions), 0);
    EXPECT_EQ(posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, log.c_str(), O_WRONLY | O_CREAT, 0600), 0);
    EXPECT_EQ(posix_spawn(&process_, arguments[0].c_str(), &actions, nullptr, Pointers(arguments).data(),
                          Pointers(settings).data()),
              0);
    EXPECT_EQ(posix_spawn_file_actions_destroy(&actions), 0);
  }
  ~WriterProcess() {
    if (!ended_) (void)waitpid(process_, &status_, 0);
  }
  WriterProcess(const WriterProcess&) = delete;
  WriterProcess& operator=(const WriterProcess&) = delete;

  bool HasEnded() {
    ended_ = ended_ || waitpid(process_, &status_, WNOHANG) == process_;
    return ended_;
  }
  bool Succeeded() const { return ended_ && WIFEXITED(status_) && WEXITSTATUS(status_) == 0; }

 private:
  static std::vector<char*> Pointers(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    for (std::string& text : texts) pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
  }

  pid_t process_ = -1;
  bool ended_ = false;
  int status_ = -1;
};

// ---- The reader

class GrowingFile : public orv_test::OrvTest, public testing::WithParamInterface<ForgedModel::Layout> {
 protected:
  GrowingFile() : filer_(nullptr) {
    MaySilenceHdf5();  // the first states are written by this process
    MakeFile(model_, GetParam() == ForgedModel::kSplit);
    filer_ = ORVFiler(model_.path().c_str());
    int next_id = 1;
    EXPECT_EQ(filer_.InitReader(next_id), 0);
    EXPECT_EQ(filer_.GetResultList(1).size(), 2U);
    EXPECT_EQ(filer_.GetResultList(0).size(), 1U);
  }

  /// Rows of an index table, each of which must be that of its state.
  int StatesOf(const ORVIndexBase<int, float>* index) {
    const int states = static_cast<int>(index->GetNumState());
    for (int i = 0; i < states; ++i) {
      EXPECT_EQ(index->GetIndexVals()[i], TimeOf(i + 1)) << "state " << i + 1 << " of " << states;
      EXPECT_EQ(index->GetIndexIds()[i], IdentOf(i + 1)) << "state " << i + 1 << " of " << states;
    }
    return states;
  }

  /// Whether the values of a variable are there at a state. Where they are they must be whole.
  bool HasValues(int state, const char* variable, float (*value_of)(int, int)) {
    ORVResultValuesBase<float, int> values;
    values.m_state = state;
    values.m_wantIds = 1;
    if (filer_.GetValues(values, filer_.GetResultList(1), -1, -1, variable) != 0) return false;
    EXPECT_EQ(values.m_valueCount, kNodes);
    EXPECT_EQ(values.m_idCount, kNodes);
    for (int node = 0; node < values.m_valueCount; ++node) {
      EXPECT_EQ(values.m_values[node], value_of(state, node)) << "state " << state;
      EXPECT_EQ(values.m_ids[node], node + 1) << "state " << state;
    }
    values.DeleteAllocation(true);
    return true;
  }

  /// States of the history, all of which must be whole; 0 where its values have grown already and its index has not.
  int StatesOfHistory() {
    std::vector<int> ids, index_ids;
    std::vector<std::uint64_t> shape;
    std::vector<float> values, index_values;
    std::uint64_t states = 0;
    const int status =
        filer_.GetMultistateResultValues("NODE", "Speed", ids, shape, values, states, index_ids, index_values, -1);
    if (status != 0) {
      EXPECT_TRUE(values.empty() && ids.empty() && states == 0);
      return 0;
    }
    EXPECT_EQ(shape, (std::vector<std::uint64_t>{states, kNodes, 1}));
    EXPECT_EQ(values.size(), states * kNodes);
    EXPECT_EQ(index_values.size(), states);
    EXPECT_EQ(index_ids.size(), states);
    EXPECT_EQ(ids.size(), std::size_t{kNodes});
    for (std::size_t i = 0; i < values.size(); ++i) {
      EXPECT_EQ(values[i], ValueOf(static_cast<int>(i) / kNodes + 1, static_cast<int>(i) % kNodes));
    }
    for (std::size_t i = 0; i < index_values.size(); ++i) {
      EXPECT_EQ(index_values[i], TimeOf(static_cast<int>(i) + 1));
      EXPECT_EQ(index_ids[i], IdentOf(static_cast<int>(i) + 1));
    }
    return static_cast<int>(states);
  }

  /// Looks at what is there now. Nothing that was there before may be gone.
  void Look() {
    filer_.InitForReload();
    const int states = StatesOf(filer_.GetStateIndex(false));
    EXPECT_GE(states, states_) << ORVGetLastErrorText();
    states_ = states;
    if (HasValues(states_, "Speed", ValueOf)) speeds_ = states_;
    (void)HasValues(states_, "Heat", HeatOf);  // written after the other: there or not there yet
    const int in_table = StatesOf(filer_.GetMultiStateIndex(false));
    EXPECT_LE(in_table, kStates);
    const int in_history = StatesOfHistory();
    EXPECT_TRUE(in_history == 0 || in_history >= history_) << in_history << " after " << history_;
    history_ = std::max(in_history, history_);
  }

  ForgedModel model_{GetParam()};
  ORVFiler filer_;
  int states_ = 1;
  int speeds_ = 0;
  int history_ = 1;
};

INSTANTIATE_TEST_SUITE_P(Layouts, GrowingFile, testing::Values(ForgedModel::kSplit, ForgedModel::kSingle),
                         [](const auto& layout) { return layout.param == ForgedModel::kSplit ? "Split" : "Single"; });

TEST_P(GrowingFile, HasItsFirstStateAtFirst) {
  Look();
  EXPECT_EQ(states_, 1);
  EXPECT_EQ(speeds_, 1);
  EXPECT_EQ(StatesOfHistory(), 1);
  EXPECT_TRUE(HasValues(1, "Heat", HeatOf));
}

TEST_P(GrowingFile, IsReadWhileAnotherProcessWrites) {
  const std::string log = TempPath("writer.log");
  WriterProcess writer(model_.path(), log);
  for (int looks = 0; !writer.HasEnded() && looks < kMostLooks && !HasFailure(); ++looks) {
    Look();
    Pause();
  }
  ASSERT_TRUE(writer.Succeeded()) << orv_test::BytesOf(log);
  Look();
  EXPECT_EQ(states_, kStates);
  EXPECT_EQ(speeds_, kStates);
  EXPECT_EQ(history_, kStates);
  EXPECT_EQ(StatesOf(filer_.GetMultiStateIndex(false)), kStates);
  for (int state = 1; state <= kStates; ++state) {
    EXPECT_TRUE(HasValues(state, "Speed", ValueOf)) << state;
    EXPECT_TRUE(HasValues(state, "Heat", HeatOf)) << state;
  }
}

}  // namespace
