// FlexValue.cpp - storage, coercions, order, hash, XML text and payload of the variant value
#include <quarn/value/BooleanValue.h>
#include <quarn/value/ByteStream.h>
#include <quarn/value/DoubleValue.h>
#include <quarn/value/FlexValue.h>
#include <quarn/value/IntegerValue.h>
#include <quarn/value/NullValue.h>
#include <quarn/value/StringValue.h>
#include <quarnCore/Exception.h>
#include <quarnCore/TextUtil.h>
#include <quarnCore/Unicode.h>

#include <bit>
#include <charconv>
#include <climits>
#include <cstring>
#include <type_traits>
#include <utility>

#include "NarrowText.h"
#include "SingleElement.h"

namespace quarn {

namespace {

using WString = BaseString<unsigned short>;
using CString = BaseString<char>;

[[noreturn, gnu::cold]] void fail(char const *message) { throw Exception("%hs", message); }
[[noreturn, gnu::cold]] void failCode(char const *format, int code) { throw Exception(format, code); }

/// The 31-polynomial over the low `count` bytes of `bits`, least significant first.
unsigned int byteHash(std::uint64_t bits, int count) noexcept {
  unsigned int h = 0;
  for (int k = 0; k < count; ++k) h = h * 31u + static_cast<unsigned int>((bits >> (8 * k)) & 0xFFu);
  return h;
}

/// A double or float truncated toward zero; NaN and values outside the int range give INT_MIN.
int truncate(double value) noexcept {
  if (!(value > -2147483649.0 && value < 2147483648.0)) return INT_MIN;
  return static_cast<int>(value);
}

template <class Number>
void formatNumber(Number value, WString &out) {
  char digits[32];
  char *end = std::to_chars(digits, digits + 31, value).ptr;
  out.resize(0);
  for (char const *p = digits; p != end; ++p) out.append(static_cast<unsigned short>(*p));
}

void formatDouble(double value, WString &out) {
  unsigned short buffer[32];
  out.assign(buffer, util::doubleToString(value, buffer, 32));
}

bool equalsAscii(WString const &text, char const *ascii) noexcept {
  unsigned int n = static_cast<unsigned int>(std::strlen(ascii));
  if (text.isNull() || text.getLength() != n) return false;
  for (unsigned int k = 0; k < n; ++k)
    if (text.getBuffer()[k] != static_cast<unsigned char>(ascii[k])) return false;
  return true;
}

/// An unsigned text: the signed reading's bits, or above 2147483647 the
/// decimal digits (an optional '+', blanks around) up to 4294967295; other
/// texts fail as the signed reading does.
unsigned int readUnsigned(WString const &text) {
  try {
    return static_cast<unsigned int>(util::stringToInteger(text, nullptr));
  } catch (Exception const &) {
    auto blank = [](unsigned short u) { return u == ' ' || u == '\t' || u == '\r' || u == '\n' || u == 0xA0; };
    unsigned short const *p = text.getBuffer();
    unsigned int begin = 0, end = text.getLength();
    while (begin < end && blank(p[begin])) ++begin;
    while (end > begin && blank(p[end - 1])) --end;
    if (begin < end && p[begin] == '+') ++begin;
    char digits[16];
    bool ok = end > begin && end - begin < sizeof digits;
    for (unsigned int k = begin; ok && k < end; ++k) {
      ok = p[k] >= '0' && p[k] <= '9';
      digits[k - begin] = static_cast<char>(p[k]);
    }
    unsigned long long value = 0;
    if (ok) {
      auto [stop, error] = std::from_chars(digits, digits + (end - begin), value);
      ok = error == std::errc() && stop == digits + (end - begin) && value <= 0xFFFFFFFFull;
    }
    if (!ok) throw;
    return static_cast<unsigned int>(value);
  }
}

struct KindNames {
  char const *native;
  char const *xml;
};

/// Native and XML type names by code; codes outside 1-9 use the last row.
constexpr KindNames kKindNames[] = {
    {"stringType", "xsd:string"},  // unknown code
    {"nullType", "xsd:string"},   {"intType", "xsd:integer"},  {"intType", "xsd:unsignedInt"},
    {"doubleType", "xsd:double"}, {"doubleType", "xsd:float"}, {"boolType", "xsd:boolean"},
    {"byteType", "xsd:byte"},     {"stringType", "b:wstring"}, {"stringType", "b:cstring"},
};

KindNames const &namesOf(int code) noexcept { return kKindNames[code >= 1 && code <= 9 ? code : 0]; }

}  // namespace

QUARN_DEFINE_VALUE_CLASS(FlexValue);

FlexValue::~FlexValue() { clear(); }

// ---- storing

void FlexValue::store(StorageType type, Cell cell) noexcept {
  clear();
  m_cell = cell;
  m_type = type;
}

template <class S, class Make>
void FlexValue::storeString(StorageType type, Make const &make) {
  if (m_type == type) {
    // Reuse the held string object; its assignment copes with text taken from itself.
    if constexpr (std::is_same_v<S, WString>)
      make(*m_cell.wide);
    else
      make(*m_cell.narrow);
    return;
  }
  // Made before the old content goes, so text taken from this value stays readable.
  S *made = new S();
  try {
    make(*made);
  } catch (...) {
    delete made;
    throw;
  }
  clear();
  if constexpr (std::is_same_v<S, WString>)
    m_cell.wide = made;
  else
    m_cell.narrow = made;
  m_type = type;
}

FlexValue &FlexValue::operator=(int value) {
  Cell cell{};
  cell.i = value;
  store(IntType, cell);
  return *this;
}
FlexValue &FlexValue::operator=(unsigned int value) {
  Cell cell{};
  cell.u = value;
  store(UnsignedIntType, cell);
  return *this;
}
FlexValue &FlexValue::operator=(double value) {
  Cell cell{};
  cell.d = value;
  store(DoubleType, cell);
  return *this;
}
FlexValue &FlexValue::operator=(float value) {
  Cell cell{};
  cell.f = value;
  store(FloatType, cell);
  return *this;
}
FlexValue &FlexValue::operator=(bool value) {
  Cell cell{};
  cell.b = value;
  store(BoolType, cell);
  return *this;
}
FlexValue &FlexValue::operator=(unsigned char value) {
  Cell cell{};
  cell.byte = value;
  store(ByteType, cell);
  return *this;
}

FlexValue &FlexValue::operator=(unsigned short const *text) {
  storeString<WString>(WStringType, [text](WString &s) { s = text; });
  return *this;
}
FlexValue &FlexValue::operator=(WString const &text) {
  storeString<WString>(WStringType, [&text](WString &s) { s = text; });
  return *this;
}
FlexValue &FlexValue::operator=(char const *text) {
  storeString<CString>(CStringType, [text](CString &s) { s = text; });
  return *this;
}
FlexValue &FlexValue::operator=(CString const &text) {
  storeString<CString>(CStringType, [&text](CString &s) { s = text; });
  return *this;
}

FlexValue &FlexValue::operator=(FlexValue const &other) {
  if (this == &other) return *this;
  switch (other.m_type) {
    case WStringType:
      return *this = *other.m_cell.wide;
    case CStringType:
      return *this = *other.m_cell.narrow;
    default:
      store(other.m_type, other.m_cell);
      return *this;
  }
}

FlexValue &FlexValue::operator=(FlexValue &&other) noexcept {
  if (this != &other) {
    clear();
    m_type = std::exchange(other.m_type, NullType);
    m_cell = std::exchange(other.m_cell, Cell{});
  }
  return *this;
}

FlexValue &FlexValue::operator=(Value const &value) {
  if (&value != this) value.assignTo(*this);
  return *this;
}

void FlexValue::clear() {
  if (m_type == WStringType)
    delete m_cell.wide;
  else if (m_type == CStringType)
    delete m_cell.narrow;
  m_cell = Cell{};
  m_type = NullType;
}

void FlexValue::assignToSameClass(Value &target) const { sameClass(target) = *this; }

// ---- coercions

int FlexValue::getInteger() const {
  switch (m_type) {
    case IntType:
      return m_cell.i;
    case UnsignedIntType:
      return static_cast<int>(m_cell.u);
    case DoubleType:
      return truncate(m_cell.d);
    case FloatType:
      return truncate(m_cell.f);
    case BoolType:
      return m_cell.b ? 1 : 0;
    case ByteType:
      return m_cell.byte;
    case WStringType:
      return util::stringToInteger(*m_cell.wide, nullptr);
    case CStringType:
      return util::stringToInteger(*m_cell.narrow, nullptr);
    default:
      return 0;
  }
}

unsigned int FlexValue::getUnsignedInteger() const { return static_cast<unsigned int>(getInteger()); }

double FlexValue::getDouble() const {
  switch (m_type) {
    case IntType:
      return m_cell.i;
    case UnsignedIntType:
      return m_cell.u;
    case DoubleType:
      return m_cell.d;
    case FloatType:
      return m_cell.f;
    case BoolType:
      return m_cell.b ? 1.0 : 0.0;
    case ByteType:
      return m_cell.byte;
    case WStringType:
      return util::stringToDouble(*m_cell.wide, nullptr);
    case CStringType:
      return util::stringToDouble(*m_cell.narrow, nullptr);
    default:
      return 0.0;
  }
}

bool FlexValue::getBoolean() const {
  switch (m_type) {
    case IntType:
      return m_cell.i != 0;
    case UnsignedIntType:
      return m_cell.u != 0;
    case DoubleType:
      return !(m_cell.d == 0.0);  // NaN is true
    case FloatType:
      return !(m_cell.f == 0.0f);
    case BoolType:
      return m_cell.b;
    case ByteType:
      return m_cell.byte != 0;
    case WStringType:
      return util::stringToBoolean(*m_cell.wide, nullptr);
    case CStringType:
      return util::stringToBoolean(*m_cell.narrow, nullptr);
    default:
      return false;
  }
}

void FlexValue::getString(WString &out) const {
  switch (m_type) {
    case IntType:
      return formatNumber(m_cell.i, out);
    case UnsignedIntType:
      return formatNumber(m_cell.u, out);
    case DoubleType:
      return formatDouble(m_cell.d, out);
    case FloatType:
      return formatDouble(m_cell.f, out);
    case BoolType:
      out.resize(0);
      out.appendAscii(m_cell.b ? "true" : "false");
      return;
    case ByteType:
      return formatNumber(static_cast<int>(m_cell.byte), out);
    case WStringType:
      out = *m_cell.wide;
      return;
    case CStringType:
      util::ConvertUTF8toString(out, *m_cell.narrow);
      return;
    default:
      out.resize(0);  // the buffer is kept
      return;
  }
}

void FlexValue::getArray(Array<WString> &out) const { detail::singleElement(*this, out); }

void FlexValue::getArray(Array<double> &out) const {
  if (m_type == WStringType)
    (void)util::stringToDoubleArray(*m_cell.wide, out, false);
  else if (m_type == CStringType)
    (void)util::stringToDoubleArray(*m_cell.narrow, out, false);
  else
    detail::singleElement(*this, out);
}

void FlexValue::getArray(Array<int> &out) const {
  if (m_type == WStringType)
    (void)util::stringToIntegerArray(*m_cell.wide, out, false);
  else if (m_type == CStringType)
    (void)util::stringToIntegerArray(*m_cell.narrow, out, false);
  else
    detail::singleElement(*this, out);
}

void FlexValue::getArray(Array<bool> &out) const {
  if (m_type == WStringType)
    (void)util::stringToBooleanArray(*m_cell.wide, out, false);
  else if (m_type == CStringType)
    (void)util::stringToBooleanArray(*m_cell.narrow, out, false);
  else
    detail::singleElement(*this, out);
}

ClassTag FlexValue::getArrayValueType() {
  static ClassTag const arrayTag("Marlix.value.FlexArrayValue");
  return arrayTag;
}

bool FlexValue::findDouble(double &out) const {
  if (isNull()) return false;
  out = getDouble();
  return true;
}
bool FlexValue::findInteger(int &out) const {
  if (isNull()) return false;
  out = getInteger();
  return true;
}
bool FlexValue::findBoolean(bool &out) const {
  if (isNull()) return false;
  out = getBoolean();
  return true;
}
bool FlexValue::findString(WString &out) const {
  if (isNull()) return false;
  getString(out);
  return true;
}

char const *FlexValue::getString() const {
  if (m_type != CStringType) fail("Cannot getString for a non-cstring");
  return m_cell.narrow->getBuffer();
}

unsigned short const *FlexValue::getWString() const {
  if (m_type != WStringType) fail("Cannot getString for a non-wstring");
  return m_cell.wide->getBuffer();
}

void FlexValue::getNativeType(WString &out) const {
  out.resize(0);
  out.appendAscii(namesOf(m_type).native);
}

void FlexValue::getValue(ObjPtr<Value> &out) const {
  switch (m_type) {
    case IntType:
    case UnsignedIntType:
    case ByteType: {
      ObjPtr<IntegerValue> made(IntegerValue::newInstance());
      *made = getInteger();
      out = std::move(made);
      return;
    }
    case DoubleType:
    case FloatType: {
      ObjPtr<DoubleValue> made(DoubleValue::newInstance());
      made->setDouble(getDouble());
      out = std::move(made);
      return;
    }
    case BoolType: {
      ObjPtr<BooleanValue> made(BooleanValue::newInstance());
      *made = getBoolean();
      out = std::move(made);
      return;
    }
    case WStringType:
    case CStringType: {
      ObjPtr<StringValue> made(StringValue::newInstance());
      getString(made->getString());
      out = std::move(made);
      return;
    }
    default:
      out.reset(NullValue::newInstance());
      return;
  }
}

// ---- order and hash

unsigned int FlexValue::hash() const {
  switch (m_type) {
    case IntType:
    case UnsignedIntType:
      return m_cell.u;
    case DoubleType:
      return byteHash(std::bit_cast<std::uint64_t>(m_cell.d), 8);
    case FloatType:
      return byteHash(std::bit_cast<std::uint32_t>(m_cell.f), 4);
    case BoolType:
      return m_cell.b ? 1u : 0u;
    case ByteType:
      return m_cell.byte != 0 ? 1u : 0u;
    case WStringType:
      return m_cell.wide->hashCode();
    case CStringType: {
      unsigned int h = 0;
      if (char const *p = m_cell.narrow->getBuffer())
        for (; *p; ++p) h = h * 31u + static_cast<unsigned int>(static_cast<int>(static_cast<signed char>(*p)));
      return h;
    }
    default:
      return 0;
  }
}

int FlexValue::compare(Value const &other) const {
  if (other.getClassTag().getId() != Tag.getId()) return compareClassName(other);
  FlexValue const &that = static_cast<FlexValue const &>(other);
  if (m_type != that.m_type) return m_type < that.m_type ? -1 : 1;
  switch (m_type) {
    case NullType:
      return 0;
    case IntType:
    case UnsignedIntType:
      return m_cell.u == that.m_cell.u ? 0 : 1;
    case DoubleType:
      return m_cell.d == that.m_cell.d ? 0 : 1;
    case FloatType:
      return m_cell.f == that.m_cell.f ? 0 : 1;
    case BoolType:
      return m_cell.b == that.m_cell.b ? 0 : 1;
    case ByteType:
      return m_cell.byte == that.m_cell.byte ? 0 : 1;
    case WStringType:
      return m_cell.wide->compare(*that.m_cell.wide);
    case CStringType:
      return m_cell.narrow->compare(*that.m_cell.narrow);
    default:
      return 1;
  }
}

// ---- XML text

bool FlexValue::getXMLText(WString &text, WString &type) const {
  getString(text);
  if (m_type == WStringType || m_type == CStringType) {
    // The string value's escaping, run over the text in place.
    StringValue escaper;
    escaper.attachString(text);
    escaper.getXMLText(text, type);
  }
  type.resize(0);
  type.appendAscii(namesOf(m_type).xml);
  return true;
}

void FlexValue::setFromXMLText(WString const &text, WString const &type) {
  if (equalsAscii(type, "xsd:integer"))
    *this = util::stringToInteger(text, nullptr);
  else if (equalsAscii(type, "xsd:unsignedInt"))
    *this = readUnsigned(text);
  else if (equalsAscii(type, "xsd:double"))
    *this = util::stringToDouble(text, nullptr);
  else if (equalsAscii(type, "xsd:float"))
    *this = static_cast<float>(util::stringToDouble(text, nullptr));
  else if (equalsAscii(type, "xsd:boolean"))
    *this = equalsAscii(text, "true");
  else if (equalsAscii(type, "xsd:byte"))
    *this = static_cast<unsigned char>(util::stringToInteger(text, nullptr));
  else if (equalsAscii(type, "b:cstring"))
    *this = util::ConvertStringtoUTF8(text);
  else
    *this = text;
}

// ---- payload

void FlexValue::serialize(iByteOutputStream &out) const {
  Value::serialize(out);
  if (m_type < NullType || m_type > CStringType) [[unlikely]]
    failCode("FlexValue serializing unknown type %d", m_type);
  out << static_cast<int>(m_type);
  switch (m_type) {
    case IntType:
    case UnsignedIntType:
      out << m_cell.i;
      break;
    case DoubleType:
      out << m_cell.d;
      break;
    case FloatType: {
      std::uint32_t bits = std::bit_cast<std::uint32_t>(m_cell.f);
      unsigned char bytes[4];
      for (int k = 0; k < 4; ++k) bytes[k] = static_cast<unsigned char>(bits >> (8 * k));
      out.write(bytes, 4);
      break;
    }
    case BoolType:
      out << m_cell.b;
      break;
    case ByteType:
      out << m_cell.byte;
      break;
    case WStringType:
      out << *m_cell.wide;
      break;
    case CStringType:
      detail::writeNarrowText(out, *m_cell.narrow);
      break;
    default:
      break;
  }
}

void FlexValue::deserialize(iByteInputStream &in) {
  Value::deserialize(in);
  int code;
  in >> code;
  switch (code) {
    case NullType: {
      NullValue null;
      null.assignTo(*this);
      return;
    }
    case IntType:
    case UnsignedIntType: {
      int bits;
      in >> bits;
      if (code == IntType)
        *this = bits;
      else
        *this = static_cast<unsigned int>(bits);
      return;
    }
    case DoubleType: {
      double value;
      in >> value;
      *this = value;
      return;
    }
    case FloatType: {
      unsigned char bytes[4];
      if (detail::readAvailable(in, bytes, 4) != 4) fail("EOF reading float");
      std::uint32_t bits = 0;
      for (int k = 0; k < 4; ++k) bits |= static_cast<std::uint32_t>(bytes[k]) << (8 * k);
      *this = std::bit_cast<float>(bits);
      return;
    }
    case BoolType: {
      bool value;
      in >> value;
      *this = value;
      return;
    }
    case ByteType: {
      unsigned char value;
      in >> value;
      *this = value;
      return;
    }
    case WStringType: {
      if (m_type == WStringType) {
        in >> *m_cell.wide;  // in place: the string reader keeps the text when it fails
        return;
      }
      WString text;
      in >> text;
      storeString<WString>(WStringType, [&text](WString &s) { s.swap(text); });
      return;
    }
    case CStringType: {
      CString text;
      detail::readNarrowText(in, text);
      storeString<CString>(CStringType, [&text](CString &s) { s.swap(text); });
      return;
    }
    default:
      failCode("FlexValue deserializing unknown type %d", code);
  }
}

// ---- pool hooks

void FlexValue::onActivate() {}
void FlexValue::onDeactivate() { clear(); }

}  // namespace quarn
