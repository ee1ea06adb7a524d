// ByteStream.h - the byte-stream interfaces and the primitive encodings of values
//
// Values write themselves to an iByteOutputStream and read themselves back
// from an iByteInputStream. Each stream carries a `version` (1, or 2 and
// above) and one transfer operation; everything else is built on the free
// operators below. All multi-byte quantities are little-endian.
//
// Encodings (worked bytes):
//   int     -16..15 is one byte v*4 (15 -> 3C, -16 -> C0, 7 -> 1C);
//           -128..127 is 01 + 1 byte (16 -> 01 10); -32768..32767 is
//           02 + 2 bytes (-129 -> 02 7F FF); else 03 + 4 bytes
//           (40000 -> 03 40 9C 00 00). Reading, a header other than 01/02/03
//           is the value itself as a signed byte shifted right by 2 (05 -> 1).
//   double  0.0 and -0.0 -> 00; 1.0 -> 01; else 02 + 8 IEEE bytes
//           (0.5 -> 02 00 00 00 00 00 00 E0 3F). Reading, 00 -> 0.0,
//           01 -> 1.0, anything else is followed by 8 bytes.
//   bool    one byte 1 or 0; reading, any non-zero byte is true.
//   byte    one byte.
//   string  n = 0 for a null string, else length + 1 (in UTF-16 units), as an
//           int; then for n >= 2: version 1, the units as raw 2-byte values;
//           version 2+, each unit on its own as 1-3 bytes of UTF-8 (a
//           surrogate pair is two 3-byte sequences). Null -> 00, empty -> 04,
//           "\u00E9" in version 2 -> 08 C3 A9.
//
//   Reading version 2+, the lead byte gives the sequence length with loose
//   masks (F8 and FC count as 4-byte leads, FD leads 6 bytes), further bytes
//   are not checked, the decoded value keeps its low 16 bits, and a byte that
//   leads nothing (80-BF, F1, FF, ...) is a unit of its own number.
//
// A short read throws Exception with the message of the primitive that ran
// short ("EOF reading int header", "EOF reading bool", ...; a version-1
// string names the unit it stopped in, like a version-2 one), and the target
// keeps its old value. A string's storage grows only as its bytes arrive (at
// most one chunk of 64K units ahead), so a corrupt length costs nothing. A
// stream may hand out fewer bytes per `read` than asked: only a `read` that
// returns 0 (or less) ends the data. A string length below zero is refused
// with "Invalid string length prefix %d". MemoryStream.h adds inline forms
// for streams known to be memory streams (same bytes, same messages).
//
// Types with no encoding of their own (pointers such as "text", unsigned and
// 64-bit integers, char) are refused at compile time rather than silently
// written as a bool or an int: convert to one of the types above first.
#pragma once

#include <quarn/core/Export.h>
#include <quarnCore/BaseString.h>

namespace quarn {

/// Where values write their bytes. Slot 1 is the destructor, slot 2 the transfer.
struct QUARN_API iByteOutputStream {
  int version = 2;
  virtual ~iByteOutputStream();
  /// Appends `count` bytes.
  virtual void write(void const *data, int count) = 0;
};

/// Where values read their bytes from. Slot 1 is the destructor, slot 2 the transfer.
struct QUARN_API iByteInputStream {
  int version = 2;
  virtual ~iByteInputStream();
  /// Reads up to `count` bytes; returns how many were read (fewer at the end).
  virtual int read(void *data, int count) = 0;
};

QUARN_API iByteOutputStream &operator<<(iByteOutputStream &out, int value);
QUARN_API iByteOutputStream &operator<<(iByteOutputStream &out, double value);
QUARN_API iByteOutputStream &operator<<(iByteOutputStream &out, bool value);
QUARN_API iByteOutputStream &operator<<(iByteOutputStream &out, unsigned char value);
QUARN_API iByteOutputStream &operator<<(iByteOutputStream &out, BaseString<unsigned short> const &value);

// No silent conversions: `out << "text"` would otherwise write a bool, and
// `out << size_t(n)` an int of unclear width.
template <class T>
iByteOutputStream &operator<<(iByteOutputStream &out, T const *value) = delete;
iByteOutputStream &operator<<(iByteOutputStream &out, char value) = delete;
iByteOutputStream &operator<<(iByteOutputStream &out, unsigned int value) = delete;
iByteOutputStream &operator<<(iByteOutputStream &out, long value) = delete;
iByteOutputStream &operator<<(iByteOutputStream &out, unsigned long value) = delete;
iByteOutputStream &operator<<(iByteOutputStream &out, long long value) = delete;
iByteOutputStream &operator<<(iByteOutputStream &out, unsigned long long value) = delete;

QUARN_API iByteInputStream &operator>>(iByteInputStream &in, int &value);
QUARN_API iByteInputStream &operator>>(iByteInputStream &in, double &value);
QUARN_API iByteInputStream &operator>>(iByteInputStream &in, bool &value);
QUARN_API iByteInputStream &operator>>(iByteInputStream &in, unsigned char &value);
QUARN_API iByteInputStream &operator>>(iByteInputStream &in, BaseString<unsigned short> &value);

}  // namespace quarn
