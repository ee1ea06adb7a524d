// ValueArrayContracts.h - the flexible values and the arrays of value objects in the value contract suite
//
// flexesOf({...}), valuesOf(a, b, ...) and nullsOf(n) build the arrays. The
// contracts give the suite its samples: FlexValue covers every kind (no -0.0
// and no NaN: equal to 0.0 but hashed apart, and equal to nothing); flexible
// numbers compare only as same or different, so FlexValue and FlexArrayValue
// promise symmetric equality rather than opposite signs (comparesEqualOrNot).
// XML text: a FlexValue reads back unless it holds nothing (which comes back
// as an empty wide text) or a text with characters that were escaped; the
// arrays have no XML text of their own (element 0's text, read back as a
// string), so only a one-element array whose element is a text reads back.
#pragma once

#include <quarn/value/FlexArrayValue.h>
#include <quarn/value/FlexValue.h>
#include <quarn/value/IntegerArrayValue.h>
#include <quarn/value/MissingValue.h>
#include <quarn/value/NullArrayValue.h>
#include <quarn/value/NullValue.h>
#include <quarn/value/StringValue.h>
#include <quarn/value/ValueArrayValue.h>

#include <initializer_list>
#include <vector>

#include "value/ArrayContracts.h"

namespace quarn::test {

inline FlexArrayValue flexesOf(std::initializer_list<FlexValue> elements) {
  FlexArrayValue a;
  for (FlexValue const &e : elements) a.append(e);
  return a;
}

/// A value array holding copies of `values`.
template <class... V>
ValueArrayValue valuesOf(V const &...values) {
  ValueArrayValue a;
  (a.appendValue(static_cast<Value const &>(values)), ...);
  return a;
}

inline NullArrayValue nullsOf(unsigned int count) {
  NullArrayValue a;
  a.resize(count);
  return a;
}

inline bool hasEscapedCharacters(FlexValue const &v) {
  for (char16_t c : textOf(v))
    if (c == u'&' || c == u'"' || c == u'\'' || c == u'<' || c == u'>') return true;
  return false;
}

struct FlexContract {
  static constexpr char const arrayClass[] = "Marlix.value.FlexArrayValue";
  static constexpr bool streamKeepsAll = true;
  static constexpr bool comparesEqualOrNot = true;
  /// The second XML text is the type ("xsd:integer", ...), not empty.
  static constexpr bool xmlExtraNamesType = true;
  static std::vector<FlexValue> samples() {
    return {FlexValue(),
            FlexValue(0),
            FlexValue(-7),
            FlexValue(40000),
            FlexValue(7u),
            FlexValue(4294967295u),
            FlexValue(0.0),
            FlexValue(0.5),
            FlexValue(-2.75),
            FlexValue(1e300),
            FlexValue(1.5f),
            FlexValue(true),
            FlexValue(false),
            FlexValue(static_cast<unsigned char>(0)),
            FlexValue(static_cast<unsigned char>(200)),
            FlexValue(static_cast<unsigned short const *>(nullptr)),
            FlexValue(u16(u"")),
            FlexValue(u16(u"h\u00E9llo \u20AC")),
            FlexValue(u16(u"x&<y")),
            FlexValue(static_cast<char const *>(nullptr)),
            FlexValue(""),
            FlexValue("\xC3\xA9t\xC3\xA9"),
            FlexValue("a\"b")};
  }
  static bool xmlRoundTrips(FlexValue const &v) { return !v.isNull() && !hasEscapedCharacters(v); }
};

template <>
struct ArrayContract<FlexArrayValue> : ArrayContractBase<FlexArrayValue, FlexValue> {
  static constexpr bool comparesEqualOrNot = true;
  static std::vector<FlexArrayValue> samples() {
    return {flexesOf({FlexValue(1)}),
            flexesOf({FlexValue(1), FlexValue(u16(u"a"))}),
            flexesOf({FlexValue(u16(u"x"))}),
            flexesOf({FlexValue()}),
            flexesOf({FlexValue("n"), FlexValue(2.5), FlexValue(true), FlexValue(static_cast<unsigned char>(9))}),
            flexesOf({FlexValue(1.5f)})};
  }
  static bool xmlRoundTrips(FlexArrayValue const &v) {
    return v.getSize() == 1 && v[0].getStorageType() == FlexValue::WStringType;
  }
};

template <>
struct ArrayContract<ValueArrayValue> : ArrayContractBase<ValueArrayValue, Value> {
  static std::vector<ValueArrayValue> samples() {
    int const pair[] = {1, 2};
    std::vector<ValueArrayValue> s;
    s.push_back(valuesOf(IntegerValue(1)));
    s.push_back(valuesOf(IntegerValue(1), StringValue("a")));
    s.push_back(valuesOf(StringValue("a")));
    s.push_back(valuesOf(IntegerValue(2)));
    s.push_back(valuesOf(NullValue(), IntegerValue(1)));
    s.push_back(valuesOf(MissingValue()));
    s.push_back(valuesOf(valuesOf(IntegerValue(1))));
    s.push_back(valuesOf(BooleanValue(true), IntegerArrayValue(pair, 2)));
    return s;
  }
  static bool xmlRoundTrips(ValueArrayValue const &v) {
    return v.getSize() == 1 && v[0].getClassTag() == StringValue::Tag;
  }
};

template <>
struct ArrayContract<NullArrayValue> : ArrayContractBase<NullArrayValue, NullValue> {
  static std::vector<NullArrayValue> samples() { return {nullsOf(1), nullsOf(3), nullsOf(2)}; }
  static bool xmlRoundTrips(NullArrayValue const &) { return false; }
};

}  // namespace quarn::test
