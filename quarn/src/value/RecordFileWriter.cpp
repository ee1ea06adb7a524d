// RecordFileWriter.cpp - records serialised into memory, then framed onto the file
#include <quarn/value/Crc32c.h>
#include <quarn/value/RecordFileWriter.h>
#include <quarn/value/Value.h>
#include <quarnCore/Exception.h>

#include <cstring>
#include <filesystem>
#include <system_error>

#include "NarrowText.h"
#include "RecordFrames.h"

namespace quarn {

namespace {

using namespace recordfile;

/// The header of a new file, or of the file being appended to, whose record
/// count goes to `count`. Checks that an existing file can take more records.
RecordFileHeader prepare(char const *path, RecordFileWriter::Mode mode, int version, std::uint64_t &count) {
  RecordFileHeader header;
  header.streamVersion = version;
  header.writerMajor = QUARN_VERSION_MAJOR;
  header.writerMinor = QUARN_VERSION_MINOR;
  header.writerPatch = QUARN_VERSION_PATCH;
  count = 0;
  if (version <= 0 || version > 0xFFFF) throw Exception("Invalid stream version %d for a record file", version);
  std::error_code error;
  std::uintmax_t size = path ? std::filesystem::file_size(path, error) : 0;
  if (mode != RecordFileWriter::kAppend || error || size == 0) return header;

  FileInputStream in(path);
  unsigned char bytes[kHeaderBytes];
  unsigned int got = static_cast<unsigned int>(detail::readAvailable(in, bytes, kHeaderBytes));
  try {
    RecordFileHeader existing = detail::decodeRecordFileHeader(bytes, got);
    existing.writerMajor = header.writerMajor;
    existing.writerMinor = header.writerMinor;
    existing.writerPatch = header.writerPatch;
    header = existing;
  } catch (Exception const &e) {
    throw Exception("Cannot append to %hs: %hs", path, e.what());
  }
  unsigned char marker[kEndMarkerBytes];
  if (size >= kHeaderBytes + kEndMarkerBytes) {
    in.seek(size - kEndMarkerBytes);
    got = static_cast<unsigned int>(detail::readAvailable(in, marker, kEndMarkerBytes));
  }
  if (size < kHeaderBytes + kEndMarkerBytes || got != kEndMarkerBytes || !detail::isEndMarker(marker))
    throw Exception("Cannot append to %hs: it does not end with an end marker (it was cut, or is still being written)",
                    path);
  count = detail::endMarkerCount(marker);
  return header;
}

}  // namespace

RecordFileWriter::RecordFileWriter(char const *path, Mode mode, int version)
    : m_header(prepare(path, mode, version, m_count)),
      m_file(path, m_header.streamVersion, mode == kAppend ? FileOutputStream::kAppend : FileOutputStream::kTruncate),
      m_buffer(m_header.streamVersion) {
  // A new file, or an appended one that held nothing yet: the header first.
  std::error_code error;
  if (mode == kAppend && std::filesystem::file_size(path, error) != 0 && !error) return;
  unsigned char bytes[kHeaderBytes];
  detail::encodeRecordFileHeader(m_header, bytes);
  m_file.write(bytes, kHeaderBytes);
}

RecordFileWriter::~RecordFileWriter() {
  try {
    close();
  } catch (Exception const &) {
  }
}

void RecordFileWriter::write(Object const &record) {
  m_buffer.clear();
  char const *name = record.getClassTag().getName();
  detail::writeNarrowText(m_buffer, name, name ? static_cast<unsigned int>(std::strlen(name)) : 0);
  record.serialize(m_buffer);
  unsigned int size = m_buffer.getSize();
  if (size > kMaxRecordBytes) [[unlikely]]
    throw Exception("A record of %u bytes is longer than a record file allows (%u)", size, kMaxRecordBytes);
  unsigned char frame[kFrameBytes];
  detail::encodeRecordFrame(size, util::crc32c(m_buffer.getBuffer(), size), frame);
  m_file.write(frame, kFrameBytes);
  m_file.write(m_buffer.getBuffer(), static_cast<int>(size));
  ++m_count;
}

void RecordFileWriter::close() {
  if (!m_file.isOpen()) return;
  unsigned char marker[kEndMarkerBytes];
  detail::encodeEndMarker(m_count, marker);
  try {
    m_file.write(marker, kEndMarkerBytes);
  } catch (...) {
    try {
      m_file.close();
    } catch (Exception const &) {
      // the write's failure is the one to tell
    }
    throw;
  }
  m_file.close();
}

}  // namespace quarn
