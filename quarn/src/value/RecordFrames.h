// RecordFrames.h - the fixed-size parts of a record file: header, record frame, end marker
//
// Encoders fill byte arrays of the sizes in RecordFile.h; decoders check
// them. Shared by the writer (which also reads the header and the last end
// marker of a file it appends to) and the reader.
#pragma once

#include <quarn/value/RecordFile.h>

#include <cstdint>

namespace quarn::detail {

void encodeRecordFileHeader(RecordFileHeader const &header, unsigned char *bytes) noexcept;

/// The header in the first `size` bytes (all of it when size >= kHeaderBytes);
/// throws Exception when they are not one: "Not a record file (...)", "Record
/// file header cut after %u of 24 bytes", "Record file header damaged
/// (...)", "Record file format version %u is not supported ...".
RecordFileHeader decodeRecordFileHeader(unsigned char const *bytes, unsigned int size);

/// A record frame for `length` payload bytes whose CRC-32C is `crc`.
void encodeRecordFrame(std::uint32_t length, std::uint32_t crc, unsigned char *bytes) noexcept;
/// Whether 12 bytes are an intact record frame with a length in range.
bool isRecordFrame(unsigned char const *bytes) noexcept;
/// Whether 12 bytes are intact (their own CRC matches), whatever the length.
bool isIntactFrame(unsigned char const *bytes) noexcept;

void encodeEndMarker(std::uint64_t count, unsigned char *bytes) noexcept;
/// Whether 16 bytes are an intact end marker.
bool isEndMarker(unsigned char const *bytes) noexcept;

inline std::uint32_t frameLength(unsigned char const *frame) noexcept;
inline std::uint32_t frameCrc(unsigned char const *frame) noexcept;
/// The count of an end marker.
inline std::uint64_t endMarkerCount(unsigned char const *marker) noexcept;

}  // namespace quarn::detail

#include <quarn/value/ByteCodec.h>

namespace quarn::detail {

inline std::uint32_t frameLength(unsigned char const *frame) noexcept { return get32(frame); }
inline std::uint32_t frameCrc(unsigned char const *frame) noexcept { return get32(frame + 4); }
inline std::uint64_t endMarkerCount(unsigned char const *marker) noexcept { return get64(marker + 4); }

}  // namespace quarn::detail
