// ValueByName.h - values made from class names read out of a stream
//
// Value arrays and record files name the class of each value they hold, and
// the reader makes the value by that name. The name is untrusted: one that no
// class knows and no registration file names is refused before it is
// interned ("Class %hs not registered."), so hostile data cannot fill the tag
// registry; an object that is not a value is handed back and refused ("Class
// %hs is not a value").
#pragma once

#include <quarn/value/Value.h>
#include <quarnCore/BaseString.h>

namespace quarn::detail {

/// A new value of the class named `name` (Class::getClassInstance: a bound
/// class, else the component library registered for the name). The caller
/// owns it and hands it back with deleteInstance().
Value *makeValueByName(BaseString<char> const &name);

}  // namespace quarn::detail
