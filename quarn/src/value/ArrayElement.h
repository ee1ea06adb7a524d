// ArrayElement.h - what each element type of the typed arrays brings to ArrayValueImpl
//
// ArrayElement<T> describes one element type: its item class (the scalar that
// stands for one element), the class name used in annotations, how an element
// is taken from a value and converted to each scalar kind, its hash and its
// stream coder. ArrayValueImpl is written once against this description, so a
// concrete array class only adds its identity and what is special about it.
//
// Element conversions (getIthX):
//   int      double widened; int itself; bool != 0; text "%d"
//   double   double itself; int truncated toward zero (out of range or NaN:
//            -2147483648, as DoubleValue); bool unless ordered-equal to 0.0
//            (NaN is true); text util::doubleToString into 32 units
//   string   util::stringToDouble / stringToInteger / stringToBoolean of the
//            text with no end pointer (a text that is no number throws); the
//            text itself
//   bool     1.0 / 0.0; 1 / 0; itself; "true" / "false"
//   byte     widened; the byte 0-255; != 0; "%d"
// A byte takes the low 8 bits of an integer.
//
// Kind is the scalar kind an element is taken as from other values (the
// getter, getIthX and getArray of that kind): int for integers and bytes,
// double, bool, or the text.
#pragma once

#include <charconv>
#include <climits>
#include <cstdint>
#include <initializer_list>

#include <quarn/value/ArrayValue.h>
#include <quarn/value/BooleanValue.h>
#include <quarn/value/ByteCodec.h>
#include <quarn/value/DoubleValue.h>
#include <quarn/value/IntegerValue.h>
#include <quarn/value/StringValue.h>
#include <quarnCore/Array.h>
#include <quarnCore/BaseString.h>
#include <quarnCore/TextUtil.h>

