// RecordFileReader.cpp - frames checked one by one, payloads read into a bounded slice
//
// The reader takes bytes from its stream through a small look-ahead buffer:
// frames are read a few bytes at a time, payloads go straight into the
// record's buffer, and after a damaged frame the look-ahead holds the bytes
// being searched for the next intact frame, which are then read as usual.
#include <quarn/value/Crc32c.h>
#include <quarn/value/MemoryStream.h>
#include <quarn/value/RecordFileReader.h>
#include <quarn/value/ValueArrayValue.h>
#include <quarnCore/Exception.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <optional>
#include <string>

#include "ElementByName.h"
#include "NarrowText.h"
#include "RecordFrames.h"

namespace quarn {

namespace {

using namespace recordfile;
using ull = unsigned long long;

/// Storage for a payload grows at most this far ahead of the bytes that arrived.
constexpr std::size_t kGrowBytes = 1 << 20;
/// Bytes taken at a time while searching for an intact frame.
constexpr std::size_t kSearchChunk = 4096;

/// Reads the class name that opens a record's payload, gets the object to
/// read into from `into`, reads its bytes and checks that it read all of them.
/// The record's slice follows the loading policy of the file's stream `outer`.
template <class Into>
void decodeRecord(unsigned char const *payload, std::uint32_t size, int version, iByteInputStream const &outer,
                  Into into) {
  MemoryInputStream in(payload, size, version);
  StreamLoadingScope const follow(in, outer);
  detail::ElementReader names(in, nullptr);
  detail::ElementReader::Scratch scratch;
  Object &record = into(names, names.readName(0, scratch));
  record.deserialize(in);
  if (in.getRemaining() != 0) throw Exception("the value read %u of its %u bytes", in.getPosition(), size);
}

}  // namespace

RecordFileReader::RecordFileReader(char const *path) : m_file(std::make_unique<FileInputStream>(path)) {
  m_in = m_file.get();
  std::error_code error;
  m_fileSize = std::filesystem::file_size(path, error);
  if (error) m_fileSize = UINT64_MAX;  // not a plain file: found out by reading
  readHeader();
}

RecordFileReader::RecordFileReader(iByteInputStream &in) : m_in(&in) { readHeader(); }

RecordFileReader::~RecordFileReader() = default;

void RecordFileReader::readHeader() {
  unsigned char bytes[kHeaderBytes];
  m_header = detail::decodeRecordFileHeader(bytes, static_cast<unsigned int>(take(bytes, kHeaderBytes)));
  m_offsets.reserve(1024);
}

// ---- bytes from the stream

std::size_t RecordFileReader::take(unsigned char *data, std::size_t count) {
  std::size_t got = std::min(count, m_ahead.size() - m_aheadStart);
  if (got) {
    std::memcpy(data, m_ahead.data() + m_aheadStart, got);
    m_aheadStart += got;
  }
  if (got < count) {
    std::size_t more = detail::readAvailable(*m_in, data + got, count - got);
    m_consumed += more;
    got += more;
  }
  return got;
}

bool RecordFileReader::fill(std::size_t count) {
  std::size_t have = m_ahead.size() - m_aheadStart;
  if (have >= count) return true;
  if (m_aheadStart > kSearchChunk) {
    m_ahead.erase(m_ahead.begin(), m_ahead.begin() + static_cast<std::ptrdiff_t>(m_aheadStart));
    m_aheadStart = 0;
  }
  std::size_t old = m_ahead.size();
  m_ahead.resize(old + std::max(count - have, kSearchChunk));
  std::size_t got = detail::readAvailable(*m_in, m_ahead.data() + old, m_ahead.size() - old);
  m_consumed += got;
  m_ahead.resize(old + got);
  return m_ahead.size() - m_aheadStart >= count;
}

void RecordFileReader::skip(std::uint64_t count) {
  std::size_t ahead = std::min<std::uint64_t>(count, m_ahead.size() - m_aheadStart);
  m_aheadStart += ahead;
  count -= ahead;
  if (count == 0) return;
  if (m_file) {
    moveTo(getOffset() + count);
    return;
  }
  unsigned char scratch[kSearchChunk];
  while (count > 0) {
    std::size_t got = take(scratch, std::min<std::uint64_t>(count, sizeof scratch));
    if (got == 0) return;
    count -= got;
  }
}

void RecordFileReader::moveTo(std::uint64_t offset) {
  std::uint64_t here = getOffset();
  if (offset == here) return;
  if (m_file) {
    m_file->seek(offset);
    m_ahead.clear();
    m_aheadStart = 0;
    m_consumed = offset;
    return;
  }
  if (offset < here)
    throw Exception("Cannot go back to offset %llu: the record file is read from a stream", static_cast<ull>(offset));
  skip(offset - here);
}

std::uint64_t RecordFileReader::resync() {
  // Every position is a candidate: an intact record frame or end marker there
  // is taken as the next thing in the file.
  for (;;) {
    if (!fill(kEndMarkerBytes) && !fill(kFrameBytes)) {
      m_aheadStart = m_ahead.size();  // nothing intact follows
      return UINT64_MAX;
    }
    unsigned char const *p = m_ahead.data() + m_aheadStart;
    std::size_t have = m_ahead.size() - m_aheadStart;
    if (detail::frameLength(p) == kEndMarkerLength ? have >= kEndMarkerBytes && detail::isEndMarker(p)
                                                   : detail::isRecordFrame(p))
      return getOffset();
    ++m_aheadStart;
  }
}

// ---- records

void RecordFileReader::failRecord(char const *format, ...) {
  char detail[256];
  va_list args;
  va_start(args, format);
  std::vsnprintf(detail, sizeof detail, format, args);
  va_end(args);
  throw Exception("Record %llu at offset %llu: %hs", static_cast<ull>(m_recordIndex), static_cast<ull>(m_recordOffset),
                  detail);
}

RecordFileReader::Step RecordFileReader::step(bool readPayload) {
  for (;;) {
    std::uint64_t const offset = getOffset();
    m_recordIndex = m_index;
    m_recordOffset = offset;
    m_payloadSize = 0;
    unsigned char frame[kEndMarkerBytes];
    std::size_t got = take(frame, 4);
    if (got == 0) {
      m_atEnd = true;
      if (m_afterEndMarker) return Step::kEnd;
      throw Exception("File cut at offset %llu after %llu records: no end marker", static_cast<ull>(offset),
                      static_cast<ull>(m_index));
    }
    bool const marker = got == 4 && detail::frameLength(frame) == kEndMarkerLength;
    unsigned int const size = marker ? kEndMarkerBytes : kFrameBytes;
    got += take(frame + got, size - got);
    if (got < size) {
      m_atEnd = true;
      if (marker)
        throw Exception("End marker at offset %llu cut after %u of %u bytes", static_cast<ull>(offset),
                        static_cast<unsigned int>(got), size);
      failRecord("file cut inside its frame (%u of %u bytes)", static_cast<unsigned int>(got), size);
    }
    bool const intact = marker ? detail::isEndMarker(frame) : detail::isRecordFrame(frame);
    if (!intact) {
      // Search on from the byte after the damaged frame's first.
      std::memmove(frame, frame + 1, size - 1);
      m_ahead.insert(m_ahead.begin() + static_cast<std::ptrdiff_t>(m_aheadStart), frame, frame + size - 1);
      std::uint64_t const next = resync();
      if (next == UINT64_MAX) m_atEnd = true;
      std::string text =
          marker ? "End marker at offset " + std::to_string(offset) + " damaged"
                 : "Record " + std::to_string(m_index) + " at offset " + std::to_string(offset) + ": frame damaged";
      if (!marker) {
        if (m_index == m_offsets.size()) m_offsets.push_back(offset);  // seeking to it finds the damage again
        ++m_index;
      }
      m_afterEndMarker = false;
      if (next == UINT64_MAX) throw Exception("%hs; nothing intact follows it", text.c_str());
      throw Exception("%hs; reading goes on at offset %llu", text.c_str(), static_cast<ull>(next));
    }
    if (marker) {
      m_afterEndMarker = true;
      std::uint64_t const count = detail::endMarkerCount(frame);
      if (count != m_index)  // records went missing (or were numbered twice) in damage before it
        throw Exception("End marker at offset %llu counts %llu records, but %llu were found", static_cast<ull>(offset),
                        static_cast<ull>(count), static_cast<ull>(m_index));
      continue;
    }
    // A record.
    m_afterEndMarker = false;
    if (m_index == m_offsets.size()) m_offsets.push_back(offset);
    ++m_index;
    std::uint32_t const length = detail::frameLength(frame);
    if (!readPayload) {
      std::uint64_t const end = getOffset() + length;
      if (m_file && end <= m_fileSize) {
        skip(length);
        return Step::kRecord;
      }
      // Over a stream, or past the end of the file: the payload is read to see where it stops.
    }
    std::size_t done = 0;
    while (done < length) {
      std::size_t want = std::min<std::size_t>(length - done, std::max(done, kGrowBytes));
      if (m_payload.size() < done + want) m_payload.resize(done + want);
      std::size_t arrived = take(m_payload.data() + done, want);
      done += arrived;
      if (arrived < want) {
        m_atEnd = true;
        failRecord("file cut after %u of %u bytes", static_cast<unsigned int>(done), length);
      }
    }
    m_payloadSize = length;
    std::uint32_t const stored = detail::frameCrc(frame), computed = util::crc32c(m_payload.data(), length);
    if (stored != computed) failRecord("checksum mismatch (stored %08X, computed %08X)", stored, computed);
    return Step::kRecord;
  }
}

bool RecordFileReader::nextBytes(unsigned char const *&bytes, std::uint32_t &size) {
  if (m_atEnd || step(true) == Step::kEnd) return false;
  bytes = m_payload.data();
  size = m_payloadSize;
  return true;
}

template <class Into>
bool RecordFileReader::nextInto(Into into) {
  unsigned char const *bytes;
  std::uint32_t size;
  if (!nextBytes(bytes, size)) return false;
  try {
    std::optional<StreamLoadingScope> own;
    if (m_policy) own.emplace(*m_in, *m_policy);
    decodeRecord(bytes, size, m_header.streamVersion, *m_in, into);
  } catch (Exception const &e) {
    throw Exception("Record %llu at offset %llu: %ls", static_cast<ull>(m_recordIndex),
                    static_cast<ull>(m_recordOffset), e.getMessage().getBuffer());
  }
  return true;
}

bool RecordFileReader::next(ObjPtr<Value> &record) {
  return nextInto([&](detail::ElementReader &names, detail::ElementReader::Name name) -> Object & {
    record.reset(names.makeValue(name, 0));
    return *record;
  });
}

bool RecordFileReader::next(ObjPtr<Object> &record) {
  return nextInto([&](detail::ElementReader &names, detail::ElementReader::Name name) -> Object & {
    record.reset(names.makeValueOrRecord(name, 0));
    return *record;
  });
}

bool RecordFileReader::next(Object &record) {
  return nextInto([&](detail::ElementReader &names, detail::ElementReader::Name name) -> Object & {
    names.checkNoZero(name, 0);
    BaseString<char> const held(name.bytes, name.length);
    ClassTag tag;
    if (!ClassTag::lookup(held.getBuffer(), tag) || tag.getId() != record.getClassTag().getId())
      throw Exception("the record holds a %hs, not a %hs", held.getBuffer(), record.getClassTag().getName());
    return record;
  });
}

void RecordFileReader::seek(std::uint64_t index) {
  auto past = [&] {
    throw Exception("Record %llu is not in the file, which holds %llu records", static_cast<ull>(index),
                    static_cast<ull>(m_index));
  };
  if (index >= m_offsets.size()) {
    // On from the last record seen (or the first), over frames only: past
    // the records before `index`, then (in a file) over record `index` and back.
    moveTo(m_offsets.empty() ? kHeaderBytes : m_offsets.back());
    m_index = m_offsets.empty() ? 0 : m_offsets.size() - 1;
    m_atEnd = false;
    while (m_index < index)
      if (m_atEnd || step(false) == Step::kEnd) past();
    if (m_file && index >= m_offsets.size() && (m_atEnd || step(false) == Step::kEnd)) past();
  }
  if (index < m_offsets.size()) moveTo(m_offsets[index]);
  m_index = index;
  m_atEnd = false;
  m_afterEndMarker = false;
}

}  // namespace quarn
