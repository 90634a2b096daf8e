// Which entities of a model stay when some of it is cut out.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <unordered_set>
#include <vector>

#include "copying/block_content.h"
#include "copying/row_selection.h"

namespace orvio::program {

/// What was asked for. Elements stay that meet all that is asked of elements, with their nodes; without such a question,
/// those whose nodes all stay.
struct EntityChoice {
  bool empty() const { return !parts && !elements && !nodes && element_type.empty() && others.empty(); }
  bool asks_for_elements() const { return parts || elements || !element_type.empty(); }

  using Ids = std::unordered_set<std::int64_t>;
  std::optional<Ids> parts, elements, nodes;
  std::string element_type;           ///< name of an element type, or of a family of them
  std::map<std::string, Ids> others;  ///< of other entity types, by their names in lower case
};

/// The entities of one mesh that stay.
class EntityCut {
 public:
  explicit EntityCut(EntityChoice choice) : choice_(std::move(choice)) {}

  bool empty() const { return choice_.empty(); }
  /// Elements of other meshes may be of parts that the first one does not use.
  void ExpectOtherMeshes() { has_other_meshes_ = true; }
  const EntityChoice& choice() const { return choice_; }
  /// Forgets the mesh: another one holds from here on.
  void BeginMesh();
  /// Makes elements known, all of which must be before anything is cut.
  void AddElements(const BlockContent& connectivity, const std::string& shown_as);
  /// Goes behind the last elements of a mesh.
  void EndMesh();

  /// Nodes that stay, by the folded names of their types.
  using NodesByType = std::map<std::string, EntityChoice::Ids>;
  NodesByType Nodes() const;
  /// Lets further nodes stay.
  void AddNodes(const NodesByType& nodes);

  /// Cuts a block of any kind. Collectors go before the attributes that hold their titles. False: nothing of it stays. `drop` is told of datasets that cannot be cut.
  bool Cut(BlockContent& content, const std::string& shown_as,
           const std::function<void(const std::string& dataset)>& drop);
  /// Whether a block was cut of which something stays.
  bool HasKeptAny() const { return has_kept_; }

 private:
  using Ids = EntityChoice::Ids;

  bool CutsMesh() const { return choice_.asks_for_elements() || choice_.nodes; }
  Rows ElementsThatStay(const BlockContent& connectivity, const std::string& shown_as) const;
  const Ids* KeptOf(const BlockContent& content) const;
  const Ids* KeptOf(const std::string& type) const;
  bool CutCollector(BlockContent& content, const std::string& shown_as);

  EntityChoice choice_;
  bool has_other_meshes_ = false, has_kept_ = false;
  std::map<std::string, Ids> kept_;  ///< by the folded name of a type of nodes, elements, parts or collectors
  std::set<std::string> nodes_;      ///< folded names of node types
  Ids all_elements_;                 ///< that stay, of all types
  Ids none_;
};

}  // namespace orvio::program
