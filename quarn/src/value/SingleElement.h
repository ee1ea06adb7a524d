// SingleElement.h - the array coercions shared by the scalar values
//
// A scalar read as an array of any kind is an array of exactly one element,
// that element being the scalar's own coercion to the array's element type
// (getString, getDouble, getInteger or getBoolean). Whatever the array held
// before is discarded; its buffer is kept.
#pragma once

#include <quarn/value/Value.h>
#include <quarnCore/Array.h>
#include <quarnCore/BaseString.h>

#include <utility>

namespace quarn::detail {

template <class T>
void replaceWithOne(Array<T> &out, T &&element) {
  out.resize(0);
  out.append(std::move(element));
}

inline void singleElement(Value const &value, Array<BaseString<unsigned short>> &out) {
  BaseString<unsigned short> text;
  value.getString(text);
  replaceWithOne(out, std::move(text));
}
inline void singleElement(Value const &value, Array<double> &out) { replaceWithOne(out, value.getDouble()); }
inline void singleElement(Value const &value, Array<int> &out) { replaceWithOne(out, value.getInteger()); }
inline void singleElement(Value const &value, Array<bool> &out) { replaceWithOne(out, value.getBoolean()); }

}  // namespace quarn::detail
