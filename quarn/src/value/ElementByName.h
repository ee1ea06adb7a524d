// ElementByName.h - reading a value that a stream names by its class
//
// Value arrays, data records and record files write each element as its
// class name (framed as NarrowText.h describes) followed by the value's own
// payload; a reader makes the element by that name. All of them read the name
// and make the value with these two functions, so they share the same limits
// on hostile input: a name of 1 to ValueArrayValue::kMaxClassNameLength bytes without a
// zero byte, and no name interned unless a class serves it.
#pragma once

#include <quarn/value/ByteStream.h>
#include <quarn/value/Value.h>
#include <quarnCore/BaseString.h>

namespace quarn::detail {

/// The class name framing element `index`; `what` names the element in the
/// messages ("ValueArrayValue element" -> "ValueArrayValue element 3 has no
/// class name", "Invalid class name length %d in ValueArrayValue element 3",
/// "... has a class name with a zero byte"). With a null `what` the messages
/// name no element: "no class name", "invalid class name length %d", "class
/// name with a zero byte".
BaseString<char> readClassName(iByteInputStream &in, unsigned int index, char const *what);

/// A new value (owned by the caller) of the class named `name`, read from
/// `in`: a bound class if there is one (refused before anything is made
/// unless it makes values: "Class %hs is not a value"), else the component
/// library registered for the name if the loading policy of `in` allows it
/// (StreamLoadingPolicy.h: "Class %hs is not loaded and this stream may not
/// load it"); "Class %hs not registered." when no class serves the name, and
/// nothing interned then. An object a library made that is not a value is
/// handed back and refused.
Value *makeByName(iByteInputStream const &in, BaseString<char> const &name);

/// As makeByName, but also a data record (an object that answers
/// iDataRecord), with a count of 0 and owned by the caller: what a record file
/// may hold. Anything else: "Class %hs is neither a value nor a data record".
Object *makeRecordByName(iByteInputStream const &in, BaseString<char> const &name);

}  // namespace quarn::detail
