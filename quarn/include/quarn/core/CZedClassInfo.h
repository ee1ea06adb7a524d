// CZedClassInfo.h - one class registration: name, description, library, proxy flag
//
// The contents of one registration file: the registered class name
// (`progid`), a free description, the path of the component library that
// implements the class (`server`) and whether that library is a proxy for the
// real implementation. All texts are 8-bit (UTF-8 where they are not ASCII).
// A plain value: copy it, compare it, sort it.
#pragma once

#include <quarn/core/Export.h>
#include <quarnCore/BaseString.h>

namespace quarn {

struct QUARN_API CZedClassInfo {
  CZedClassInfo();
  /// Null texts give empty fields.
  CZedClassInfo(char const *progid, char const *description, char const *server, bool proxy = false);
  CZedClassInfo(CZedClassInfo const &other);
  ~CZedClassInfo();
  CZedClassInfo &operator=(CZedClassInfo const &other);

  /// Orders by progid, then server, then description, then the proxy flag.
  bool operator<(CZedClassInfo const &other) const noexcept;
  /// All four fields equal.
  bool operator==(CZedClassInfo const &other) const noexcept;
  bool operator!=(CZedClassInfo const &other) const noexcept { return !(*this == other); }

  BaseString<char> progid;
  BaseString<char> description;
  BaseString<char> server;
  bool proxy = false;
};

}  // namespace quarn
