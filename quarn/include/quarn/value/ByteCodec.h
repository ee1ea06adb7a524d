// ByteCodec.h - the fixed-size primitive encodings, shared by every coder
//
// Each codec encodes one value into a buffer with room for kMax bytes (bytes
// past the returned size are scratch, so that no branch depends on the size)
// and decodes it from a buffer that holds size(header) bytes, or with
// decodeWide from one that holds kMaxWire bytes (the longest form) whatever
// the size. The byte
// layouts are those written in ByteStream.h. The general stream operators and
// the inline operators of the memory streams use these same functions, so
// both paths produce the same bytes. Pure functions: no allocation, no
// failure (the callers check sizes and report short data with kHeaderEof /
// bodyEof).
//
// Encoders choose the form by lookup or by counting, never by branching:
// real data mixes the forms at random, and a mispredicted branch costs more
// than the whole encoding. They write whole unaligned 64-bit words (putWord),
// never single bytes: an int as one word, a double as two (kMax counts the
// bytes stored, which may exceed the bytes on the wire).
// Decoders keep their branches on the header instead (see IntCodec).
#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

namespace quarn::detail {

// Little-endian byte order whatever the host's: one plain load or store on
// little-endian hosts, a byte swap around it on big-endian ones.
template <class T>
inline T littleEndian(T v) noexcept {
  if constexpr (std::endian::native == std::endian::big) {
    if constexpr (sizeof(T) == 2) return static_cast<T>(__builtin_bswap16(v));
    if constexpr (sizeof(T) == 4) return __builtin_bswap32(v);
    if constexpr (sizeof(T) == 8) return __builtin_bswap64(v);
  }
  return v;
}
template <class T>
inline void store(unsigned char *p, T v) noexcept {
  v = littleEndian(v);
  std::memcpy(p, &v, sizeof v);
}
template <class T>
inline T load(unsigned char const *p) noexcept {
  T v;
  std::memcpy(&v, p, sizeof v);
  return littleEndian(v);
}
inline void put16(unsigned char *p, std::uint32_t v) noexcept { store(p, static_cast<std::uint16_t>(v)); }
inline std::uint32_t get16(unsigned char const *p) noexcept { return load<std::uint16_t>(p); }
inline std::uint32_t get32(unsigned char const *p) noexcept { return load<std::uint32_t>(p); }
inline std::uint64_t get64(unsigned char const *p) noexcept { return load<std::uint64_t>(p); }

/// A 64-bit word at any address (a plain store on every host that allows
/// one). Not may_alias: like any 64-bit store it cannot change a pointer or
/// `int`, so the compiler keeps such values in registers around it.
typedef std::uint64_t UnalignedWord __attribute__((aligned(1)));
/// Stores the 8 bytes of v, little-endian, at p (any alignment).
inline void putWord(unsigned char *p, std::uint64_t v) noexcept {
  *reinterpret_cast<UnalignedWord *>(p) = littleEndian(v);
}

/// int: -16..15 as one byte v*4; else 01 + 1 byte, 02 + 2 bytes or 03 + 4 bytes.
struct IntCodec {
  using Type = int;
  static constexpr unsigned int kMax = 8;      // 5 on the wire, one word stored
  static constexpr unsigned int kMaxWire = 5;  // the most any value takes on the wire (decodeWide reads no more)
  static constexpr char const *kHeaderEof = "EOF reading int header";
  static unsigned int encode(int value, unsigned char *p) noexcept {
    auto u = static_cast<std::uint32_t>(value);
    // The form follows from the highest bit that differs from the sign
    // (looked up, not branched on: real data mixes the forms).
    std::uint32_t magnitude = u ^ static_cast<std::uint32_t>(value >> 31);  // v, or -v-1 below zero
    Form form = kForms[std::bit_width(magnitude | 1u) - 1];
    // The header, then the low bytes first, so every longer form is a prefix
    // of these; a tiny value shifted by 2 is its own header.
    putWord(p, std::uint64_t{u} << form.shift | form.header);
    return form.size;
  }
  struct Form {
    unsigned char header;  // 0 for a tiny value
    unsigned char shift;   // of the value: 2 into the header, or 8 past it
    unsigned char size;
    unsigned char unused;
  };
  /// By the highest bit of the magnitude.
  static constexpr std::array<Form, 32> kForms = [] {
    std::array<Form, 32> t{};
    for (unsigned int bit = 0; bit < 32; ++bit)
      t[bit] = bit < 4    ? Form{0, 2, 1, 0}   // -16..15: v*4
               : bit < 7  ? Form{1, 8, 2, 0}   // -128..127: 01 + 1 byte
               : bit < 15 ? Form{2, 8, 3, 0}   // -32768..32767: 02 + 2 bytes
                          : Form{3, 8, 5, 0};  // 03 + 4 bytes
    return t;
  }();
  static unsigned int size(unsigned char header) noexcept {
    return header == 0x01 ? 2 : header == 0x02 ? 3 : header == 0x03 ? 5 : 1;
  }
  static int decode(unsigned char const *p) noexcept {
    switch (p[0]) {
      case 0x01:
        return static_cast<signed char>(p[1]);
      case 0x02:
        return static_cast<std::int16_t>(get16(p + 1));
      case 0x03:
        return static_cast<std::int32_t>(get32(p + 1));
      default:
        return static_cast<signed char>(p[0]) >> 2;  // any other header is the value itself
    }
  }
  // Decoding keeps its branches on the header: a reader's position then
  // does not wait for the header byte to load (the branch predicts it), which
  // measured faster than selecting without branches even on shuffled forms.
  static int decodeWide(unsigned char const *p) noexcept {
    std::uint32_t raw = get32(p + 1);
    unsigned char h = p[0];
    return h == 0x01   ? static_cast<signed char>(raw)
           : h == 0x02 ? static_cast<std::int16_t>(raw)
           : h == 0x03 ? static_cast<std::int32_t>(raw)
                       : static_cast<signed char>(h) >> 2;
  }
  static char const *bodyEof(unsigned char header) noexcept {
    return header == 0x01   ? "EOF reading int as byte"
           : header == 0x02 ? "EOF reading int as short"
                            : "EOF reading int as int";
  }
};

/// double: 0.0 and -0.0 -> 00, 1.0 -> 01, else 02 + the 8 IEEE bytes.
struct DoubleCodec {
  using Type = double;
  static constexpr unsigned int kMax = 16;     // 9 on the wire, two words stored
  static constexpr unsigned int kMaxWire = 9;  // the most any value takes on the wire (decodeWide reads no more)
  static constexpr char const *kHeaderEof = "EOF reading byte";
  static unsigned int encode(double value, unsigned char *p) noexcept {
    // Classified on the bits, with no floating-point compare and no branch
    // (real data mixes the forms at random): the long form, replaced by the
    // one-byte form for 0.0, -0.0 (only the sign bit set) and 1.0. A NaN is
    // neither and keeps its bits.
    std::uint64_t bits = std::bit_cast<std::uint64_t>(value);
    bool zero = (bits << 1) == 0;
    bool one = bits == 0x3FF0000000000000ull;
    std::uint64_t head = bits << 8 | 0x02;  // the header and the first 7 bytes
    unsigned int size = 9;
    if (zero | one) {
      head = one;  // 00 or 01
      size = 1;
    }
    putWord(p, head);
    putWord(p + 8, bits >> 56);  // the last byte
    return size;
  }
  static unsigned int size(unsigned char header) noexcept { return header <= 0x01 ? 1 : 9; }
  static double decode(unsigned char const *p) noexcept {
    return p[0] == 0x00 ? 0.0 : p[0] == 0x01 ? 1.0 : std::bit_cast<double>(get64(p + 1));
  }
  static double decodeWide(unsigned char const *p) noexcept {
    double bits = std::bit_cast<double>(get64(p + 1));
    return p[0] == 0x00 ? 0.0 : p[0] == 0x01 ? 1.0 : bits;
  }
  static char const *bodyEof(unsigned char) noexcept { return "EOF reading double"; }
};

/// bool and byte: one byte (reading a bool, any non-zero byte is true).
template <class T, char const *Eof>
struct OneByteCodec {
  using Type = T;
  static constexpr unsigned int kMax = 1;
  static constexpr unsigned int kMaxWire = 1;
  static constexpr char const *kHeaderEof = Eof;
  static unsigned int encode(T value, unsigned char *p) noexcept {
    p[0] = static_cast<unsigned char>(value);
    return 1;
  }
  static unsigned int size(unsigned char) noexcept { return 1; }
  static T decode(unsigned char const *p) noexcept { return static_cast<T>(p[0]); }
  static T decodeWide(unsigned char const *p) noexcept { return decode(p); }
  static char const *bodyEof(unsigned char) noexcept { return Eof; }
};
inline constexpr char kEofBool[] = "EOF reading bool";
inline constexpr char kEofByte[] = "EOF reading byte";
using BoolCodec = OneByteCodec<bool, kEofBool>;
using ByteCodec = OneByteCodec<unsigned char, kEofByte>;

}  // namespace quarn::detail
