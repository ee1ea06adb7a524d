// NameEncoding.cpp - escaping component names and texts for use in file names
#include <quarn/util/NameEncoding.h>
#include <quarnCore/Exception.h>
#include <quarnCore/Unicode.h>

#include <array>

namespace quarn::util {

namespace {

constexpr char kLowerHex[] = "0123456789abcdef";
constexpr char kUpperHex[] = "0123456789ABCDEF";

// The set of ASCII characters listed in `chars`.
constexpr std::array<bool, 128> asciiSet(char const *chars) {
  std::array<bool, 128> set{};
  for (; *chars; ++chars) set[static_cast<unsigned char>(*chars)] = true;
  return set;
}

// Characters a file name cannot hold, or that would read as a wildcard, a
// drive, an extension or a stream separator; control units are escaped too.
constexpr std::array<bool, 128> kEscapedInFileName = asciiSet("!\"%'*.:;<>?|");

// Bytes that a URL reserves or treats as unsafe, escaped by EncodeReserved.
constexpr std::array<bool, 128> kReservedInUrl = asciiSet(" \"#$%&+,;<=>?@[\\]^`{|}");

// The loose digit test of stored file names (see the header): -1 when not a digit.
int fileNameDigit(unsigned short unit) {
  unsigned int u = unit;
  if (u >= 'a' && u <= 'z') u -= 'a' - 'A';
  auto const value = static_cast<signed char>(u < 58 ? u - 48 : u - 55);
  return value >= 0 && value <= 15 ? value : -1;
}

[[noreturn]] void throwIllegalFileNameCharacter() { throw Exception("Illegal character in file name"); }

bool isHexDigit(char c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F'); }

}  // namespace

void ConvertComponentNameToFileName(BaseString<unsigned short> &name, unsigned short const *prefix) {
  BaseString<unsigned short> out(prefix);
  out.reserve(out.getLength() + name.getLength());
  unsigned short const *units = name.getBuffer();
  for (unsigned int i = 0; i < name.getLength(); ++i) {
    unsigned short const c = units[i];
    if (c < 32 || (c < 128 && kEscapedInFileName[c])) {
      unsigned short const escape[] = {'%', static_cast<unsigned short>(kLowerHex[c >> 4]),
                                       static_cast<unsigned short>(kLowerHex[c & 15])};
      out.append(escape, 3);
    } else {
      out.append(c == '/' ? static_cast<unsigned short>('\\') : c);
    }
  }
  name.swap(out);
}

void ConvertFileNameToComponentName(BaseString<unsigned short> &name) {
  if (name.isNull()) return;
  unsigned short const *units = name.getBuffer();
  unsigned int const length = name.getLength();
  BaseString<unsigned short> out;
  out.reserve(length);
  for (unsigned int i = 0; i < length; ++i) {
    if (units[i] != '%') {
      out.append(units[i]);
      continue;
    }
    if (length - i < 3) throwIllegalFileNameCharacter();
    int const high = fileNameDigit(units[i + 1]);
    int const low = fileNameDigit(units[i + 2]);
    if (high < 0 || low < 0) throwIllegalFileNameCharacter();
    out.append(static_cast<unsigned short>(16 * high + low));
    i += 2;
  }
  name.swap(out);
}

BaseString<char> CgiFileUrlEncode(unsigned short const *text, CgiFileUrlEncodeCharacters mode) {
  BaseString<char> utf8;
  if (text) ConvertStringtoUTF8(utf8, text, BaseString<unsigned short>::lengthOf(text));
  BaseString<char> out;
  out.reserve(utf8.getLength());
  for (unsigned int i = 0; i < utf8.getLength(); ++i) {
    auto const b = static_cast<unsigned char>(utf8.getBuffer()[i]);
    bool const escape =
        b > 127 || (mode != EncodeSpacesOnly && (kReservedInUrl[b] || (b == '/' && mode == EncodeReservedAndSlash)));
    if (escape) {
      char const form[] = {'@', '!', 'u', kUpperHex[b >> 4], kUpperHex[b & 15], '!'};
      out.append(form, sizeof form);
    } else if (b == ' ') {
      out.append("%20", 3);
    } else {
      out.append(static_cast<char>(b));
    }
  }
  return out;
}

BaseString<char> CgiFileUrlDecode(char const *text) {
  BaseString<char> out;
  out.reserve(0);
  if (!text) return out;
  // Each test stops at the terminator, so an escape cut short is never read past.
  for (char const *p = text; *p;) {
    if (p[0] == '@' && p[1] == '!' && p[2] == 'u' && isHexDigit(p[3]) && isHexDigit(p[4]) && p[5] == '!') {
      char const percent[] = {'%', p[3], p[4]};
      out.append(percent, 3);
      p += 6;
    } else {
      out.append(*p++);
    }
  }
  return out;
}

}  // namespace quarn::util
