// Exception.cpp - message formatting and the exception classes
#include <quarnCore/Exception.h>

#include <cstdio>
#include <cwchar>

#include <quarnCore/Unicode.h>

namespace quarn {

namespace detail {

namespace {

void appendNarrow(BaseString<unsigned short> &out, char const *text, int precision) {
  if (!text) text = "(null)";
  for (int i = 0; text[i] && (precision < 0 || i < precision); ++i)
    out.append(static_cast<unsigned short>(static_cast<unsigned char>(text[i])));
}

void appendWide(BaseString<unsigned short> &out, unsigned short const *text, int precision) {
  if (!text) {
    appendNarrow(out, "(null)", precision);
    return;
  }
  for (int i = 0; text[i] && (precision < 0 || i < precision); ++i) out.append(text[i]);
}

void pad(BaseString<unsigned short> &out, unsigned int from, int width, bool left) {
  unsigned int len = out.getLength() - from;
  if (width <= 0 || len >= static_cast<unsigned int>(width)) return;
  unsigned int fill = static_cast<unsigned int>(width) - len;
  if (left) {
    while (fill--) out.append(static_cast<unsigned short>(' '));
  } else {
    BaseString<unsigned short> padded;
    padded.append(out.getBuffer(), from);
    while (fill--) padded.append(static_cast<unsigned short>(' '));
    padded.append(out.getBuffer() + from, len);
    out.swap(padded);
  }
}

}  // namespace

BaseString<unsigned short> formatV(char const *format, va_list args) {
  BaseString<unsigned short> out;
  out.reserve(0);
  if (!format) return out;
  for (char const *p = format; *p;) {
    if (*p != '%') {
      out.append(static_cast<unsigned short>(static_cast<unsigned char>(*p++)));
      continue;
    }
    // One conversion: %[flags][width][.precision][length]conversion
    char const *start = p++;
    bool left = false;
    while (*p && std::strchr("-+ #0", *p)) left |= (*p++ == '-');
    int width = -1, precision = -1;
    if (*p == '*') {
      width = va_arg(args, int);
      if (width < 0) left = true, width = -width;
      ++p;
    } else {
      for (width = 0; *p >= '0' && *p <= '9'; ++p) width = width * 10 + (*p - '0');
    }
    if (*p == '.') {
      ++p;
      if (*p == '*') {
        precision = va_arg(args, int);
        ++p;
      } else {
        for (precision = 0; *p >= '0' && *p <= '9'; ++p) precision = precision * 10 + (*p - '0');
      }
    }
    char length[3] = {0, 0, 0};
    for (int n = 0; n < 2 && *p && std::strchr("hlLqjzt", *p); ++n) length[n] = *p++;
    char conv = *p ? *p++ : '\0';
    std::string conversion(start, p);
    char buffer[512];
    int written = -1;
    switch (conv) {
      case '%':
        out.append(static_cast<unsigned short>('%'));
        continue;
      case 's':
      case 'S': {
        unsigned int from = out.getLength();
        bool wide = (conv == 'S') || (length[0] == 'l');
        if (wide)
          appendWide(out, va_arg(args, unsigned short const *), precision);
        else
          appendNarrow(out, va_arg(args, char const *), precision);
        pad(out, from, width, left);
        continue;
      }
      case 'c':
        if (length[0] == 'l') {
          unsigned int from = out.getLength();
          out.append(static_cast<unsigned short>(va_arg(args, int)));
          pad(out, from, width, left);
          continue;
        }
        written = std::snprintf(buffer, sizeof buffer, conversion.c_str(), va_arg(args, int));
        break;
      case 'd':
      case 'i':
      case 'u':
      case 'x':
      case 'X':
      case 'o':
        if (length[0] == 'l' || length[0] == 'j' || length[0] == 'z' || length[0] == 't' || length[0] == 'q' ||
            length[0] == 'L')
          written = std::snprintf(buffer, sizeof buffer, conversion.c_str(), va_arg(args, long long));
        else
          written = std::snprintf(buffer, sizeof buffer, conversion.c_str(), va_arg(args, int));
        break;
      case 'f':
      case 'F':
      case 'e':
      case 'E':
      case 'g':
      case 'G':
      case 'a':
      case 'A':
        if (length[0] == 'L')
          written = std::snprintf(buffer, sizeof buffer, conversion.c_str(), va_arg(args, long double));
        else
          written = std::snprintf(buffer, sizeof buffer, conversion.c_str(), va_arg(args, double));
        break;
      case 'p':
        written = std::snprintf(buffer, sizeof buffer, "%p", va_arg(args, void *));
        break;
      default:  // unknown conversion: keep the text as it stands
        for (char const *q = start; q < p; ++q) out.append(static_cast<unsigned short>(static_cast<unsigned char>(*q)));
        continue;
    }
    if (written > 0) {
      if (written >= static_cast<int>(sizeof buffer)) written = sizeof buffer - 1;
      for (int i = 0; i < written; ++i) out.append(static_cast<unsigned short>(static_cast<unsigned char>(buffer[i])));
    }
  }
  return out;
}

BaseString<unsigned short> format(char const *fmt, ...) {
  va_list args;
  va_start(args, fmt);
  BaseString<unsigned short> s = formatV(fmt, args);
  va_end(args);
  return s;
}

void throwInvalidIndex(unsigned int index, unsigned int lastValid) {
  throw InvalidIndexException(static_cast<int>(index), static_cast<int>(lastValid));
}

void throwMemory() { throw MemoryException(); }

}  // namespace detail

Exception::Exception(char const *format, ...) {
  va_list args;
  va_start(args, format);
  BaseString<unsigned short> message = detail::formatV(format, args);
  va_end(args);
  setMessage(std::move(message));
}

Exception::~Exception() = default;

void Exception::setMessage(BaseString<unsigned short> message) {
  m_message = std::move(message);
  BaseString<char> utf8 = util::ConvertStringtoUTF8(m_message);
  m_utf8.assign(utf8.getBuffer() ? utf8.getBuffer() : "", utf8.getLength());
}

char const *Exception::what() const noexcept { return m_utf8.c_str(); }

void Exception::annotate(BaseString<unsigned short> const &line) {
  BaseString<unsigned short> message(m_message);
  message.append(static_cast<unsigned short>('\n'));
  message.append(line);
  setMessage(std::move(message));
}

void Exception::annotateFormat(char const *format, ...) {
  va_list args;
  va_start(args, format);
  BaseString<unsigned short> line = detail::formatV(format, args);
  va_end(args);
  annotate(line);
}

InvalidIndexException::InvalidIndexException(int index, int lastValid)
    : Exception("Invalid index %d (last valid index %d)", index, lastValid), m_index(index), m_lastValid(lastValid) {}
InvalidIndexException::~InvalidIndexException() = default;

NotImplementedException::NotImplementedException(char const *what) : Exception("%hs", what) {}
NotImplementedException::~NotImplementedException() = default;

MemoryException::MemoryException() : Exception("Memory allocation failed") {}
MemoryException::~MemoryException() = default;

}  // namespace quarn
