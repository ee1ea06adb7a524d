// MemoryStream.h - byte streams over memory: an owned, growing buffer and a borrowed one
//
// MemoryOutputStream appends everything written to a buffer it owns; the bytes
// stay readable through getBuffer() until the next write or clear().
// MemoryInputStream reads a buffer it does not own (the caller keeps it alive
// and unchanged while reading); at the end `read` returns fewer bytes, then 0.
// Running out of memory throws MemoryException and leaves the written bytes as
// they were.
//
// Both expose their buffer to coders (reserveTail / commitTail, getCursor /
// skip), and the primitives work on it directly: through the general
// operators of ByteStream.h when the stream is reached as an iByteOutputStream
// or iByteInputStream, and inline through the overloads below when its type is
// known. The bytes, the messages and the position after a failure are the same
// on every path.
#pragma once

#include <quarn/core/Export.h>
#include <quarn/value/ByteCodec.h>
#include <quarn/value/ByteStream.h>

#include <cstddef>

namespace quarn {

/// A stream that collects its bytes in memory. Not thread-safe; not copyable.
class QUARN_API MemoryOutputStream final : public iByteOutputStream {
 public:
  explicit MemoryOutputStream(int version = 2) noexcept { this->version = version; }
  MemoryOutputStream(MemoryOutputStream const &) = delete;
  MemoryOutputStream &operator=(MemoryOutputStream const &) = delete;
  ~MemoryOutputStream() override;

  /// Appends `count` bytes (nothing for count <= 0).
  void write(void const *data, int count) override;

  /// The bytes written so far (null before the first byte).
  unsigned char const *getBuffer() const noexcept { return m_data; }
  unsigned int getSize() const noexcept { return static_cast<unsigned int>(m_tail - m_data); }
  /// Forgets the bytes; the buffer is kept for the next writes.
  void clear() noexcept { m_tail = m_data; }

  /// Room for `count` more bytes at the end, valid until the next call that
  /// writes; commitTail(n) then appends the first n of them.
  unsigned char *reserveTail(unsigned int count) {
    if (!hasRoom(count)) [[unlikely]]
      return reserveSlow(count);
    return m_tail;
  }
  void commitTail(unsigned int count) noexcept { m_tail += count; }
  /// commitTail() up to `end`, a point inside the room reserveTail() gave.
  void commitTailTo(unsigned char *end) noexcept { m_tail = end; }
  /// Whether reserveTail(count) can be met without growing the buffer.
  bool hasRoom(unsigned int count) const noexcept {
    // A primitive's few bytes: one compare against a limit kept for them.
    return count <= kShortRoom ? m_tail < m_shortLimit : static_cast<std::size_t>(m_limit - m_tail) >= count;
  }

 private:
  static constexpr unsigned int kShortRoom = 16;
  unsigned char *reserveSlow(unsigned int count);
  void grow(unsigned int count);

  // The written bytes are [m_data, m_tail), the room after them [m_tail, m_limit).
  // Pointers rather than counts: the inline coders then keep m_tail in a register.
  // While m_tail is below m_shortLimit there is room for kShortRoom bytes.
  unsigned char *m_data = nullptr;
  unsigned char *m_tail = nullptr;
  unsigned char *m_limit = nullptr;
  unsigned char *m_shortLimit = nullptr;
};

/// A stream that reads a caller's buffer. Not thread-safe.
class QUARN_API MemoryInputStream final : public iByteInputStream {
 public:
  MemoryInputStream(void const *data, unsigned int size, int version = 2) noexcept
      : m_data(static_cast<unsigned char const *>(data)), m_cursor(m_data), m_end(data ? m_data + size : m_data) {
    this->version = version;
  }
  ~MemoryInputStream() override;

  /// Copies up to `count` bytes and returns how many (0 at the end or for count <= 0).
  int read(void *data, int count) override;

  /// Bytes consumed so far.
  unsigned int getPosition() const noexcept { return static_cast<unsigned int>(m_cursor - m_data); }
  unsigned int getSize() const noexcept { return static_cast<unsigned int>(m_end - m_data); }

