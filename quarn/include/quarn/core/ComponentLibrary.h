// ComponentLibrary.h - the table of classes that one component library serves
//
// A component library lists its classes once, in one static ComponentLibrary,
// and its entry point asks that table for instances:
//
//   namespace {
//   quarn::ComponentLibrary const library{
//       quarn::componentClass<Greeter>("Says hello"),
//       quarn::componentClass<Counter>("Counts calls")};
//   }
//   extern "C" QUARN_COMPONENT_EXPORT quarn::DynamicObject *DllCreateInstance(char const *className) {
//     return library.createInstance(className);
//   }
//
// The table fills the process's factory map (CZedLibraryUtils) with its
// classes on first use, each with this library's path as its server, and
// removes exactly its own entries when the library unloads. createInstance
// answers only for the names in its table (null for any other name), so an
// entry point is never made to create a class its library does not list.
// registerClasses writes the registration files that name this library, for
// installers.
//
// The table may be constructed before the classes' own statics (static
// initialisation order across files is unspecified): it keeps only their
// addresses and reads them on first use, when the library is fully loaded.
#pragma once

#include <quarn/core/CZedLibraryUtils.h>
#include <quarn/core/ClassTag.h>
#include <quarn/core/Export.h>
#include <quarnCore/Array.h>

#include <initializer_list>
#include <mutex>

/// Exports a component library's entry point with C linkage.
#define QUARN_COMPONENT_EXPORT __attribute__((visibility("default")))

namespace quarn {

class DynamicObject;

/// One row of a ComponentLibrary; make it with componentClass<T>().
struct ComponentClass {
  ClassTag const *tag;  // T::Tag, read on first use
  char const *description;
  CZedLibraryUtils::CreateFunction create;
  bool proxy;
};

/// The row of class T (which provides T::Tag and T::newInstance()).
template <class T>
ComponentClass componentClass(char const *description, bool proxy = false) {
  return {&T::Tag, description, []() -> DynamicObject * { return T::newInstance(); }, proxy};
}

class QUARN_API ComponentLibrary {
 public:
  ComponentLibrary(std::initializer_list<ComponentClass> classes);
  /// Removes this library's entries from the factory map.
  ~ComponentLibrary();
  ComponentLibrary(ComponentLibrary const &) = delete;
  ComponentLibrary &operator=(ComponentLibrary const &) = delete;

  /// A new instance of one of this library's classes (count 0), or null when
  /// `className` is not one of them.
  DynamicObject *createInstance(char const *className) const;
  /// The registration entries of this library's classes (server: this library).
  Array<CZedClassInfo> getClassInfo() const;
  /// Writes the registration files of this library's classes.
  void registerClasses() const;
  /// Removes the registration files that name this library; returns how many.
  unsigned int unregisterClasses() const;

 private:
  void populate() const;

  Array<ComponentClass> m_classes;
  mutable std::once_flag m_populated;
};

}  // namespace quarn
