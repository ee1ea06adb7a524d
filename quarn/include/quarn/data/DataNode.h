// DataNode.h - the library's node of a data tree
//
// "Marlix.data.DataNode" implements iNode and iPropertyCollection (the node is
// its own property list). It holds one counted reference on each child and a
// plain pointer to its parent; destroying a node releases its children, which
// then have no parent. Create it with newInstance() or by name; it starts with
// an empty name, no children and a count of 0. Children may be nodes of any
// implementation of iNode.
#pragma once

#include <quarn/core/ComponentImpl.h>
#include <quarn/core/Export.h>
#include <quarn/core/iNode.h>
#include <quarn/data/PropertyListImpl.h>
#include <quarnCore/Array.h>

namespace quarn {

/// Counted: create with newInstance() (count 0), hold with Ptr<DataNode>.
class QUARN_API DataNode : public PropertyListImpl<DataNode, iNode> {
  QUARN_COMPONENT(DataNode)

 public:
  DataNode() = default;
  ~DataNode() override;

  // ---- iNode

  BaseString<unsigned short> const &getName() const override { return m_name; }
  void setName(BaseString<unsigned short> const &name) override { m_name = name; }
  iNode *getParent() const override { return m_parent; }
  unsigned int getChildCount() const override { return m_children.getSize(); }
  iNode *getChild(unsigned int i) const override { return m_children[i]; }
  void insertChild(unsigned int i, iNode *child) override;
  void removeChild(unsigned int i) override;
  /// This node itself.
  iPropertyCollection *getPropertyList() const override;
  void setParent(iNode *parent) override { m_parent = parent; }

 private:
  BaseString<unsigned short> m_name;
  iNode *m_parent = nullptr;
  Array<iNode *> m_children;
};

}  // namespace quarn
