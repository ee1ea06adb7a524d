// PropertyHelpers.h - typed reading and writing of named properties, on any property list
//
// Free functions over iPropertyCollection, so they work the same on the
// library's lists (PropertyCollection, DataRecord, DataNode) and on any
// component library's own implementation. Names are matched exactly
// (case-sensitive). Every pointer they return is borrowed from the list, as
// the data interfaces hand them out.
//
// When the name is missing: the readers return false and leave their output
// as it was; setIthStringValue returns false and defines nothing; the
// defining functions (setOrDefine, appendOrDefine, define...Value) define it.
// When the property is of the wrong class: defining an existing name as
// another class throws the list's message ("Property %ls is already defined
// as %hs, not %hs" for the library's lists); a helper that needs a class the
// value is not throws "Property %ls holds a %hs, not %hs" (the name, the
// value's class, what was needed: "an array" or a class name); assigning a
// value that cannot be converted throws the converter registry's message.
// Nothing changes on failure except where a contract says otherwise.
//
//   util::defineIntegerValue(*record, name, 42);
//   BaseString<unsigned short> text;
//   if (util::findStringValue(*record, name, text)) ...
#pragma once

#include <quarn/core/Export.h>
#include <quarn/core/iPropertyCollection.h>
#include <quarnCore/Array.h>
#include <quarnCore/BaseString.h>

namespace quarn {

class Value;

namespace util {

using Name = BaseString<unsigned short>;

/// Assigns `value` into the property `name` (converted to its class), or
/// defines it with `value`'s class and a copy of `value`. Returns the property.
QUARN_API iProperty *setOrDefine(iPropertyCollection &list, Name const &name, Value const &value);

/// Appends `value` to the array held by the property `name`, or defines it
/// as `value`'s array class (Value::getArrayValueType) holding just `value`.
/// Returns the property. A property that holds no array throws "Property %ls
/// holds a %hs, not an array".
QUARN_API iProperty *appendOrDefine(iPropertyCollection &list, Name const &name, Value const &value);

/// The define...Value family: defines `name` as the class in the function's
/// name (or takes the existing property of that class) and sets its content.
/// Returns the property; an existing property of another class throws the
/// list's message and keeps its value.
QUARN_API iProperty *defineIntegerValue(iPropertyCollection &list, Name const &name, int value);
QUARN_API iProperty *defineDoubleValue(iPropertyCollection &list, Name const &name, double value);
QUARN_API iProperty *defineBooleanValue(iPropertyCollection &list, Name const &name, bool value);
QUARN_API iProperty *defineStringValue(iPropertyCollection &list, Name const &name, Name const &value);
QUARN_API iProperty *defineIntegerArrayValue(iPropertyCollection &list, Name const &name, Array<int> const &value);
QUARN_API iProperty *defineDoubleArrayValue(iPropertyCollection &list, Name const &name, Array<double> const &value);
QUARN_API iProperty *defineBooleanArrayValue(iPropertyCollection &list, Name const &name, Array<bool> const &value);
QUARN_API iProperty *defineStringArrayValue(iPropertyCollection &list, Name const &name, Array<Name> const &value);
QUARN_API iProperty *defineByteArrayValue(iPropertyCollection &list, Name const &name,
                                          Array<unsigned char> const &value);

/// The bytes of the ByteArrayValue held by `name` into `out`; false when the
/// name is missing. Another class throws "Property %ls holds a %hs, not
/// Marlix.value.ByteArrayValue".
QUARN_API bool getByteArray(iPropertyCollection const &list, Name const &name, Array<unsigned char> &out);

/// Item `i` of the property `name` as text: an array's getIthString, a
/// scalar's getString for i == 0. False when the name is missing; an index
/// beyond the items throws InvalidIndexException (a scalar's last index is 0).
QUARN_API bool getIthStringValue(iPropertyCollection const &list, Name const &name, unsigned int i, Name &out);

/// Sets item `i` of the property `name` from `text`, converted to the item
/// class (an array's setIthValue, a scalar's assignment for i == 0). False,
/// and nothing defined, when the name is missing; indices as getIthStringValue.
QUARN_API bool setIthStringValue(iPropertyCollection &list, Name const &name, unsigned int i, Name const &text);

/// setOrDefine into `to` for every property of `from`, in order; returns how
/// many. A value that cannot be converted throws, and the properties assigned
/// before it stay assigned.
QUARN_API unsigned int assignValuesTo(iPropertyCollection const &from, iPropertyCollection &to);

/// The text of the property `name` (Value::findString) into `out`; false
/// when the name is missing or the value has no text (findString answers
/// false: an empty array, a null FlexValue), and `out` is then as it was.
QUARN_API bool findStringValue(iPropertyCollection const &list, Name const &name, Name &out);

/// Whether the list has a property named `name`.
QUARN_API bool contains(iPropertyCollection const &list, Name const &name);

/// `text` with every "${name}" replaced by the text of the property `name`
/// (as findStringValue gives it); a reference to a missing property or to one
/// without text, and a "${" without its "}", are kept as written. A null
/// `text` gives the null text.
QUARN_API Name expandTextValue(iPropertyCollection const &list, Name const &text);

}  // namespace util
}  // namespace quarn
