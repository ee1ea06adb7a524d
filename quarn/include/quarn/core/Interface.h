// Interface.h - the glue that every interface of the platform carries
//
// An interface iX is a struct deriving from Interface<iX>, which derives
// virtually from CountedObject (so an object implementing several interfaces
// has one reference count). Interface<iX> answers identity queries for iX and
// for the one shared CountedObject part, reports instances to iX's leak
// detector under the interface's short name, and refuses creation and
// cloning. Declare the statics with QUARN_INTERFACE(iX) in the struct and
// define them once with QUARN_DEFINE_INTERFACE(iX) in a source file; the tag
// is "Marlix.interface.iX", or a full class name of one's own with
// QUARN_DEFINE_INTERFACE(iX, "Acme.interface.iX") (so that two vendors'
// interfaces of the same short name do not share a tag).
//
// Interfaces that a component library introduces for its hosts: mark the
// struct QUARN_INTERFACE_API, and define the statics in a small shared
// library of their own (quarn_add_interface_library in CMake) that both the
// component library and the hosts link. A host can then ask by type,
// object->as<acme::iScaler>() or object->getAs<acme::iScaler>(); a host that
// only knows the interface by name keeps asking by tag
// (object->findAs(quarn::ClassTag("Acme.interface.iScaler"))). One process
// holds one definition of each interface's statics.
//
//   // include/acme/iScaler.h
//   struct QUARN_INTERFACE_API iScaler : public quarn::Interface<iScaler> {
//     QUARN_INTERFACE(iScaler)
//     virtual double scale(double) const = 0;
//   };
//   // Interfaces.cpp, in the interface library
//   QUARN_DEFINE_INTERFACE(iScaler, "Acme.interface.iScaler");
//
// A class that implements several interfaces overrides _SeekClassIdentity,
// getClass and the leak-detector hooks itself, asking each base in turn
// (ComponentImpl does this for components).
//
// An interface with no operations of its own yet is one line:
// QUARN_DECLARE_INTERFACE(iX); (see Interfaces.h for the catalogue).
//
// Nothing here defines an inline variable: such a variable becomes a
// process-unique symbol, and a library holding one can never be unloaded.
#pragma once

#include <cstring>

#include <quarn/core/Class.h>
#include <quarn/core/CountedObject.h>
#include <quarnCore/Exception.h>
#include <quarnCore/LeakDetector.h>

/// Exports an interface that hosts use by type from the library that defines its statics.
#define QUARN_INTERFACE_API __attribute__((visibility("default")))

namespace quarn {

namespace detail {
[[noreturn]] QUARN_API void throwInterfaceInstance(char const *className);
[[noreturn]] QUARN_API void throwInterfaceClone(char const *className);
/// The last part of a dotted class name: "Marlix.interface.iContext" -> "iContext".
inline char const *shortClassName(char const *name) noexcept {
  char const *dot = name ? std::strrchr(name, '.') : nullptr;
  return dot ? dot + 1 : name;
}
}  // namespace detail

template <class Self>
struct Interface : public virtual CountedObject {
  Class const &getClass() const override { return Self::m_class; }
  Object *clone() const override { detail::throwInterfaceClone(Self::Tag.getName()); }
  /// Interfaces cannot be instantiated.
  static Self *newInstance() { detail::throwInterfaceInstance(Self::Tag.getName()); }

 protected:
  Interface() = default;
  ~Interface() override = default;

  void *_SeekClassIdentity(ClassTag const &tag) const override {
    if (tag.getId() == Self::Tag.getId()) return const_cast<Self *>(static_cast<Self const *>(this));
    if (tag.getId() == CountedObject::Tag.getId())
      return const_cast<CountedObject *>(static_cast<CountedObject const *>(this));
    return this->Object::_SeekClassIdentity(tag);
  }
  void AddToLeakDetector() override {
    Self::m_leakDetector.Add(dynamic_cast<void *>(this), detail::shortClassName(Self::Tag.getName()));
  }
  void RemoveFromLeakDetector() override { Self::m_leakDetector.Sub(dynamic_cast<void *>(this)); }
};

}  // namespace quarn

/// Inside `struct iX : quarn::Interface<iX>`: the statics every interface has.
#define QUARN_INTERFACE(iX)                    \
 public:                                       \
  static ::quarn::ClassTagDecl const Tag;      \
  static ::quarn::ClassImp<iX> m_class;        \
  static ::quarn::LeakDetector m_leakDetector; \
                                               \
 protected:                                    \
  iX() = default;                              \
  ~iX() override = default;                    \
                                               \
 public:

/// An interface that carries only the glue (its operations come later).
#define QUARN_DECLARE_INTERFACE(iX)                     \
  struct QUARN_API iX : public ::quarn::Interface<iX> { \
    QUARN_INTERFACE(iX)                                 \
  }

/// In one source file: the definitions of the statics of iX, named
/// "Marlix.interface.iX", or the class name given as a second argument.
#define QUARN_DEFINE_INTERFACE(iX, ...)                                                                       \
  ::quarn::ClassTagDecl const iX::Tag(QUARN_DETAIL_FIRST(__VA_ARGS__ __VA_OPT__(, ) "Marlix.interface." #iX)); \
  ::quarn::ClassImp<iX> iX::m_class;                                                                          \
  ::quarn::LeakDetector iX::m_leakDetector(#iX)
#define QUARN_DETAIL_FIRST(first, ...) first
