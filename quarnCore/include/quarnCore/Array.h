// Array.h - the growable array used throughout quarn
//
// An owned buffer with a size and a capacity (both unsigned 32-bit). Growing to
// n when n exceeds the capacity takes max(capacity, 5) and doubles it until it
// covers n; the buffer never shrinks except through clear(), which frees it.
// Indexed access is checked: an index at or beyond the size throws
// InvalidIndexException(index, size - 1). A failed allocation throws
// MemoryException and leaves the array as it was.
#pragma once

#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

#include <quarnCore/Throw.h>

namespace quarn {

template <class T>
class Array {
 public:
  using value_type = T;

  Array() noexcept = default;
  Array(Array const &other) {
    reserve(other.m_size);
    try {
      std::uninitialized_copy(other.m_buffer, other.m_buffer + other.m_size, m_buffer);
    } catch (...) {
      std::free(m_buffer);
      throw;
    }
    m_size = other.m_size;
  }
  Array(Array &&other) noexcept
      : m_buffer(std::exchange(other.m_buffer, nullptr)),
        m_size(std::exchange(other.m_size, 0u)),
        m_capacity(std::exchange(other.m_capacity, 0u)) {}
  Array &operator=(Array const &other) {
    if (this != &other) {
      Array copy(other);
      swap(copy);
    }
    return *this;
  }
  Array &operator=(Array &&other) noexcept {
    if (this != &other) {
      clear();
      swap(other);
    }
    return *this;
  }
  ~Array() { clear(); }

  unsigned int getSize() const noexcept { return m_size; }
  unsigned int getCapacity() const noexcept { return m_capacity; }
  bool isEmpty() const noexcept { return m_size == 0; }
  T *getBuffer() noexcept { return m_buffer; }
  T const *getBuffer() const noexcept { return m_buffer; }
  T *begin() noexcept { return m_buffer; }
  T *end() noexcept { return m_buffer + m_size; }
  T const *begin() const noexcept { return m_buffer; }
  T const *end() const noexcept { return m_buffer + m_size; }

  T &operator[](unsigned int i) {
    if (i >= m_size) [[unlikely]]
      detail::throwInvalidIndex(i, m_size - 1);
    return m_buffer[i];
  }
  T const &operator[](unsigned int i) const {
    if (i >= m_size) [[unlikely]]
      detail::throwInvalidIndex(i, m_size - 1);
    return m_buffer[i];
  }

  /// Ensures room for `n` elements, growing by the rule of the file comment.
  void reserve(unsigned int n) {
    if (n <= m_capacity) return;
    unsigned long long cap = m_capacity < 5 ? 5 : m_capacity;
    while (cap < n) cap *= 2;
    if (cap > 0xFFFFFFFFull) cap = 0xFFFFFFFFull;
    reallocate(static_cast<unsigned int>(cap));
  }
  /// Sets the size; new elements are value-initialised, removed ones destroyed.
  void resize(unsigned int n) {
    if (n > m_size) {
      reserve(n);
      std::uninitialized_value_construct(m_buffer + m_size, m_buffer + n);
    } else {
      std::destroy(m_buffer + n, m_buffer + m_size);
    }
    m_size = n;
  }
  void append(T const &value) {
    if (m_size == m_capacity) {
      if (&value >= m_buffer && &value < m_buffer + m_size) {  // value lives in this array
        T copy(value);
        grow();
        ::new (static_cast<void *>(m_buffer + m_size)) T(std::move(copy));
        ++m_size;
        return;
      }
      grow();
    }
    ::new (static_cast<void *>(m_buffer + m_size)) T(value);
    ++m_size;
  }
  void append(T &&value) {
    if (m_size == m_capacity) {
      T moved(std::move(value));
      grow();
      ::new (static_cast<void *>(m_buffer + m_size)) T(std::move(moved));
    } else {
      ::new (static_cast<void *>(m_buffer + m_size)) T(std::move(value));
    }
    ++m_size;
  }
  /// Inserts before position `i` (i == size appends); later elements shift back.
  void insert(unsigned int i, T const &value) {
    if (i > m_size) [[unlikely]]
      detail::throwInvalidIndex(i, m_size - 1);
    T copy(value);
    append(std::move(copy));
    for (unsigned int k = m_size - 1; k > i; --k) std::swap(m_buffer[k], m_buffer[k - 1]);
  }
  /// Removes element `i`; later elements shift forward; the capacity is kept.
  void remove(unsigned int i) {
    if (i >= m_size) [[unlikely]]
      detail::throwInvalidIndex(i, m_size - 1);
    if constexpr (std::is_trivially_copyable_v<T>) {
      std::memmove(static_cast<void *>(m_buffer + i), m_buffer + i + 1, sizeof(T) * (m_size - i - 1));
    } else {
      for (unsigned int k = i; k + 1 < m_size; ++k) m_buffer[k] = std::move(m_buffer[k + 1]);
      std::destroy_at(m_buffer + m_size - 1);
    }
    --m_size;
  }
  /// Removes and returns the last element (a stack pop); InvalidIndexException when empty.
  T pop() {
    if (m_size == 0) [[unlikely]]
      detail::throwInvalidIndex(0, 0xFFFFFFFFu);
    T value(std::move(m_buffer[m_size - 1]));
    std::destroy_at(m_buffer + --m_size);
    return value;
  }
  /// Destroys every element and frees the buffer.
  void clear() noexcept {
    std::destroy(m_buffer, m_buffer + m_size);
    std::free(m_buffer);
    m_buffer = nullptr;
    m_size = m_capacity = 0;
  }
  void swap(Array &other) noexcept {
    std::swap(m_buffer, other.m_buffer);
    std::swap(m_size, other.m_size);
    std::swap(m_capacity, other.m_capacity);
  }

 private:
  void grow() {
    if (m_size == 0xFFFFFFFFu) [[unlikely]]
      detail::throwMemory();
    reserve(m_size + 1);
  }
  void reallocate(unsigned int cap) {
    if (static_cast<unsigned long long>(cap) * sizeof(T) > (1ull << 40)) [[unlikely]]
      detail::throwMemory();
    if constexpr (std::is_trivially_copyable_v<T>) {
      T *p = static_cast<T *>(std::realloc(static_cast<void *>(m_buffer), sizeof(T) * cap));
      if (!p) [[unlikely]]
        detail::throwMemory();
      m_buffer = p;
    } else {
      T *p = static_cast<T *>(std::malloc(sizeof(T) * cap));
      if (!p) [[unlikely]]
        detail::throwMemory();
      if constexpr (std::is_nothrow_move_constructible_v<T>) {
        std::uninitialized_move(m_buffer, m_buffer + m_size, p);
      } else {
        try {
          std::uninitialized_copy(m_buffer, m_buffer + m_size, p);
        } catch (...) {
          std::free(p);
          throw;
        }
      }
      std::destroy(m_buffer, m_buffer + m_size);
      std::free(m_buffer);
      m_buffer = p;
    }
    m_capacity = cap;
  }

  T *m_buffer = nullptr;
  unsigned int m_size = 0;
  unsigned int m_capacity = 0;
};

}  // namespace quarn
