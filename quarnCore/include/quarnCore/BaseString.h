// BaseString.h - the owned, NUL-terminated string of quarn
//
// BaseString<unsigned short> holds UTF-16 code units, BaseString<char> 8-bit
// characters. A null string (no buffer) and an empty string (a buffer holding
// only the terminator) are different values: null equals only null and sorts
// before every non-null string. Otherwise strings compare by the difference of
// the first differing units, 16-bit units as unsigned numbers and 8-bit
// characters as signed ones; a proper prefix sorts first.
//
// Capacity counts units including the terminator and is always a power of two
// (at least 16), so a buffer can be kept and reused by pooled values.
// Allocation failure throws MemoryException; the string is left unchanged.
#pragma once

#include <cstdlib>
#include <cstring>
#include <type_traits>
#include <utility>

#include <quarnCore/Throw.h>

namespace quarn {

template <class T>
class BaseString {
  static_assert(std::is_same_v<T, char> || std::is_same_v<T, unsigned short>,
                "BaseString holds 8-bit characters or UTF-16 code units");

 public:
  using value_type = T;

  /// The null string.
  BaseString() noexcept = default;
  /// Copies a NUL-terminated text; a null pointer gives the null string.
  BaseString(T const *text) {  // NOLINT(google-explicit-constructor)
    if (text) assign(text, lengthOf(text));
  }
  /// Copies `count` units (the text need not be terminated).
  BaseString(T const *text, unsigned int count) {
    if (text) assign(text, count);
  }
  /// Widens 8-bit text byte by byte: each byte becomes the unit of the same number.
  BaseString(char const *text)  // NOLINT(google-explicit-constructor)
    requires(!std::is_same_v<T, char>)
  {
    if (!text) return;
    unsigned int n = static_cast<unsigned int>(std::strlen(text));
    resize(n);
    for (unsigned int i = 0; i < n; ++i) m_buffer[i] = static_cast<unsigned char>(text[i]);
  }
  BaseString(BaseString const &other) {
    if (other.m_buffer) assign(other.m_buffer, other.m_length);
  }
  BaseString(BaseString &&other) noexcept
      : m_buffer(std::exchange(other.m_buffer, nullptr)),
        m_length(std::exchange(other.m_length, 0u)),
        m_capacity(std::exchange(other.m_capacity, 0u)) {}
  BaseString &operator=(BaseString const &other) {
    if (this != &other) {
      if (other.m_buffer)
        assign(other.m_buffer, other.m_length);
      else
        setNull();
    }
    return *this;
  }
  BaseString &operator=(BaseString &&other) noexcept {
    if (this != &other) {
      std::free(m_buffer);
      m_buffer = std::exchange(other.m_buffer, nullptr);
      m_length = std::exchange(other.m_length, 0u);
      m_capacity = std::exchange(other.m_capacity, 0u);
    }
    return *this;
  }
  BaseString &operator=(T const *text) {
    if (text)
      assign(text, lengthOf(text));
    else
      setNull();
    return *this;
  }
  ~BaseString() { std::free(m_buffer); }

  /// The NUL-terminated units, or nullptr for the null string.
  T const *getBuffer() const noexcept { return m_buffer; }
  T *getBuffer() noexcept { return m_buffer; }
  /// Units without the terminator; 0 for the null string.
  unsigned int getLength() const noexcept { return m_length; }
  /// Units the buffer holds, terminator included (0 for the null string).
  unsigned int getCapacity() const noexcept { return m_capacity; }
  bool isNull() const noexcept { return m_buffer == nullptr; }
  bool isEmpty() const noexcept { return m_length == 0; }

  /// Checked read of unit `i` (InvalidIndexException past the end).
  T operator[](unsigned int i) const {
    if (i >= m_length) [[unlikely]]
      detail::throwInvalidIndex(i, m_length - 1);
    return m_buffer[i];
  }

