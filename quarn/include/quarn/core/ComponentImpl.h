// ComponentImpl.h - the glue of a concrete component class, written once
//
// A component is a ComponentObject (a counted DynamicObject and an
// iComponent) that may implement further interfaces. ComponentImpl<Self,
// iX...> supplies everything the object model asks of such a class: its tag
// and class object, identity queries (its own tag, then ComponentObject's,
// then each interface in order, all sharing one CountedObject part), the leak
// detector hooks, creation (newInstance: new, counted in the leak detector,
// FinalConstruct) and deletion (deleteInstance); ObjectImpl.h holds that
// glue, shared with the library's other counted classes. Components cannot be
// cloned.
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
// Self needs a default constructor that ObjectImpl can call (public, or
// befriend quarn::ObjectImpl). Instances start with a count of 0: the first owner
// calls addRef (hold them with Ptr<T>), and the last release deletes them.
#pragma once

#include <quarn/core/ComponentObject.h>
#include <quarn/core/ObjectImpl.h>

namespace quarn {

/// A component class: ObjectImpl over ComponentObject.
template <class Self, class... Interfaces>
using ComponentImpl = ObjectImpl<Self, ComponentObject, Interfaces...>;

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
