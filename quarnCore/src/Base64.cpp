// Base64.cpp - table-driven Base64 encoding and strict decoding
//
// Both directions size their output once and write it in place: encoding fills
// a string of exactly 4 * ceil(n / 3) units, decoding fills a scratch array
// that replaces the output only when the whole text was valid.
#include <quarnCore/Base64.h>

#include <array>

#include <quarnCore/Exception.h>

namespace quarn::util {

namespace {

constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

// Decoding classes of the ASCII units: 0..63 a digit of the alphabet, else one of these.
constexpr unsigned char kInvalid = 0xFF;
constexpr unsigned char kBlank = 0xFE;
constexpr unsigned char kPad = 0xFD;

constexpr std::array<unsigned char, 128> makeDecodeTable() {
  std::array<unsigned char, 128> table{};
  for (auto &entry : table) entry = kInvalid;
  for (unsigned char i = 0; i < 64; ++i) table[static_cast<unsigned char>(kAlphabet[i])] = i;
  table[' '] = table['\t'] = table['\r'] = table['\n'] = kBlank;
  table['='] = kPad;
  return table;
}
constexpr std::array<unsigned char, 128> kDecode = makeDecodeTable();

[[noreturn, gnu::cold]] void throwInvalidText() { throw Exception("Invalid Base64 text"); }

unsigned short digitOf(unsigned int sextet) noexcept { return static_cast<unsigned short>(kAlphabet[sextet & 0x3F]); }

}  // namespace

void Base64::Encode(unsigned char const *data, unsigned int count, BaseString<unsigned short> &out) {
  unsigned long long units = (static_cast<unsigned long long>(count) + 2) / 3 * 4;
  if (units >= 0x7FFFFFFFull) [[unlikely]]
    detail::throwMemory();
  BaseString<unsigned short> text;
  text.resize(static_cast<unsigned int>(units));
  unsigned short *p = text.getBuffer();
  unsigned int i = 0;
  for (; count - i >= 3; i += 3, p += 4) {
    unsigned int group = (unsigned{data[i]} << 16) | (unsigned{data[i + 1]} << 8) | data[i + 2];
    p[0] = digitOf(group >> 18);
    p[1] = digitOf(group >> 12);
    p[2] = digitOf(group >> 6);
    p[3] = digitOf(group);
  }
  if (unsigned int rest = count - i) {
    unsigned int group = (unsigned{data[i]} << 16) | (rest == 2 ? unsigned{data[i + 1]} << 8 : 0u);
    p[0] = digitOf(group >> 18);
    p[1] = digitOf(group >> 12);
    p[2] = rest == 2 ? digitOf(group >> 6) : '=';
    p[3] = '=';
  }
  out.swap(text);
}

void Base64::Encode(Array<unsigned char> const &data, BaseString<unsigned short> &out) {
  Encode(data.getBuffer(), data.getSize(), out);
}

void Base64::EncodeRange(Array<unsigned char> const &data, unsigned int start, unsigned int count,
                         BaseString<unsigned short> &out) {
  unsigned int size = data.getSize();
  if (start > size || count > size - start) [[unlikely]]
    detail::throwInvalidIndex(start > size ? start : size, size - 1);
  Encode(data.getBuffer() + start, count, out);
}

void Base64::Decode(BaseString<unsigned short> const &text, Array<unsigned char> &out) {
  Array<unsigned char> bytes;
  unsigned int length = text.getLength();
  bytes.resize(length / 4 * 3);
  unsigned char *p = bytes.getBuffer();
  unsigned short const *s = text.getBuffer();
  unsigned int group = 0;   // sextets of the current group of four, oldest highest
  unsigned int digits = 0;  // alphabet digits in the current group
  unsigned int pads = 0;    // '=' seen (only in the last group)
  for (unsigned int i = 0; i < length; ++i) {
    unsigned int unit = s[i];
    unsigned char c = unit < 128 ? kDecode[unit] : kInvalid;
    if (c < 64) {
      if (pads) [[unlikely]]
        throwInvalidText();
      group = (group << 6) | c;
      if (++digits == 4) {
        p[0] = static_cast<unsigned char>(group >> 16);
        p[1] = static_cast<unsigned char>(group >> 8);
        p[2] = static_cast<unsigned char>(group);
        p += 3;
        group = digits = 0;
      }
    } else if (c == kBlank) {
      continue;
    } else if (c == kPad && digits + pads >= 2 && digits + pads < 4) {
      ++pads;
    } else [[unlikely]] {
      throwInvalidText();
    }
  }
  if (pads) {
    // "xx==" carries one byte, "xxx=" two; the unused low bits must be zero.
    if (digits + pads != 4) [[unlikely]]
      throwInvalidText();
    unsigned int padBits = pads == 2 ? 4 : 2;
    if (group & ((1u << padBits) - 1)) [[unlikely]]
      throwInvalidText();
    group >>= padBits;
    if (pads == 2) {
      *p++ = static_cast<unsigned char>(group);
    } else {
      *p++ = static_cast<unsigned char>(group >> 8);
      *p++ = static_cast<unsigned char>(group);
    }
  } else if (digits) [[unlikely]] {
    throwInvalidText();
  }
  bytes.resize(static_cast<unsigned int>(p - bytes.getBuffer()));
  out.swap(bytes);
}

}  // namespace quarn::util
