// ChunkedInputStream.h - test streams over byte vectors, and hex helpers for golden bytes
//
// ChunkedInputStream hands out at most `chunk` bytes per read, so a reader that
// assumes one read fills its request is caught; run golden payloads through
// every size of kChunkSizes. RecordingOutputStream collects what is written
// and counts the write calls; being neither memory stream, both take the
// coders' general path. hexBytes("08 C3 A9") and hex(bytes) keep tables and
// failure output readable.
//
//   for (int chunk : kChunkSizes) { ChunkedInputStream in(hexBytes("08 C3 A9"), chunk); in >> s; }
#pragma once

#include <quarn/value/ByteStream.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

namespace quarn::test {

using Bytes = std::vector<unsigned char>;

inline constexpr int kChunkSizes[] = {1, 2, 3, 5, 8, 1024};

/// Reads a byte vector at most `chunk` bytes at a time.
class ChunkedInputStream final : public iByteInputStream {
 public:
  ChunkedInputStream(Bytes bytes, int chunk, int version = 2) : m_bytes(std::move(bytes)), m_chunk(chunk) {
    this->version = version;
  }
  int read(void *data, int count) override {
    std::size_t n = std::min(
        {static_cast<std::size_t>(std::max(count, 0)), static_cast<std::size_t>(m_chunk), m_bytes.size() - m_position});
    if (n) std::memcpy(data, m_bytes.data() + m_position, n);
    m_position += n;
    return static_cast<int>(n);
  }
  std::size_t getPosition() const { return m_position; }
  bool atEnd() const { return m_position == m_bytes.size(); }

 private:
  Bytes m_bytes;
  int m_chunk;
  std::size_t m_position = 0;
};

/// Collects written bytes and counts the write calls.
class RecordingOutputStream final : public iByteOutputStream {
 public:
  explicit RecordingOutputStream(int version = 2) { this->version = version; }
  void write(void const *data, int count) override {
    ++writes;
    auto const *p = static_cast<unsigned char const *>(data);
    if (count > 0) bytes.insert(bytes.end(), p, p + count);
  }
  Bytes bytes;
  int writes = 0;
};

/// "08 C3 A9" -> {0x08, 0xC3, 0xA9} (blanks between bytes are optional).
inline Bytes hexBytes(char const *text) {
  Bytes out;
  for (char const *p = text; *p;) {
    if (*p == ' ') {
      ++p;
      continue;
    }
    char pair[3] = {p[0], p[1], 0};
    out.push_back(static_cast<unsigned char>(std::strtoul(pair, nullptr, 16)));
    p += p[1] ? 2 : 1;
  }
  return out;
}

/// {0x08, 0xC3, 0xA9} -> "08 C3 A9".
inline std::string hex(unsigned char const *data, std::size_t size) {
  std::string out;
  char byte[4];
  for (std::size_t i = 0; i < size; ++i) {
    std::snprintf(byte, sizeof byte, i ? " %02X" : "%02X", data[i]);
    out += byte;
  }
  return out;
}
inline std::string hex(Bytes const &bytes) { return hex(bytes.data(), bytes.size()); }

}  // namespace quarn::test
