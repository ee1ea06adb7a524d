// BooleanArrayValue.h - a record property holding a list of booleans
//
// Elements convert as a boolean does (1.0 / 0.0, 1 / 0, "true" / "false");
// items are BooleanValues. Order: a longer array is greater, then false <
// true at the first differing element. Hash: h = h * 31 + byte over the
// elements (true 1, false 0), as ByteArrayValue. Payload: the count, then one
// byte per element, 01 or 00 ([true, false] -> 08 01 00); reading, any
// non-zero byte is true.
#pragma once

#include <quarn/core/Export.h>
#include <quarn/core/PooledClassImp.h>
#include <quarn/value/ArrayValueImpl.h>
#include <quarn/value/DefaultComparator.h>
#include <quarn/value/ValueGlue.h>
#include <quarnCore/Array.h>

namespace quarn {

/// Pooled: create with newInstance(), hand back with deleteInstance().
class QUARN_API BooleanArrayValue : public ValueGlue<BooleanArrayValue, ArrayValueImpl<bool, DefaultComparator<bool>>> {
  QUARN_VALUE_CLASS(BooleanArrayValue, "Marlix.value.BooleanArrayValue", PooledClassImp<BooleanArrayValue, -1>)

 public:
  BooleanArrayValue() = default;
  BooleanArrayValue(BooleanArrayValue const &other) : Glue(other) {}
  explicit BooleanArrayValue(Array<bool> const &elements) : Glue(std::in_place, elements) {}
  BooleanArrayValue(bool const *elements, unsigned int count) : Glue(std::in_place, elements, count) {}
  ~BooleanArrayValue() override;
};

}  // namespace quarn
