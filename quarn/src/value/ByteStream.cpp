// ByteStream.cpp - the primitive encodings of values on byte streams
//
// Every fixed-size primitive is built in a small local buffer and handed to
// the stream in one `write`; strings are encoded chunk by chunk through a
// stack buffer. When the stream is one of our memory streams the coders work
// on its buffer directly instead (same bytes, same messages, same position
// afterwards), which saves a virtual call and a copy per primitive.
//
// Reading trusts no count taken from the stream. A string grows only as its
// bytes actually arrive (a prefix of two billion units on a ten-byte stream
// costs one small chunk, not gigabytes), a negative prefix is refused, and a
// failure leaves the caller's value as it was: stream data is decoded into a
// temporary that is swapped in at the end, memory data is checked for
// completeness before the caller's string is touched.
#include <quarn/value/ByteStream.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <typeinfo>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

#include <quarn/value/MemoryStream.h>
#include <quarnCore/Exception.h>

namespace quarn {

iByteOutputStream::~iByteOutputStream() = default;
iByteInputStream::~iByteInputStream() = default;

namespace {

using detail::BoolCodec;
using detail::ByteCodec;
using detail::DoubleCodec;
using detail::IntCodec;
using WString = BaseString<unsigned short>;

/// The stream as one of our memory streams, or null. Only the exact classes
/// count (they are final), checked once per call by the address of their
/// type_info: two loads and a compare on the path every value takes. Should
/// a stream of that class ever show a second type_info, it takes the general
/// path, which gives the same bytes.
MemoryOutputStream *asMemory(iByteOutputStream &out) noexcept {
  return &typeid(out) == &typeid(MemoryOutputStream) ? static_cast<MemoryOutputStream *>(&out) : nullptr;
}
MemoryInputStream *asMemory(iByteInputStream &in) noexcept {
  return &typeid(in) == &typeid(MemoryInputStream) ? static_cast<MemoryInputStream *>(&in) : nullptr;
}

// Failures: one cold place each.
[[noreturn, gnu::cold, gnu::noinline]] void fail(char const *message) { throw Exception("%hs", message); }
[[noreturn, gnu::cold, gnu::noinline]] void failNumber(char const *format, int number) {
  throw Exception(format, number);
}
/// The string ran short at unit `unit` (counted from 1) of `length`.
[[noreturn, gnu::cold, gnu::noinline]] void failString(std::size_t unit, unsigned int length) {
  throw Exception("EOF reading byte %d in string of length %d", static_cast<int>(unit), static_cast<int>(length));
}
constexpr char kEofAdditional[] = "EOF reading wchar_t additional bytes";

/// Reads until `count` bytes have arrived or the stream gives nothing more; returns how many arrived.
std::size_t readFully(iByteInputStream &in, unsigned char *p, std::size_t count) {
  std::size_t got = 0;
  while (got < count) {
    std::size_t want = std::min<std::size_t>(count - got, 0x40000000);
    int r = in.read(p + got, static_cast<int>(want));
    if (r <= 0) break;
    got += std::min(static_cast<std::size_t>(r), want);
  }
  return got;
}

// The fixed-size primitives. The common case (a memory stream with room, or
// with the whole value left to read) is handled in the operator itself, which
// then needs no stack frame; everything else is a tail call to the cold
// functions below.

/// Any stream, or a memory stream that has to grow first.
template <class Codec>
[[gnu::noinline]] iByteOutputStream &putSlow(iByteOutputStream &out, typename Codec::Type value) {
  if (MemoryOutputStream *memory = asMemory(out)) {
    detail::putTo<Codec>(*memory, value);
    return out;
  }
  unsigned char bytes[Codec::kMax];
  out.write(bytes, static_cast<int>(Codec::encode(value, bytes)));
  return out;
}

template <class Codec>
iByteOutputStream &put(iByteOutputStream &out, typename Codec::Type value) {
  if (MemoryOutputStream *memory = asMemory(out)) [[likely]] {
    if (detail::putToRoom<Codec>(*memory, value)) [[likely]]
      return out;
  }
  return putSlow<Codec>(out, value);
}

/// Any stream, or a memory stream near its end: reads what there is and
/// reports what ran short.
template <class Codec>
[[gnu::noinline]] iByteInputStream &getSlow(iByteInputStream &in, typename Codec::Type &value) {
  if (MemoryInputStream *memory = asMemory(in)) {
    if (detail::getFrom<Codec>(*memory, value)) return in;
  }  // short: the reads below run into the end and report it
  unsigned char bytes[Codec::kMax];
  if (readFully(in, bytes, 1) != 1) fail(Codec::kHeaderEof);
  unsigned int size = Codec::size(bytes[0]);
  if (size > 1 && readFully(in, bytes + 1, size - 1) != size - 1) fail(Codec::bodyEof(bytes[0]));
  value = Codec::decode(bytes);
  return in;
}

template <class Codec>
iByteInputStream &get(iByteInputStream &in, typename Codec::Type &value) {
  if (MemoryInputStream *memory = asMemory(in)) [[likely]] {
    if (detail::getWide<Codec>(*memory, value)) [[likely]]
      return in;
  }
  return getSlow<Codec>(in, value);
}

// ---------------------------------------------------------------------------
// Strings, version 2 and above: each UTF-16 unit on its own as UTF-8.

/// One value in the general UTF-8 scheme of 1 to 6 bytes; returns the byte count.
/// Units are 16-bit, so only the 1- to 3-byte forms reach the wire.
constexpr unsigned int encodeUtf8(std::uint32_t v, unsigned char *p) noexcept {
  if (v < 0x80) {
    p[0] = static_cast<unsigned char>(v);
    return 1;
  }
  unsigned int length = v < 0x800 ? 2 : v < 0x10000 ? 3 : v < 0x200000 ? 4 : v < 0x4000000 ? 5 : 6;
  for (unsigned int k = length - 1; k > 0; --k, v >>= 6) p[k] = static_cast<unsigned char>(0x80 | (v & 0x3F));
  p[0] = static_cast<unsigned char>((0xFF00u >> length) | v);  // lead marks C0, E0, F0, F8, FC
  return length;
}

/// Sequence length of a lead byte: 1 for ASCII; 0 for a byte that leads nothing.
/// The masks are loose on purpose: F8, FA, FC and FE already count as 4-byte
/// leads, so the 5-byte test never matches and only FD leads 6 bytes.
constexpr unsigned int leadLength(unsigned int b) noexcept {
  if (b < 0x80) return 1;
  if ((b & 0xE0) == 0xC0) return 2;
  if ((b & 0xF0) == 0xE0) return 3;
  if ((b & 0xF1) == 0xF0) return 4;
  if ((b & 0xFD) == 0xF8) return 5;
  if ((b & 0xFE) == 0xFC) return 6;
  return 0;
}

/// Per byte: how many bytes its unit takes (a byte that leads nothing is a
/// unit by itself, standing for its own number) and which of its bits count.
struct Lead {
  unsigned char length;
  unsigned char payload;
};
constexpr std::array<Lead, 256> kLeads = [] {
  std::array<Lead, 256> t{};
  for (unsigned int b = 0; b < 256; ++b) {
    unsigned int length = leadLength(b);
    t[b] = length >= 2 ? Lead{static_cast<unsigned char>(length), static_cast<unsigned char>(0x7F >> length)}
                       : Lead{1, 0xFF};
  }
  return t;
}();

// ASCII runs go kBlock units at a time: SSE2 where there is one, else
// eight-byte words.
constexpr std::ptrdiff_t kBlock = 16;

/// Writes the next kBlock units as bytes when all are below 0x80; false (nothing written) otherwise.
inline bool narrowBlock(unsigned short const *s, unsigned char *p) noexcept {
#ifdef __SSE2__
  __m128i a = _mm_loadu_si128(reinterpret_cast<__m128i const *>(s));
  __m128i b = _mm_loadu_si128(reinterpret_cast<__m128i const *>(s + 8));
  __m128i high = _mm_and_si128(_mm_or_si128(a, b), _mm_set1_epi16(static_cast<short>(0xFF80)));
  if (_mm_movemask_epi8(_mm_cmpeq_epi16(high, _mm_setzero_si128())) != 0xFFFF) return false;
  _mm_storeu_si128(reinterpret_cast<__m128i *>(p), _mm_packus_epi16(a, b));
  return true;
#else
  std::uint64_t w[4];
  std::memcpy(w, s, sizeof w);
  if (((w[0] | w[1] | w[2] | w[3]) & 0xFF80FF80FF80FF80ull) != 0) return false;
  for (int k = 0; k < kBlock; ++k) p[k] = static_cast<unsigned char>(s[k]);
  return true;
#endif
}

/// Whether the next kBlock bytes are all below 0x80.
inline bool asciiBlock(unsigned char const *p) noexcept {
#ifdef __SSE2__
  return _mm_movemask_epi8(_mm_loadu_si128(reinterpret_cast<__m128i const *>(p))) == 0;
#else
  std::uint64_t w[2];
  std::memcpy(w, p, sizeof w);
  return ((w[0] | w[1]) & 0x8080808080808080ull) == 0;
#endif
}

/// Widens the next kBlock bytes (all below 0x80) to units.
inline void widenBlock(unsigned char const *p, unsigned short *d) noexcept {
#ifdef __SSE2__
  __m128i x = _mm_loadu_si128(reinterpret_cast<__m128i const *>(p));
  _mm_storeu_si128(reinterpret_cast<__m128i *>(d), _mm_unpacklo_epi8(x, _mm_setzero_si128()));
  _mm_storeu_si128(reinterpret_cast<__m128i *>(d + 8), _mm_unpackhi_epi8(x, _mm_setzero_si128()));
#else
  for (int k = 0; k < kBlock; ++k) d[k] = p[k];
#endif
}

// Compile-time checks of the general encoder and of the loose decoder.
constexpr bool encodes(std::uint32_t v, std::initializer_list<unsigned char> bytes) {
  unsigned char p[6] = {};
  if (encodeUtf8(v, p) != bytes.size()) return false;
  return std::equal(bytes.begin(), bytes.end(), p);
}
static_assert(encodes(0x41, {0x41}) && encodes(0xE9, {0xC3, 0xA9}) && encodes(0xFFFF, {0xEF, 0xBF, 0xBF}));
static_assert(encodes(0x10000, {0xF0, 0x90, 0x80, 0x80}));
static_assert(encodes(0x200000, {0xF8, 0x88, 0x80, 0x80, 0x80}));
static_assert(encodes(0x4000000, {0xFC, 0x84, 0x80, 0x80, 0x80, 0x80}));
static_assert(kLeads[0xF8].length == 4 && kLeads[0xFC].length == 4 && kLeads[0xFD].length == 6);
static_assert(kLeads[0x80].length == 1 && kLeads[0xFF].length == 1 && kLeads[0xF1].length == 1);

/// Where encoded bytes go: a window [p, limit) that `more` renews.
class StreamSink {
 public:
  explicit StreamSink(iByteOutputStream &out) noexcept : m_out(out) {}
  unsigned char *open(unsigned char *&limit, std::size_t) noexcept {
    limit = m_buffer + sizeof m_buffer;
    return m_buffer;
  }
  unsigned char *more(unsigned char *p, unsigned char *&limit, std::size_t) {
    m_out.write(m_buffer, static_cast<int>(p - m_buffer));
    limit = m_buffer + sizeof m_buffer;
    return m_buffer;
  }
  void close(unsigned char *p) {
    if (p != m_buffer) m_out.write(m_buffer, static_cast<int>(p - m_buffer));
  }

