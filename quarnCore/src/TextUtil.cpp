// TextUtil.cpp - the readers and writers of TextUtil.h over 8-bit and UTF-16 text
//
// One template per reader serves both unit types. Numbers are recognised here
// (blanks, sign, the run of characters a number can hold) and converted by
// std::from_chars; UTF-16 runs are copied to 8-bit characters first, which is
// exact because a run holds ASCII only. The throwing forms raise their
// exceptions from one cold function.
#include <quarnCore/TextUtil.h>

#include <algorithm>
#include <bit>
#include <charconv>
#include <climits>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <system_error>
#include <type_traits>

#include <quarnCore/Exception.h>

namespace quarn::util {

namespace {

template <class T>
constexpr unsigned int unitOf(T c) noexcept {
  return static_cast<std::make_unsigned_t<T>>(c);
}

template <class T>
bool isBlank(T c) noexcept {
  unsigned int u = unitOf(c);
  return u == ' ' || u == '\t' || u == '\r' || u == '\n' || u == 0xA0;
}

template <class T>
bool isDigit(T c) noexcept {
  unsigned int u = unitOf(c);
  return u >= '0' && u <= '9';
}

template <class T>
bool isAsciiLetter(T c) noexcept {
  unsigned int u = unitOf(c) | 0x20u;  // folds ASCII upper case onto lower case
  return u >= 'a' && u <= 'z';
}

template <class T>
T const *skipBlanks(T const *p) noexcept {
  while (isBlank(*p)) ++p;
  return p;
}

/// Whether `p` is where the text ends: `last` for a counted text, else the terminator.
template <class T>
bool atEnd(T const *p, T const *last) noexcept {
  return last ? p == last : *p == 0;
}

/// A run of ASCII units seen as 8-bit characters, for std::from_chars. 8-bit
/// text is used where it stands; UTF-16 text is copied (into the object for
/// short runs).
class CharRun {
 public:
  CharRun(char const *first, char const *last) noexcept : m_first(first), m_last(last) {}
  CharRun(unsigned short const *first, unsigned short const *last) {
    std::size_t n = static_cast<std::size_t>(last - first);
    char *p = m_local;
    if (n > sizeof m_local) {
      m_heap.resize(n);
      p = m_heap.data();
    }
    for (std::size_t i = 0; i < n; ++i) p[i] = static_cast<char>(first[i]);
    m_first = p;
    m_last = p + n;
  }
  CharRun(CharRun const &) = delete;
  CharRun &operator=(CharRun const &) = delete;

  char const *begin() const noexcept { return m_first; }
  char const *end() const noexcept { return m_last; }

