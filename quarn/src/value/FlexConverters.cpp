// FlexConverters.cpp - the converters into and out of FlexValue and FlexArrayValue
//
// Into FlexValue, a value keeps its native kind:
//   IntegerValue -> signed (2), DoubleValue -> double (4), BooleanValue ->
//   bool (6), StringValue -> wide text (8); NullValue and MissingValue ->
//   nothing (1); a typed array (fingerprints too) -> its element 0 in the
//   array's own kind (IntegerArrayValue -> 2, DoubleArrayValue -> 4,
//   StringArrayValue -> 8, BooleanArrayValue -> 6, ByteArrayValue -> byte 7),
//   FlexArrayValue -> a copy of its element 0; an empty array -> nothing.
// Out of FlexValue:
//   into a scalar, the getter of the scalar's kind (getInteger into
//   IntegerValue, ...), so a null FlexValue gives 0, 0.0, false or "";
//   into a typed array, one element taken by the getter of the array's kind
//   (a byte keeps the low 8 bits), or an empty array for a null FlexValue.
// Into FlexArrayValue, element by element: a typed array's elements each in
//   the array's kind; a scalar or a FlexValue as one element (as above);
//   NullValue and MissingValue -> an empty array.
// Out of FlexArrayValue: into a scalar, element 0 by the scalar's getter (an
//   empty array throws InvalidIndexException(0, -1) and leaves the target as
//   it was); into a typed array, every element by the getter of the array's
//   kind.
// A conversion that fails (text that is no number) leaves the target as it was.
#include <quarn/value/FlexArrayValue.h>
#include <quarn/value/FlexValue.h>

#include <type_traits>
#include <utility>

#include "ArrayElement.h"
#include "ClassLists.h"

namespace quarn {

namespace {

template <class A>
constexpr bool isTypedArray = requires {
  typename A::ElementType;
};

template <class V>
constexpr bool isNull = std::is_base_of_v<NullValue, V>;

void setScalar(Value const &from, IntegerValue &to) { to = from.getInteger(); }
void setScalar(Value const &from, DoubleValue &to) { to.setDouble(from.getDouble()); }
void setScalar(Value const &from, BooleanValue &to) { to = from.getBoolean(); }
void setScalar(Value const &from, StringValue &to) { from.getString(to.getString()); }

template <class From>
void intoFlex(From const &from, FlexValue &to) {
  if constexpr (isNull<From>) {
    to.clear();
  } else if constexpr (std::is_same_v<From, IntegerValue>) {
    to = from.getInteger();
  } else if constexpr (std::is_same_v<From, DoubleValue>) {
    to = from.getDouble();
  } else if constexpr (std::is_same_v<From, BooleanValue>) {
    to = from.getBoolean();
  } else if constexpr (std::is_same_v<From, StringValue>) {
    to = from.getString();
  } else if constexpr (std::is_same_v<From, FlexValue>) {
    to = from;
  } else {  // a typed array or a FlexArrayValue: element 0 as it is stored
    if (from.getSize() == 0)
      to.clear();
    else
      to = from[0];
  }
}

template <class From>
void intoFlexArray(From const &from, FlexArrayValue &to) {
  Array<FlexValue> elements;
  if constexpr (isTypedArray<From>) {
    auto const &source = from.getElements();
    elements.reserve(source.getSize());
    for (auto const &e : source) elements.append(FlexValue(e));
  } else if constexpr (!isNull<From>) {
    FlexValue one;
    intoFlex(from, one);
    elements.append(std::move(one));
  }
  to.getArray().swap(elements);
}

template <class From, class To>
void intoTypedArray(From const &from, To &to) {
  using T = typename To::ElementType;
  using E = detail::ArrayElement<T>;
  if constexpr (std::is_same_v<From, FlexValue>) {
    if (from.isNull()) {
      to.clear();
      return;
    }
    T element = E::fromValue(from);  // before touching the target
    to.resize(1);
    to.getBuffer()[0] = std::move(element);
  } else {
    Array<typename E::Kind> items;
    from.getArray(items);
    if constexpr (std::is_same_v<typename E::Kind, T>) {
      to.setElements(std::move(items));
    } else {
      Array<T> elements;
      elements.reserve(items.getSize());
      for (auto const &item : items) elements.append(E::fromKind(item));
      to.setElements(std::move(elements));
    }
  }
}

template <class From, class To>
struct FlexConverter final : TypedValueTypeConverter<From, To> {
  void convertTyped(From const &from, To &to) override {
    if constexpr (std::is_same_v<To, FlexValue>)
      intoFlex(from, to);
    else if constexpr (std::is_same_v<To, FlexArrayValue>)
      intoFlexArray(from, to);
    else if constexpr (isTypedArray<To>)
      intoTypedArray(from, to);
    else
      setScalar(from, to);
  }
};

using detail::Concat;
using detail::NullClasses;
using detail::ScalarClasses;
using detail::TypedArrayClasses;

ConverterGrid<FlexConverter, Concat<ScalarClasses, NullClasses, TypedArrayClasses, TypeList<FlexArrayValue>>,
              TypeList<FlexValue>>
    intoFlexValue;
ConverterGrid<FlexConverter, Concat<ScalarClasses, NullClasses, TypedArrayClasses, TypeList<FlexValue>>,
              TypeList<FlexArrayValue>>
    intoFlexArrayValue;
ConverterGrid<FlexConverter, TypeList<FlexValue, FlexArrayValue>, Concat<ScalarClasses, TypedArrayClasses>> outOfFlex;

}  // namespace

}  // namespace quarn
