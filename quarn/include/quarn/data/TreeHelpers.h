// TreeHelpers.h - making, moving and grouping the nodes of a data tree
//
// Free functions over iNode, so they work on the library's DataNode and on
// any component library's nodes (which must implement the operations used:
// names, parents, children and, for groups, property lists). New nodes are
// made by name as "Marlix.data.DataNode". Every node pointer they return is
// borrowed from its parent, as the data interfaces hand them out; the
// reference counts they change are exactly those of insertChild and
// removeChild, so a tree ends with the counts it would have had if built by
// hand.
//
// Failures are checked before anything moves, so a failing call leaves the
// tree as it was: "Node %ls has no parent" (an operation that needs the
// parent), "Node %ls cannot be placed below itself" (a move into the node's
// own subtree), InvalidIndexException(position, count - 1) for a position
// beyond the children, "Node %ls is not a group".
//
// A group node is a node made by GroupData: its property list holds the
// BooleanValue kGroupMarker set to true.
#pragma once

#include <quarn/core/Export.h>
#include <quarn/core/iNode.h>
#include <quarn/data/NodeReferenceSet.h>
#include <quarnCore/BaseString.h>

namespace quarn::util::tree {

/// As a position: after the last child.
inline constexpr unsigned int kAppend = 0xFFFFFFFFu;
/// The property that marks a group node.
inline constexpr char kGroupMarker[] = "GroupNode";

/// A new DataNode named `name`, inserted into `parent` at `position`
/// (kAppend: last). Returns it, borrowed from `parent`.
QUARN_API iNode *NewNode(iNode &parent, BaseString<unsigned short> const &name, unsigned int position = kAppend);

/// Moves `node` from its parent to `newParent` at `position` (kAppend: last),
/// counted among the children as they are once `node` has left. Moving a
/// node within its own parent reorders it.
QUARN_API void MoveNode(iNode &node, iNode &newParent, unsigned int position = kAppend);

/// Moves every non-null node of `nodes` to the end of `newParent`, in the
/// set's order; returns how many moved. Each must have a parent and none may
/// be `newParent` or above it; otherwise nothing moves.
QUARN_API unsigned int MoveNodes(NodeReferenceSet const &nodes, iNode &newParent);

/// Moves the children of `node` to its parent, in order, right after `node`;
/// returns how many moved.
QUARN_API unsigned int ReparentChildNodesAsSiblings(iNode &node);

/// Whether `node` is a group node (see above).
QUARN_API bool IsAGroupNode(iNode const &node);

/// Exchanges all children of `a` and `b`, each keeping its order. Nothing
/// happens when `a` is `b`; "Nodes %ls and %ls are on one branch" when one
/// is above the other.
QUARN_API void ExchangeChildren(iNode &a, iNode &b);

/// Makes a group node named `name` under the one parent that the non-null
/// nodes of `nodes` share, at the place of the first of them, and moves them
/// into it in their order under that parent (a node listed twice moves
/// once). Returns the group, borrowed. "Nothing to group" without nodes;
/// "Nodes to group must share one parent" otherwise.
QUARN_API iNode *GroupData(NodeReferenceSet const &nodes, BaseString<unsigned short> const &name);

/// Moves the children of the group node `group` to its place under its
/// parent, in order, and removes the group; returns how many moved.
QUARN_API unsigned int UngroupData(iNode &group);

}  // namespace quarn::util::tree
