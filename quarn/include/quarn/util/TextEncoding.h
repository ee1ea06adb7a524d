// TextEncoding.h - text as XML character data, and bytes as printable ASCII
//
// XMLEncode replaces, one pass each and in this order, every
//   &  "  '  >  <  TAB  CR  LF
// by &amp; &quot; &apos; &gt; &lt; &#x9; &#xD; &#xA;. XMLDecode replaces, in
// this order, &amp; &lt; &gt; &quot; &apos; &#x9; &#xD; &#xA; by the character.
// Each pass replaces every occurrence left to right and does not look at what
// it wrote, but the next pass does: because &amp; is decoded first, "&amp;lt;"
// decodes all the way to "<". Stored texts were written by decoders that do
// this, so it stays. Only these exact, case-sensitive forms are recognised.
//
// A printable ASCII byte is TAB, LF or 32 to 126 (CR and every byte above 127
// are not). ConvertToPrintableASCII leaves a text of printable bytes alone and
// otherwise writes every other byte c, taken as a signed char, as "0x" and
// three decimal numbers h, m, l with c = 64 h + 8 m + l, each quotient
// truncated toward zero: CR is "0x015", DEL "0x177", and a byte above 127 has
// negative parts (E9 is "0x0-2-7", 80 is "0x-200"). The form is octal behind a
// "0x" prefix; logs that are read back rely on it.
//
// None of these fails; a null string stays null.
#pragma once

#include <quarn/core/Export.h>
#include <quarnCore/BaseString.h>

namespace quarn::util {

/// Escapes the XML special characters of `text` in place.
QUARN_API void XMLEncode(BaseString<unsigned short> &text);
/// Replaces the escapes that XMLEncode writes by their characters, in place.
QUARN_API void XMLDecode(BaseString<unsigned short> &text);
/// TAB, LF and 32..126.
QUARN_API bool IsPrintableASCII(char c);
/// Writes each byte that is not printable as "0x" and its signed octal digits, in place.
QUARN_API void ConvertToPrintableASCII(BaseString<char> &text);

}  // namespace quarn::util
