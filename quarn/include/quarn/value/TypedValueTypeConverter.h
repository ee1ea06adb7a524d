// TypedValueTypeConverter.h - the registration base of every value converter
//
// TypedValueTypeConverter<From, To> registers itself for the pair
// (From, To) when constructed and unregisters when destroyed, so a converter
// is one static object:
//
//   struct IntToText final : TypedValueTypeConverter<IntegerValue, StringValue> {
//     void convertTyped(IntegerValue const &from, StringValue &to) override { ... }
//   };
//   IntToText const intToText;  // in a source file of the library that owns the pair
//
// The pair is registered by class name (From::className, To::className,
// constant strings), so the converter does not depend on the order in which
// static tags of other files are constructed. convert() checks that it was
// given exactly the two classes (else "Could not convert from %hs to %hs")
// and forwards to convertTyped.
//
// ConverterGrid<Converter, TypeList<From...>, TypeList<To...>> holds one
// Converter<From, To> for every ordered pair of the two lists, for families of
// conversions that follow one rule.
#pragma once

#include <quarn/core/ClassTag.h>
#include <quarn/value/ConverterRegistry.h>
#include <quarn/value/Value.h>
#include <quarn/value/ValueGlue.h>
#include <quarn/value/ValueTypeConverter.h>

#include <tuple>

namespace quarn {

template <class From, class To>
class TypedValueTypeConverter : public ValueTypeConverter {
 public:
  /// 1. Checks the two classes and calls convertTyped.
  void convert(Value const &from, Value &to) final {
    if (from.getClassTag().getId() != From::Tag.getId() || to.getClassTag().getId() != To::Tag.getId()) [[unlikely]]
      detail::throwCannotConvert(from.getClassTag().getName(), to.getClassTag().getName());
    convertTyped(static_cast<From const &>(from), static_cast<To &>(to));
  }
  /// 2. Unregisters the pair (nothing to do once the library is unloading).
  ~TypedValueTypeConverter() override {
    if (detail::ConverterRegistry::process())
      Value::UnRegisterTypeConverter(ClassTag(From::className), ClassTag(To::className));
  }
  /// 3. The conversion itself.
  virtual void convertTyped(From const &from, To &to) = 0;

 protected:
  TypedValueTypeConverter() { Value::RegisterTypeConverter(ClassTag(From::className), ClassTag(To::className), this); }
};

template <class... Ts>
struct TypeList {};

template <template <class, class> class Converter, class FromList, class ToList>
class ConverterGrid;

template <template <class, class> class Converter, class... Froms, class... Tos>
class ConverterGrid<Converter, TypeList<Froms...>, TypeList<Tos...>> {
  template <class From>
  using Row = std::tuple<Converter<From, Tos>...>;
  std::tuple<Row<Froms>...> m_converters;
};

}  // namespace quarn
