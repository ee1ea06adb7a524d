// TimeStamp.h - reading a textual time stamp into calendar seconds
//
// ConvertTime reads the layout "Wed Jan 02 02:03:55 1980" with the scan
// format "%3s %3s %d %d:%d:%d %d" (weekday name, month name, day of month,
// hours, minutes, seconds, year); the scan stops at the first field that does
// not fit, and the fields it did not read stay 0. Names match ignoring the
// case of A-Z, weekdays "sun".."sat" and months "jan".."dec"; an unknown month
// reads as January. The year must lie in 1902..2037, or be exactly 1, which
// stands for 1970 (so "Thu Jan 01 00:00:00 1" is the Unix epoch in local
// time). Fields out of their usual range (day 0, hour 25) carry over the way
// the C library's mktime normalises them.
//
// The result is the local-time conversion of those fields by mktime, with
// daylight saving left for mktime to decide, so it depends on the machine's
// time zone (TZ). Failure is -1: a null or empty text, a year outside the
// window; -1 is also what mktime gives for a time it cannot represent.
#pragma once

#include <quarn/core/Export.h>

namespace quarn::util {

/// Calendar seconds (local time) of a time stamp such as "Wed Jan 02 02:03:55 1980"; -1 on failure.
QUARN_API long ConvertTime(unsigned short const *text);

}  // namespace quarn::util
