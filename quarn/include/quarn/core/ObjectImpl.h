// ObjectImpl.h - the glue of a concrete counted class, written once
//
// ObjectImpl<Self, Base, iX...> is a counted class over Base (DynamicObject,
// or ComponentObject for components) that implements the interfaces iX...
// It supplies everything the object model asks of such a class: its tag and
// class object, identity queries (its own tag, then Base's, then each
// interface in order, all sharing one CountedObject part), the leak detector
// hooks, creation (newInstance: new, counted in the leak detector,
// FinalConstruct) and deletion (deleteInstance). Such objects cannot be
// cloned unless Self overrides clone.
//
// Self declares its statics with QUARN_COMPONENT(Self) and defines them with
// QUARN_DEFINE_COMPONENT(Self, "class name") (ComponentImpl.h). Self needs a
// default constructor that ObjectImpl can call (public, or befriend
// ObjectImpl). Instances start with a count of 0: the first owner calls
// addRef (hold them with Ptr<T>), and the last release deletes them.
#pragma once

#include <quarn/core/DynamicObject.h>
#include <quarn/core/Interface.h>

namespace quarn {

template <class Self, class Base, class... Interfaces>
class ObjectImpl : public Base, public Interfaces... {
 public:
  ClassTag const &getClassTag() const override { return Self::Tag; }
  Class const &getClass() const override { return Self::m_class; }
  Object *clone() const override { detail::throwInterfaceClone(Self::Tag.getName()); }
  void deleteInstance() override {
    RemoveFromLeakDetector();
    delete this;
  }

  /// A new instance with a count of 0. A FinalConstruct that throws deletes it again.
  static Self *newInstance() {
    Self *object = new Self();
    object->AddToLeakDetector();
    try {
      object->FinalConstruct();
    } catch (...) {
      object->deleteInstance();
      throw;
    }
    return object;
  }

 protected:
  ObjectImpl() = default;
  ~ObjectImpl() override = default;

  void *_SeekClassIdentity(ClassTag const &tag) const override {
    if (tag.getId() == Self::Tag.getId()) return const_cast<Self *>(static_cast<Self const *>(this));
    void *found = Base::_SeekClassIdentity(tag);
    ((found = found ? found : this->Interfaces::_SeekClassIdentity(tag)), ...);
    return found;
  }
  void AddToLeakDetector() override {
    Self::m_leakDetector.Add(dynamic_cast<void *>(this), detail::shortClassName(Self::Tag.getName()));
  }
  void RemoveFromLeakDetector() override { Self::m_leakDetector.Sub(dynamic_cast<void *>(this)); }
};

}  // namespace quarn
