// TextUtil.h - reading numbers and booleans from text, and writing doubles
//
// Every reader comes in four shapes: UTF-16 text (`unsigned short const *`),
// 8-bit text (`char const *`, each byte taken as the code unit of the same
// number), and a BaseString of either. The rules are the same for all:
//
// Blanks are space, tab, CR, LF and U+00A0 (no-break space; byte A0 in 8-bit
// text). Leading blanks are always skipped.
//
// Integers: decimal digits with an optional leading '+' or '-' ("-12", "+7",
// "007"). Doubles: an optional '+' or '-', then a decimal number in fixed or
// scientific form ("1.5", ".5", "2.", "1e-3", "6.02E23") or "inf", "infinity",
// "nan" in any case; hexadecimal forms are not read. Decimal text is rounded to
// the nearest double; a magnitude that rounds beyond the largest double is out
// of range, one that rounds below the smallest denormal reads as a zero of its
// sign. Booleans: the word true/false, yes/no, on/off or 1/0, in ASCII letters
// of any case, standing alone (the word is the whole run of letters and digits,
// so "onion" and "10" are not booleans).
//
// With an end pointer a reader never throws: it reads as much as it can, stores
// in *end where it stopped and returns the value. When nothing could be read it
// returns 0 / 0.0 / false and stores the start of the text (before any blanks),
// so a caller reading values one after another stops when a read consumes
// nothing. An integer out of the 32-bit range saturates to INT_MIN or INT_MAX;
// a double out of range gives an infinity of its sign.
//
// Without an end pointer (nullptr) the whole text, trailing blanks allowed,
// must be one value; otherwise the reader throws Exception: "Cannot convert
// 'abc' to an integer" (or "to a double", "to a boolean"), and for a number
// outside the range "Integer out of range: '3000000000'" or "Double out of
// range: '1e999'". A null text reads as "(null)" in the message, and the text
// is cut after 80 units with "..." so that messages stay short.
//
// Lists (stringTo*Array): items separated by any run of blanks and commas
// ("1, 2,3  4"); separators before the first and after the last item are
// ignored. Each item must be a whole value, within range. The list is stored
// into `out` (replacing its contents unless `append`); reading stops at the
// first item that is not valid, keeping the items before it, and returns
// false. Returns true when the whole text was read. A null or empty text is
// an empty list.
//
// doubleToString writes the shortest text that reads back to the same double
// ("0.1", "1e+21", "-0", "5e-324"), and "nan", "inf", "-inf" for the values
// that are not finite (the sign of a NaN is not kept). Such text is at most 24
// characters.
#pragma once

#include <quarnCore/Array.h>
#include <quarnCore/BaseString.h>
#include <quarnCore/Export.h>

namespace quarn::util {

QUARN_CORE_API int stringToInteger(unsigned short const *text, unsigned short const **end = nullptr);
QUARN_CORE_API int stringToInteger(char const *text, char const **end = nullptr);
QUARN_CORE_API int stringToInteger(BaseString<unsigned short> const &text, unsigned short const **end = nullptr);
QUARN_CORE_API int stringToInteger(BaseString<char> const &text, char const **end = nullptr);

QUARN_CORE_API double stringToDouble(unsigned short const *text, unsigned short const **end = nullptr);
QUARN_CORE_API double stringToDouble(char const *text, char const **end = nullptr);
QUARN_CORE_API double stringToDouble(BaseString<unsigned short> const &text, unsigned short const **end = nullptr);
QUARN_CORE_API double stringToDouble(BaseString<char> const &text, char const **end = nullptr);

QUARN_CORE_API bool stringToBoolean(unsigned short const *text, unsigned short const **end = nullptr);
QUARN_CORE_API bool stringToBoolean(char const *text, char const **end = nullptr);
QUARN_CORE_API bool stringToBoolean(BaseString<unsigned short> const &text, unsigned short const **end = nullptr);
QUARN_CORE_API bool stringToBoolean(BaseString<char> const &text, char const **end = nullptr);

/// Reads a list of integers into `out` (see the file comment); false at the first bad item.
QUARN_CORE_API bool stringToIntegerArray(unsigned short const *text, Array<int> &out, bool append);
QUARN_CORE_API bool stringToIntegerArray(char const *text, Array<int> &out, bool append);
QUARN_CORE_API bool stringToIntegerArray(BaseString<unsigned short> const &text, Array<int> &out, bool append);
QUARN_CORE_API bool stringToIntegerArray(BaseString<char> const &text, Array<int> &out, bool append);

QUARN_CORE_API bool stringToDoubleArray(unsigned short const *text, Array<double> &out, bool append);
QUARN_CORE_API bool stringToDoubleArray(char const *text, Array<double> &out, bool append);
QUARN_CORE_API bool stringToDoubleArray(BaseString<unsigned short> const &text, Array<double> &out, bool append);
QUARN_CORE_API bool stringToDoubleArray(BaseString<char> const &text, Array<double> &out, bool append);

QUARN_CORE_API bool stringToBooleanArray(unsigned short const *text, Array<bool> &out, bool append);
QUARN_CORE_API bool stringToBooleanArray(char const *text, Array<bool> &out, bool append);
QUARN_CORE_API bool stringToBooleanArray(BaseString<unsigned short> const &text, Array<bool> &out, bool append);
QUARN_CORE_API bool stringToBooleanArray(BaseString<char> const &text, Array<bool> &out, bool append);

/// Writes the shortest round-trip text of `value` into `buffer`, NUL-terminated
/// and cut to `size` - 1 units. Returns the number of units written before the
/// terminator (0, writing nothing, when `size` is 0).
QUARN_CORE_API unsigned int doubleToString(double value, unsigned short *buffer, unsigned int size);
QUARN_CORE_API unsigned int doubleToString(double value, char *buffer, unsigned int size);
/// The shortest round-trip text of `value` as a string.
QUARN_CORE_API BaseString<unsigned short> doubleToString(double value);

/// Hash of a double: its 64 bits folded as (bits ^ (bits >> 32)), truncated to
/// 32 bits. Equal bit patterns hash equal; 0.0 and -0.0 (and NaNs with different
/// payloads) are different bit patterns and usually hash differently.
QUARN_CORE_API unsigned int doubleHashCode(double value) noexcept;

}  // namespace quarn::util
