// StringArrayValue.h - a record property holding a list of UTF-16 texts
//
// Elements may be null, and a null element is a different value from an
// empty one everywhere: find, order (null first), payload (00 against 04).
// Elements convert with quarnCore's readers and no end pointer
// (util::stringToInteger and its kin), so a text that is no number throws
// their Exception; items are StringValues. Order: a longer array is greater,
// then the first differing element, unit by unit as unsigned 16-bit numbers.
// Hash: XOR over the elements of h = h * 31 + (unit & 0xFF) over each text's
// units, so it ignores element order and the high byte of each unit
// (deliberately). Payload: the count, then each element as a stream string.
//
// Narrow text (`char const *`) is widened byte by byte. The pool keeps at
// most 1000 instances out; an array returning to it frees its buffer above
// 1000 elements, and always lets go of its element strings.
#pragma once

#include <quarn/core/Export.h>
#include <quarn/core/PooledClassImp.h>
#include <quarn/value/ArrayValueImpl.h>
#include <quarn/value/StringComparator.h>
#include <quarn/value/ValueGlue.h>
#include <quarnCore/Array.h>
#include <quarnCore/BaseString.h>

namespace quarn {

/// Pooled (at most 1000 out at a time are kept): create with newInstance(), hand back with deleteInstance().
class QUARN_API StringArrayValue
    : public ValueGlue<StringArrayValue, ArrayValueImpl<BaseString<unsigned short>, StringComparator>> {
  QUARN_VALUE_CLASS(StringArrayValue, "Marlix.value.StringArrayValue", PooledClassImp<StringArrayValue, 1000>)

 public:
  StringArrayValue() = default;
  StringArrayValue(StringArrayValue const &other) : Glue(other) {}
  explicit StringArrayValue(Array<BaseString<unsigned short>> const &elements) : Glue(std::in_place, elements) {}
  ~StringArrayValue() override;

  StringArrayValue &operator=(StringArrayValue const &other) {
    setElements(other.getElements());
    return *this;
  }
  StringArrayValue &operator=(Array<BaseString<unsigned short>> const &elements) {
    setElements(elements);
    return *this;
  }

  /// Appends one element holding `text` (null for a null pointer).
  void add(unsigned short const *text) { m_array.append(BaseString<unsigned short>(text)); }
  /// Appends one element holding `text` widened byte by byte (null for a null pointer).
  void add(char const *text) { m_array.append(BaseString<unsigned short>(text)); }

  /// As find, but letters A-Z match a-z (other units exactly; null only null).
  unsigned int findNoCase(unsigned short const *text, unsigned int start = kNotFound) const;
  /// As get, but letters A-Z match a-z.
  unsigned int getNoCase(unsigned short const *text, unsigned int start = kNotFound) const;

  /// Frees the buffer above 1000 elements; otherwise empties the array, keeping the buffer.
  void onDeactivate() override;
};

}  // namespace quarn
