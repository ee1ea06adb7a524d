// ValueArrayConverters.cpp - the converters into and out of ValueArrayValue and NullArrayValue
//
// Into ValueArrayValue:
//   a scalar (IntegerValue, DoubleValue, BooleanValue, StringValue) or a
//   FlexValue -> one element, a copy of it;
//   a typed array (fingerprints too), a FlexArrayValue or a NullArrayValue ->
//   one element per element, the array's item for it (getIthValue: an
//   IntegerValue for an integer or byte, a DoubleValue, a StringValue, a
//   BooleanValue, a FlexValue, a NullValue);
//   NullValue, MissingValue -> an empty array.
// Out of ValueArrayValue:
//   into a scalar, element 0 by the scalar's getter (an empty array throws
//   InvalidIndexException(0, -1));
//   into a typed array, every element by its own getter of the array's kind
//   (a byte keeps the low 8 bits);
//   into a FlexValue, element 0 assigned through the registry (an empty
//   array gives nothing, code 1); into a FlexArrayValue, every element so;
//   into a NullArrayValue, one null per element.
// Into NullArrayValue from NullValue and MissingValue: an empty array.
// A conversion that fails (text that is no number, an element class with no
// converter to FlexValue) leaves the target as it was.
#include <quarn/value/FlexArrayValue.h>
#include <quarn/value/FlexValue.h>
#include <quarn/value/NullArrayValue.h>
#include <quarn/value/ValueArrayValue.h>

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

template <class From>
void intoValueArray(From const &from, ValueArrayValue &to) {
  ValueArrayValue made;
  if constexpr (std::is_base_of_v<ArrayValue, From>) {
    for (unsigned int k = 0; k < from.getSize(); ++k) {
      ObjPtr<Value> item;
      from.getIthValue(k, item);
      made.appendValue(item.detach());
    }
  } else if constexpr (!std::is_base_of_v<NullValue, From>) {
    made.appendValue(from);
  }
  to.swap(made);  // the old elements are handed back with `made`
}

void setScalar(Value const &from, IntegerValue &to) { to = from.getInteger(); }
void setScalar(Value const &from, DoubleValue &to) { to.setDouble(from.getDouble()); }
void setScalar(Value const &from, BooleanValue &to) { to = from.getBoolean(); }
void setScalar(Value const &from, StringValue &to) { from.getString(to.getString()); }

template <class To>
void outOfValueArray(ValueArrayValue const &from, To &to) {
  if constexpr (isTypedArray<To>) {
    using T = typename To::ElementType;
    using E = detail::ArrayElement<T>;
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
  } else if constexpr (std::is_same_v<To, FlexValue>) {
    FlexValue element;
    if (from.getSize() != 0) from[0].assignTo(element);
    to = std::move(element);
  } else if constexpr (std::is_same_v<To, FlexArrayValue>) {
    Array<FlexValue> elements;
    elements.reserve(from.getSize());
    for (Value const *e : from.getElements()) elements.append(FlexValue(*e));
    to.getArray().swap(elements);
  } else if constexpr (std::is_same_v<To, NullArrayValue>) {
    Array<NullValue> elements;
    elements.resize(from.getSize());
    to = elements;
  } else {
    setScalar(from, to);
  }
}

template <class From, class To>
struct ValueArrayConverter final : TypedValueTypeConverter<From, To> {
  void convertTyped(From const &from, To &to) override {
    if constexpr (std::is_same_v<To, ValueArrayValue>)
      intoValueArray(from, to);
    else
      outOfValueArray(from, to);
  }
};

template <class From, class To>
struct IntoNullArray final : TypedValueTypeConverter<From, To> {
  void convertTyped(From const &, To &to) override { to.clear(); }
};

using detail::Concat;
using detail::NullClasses;
using detail::ScalarClasses;
using detail::TypedArrayClasses;

ConverterGrid<
    ValueArrayConverter,
    Concat<ScalarClasses, NullClasses, TypedArrayClasses, TypeList<FlexValue, FlexArrayValue, NullArrayValue>>,
    TypeList<ValueArrayValue>>
    intoValueArrayValue;
ConverterGrid<ValueArrayConverter, TypeList<ValueArrayValue>,
              Concat<ScalarClasses, TypedArrayClasses, TypeList<FlexValue, FlexArrayValue, NullArrayValue>>>
    outOfValueArrayValue;
ConverterGrid<IntoNullArray, NullClasses, TypeList<NullArrayValue>> intoNullArrayValue;

}  // namespace

}  // namespace quarn
