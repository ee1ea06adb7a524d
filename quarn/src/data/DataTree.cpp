// DataTree.cpp - a tree that owns its root
#include <quarn/core/Ptr.h>
#include <quarn/data/DataNode.h>
#include <quarn/data/DataTree.h>
#include <quarnCore/Exception.h>

#include <utility>

namespace quarn {

QUARN_DEFINE_COMPONENT(DataTree, "Marlix.data.DataTree");

DataTree::~DataTree() {
  if (m_root) m_root->release();
}

void DataTree::FinalConstruct() {
  Ptr<DataNode> root(DataNode::newInstance());
  root->setName("root");
  setRoot(root.get());
}

void DataTree::setRoot(iNode *root) {
  if (!root) [[unlikely]]
    throw Exception("A tree root cannot be null");
  if (root->getParent()) [[unlikely]]
    throw Exception("Node %ls already has a parent", root->getName().getBuffer());
  root->addRef();
  if (iNode *old = std::exchange(m_root, root)) old->release();
}

}  // namespace quarn
