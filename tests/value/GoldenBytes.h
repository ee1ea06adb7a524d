// GoldenBytes.h - golden payloads for the value tests: hex text, reading back, every truncation
//
// golden("04 1C") and hexOf(bytes) keep byte tables readable; readEach reads
// a payload back through every chunk size of kChunkSizes and from a memory
// stream (whose readers work on the buffer directly), the last time into the
// value the memory stream filled before, as a pooled value is read into
// again, and checks that all of it was consumed; expectEveryCutFails reads
// every proper prefix of a payload through both kinds of stream and checks
// that each fails with a quarn::Exception and leaves the target as it was.
#pragma once

#include <gtest/gtest.h>
#include <quarnCore/Exception.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>

#include "value/ValueTesting.h"

namespace quarn::test {

/// "08 C3 A9" -> {0x08, 0xC3, 0xA9}; blanks between bytes are optional.
inline Bytes golden(char const *hex) {
  Bytes out;
  for (char const *p = hex; *p;) {
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

/// Bytes of a text, for names inside payloads.
inline Bytes bytesOfText(std::string const &text) { return Bytes(text.begin(), text.end()); }

inline Bytes operator+(Bytes a, Bytes const &b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

inline std::string hexOf(Bytes const &bytes) {
  std::string out;
  char byte[4];
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    std::snprintf(byte, sizeof byte, i ? " %02X" : "%02X", bytes[i]);
    out += byte;
  }
  return out;
}

/// Reads `bytes` into a fresh T through every chunk size and from memory, then
/// once more into the T read from memory, and hands each result to `check`.
template <class T>
void readEach(Bytes const &bytes, int version, std::function<void(T const &)> const &check) {
  for (int chunk : kChunkSizes) {
    ChunkedInputStream in(bytes, chunk, version);
    T read;
    read.deserialize(in);
    EXPECT_TRUE(in.atEnd()) << "chunk " << chunk << ": " << hexOf(bytes);
    check(read);
  }
  T read;
  for (int again = 0; again < 2; ++again) {
    MemoryInputStream memory(bytes.data(), static_cast<unsigned int>(bytes.size()), version);
    read.deserialize(memory);
    EXPECT_EQ(memory.getPosition(), bytes.size()) << "memory: " << hexOf(bytes);
    check(read);
  }
}

/// Every proper prefix of `bytes` fails to read into a copy of `before`, which keeps its content.
template <class T>
void expectEveryCutFails(Bytes const &bytes, T const &before, int version = 2) {
  for (std::size_t cut = 0; cut < bytes.size(); ++cut) {
    T target(before);
    ChunkedInputStream in(Bytes(bytes.begin(), bytes.begin() + static_cast<long>(cut)), 3, version);
    try {
      target.deserialize(in);
      ADD_FAILURE() << "no failure at cut " << cut << " of " << hexOf(bytes);
    } catch (Exception const &) {
    }
    EXPECT_EQ(target.compare(before), 0) << "cut " << cut << " of " << hexOf(bytes);
    MemoryInputStream memory(bytes.data(), static_cast<unsigned int>(cut), version);
    try {
      target.deserialize(memory);
      ADD_FAILURE() << "no failure from memory at cut " << cut << " of " << hexOf(bytes);
    } catch (Exception const &) {
    }
    EXPECT_EQ(target.compare(before), 0) << "memory, cut " << cut << " of " << hexOf(bytes);
  }
}

}  // namespace quarn::test
