// ValueGlue.h - the identity, pooling and leak-tracking glue of a value class
//
// Every concrete value class needs the same dozen members: its tag, class
// object and leak detector, getClassTag / getClass / _SeekClassIdentity,
// newInstance / clone / cloneValue / deleteInstance routed through the class
// object, and the leak-detector hooks. They are written once here:
//
//   // IntegerValue.h
//   class QUARN_API IntegerValue : public ValueGlue<IntegerValue, Value> {
//     QUARN_VALUE_CLASS(IntegerValue, "Marlix.value.IntegerValue", PooledClassImp<IntegerValue, -1>)
//    public:
//     IntegerValue() = default;                       // the glue counts the instance
//     IntegerValue(IntegerValue const &other) : Glue(other), m_value(other.m_value) {}
//     ...
//   };
//   // IntegerValue.cpp
//   QUARN_DEFINE_VALUE_CLASS(IntegerValue);
//
// The class object decides how instances are made: a PooledClassImp acquires
// and releases through its pool (clone acquires with a copy of the source);
// a plain ClassImp makes them with new and destroys them with delete; an
// abstract class refuses creation and cloning with "It is invalid to create
// an interface instance: %hs" / "It is invalid to clone an interface: %hs".
//
// Each instance is counted in the leak detector of its own class only, under
// the class's short name: while a class glued on top of another glued class
// (MissingValue over NullValue) is constructed, the count moves from the base
// class's detector to its own, and back while it is destroyed.
//
// The glue declares no virtual operation of its own, so it leaves the slot
// order of the classes it sits between unchanged.
#pragma once

#include <quarn/core/Class.h>
#include <quarn/core/ClassTag.h>
#include <quarn/core/Export.h>
#include <quarn/core/Interface.h>
#include <quarn/core/PooledClassImp.h>
#include <quarn/value/Value.h>
#include <quarnCore/LeakDetector.h>

#include <type_traits>
#include <utility>

namespace quarn {

namespace detail {
/// Throws "Could not convert from %hs to %hs" with the two class names.
[[noreturn]] QUARN_API void throwCannotConvert(char const *from, char const *to);
}  // namespace detail

template <class Self, class Base>
class QUARN_API ValueGlue : public Base {
 public:
  /// The class whose statics this layer serves.
  using GluedClass = Self;
  /// This layer, for the constructors of Self.
  using Glue = ValueGlue;

  ClassTag const &getClassTag() const override { return Self::Tag; }
  Object *clone() const override { return cloneValue(); }
  Class const &getClass() const override { return Self::m_class; }
  void deleteInstance() override {
    if constexpr (std::is_abstract_v<Self>) {
      detail::throwInterfaceInstance(Self::className);
    } else if constexpr (pooled()) {
      Self *self = static_cast<Self *>(this);
      Self::m_class.release(self);
    } else {
      delete static_cast<Self *>(this);
    }
  }
  Value *cloneValue() const override {
    if constexpr (std::is_abstract_v<Self>)
      detail::throwInterfaceClone(Self::className);
    else if constexpr (pooled())
      return Self::m_class.acquireCopy(static_cast<Self const &>(*this));
    else
      return new Self(static_cast<Self const &>(*this));
  }

  /// A new instance from the class's pool (or new).
  static Self *newInstance() {
    if constexpr (std::is_abstract_v<Self>)
      detail::throwInterfaceInstance(Self::className);
    else if constexpr (pooled())
      return Self::m_class.acquire();
    else
      return new Self();
  }
  /// A new instance holding a copy of `source`.
  static Self *allocateCopy(Self const &source) { return static_cast<Self *>(source.cloneValue()); }

  ~ValueGlue() override {
    ValueGlue::RemoveFromLeakDetector();
    if constexpr (gluedBase) Base::AddToLeakDetector();
  }

 protected:
  ValueGlue() { enter(); }
  ValueGlue(ValueGlue const &other) : Base(other) { enter(); }
  /// Passes `args` to a base constructor.
  template <class... Args>
  explicit ValueGlue(std::in_place_t, Args &&...args) : Base(std::forward<Args>(args)...) {
    enter();
  }

  void *_SeekClassIdentity(ClassTag const &tag) const override {
    if (tag.getId() == Self::Tag.getId()) return const_cast<Self *>(static_cast<Self const *>(this));
    return Base::_SeekClassIdentity(tag);
  }
  void AddToLeakDetector() override { Self::m_leakDetector.Add(leakKey(), Self::shortName); }
  void RemoveFromLeakDetector() override { Self::m_leakDetector.Sub(leakKey()); }

  /// `target` as this class, for assignToSameClass; another class throws
  /// "Could not convert from %hs to %hs".
  static Self &sameClass(Value &target) {
    if (target.getClassTag().getId() != Self::Tag.getId()) [[unlikely]]
      detail::throwCannotConvert(Self::className, target.getClassTag().getName());
    return static_cast<Self &>(target);
  }

 private:
  // A function, not a constant: Self is complete only once member bodies are instantiated.
  static constexpr bool pooled() {
    return requires(Self * &instance) { Self::m_class.release(instance); };
  }
  static constexpr bool gluedBase = requires { typename Base::GluedClass; };

  void enter() {
    if constexpr (gluedBase) Base::RemoveFromLeakDetector();
    ValueGlue::AddToLeakDetector();
  }
  /// The same address at every layer of the instance.
  void *leakKey() const noexcept {
    return const_cast<void *>(static_cast<void const *>(static_cast<Object const *>(this)));
  }
};

}  // namespace quarn

/// Inside the body of a value class: its registered name, short name and the
/// statics that ValueGlue uses. The class object type comes last.
#define QUARN_VALUE_CLASS(Self, registeredName, ...)        \
 public:                                                    \
  static constexpr char const className[] = registeredName; \
  static constexpr char const shortName[] = #Self;          \
  static ::quarn::ClassTagDecl const Tag;                   \
  static __VA_ARGS__ m_class;                               \
  static ::quarn::LeakDetector m_leakDetector;              \
                                                            \
 private:

/// In one source file of the library: the definitions of those statics, in
/// the order the class object needs (the tag first).
#define QUARN_DEFINE_VALUE_CLASS(Self)                    \
  ::quarn::ClassTagDecl const Self::Tag(Self::className); \
  decltype(Self::m_class) Self::m_class;                  \
  ::quarn::LeakDetector Self::m_leakDetector(Self::shortName)
