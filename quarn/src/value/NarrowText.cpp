// NarrowText.cpp - reading and writing framed 8-bit text
#include "NarrowText.h"

#include <quarnCore/Exception.h>

#include <algorithm>

namespace quarn::detail {

namespace {

/// Storage reserved ahead of the bytes that actually arrived.
constexpr unsigned int kGrowBytes = 64 * 1024;

[[noreturn, gnu::cold]] void failShort(std::size_t byte, unsigned int length) {
  throw Exception("EOF reading byte %d in string of length %d", static_cast<int>(byte), static_cast<int>(length));
}

[[noreturn, gnu::cold]] void failPrefix(int n) { throw Exception("Invalid string length prefix %d", n); }

}  // namespace

std::size_t readAvailable(iByteInputStream &in, void *data, std::size_t count) {
  auto *p = static_cast<unsigned char *>(data);
  std::size_t got = 0;
  while (got < count) {
    std::size_t want = std::min<std::size_t>(count - got, 0x40000000);
    int r = in.read(p + got, static_cast<int>(want));
    if (r <= 0) break;
    got += std::min(static_cast<std::size_t>(r), want);
  }
  return got;
}

void writeNarrowText(iByteOutputStream &out, char const *text, unsigned int count) {
  // A BaseString holds fewer than 0x7FFFFFFF units, so count + 1 fits an int.
  int n = text ? static_cast<int>(count + 1) : 0;
  out << n;
  if (n >= 2) out.write(text, static_cast<int>(count));
}

void readNarrowBytes(iByteInputStream &in, BaseString<char> &out, unsigned int count) {
  BaseString<char> result;
  result.resize(0);
  for (unsigned int done = 0; done < count;) {
    unsigned int chunk = std::min(count - done, kGrowBytes);
    result.resize(done + chunk);
    std::size_t got = readAvailable(in, result.getBuffer() + done, chunk);
    if (got != chunk) failShort(done + got + 1, count);
    done += chunk;
  }
  out.swap(result);
}

void readNarrowBytes(iByteInputStream &in, char *out, unsigned int count) {
  std::size_t got = readAvailable(in, out, count);
  if (got != count) failShort(got + 1, count);
}

void readNarrowText(iByteInputStream &in, BaseString<char> &out) {
  int n;
  in >> n;
  if (n < 0) failPrefix(n);
  if (n == 0) {
    out.setNull();
    return;
  }
  readNarrowBytes(in, out, static_cast<unsigned int>(n - 1));
}

}  // namespace quarn::detail