  /// The unread bytes: getRemaining() of them from getCursor(); skip(n) consumes n (at most all).
  unsigned char const *getCursor() const noexcept { return m_cursor; }
  unsigned int getRemaining() const noexcept { return static_cast<unsigned int>(m_end - m_cursor); }
  void skip(unsigned int count) noexcept { m_cursor += count < getRemaining() ? count : getRemaining(); }
  /// skip() for a count known to be at most getRemaining().
  void advance(unsigned int count) noexcept { m_cursor += count; }

 private:
  unsigned char const *m_data;
  unsigned char const *m_cursor;
  unsigned char const *m_end;
};

namespace detail {

/// Encodes one fixed-size primitive straight into the buffer.
template <class Codec>
inline void putTo(MemoryOutputStream &out, typename Codec::Type value) {
  // The new end is stored as computed, not added to a reloaded m_tail, so
  // nothing depends on whether the encoder's stores could have changed it.
  unsigned char *p = out.reserveTail(Codec::kMax);
  out.commitTailTo(p + Codec::encode(value, p));
}

/// putTo() when the buffer has room without growing; false (nothing written) otherwise.
template <class Codec>
inline bool putToRoom(MemoryOutputStream &out, typename Codec::Type value) {
  if (!out.hasRoom(Codec::kMax)) return false;
  putTo<Codec>(out, value);  // reserves without growing
  return true;
}

/// Decodes one fixed-size primitive when kMax bytes or more are left (so all
/// of it is there); false (nothing consumed) otherwise.
template <class Codec>
inline bool getWide(MemoryInputStream &in, typename Codec::Type &value) noexcept {
  if (in.getRemaining() < Codec::kMax) return false;
  unsigned char const *p = in.getCursor();
  unsigned int size = Codec::size(p[0]);
  value = Codec::decodeWide(p);
  in.advance(size);
  return true;
}

/// Decodes one fixed-size primitive from the buffer; false (nothing consumed)
/// when the buffer does not hold all of it, for the caller to report.
template <class Codec>
inline bool getFrom(MemoryInputStream &in, typename Codec::Type &value) {
  if (getWide<Codec>(in, value)) [[likely]]
    return true;
  unsigned int left = in.getRemaining();
  unsigned char const *p = in.getCursor();
  if (left == 0 || Codec::size(p[0]) > left) return false;
  value = Codec::decode(p);
  in.advance(Codec::size(p[0]));
  return true;
}

template <class Codec>
inline MemoryInputStream &getInline(MemoryInputStream &in, typename Codec::Type &value) {
  if (!getFrom<Codec>(in, value)) [[unlikely]]
    static_cast<iByteInputStream &>(in) >> value;  // runs into the end and reports it
  return in;
}

}  // namespace detail

// Inline forms for a stream known to be a memory stream; they return the
// memory stream so that chained calls stay inline.
inline MemoryOutputStream &operator<<(MemoryOutputStream &out, int value) {
  detail::putTo<detail::IntCodec>(out, value);
  return out;
}
inline MemoryOutputStream &operator<<(MemoryOutputStream &out, double value) {
  detail::putTo<detail::DoubleCodec>(out, value);
  return out;
}
inline MemoryOutputStream &operator<<(MemoryOutputStream &out, bool value) {
  detail::putTo<detail::BoolCodec>(out, value);
  return out;
}
inline MemoryOutputStream &operator<<(MemoryOutputStream &out, unsigned char value) {
  detail::putTo<detail::ByteCodec>(out, value);
  return out;
}
inline MemoryOutputStream &operator<<(MemoryOutputStream &out, BaseString<unsigned short> const &value) {
  static_cast<iByteOutputStream &>(out) << value;
  return out;
}

inline MemoryInputStream &operator>>(MemoryInputStream &in, int &value) {
  return detail::getInline<detail::IntCodec>(in, value);
}
inline MemoryInputStream &operator>>(MemoryInputStream &in, double &value) {
  return detail::getInline<detail::DoubleCodec>(in, value);
}
inline MemoryInputStream &operator>>(MemoryInputStream &in, bool &value) {
  return detail::getInline<detail::BoolCodec>(in, value);
}
inline MemoryInputStream &operator>>(MemoryInputStream &in, unsigned char &value) {
  return detail::getInline<detail::ByteCodec>(in, value);
}
inline MemoryInputStream &operator>>(MemoryInputStream &in, BaseString<unsigned short> &value) {
  static_cast<iByteInputStream &>(in) >> value;
  return in;
}

}  // namespace quarn
