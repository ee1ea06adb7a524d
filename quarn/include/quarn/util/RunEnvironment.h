// RunEnvironment.h - what a component can learn about the run it belongs to
//
// The run facts come from the run-level properties that the platform places
// in the run context (iContext::getRunProperties), found by their exact,
// case-sensitive names; the value's text (Value::getString) is written to the
// output. A null context, or one without run properties, counts as a run
// that defines none of them.
//
// The getters differ in what they leave when the property is absent, and the
// difference is relied on: getUserName and getSessionID leave the output as
// the caller set it, so a pre-filled default survives a run that defines no
// user or session; the three directory getters clear the output first.
//
// getHostName and getUserName without a context ask the operating system.
#pragma once

#include <quarn/core/Export.h>
#include <quarnCore/BaseString.h>

namespace quarn {

struct iContext;

namespace util {

/// "USERNAME"; absent: `out` is left as it was.
QUARN_API void getUserName(iContext const *context, BaseString<unsigned short> &out);
/// "SessionID"; absent: `out` is left as it was.
QUARN_API void getSessionID(iContext const *context, BaseString<unsigned short> &out);
/// "RunDirectoryLocal"; absent: `out` is empty.
QUARN_API void getLocalRunDirectory(iContext const *context, BaseString<unsigned short> &out);
/// "MarlixRoot"; absent: `out` is empty.
QUARN_API void getRootDirectory(iContext const *context, BaseString<unsigned short> &out);
/// "RunDirectoryLocal" followed by "/temp"; absent: "/temp" alone.
QUARN_API void getLocalRunDirectoryTemp(iContext const *context, BaseString<unsigned short> &out);

/// The machine's name (gethostname), at most 15 UTF-16 units; empty when the
/// system gives none.
QUARN_API void getHostName(BaseString<unsigned short> &out);
/// The account name of the effective user (getpwuid_r), at most 127 UTF-16
/// units; empty when the system knows no name for the user.
QUARN_API void getUserName(BaseString<unsigned short> &out);

}  // namespace util
}  // namespace quarn
