// PropertyHelpers.cpp - typed reading and writing of named properties
#include <quarn/core/iProperty.h>
#include <quarn/data/PropertyHelpers.h>
#include <quarn/value/ArrayValue.h>
#include <quarn/value/BooleanArrayValue.h>
#include <quarn/value/BooleanValue.h>
#include <quarn/value/ByteArrayValue.h>
#include <quarn/value/DoubleArrayValue.h>
#include <quarn/value/DoubleValue.h>
#include <quarn/value/IntegerArrayValue.h>
#include <quarn/value/IntegerValue.h>
#include <quarn/value/StringArrayValue.h>
#include <quarn/value/StringValue.h>
#include <quarnCore/Exception.h>
#include <quarnCore/Throw.h>

namespace quarn::util {

namespace {

[[noreturn, gnu::cold]] void failWrongClass(iProperty const &property, char const *needed) {
  throw Exception("Property %ls holds a %hs, not %hs", property.getName().getBuffer(),
                  property.getValueClass().getName(), needed);
}

/// The value of `property` as a V, or the wrong-class failure.
template <class V>
V &valueAs(iProperty const &property) {
  auto *value = static_cast<V *>(property.getValue()->findAs(V::Tag));
  if (!value) [[unlikely]]
    failWrongClass(property, V::className);
  return *value;
}

ArrayValue &arrayOf(iProperty const &property) {
  auto *array = static_cast<ArrayValue *>(property.getValue()->findAs(ArrayValue::Tag));
  if (!array) [[unlikely]]
    failWrongClass(property, "an array");
  return *array;
}

ArrayValue *findArray(iProperty const &property) {
  return static_cast<ArrayValue *>(property.getValue()->findAs(ArrayValue::Tag));
}

template <class V, class Fill>
iProperty *defineAs(iPropertyCollection &list, Name const &name, Fill &&fill) {
  iProperty *property = list.defineProperty(name, V::Tag);
  fill(valueAs<V>(*property));
  return property;
}

}  // namespace

iProperty *setOrDefine(iPropertyCollection &list, Name const &name, Value const &value) {
  if (iProperty *property = list.findProperty(name)) {
    property->setValue(value);
    return property;
  }
  iProperty *property = list.defineProperty(name, value.getClassTag());
  try {
    property->setValue(value);
  } catch (...) {
    list.removeProperty(name);
    throw;
  }
  return property;
}

iProperty *appendOrDefine(iPropertyCollection &list, Name const &name, Value const &value) {
  if (iProperty *property = list.findProperty(name)) {
    arrayOf(*property).appendValue(value);
    return property;
  }
  iProperty *property = list.defineProperty(name, const_cast<Value &>(value).getArrayValueType());
  try {
    arrayOf(*property).appendValue(value);
  } catch (...) {
    list.removeProperty(name);
    throw;
  }
  return property;
}

iProperty *defineIntegerValue(iPropertyCollection &list, Name const &name, int value) {
  return defineAs<IntegerValue>(list, name, [&](IntegerValue &v) { v = value; });
}
iProperty *defineDoubleValue(iPropertyCollection &list, Name const &name, double value) {
  return defineAs<DoubleValue>(list, name, [&](DoubleValue &v) { v = value; });
}
iProperty *defineBooleanValue(iPropertyCollection &list, Name const &name, bool value) {
  return defineAs<BooleanValue>(list, name, [&](BooleanValue &v) { v = value; });
}
iProperty *defineStringValue(iPropertyCollection &list, Name const &name, Name const &value) {
  return defineAs<StringValue>(list, name, [&](StringValue &v) { v = value; });
}
iProperty *defineIntegerArrayValue(iPropertyCollection &list, Name const &name, Array<int> const &value) {
  return defineAs<IntegerArrayValue>(list, name, [&](IntegerArrayValue &v) { v.setElements(value); });
}
iProperty *defineDoubleArrayValue(iPropertyCollection &list, Name const &name, Array<double> const &value) {
  return defineAs<DoubleArrayValue>(list, name, [&](DoubleArrayValue &v) { v.setElements(value); });
}
iProperty *defineBooleanArrayValue(iPropertyCollection &list, Name const &name, Array<bool> const &value) {
  return defineAs<BooleanArrayValue>(list, name, [&](BooleanArrayValue &v) { v.setElements(value); });
}
iProperty *defineStringArrayValue(iPropertyCollection &list, Name const &name, Array<Name> const &value) {
  return defineAs<StringArrayValue>(list, name, [&](StringArrayValue &v) { v.setElements(value); });
}
iProperty *defineByteArrayValue(iPropertyCollection &list, Name const &name, Array<unsigned char> const &value) {
  return defineAs<ByteArrayValue>(list, name, [&](ByteArrayValue &v) { v.setElements(value); });
}

bool getByteArray(iPropertyCollection const &list, Name const &name, Array<unsigned char> &out) {
  iProperty const *property = list.findProperty(name);
  if (!property) return false;
  out = valueAs<ByteArrayValue>(*property).getElements();
  return true;
}

bool getIthStringValue(iPropertyCollection const &list, Name const &name, unsigned int i, Name &out) {
  iProperty const *property = list.findProperty(name);
  if (!property) return false;
  if (ArrayValue const *array = findArray(*property)) {
    array->getIthString(i, out);
  } else {
    if (i != 0) [[unlikely]]
      detail::throwInvalidIndex(i, 0);
    property->getValue()->getString(out);
  }
  return true;
}

bool setIthStringValue(iPropertyCollection &list, Name const &name, unsigned int i, Name const &text) {
  iProperty *property = list.findProperty(name);
  if (!property) return false;
  StringValue value;
  value = text;
  if (ArrayValue *array = findArray(*property)) {
    array->setIthValue(i, value);
  } else {
    if (i != 0) [[unlikely]]
      detail::throwInvalidIndex(i, 0);
    property->setValue(value);
  }
  return true;
}

unsigned int assignValuesTo(iPropertyCollection const &from, iPropertyCollection &to) {
  unsigned int const n = from.getPropertyCount();
  for (unsigned int i = 0; i < n; ++i) {
    iProperty const *property = from.getProperty(i);
    setOrDefine(to, property->getName(), *property->getValue());
  }
  return n;
}

bool findStringValue(iPropertyCollection const &list, Name const &name, Name &out) {
  iProperty const *property = list.findProperty(name);
  return property && property->getValue()->findString(out);
}

bool contains(iPropertyCollection const &list, Name const &name) { return list.findProperty(name) != nullptr; }

Name expandTextValue(iPropertyCollection const &list, Name const &text) {
  Name out("");
  unsigned short const *p = text.getBuffer();
  unsigned int const n = text.getLength();
  Name reference, value;
  unsigned int i = 0;
  while (i < n) {
    if (p[i] == '$' && i + 1 < n && p[i + 1] == '{') {
      unsigned int close = i + 2;
      while (close < n && p[close] != '}') ++close;
      if (close < n) {
        reference.assign(p + i + 2, close - i - 2);
        if (findStringValue(list, reference, value)) {
          out.append(value);
        } else {
          out.append(p + i, close + 1 - i);
        }
        i = close + 1;
        continue;
      }
    }
    out.append(p[i]);
    ++i;
  }
  return text.isNull() ? Name() : out;
}

}  // namespace quarn::util
