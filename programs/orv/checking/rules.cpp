// The table of the rules of orv check. docs/check.md shows the same table, and a test compares the two.

#include "checking/rules.h"

#include <algorithm>
#include <cctype>
#include <iterator>

namespace orvio::program {
namespace {

constexpr Level kError = Level::kError, kWarning = Level::kWarning, kNote = Level::kNote;

constexpr Rule kRules[] = {
    // The file as a whole, and the reading of it
    {"S001", kError, "structure", "The file is an HDF5 file whose structure is whole.",
     "A file that is cut short, overwritten in part or of another kind cannot be read safely, so nothing of it is "
     "read.",
     "Get the file again from where it came from, or let its writer finish it."},
    {"S002", kError, "crash", "The file can be read without the reading process coming to a bad end.",
     "A file that crashes its reader can crash any program that opens it.",
     "Do not open the file elsewhere, and send it to the maintainers."},
    {"S003", kError, "time", "The file can be read within the limit of time.",
     "A file that claims more than it holds can keep a reader busy for ever.",
     "Give a larger file more time with --time SECONDS; distrust a small one."},
    {"S004", kError, "memory", "The file can be read within the limit of memory.",
     "A file that claims more than it holds can use up the memory of a machine.",
     "Give a larger file more memory with --memory MIB; distrust a small one."},

    // The file header and the groups of the skeleton
    {"F001", kError, "no-results", "The root of the file has the group post.",
     "All that a result file holds lies below this group; without it there is nothing to read.",
     "Give a result file; orv import makes one."},
    {"F002", kError, "no-file-header", "The file header is the dataset /post/orvheader/orvheader, a scalar text.",
     "Without it readers take the version to be 0.0.0 and look for variables in the wrong group.",
     "Write the file anew with a writer that makes the header."},
    {"F003", kWarning, "magic", "The file header begins with the magic bytes, or is one of the first generation.",
     "A header without the magic reads as version 0.0.0, whatever else it says.",
     "Write the file anew with a writer that makes the header."},
    {"F004", kWarning, "version", "The version is 1.0 to 1.2 or 2.0 to 2.5.",
     "Readers take any other version of the same generation for the first one, and know nothing of later ones.",
     "Write one of the versions of the format description."},
    {"F005", kWarning, "sections", "The groups constant and singlestate are there.",
     "Every new file has them; writers that add to the file do not make them.",
     "Write the file anew, or make the empty groups."},
    {"F006", kNote, "skeleton", "All groups that a new file of this version has are there.",
     "A writer that adds a block to the constant section fails where its group is missing.",
     "Nothing, if the file is only to be read."},
    {"F007", kWarning, "header-shape", "The file header is a text of a fixed length of 64 bytes.",
     "Other readers take 64 bytes and nothing else.", "Write the file anew with a writer that makes the header."},

    // Blocks, each by itself
    {"B001", kError, "missing-attribute", "The header of a block has all attributes that readers require.",
     "Reading the header fails, and with it the whole block.", "Let the writer of the block store the attribute."},
    {"B002", kError, "attribute-class",
     "An attribute of a block is a scalar of its class: integer or text, as the format says.",
     "An attribute of another class cannot be read, which ends the reading of the header.",
     "Let the writer of the block store the attribute in its class; the width does not matter."},
    {"B003", kWarning, "unknown-key", "The key of a block, its attribute block, is one of those of the format.",
     "Readers know nothing of a block with another key and pass it over.",
     "Correct the key, or ignore this for blocks that another program added for itself."},
    {"B004", kError, "misplaced", "A block lies in the group and section of its key.",
     "Readers look for blocks of a kind in one place only and do not find it elsewhere.",
     "Write the block into the group of its kind, in a section where it may stand."},
    {"B005", kNote, "layout", "Blocks have the layout of the file's version: single from 2.0 on, split before.",
     "Readers take both, but some writers that add to the file count on one.",
     "Nothing, if the file is only to be read."},
    {"B006", kError, "extents", "The extents of a dataset agree with the counts in the header of its block.",
     "Readers size their buffers by the counts and refuse the dataset.",
     "Let the writer store the counts that belong to the data."},
    {"B007", kError, "dataset-class", "A dataset of a block is of its class: integer, float or text of a fixed length.",
     "An integer in place of a float, or the reverse, is refused by readers.",
     "Let the writer of the block store the dataset in its class; the width does not matter."},
    {"B008", kError, "missing-dataset", "A block has all datasets that readers require.",
     "Reading the data of the block fails.", "Let the writer of the block store the dataset."},
    {"B009", kError, "negative-count", "Counts in the header of a block are 0 or above.",
     "No data fit a negative count, so readers refuse the block.",
     "Let the writer store the counts that belong to the data."},
    {"B010", kError, "no-header", "A block with data has a header.",
     "Without a header nobody can tell what the data are.", "Let the writer store the header of the block."},

    // Entities and what refers to them
    {"E001", kWarning, "repeated-ids", "Ids of elements, parts and entities are unique within their block.",
     "Values and titles are found by id: those of the second one are never seen.",
     "Give each element, part or entity an id of its own."},
    {"E002", kNote, "repeated-result-ids", "The ids of a result are unique within its block.",
     "A question for one entity is answered with one of its rows.",
     "Put values of different places into zones or layers."},
    {"E003", kNote, "ids-below-one", "Ids are 1 or above.", "Some programs use 0 and negative ids for 'none'.",
     "Count ids from 1."},
    {"E004", kWarning, "unknown-nodes", "The nodes of all elements have coordinates, identifiers or attributes.",
     "An element without the places of its nodes cannot be drawn.",
     "Store COORDINATE for all nodes, or leave the elements out."},
    {"E005", kNote, "no-nodes", "The node type of a mesh has coordinates, identifiers or attributes.",
     "Nothing of the mesh can be drawn.", "Store COORDINATE for the nodes."},
    {"E006", kWarning, "unknown-parts", "The parts of all elements are among the parts of their type.",
     "Such elements belong to a part without title and material.",
     "Store all parts that elements belong to, or none at all."},
    {"E007", kWarning, "unknown-element-type", "The element type of a result has connectivity.",
     "Values of elements that nobody knows cannot be shown.",
     "Store the connectivity, or name the element type as the connectivity does."},
    {"E008", kNote, "unknown-elements", "The elements of a result are among those of the connectivity of their type.",
     "Values of elements that nobody knows cannot be shown.", "Store the connectivity of all elements with results."},
    {"E009", kError, "collector-counts", "The counts of a collector add up to the number of its ids.",
     "Readers cannot tell which ids belong to which collector.", "Let the writer store the counts of the ids."},

    // Variables, groups of variables, units
    {"V001", kWarning, "undeclared-variable",
     "The variable of a result is declared; in a file with groups of variables, a group of its name is.",
     "A result without a variable has no components that can be asked for by name.",
     "Store the variable, and the group in files that have groups."},
    {"V002", kWarning, "unresolved-key", "Each key in a group of variables is that of a variable.",
     "It is passed over, and the variables behind it get the counts and offsets of the ones before them.",
     "Store the variable, or take its key out of the group."},
    {"V003", kWarning, "group-range", "The variables of a group lie within its components.",
     "Components beyond the last one are not there to be read.", "Correct the counts and offsets of the group."},
    {"V004", kWarning, "component-count",
     "A result has as many components as its variable, or as its group of variables.",
     "Components are read from the wrong columns, or not found.", "Store as many components as are declared."},
    {"V005", kWarning, "unknown-unit", "The units of variables are among those of the unit system.",
     "Components are shown without their unit.", "Store the unit in the unit system."},
    {"V006", kError, "unit-counts",
     "The numbers of units of each component are 0 or above, at most 7, and add up to the length of the unit lists.",
     "The variable or the unit system cannot be read.", "Correct mbunit, mdunit or ndbunit, or the lists."},
    {"V007", kWarning, "labels", "The labels of a variable lie within their text.",
     "A component gets a number in place of its label.", "Correct subscnt and subsoffs."},
    {"V008", kWarning, "repeated-variable", "The key of a variable, or its name where it has none, is unique.",
     "The first one is found and the others never.", "Give each variable a key of its own."},
    {"V009", kWarning, "rank", "The tensor rank of a variable is 0, 1 or 2.",
     "Programs know scalars, vectors and tensors of second rank.", "Correct rank."},
    {"V010", kNote, "index-group", "The group of variables that names the index columns is there.",
     "The columns get the names TIME, UNKNOWN_1 and so on.", "Store the group."},
    {"V011", kWarning, "no-key", "A variable in the single layout has a key.",
     "Readers pass over a variable that has neither a key nor the names and identifiers of its components.",
     "Store varkey."},

    // States and their index
    {"T001", kWarning, "gap", "The numbers of the states are 1, 2, 3 and so on without a gap.",
     "Readers count states by position: every state behind a gap has another number for them than for its writer.",
     "Write states one after the other."},
    {"T002", kWarning, "state-name", "A state is named state and its number with 12 digits.",
     "States are ordered by name, so others get out of order or are no states at all.",
     "Name states as the format says."},
    {"T003", kWarning, "no-index", "All states have an index, or none has.",
     "A state without one ends the table of the index: later states have no time.",
     "Store the index with a block of each state."},
    {"T004", kWarning, "index-columns",
     "The index of a block has as many columns as its header says, and as those of the first state.",
     "Rows with other columns are not used, and the state may be left without a time.",
     "Store the same columns in all blocks."},
    {"T005", kNote, "not-rising", "The first index value rises from state to state.",
     "Curves over time go back on themselves.", "Nothing, if the analysis has several steps or modes."},
    {"T006", kNote, "lost-blocks", "A state has the blocks that the state before it has.",
     "Animations and curves end or have holes.", "Nothing, if the solver stored less there on purpose."},
    {"T007", kNote, "empty-state", "A state holds at least one block.", "There is nothing to show for it.",
     "Leave the state out, or let the writer finish it."},
    {"T008", kWarning, "broken-chain", "A block that holds changes has a full state before it, and one index column.",
     "There is no telling what the changes build upon.", "Store a full state first, and a single index column."},

    // Roads that lead elsewhere
    {"R001", kError, "external-link", "No link leads into another file.",
     "Such links are not followed: what they lead to is missing, and following them could read any file of the user.",
     "Copy what the link leads to into the file."},
    {"R002", kError, "outside-values", "The values of all datasets lie in the file itself.",
     "External and virtual datasets are not read: they could show the contents of any file of the user.",
     "Copy the values into the file."},
    {"R003", kError, "filter", "Datasets use none but the filters scale-offset, deflate, shuffle and fletcher32.",
     "Any other filter needs code that a reader may not have, and is not loaded.",
     "Store the dataset without the filter; h5repack can take it off."},
    {"R004", kWarning, "dangling-link", "A link leads to something that is there.", "Whoever follows it finds nothing.",
     "Remove the link, or store what it leads to."},
    {"R005", kWarning, "variable-text", "Texts have a fixed length.",
     "Datasets of texts of variable length are refused, and in attributes only some readers take them.",
     "Store texts with a fixed length, filled up with blanks."},
    {"R006", kWarning, "cycle", "Groups form a tree of at most 128 levels.",
     "A walk through all groups could go on for ever; readers cut it off.", "Remove the link that leads back."},

    // Values
    {"D001", kNote, "not-finite", "All values are finite numbers.",
     "Programs show infinite values and those that are no numbers as holes, or fail on them.",
     "Look whether the analysis went wrong there."},
    {"D002", kError, "compressed-values", "Values with the scale-offset filter can be read back.",
     "HDF5 writes some ranges of values so that it cannot read them again. orvio recovers most of them, others do not.",
     "Write the values with fewer digits or without compression."},
    {"D003", kError, "unreadable", "What is stored can be read.", "It is lost.",
     "Get the file again from where it came from."},
    {"D004", kWarning, "unwritten", "All values of a dataset were written.", "Values that never were read as zeros.",
     "Let the writer finish the file."},
};

}  // namespace

std::span<const Rule> AllRules() { return kRules; }

const Rule* FindRule(std::string_view id) {
  const auto is_asked = [&](const Rule& rule) {
    return std::ranges::equal(id, std::string_view(rule.id),
                              [](unsigned char a, unsigned char b) { return std::toupper(a) == b; });
  };
  const auto* rule = std::ranges::find_if(kRules, is_asked);
  return rule == std::end(kRules) ? nullptr : rule;
}

const char* WordOf(Level level) {
  constexpr const char* kWords[] = {"note", "warning", "error"};
  return kWords[static_cast<int>(level)];
}

std::optional<Level> LevelOf(std::string_view word) {
  for (const Level level : {kNote, kWarning, kError}) {
    if (word == WordOf(level)) return level;
  }
  return std::nullopt;
}

}  // namespace orvio::program
