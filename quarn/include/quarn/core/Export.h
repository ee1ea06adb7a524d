// Export.h - symbol visibility for libquarn
//
// libquarn builds with hidden visibility; QUARN_API marks the classes and
// functions that hosts and component libraries use, so that their vtables and
// type information are shared across binaries (exceptions and dynamic_cast
// work across libquarn, libquarnCore and loaded component libraries).
#pragma once

#define QUARN_API __attribute__((visibility("default")))
