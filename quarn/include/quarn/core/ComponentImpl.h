// ComponentImpl.h - the glue of a concrete component class, written once
//
// A component is a ComponentObject (a counted DynamicObject and an
// iComponent) that may implement further interfaces. ComponentImpl<Self,
// iX...> supplies everything the object model asks of such a class: its tag
// and class object, identity queries (its own tag, then ComponentObject's,
// then each interface in order, all sharing one CountedObject part), the leak
// detector hooks, creation (newInstance: new, counted in the leak detector,
// FinalConstruct) and deletion (deleteInstance). Components cannot be cloned.
//
//   // Greeter.h
//   class Greeter : public quarn::ComponentImpl<Greeter, iGreeting> {
//     QUARN_COMPONENT(Greeter)
//    public:
//     ...
//   };
//   // Greeter.cpp
//   QUARN_DEFINE_COMPONENT(Greeter, "Marlix.example.Greeter");
//
// Self needs a default constructor that ComponentImpl can call (public, or
// befriend ComponentImpl). Instances start with a count of 0: the first owner
// calls addRef (hold them with Ptr<T>), and the last release deletes them.
#pragma once

#include <quarn/core/ComponentObject.h>
#include <quarn/core/Interface.h>

namespace quarn {

template <class Self, class... Interfaces>
class ComponentImpl : public ComponentObject, public Interfaces... {
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
  ComponentImpl() = default;
  ~ComponentImpl() override = default;

  void *_SeekClassIdentity(ClassTag const &tag) const override {
    if (tag.getId() == Self::Tag.getId()) return const_cast<Self *>(static_cast<Self const *>(this));
    void *found = ComponentObject::_SeekClassIdentity(tag);
    ((found = found ? found : this->Interfaces::_SeekClassIdentity(tag)), ...);
    return found;
  }
  void AddToLeakDetector() override {
    Self::m_leakDetector.Add(dynamic_cast<void *>(this), detail::shortClassName(Self::Tag.getName()));
  }
  void RemoveFromLeakDetector() override { Self::m_leakDetector.Sub(dynamic_cast<void *>(this)); }
};

}  // namespace quarn

/// Inside a component class: the statics of its class (tag, class object, leak detector).
#define QUARN_COMPONENT(Self)                  \
 public:                                       \
  static ::quarn::ClassTagDecl const Tag;      \
  static ::quarn::ClassImp<Self> m_class;      \
  static ::quarn::LeakDetector m_leakDetector; \
                                               \
 private:

/// In one source file of the component library: the statics of Self, with its class name.
#define QUARN_DEFINE_COMPONENT(Self, className)     \
  ::quarn::ClassTagDecl const Self::Tag(className); \
  ::quarn::ClassImp<Self> Self::m_class;            \
  ::quarn::LeakDetector Self::m_leakDetector(className)
