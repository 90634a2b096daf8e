#pragma once

// One object of a file: what its header says, and the walk into what belongs to it.

#include <cstdint>
#include <vector>

#include "structure/catalogue_builder.h"
#include "structure/dataspace.h"
#include "structure/datatype.h"
#include "structure/filters.h"
#include "structure/known_datasets.h"
#include "structure/known_groups.h"
#include "structure/layout.h"
#include "structure/link.h"
#include "structure/object_header.h"
#include "structure/walk.h"

namespace orvio::structure {

/// The messages of an object that describe it as a whole. Attributes and links are dealt with one by one.
struct Object {
  std::uint64_t address = 0;
  std::uint32_t seen = 0;  ///< a bit for each MessageType
  Dataspace space;
  Datatype type;
  Layout layout;
  std::uint64_t values = 0;  ///< where compact values are in the file
  Pipeline pipeline;
  FillValue fill;
  std::uint64_t fill_at = 0;  ///< where its bytes are in the file
  SymbolTable table;
  Dense links;
  Dense attributes;
  bool shares_type = false;     ///< its type is an object of its own
  std::uint64_t layout_at = 0;  ///< where the bodies of these messages are in the file
  std::uint64_t time_at = 0;    ///< 0: there is none
  std::uint64_t table_at = 0;

  bool Has(MessageType type_of) const { return (seen >> static_cast<unsigned>(type_of) & 1U) != 0; }
};

/// Visits objects, one after the other.
class ObjectVisitor {
 public:
  explicit ObjectVisitor(Walk& walk) : walk_(walk), messages_(walk) {}

  /// `note` is what a symbol table entry says about the object.
  [[nodiscard]] bool Visit(std::uint64_t address, const GroupNote& note);
  /// Looks at the object's header alone, without what it leads to.
  [[nodiscard]] bool VisitHeader(std::uint64_t address);
  /// What the last look at an object found. Of one that looks like another one before it, only what differs.
  const Object& object() const { return object_; }
  /// Visits the object header that holds messages about the file, and takes the tree ranks from it.
  [[nodiscard]] bool VisitExtension(std::uint64_t address);

 private:
  void Clear(std::uint64_t address);
  bool TakeMessages();
  bool TakeOnce(const Message& message);
  bool Take(const Message& message);
  Verdict TakeDescription(const Message& message, const Cursor& body);
  Verdict TakeRest(const Message& message, const Cursor& body);
  bool TakeShared(const Message& message);
  bool TakeLink(const Message& message);
  bool TakeAttribute(const Message& message);
  void RecordAttribute(const Message& message);
  void RecordAttributes();
  void RecordValues();
  bool VisitGroup(const GroupNote& note);
  bool VisitDense();
  Cursor SmallHeader(std::uint64_t address);
  bool VisitKnown(const KnownDatasets::Known& known, std::uint64_t address, const Cursor& header);
  void KeepDataset();
  Continuation OnlyContinuation(std::uint64_t address);
  bool VisitKnown(const KnownGroups::Known& known, std::uint64_t address, const Continuation& rest,
                  const GroupNote& note);
  void KeepGroup();

  Walk& walk_;
  HeaderMessages messages_;
  Object object_;
  KnownDatasets datasets_;
  KnownGroups groups_;
  /// Where in the file the values of an attribute are.
  struct Values {
    std::uint64_t address;
    std::uint64_t size;
  };
  std::vector<Values> plain_values_;  ///< of the object that is visited: those of attributes that are known
  std::size_t other_messages_ = 0;    ///< of it: what is neither its table nor such an attribute
  std::vector<CatalogueBuilder::Value> attributes_;  ///< of it, where a catalogue is made: all that can be told
  bool has_more_attributes_ = false;
};

}  // namespace orvio::structure
