// Exception.h - the exception family thrown by every quarn library
//
// Exception carries one formatted message, held as UTF-16 code units and also
// available as UTF-8 through what(). Messages are built printf-style: "%hs"
// takes a `char const *` (8-bit text, each byte widened to the code unit of
// the same number), "%ls" takes an `unsigned short const *` (UTF-16 text), and
// every other conversion is printf's own. A null text argument prints
// "(null)". Code that passes an exception on may annotate it: each annotation
// is appended to the message as a new line.
#pragma once

#include <cstdarg>
#include <exception>
#include <string>

#include <quarnCore/BaseString.h>
#include <quarnCore/Export.h>
#include <quarnCore/Throw.h>

namespace quarn {

/// Base of every exception thrown by quarn and quarnCore.
class QUARN_CORE_API Exception : public std::exception {
 public:
  /// Formats the message printf-style (see the file comment for %hs / %ls).
  explicit Exception(char const *format, ...);
  Exception(Exception const &) = default;
  Exception &operator=(Exception const &) = default;
  ~Exception() override;

  /// The whole message (with annotation lines) as UTF-8.
  char const *what() const noexcept override;
  /// The whole message (with annotation lines) as UTF-16.
  BaseString<unsigned short> const &getMessage() const noexcept { return m_message; }
  /// Appends `line` to the message as a new line.
  void annotate(BaseString<unsigned short> const &line);
  /// Appends a printf-style formatted line (same conversions as the constructor).
  void annotateFormat(char const *format, ...);

 protected:
  struct NoFormat {};
  /// For subclasses that build their message themselves.
  explicit Exception(NoFormat) {}
  void setMessage(BaseString<unsigned short> message);

 private:
  BaseString<unsigned short> m_message;
  std::string m_utf8;
};

/// An index outside an array or container; carries the bad index and the last
/// valid one (size - 1, which wraps to -1 for an empty container).
class QUARN_CORE_API InvalidIndexException : public Exception {
 public:
  InvalidIndexException(int index, int lastValid);
  ~InvalidIndexException() override;
  int getIndex() const noexcept { return m_index; }
  int getLastValidIndex() const noexcept { return m_lastValid; }

 private:
  int m_index;
  int m_lastValid;
};

/// An operation that the object does not implement; the message names it.
class QUARN_CORE_API NotImplementedException : public Exception {
 public:
  explicit NotImplementedException(char const *what);
  ~NotImplementedException() override;
};

/// A memory allocation failed.
class QUARN_CORE_API MemoryException : public Exception {
 public:
  MemoryException();
  ~MemoryException() override;
};

namespace detail {
/// Formats printf-style with the %hs / %ls extensions into UTF-16.
QUARN_CORE_API BaseString<unsigned short> formatV(char const *format, va_list args);
QUARN_CORE_API BaseString<unsigned short> format(char const *format, ...);
}  // namespace detail

}  // namespace quarn
