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
  if (m_capacity - m_size < n) {
    // Writing our own bytes again: growing moves them, so keep their offset.
    std::uintptr_t from = reinterpret_cast<std::uintptr_t>(bytes);
    std::uintptr_t begin = reinterpret_cast<std::uintptr_t>(m_data);
    bool own = m_data && from >= begin && from < begin + m_size;
    grow(n);
    if (own) bytes = m_data + (from - begin);
  }
  std::memmove(m_data + m_size, bytes, n);
  m_size += n;
}

void MemoryOutputStream::grow(unsigned int count) {
  unsigned long long need = static_cast<unsigned long long>(m_size) + count;
  if (need > 0xFFFFFFFFull) detail::throwMemory();
  unsigned long long capacity = std::max(m_capacity, 256u);
  while (capacity < need) capacity *= 2;
  capacity = std::min(capacity, 0xFFFFFFFFull);
  auto *p = static_cast<unsigned char *>(std::realloc(m_data, static_cast<std::size_t>(capacity)));
  if (!p) detail::throwMemory();
  m_data = p;
  m_capacity = static_cast<unsigned int>(capacity);
}

MemoryInputStream::~MemoryInputStream() = default;

int MemoryInputStream::read(void *data, int count) {
  if (count <= 0) return 0;
  unsigned int n = std::min(static_cast<unsigned int>(count), m_size - m_position);
  if (n) std::memcpy(data, m_data + m_position, n);
  m_position += n;
  return static_cast<int>(n);
}

}  // namespace quarn
