// DataNode.cpp - a node's children: counted, ordered, never cyclic
#include <quarn/data/DataNode.h>
#include <quarnCore/Exception.h>
#include <quarnCore/Throw.h>

namespace quarn {

QUARN_DEFINE_COMPONENT(DataNode, "Marlix.data.DataNode");

DataNode::~DataNode() {
  for (iNode *child : m_children) {
    child->setParent(nullptr);
    child->release();
  }
}

void DataNode::insertChild(unsigned int i, iNode *child) {
  unsigned int const n = m_children.getSize();
  if (i > n) [[unlikely]]
    detail::throwInvalidIndex(i, n - 1);
  if (!child) [[unlikely]]
    throw Exception("Cannot insert a null node");
  if (child->getParent()) [[unlikely]]
    throw Exception("Node %ls already has a parent", child->getName().getBuffer());
  for (iNode const *up = this; up; up = up->getParent())
    if (up == child) [[unlikely]]
      throw Exception("Node %ls cannot be placed below itself", child->getName().getBuffer());
  m_children.reserve(n + 1);
  child->setParent(this);
  child->addRef();
  m_children.insert(i, child);  // room reserved: cannot fail
}

void DataNode::removeChild(unsigned int i) {
  iNode *child = m_children[i];
  m_children.remove(i);
  child->setParent(nullptr);
  child->release();
}

iPropertyCollection *DataNode::getPropertyList() const {
  return const_cast<iPropertyCollection *>(static_cast<iPropertyCollection const *>(this));
}

}  // namespace quarn
