// DynamicLibrary.h - a dynamic library opened by path, and its symbols
//
// A thin owner of one dlopen handle: open() loads a library (RTLD_NOW, so a
// library with unresolved symbols fails here and not at the first call),
// getSymbol() looks a name up in it and close() (or the destructor) unloads
// it. Paths may be written with backslashes: open() turns every backslash
// into a slash first.
//
// Failures are not thrown: open() and close() keep a text in the object,
// "Failed to load dynamic library <path>: <system text>" or "Error closing
// dynamic library: <system text>", which getErrorMessage() returns until the
// next failure. Not thread-safe: one owner uses it at a time.
#pragma once

#include <quarn/core/Export.h>
#include <quarnCore/BaseString.h>

namespace quarn {

class QUARN_API DynamicLibrary {
 public:
  /// Opens `path` unless it is null.
  explicit DynamicLibrary(char const *path = nullptr);
  /// Closes the library if it is open.
  ~DynamicLibrary();
  DynamicLibrary(DynamicLibrary const &) = delete;
  DynamicLibrary &operator=(DynamicLibrary const &) = delete;

  /// Closes what is open, then loads `path` with every backslash turned into a
  /// slash. Returns whether a library is open; on failure the error message
  /// says why. A null or empty path fails (it would name the program itself).
  /// The flag is accepted and not used.
  bool open(char const *path, bool = false);
  /// Unloads the library, if one is open.
  void close();
  bool isOpen() const noexcept { return m_module != nullptr; }

  /// The address of `name` in the library; null when it has no such symbol
  /// or when nothing is open (the system is then not asked at all).
  void *getSymbol(char const *name);

  /// The text of the last failure (UTF-16), or null when nothing has failed.
  unsigned short const *getErrorMessage() const noexcept { return m_errorMessage.getBuffer(); }
  /// The path as it was last opened (after the backslash conversion).
  char const *getPath() const noexcept { return m_path.getBuffer(); }

 private:
  /// Keeps `text`, followed by ": " and the system's reason when it gives one.
  void HandleError(unsigned short const *text);

  void *m_module = nullptr;
  BaseString<unsigned short> m_errorMessage;
  BaseString<char> m_path;
};

}  // namespace quarn
