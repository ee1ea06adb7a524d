// IntegerArrayValue.h - a record property holding a list of signed 32-bit integers
//
// Elements convert as an integer does (as a double exactly, as a boolean
// != 0, as text "%d"); items are IntegerValues. Order: a longer array is
// greater, then the first differing element decides, compared signed
// ([1, 2, 3] > [5, 6]; [1, 2] < [1, 3]; [-1] < [1]). Hash: h = h * 31 + element
// over the elements ([1, 2] -> 33). Payload: the count, then each element as a
// stream int ([7, 16] -> 08 1C 01 10).
#pragma once

#include <quarn/core/Export.h>
#include <quarn/core/PooledClassImp.h>
#include <quarn/value/ArrayValueImpl.h>
#include <quarn/value/DefaultComparator.h>
#include <quarn/value/ValueGlue.h>
#include <quarnCore/Array.h>

namespace quarn {

/// Pooled: create with newInstance(), hand back with deleteInstance().
class QUARN_API IntegerArrayValue : public ValueGlue<IntegerArrayValue, ArrayValueImpl<int, DefaultComparator<int>>> {
  QUARN_VALUE_CLASS(IntegerArrayValue, "Marlix.value.IntegerArrayValue", PooledClassImp<IntegerArrayValue, -1>)

 public:
  IntegerArrayValue() = default;
  IntegerArrayValue(IntegerArrayValue const &other) : Glue(other) {}
  explicit IntegerArrayValue(Array<int> const &elements) : Glue(std::in_place, elements) {}
  IntegerArrayValue(int const *elements, unsigned int count) : Glue(std::in_place, elements, count) {}
  ~IntegerArrayValue() override;
};

}  // namespace quarn
