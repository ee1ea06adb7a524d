// NameEncoding.h - component names as file names, and text as file-safe URL escapes
//
// Component name to file name: the result is the prefix followed by the name
// with every unit below 32 and each of the twelve characters
//   ! " % ' * . : ; < > ? |   (21 22 25 27 2A 2E 3A 3B 3C 3E 3F 7C)
// written as "%" and two lower-case hex digits, and "/" written as a backslash;
// everything else (blanks, backslashes, non-ASCII units) is kept. With prefix
// "x", "a/b.c" becomes "xa\b%2ec". Decoding turns each "%hh" back into the
// unit 0x00-0xFF but leaves backslashes alone: "a\b%2ec" becomes "a\b.c", so a
// slash does not come back. The decoder's digit test is loose, as stored file
// names need: a digit is any unit u (a-z upper-cased first) whose value
// (u < 58 ? u - 48 : u - 55), cut to a signed byte, lies in 0..15, so ":" to
// "@" pass as 3 to 9 and "G" fails. Anything else after "%", or fewer than two
// units, throws "Illegal character in file name" and leaves the name as it was.
//
// File-safe URL escapes: CgiFileUrlEncode writes the UTF-8 form of a text and
// replaces bytes by "@!uHH!" (two upper-case hex digits) instead of "%HH", so
// that the result is safe in a file name:
//   EncodeSpacesOnly        a blank becomes "%20"; bytes above 127 are escaped
//   EncodeReserved          bytes above 127 and each of
//                             blank " # $ % & + , ; < = > ? @ [ \ ] ^ ` { | }
//                           (20 22-26 2B 2C 3B-40 5B-5E 60 7B-7D) are escaped
//   EncodeReservedAndSlash  as EncodeReserved, and "/" (2F) too
// Control bytes, "~" and DEL are copied in every mode. So "a b" gives
// "a%20b" / "a@!u20!b", and U+00E9 gives "@!uC3!@!uA9!" in every mode.
// CgiFileUrlDecode turns each complete "@!uHH!" (hex digits of either case)
// into "%HH" with the digits as written and copies every other byte, giving
// the conventional percent-escaped text, not the decoded bytes.
//
// None of the encoders fails; the decoders read only within their input.
#pragma once

#include <quarn/core/Export.h>
#include <quarnCore/BaseString.h>

namespace quarn::util {

/// Which bytes CgiFileUrlEncode escapes (see the file comment).
enum CgiFileUrlEncodeCharacters : int {
  EncodeSpacesOnly = 0,
  EncodeReserved = 1,
  EncodeReservedAndSlash = 2,
};

/// Replaces `name` by `prefix` (null counts as empty) followed by the escaped name.
QUARN_API void ConvertComponentNameToFileName(BaseString<unsigned short> &name, unsigned short const *prefix);
/// Undoes the "%hh" escapes in place; "Illegal character in file name" on a
/// bad or cut escape (the name is then unchanged). Null and empty names stay so.
QUARN_API void ConvertFileNameToComponentName(BaseString<unsigned short> &name);

/// The UTF-8 form of `text` with file-safe escapes; a null text gives an empty
/// result. A mode value other than the three named ones escapes as EncodeReserved.
QUARN_API BaseString<char> CgiFileUrlEncode(unsigned short const *text, CgiFileUrlEncodeCharacters mode);
/// Turns each complete "@!uHH!" into "%HH"; a null or empty text gives an empty result.
QUARN_API BaseString<char> CgiFileUrlDecode(char const *text);

}  // namespace quarn::util
