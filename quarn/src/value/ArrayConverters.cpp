// ArrayConverters.cpp - the converters into, out of and between the typed arrays and fingerprints
//
// Scalar into array: the array becomes one element, taken by the getter of
// the array's kind (getInteger, getDouble, getBoolean, getString; a byte
// keeps the low 8 bits of getInteger). So StringValue "12" becomes the
// integer array [12], and XML text read with setFromXMLText (which goes
// through the converter from StringValue) gives a one-element array; only
// ByteArrayValue reads its own XML text (Base64).
//
// Array into scalar: the scalar takes the array's first element by its own
// getter, as ArrayValue's getInteger() and its kin do; an empty array
// therefore throws InvalidIndexException(0, -1) and leaves the scalar as it was.
//
// Array into array of another class: every element converted to the target's
// kind by the source's getArray (elements of the same type are copied as
// they are, so a fingerprint and its plain array convert into each other
// without change). A conversion that fails (text that is no number) leaves
// the target as it was.
//
// NullValue and MissingValue into an array: the array is emptied (clear).
#include <type_traits>
#include <utility>

#include <quarn/value/BooleanArrayValue.h>
#include <quarn/value/BooleanValue.h>
#include <quarn/value/ByteArrayValue.h>
#include <quarn/value/DoubleArrayValue.h>
#include <quarn/value/DoubleFingerprintValue.h>
#include <quarn/value/DoubleValue.h>
#include <quarn/value/IntegerArrayValue.h>
#include <quarn/value/IntegerFingerprintValue.h>
#include <quarn/value/IntegerValue.h>
#include <quarn/value/MissingValue.h>
#include <quarn/value/NullValue.h>
#include <quarn/value/StringArrayValue.h>
#include <quarn/value/StringFingerprintValue.h>
#include <quarn/value/StringValue.h>
#include <quarn/value/TypedValueTypeConverter.h>

#include "ArrayElement.h"

namespace quarn {

namespace {

template <class A>
using ElementOf = detail::ArrayElement<typename A::ElementType>;

template <class From, class To>
struct ScalarToArray final : TypedValueTypeConverter<From, To> {
  void convertTyped(From const &from, To &to) override {
    auto element = ElementOf<To>::fromValue(from);  // before touching the target
    to.resize(1);
    to.getBuffer()[0] = std::move(element);
  }
};

void setScalar(Value const &from, IntegerValue &to) { to = from.getInteger(); }
void setScalar(Value const &from, DoubleValue &to) { to.setDouble(from.getDouble()); }
void setScalar(Value const &from, BooleanValue &to) { to = from.getBoolean(); }
void setScalar(Value const &from, StringValue &to) { from.getString(to.getString()); }

template <class From, class To>
struct ArrayToScalar final : TypedValueTypeConverter<From, To> {
  void convertTyped(From const &from, To &to) override { setScalar(from, to); }
};

template <class From, class To>
struct ArrayToArray final : TypedValueTypeConverter<From, To> {
  void convertTyped(From const &from, To &to) override {
    using E = ElementOf<To>;
    using T = typename To::ElementType;
    using Kind = typename E::Kind;
    if constexpr (std::is_same_v<typename From::ElementType, T>) {
      to.setElements(from.getElements());
    } else {
      Array<Kind> items;
      from.getArray(items);
      if constexpr (std::is_same_v<Kind, T>) {
        to.setElements(std::move(items));
      } else {
        Array<T> elements;
        elements.reserve(items.getSize());
        for (Kind const &item : items) elements.append(E::fromKind(item));
        to.setElements(std::move(elements));
      }
    }
  }
};

/// Nothing for a class into itself: assignTo uses assignToSameClass there.
struct NoConverter {};
template <class From, class To>
using ArrayToOtherArray = std::conditional_t<std::is_same_v<From, To>, NoConverter, ArrayToArray<From, To>>;

template <class From, class To>
struct Emptying final : TypedValueTypeConverter<From, To> {
  void convertTyped(From const &, To &to) override { to.clear(); }
};

using Scalars = TypeList<IntegerValue, DoubleValue, BooleanValue, StringValue>;
using Arrays = TypeList<IntegerArrayValue, DoubleArrayValue, StringArrayValue, BooleanArrayValue, ByteArrayValue,
                        IntegerFingerprintValue, DoubleFingerprintValue, StringFingerprintValue>;
using Nulls = TypeList<NullValue, MissingValue>;

ConverterGrid<ScalarToArray, Scalars, Arrays> scalarToArray;
ConverterGrid<ArrayToScalar, Arrays, Scalars> arrayToScalar;
ConverterGrid<ArrayToOtherArray, Arrays, Arrays> arrayToArray;
ConverterGrid<Emptying, Nulls, Arrays> nullToArray;

}  // namespace

}  // namespace quarn
