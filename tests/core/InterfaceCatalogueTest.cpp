// InterfaceCatalogueTest.cpp - every interface bound at start-up, and the glue they share
#include <gtest/gtest.h>
#include <quarn/core/Class.h>
#include <quarn/core/ComponentImpl.h>
#include <quarn/core/Interfaces.h>
#include <quarn/core/Ptr.h>

#include <set>
#include <string>

#include "components/Catalogue.h"
#include "support/ExpectThrow.h"

namespace {

using quarn::ClassTag;
using quarn::CountedObject;
using quarn::iDataTree;
using quarn::iNode;
using quarn::Object;
using quarn::test::kCatalogue;

// An object that implements iNode and nothing else.
struct NodeOnly final : iNode {
  NodeOnly() { AddToLeakDetector(); }
  ~NodeOnly() override { RemoveFromLeakDetector(); }
  void deleteInstance() override { delete this; }
};

// A component that is also an iNode and an iDataTree.
class Branch : public quarn::ComponentImpl<Branch, iNode, iDataTree> {
  QUARN_COMPONENT(Branch)
};
QUARN_DEFINE_COMPONENT(Branch, "Marlix.test.InterfaceCatalogue.Branch");

TEST(InterfaceCatalogueTest, EveryInterfaceIsBoundToItsClassObjectAtStartUpAndCannotBeCreated) {
  std::set<int> ids;
  for (auto const &row : kCatalogue) {
    ClassTag byName(row.name);
    EXPECT_EQ(byName, *row.tag) << row.name;
    EXPECT_STREQ(row.tag->getName(), row.name);
    EXPECT_EQ(byName.findClass(), row.classObject) << row.name;
    EXPECT_EQ(row.classObject->getClassTag(), *row.tag) << row.name;
    ids.insert(row.tag->getId());
    std::string refusal = std::string("It is invalid to create an interface instance: ") + row.name;
    EXPECT_QUARN_THROW(quarn::Class::getClassInstance(*row.tag), refusal);
    EXPECT_QUARN_THROW(row.classObject->newInstance(), refusal);
  }
  EXPECT_EQ(ids.size(), 41u);
}

TEST(InterfaceCatalogueTest, InterfaceAnswersForItselfAndItsOneCountedPart) {
  long before = iNode::m_leakDetector.getLiveCount();
  quarn::Ptr<NodeOnly> node(new NodeOnly);
  EXPECT_EQ(node->findAs(iNode::Tag), static_cast<void *>(static_cast<iNode *>(node.get())));
  EXPECT_EQ(node->findAs(CountedObject::Tag), static_cast<void *>(static_cast<CountedObject *>(node.get())));
  EXPECT_EQ(node->findAs(Object::Tag), static_cast<void *>(static_cast<Object *>(node.get())));
  EXPECT_EQ(node->findAs(iDataTree::Tag), nullptr);
  EXPECT_EQ(&node->getClass(), &iNode::m_class);
  EXPECT_QUARN_THROW_AS(node->getAs(quarn::iAtom::Tag), quarn::NotImplementedException, "Marlix.interface.iAtom");
  EXPECT_QUARN_THROW(node->clone(), "It is invalid to clone an interface: Marlix.interface.iNode");
  // The leak detector counts it under the short name.
  EXPECT_EQ(iNode::m_leakDetector.getLiveCount(), before + 1);
  node.reset();
  EXPECT_EQ(iNode::m_leakDetector.getLiveCount(), before);
  EXPECT_EQ(std::string(iNode::m_leakDetector.getName().getBuffer()), "iNode");
}

TEST(InterfaceCatalogueTest, ComponentWithSeveralInterfacesSharesOneCountAndIsCreatedByItsClass) {
  quarn::Ptr<Branch> branch(Branch::newInstance());
  auto *node = static_cast<iNode *>(branch->findAs(iNode::Tag));
  auto *tree = static_cast<iDataTree *>(branch->findAs(iDataTree::Tag));
  auto *counted = static_cast<CountedObject *>(branch->findAs(CountedObject::Tag));
  EXPECT_EQ(node, static_cast<iNode *>(branch.get()));
  EXPECT_EQ(tree, static_cast<iDataTree *>(branch.get()));
  EXPECT_EQ(counted, static_cast<CountedObject *>(node));
  EXPECT_EQ(counted, static_cast<CountedObject *>(tree));
  EXPECT_EQ(branch->findAs(Branch::Tag), static_cast<void *>(branch.get()));
  EXPECT_NE(branch->findAs(quarn::iComponent::Tag), nullptr);
  EXPECT_NE(branch->findAs(quarn::ComponentObject::Tag), nullptr);
  EXPECT_EQ(branch->findAs(quarn::iAtom::Tag), nullptr);
  tree->addRef();
  EXPECT_EQ(node->getRefCount(), 2u);
  tree->release();
  EXPECT_EQ(&node->getClass(), &Branch::m_class);
  quarn::Ptr<CountedObject> made(quarn::Class::getClassInstance(Branch::Tag)->as<CountedObject>());
  ASSERT_TRUE(made);
  EXPECT_EQ(made->getClassTag(), Branch::Tag);
  EXPECT_EQ(made->getRefCount(), 1u);
}

}  // namespace
