// TreeHelpers.cpp - making, moving and grouping the nodes of a data tree
#include <quarn/core/Class.h>
#include <quarn/core/Ptr.h>
#include <quarn/data/PropertyHelpers.h>
#include <quarn/data/TreeHelpers.h>
#include <quarn/value/BooleanValue.h>
#include <quarnCore/Exception.h>
#include <quarnCore/Throw.h>

#include <vector>

namespace quarn::util::tree {

namespace {

using Name = BaseString<unsigned short>;

constexpr char kNodeClass[] = "Marlix.data.DataNode";

[[noreturn, gnu::cold]] void failNoParent(iNode const &node) {
  throw Exception("Node %ls has no parent", node.getName().getBuffer());
}
[[noreturn, gnu::cold]] void failBelowItself(iNode const &node) {
  throw Exception("Node %ls cannot be placed below itself", node.getName().getBuffer());
}

iNode &parentOf(iNode const &node) {
  iNode *parent = node.getParent();
  if (!parent) [[unlikely]]
    failNoParent(node);
  return *parent;
}

/// Whether `upper` is `node` or one of its ancestors.
bool isAtOrAbove(iNode const *upper, iNode const &node) {
  for (iNode const *up = &node; up; up = up->getParent())
    if (up == upper) return true;
  return false;
}

/// The place of `child` among the children of `parent`.
unsigned int indexOf(iNode const &parent, iNode const *child) {
  unsigned int const n = parent.getChildCount();
  for (unsigned int i = 0; i < n; ++i)
    if (parent.getChild(i) == child) return i;
  throw Exception("Node %ls is not a child of its parent", child->getName().getBuffer());
}

/// Takes every child out of `node`, in order, each held by a reference of the result.
std::vector<Ptr<iNode>> takeChildren(iNode &node) {
  std::vector<Ptr<iNode>> children;
  unsigned int const n = node.getChildCount();
  children.reserve(n);
  for (unsigned int i = 0; i < n; ++i) children.emplace_back(node.getChild(i));
  for (unsigned int i = n; i-- > 0;) node.removeChild(i);
  return children;
}

/// Inserts `nodes` into `parent` from `position` on, in order.
void insertAll(iNode &parent, unsigned int position, std::vector<Ptr<iNode>> const &nodes) {
  for (Ptr<iNode> const &node : nodes) parent.insertChild(position++, node.get());
}

}  // namespace

iNode *NewNode(iNode &parent, Name const &name, unsigned int position) {
  ObjPtr<Object> made(Class::getClassInstance(ClassTag(kNodeClass)));
  auto *node = static_cast<iNode *>(made->findAs(iNode::Tag));
  if (!node) [[unlikely]]
    throw Exception("Class %hs is not a node", kNodeClass);
  made.detach();
  Ptr<iNode> held(node);
  node->setName(name);
  parent.insertChild(position == kAppend ? parent.getChildCount() : position, node);
  return node;
}

void MoveNode(iNode &node, iNode &newParent, unsigned int position) {
  iNode &oldParent = parentOf(node);
  if (isAtOrAbove(&node, newParent)) [[unlikely]]
    failBelowItself(node);
  unsigned int const after = newParent.getChildCount() - (&oldParent == &newParent ? 1 : 0);
  if (position == kAppend) position = after;
  if (position > after) [[unlikely]]
    detail::throwInvalidIndex(position, after - 1);
  unsigned int const from = indexOf(oldParent, &node);
  Ptr<iNode> held(&node);
  oldParent.removeChild(from);
  try {
    newParent.insertChild(position, &node);
  } catch (...) {
    oldParent.insertChild(from, &node);
    throw;
  }
}

unsigned int MoveNodes(NodeReferenceSet const &nodes, iNode &newParent) {
  for (unsigned int i = 0; i < nodes.getSize(); ++i)
    if (iNode *node = nodes[i]) {
      parentOf(*node);
      if (isAtOrAbove(node, newParent)) [[unlikely]]
        failBelowItself(*node);
    }
  unsigned int moved = 0;
  for (unsigned int i = 0; i < nodes.getSize(); ++i)
    if (iNode *node = nodes[i]) {
      MoveNode(*node, newParent);
      ++moved;
    }
  return moved;
}

unsigned int ReparentChildNodesAsSiblings(iNode &node) {
  iNode &parent = parentOf(node);
  unsigned int const at = indexOf(parent, &node) + 1;
  std::vector<Ptr<iNode>> children = takeChildren(node);
  insertAll(parent, at, children);
  return static_cast<unsigned int>(children.size());
}

bool IsAGroupNode(iNode const &node) {
  iProperty const *marker = node.getPropertyList()->findProperty(Name(kGroupMarker));
  return marker && marker->getValue()->getBoolean();
}

void ExchangeChildren(iNode &a, iNode &b) {
  if (&a == &b) return;
  if (isAtOrAbove(&a, b) || isAtOrAbove(&b, a)) [[unlikely]]
    throw Exception("Nodes %ls and %ls are on one branch", a.getName().getBuffer(), b.getName().getBuffer());
  std::vector<Ptr<iNode>> ofA = takeChildren(a), ofB = takeChildren(b);
  insertAll(a, 0, ofB);
  insertAll(b, 0, ofA);
}

iNode *GroupData(NodeReferenceSet const &nodes, Name const &name) {
  iNode *parent = nullptr;
  bool any = false;
  for (unsigned int i = 0; i < nodes.getSize(); ++i)
    if (iNode *node = nodes[i]) {
      iNode *up = node->getParent();
      if (!up || (any && up != parent)) [[unlikely]]
        throw Exception("Nodes to group must share one parent");
      parent = up;
      any = true;
    }
  if (!any) [[unlikely]]
    throw Exception("Nothing to group");
  // The members in their order under the parent, each once.
  std::vector<Ptr<iNode>> members;
  unsigned int first = 0;
  for (unsigned int c = 0; c < parent->getChildCount(); ++c) {
    iNode *child = parent->getChild(c);
    for (unsigned int i = 0; i < nodes.getSize(); ++i)
      if (nodes[i] == child) {
        if (members.empty()) first = c;
        members.emplace_back(child);
        break;
      }
  }
  iNode *group = NewNode(*parent, name, first);
  defineBooleanValue(*group->getPropertyList(), Name(kGroupMarker), true);
  for (Ptr<iNode> const &member : members) MoveNode(*member, *group);
  return group;
}

unsigned int UngroupData(iNode &group) {
  if (!IsAGroupNode(group)) [[unlikely]]
    throw Exception("Node %ls is not a group", group.getName().getBuffer());
  iNode &parent = parentOf(group);
  unsigned int const moved = ReparentChildNodesAsSiblings(group);
  parent.removeChild(indexOf(parent, &group));
  return moved;
}

}  // namespace quarn::util::tree
