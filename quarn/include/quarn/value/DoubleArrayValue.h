// DoubleArrayValue.h - a record property holding a list of IEEE-754 doubles
//
// Elements convert as a double does (as an integer truncated toward zero,
// -2147483648 when out of range or NaN; as a boolean true unless
// ordered-equal to 0.0, so NaN is true; as text util::doubleToString); items
// are DoubleValues. Equality is ordered equality: 0.0 finds -0.0, a NaN is
// never found. Order: a longer array is greater; at the first element that is
// not equal, -1 when this one is ordered-less, else 1, so arrays holding a
// NaN compare as 1 both ways (deliberately). Hash: XOR of
// util::doubleHashCode over the elements, whatever their order. Payload: the
// count, then each element as a stream double ([1.0, 0.5] -> 08 01 02 00 00
// 00 00 00 00 E0 3F).
#pragma once

#include <quarn/core/Export.h>
#include <quarn/core/PooledClassImp.h>
#include <quarn/value/ArrayValueImpl.h>
#include <quarn/value/DoubleComparator.h>
#include <quarn/value/ValueGlue.h>
#include <quarnCore/Array.h>

namespace quarn {

/// Pooled: create with newInstance(), hand back with deleteInstance().
class QUARN_API DoubleArrayValue : public ValueGlue<DoubleArrayValue, ArrayValueImpl<double, DoubleComparator>> {
  QUARN_VALUE_CLASS(DoubleArrayValue, "Marlix.value.DoubleArrayValue", PooledClassImp<DoubleArrayValue, -1>)

 public:
  DoubleArrayValue() = default;
  DoubleArrayValue(DoubleArrayValue const &other) : Glue(other) {}
  explicit DoubleArrayValue(Array<double> const &elements) : Glue(std::in_place, elements) {}
  DoubleArrayValue(double const *elements, unsigned int count) : Glue(std::in_place, elements, count) {}
  /// Each float widened to double.
  DoubleArrayValue(float const *elements, unsigned int count);
  ~DoubleArrayValue() override;
};

}  // namespace quarn
