// CountedObject.h - objects owned through an intrusive reference count
//
// A counted object starts with a count of 0: construction takes no reference,
// the first owner calls addRef. release() drops one reference; the last one
// (a count of 0 or 1) calls FinalRelease and deleteInstance, which returns a
// pooled instance to its pool or destroys it. addRef and the non-final release
// are atomic; destruction assumes that no other thread still holds a reference.
// Hold counted objects with Ptr<T>.
#pragma once

#include <quarn/core/Class.h>
#include <quarn/core/Object.h>
#include <quarnCore/LeakDetector.h>

namespace quarn {

class QUARN_API CountedObject : public Object {
 public:
  ClassTag const &getClassTag() const override;
  /// Throws "It is invalid to clone an interface: %hs" with the class name.
  Object *clone() const override;
  Class const &getClass() const override;

 protected:
  void *_SeekClassIdentity(ClassTag const &tag) const override;
  // New slots, in order.
  virtual void AddToLeakDetector();
  virtual void RemoveFromLeakDetector();

 public:
  /// Adds a reference; returns the new count.
  virtual unsigned int addRef();
  /// Drops a reference; the last one deletes the object and returns 0.
  virtual unsigned int release();

 private:
  /// Called once just before the last release deletes the object.
  virtual void FinalRelease();

 public:
  unsigned int getRefCount() const noexcept;
  /// Throws "It is invalid to create an interface instance: %hs".
  static CountedObject *newInstance();

  static ClassTagDecl const Tag;
  static ClassImp<CountedObject> m_class;
  static LeakDetector m_leakDetector;

 protected:
  CountedObject() = default;
  /// A copy starts with its own count of 0.
  CountedObject(CountedObject const &other) : Object(other) {}
  CountedObject &operator=(CountedObject const &) { return *this; }
  ~CountedObject() override;

  int refCount = 0;
};

}  // namespace quarn
