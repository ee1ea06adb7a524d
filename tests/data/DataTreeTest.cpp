// DataTreeTest.cpp - trees and nodes, and the tree operations on small trees
#include <gtest/gtest.h>
#include <quarn/core/Class.h>
#include <quarn/core/Ptr.h>
#include <quarn/data/DataNode.h>
#include <quarn/data/DataTree.h>
#include <quarn/data/NodeReferenceSet.h>
#include <quarn/data/TreeHelpers.h>
#include <quarnCore/Exception.h>

#include <string>

#include "support/ExpectThrow.h"
#include "value/ValueTesting.h"

namespace quarn::test {
namespace {

using namespace quarn::util::tree;

/// "name(child,child(grandchild))", and every node below the top held by its parent alone.
std::string shape(iNode const &node, bool top = true) {
  std::string out = utf8(node.getName());
  if (!top && node.getRefCount() != 1) out += "#" + std::to_string(node.getRefCount());
  if (node.getChildCount() == 0) return out;
  out += "(";
  for (unsigned int i = 0; i < node.getChildCount(); ++i) {
    iNode const *child = node.getChild(i);
    if (child->getParent() != &node) out += "!";  // a child that does not know its parent
    out += (i ? "," : "") + shape(*child, false);
  }
  return out + ")";
}

iNode *child(iNode const &node, char const *name) {
  for (unsigned int i = 0; i < node.getChildCount(); ++i)
    if (node.getChild(i)->getName() == WString(name)) return node.getChild(i);
  return nullptr;
}

/// root(a(a1,a2),b,c) in a fresh tree, and the DataNode count to return to.
class DataTreeTest : public ::testing::Test {
 protected:
  void SetUp() override {
    root = tree->getRoot();
    iNode *a = NewNode(*root, WString("a"));
    NewNode(*root, WString("c"));
    NewNode(*root, WString("b"), 1);
    NewNode(*a, WString("a2"));
    NewNode(*a, WString("a1"), 0);
    ASSERT_EQ(shape(*root), "root(a(a1,a2),b,c)");
  }
  void TearDown() override {
    tree.reset();
    EXPECT_EQ(DataNode::m_leakDetector.getLiveCount(), nodesBefore);
  }

