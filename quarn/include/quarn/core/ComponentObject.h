// ComponentObject.h - the base of component implementations
//
// A component derives from ComponentObject, which is a DynamicObject and an
// iComponent with one shared reference count. It answers identity queries for
// its own tag and for iComponent, then as a DynamicObject.
#pragma once

#include <quarn/core/DynamicObject.h>
#include <quarn/core/iComponent.h>

namespace quarn {

class QUARN_API ComponentObject : public virtual DynamicObject, public iComponent {
 public:
  ClassTag const &getClassTag() const override;
  Class const &getClass() const override;
  /// Throws "It is invalid to clone an interface: %hs".
  Object *clone() const override;
  /// Throws "It is invalid to create an interface instance: %hs".
  static ComponentObject *newInstance();

  static ClassTagDecl const Tag;
  static ClassImp<ComponentObject> m_class;
  static LeakDetector m_leakDetector;

 protected:
  void *_SeekClassIdentity(ClassTag const &tag) const override;
  void AddToLeakDetector() override;
  void RemoveFromLeakDetector() override;

  ComponentObject() = default;
  ~ComponentObject() override;
};

}  // namespace quarn
