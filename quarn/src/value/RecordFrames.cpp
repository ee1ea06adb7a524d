// RecordFrames.cpp - encoding and checking the header, record frames and end markers
#include "RecordFrames.h"

#include <quarn/value/ByteCodec.h>
#include <quarn/value/Crc32c.h>
#include <quarnCore/Exception.h>

#include <algorithm>
#include <cstring>

namespace quarn::detail {

namespace {

using namespace recordfile;

void put32(unsigned char *p, std::uint32_t v) noexcept { store(p, v); }

[[noreturn, gnu::cold]] void notARecordFile() {
  throw Exception("Not a record file (it does not start with the record file magic number)");
}

}  // namespace

void encodeRecordFileHeader(RecordFileHeader const &header, unsigned char *bytes) noexcept {
  std::memcpy(bytes, kMagic, sizeof kMagic);
  put16(bytes + 8, header.formatVersion);
  put16(bytes + 10, static_cast<std::uint32_t>(header.streamVersion));
  put16(bytes + 12, header.writerMajor);
  put16(bytes + 14, header.writerMinor);
  put16(bytes + 16, header.writerPatch);
  put16(bytes + 18, 0);
  put32(bytes + 20, util::crc32c(bytes, 20));
}

RecordFileHeader decodeRecordFileHeader(unsigned char const *bytes, unsigned int size) {
  if (std::memcmp(bytes, kMagic, std::min<std::size_t>(size, sizeof kMagic)) != 0) notARecordFile();
  if (size < kHeaderBytes) {
    if (size == 0) notARecordFile();
    throw Exception("Record file header cut after %u of %u bytes", size, kHeaderBytes);
  }
  std::uint32_t stored = get32(bytes + 20), computed = util::crc32c(bytes, 20);
  if (stored != computed)
    throw Exception("Record file header damaged (checksum %08X, computed %08X)", stored, computed);
  RecordFileHeader header;
  header.formatVersion = get16(bytes + 8);
  header.streamVersion = static_cast<int>(get16(bytes + 10));
  header.writerMajor = get16(bytes + 12);
  header.writerMinor = get16(bytes + 14);
  header.writerPatch = get16(bytes + 16);
  if (header.formatVersion != kFormatVersion)
    throw Exception("Record file format version %u is not supported (this library reads version %u)",
                    header.formatVersion, kFormatVersion);
  if (std::uint32_t reserved = get16(bytes + 18); reserved != 0)
    throw Exception("Record file header has reserved bits %04X set (written by a newer library?)", reserved);
  if (header.streamVersion == 0) throw Exception("Record file header names stream version 0");
  return header;
}

void encodeRecordFrame(std::uint32_t length, std::uint32_t crc, unsigned char *bytes) noexcept {
  put32(bytes, length);
  put32(bytes + 4, crc);
  put32(bytes + 8, util::crc32c(bytes, 8));
}

bool isIntactFrame(unsigned char const *bytes) noexcept { return get32(bytes + 8) == util::crc32c(bytes, 8); }

bool isRecordFrame(unsigned char const *bytes) noexcept {
  std::uint32_t length = get32(bytes);
  return length >= 1 && length <= kMaxRecordBytes && isIntactFrame(bytes);
}

void encodeEndMarker(std::uint64_t count, unsigned char *bytes) noexcept {
  put32(bytes, kEndMarkerLength);
  store(bytes + 4, count);
  put32(bytes + 12, util::crc32c(bytes, 12));
}

bool isEndMarker(unsigned char const *bytes) noexcept {
  return get32(bytes) == kEndMarkerLength && get32(bytes + 12) == util::crc32c(bytes, 12);
}

}  // namespace quarn::detail
