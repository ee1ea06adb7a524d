// NarrowText.h - raw bytes and length-framed 8-bit text on byte streams
//
// Two payloads carry 8-bit text outside the string primitive: the narrow
// string of a FlexValue and the element class names of a ValueArrayValue.
// Both frame it the same way, whatever the stream version: n = 0 for a null
// text, else its length in bytes plus one, as a stream int; then, when n >= 2,
// the n - 1 bytes without a terminator ("ab" -> 0C 61 62, empty -> 04,
// null -> 00).
//
// Reading trusts no length: storage grows only as bytes arrive (at most one
// chunk ahead of the data), a text that ends early throws "EOF reading byte %d
// in string of length %d" (the byte it stopped at, counted from 1, and the
// length), a negative prefix throws "Invalid string length prefix %d", and
// the target is replaced only once the whole text is in.
#pragma once

#include <quarn/value/ByteStream.h>
#include <quarnCore/BaseString.h>

#include <cstddef>

namespace quarn::detail {

/// Reads until `count` bytes are in or the stream gives nothing more; returns how many arrived.
std::size_t readAvailable(iByteInputStream &in, void *data, std::size_t count);

/// Writes the framing of `count` bytes at `text` (a null `text` is the null text).
void writeNarrowText(iByteOutputStream &out, char const *text, unsigned int count);
inline void writeNarrowText(iByteOutputStream &out, BaseString<char> const &text) {
  writeNarrowText(out, text.getBuffer(), text.getLength());
}

/// Reads exactly `count` bytes of text (no prefix) into `out`, replaced on success only.
void readNarrowBytes(iByteInputStream &in, BaseString<char> &out, unsigned int count);
/// Reads exactly `count` bytes of text (no prefix) into the caller's room for them at `out`.
void readNarrowBytes(iByteInputStream &in, char *out, unsigned int count);

/// Reads a framed text into `out`, replaced on success only.
void readNarrowText(iByteInputStream &in, BaseString<char> &out);

}  // namespace quarn::detail
