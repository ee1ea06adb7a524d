// Export.h - symbol visibility for libquarnCore
//
// Both libraries build with hidden visibility; every class or function that
// other binaries (libquarn, component libraries, hosts) use is marked with
// QUARN_CORE_API so that its symbols, vtable and type information are shared.
// Sharing the type information is what lets an exception thrown in one
// library be caught by type in another.
#pragma once

#define QUARN_CORE_API __attribute__((visibility("default")))
