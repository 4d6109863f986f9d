// What a person does to a tree of conditions. Pure: a tree goes in, a tree comes out, or none where it makes no sense.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "zrqrybld/base/export.h"
#include "zrqrybld/sql/condition_tree.h"

namespace zrqrybld {

/// Where a node stands: 0 (conditions on rows) or 1 (on groups), then its place in each group, from 0.
using ConditionPath = std::vector<std::size_t>;

/// The node; nothing where there is none.
ZRQRYBLD_API const ConditionNode* NodeAt(const ConditionTree& tree, const ConditionPath& path);
ZRQRYBLD_API ConditionNode* NodeAt(ConditionTree& tree, const ConditionPath& path);

/// With both parts as groups that are not negated, so that there is always one to add to.
ZRQRYBLD_API ConditionTree Rooted(ConditionTree tree);

/// Without the node.
ZRQRYBLD_API std::optional<ConditionTree> Without(ConditionTree tree, const ConditionPath& path);
/// With a node in a group, before the part at a place, or behind the last.
ZRQRYBLD_API std::optional<ConditionTree> WithPart(ConditionTree tree, const ConditionPath& group, std::size_t before,
                                                   ConditionNode node);
/// With the node in a new group of this kind, together with another one.
ZRQRYBLD_API std::optional<ConditionTree> WithGroup(ConditionTree tree, const ConditionPath& path,
                                                    ConditionNode::Kind kind, ConditionNode other);
/// With the node in a group, before the part at a place; none for a group that would come into itself, and between
/// conditions on rows and on groups.
ZRQRYBLD_API std::optional<ConditionTree> WithMoved(ConditionTree tree, const ConditionPath& from,
                                                    const ConditionPath& group, std::size_t before);
/// With a group's parts, or a single condition, in the group around its own.
ZRQRYBLD_API std::optional<ConditionTree> WithoutGroup(ConditionTree tree, const ConditionPath& path);

}  // namespace zrqrybld
