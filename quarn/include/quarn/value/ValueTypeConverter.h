// ValueTypeConverter.h - the conversion of a value into a value of another class
//
// One converter exists per ordered pair of value classes that can be assigned
// to one another; Value::assignTo finds it by the pair of class tags. Concrete
// converters are stateless static objects built on TypedValueTypeConverter,
// which registers them while the library loads and unregisters them when it
// unloads. A converter writes into `to` what `from` holds, in the target's own
// class; it throws what the source's coercions throw (for example text that
// is no number) and leaves `to` valid.
//
// The virtual operations are declared in slot order.
#pragma once

#include <quarn/core/Export.h>

namespace quarn {

class Value;

class QUARN_API ValueTypeConverter {
 public:
  /// 1. Writes into `to` the converted content of `from`.
  virtual void convert(Value const &from, Value &to) = 0;
  /// 2.
  virtual ~ValueTypeConverter();

 protected:
  ValueTypeConverter() = default;
  // A converter is registered under its address: copies would unregister it.
  ValueTypeConverter(ValueTypeConverter const &) = delete;
  ValueTypeConverter &operator=(ValueTypeConverter const &) = delete;
};

}  // namespace quarn
