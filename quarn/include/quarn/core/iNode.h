// iNode.h - a node of a data tree: a name, properties and ordered children
//
// A node owns its children (one counted reference each) and knows its parent
// without owning it. A node belongs to at most one parent: insertChild
// refuses a node that has one, and a node cannot be placed below itself. The
// library's implementation is the class "Marlix.data.DataNode"; the tree
// operations of quarn::util::tree work on any implementation.
//
// Every operation has a default that throws NotImplementedException with its
// name ("iNode::insertChild"), as Object's serialize does: a node of a
// read-only view implements only what it supports.
//
// Ownership, the same for every data interface: every pointer an operation
// hands out is borrowed. The parent keeps its children and the node keeps
// its property list; a pointer stays valid until the child is removed or its
// holder released. insertChild takes a reference of its own on the child,
// removeChild gives it up (which deletes a child nobody else holds).
//
// The virtual operations below continue the slot order of CountedObject, in
// the order declared; that order is the layout other binaries depend on.
#pragma once

#include <quarn/core/Interface.h>
#include <quarn/core/iPropertyCollection.h>
#include <quarnCore/BaseString.h>

namespace quarn {

struct QUARN_API iNode : public Interface<iNode> {
  QUARN_INTERFACE(iNode)

  /// 1. The node's name, borrowed.
  virtual BaseString<unsigned short> const &getName() const;
  /// 2. Renames the node.
  virtual void setName(BaseString<unsigned short> const &name);
  /// 3. The parent, borrowed, or null for a node that is nobody's child.
  virtual iNode *getParent() const;
  /// 4. The number of children.
  virtual unsigned int getChildCount() const;
  /// 5. Child `i`, borrowed; an index at or beyond the count throws
  ///    InvalidIndexException(i, count - 1).
  virtual iNode *getChild(unsigned int i) const;
  /// 6. Inserts `child` before position `i` (i == count appends), takes a
  ///    reference on it and makes this node its parent. Throws
  ///    InvalidIndexException(i, count - 1) beyond the count, "Cannot insert a
  ///    null node", "Node %ls already has a parent", or "Node %ls cannot be
  ///    placed below itself" (the child is this node or one of its ancestors);
  ///    nothing changes on failure.
  virtual void insertChild(unsigned int i, iNode *child);
  /// 7. Removes child `i` (later ones move forward), clears its parent and
  ///    releases the reference taken by insertChild.
  virtual void removeChild(unsigned int i);
  /// 8. The node's properties, borrowed; never null.
  virtual iPropertyCollection *getPropertyList() const;
  /// 9. Records `parent` as this node's parent (not a counted reference).
  ///    Called only by the parent's insertChild and removeChild.
  virtual void setParent(iNode *parent);
};

}  // namespace quarn