 private:
  iByteOutputStream &m_out;
  unsigned char m_buffer[512];
};

class MemorySink {
 public:
  explicit MemorySink(MemoryOutputStream &out) noexcept : m_out(out) {}
  unsigned char *open(unsigned char *&limit, std::size_t want) { return reserve(limit, want); }
  unsigned char *more(unsigned char *p, unsigned char *&limit, std::size_t want) {
    m_out.commitTail(static_cast<unsigned int>(p - m_start));
    return reserve(limit, want);
  }
  void close(unsigned char *p) noexcept { m_out.commitTail(static_cast<unsigned int>(p - m_start)); }

 private:
  static constexpr std::size_t kChunk = 48 * 1024;  // bytes reserved at a time
  unsigned char *reserve(unsigned char *&limit, std::size_t want) {
    std::size_t n = std::min(want, kChunk);
    m_start = m_out.reserveTail(static_cast<unsigned int>(n));
    limit = m_start + n;
    return m_start;
  }
  MemoryOutputStream &m_out;
  unsigned char *m_start = nullptr;
};

/// Writes the prefix `n` and the `count` units as UTF-8, unit by unit.
template <class Sink>
void writeUtf8(Sink &sink, int n, unsigned short const *s, unsigned int count) {
  unsigned short const *end = s + count;
  unsigned char *limit;
  unsigned char *p = sink.open(limit, IntCodec::kMax + 3 * std::size_t{count});
  p += IntCodec::encode(n, p);
  while (s != end) {
    if (limit - p < 3) p = sink.more(p, limit, 3 * static_cast<std::size_t>(end - s));
    // Room for `stop - s` units of at most three bytes each: no checks inside.
    unsigned short const *stop = s + std::min<std::size_t>(end - s, (limit - p) / 3);
    while (s != stop) {
      if (stop - s >= kBlock && narrowBlock(s, p)) {
        p += kBlock;
        s += kBlock;
        continue;
      }
      p += encodeUtf8(*s++, p);
    }
  }
  sink.close(p);
}

/// Texts up to this many units are tried as ASCII in one reservation first.
constexpr unsigned int kShortText = 1024;

/// Writes the prefix `n` and the `count` units, one byte each, when all are
/// below 0x80 (the UTF-8 of an ASCII text); false, and nothing written, when
/// one is not.
bool writeShortAscii(MemoryOutputStream &out, int n, unsigned short const *s, unsigned int count) {
  unsigned char *const p = out.reserveTail(IntCodec::kMax + count);
  unsigned char *const q = p + IntCodec::encode(n, p);
  unsigned int i = 0;
  for (; i + kBlock <= count; i += kBlock)
    if (!narrowBlock(s + i, q + i)) return false;
  for (; i < count; ++i) {
    if (s[i] >= 0x80) return false;
    q[i] = static_cast<unsigned char>(s[i]);
  }
  out.commitTailTo(q + count);
  return true;
}

/// Where bytes to decode come from: a window [p, end) that `refill` renews
/// with at most `bound` bytes, the fewest the string can still hold, so that
/// nothing after the string is consumed. False when the data has ended.
class StreamSource {
 public:
  explicit StreamSource(iByteInputStream &in) noexcept : m_in(in) {}
  bool refill(unsigned char const *&p, unsigned char const *&end, std::size_t bound) {
    int want = static_cast<int>(std::min(bound, sizeof m_buffer));
    int got = m_in.read(m_buffer, want);
    if (got <= 0) return false;
    p = m_buffer;
    end = m_buffer + std::min(got, want);
    return true;
  }