  /// Frees the buffer: the string becomes null.
  void setNull() noexcept {
    std::free(m_buffer);
    m_buffer = nullptr;
    m_length = m_capacity = 0;
  }
  /// Length 0, buffer kept; a null string stays null.
  void empty() noexcept {
    if (m_buffer) {
      m_buffer[0] = 0;
      m_length = 0;
    }
  }
  /// Makes room for `units` units plus the terminator (never shrinks).
  void reserve(unsigned int units) {
    if (m_buffer && units < m_capacity) return;
    if (units >= 0x7FFFFFFFu) [[unlikely]]
      detail::throwMemory();
    unsigned int cap = 16;
    while (cap <= units) cap *= 2;
    T *p = static_cast<T *>(std::realloc(m_buffer, sizeof(T) * cap));
    if (!p) [[unlikely]]
      detail::throwMemory();
    if (!m_buffer) p[0] = 0;
    m_buffer = p;
    m_capacity = cap;
  }
  /// Sets the length to `units`; new units are 0; the buffer is terminated.
  void resize(unsigned int units) {
    reserve(units);
    if (units > m_length) std::memset(m_buffer + m_length, 0, sizeof(T) * (units - m_length));
    m_length = units;
    m_buffer[units] = 0;
  }
  /// Replaces the contents with `count` units of `text` (which may alias this string).
  void assign(T const *text, unsigned int count) {
    if (m_buffer && text >= m_buffer && text < m_buffer + m_capacity) {
      std::memmove(m_buffer, text, sizeof(T) * count);
      m_length = count;
      m_buffer[count] = 0;
      return;
    }
    reserve(count);
    if (count) std::memcpy(m_buffer, text, sizeof(T) * count);
    m_length = count;
    m_buffer[count] = 0;
  }
  /// Appends `count` units; appending to the null string makes it non-null.
  BaseString &append(T const *text, unsigned int count) {
    if (count == 0) {
      if (!m_buffer) reserve(0);
      return *this;
    }
    if (m_buffer && text >= m_buffer && text < m_buffer + m_capacity) {
      BaseString copy(text, count);
      return append(copy.m_buffer, count);
    }
    if (m_length + count < m_length) [[unlikely]]
      detail::throwMemory();
    reserve(m_length + count);
    std::memcpy(m_buffer + m_length, text, sizeof(T) * count);
    m_length += count;
    m_buffer[m_length] = 0;
    return *this;
  }
  BaseString &append(T unit) { return append(&unit, 1); }
  BaseString &append(BaseString const &other) {
    return other.m_buffer ? append(other.m_buffer, other.m_length) : *this;
  }
  BaseString &append(T const *text) { return text ? append(text, lengthOf(text)) : *this; }
  /// Appends 8-bit text widened byte by byte.
  BaseString &appendAscii(char const *text)
    requires(!std::is_same_v<T, char>)
  {
    while (text && *text) append(static_cast<T>(static_cast<unsigned char>(*text++)));
    return *this;
  }
  BaseString &operator+=(BaseString const &other) { return append(other); }
  BaseString &operator+=(T const *text) { return append(text); }
  BaseString &operator+=(T unit) { return append(unit); }

  /// Takes over the buffer of `other`, which becomes null.
  void attach(BaseString &other) noexcept {
    if (this != &other) *this = std::move(other);
  }
  void swap(BaseString &other) noexcept {
    std::swap(m_buffer, other.m_buffer);
    std::swap(m_length, other.m_length);
    std::swap(m_capacity, other.m_capacity);
  }

  /// Null sorts first; else difference of the first differing units (see file comment).
  int compare(BaseString const &other) const noexcept { return compare(m_buffer, other.m_buffer); }
  static int compare(T const *a, T const *b) noexcept {
    if (!a || !b) return a ? 1 : (b ? -1 : 0);
    for (;; ++a, ++b) {
      if (*a != *b || !*a) return static_cast<int>(unitValue(*a)) - static_cast<int>(unitValue(*b));
    }
  }
  bool operator==(BaseString const &other) const noexcept {
    if (!m_buffer || !other.m_buffer) return m_buffer == other.m_buffer;
    return m_length == other.m_length && std::memcmp(m_buffer, other.m_buffer, sizeof(T) * m_length) == 0;
  }
  bool operator!=(BaseString const &other) const noexcept { return !(*this == other); }
  bool operator<(BaseString const &other) const noexcept { return compare(other) < 0; }

  /// The 31-polynomial over the units (8-bit characters taken unsigned); 0 for null.
  unsigned int hashCode() const noexcept {
    unsigned int h = 0;
    for (unsigned int i = 0; i < m_length; ++i) h = h * 31u + static_cast<std::make_unsigned_t<T>>(m_buffer[i]);
    return h;
  }

  /// Length of a NUL-terminated text.
  static unsigned int lengthOf(T const *text) noexcept {
    if constexpr (std::is_same_v<T, char>) {
      return static_cast<unsigned int>(std::strlen(text));
    } else {
      unsigned int n = 0;
      while (text[n]) ++n;
      return n;
    }
  }

 private:
  static int unitValue(T unit) noexcept {
    if constexpr (std::is_same_v<T, char>)
      return static_cast<signed char>(unit);
    else
      return unit;
  }

  T *m_buffer = nullptr;
  unsigned int m_length = 0;
  unsigned int m_capacity = 0;
};

using WString = BaseString<unsigned short>;
using CString = BaseString<char>;

}  // namespace quarn
