// ByteCodec.h - the fixed-size primitive encodings, shared by every coder
//
// Each codec encodes one value into a buffer with room for kMax bytes (bytes
// past the returned size are scratch, so that no branch depends on the size)
// and decodes it from a buffer that holds size(header) bytes, or with
// decodeWide from one that holds kMax bytes whatever the size. The byte
// layouts are those written in ByteStream.h. The general stream operators and the inline operators of the
// memory streams use these same functions, so both paths produce the same
// bytes. Pure functions: no allocation, no failure (the callers check sizes
// and report short data with kHeaderEof / bodyEof).
#pragma once

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
inline void put32(unsigned char *p, std::uint32_t v) noexcept { store(p, v); }
inline void put64(unsigned char *p, std::uint64_t v) noexcept { store(p, v); }
inline std::uint32_t get16(unsigned char const *p) noexcept { return load<std::uint16_t>(p); }
inline std::uint32_t get32(unsigned char const *p) noexcept { return load<std::uint32_t>(p); }
inline std::uint64_t get64(unsigned char const *p) noexcept { return load<std::uint64_t>(p); }

/// int: -16..15 as one byte v*4; else 01 + 1 byte, 02 + 2 bytes or 03 + 4 bytes.
struct IntCodec {
  using Type = int;
  static constexpr unsigned int kMax = 5;
  static constexpr char const *kHeaderEof = "EOF reading int header";
  static unsigned int encode(int value, unsigned char *p) noexcept {
    auto u = static_cast<std::uint32_t>(value);
    bool tiny = u + 16u < 32u;  // -16..15: the value times 4, low two bits clear
    bool byte = u + 128u < 256u;
    bool word = u + 32768u < 65536u;
    p[0] = static_cast<unsigned char>(tiny ? u << 2 : byte ? 0x01 : word ? 0x02 : 0x03);
    put32(p + 1, u);  // the low bytes first, so every longer form is a prefix of these
    return tiny ? 1 : byte ? 2 : word ? 3 : 5;
  }
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
  static constexpr unsigned int kMax = 9;
  static constexpr char const *kHeaderEof = "EOF reading byte";
  static unsigned int encode(double value, unsigned char *p) noexcept {
    bool zero = value == 0.0;  // -0.0 too; a NaN compares unequal and takes the long form
    bool one = value == 1.0;
    p[0] = zero ? 0x00 : one ? 0x01 : 0x02;
    put64(p + 1, std::bit_cast<std::uint64_t>(value));
    return zero || one ? 1 : 9;
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
