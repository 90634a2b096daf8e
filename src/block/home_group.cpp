// Opening of the group that a block is written to, and the write into it.

#include "block/home_group.h"

#include <utility>

#include "filer/process_state.h"
#include "h5/group_paths.h"
#include "h5/status.h"
#include "orvio/oh5_io.h"

namespace orvio {
namespace {

Home OpenInState(const char* path, int state, const HomeRule& rule) {
  hid_t file = H5I_INVALID_HID;
  hid_t section = H5I_INVALID_HID;
  hid_t state_group = H5I_INVALID_HID;
  if (OH5OpenStateGroup(path, state - 1, &file, &section, &state_group, rule.makes_next_state) != kOk) return {};
  Home home;
  home.file = h5::WriteFile(h5::File(file));
  const h5::Group opened_section(section);
  const h5::Group opened_state(state_group);
  home.group = h5::OpenOrCreateGroup(opened_state.get(), rule.group);
  return home;
}

Home OpenInConstant(const char* path, const HomeRule& rule) {
  Home home;
  home.file = h5::WriteFile(h5::OpenFile(path, process().g_nReadAccess));
  if (!home.file) return home;
  const h5::Group section = h5::OpenGroup(home.file.get(), h5::GroupPath(h5::kConstant).c_str());
  if (!section) return home;
  home.group = rule.makes_in_constant ? h5::OpenOrCreateGroup(section.get(), rule.group)
                                      : h5::OpenGroup(section.get(), rule.group);
  return home;
}

}  // namespace

Home OpenHome(const char* path, int state, const HomeRule& rule) {
  return state < 1 ? OpenInConstant(path, rule) : OpenInState(path, state, rule);
}

h5::Group OpenNamedState(hid_t file, int state) {
  const h5::Group section = h5::OpenGroup(file, h5::GroupPath(h5::kSinglestate).c_str());
  return section ? h5::OpenOrCreateGroup(section.get(), h5::StateName(state).c_str()) : h5::Group();
}

Home OpenHomeInNamedState(const char* path, int state, const char* group) {
  Home home;
  home.file = h5::WriteFile(h5::OpenFile(path, process().g_nReadAccess));
  const h5::Group opened_state = home.file ? OpenNamedState(home.file.get(), state) : h5::Group();
  if (opened_state) home.group = h5::OpenOrCreateGroup(opened_state.get(), group);
  return home;
}

int WriteIntoHome(ORVBlock& block, Home home, std::string_view name, ExistingName existing, int what) {
  return WriteIntoHome(std::move(home), name, existing, what,
                       [&](const BlockParts& parts) { return WriteStages(block, parts, what); });
}

}  // namespace orvio
