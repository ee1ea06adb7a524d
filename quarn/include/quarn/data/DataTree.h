// DataTree.h - the library's data tree
//
// "Marlix.data.DataTree" implements iDataTree. It is made with a root
// DataNode named "root" and holds one counted reference on its root. Create
// it with newInstance() or by name (count 0).
#pragma once

#include <quarn/core/ComponentImpl.h>
#include <quarn/core/DynamicObject.h>
#include <quarn/core/Export.h>
#include <quarn/core/ObjectImpl.h>
#include <quarn/core/iDataTree.h>

namespace quarn {

/// Counted: create with newInstance() (count 0), hold with Ptr<DataTree>.
class QUARN_API DataTree : public ObjectImpl<DataTree, DynamicObject, iDataTree> {
  QUARN_COMPONENT(DataTree)

 public:
  DataTree() = default;
  ~DataTree() override;
  /// Makes the root node.
  void FinalConstruct() override;

  // ---- iDataTree

  iNode *getRoot() const override { return m_root; }
  void setRoot(iNode *root) override;

 private:
  iNode *m_root = nullptr;
};

}  // namespace quarn
