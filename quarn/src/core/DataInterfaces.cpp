// DataInterfaces.cpp - the defaults of the tree interfaces: not implemented
//
// A node or tree that does not support an operation leaves it to these,
// which throw NotImplementedException naming the operation.
#include <quarn/core/iDataTree.h>
#include <quarn/core/iNode.h>
#include <quarnCore/Exception.h>

namespace quarn {

namespace {
[[noreturn, gnu::cold]] void notImplemented(char const *operation) { throw NotImplementedException(operation); }
}  // namespace

BaseString<unsigned short> const &iNode::getName() const { notImplemented("iNode::getName"); }
void iNode::setName(BaseString<unsigned short> const &) { notImplemented("iNode::setName"); }
iNode *iNode::getParent() const { notImplemented("iNode::getParent"); }
unsigned int iNode::getChildCount() const { notImplemented("iNode::getChildCount"); }
iNode *iNode::getChild(unsigned int) const { notImplemented("iNode::getChild"); }
void iNode::insertChild(unsigned int, iNode *) { notImplemented("iNode::insertChild"); }
void iNode::removeChild(unsigned int) { notImplemented("iNode::removeChild"); }
iPropertyCollection *iNode::getPropertyList() const { notImplemented("iNode::getPropertyList"); }
void iNode::setParent(iNode *) { notImplemented("iNode::setParent"); }

iNode *iDataTree::getRoot() const { notImplemented("iDataTree::getRoot"); }
void iDataTree::setRoot(iNode *) { notImplemented("iDataTree::setRoot"); }

}  // namespace quarn