 private:
  char const *m_first;
  char const *m_last;
  char m_local[64];
  std::string m_heap;
};

enum class Read { Nothing, Value, OutOfRange };

template <class T>
Read readInteger(T const *text, int &value, T const *&stop) {
  T const *p = skipBlanks(text);
  T const *from = p;  // from_chars reads '-' itself but not '+'
  if (*p == '-')
    ++p;
  else if (*p == '+')
    from = ++p;
  T const *digits = p;
  while (isDigit(*p)) ++p;
  if (p == digits) {
    value = 0;
    stop = text;
    return Read::Nothing;
  }
  CharRun run(from, p);
  stop = p;
  if (std::from_chars(run.begin(), run.end(), value).ec == std::errc::result_out_of_range) {
    value = *from == '-' ? INT_MIN : INT_MAX;
    return Read::OutOfRange;
  }
  return Read::Value;
}

/// Whether a decimal number that from_chars found out of range is too large
/// (rather than too small) for a double: the sign of its decimal order.
bool exceedsDouble(char const *p, char const *last) noexcept {
  if (p != last && *p == '-') ++p;
  long long order = 0;
  bool significant = false;
  for (; p != last && isDigit(*p); ++p) {
    if (significant || *p != '0') {
      significant = true;
      ++order;
    }
  }
  if (p != last && *p == '.') {
    for (++p; p != last && isDigit(*p); ++p) {
      if (significant) continue;
      if (*p == '0')
        --order;
      else
        significant = true;
    }
  }
  if (p != last && (*p | 0x20) == 'e') {
    if (++p != last && *p == '+') ++p;
    // The order counts digits of the text, far from LLONG_MAX / 2, so an
    // exponent held to that bound cannot overflow the sum.
    long long exponent = 0;
    if (std::from_chars(p, last, exponent).ec == std::errc::result_out_of_range)
      exponent = *p == '-' ? -LLONG_MAX / 2 : LLONG_MAX / 2;
    order += std::clamp(exponent, -LLONG_MAX / 2, LLONG_MAX / 2);
  }
  return order > 0;
}

template <class T>
bool isNumberChar(T c) noexcept {
  unsigned int u = unitOf(c);
  return isDigit(c) || isAsciiLetter(c) || u == '.' || u == '+' || u == '-';
}

template <class T>
Read readDouble(T const *text, double &value, T const *&stop) {
  T const *p = skipBlanks(text);
  T const *from = p;
  if (*p == '-')
    ++p;
  else if (*p == '+')
    from = ++p;
  if (*p != '-' && *p != '+') {
    while (isNumberChar(*p)) ++p;
    CharRun run(from, p);
    double parsed = 0;
    auto [ptr, ec] = std::from_chars(run.begin(), run.end(), parsed, std::chars_format::general);
    if (ec != std::errc::invalid_argument) {
      stop = from + (ptr - run.begin());
      if (ec == std::errc{}) {
        value = parsed;
        return Read::Value;
      }
      bool huge = exceedsDouble(run.begin(), ptr);
      value = std::copysign(huge ? std::numeric_limits<double>::infinity() : 0.0, *from == '-' ? -1.0 : 1.0);
      return huge ? Read::OutOfRange : Read::Value;
    }
  }
  value = 0;
  stop = text;
  return Read::Nothing;
}

template <class T>
Read readBoolean(T const *text, bool &value, T const *&stop) {
  static constexpr struct {
    char const *word;
    bool value;
  } kWords[] = {{"true", true}, {"false", false}, {"yes", true}, {"no", false},
                {"on", true},   {"off", false},   {"1", true},   {"0", false}};
  T const *word = skipBlanks(text);
  T const *p = word;
  char lower[5];
  for (; isDigit(*p) || isAsciiLetter(*p); ++p)
    if (p - word < 5) lower[p - word] = static_cast<char>(unitOf(*p) | (isDigit(*p) ? 0u : 0x20u));
  if (auto length = static_cast<std::size_t>(p - word); length <= 5) {
    std::string_view seen(lower, length);
    for (auto const &w : kWords) {
      if (seen == w.word) {
        value = w.value;
        stop = p;
        return Read::Value;
      }
    }
  }
  value = false;
  stop = text;
  return Read::Nothing;
}

enum class Kind { Integer, Double, Boolean };

/// The text as a message shows it: UTF-16, cut after 80 units with "...".
template <class T>
BaseString<unsigned short> quoteText(T const *text) {
  BaseString<unsigned short> quoted;
  if (!text) return quoted;
  constexpr unsigned int kMaxUnits = 80;
  quoted.reserve(kMaxUnits + 3);
  unsigned int n = 0;
  for (; text[n] && n < kMaxUnits; ++n) quoted.append(static_cast<unsigned short>(unitOf(text[n])));
  if (text[n]) quoted.appendAscii("...");
  return quoted;
}

[[noreturn, gnu::cold]] void throwReadError(Kind kind, bool outOfRange, BaseString<unsigned short> const &quoted) {
  unsigned short const *q = quoted.getBuffer();
  if (outOfRange) {
    if (kind == Kind::Integer) throw Exception("Integer out of range: '%ls'", q);
    throw Exception("Double out of range: '%ls'", q);
  }
  switch (kind) {
    case Kind::Integer:
      throw Exception("Cannot convert '%ls' to an integer", q);
    case Kind::Double:
      throw Exception("Cannot convert '%ls' to a double", q);
    case Kind::Boolean:
      break;
  }
  throw Exception("Cannot convert '%ls' to a boolean", q);
}

template <class V, class T>
using Reader = Read (*)(T const *, V &, T const *&);

/// One reader call with the end-pointer and whole-text rules of the header.
/// `last` is the end of a counted text, nullptr for a NUL-terminated one.
template <class V, class T>
V readValue(Reader<V, T> read, Kind kind, T const *text, std::type_identity_t<T> const *last, T const **end) {
  if (!text) {
    if (!end) throwReadError(kind, false, BaseString<unsigned short>());
    *end = text;
    return V();
  }
  V value;
  T const *stop;
  Read result = read(text, value, stop);
  if (end) {
    *end = stop;
    return value;
  }
  if (result == Read::Nothing || !atEnd(skipBlanks(stop), last)) [[unlikely]]
    throwReadError(kind, false, quoteText(text));
  if (result == Read::OutOfRange) [[unlikely]]
    throwReadError(kind, true, quoteText(text));
  return value;
}

template <class T>
bool isSeparator(T c) noexcept {
  return isBlank(c) || c == ',';
}

template <class V, class T>
bool readList(Reader<V, T> read, T const *text, std::type_identity_t<T> const *last, Array<V> &out, bool append) {
  if (!append) out.resize(0);
  if (!text) return true;
  for (T const *p = text;;) {
    while (isSeparator(*p)) ++p;
    if (atEnd(p, last)) return true;
    V value;
    T const *stop;
    if (read(p, value, stop) != Read::Value) return false;
    if (!isSeparator(*stop) && !atEnd(stop, last)) return false;
    out.append(value);
    p = stop;
  }
}

template <class T>
T const *lastOf(BaseString<T> const &text) noexcept {
  return text.isNull() ? nullptr : text.getBuffer() + text.getLength();
}

unsigned int formatDouble(double value, char (&text)[32]) noexcept {
  if (std::isnan(value)) {
    std::char_traits<char>::copy(text, "nan", 3);
    return 3;
  }
  return static_cast<unsigned int>(std::to_chars(text, text + sizeof text, value).ptr - text);
}

template <class T>
unsigned int writeDouble(double value, T *buffer, unsigned int size) noexcept {
  if (!buffer || size == 0) return 0;
  char text[32];
  unsigned int n = formatDouble(value, text);
  if (n > size - 1) n = size - 1;
  for (unsigned int i = 0; i < n; ++i) buffer[i] = static_cast<T>(text[i]);
  buffer[n] = 0;
  return n;
}

}  // namespace

using Wide = unsigned short;
using WideString = BaseString<unsigned short>;
using NarrowString = BaseString<char>;

int stringToInteger(Wide const *text, Wide const **end) {
  return readValue(readInteger<Wide>, Kind::Integer, text, nullptr, end);
}
int stringToInteger(char const *text, char const **end) {
  return readValue(readInteger<char>, Kind::Integer, text, nullptr, end);
}
int stringToInteger(WideString const &text, Wide const **end) {
  return readValue(readInteger<Wide>, Kind::Integer, text.getBuffer(), lastOf(text), end);
}
int stringToInteger(NarrowString const &text, char const **end) {
  return readValue(readInteger<char>, Kind::Integer, text.getBuffer(), lastOf(text), end);
}

double stringToDouble(Wide const *text, Wide const **end) {
  return readValue(readDouble<Wide>, Kind::Double, text, nullptr, end);
}
double stringToDouble(char const *text, char const **end) {
  return readValue(readDouble<char>, Kind::Double, text, nullptr, end);
}
double stringToDouble(WideString const &text, Wide const **end) {
  return readValue(readDouble<Wide>, Kind::Double, text.getBuffer(), lastOf(text), end);
}
double stringToDouble(NarrowString const &text, char const **end) {
  return readValue(readDouble<char>, Kind::Double, text.getBuffer(), lastOf(text), end);
}

bool stringToBoolean(Wide const *text, Wide const **end) {
  return readValue(readBoolean<Wide>, Kind::Boolean, text, nullptr, end);
}
bool stringToBoolean(char const *text, char const **end) {
  return readValue(readBoolean<char>, Kind::Boolean, text, nullptr, end);
}
bool stringToBoolean(WideString const &text, Wide const **end) {
  return readValue(readBoolean<Wide>, Kind::Boolean, text.getBuffer(), lastOf(text), end);
}
bool stringToBoolean(NarrowString const &text, char const **end) {
  return readValue(readBoolean<char>, Kind::Boolean, text.getBuffer(), lastOf(text), end);
}

bool stringToIntegerArray(Wide const *text, Array<int> &out, bool append) {
  return readList(readInteger<Wide>, text, nullptr, out, append);
}
bool stringToIntegerArray(char const *text, Array<int> &out, bool append) {
  return readList(readInteger<char>, text, nullptr, out, append);
}
bool stringToIntegerArray(WideString const &text, Array<int> &out, bool append) {
  return readList(readInteger<Wide>, text.getBuffer(), lastOf(text), out, append);
}
bool stringToIntegerArray(NarrowString const &text, Array<int> &out, bool append) {
  return readList(readInteger<char>, text.getBuffer(), lastOf(text), out, append);
}

bool stringToDoubleArray(Wide const *text, Array<double> &out, bool append) {
  return readList(readDouble<Wide>, text, nullptr, out, append);
}
bool stringToDoubleArray(char const *text, Array<double> &out, bool append) {
  return readList(readDouble<char>, text, nullptr, out, append);
}
bool stringToDoubleArray(WideString const &text, Array<double> &out, bool append) {
  return readList(readDouble<Wide>, text.getBuffer(), lastOf(text), out, append);
}
bool stringToDoubleArray(NarrowString const &text, Array<double> &out, bool append) {
  return readList(readDouble<char>, text.getBuffer(), lastOf(text), out, append);
}

bool stringToBooleanArray(Wide const *text, Array<bool> &out, bool append) {
  return readList(readBoolean<Wide>, text, nullptr, out, append);
}
bool stringToBooleanArray(char const *text, Array<bool> &out, bool append) {
  return readList(readBoolean<char>, text, nullptr, out, append);
}
bool stringToBooleanArray(WideString const &text, Array<bool> &out, bool append) {
  return readList(readBoolean<Wide>, text.getBuffer(), lastOf(text), out, append);
}
bool stringToBooleanArray(NarrowString const &text, Array<bool> &out, bool append) {
  return readList(readBoolean<char>, text.getBuffer(), lastOf(text), out, append);
}

unsigned int doubleToString(double value, unsigned short *buffer, unsigned int size) {
  return writeDouble(value, buffer, size);
}

unsigned int doubleToString(double value, char *buffer, unsigned int size) { return writeDouble(value, buffer, size); }

BaseString<unsigned short> doubleToString(double value) {
  unsigned short buffer[32];
  unsigned int n = writeDouble(value, buffer, 32);
  return BaseString<unsigned short>(buffer, n);
}

unsigned int doubleHashCode(double value) noexcept {
  auto bits = std::bit_cast<std::uint64_t>(value);
  return static_cast<unsigned int>(bits ^ (bits >> 32));
}

}  // namespace quarn::util
