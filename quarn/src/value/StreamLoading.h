// StreamLoading.h - making a value by a class name read from a stream
#pragma once

#include <quarn/value/ByteStream.h>

namespace quarn {
class Value;
}

namespace quarn::detail {

/// A new value of the class `name` read from `in`: a bound class if there is
/// one (refused unless it makes values), else the component library registered
/// for the name if the loading policy of `in` allows it (see StreamLoadingPolicy.h).
Value *newValueNamedInStream(iByteInputStream const &in, char const *name);

}  // namespace quarn::detail