namespace quarn::detail {

using WString = BaseString<unsigned short>;

/// Throws "ArrayValueImpl::get, array value was not found".
[[noreturn, gnu::cold]] void failNotFound();

/// h = h * 31 + x over the elements (unsigned 32-bit, wrapping), computed in
/// eight independent lanes so that the multiplications overlap: lane j
/// gathers x[j], x[j + 8], ... as lane = lane * 31^8 + x, and the lanes then
/// combine by Horner's rule with 31, which weights lane j by 31^(7 - j). The
/// elements left after the last full group of eight continue the plain loop.
/// Same value as the plain loop, for every length. The lanes are separate
/// scalars on purpose: without a vector multiply of 32-bit lanes (SSE2 has
/// none) a vectorised form is slower than eight multiplications in flight.
template <class E>
unsigned int polynomialHash(E const *p, unsigned int count) noexcept {
  constexpr std::uint32_t k = [] {
    std::uint32_t power = 1;
    for (int i = 0; i < 8; ++i) power *= 31u;
    return power;
  }();
  auto x = [](E e) { return static_cast<std::uint32_t>(e); };
  std::uint32_t a0 = 0, a1 = 0, a2 = 0, a3 = 0, a4 = 0, a5 = 0, a6 = 0, a7 = 0;
  E const *q = p;
  for (E const *groups = p + (count & ~7u); q != groups; q += 8) {
    a0 = a0 * k + x(q[0]);
    a1 = a1 * k + x(q[1]);
    a2 = a2 * k + x(q[2]);
    a3 = a3 * k + x(q[3]);
    a4 = a4 * k + x(q[4]);
    a5 = a5 * k + x(q[5]);
    a6 = a6 * k + x(q[6]);
    a7 = a7 * k + x(q[7]);
  }
  std::uint32_t h = a0;
  for (std::uint32_t lane : {a1, a2, a3, a4, a5, a6, a7}) h = h * 31u + lane;
  for (E const *end = p + count; q != end; ++q) h = h * 31u + x(*q);
  return h;
}

/// The hash of boolean and byte arrays alike: the polynomial over each unsigned byte.
inline unsigned int byteHash(unsigned char const *p, unsigned int count) noexcept { return polynomialHash(p, count); }

/// "%d".
inline void formatInteger(int value, WString &out) {
  char digits[16];
  char *end = std::to_chars(digits, digits + sizeof digits, value).ptr;
  out.resize(0);
  for (char const *p = digits; p != end; ++p) out.append(static_cast<unsigned short>(*p));
}

template <class T>
struct ArrayElement;

template <>
struct ArrayElement<int> {
  using Kind = int;
  static int fromKind(int k) noexcept { return k; }
  using Item = IntegerValue;
  using Codec = IntCodec;
  static constexpr char kClassName[] = "IntegerArrayValue";
  static int fromValue(Value const &value) { return value.getInteger(); }
  static int fromIth(ArrayValue const &array, unsigned int k) { return array.getIthInteger(k); }
  static double toDouble(int e) noexcept { return e; }
  static int toInteger(int e) noexcept { return e; }
  static bool toBoolean(int e) noexcept { return e != 0; }
  static void toString(int e, WString &out) { formatInteger(e, out); }
  static void toItem(int e, Item &item) { item = e; }
  static unsigned int hash(int const *p, unsigned int count) noexcept { return polynomialHash(p, count); }
};

template <>
struct ArrayElement<unsigned char> {
  using Kind = int;
  static unsigned char fromKind(int k) noexcept { return static_cast<unsigned char>(k); }
  using Item = IntegerValue;
  using Codec = ByteCodec;
  static constexpr char kClassName[] = "ByteArrayValue";
  static unsigned char fromValue(Value const &value) { return static_cast<unsigned char>(value.getInteger()); }
  static unsigned char fromIth(ArrayValue const &array, unsigned int k) {
    return static_cast<unsigned char>(array.getIthInteger(k));
  }
  static double toDouble(unsigned char e) noexcept { return e; }
  static int toInteger(unsigned char e) noexcept { return e; }
  static bool toBoolean(unsigned char e) noexcept { return e != 0; }
  static void toString(unsigned char e, WString &out) { formatInteger(e, out); }
  static void toItem(unsigned char e, Item &item) { item = static_cast<int>(e); }
  static unsigned int hash(unsigned char const *p, unsigned int count) noexcept { return byteHash(p, count); }
};

template <>
struct ArrayElement<bool> {
  using Kind = bool;
  static bool fromKind(bool k) noexcept { return k; }
  using Item = BooleanValue;
  using Codec = BoolCodec;
  static constexpr char kClassName[] = "BooleanArrayValue";
  static bool fromValue(Value const &value) { return value.getBoolean(); }
  static bool fromIth(ArrayValue const &array, unsigned int k) { return array.getIthBoolean(k); }
  static double toDouble(bool e) noexcept { return e ? 1.0 : 0.0; }
  static int toInteger(bool e) noexcept { return e ? 1 : 0; }
  static bool toBoolean(bool e) noexcept { return e; }
  static void toString(bool e, WString &out) {
    out.resize(0);
    out.appendAscii(e ? "true" : "false");
  }
  static void toItem(bool e, Item &item) { item = e; }
  // A bool is stored as the byte 0 or 1.
  static unsigned int hash(bool const *p, unsigned int count) noexcept {
    return byteHash(reinterpret_cast<unsigned char const *>(p), count);
  }
};

template <>
struct ArrayElement<double> {
  using Kind = double;
  static double fromKind(double k) noexcept { return k; }
  using Item = DoubleValue;
  using Codec = DoubleCodec;
  static constexpr char kClassName[] = "DoubleArrayValue";
  static double fromValue(Value const &value) { return value.getDouble(); }
  static double fromIth(ArrayValue const &array, unsigned int k) { return array.getIthDouble(k); }
  static double toDouble(double e) noexcept { return e; }
  static int toInteger(double e) noexcept {
    if (!(e > -2147483649.0 && e < 2147483648.0)) return INT_MIN;  // NaN fails the test too
    return static_cast<int>(e);
  }
  static bool toBoolean(double e) noexcept { return !(e == 0.0); }
  static void toString(double e, WString &out) {
    unsigned short buffer[32];
    out.assign(buffer, util::doubleToString(e, buffer, 32));
  }
  static void toItem(double e, Item &item) { item = e; }
  /// Order-insensitive: XOR of each element's hash.
  static unsigned int hash(double const *p, unsigned int count) noexcept {
    unsigned int h = 0;
    for (unsigned int i = 0; i < count; ++i) h ^= util::doubleHashCode(p[i]);
    return h;
  }
};

template <>
struct ArrayElement<WString> {
  using Kind = WString;
  static WString fromKind(WString const &k) { return k; }
  using Item = StringValue;
  static constexpr char kClassName[] = "StringArrayValue";
  static WString fromValue(Value const &value) {
    WString text;
    value.getString(text);
    return text;
  }
  static WString fromIth(ArrayValue const &array, unsigned int k) {
    WString text;
    array.getIthString(k, text);
    return text;
  }
  static double toDouble(WString const &e) { return util::stringToDouble(e, nullptr); }
  static int toInteger(WString const &e) { return util::stringToInteger(e, nullptr); }
  static bool toBoolean(WString const &e) { return util::stringToBoolean(e, nullptr); }
  static void toString(WString const &e, WString &out) { out = e; }
  static void toItem(WString const &e, Item &item) { item = e; }
  /// Order-insensitive: XOR over the strings of the polynomial of each unit's
  /// low byte up to the terminator (only the low byte enters, deliberately).
  static unsigned int hash(WString const *p, unsigned int count) noexcept {
    unsigned int h = 0;
    for (unsigned int i = 0; i < count; ++i) {
      unsigned int s = 0;
      if (unsigned short const *u = p[i].getBuffer())
        for (; *u; ++u) s = s * 31u + (*u & 0xFFu);
      h ^= s;
    }
    return h;
  }
};

}  // namespace quarn::detail
