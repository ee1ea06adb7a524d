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
//   extern "C" QUARN_COMPONENT_EXPORT quarn::LibraryDescription const *DllDescribeLibrary() {
//     return library.describe();
//   }
//
// DllCreateInstance is required. DllDescribeLibrary is optional: a library
// that exports it tells tools and error messages what it serves (the quarn
// tool's inspect and register --all, and "not registered" errors), each class
// with its description, and which libquarn it was compiled against. A library
// without it keeps working; it just cannot say.
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
#include <quarn/Version.h>
#include <quarnCore/Array.h>

#include <initializer_list>
#include <mutex>

/// Exports a component library's entry point with C linkage.
#define QUARN_COMPONENT_EXPORT __attribute__((visibility("default")))

namespace quarn {

class DynamicObject;

/// One class that a component library serves, as DllDescribeLibrary tells it.
struct DescribedClass {
  char const *className;    // as the library's tag spells it
  char const *description;  // never null ("" for none)
  int proxy;                // nonzero when the library serves it as a proxy
};

/// What DllDescribeLibrary returns: a plain C structure that stays valid
/// while the library is loaded. Fields may be added at the end only; `size`
/// tells a reader which ones the library knows.
struct LibraryDescription {
  unsigned int size;          // sizeof(LibraryDescription) where the library was compiled
  unsigned int quarnVersion;  // QUARN_VERSION of the headers it was compiled with
  unsigned int classCount;
  DescribedClass const *classes;
};

/// The entry point's type: extern "C" quarn::LibraryDescription const *DllDescribeLibrary();
using DescribeLibraryFunction = LibraryDescription const *(*)();

/// What the component library loaded as `handle` (a dlopen handle) says it
/// serves, or null when it exports no DllDescribeLibrary or returns something
/// unusable (null, a size too small, classes missing). What the entry point
/// throws is passed on.
QUARN_API LibraryDescription const *describeLibrary(void *handle);
/// The version of the running libquarn, as QUARN_VERSION counts it.
QUARN_API unsigned int libraryVersion() noexcept;
/// "major.minor.patch" of a QUARN_VERSION number.
QUARN_API BaseString<char> versionText(unsigned int version);

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

  /// The library's self-description, for DllDescribeLibrary: its classes and
  /// the QUARN_VERSION this call was compiled with. Valid while the table lives.
  LibraryDescription const *describe() const { return describeFor(QUARN_VERSION); }
  /// describe() recording `quarnVersion` as the version compiled against.
  LibraryDescription const *describeFor(unsigned int quarnVersion) const;

 private:
  void populate() const;

  Array<ComponentClass> m_classes;
  mutable std::once_flag m_populated;
  mutable std::once_flag m_described;
  mutable Array<DescribedClass> m_describedClasses;
  mutable LibraryDescription m_description{};
};

}  // namespace quarn
