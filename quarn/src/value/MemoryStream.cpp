// MemoryStream.cpp - the memory byte streams (their vtables live here)
//
// The output buffer grows geometrically with realloc, so appending is
// amortised constant time; a size that would pass 4 GiB, or a failed
// allocation, throws MemoryException before anything changes.
#include <quarn/value/MemoryStream.h>
#include <quarnCore/Throw.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace quarn {

MemoryOutputStream::~MemoryOutputStream() { std::free(m_data); }

void MemoryOutputStream::write(void const *data, int count) {
  if (count <= 0) return;
  unsigned int n = static_cast<unsigned int>(count);
  auto const *bytes = static_cast<unsigned char const *>(data);
  if (static_cast<std::size_t>(m_limit - m_tail) < n) {
    // Writing our own bytes again: growing moves them, so keep their offset.
    std::uintptr_t from = reinterpret_cast<std::uintptr_t>(bytes);
    std::uintptr_t begin = reinterpret_cast<std::uintptr_t>(m_data);
    bool own = m_data && from >= begin && from < begin + getSize();
    grow(n);
    if (own) bytes = m_data + (from - begin);
  }
  std::memmove(m_tail, bytes, n);
  m_tail += n;
}

unsigned char *MemoryOutputStream::reserveSlow(unsigned int count) {
  if (static_cast<std::size_t>(m_limit - m_tail) < count) grow(count);
  return m_tail;
}

void MemoryOutputStream::grow(unsigned int count) {
  unsigned int size = getSize();
  unsigned long long need = static_cast<unsigned long long>(size) + count;
  if (need > 0xFFFFFFFFull) detail::throwMemory();
  unsigned long long capacity = std::max(static_cast<unsigned long long>(m_limit - m_data), 256ull);
  while (capacity < need) capacity *= 2;
  capacity = std::min(capacity, 0xFFFFFFFFull);
  auto *p = static_cast<unsigned char *>(std::realloc(m_data, static_cast<std::size_t>(capacity)));
  if (!p) detail::throwMemory();
  m_data = p;
  m_tail = p + size;
  m_limit = p + capacity;
  m_shortLimit = m_limit - (kShortRoom - 1);  // the capacity is at least 256
}

MemoryInputStream::~MemoryInputStream() = default;

int MemoryInputStream::read(void *data, int count) {
  if (count <= 0) return 0;
  unsigned int n = std::min(static_cast<unsigned int>(count), getRemaining());
  if (n) std::memcpy(data, m_cursor, n);
  m_cursor += n;
  return static_cast<int>(n);
}

}  // namespace quarn