 private:
  iByteInputStream &m_in;
  unsigned char m_buffer[512];
};

/// A memory window holds all there is.
struct MemorySource {
  bool refill(unsigned char const *&, unsigned char const *&, std::size_t) noexcept { return false; }
};

/// Decodes units [first, first + count) of a string of `total` units into dst.
template <class Source>
void decodeUtf8(Source &source, unsigned char const *&p, unsigned char const *&end, unsigned short *dst,
                unsigned int first, unsigned int count, unsigned int total) {
  std::size_t i = first;
  std::size_t const stop = std::size_t{first} + count;
  while (i < stop) {
    if (p == end && !source.refill(p, end, total - i)) failString(i + 1, total);
    if (end - p >= kBlock && stop - i >= kBlock && asciiBlock(p)) {
      widenBlock(p, dst + i);
      p += kBlock;
      i += kBlock;
      continue;
    }
    Lead lead = kLeads[*p];
    std::uint32_t v = *p++ & lead.payload;
    for (unsigned int k = 1; k < lead.length; ++k) {
      if (p == end && !source.refill(p, end, lead.length - k + (total - i - 1))) fail(kEofAdditional);
      v = v << 6 | (*p++ & 0x3Fu);
    }
    dst[i++] = static_cast<unsigned short>(v);  // 4- to 6-byte forms keep their low 16 bits
  }
}

/// Units taken at a time while a string read from a stream grows.
constexpr unsigned int kGrowUnits = 64 * 1024;

void readUtf8(iByteInputStream &in, WString &value, unsigned int total) {
  WString result;
  StreamSource source(in);
  unsigned char const *p = nullptr;
  unsigned char const *end = nullptr;
  for (unsigned int done = 0; done < total;) {
    unsigned int chunk = std::min(total - done, kGrowUnits);
    result.resize(done + chunk);
    decodeUtf8(source, p, end, result.getBuffer(), done, chunk, total);
    done += chunk;
  }
  value.swap(result);
}

/// Whether the `n` bytes at `p` are all below 0x80, a word at a time.
inline bool allAscii(unsigned char const *p, std::size_t n) noexcept {
  if (n < 8) {
    unsigned int any = 0;
    for (std::size_t k = 0; k < n; ++k) any |= p[k];
    return any < 0x80;
  }
  std::uint64_t any = detail::get64(p + n - 8);  // the last word, overlapping the loop's
  for (std::size_t k = 0; k + 8 <= n; k += 8) any |= detail::get64(p + k);
  return (any & 0x8080808080808080ull) == 0;
}

/// From memory: find where the string ends (or how it runs short) first, then
/// decode straight into the caller's buffer, which pooled values reuse. A
/// string of ASCII only (one byte a unit) is checked and widened in one go.
void readUtf8(MemoryInputStream &in, WString &value, unsigned int total) {
  unsigned char const *const begin = in.getCursor();
  unsigned char const *const end = begin + in.getRemaining();
  if (in.getRemaining() >= total && allAscii(begin, total)) {
    value.resize(total);
    unsigned short *d = value.getBuffer();
    std::size_t i = 0;
    for (; i + kBlock <= total; i += kBlock) widenBlock(begin + i, d + i);
    for (; i < total; ++i) d[i] = begin[i];
    in.advance(total);
    return;
  }
  unsigned char const *q = begin;
  for (std::size_t i = 0; i < total;) {
    if (q == end) {
      in.skip(in.getRemaining());  // as a stream would be: read to its end
      failString(i + 1, total);
    }
    if (end - q >= kBlock && total - i >= kBlock && asciiBlock(q)) {
      q += kBlock;
      i += kBlock;
      continue;
    }
    std::size_t length = kLeads[*q++].length;
    if (static_cast<std::size_t>(end - q) < length - 1) {
      in.skip(in.getRemaining());
      fail(kEofAdditional);
    }
    q += length - 1;
    ++i;
  }
  value.resize(total);
  MemorySource source;
  unsigned char const *p = begin;
  unsigned char const *stop = q;
  decodeUtf8(source, p, stop, value.getBuffer(), 0, total, total);
  in.skip(static_cast<unsigned int>(q - begin));
}

// ---------------------------------------------------------------------------
// Strings, version 1: the units as raw little-endian 2-byte values.

void writeRaw(iByteOutputStream &out, unsigned short const *s, unsigned int count) {
  if constexpr (std::endian::native == std::endian::little) {
    constexpr unsigned int kPiece = 1u << 29;  // units per write, so the byte count fits an int
    for (unsigned int k; count; s += k, count -= k) {
      k = std::min(count, kPiece);
      out.write(s, static_cast<int>(2 * k));
    }
  } else {
    unsigned char buffer[512];
    for (unsigned int k; count; count -= k) {
      k = std::min<unsigned int>(count, sizeof buffer / 2);
      for (unsigned int j = 0; j < k; ++j) detail::put16(buffer + 2 * j, *s++);
      out.write(buffer, static_cast<int>(2 * k));
    }
  }
}

void toHostOrder(unsigned short *units, std::size_t count) noexcept {
  if constexpr (std::endian::native != std::endian::little) {
    for (std::size_t j = 0; j < count; ++j)
      units[j] = static_cast<unsigned short>(detail::get16(reinterpret_cast<unsigned char const *>(units + j)));
  }
}

// Reading checks what arrives: a stream that ends early fails with the unit it
// stopped in (counted from 1), and nothing is reserved beyond one chunk ahead
// of the data actually read.
void readRaw(iByteInputStream &in, WString &value, unsigned int total) {
  if (MemoryInputStream *memory = asMemory(in)) {
    if (memory->getRemaining() / 2 >= total) {
      value.resize(total);
      std::memcpy(value.getBuffer(), memory->getCursor(), 2 * std::size_t{total});
      toHostOrder(value.getBuffer(), total);
      memory->skip(2 * total);
      return;
    }  // short: the reads below run into the end and report it
  }
  WString result;
  for (unsigned int done = 0; done < total;) {
    unsigned int chunk = std::min(total - done, kGrowUnits);
    result.resize(done + chunk);
    std::size_t got =
        readFully(in, reinterpret_cast<unsigned char *>(result.getBuffer() + done), 2 * std::size_t{chunk});
    if (got != 2 * std::size_t{chunk}) failString(done + got / 2 + 1, total);
    done += chunk;
  }
  toHostOrder(result.getBuffer(), total);
  value.swap(result);
}

}  // namespace

iByteOutputStream &operator<<(iByteOutputStream &out, int value) { return put<IntCodec>(out, value); }
iByteOutputStream &operator<<(iByteOutputStream &out, double value) { return put<DoubleCodec>(out, value); }
iByteOutputStream &operator<<(iByteOutputStream &out, bool value) { return put<BoolCodec>(out, value); }
iByteOutputStream &operator<<(iByteOutputStream &out, unsigned char value) { return put<ByteCodec>(out, value); }

iByteOutputStream &operator<<(iByteOutputStream &out, WString const &value) {
  unsigned short const *units = value.getBuffer();
  unsigned int count = value.getLength();  // at most 0x7FFFFFFE, so n fits an int
  int n = units ? static_cast<int>(count + 1) : 0;
  int version = out.version;
  if (n >= 2 && version >= 2) {
    if (MemoryOutputStream *memory = asMemory(out)) [[likely]] {
      if (count > kShortText || !writeShortAscii(*memory, n, units, count)) {
        MemorySink sink(*memory);
        writeUtf8(sink, n, units, count);
      }
    } else {
      StreamSink sink(out);
      writeUtf8(sink, n, units, count);
    }
    return out;
  }
  out << n;
  if (n < 2) return out;  // null and empty stay distinct: 0 and 1
  if (version == 1) {
    writeRaw(out, units, count);
    return out;
  }
  failNumber("iByteOutputStream::String: Unknown serialization version %d\n", version);
}

iByteInputStream &operator>>(iByteInputStream &in, int &value) { return get<IntCodec>(in, value); }
iByteInputStream &operator>>(iByteInputStream &in, double &value) { return get<DoubleCodec>(in, value); }
iByteInputStream &operator>>(iByteInputStream &in, bool &value) { return get<BoolCodec>(in, value); }
iByteInputStream &operator>>(iByteInputStream &in, unsigned char &value) { return get<ByteCodec>(in, value); }

iByteInputStream &operator>>(iByteInputStream &in, WString &value) {
  int n;
  get<IntCodec>(in, n);
  if (n < 2) {
    if (n == 0)
      value.setNull();
    else if (n == 1)
      value.resize(0);  // empty, not null
    else
      failNumber("Invalid string length prefix %d", n);
    return in;
  }
  auto total = static_cast<unsigned int>(n - 1);
  int version = in.version;
  if (version == 1)
    readRaw(in, value, total);
  else if (version <= 0)
    failNumber("Unknown serialization version %d\n", version);
  else if (MemoryInputStream *memory = asMemory(in)) [[likely]]
    readUtf8(*memory, value, total);
  else
    readUtf8(in, value, total);
  return in;
}

}  // namespace quarn
