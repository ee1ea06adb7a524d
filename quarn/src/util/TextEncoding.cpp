// TextEncoding.cpp - XML escapes and printable forms of bytes
#include <quarn/util/TextEncoding.h>

#include <cstdio>
#include <cstring>

namespace quarn::util {

namespace {

struct Replacement {
  char const *from;
  char const *to;
};

constexpr Replacement kXmlEncode[] = {
    {"&", "&amp;"}, {"\"", "&quot;"}, {"'", "&apos;"}, {">", "&gt;"},
    {"<", "&lt;"},  {"\t", "&#x9;"},  {"\r", "&#xD;"}, {"\n", "&#xA;"},
};

constexpr Replacement kXmlDecode[] = {
    {"&amp;", "&"},  {"&lt;", "<"},   {"&gt;", ">"},   {"&quot;", "\""},
    {"&apos;", "'"}, {"&#x9;", "\t"}, {"&#xD;", "\r"}, {"&#xA;", "\n"},
};

bool startsWith(unsigned short const *at, unsigned int left, char const *ascii) {
  for (unsigned int i = 0; ascii[i]; ++i)
    if (i >= left || at[i] != static_cast<unsigned char>(ascii[i])) return false;
  return true;
}

// One pass: every occurrence of r.from, left to right, without rescanning what it wrote.
void replaceAll(BaseString<unsigned short> &text, Replacement const &r) {
  unsigned short const *units = text.getBuffer();
  unsigned int const length = text.getLength();
  unsigned int const fromLength = static_cast<unsigned int>(std::strlen(r.from));
  BaseString<unsigned short> out;
  unsigned int copied = 0;  // units of `text` already in `out`
  for (unsigned int i = 0; i + fromLength <= length;) {
    if (!startsWith(units + i, length - i, r.from)) {
      ++i;
      continue;
    }
    if (out.isNull()) out.reserve(length + 8);
    out.append(units + copied, i - copied);
    out.appendAscii(r.to);
    i += fromLength;
    copied = i;
  }
  if (out.isNull()) return;  // nothing matched
  out.append(units + copied, length - copied);
  text.swap(out);
}

template <std::size_t N>
void replaceInOrder(BaseString<unsigned short> &text, Replacement const (&passes)[N]) {
  if (text.isNull()) return;
  for (Replacement const &r : passes) replaceAll(text, r);
}

}  // namespace

void XMLEncode(BaseString<unsigned short> &text) { replaceInOrder(text, kXmlEncode); }

void XMLDecode(BaseString<unsigned short> &text) { replaceInOrder(text, kXmlDecode); }

bool IsPrintableASCII(char c) {
  auto const s = static_cast<signed char>(c);
  return s == 9 || s == 10 || (s >= 32 && s <= 126);
}

void ConvertToPrintableASCII(BaseString<char> &text) {
  char const *bytes = text.getBuffer();
  unsigned int const length = text.getLength();
  unsigned int i = 0;
  while (i < length && IsPrintableASCII(bytes[i])) ++i;
  if (i == length) return;
  BaseString<char> out(bytes, i);
  for (; i < length; ++i) {
    char const c = bytes[i];
    if (IsPrintableASCII(c)) {
      out.append(c);
      continue;
    }
    int const value = static_cast<signed char>(c);
    int const h = value / 64;
    int const r = value - 64 * h;
    int const m = r / 8;
    int const l = r - 8 * m;
    char form[16];
    int const n = std::snprintf(form, sizeof form, "0x%d%d%d", h, m, l);
    out.append(form, static_cast<unsigned int>(n));
  }
  text.swap(out);
}

}  // namespace quarn::util
