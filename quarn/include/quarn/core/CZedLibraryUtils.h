// CZedLibraryUtils.h - the component-library side: registration and the factory map
//
// What a component library needs besides its classes: writing and removing
// the registration files that name it (RegisterLibraryClasses /
// UnregisterLibraryClasses), finding its own file (SetLibraryIdentifier), and
// the factory map from which its entry point DllCreateInstance makes
// instances (CreateClassInstance).
//
// The factory map is one per process, like the class-tag registry: a class
// name denotes one class in a process, whichever library serves it. Each
// entry holds the class's CZedClassInfo (its `server` is the library that
// holds the entry's creation function) and the creation function, and
// remembers its owner (the ComponentLibrary that added it), so that a library
// that unloads removes exactly its own entries. Most libraries never call the
// map directly: ComponentLibrary fills and empties it for them.
//
// LockLibrary keeps a process-wide flag that a library consults before it
// lets itself be unloaded (CanUnloadLibrary). The map is guarded by a lock;
// creation functions run outside it. Calls made after libquarn has begun to
// unload are ignored (lookups find nothing).
#pragma once

#include <quarn/core/CZedClassInfo.h>
#include <quarn/core/Export.h>
#include <quarnCore/Array.h>
#include <quarnCore/BaseString.h>

namespace quarn {

class DynamicObject;

class QUARN_API CZedLibraryUtils {
 public:
  /// Makes a new instance of one class (count 0: the caller takes the first reference).
  using CreateFunction = DynamicObject *(*)();

  /// Writes the registration file of every class of `classes`, naming
  /// `libraryPath` as the server (or, when it is null or empty, each class's
  /// own `server`). All class names are checked before anything is written; a
  /// write that fails stops the run, and the classes written before it stay
  /// registered.
  static void RegisterLibraryClasses(Array<CZedClassInfo> const &classes, char const *libraryPath);
  /// Removes the registration file in use of every class of `classes` that
  /// names `libraryPath` as its server (any server when null); classes that
  /// are not registered, or registered to another library, are left alone.
  /// Returns how many files were removed.
  static unsigned int UnregisterLibraryClasses(Array<CZedClassInfo> const &classes, char const *libraryPath);
  /// The absolute path of the library (or program) whose code or data holds
  /// `address`; "Failed to find the library that holds address %p." otherwise.
  static void SetLibraryIdentifier(void *address, BaseString<char> &identifier);

  /// A new instance of `className` from the factory map; throws
  /// "Failed to find information for class %hs\n" when the map has no entry.
  static DynamicObject *CreateClassInstance(char const *className);
  /// Copies the entry of `className` into `info`; false when there is none.
  static bool FindFactoryComponent(char const *className, CZedClassInfo &info);
  /// The entries added by `owner` (every entry when null), sorted by class name.
  static Array<CZedClassInfo> GetFactoryComponents(void const *owner = nullptr);

  /// Makes the map ready; calling it again does nothing.
  static void InitFactoryComponentMap();
  /// Adds (or replaces) the entry of `info.progid`. An empty `info.server` is
  /// first set to the library that holds `create`. Names are matched as class
  /// tags are: ignoring the case of ASCII letters.
  static void PopulateFactoryComponentMap(CZedClassInfo &info, CreateFunction create, void const *owner = nullptr);
  /// Removes every entry and frees the map.
  static void ClearFactoryComponentMap();
  /// Removes the entries added by `owner`.
  static void ClearFactoryComponentMap(void const *owner);

  /// Sets or clears the process-wide lock that keeps libraries loaded.
  static void LockLibrary(bool lock);
  static bool IsLibraryLocked();
  /// Whether a library may be unloaded now: true unless the lock is set.
  static bool CanUnloadLibrary();

 private:
  struct LibraryData;
  static LibraryData m_libData;
};

}  // namespace quarn
