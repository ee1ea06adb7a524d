// ArrayCoding.h - writing and reading runs of array elements on byte streams
//
// Elements go out with the same primitive encodings as `out << element`, and
// come back with the same messages as `in >> element`; only the number of
// calls differs. When the stream is one of our memory streams the coders work
// on its buffer directly: encoding a chunk of elements per reservation, and
// decoding with one bounds check per element.
//
// A count read from a stream is never trusted. Nothing is allocated for it up
// front: from a memory stream storage is taken only for a count the bytes
// there can hold (every element takes at least one byte), from any other
// stream storage grows as elements actually arrive (at most 4096 reserved
// ahead). A run that ends early throws the EOF message of the
// primitive that ran short, after consuming every byte there was, and leaves
// the caller's array as it was. From a memory stream the elements are found
// complete before the caller's array is touched, and are then decoded into
// the storage it kept (a pooled array reads without allocating).
#pragma once

#include <algorithm>
#include <cstring>
#include <type_traits>
#include <typeinfo>
#include <utility>

#include <quarn/value/ByteCodec.h>
#include <quarn/value/ByteStream.h>
#include <quarn/value/MemoryStream.h>
#include <quarnCore/Array.h>

namespace quarn::detail {

/// The stream as one of our memory streams (exact class), or null.
inline MemoryOutputStream *asMemoryStream(iByteOutputStream &out) noexcept {
  return typeid(out) == typeid(MemoryOutputStream) ? static_cast<MemoryOutputStream *>(&out) : nullptr;
}
inline MemoryInputStream *asMemoryStream(iByteInputStream &in) noexcept {
  return typeid(in) == typeid(MemoryInputStream) ? static_cast<MemoryInputStream *>(&in) : nullptr;
}

/// Throws Exception with `message` (one of the primitives' EOF messages).
[[noreturn]] void failArrayRead(char const *message);
/// Throws "Invalid array element count %d".
[[noreturn]] void failElementCount(int count);

/// Elements coded per reservation of the output buffer, and reserved ahead when reading.
inline constexpr unsigned int kElementChunk = 4096;

/// Writes `count` elements with Codec.
template <class Codec>
void writeElements(iByteOutputStream &out, typename Codec::Type const *p, unsigned int count) {
  using T = typename Codec::Type;
  if (MemoryOutputStream *memory = asMemoryStream(out)) [[likely]] {
    while (count) {
      unsigned int n = std::min(count, kElementChunk);
      unsigned char *const begin = memory->reserveTail(n * Codec::kMax);
      unsigned char *q = begin;
      if constexpr (Codec::kMax == 1 && sizeof(T) == 1) {
        std::memcpy(q, p, n);  // bytes as they are; a bool is stored as 0 or 1
        q += n;
      } else {
        for (unsigned int i = 0; i < n; ++i) q += Codec::encode(p[i], q);
      }
      memory->commitTail(static_cast<unsigned int>(q - begin));
      p += n;
      count -= n;
    }
    return;
  }
  unsigned char buffer[256 * Codec::kMax];
  while (count) {
    unsigned int n = std::min(count, 256u);
    unsigned char *q = buffer;
    for (unsigned int i = 0; i < n; ++i) q += Codec::encode(p[i], q);
    out.write(buffer, static_cast<int>(q - buffer));
    p += n;
    count -= n;
  }
}

/// Reads `count` elements with `readOne(in, element)` from any stream into a
/// new array that replaces `out` once complete.
template <class T, class ReadOne>
void readElementsOneByOne(iByteInputStream &in, Array<T> &out, unsigned int count, ReadOne readOne) {
  Array<T> result;
  result.reserve(std::min(count, kElementChunk));
  for (unsigned int i = 0; i < count; ++i) {
    T element{};
    readOne(in, element);
    result.append(std::move(element));
  }
  out.swap(result);
}

/// Checks that `memory` holds `count` elements of Codec from its cursor; when
/// it does not, consumes all that is left and throws the EOF message of the
/// primitive that ran short, as reading them one by one would. Looks at the
/// headers only when fewer than count * Codec::kMaxWire bytes are left.
template <class Codec>
void requireElements(MemoryInputStream &memory, unsigned int count) {
  unsigned int const left = memory.getRemaining();
  if (left / Codec::kMaxWire >= count) return;
  unsigned char const *q = memory.getCursor();
  unsigned char const *const end = q + left;
  for (unsigned int i = 0; i < count; ++i) {
    if (q == end || Codec::size(*q) > static_cast<unsigned int>(end - q)) [[unlikely]] {
      memory.skip(left);
      failArrayRead(q == end ? Codec::kHeaderEof : Codec::bodyEof(*q));
    }
    q += Codec::size(*q);
  }
}

/// Decodes `count` elements of Codec that requireElements found in `memory`,
/// handing element i to store(i, value), and consumes them.
template <class Codec, class Store>
void decodeElements(MemoryInputStream &memory, unsigned int count, Store store) {
  unsigned char const *const begin = memory.getCursor();
  unsigned char const *const end = begin + memory.getRemaining();
  unsigned char const *q = begin;
  for (unsigned int i = 0; i < count; ++i) {
    // The wide decoder while a longest form would fit, so only the last few look at sizes.
    if (static_cast<unsigned int>(end - q) >= Codec::kMaxWire) [[likely]]
      store(i, Codec::decodeWide(q));
    else
      store(i, Codec::decode(q));
    q += Codec::size(*q);
  }
  memory.advance(static_cast<unsigned int>(q - begin));
}

/// Reads `count` elements with Codec into `out` (replacing its contents).
template <class Codec>
void readElements(iByteInputStream &in, Array<typename Codec::Type> &out, unsigned int count) {
  using T = typename Codec::Type;
  MemoryInputStream *memory = asMemoryStream(in);
  if (!memory) {
    readElementsOneByOne(in, out, count, [](iByteInputStream &s, T &element) { s >> element; });
    return;
  }
  unsigned char const *const begin = memory->getCursor();
  unsigned int const left = memory->getRemaining();
  unsigned char const *const end = begin + left;
  // Every element takes at least one byte, so from here on storage is
  // bounded by the data; a run that ends early reports where it ends.
  auto runShort = [&](unsigned char const *q) {
    memory->skip(left);
    failArrayRead(q == end ? Codec::kHeaderEof : Codec::bodyEof(*q));
  };
  if constexpr (Codec::kMax == 1) {
    if (left < count) runShort(end);
    out.resize(count);
    if constexpr (std::is_same_v<T, unsigned char>) {
      if (count) std::memcpy(out.getBuffer(), begin, count);  // an empty array has no buffer
    } else {
      for (unsigned int i = 0; i < count; ++i) out.getBuffer()[i] = Codec::decode(begin + i);
    }
    memory->skip(count);
  } else {
    requireElements<Codec>(*memory, count);
    out.resize(count);  // the storage it kept, grown only for more; nothing fails after this
    T *dst = out.getBuffer();
    decodeElements<Codec>(*memory, count, [dst](unsigned int i, T value) { dst[i] = value; });
  }
}

}  // namespace quarn::detail
