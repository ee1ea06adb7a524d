// Unicode.cpp - UTF-16 <-> UTF-8 with replacement of anything invalid
#include <quarnCore/Unicode.h>

namespace quarn::util {

namespace {
constexpr unsigned int kReplacement = 0xFFFD;

void putUtf8(BaseString<char> &out, unsigned int cp) {
  char b[4];
  unsigned int n;
  if (cp < 0x80) {
    b[0] = static_cast<char>(cp);
    n = 1;
  } else if (cp < 0x800) {
    b[0] = static_cast<char>(0xC0 | (cp >> 6));
    b[1] = static_cast<char>(0x80 | (cp & 0x3F));
    n = 2;
  } else if (cp < 0x10000) {
    b[0] = static_cast<char>(0xE0 | (cp >> 12));
    b[1] = static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
    b[2] = static_cast<char>(0x80 | (cp & 0x3F));
    n = 3;
  } else {
    b[0] = static_cast<char>(0xF0 | (cp >> 18));
    b[1] = static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
    b[2] = static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
    b[3] = static_cast<char>(0x80 | (cp & 0x3F));
    n = 4;
  }
  out.append(b, n);
}
}  // namespace

void ConvertStringtoUTF8(BaseString<char> &out, unsigned short const *text, unsigned int count) {
  BaseString<char> result;
  result.reserve(count);
  for (unsigned int i = 0; i < count; ++i) {
    unsigned int u = text[i];
    if (u >= 0xD800 && u <= 0xDBFF && i + 1 < count && text[i + 1] >= 0xDC00 && text[i + 1] <= 0xDFFF) {
      u = 0x10000 + ((u - 0xD800) << 10) + (text[i + 1] - 0xDC00u);
      ++i;
    } else if (u >= 0xD800 && u <= 0xDFFF) {
      u = kReplacement;
    }
    if (u < 0x80)
      result.append(static_cast<char>(u));
    else
      putUtf8(result, u);
  }
  out.swap(result);
}

BaseString<char> ConvertStringtoUTF8(BaseString<unsigned short> const &text) {
  BaseString<char> out;
  if (!text.isNull()) ConvertStringtoUTF8(out, text.getBuffer(), text.getLength());
  return out;
}

void ConvertUTF8toString(BaseString<unsigned short> &out, char const *utf8, unsigned int count) {
  BaseString<unsigned short> result;
  result.reserve(count);
  auto const *s = reinterpret_cast<unsigned char const *>(utf8);
  unsigned int i = 0;
  while (i < count) {
    unsigned int b = s[i];
    if (b < 0x80) {
      result.append(static_cast<unsigned short>(b));
      ++i;
      continue;
    }
    unsigned int need, cp, min;
    if (b >= 0xC2 && b <= 0xDF) {
      need = 1, cp = b & 0x1F, min = 0x80;
    } else if (b >= 0xE0 && b <= 0xEF) {
      need = 2, cp = b & 0x0F, min = 0x800;
    } else if (b >= 0xF0 && b <= 0xF4) {
      need = 3, cp = b & 0x07, min = 0x10000;
    } else {
      result.append(static_cast<unsigned short>(kReplacement));
      ++i;
      continue;
    }
    unsigned int k = 1;
    for (; k <= need && i + k < count && (s[i + k] & 0xC0) == 0x80; ++k) cp = (cp << 6) | (s[i + k] & 0x3Fu);
    if (k <= need || cp < min || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) {
      // A broken sequence: replace its lead byte and every continuation byte read with it.
      result.append(static_cast<unsigned short>(kReplacement));
      i += k;
      continue;
    }
    i += k;
    if (cp >= 0x10000) {
      cp -= 0x10000;
      result.append(static_cast<unsigned short>(0xD800 + (cp >> 10)));
      result.append(static_cast<unsigned short>(0xDC00 + (cp & 0x3FF)));
    } else {
      result.append(static_cast<unsigned short>(cp));
    }
  }
  out.swap(result);
}

void ConvertUTF8toString(BaseString<unsigned short> &out, char const *utf8) {
  if (!utf8) {
    out.setNull();
    return;
  }
  ConvertUTF8toString(out, utf8, static_cast<unsigned int>(std::strlen(utf8)));
}

void ConvertUTF8toString(BaseString<unsigned short> &out, BaseString<char> const &utf8) {
  if (utf8.isNull()) {
    out.setNull();
    return;
  }
  ConvertUTF8toString(out, utf8.getBuffer(), utf8.getLength());
}

}  // namespace quarn::util
