// DynamicObject.h - the base of objects that component libraries implement
//
// A dynamic object is a counted object (sharing one CountedObject part
// through virtual inheritance) that a component library creates by name.
// FinalConstruct is called once the object is fully made; ReleaseNoCheck
// drops a reference without ever deleting the object, for owners that manage
// its lifetime themselves.
#pragma once

#include <quarn/core/CountedObject.h>

namespace quarn {

class QUARN_API DynamicObject : public virtual CountedObject {
 public:
  ClassTag const &getClassTag() const override;
  Class const &getClass() const override;
  /// Throws "It is invalid to clone an interface: %hs".
  Object *clone() const override;

 protected:
  void *_SeekClassIdentity(ClassTag const &tag) const override;
  void AddToLeakDetector() override;
  void RemoveFromLeakDetector() override;

 public:
  /// Called once after creation; does nothing here.
  virtual void FinalConstruct();

  /// Decrements a positive count and returns it; never deletes, even at 0.
  unsigned int ReleaseNoCheck();
  /// The registered class name, "Marlix.obj.DynamicObject".
  static char const *getRegisteredName();
  /// Throws "It is invalid to create an interface instance: %hs".
  static DynamicObject *newInstance();

  static ClassTagDecl const Tag;
  static ClassImp<DynamicObject> m_class;
  static LeakDetector m_leakDetector;

 protected:
  DynamicObject() = default;
  DynamicObject(DynamicObject const &other) : CountedObject(other) {}
  ~DynamicObject() override;
};

}  // namespace quarn
