// ScalarConverters.cpp - the converters between the scalar values and out of the null values
//
// Into a scalar class, a conversion sets the target from the source's getter
// of the target's kind: getInteger into IntegerValue, getDouble into
// DoubleValue, getBoolean into BooleanValue, getString into StringValue. So
// the XML text of an IntegerValue is read with util::stringToInteger, and so
// on. Out of NullValue and MissingValue, the target is cleared instead.
#include <quarn/value/BooleanValue.h>
#include <quarn/value/DoubleValue.h>
#include <quarn/value/IntegerValue.h>
#include <quarn/value/MissingValue.h>
#include <quarn/value/NullValue.h>
#include <quarn/value/StringValue.h>
#include <quarn/value/TypedValueTypeConverter.h>

namespace quarn {

namespace {

void setFrom(Value const &from, IntegerValue &to) { to = from.getInteger(); }
void setFrom(Value const &from, DoubleValue &to) { to.setDouble(from.getDouble()); }
void setFrom(Value const &from, BooleanValue &to) { to = from.getBoolean(); }
void setFrom(Value const &from, StringValue &to) { from.getString(to.getString()); }

template <class From, class To>
struct ScalarConverter final : TypedValueTypeConverter<From, To> {
  void convertTyped(From const &from, To &to) override { setFrom(from, to); }
};

template <class From, class To>
struct ClearingConverter final : TypedValueTypeConverter<From, To> {
  void convertTyped(From const &, To &to) override { to.clear(); }
};

using Scalars = TypeList<IntegerValue, DoubleValue, BooleanValue, StringValue>;
using Nulls = TypeList<NullValue, MissingValue>;

ConverterGrid<ScalarConverter, Scalars, Scalars> scalarConverters;
ConverterGrid<ClearingConverter, Nulls, Scalars> nullConverters;

}  // namespace

}  // namespace quarn
