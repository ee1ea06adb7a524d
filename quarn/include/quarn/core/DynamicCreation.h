// DynamicCreation.h - creating classes by name from component libraries
//
// A class name that no class object of the process implements is served by a
// component library, found through the class's registration file
// (CClassRegistryFile.h). createInstance reads the file, loads the library it
// names (once per process; it is never unloaded, since the instances it makes
// run its code) and calls the library's entry point
//
//   extern "C" quarn::DynamicObject *DllCreateInstance(char const *className);
//
// with the class name; the entry point returns a new instance or null (a
// library may also describe itself with DllDescribeLibrary, ComponentLibrary.h,
// which the "not registered" message uses to list what it does serve). These
// are the operations Class::getClass / getClassInstance / findClassInstance
// fall back on when no class is bound to a tag.
//
// Set QUARN_TRACE_CLASSES=1 in the environment to see each step of finding a
// class on stderr (folders, files, libraries, what the entry point answered).
//
// Failures: a class without a registration file is not an error (null, false);
// a file that cannot be read, or that names a library which cannot be loaded
// or has no entry point, throws an Exception naming the class and the file.
#pragma once

#include <quarn/core/ClassTag.h>
#include <quarn/core/Export.h>
#include <quarnCore/BaseString.h>

#include <string>
#include <vector>

namespace quarn {

class DynamicObject;

/// A new instance of the class of `tag` made by the component library that
/// serves it, or null when no registration file names the class (or the
/// library makes none). Throws "Failed to load library at path %ls.\n%ls" or
/// "Failed to get function ptr for DllCreateInstance.\n%ls", followed by a line
/// naming the class and its registration file, and passes on whatever the
/// library's entry point throws (with the same line).
QUARN_API DynamicObject *createInstance(ClassTag const &tag);
/// createInstance(ClassTag(className)); failures are passed on, annotated
/// "quarn::createInstance(char*): Tessary exception caught".
QUARN_API DynamicObject *createInstance(char const *className);
/// Whether the registration file in use exists for `className`.
QUARN_API bool isClassNameRegistered(char const *className);
/// Reads the registration file of `tag` into `path` (the library, UTF-16) and
/// returns true; false when there is no file. A file that names no library
/// throws "Registration file %ls of class %hs names no library.".
QUARN_API bool ServerPathFromClassName(ClassTag const &tag, BaseString<unsigned short> &path);

namespace detail {
/// Why no object of `tag`'s class could be made, for a person, one sentence a
/// line (UTF-8): with no registration file, the folders searched (and the
/// libquarn they are beside, or the QUARN_CLASSES_PATH they came from); with
/// one, the file and its library, and the classes that library says it
/// serves (when this process loaded it and it describes itself).
QUARN_API std::vector<std::string> explainUnresolved(ClassTag const &tag);
/// Throws "Class %hs not registered." with the lines of explainUnresolved appended.
[[noreturn]] QUARN_API void throwNotRegistered(ClassTag const &tag);
}  // namespace detail

}  // namespace quarn
