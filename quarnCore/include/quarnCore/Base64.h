// Base64.h - bytes to Base64 text and back (standard alphabet, '=' padding)
//
// Encoding uses the alphabet A-Z a-z 0-9 + / and pads the last group of four
// characters with '=' ("f" -> "Zg==", "fo" -> "Zm8=", "foo" -> "Zm9v"). It always
// writes a non-null string, empty for no bytes, without line breaks.
//
// Decoding skips space, tab, CR and LF anywhere in the text, so line-wrapped
// text reads. Anything else is an error: a character outside the alphabet, '='
// anywhere but in place of the last one or two characters, a character count
// (blanks aside) that is not a multiple of four, or pad bits that are not zero
// (so each byte sequence has exactly one accepted text). An error throws
// Exception "Invalid Base64 text" and leaves the output as it was. A null or
// empty text decodes to no bytes.
#pragma once

#include <quarnCore/Array.h>
#include <quarnCore/BaseString.h>
#include <quarnCore/Export.h>

namespace quarn::util {

class QUARN_CORE_API Base64 {
 public:
  /// Replaces `out` with the Base64 text of `count` bytes at `data`.
  static void Encode(unsigned char const *data, unsigned int count, BaseString<unsigned short> &out);
  /// Replaces `out` with the Base64 text of every byte of `data`.
  static void Encode(Array<unsigned char> const &data, BaseString<unsigned short> &out);
  /// Replaces `out` with the Base64 text of `count` bytes of `data` from `start`.
  /// A range that leaves the array throws InvalidIndexException naming the first
  /// index outside it (start when start is beyond the size, else the size).
  static void EncodeRange(Array<unsigned char> const &data, unsigned int start, unsigned int count,
                          BaseString<unsigned short> &out);
  /// Replaces `out` with the bytes of `text`; throws Exception "Invalid Base64 text".
  static void Decode(BaseString<unsigned short> const &text, Array<unsigned char> &out);
};

}  // namespace quarn::util
