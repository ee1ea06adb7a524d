// RecordFile.h - the record file format: framed, checksummed values one after another
//
// A record file holds values (records) in the order they were written, each
// with its byte length and a CRC-32C of its bytes, so that a reader knows
// where every record ends, notices any damaged byte, names the record and the
// offset where it found damage, and goes on with the records after it.
// RecordFileWriter writes these files, RecordFileReader reads them, and
// `quarn dump FILE` prints them. All numbers are little-endian; CRC-32C is
// util::crc32c (Crc32c.h).
//
// Header, 24 bytes:
//   0   8  magic number   89 51 52 46 0D 0A 1A 0A  ("\x89QRF\r\n\x1A\n": the
//                          high byte and the line ends show a file that was
//                          sent as text)
//   8   2  format version  01 00
//   10  2  stream version  02 00  the `version` of the streams the values were
//                                 written with (1, or 2 and above)
//   12  6  writer          00 00 01 00 00 00  libquarn 0.1.0 (major, minor, patch)
//   18  2  reserved        00 00  (a reader refuses other values)
//   20  4  CRC-32C of bytes 0-19
//
// Then records, each a 12-byte frame and its payload:
//   0   4  length n of the payload, 1 to kMaxRecordBytes
//   4   4  CRC-32C of the payload
//   8   4  CRC-32C of bytes 0-7 of the frame, so that a damaged length is
//          told from a damaged payload
//   12  n  payload: the value's class name, framed as in a value array (L =
//          characters + 1 as a stream int, then the L - 1 characters without a
//          terminator), then the value's own serialize() bytes
//
// An end marker closes what one writer wrote, 16 bytes:
//   0   4  FF FF FF FF
//   4   8  the number of records in the file up to here
//   12  4  CRC-32C of bytes 0-11
// Appending adds records after the end marker and a new end marker after
// them; a reader checks each marker's count against the records it found.
//
// A file of no records (libquarn 0.1.0, stream version 2), 40 bytes:
//   89 51 52 46 0D 0A 1A 0A  01 00  02 00  00 00 01 00 00 00  00 00  73 67 CB D8
//   FF FF FF FF  00 00 00 00 00 00 00 00  FF FF FF FF
// The same header, then one record, the IntegerValue 7, and its end marker:
//   1C 00 00 00  DD 03 4A 45  40 1E DB F0                    (28 bytes, CRCs)
//   01 1A  "Marlix.value.IntegerValue" (25 bytes)  1C         (name, payload)
//   FF FF FF FF  01 00 00 00 00 00 00 00  D8 82 C3 B6
#pragma once

#include <cstdint>

namespace quarn {

/// What a record file's header says.
struct RecordFileHeader {
  unsigned int formatVersion = 1;
  int streamVersion = 2;
  unsigned int writerMajor = 0, writerMinor = 0, writerPatch = 0;
};

namespace recordfile {

inline constexpr unsigned char kMagic[8] = {0x89, 'Q', 'R', 'F', 0x0D, 0x0A, 0x1A, 0x0A};
inline constexpr unsigned int kFormatVersion = 1;
inline constexpr unsigned int kHeaderBytes = 24;
inline constexpr unsigned int kFrameBytes = 12;
inline constexpr unsigned int kEndMarkerBytes = 16;
inline constexpr std::uint32_t kEndMarkerLength = 0xFFFFFFFF;
/// The longest payload a record may have (1 GiB).
inline constexpr std::uint32_t kMaxRecordBytes = 0x40000000;

}  // namespace recordfile

}  // namespace quarn
