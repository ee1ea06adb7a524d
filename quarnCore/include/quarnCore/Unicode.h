// Unicode.h - conversions between UTF-16 text and UTF-8 bytes
//
// Real UTF-8 in both directions: a surrogate pair becomes one 4-byte sequence
// and back. Input is never trusted: an unpaired surrogate in UTF-16, and any
// invalid, overlong, surrogate-encoding or truncated sequence in UTF-8, turns
// into U+FFFD (the replacement character) and conversion goes on. A null input
// gives a null output.
#pragma once

#include <quarnCore/BaseString.h>
#include <quarnCore/Export.h>

namespace quarn::util {

/// Replaces `out` with the UTF-8 form of `count` UTF-16 units.
QUARN_CORE_API void ConvertStringtoUTF8(BaseString<char> &out, unsigned short const *text, unsigned int count);
/// The UTF-8 form of a UTF-16 string (null stays null).
QUARN_CORE_API BaseString<char> ConvertStringtoUTF8(BaseString<unsigned short> const &text);
/// Replaces `out` with the UTF-16 form of `count` bytes of UTF-8.
QUARN_CORE_API void ConvertUTF8toString(BaseString<unsigned short> &out, char const *utf8, unsigned int count);
/// Replaces `out` with the UTF-16 form of NUL-terminated UTF-8 (null stays null).
QUARN_CORE_API void ConvertUTF8toString(BaseString<unsigned short> &out, char const *utf8);
QUARN_CORE_API void ConvertUTF8toString(BaseString<unsigned short> &out, BaseString<char> const &utf8);

}  // namespace quarn::util
