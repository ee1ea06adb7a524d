// ClassLists.h - the families of value classes that converter grids range over
//
// The converters of the flexible values and of the value arrays treat every
// scalar, every null class and every typed array (fingerprints included) alike,
// so the families are spelled once here.
#pragma once

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

namespace quarn::detail {

/// Appends the classes of one list to another: Concat<TypeList<A>, TypeList<B, C>> is TypeList<A, B, C>.
template <class... Lists>
struct ConcatLists;
template <class... A>
struct ConcatLists<TypeList<A...>> {
  using type = TypeList<A...>;
};
template <class... A, class... B, class... Rest>
struct ConcatLists<TypeList<A...>, TypeList<B...>, Rest...> : ConcatLists<TypeList<A..., B...>, Rest...> {};
template <class... Lists>
using Concat = typename ConcatLists<Lists...>::type;

using ScalarClasses = TypeList<IntegerValue, DoubleValue, BooleanValue, StringValue>;
using NullClasses = TypeList<NullValue, MissingValue>;
using TypedArrayClasses =
    TypeList<IntegerArrayValue, DoubleArrayValue, StringArrayValue, BooleanArrayValue, ByteArrayValue,
             IntegerFingerprintValue, DoubleFingerprintValue, StringFingerprintValue>;

}  // namespace quarn::detail
