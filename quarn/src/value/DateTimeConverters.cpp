// DateTimeConverters.cpp - the converters into and out of DateTimeValue
//
//   DateTimeValue -> StringValue   the text in the value's format (getText)
//   StringValue -> DateTimeValue   set(text, null): a format from proposeFormat
//   DateTimeValue -> DoubleValue   the julian
//   DoubleValue -> DateTimeValue   setJulian
//   DateTimeValue -> IntegerValue  whole julian days (floor)
//   IntegerValue -> DateTimeValue  setJulian of the day number (noon)
//   DateTimeValue -> FlexValue     the julian as a double
//   FlexValue -> DateTimeValue     a text as from StringValue, a number as a
//                                  julian, nothing clears
//   NullValue, MissingValue -> DateTimeValue   clears
// A text that no format reads throws and leaves the target as it was.
#include <quarn/value/DateTimeValue.h>
#include <quarn/value/DoubleValue.h>
#include <quarn/value/FlexValue.h>
#include <quarn/value/IntegerValue.h>
#include <quarn/value/MissingValue.h>
#include <quarn/value/NullValue.h>
#include <quarn/value/StringValue.h>
#include <quarn/value/TypedValueTypeConverter.h>

namespace quarn {

namespace {

constexpr unsigned short kEmpty[1] = {0};

void setFromText(BaseString<unsigned short> const &text, DateTimeValue &to) {
  to.set(text.isNull() ? kEmpty : text.getBuffer(), nullptr);
}

struct ToString final : TypedValueTypeConverter<DateTimeValue, StringValue> {
  void convertTyped(DateTimeValue const &from, StringValue &to) override { to = from.getText(); }
};
struct FromString final : TypedValueTypeConverter<StringValue, DateTimeValue> {
  void convertTyped(StringValue const &from, DateTimeValue &to) override { setFromText(from.getString(), to); }
};
struct ToDouble final : TypedValueTypeConverter<DateTimeValue, DoubleValue> {
  void convertTyped(DateTimeValue const &from, DoubleValue &to) override { to.setDouble(from.getJulian()); }
};
struct FromDouble final : TypedValueTypeConverter<DoubleValue, DateTimeValue> {
  void convertTyped(DoubleValue const &from, DateTimeValue &to) override { to.setJulian(from.getDouble()); }
};
struct ToInteger final : TypedValueTypeConverter<DateTimeValue, IntegerValue> {
  void convertTyped(DateTimeValue const &from, IntegerValue &to) override { to = from.getInteger(); }
};
struct FromInteger final : TypedValueTypeConverter<IntegerValue, DateTimeValue> {
  void convertTyped(IntegerValue const &from, DateTimeValue &to) override { to.setJulian(from.getInteger()); }
};
struct ToFlex final : TypedValueTypeConverter<DateTimeValue, FlexValue> {
  void convertTyped(DateTimeValue const &from, FlexValue &to) override { to = from.getJulian(); }
};
struct FromFlex final : TypedValueTypeConverter<FlexValue, DateTimeValue> {
  void convertTyped(FlexValue const &from, DateTimeValue &to) override {
    switch (from.getStorageType()) {
      case FlexValue::NullType:
        to.clear();
        break;
      case FlexValue::WStringType:
      case FlexValue::CStringType: {
        BaseString<unsigned short> text;
        from.getString(text);
        setFromText(text, to);
        break;
      }
      default:
        to.setJulian(from.getDouble());
    }
  }
};
template <class From>
struct Clearing final : TypedValueTypeConverter<From, DateTimeValue> {
  void convertTyped(From const &, DateTimeValue &to) override { to.clear(); }
};

ToString const toString;
FromString const fromString;
ToDouble const toDouble;
FromDouble const fromDouble;
ToInteger const toInteger;
FromInteger const fromInteger;
ToFlex const toFlex;
FromFlex const fromFlex;
Clearing<NullValue> const fromNull;
Clearing<MissingValue> const fromMissing;

}  // namespace

}  // namespace quarn