  long nodesBefore = DataNode::m_leakDetector.getLiveCount();
  Ptr<iDataTree> tree{static_cast<iDataTree *>(Class::getClassInstance(DataTree::Tag)->findAs(iDataTree::Tag))};
  iNode *root = nullptr;
};

TEST_F(DataTreeTest, NodesRefuseBadInsertionsAndChangeNothing) {
  iNode &a = *child(*root, "a");
  Ptr<DataNode> loose(DataNode::newInstance());
  loose->setName(WString("x"));
  EXPECT_QUARN_THROW(root->insertChild(1, nullptr), "Cannot insert a null node");
  EXPECT_QUARN_THROW(root->insertChild(0, &a), "Node a already has a parent");
  EXPECT_QUARN_THROW_AS(root->insertChild(4, loose.get()), InvalidIndexException,
                        "Invalid index 4 (last valid index 2)");
  EXPECT_QUARN_THROW(loose->insertChild(0, loose.get()), "Node x cannot be placed below itself");
  EXPECT_QUARN_THROW(tree->setRoot(&a), "Node a already has a parent");
  EXPECT_QUARN_THROW(tree->setRoot(nullptr), "A tree root cannot be null");
  EXPECT_EQ(loose->getRefCount(), 1u);
  EXPECT_EQ(shape(*root), "root(a(a1,a2),b,c)");
  // A new root replaces the old one, which goes with its subtree.
  tree->setRoot(loose.get());
  EXPECT_EQ(loose->getRefCount(), 2u);
  EXPECT_EQ(DataNode::m_leakDetector.getLiveCount(), nodesBefore + 1);
  root = loose.get();
}

TEST_F(DataTreeTest, MoveNodeMovesAndReordersAndRefusesItsOwnSubtree) {
  MoveNode(*child(*root, "c"), *child(*root, "a"), 1);
  EXPECT_EQ(shape(*root), "root(a(a1,c,a2),b)");
  MoveNode(*child(*root, "b"), *root, 0);  // within its own parent
  EXPECT_EQ(shape(*root), "root(b,a(a1,c,a2))");
  iNode &a = *child(*root, "a");
  EXPECT_QUARN_THROW(MoveNode(a, *child(a, "c")), "Node a cannot be placed below itself");
  EXPECT_QUARN_THROW(MoveNode(*root, a), "Node root has no parent");
  EXPECT_QUARN_THROW_AS(MoveNode(*child(*root, "b"), a, 4), InvalidIndexException,
                        "Invalid index 4 (last valid index 2)");
  EXPECT_EQ(shape(*root), "root(b,a(a1,c,a2))");
}

TEST_F(DataTreeTest, MoveNodesMovesTheSetInItsOrderOrNothing) {
  iNode &a = *child(*root, "a");
  NodeReferenceSet nodes;
  nodes.add(child(*root, "c"));
  nodes.add(nullptr);
  nodes.add(child(a, "a1"));
  NodeReferenceSet bad;
  bad.add(child(*root, "c"));
  bad.add(&a);
  EXPECT_QUARN_THROW(MoveNodes(bad, *child(a, "a2")), "Node a cannot be placed below itself");
  EXPECT_EQ(shape(*root), "root(a#2(a1#2,a2),b,c#3)");  // the sets hold references too
  bad.clear();
  EXPECT_EQ(MoveNodes(nodes, *child(*root, "b")), 2u);
  nodes.remove(1);  // a set that is cleared must hold no null entry
  nodes.clear();
  EXPECT_EQ(shape(*root), "root(a(a2),b(c,a1))");
}

TEST_F(DataTreeTest, ReparentAndExchangeChildrenKeepTheirOrder) {
  EXPECT_EQ(ReparentChildNodesAsSiblings(*child(*root, "a")), 2u);
  EXPECT_EQ(shape(*root), "root(a,a1,a2,b,c)");
  MoveNode(*child(*root, "a1"), *child(*root, "b"));
  MoveNode(*child(*root, "a2"), *child(*root, "b"));
  MoveNode(*child(*root, "c"), *child(*root, "a"));
  ExchangeChildren(*child(*root, "a"), *child(*root, "b"));
  EXPECT_EQ(shape(*root), "root(a(a1,a2),b(c))");
  ExchangeChildren(*root, *root);
  EXPECT_QUARN_THROW(ExchangeChildren(*root, *child(*root, "a")), "Nodes root and a are on one branch");
  EXPECT_QUARN_THROW(ReparentChildNodesAsSiblings(*root), "Node root has no parent");
  EXPECT_EQ(shape(*root), "root(a(a1,a2),b(c))");
}

TEST_F(DataTreeTest, GroupDataAndUngroupDataRoundTrip) {
  NodeReferenceSet nodes;
  nodes.add(child(*root, "c"));
  nodes.add(child(*root, "b"));
  nodes.add(child(*root, "c"));  // listed twice, moved once
  iNode *group = GroupData(nodes, WString("g"));
  nodes.clear();
  EXPECT_EQ(shape(*root), "root(a(a1,a2),g(b,c))");
  EXPECT_TRUE(IsAGroupNode(*group));
  EXPECT_FALSE(IsAGroupNode(*child(*root, "a")));
  EXPECT_QUARN_THROW(UngroupData(*child(*root, "a")), "Node a is not a group");
  EXPECT_EQ(UngroupData(*group), 2u);
  EXPECT_EQ(shape(*root), "root(a(a1,a2),b,c)");

  NodeReferenceSet mixed, empty;
  mixed.add(child(*root, "b"));
  mixed.add(child(*child(*root, "a"), "a1"));
  EXPECT_QUARN_THROW(GroupData(mixed, WString("g")), "Nodes to group must share one parent");
  empty.add(nullptr);
  EXPECT_QUARN_THROW(GroupData(empty, WString("g")), "Nothing to group");
  mixed.clear();
  empty.resize(0);
  EXPECT_EQ(shape(*root), "root(a(a1,a2),b,c)");
}

TEST(DataNodeTest, TreeInterfacesLeftUnimplementedSaySo) {
  struct BareNode final : iNode {
    void deleteInstance() override { delete this; }
  } node;
  struct BareTree final : iDataTree {
    void deleteInstance() override { delete this; }
  } tree;
  EXPECT_QUARN_THROW_AS(node.getName(), NotImplementedException, "iNode::getName");
  EXPECT_QUARN_THROW_AS(node.insertChild(0, nullptr), NotImplementedException, "iNode::insertChild");
  EXPECT_QUARN_THROW_AS(node.getPropertyList(), NotImplementedException, "iNode::getPropertyList");
  EXPECT_QUARN_THROW_AS(tree.setRoot(nullptr), NotImplementedException, "iDataTree::setRoot");
}

}  // namespace
}  // namespace quarn::test
