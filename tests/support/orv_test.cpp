#include "support/orv_test.h"

#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <stdexcept>
#include <vector>

#include "orvio/oh5_io.h"
#include "orvio/orv_filer.h"
#include "orvio/orv_switches.h"
#include "support/raw_hdf5.h"

extern "C" [[gnu::weak]] void __sanitizer_set_report_fd(void* descriptor);

namespace orv_test {
namespace {

void FlushAll() {
  std::cout.flush();
  std::cerr.flush();
  std::fflush(nullptr);
}

/// Where the captured stderr goes and where it came from, for the reports of what ends the process.
int captured_stderr = -1;
int original_stderr = -1;

/// Sends what was captured to the real stderr before the process ends: a failed assertion of the C++ library says
/// why there.
void ShowCapturedOnAbort(int) {
  char buffer[4096];
  off_t at = 0;
  for (ssize_t got = 0; captured_stderr >= 0 && (got = pread(captured_stderr, buffer, sizeof buffer, at)) > 0;
       at += got) {
    if (write(original_stderr, buffer, static_cast<size_t>(got)) < 0) break;
  }
  std::signal(SIGABRT, SIG_DFL);
  std::raise(SIGABRT);
}

/// A sanitizer writes its report to this descriptor from now on.
void SendReportsTo(int descriptor) {
  if (__sanitizer_set_report_fd) __sanitizer_set_report_fd(reinterpret_cast<void*>(static_cast<intptr_t>(descriptor)));
}

int TemporaryFile() {
  std::string pattern = (std::filesystem::temp_directory_path() / "orvio-captured-XXXXXX").string();
  const int file = mkstemp(pattern.data());
  if (file < 0) throw std::runtime_error("no temporary file: " + pattern);
  unlink(pattern.c_str());
  return file;
}

std::string NewFolder() {
  std::string pattern = (std::filesystem::temp_directory_path() / "orvio-test-XXXXXX").string();
  if (!mkdtemp(pattern.data())) throw std::runtime_error("no temporary folder: " + pattern);
  return pattern;
}

/// The flags that write helpers open files with. They show in a file that one of them has opened.
unsigned AccessOfWriteHelpers() {
  const std::string folder = NewFolder();
  const std::string path = folder + "/probe";
  {
    const Id made(H5Fcreate(path.c_str(), H5F_ACC_TRUNC, H5P_DEFAULT, H5P_DEFAULT), "probe");
    const Id group(H5Gcreate2(made.get(), "probe", H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT), "probe");
  }
  unsigned access = ~0u;
  hid_t opened = -1;
  const hid_t chain = OH5OpenGroupChain(path.c_str(), &opened, "probe");
  if (opened >= 0) H5Fget_intent(opened, &access);
  if (chain >= 0) H5Gclose(chain);
  if (opened >= 0) H5Fclose(opened);
  std::filesystem::remove_all(folder);
  return access;
}

/// Names of the objects that are open, closed then, so that one test that leaves some fails alone.
std::string CloseWhatIsOpen() {
  std::string names;
  for (const unsigned kind : {H5F_OBJ_ALL & ~H5F_OBJ_FILE, H5F_OBJ_FILE}) {
    const auto everywhere = static_cast<hid_t>(H5F_OBJ_ALL);
    std::vector<hid_t> ids(static_cast<size_t>(std::max<ssize_t>(H5Fget_obj_count(everywhere, kind), 0)));
    if (!ids.empty()) H5Fget_obj_ids(everywhere, kind, ids.size(), ids.data());
    for (const hid_t id : ids) {
      char name[256] = {};
      H5Iget_name(id, name, sizeof name);
      names += (names.empty() ? "" : ", ") + (*name ? std::string(name) : "unnamed");
      while (H5Iis_valid(id) > 0 && H5Idec_ref(id) > 0) continue;
    }
  }
  return names;
}

}  // namespace

CapturedOutput::CapturedOutput(int descriptor) : descriptor_(descriptor), file_(TemporaryFile()) {
  FlushAll();
  original_ = dup(descriptor);
  dup2(file_, descriptor);
  if (descriptor == STDERR_FILENO) {
    captured_stderr = file_;
    original_stderr = original_;
    SendReportsTo(original_);
    std::signal(SIGABRT, ShowCapturedOnAbort);
  }
}

CapturedOutput::~CapturedOutput() {
  if (original_ >= 0) Stop();
}

std::string CapturedOutput::Stop() {
  FlushAll();
  dup2(original_, descriptor_);
  if (descriptor_ == STDERR_FILENO) {
    captured_stderr = -1;
    SendReportsTo(STDERR_FILENO);
  }
  close(original_);
  original_ = -1;
  std::string text(static_cast<size_t>(lseek(file_, 0, SEEK_END)), '\0');
  const ssize_t got = pread(file_, text.data(), text.size(), 0);
  text.resize(got < 0 ? 0 : static_cast<size_t>(got));
  close(file_);
  return text;
}

Switches Switches::Now() {
  Switches now;
  now.writer_version = ORVGetCurrentWriterVersion();
  now.overwrite_mode = ORVGetResultBlockOverWriteMode();
  OH5GetCompression(&now.compression_on, &now.compression_digits);
  now.durability = ORVSetDurability(-1);
  now.lock_timeout = ORVSetLockTimeout(-1);
  now.chunk_entities = ORVSetChunkEntities(-1);
  now.access = AccessOfWriteHelpers();
  now.message = ORVFiler::_m_pMessageFuc;
  H5Eauto_is_v2(H5E_DEFAULT, &now.error_is_v2);
  if (now.error_is_v2) {
    H5Eget_auto2(H5E_DEFAULT, &now.error_handler2, &now.error_data);
  } else {
    H5Eget_auto1(&now.error_handler1, &now.error_data);
  }
  return now;
}

void Switches::PutBack() const {
  ORVSetCurrentWriterVersion(writer_version);
  ORVSetResultBlockOverWriteMode(overwrite_mode);
  OH5SetCompression(compression_on, compression_digits);
  ORVSetDurability(durability);
  ORVSetLockTimeout(lock_timeout);
  ORVSetChunkEntities(chunk_entities);
  ORVFiler::_m_pMessageFuc = message;
  if (error_is_v2) {
    H5Eset_auto2(H5E_DEFAULT, error_handler2, error_data);
  } else {
    H5Eset_auto1(error_handler1, error_data);
  }
}

OrvTest::OrvTest() : folder_(NewFolder()), before_(Switches::Now()) {
  constexpr int kShortWait = 200;  // a test that expects a refusal has no ten seconds
  ORVSetLockTimeout(kShortWait);
  out_ = std::make_unique<CapturedOutput>(STDOUT_FILENO);
  err_ = std::make_unique<CapturedOutput>(STDERR_FILENO);
}

OrvTest::~OrvTest() {
  ExpectSilence();
  EXPECT_EQ(CloseWhatIsOpen(), "") << "HDF5 objects left open";
  ExpectSwitchesAsBefore();
  before_.PutBack();
  std::filesystem::remove_all(folder_);
}

std::string OrvTest::TempPath(const std::string& name) const { return folder_ + "/" + name; }

void OrvTest::ExpectSilence() {
  const std::string printed_err = err_->Stop();
  const std::string printed_out = out_->Stop();
  EXPECT_TRUE(printed_err.empty()) << "printed to stderr: " << printed_err;
  // Google Test itself tells failures and skips there.
  if (HasFailure() || IsSkipped()) {
    std::cout << printed_out << std::flush;
  } else {
    EXPECT_TRUE(printed_out.empty()) << "printed to stdout: " << printed_out;
  }
}

void OrvTest::ExpectSwitchesAsBefore() const {
  const Switches now = Switches::Now();
  EXPECT_EQ(now.writer_version, before_.writer_version) << "writer version left changed";
  EXPECT_EQ(now.overwrite_mode, before_.overwrite_mode) << "overwrite mode left changed";
  EXPECT_EQ(now.compression_on, before_.compression_on) << "compression left changed";
  EXPECT_EQ(now.compression_digits, before_.compression_digits) << "compression digits left changed";
  EXPECT_EQ(now.durability, before_.durability) << "durability left changed";
  EXPECT_EQ(now.chunk_entities, before_.chunk_entities) << "entities of a chunk left changed";
  EXPECT_EQ(now.access, before_.access) << "access flags left changed";
  EXPECT_EQ(now.message, before_.message) << "message callback left set";
  if (may_silence_hdf5_) return;
  EXPECT_EQ(now.error_is_v2, before_.error_is_v2) << "HDF5's error handler left changed";
  EXPECT_EQ(now.error_handler1, before_.error_handler1) << "HDF5's error handler left changed";
  EXPECT_EQ(now.error_handler2, before_.error_handler2) << "HDF5's error handler left changed";
  EXPECT_EQ(now.error_data, before_.error_data) << "HDF5's error handler left changed";
}

}  // namespace orv_test
