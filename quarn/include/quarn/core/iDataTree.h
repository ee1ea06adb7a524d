// iDataTree.h - a tree of data nodes, reached through its root
//
// A tree owns its root node (one counted reference); the root owns the rest
// (iNode.h). The library's implementation is the class "Marlix.data.DataTree",
// which starts with an empty root node named "root".
//
// Every operation has a default that throws NotImplementedException with its
// name ("iDataTree::setRoot"): a read-only tree implements only getRoot.
//
// Ownership, the same for every data interface: every pointer an operation
// hands out is borrowed; the tree keeps its root, and a caller that keeps it
// longer takes a reference with addRef. setRoot takes a reference of its own
// and releases the old root.
//
// The virtual operations below continue the slot order of CountedObject, in
// the order declared; that order is the layout other binaries depend on.
#pragma once

#include <quarn/core/Interface.h>
#include <quarn/core/iNode.h>

namespace quarn {

struct QUARN_API iDataTree : public Interface<iDataTree> {
  QUARN_INTERFACE(iDataTree)

  /// 1. The root node, borrowed.
  virtual iNode *getRoot() const;
  /// 2. Makes `root` the root; throws "A tree root cannot be null" or "Node
  ///    %ls already has a parent" (a root is nobody's child).
  virtual void setRoot(iNode *root);
};

}  // namespace quarn
