// StringComparator.h - element equality and order of the string arrays
//
// Strings are equal when they hold the same code units; a null string equals
// only a null string, so null and empty stay distinct. Order: a null string
// before any other; otherwise the first differing unit decides (16-bit units
// compared unsigned) and a proper prefix is smaller. equalNoCase folds only
// the ASCII letters A-Z to a-z before comparing; every other unit must match
// exactly. Stateless.
#pragma once

#include <quarnCore/BaseString.h>

namespace quarn {

struct StringComparator {
  using String = BaseString<unsigned short>;

  static bool equal(String const &a, String const &b) noexcept { return a == b; }

  /// For two strings that are not equal: -1 when `a` is smaller, else 1.
  static int order(String const &a, String const &b) noexcept {
    if (a.isNull() || b.isNull()) return a.isNull() ? -1 : 1;
    unsigned short const *p = a.getBuffer();
    unsigned short const *q = b.getBuffer();
    unsigned int n = a.getLength() < b.getLength() ? a.getLength() : b.getLength();
    for (unsigned int i = 0; i < n; ++i)
      if (p[i] != q[i]) return p[i] < q[i] ? -1 : 1;
    return a.getLength() < b.getLength() ? -1 : 1;
  }

  /// Equality after folding A-Z to a-z; `text` is NUL-terminated, null matches only a null string.
  static bool equalNoCase(String const &a, unsigned short const *text) noexcept {
    unsigned short const *p = a.getBuffer();
    if (!p || !text) return !p && !text;
    unsigned int n = a.getLength();
    for (unsigned int i = 0; i < n; ++i)
      if (!text[i] || fold(p[i]) != fold(text[i])) return false;
    return text[n] == 0;
  }

 private:
  static unsigned short fold(unsigned short u) noexcept {
    return u >= 'A' && u <= 'Z' ? static_cast<unsigned short>(u + ('a' - 'A')) : u;
  }
};

}  // namespace quarn
