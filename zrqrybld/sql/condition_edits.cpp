#include "zrqrybld/sql/condition_edits.h"

#include <algorithm>
#include <utility>

namespace zrqrybld {
namespace {

using Kind = ConditionNode::Kind;

ConditionPath ParentOf(const ConditionPath& path) { return {path.begin(), path.end() - 1}; }

bool IsWithin(const ConditionPath& path, const ConditionPath& outer) {
  return path.size() >= outer.size() && std::equal(outer.begin(), outer.end(), path.begin());
}

auto Place(ConditionNode& group, std::size_t place) {
  return group.parts.begin() + static_cast<std::ptrdiff_t>(std::min(place, group.parts.size()));
}

ConditionNode RootOf(ConditionNode node) {
  if (node.IsGroup() && !node.negated) return node;
  return {Kind::All, false, {std::move(node)}};
}

}  // namespace

const ConditionNode* NodeAt(const ConditionTree& tree, const ConditionPath& path) {
  if (path.empty() || path[0] > 1) return nullptr;
  const ConditionNode* node = path[0] == 0 ? &tree.where : &tree.having;
  for (std::size_t i = 1; i < path.size(); ++i) {
    if (path[i] >= node->parts.size()) return nullptr;
    node = &node->parts[path[i]];
  }
  return node;
}

ConditionNode* NodeAt(ConditionTree& tree, const ConditionPath& path) {
  return const_cast<ConditionNode*>(NodeAt(std::as_const(tree), path));
}

ConditionTree Rooted(ConditionTree tree) { return {RootOf(std::move(tree.where)), RootOf(std::move(tree.having))}; }

std::optional<ConditionTree> Without(ConditionTree tree, const ConditionPath& path) {
  if (path.size() < 2 || !NodeAt(tree, path)) return std::nullopt;
  ConditionNode& group = *NodeAt(tree, ParentOf(path));
  group.parts.erase(Place(group, path.back()));
  return tree;
}

std::optional<ConditionTree> WithPart(ConditionTree tree, const ConditionPath& group, std::size_t before,
                                      ConditionNode node) {
  ConditionNode* place = NodeAt(tree, group);
  if (!place || !place->IsGroup()) return std::nullopt;
  place->parts.insert(Place(*place, before), std::move(node));
  return tree;
}

std::optional<ConditionTree> WithGroup(ConditionTree tree, const ConditionPath& path, Kind kind, ConditionNode other) {
  ConditionNode* node = NodeAt(tree, path);
  if (!node) return std::nullopt;
  ConditionNode inner = std::exchange(*node, {kind});
  node->parts.push_back(std::move(inner));
  node->parts.push_back(std::move(other));
  return tree;
}

std::optional<ConditionTree> WithMoved(ConditionTree tree, const ConditionPath& from, const ConditionPath& group,
                                       std::size_t before) {
  const ConditionNode* node = NodeAt(tree, from);
  if (!node || from.size() < 2 || group.empty() || group[0] != from[0] || IsWithin(group, from)) return std::nullopt;
  std::optional<ConditionTree> moved = WithPart(tree, group, before, *node);
  if (!moved) return std::nullopt;
  // What stands behind the new place, in its group, has made room.
  ConditionPath old = from;
  if (IsWithin(from, group) && from[group.size()] >= before) ++old[group.size()];
  return Without(std::move(*moved), old);
}

std::optional<ConditionTree> WithoutGroup(ConditionTree tree, const ConditionPath& path) {
  const ConditionNode* found = NodeAt(tree, path);
  if (!found || path.size() < 2) return std::nullopt;
  if (!found->IsGroup()) {
    if (path.size() < 3) return std::nullopt;
    const ConditionPath group = ParentOf(path);
    return WithMoved(std::move(tree), path, ParentOf(group), group.back() + 1);
  }
  if (found->negated) return std::nullopt;
  ConditionNode& outer = *NodeAt(tree, ParentOf(path));
  const std::vector<ConditionNode> parts = outer.parts[path.back()].parts;
  outer.parts.erase(Place(outer, path.back()));
  outer.parts.insert(Place(outer, path.back()), parts.begin(), parts.end());
  return tree;
}

}  // namespace zrqrybld
