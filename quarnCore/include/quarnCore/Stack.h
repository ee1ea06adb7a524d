// Stack.h - a last-in, first-out stack over Array
//
// Used for the free instances of a pool and the spare nodes of a hash map. Its
// storage grows by the Array rule and is reused; popping an empty stack throws
// Exception "Stack is empty".
#pragma once

#include <quarnCore/Array.h>
#include <quarnCore/Export.h>

namespace quarn {

namespace detail {
[[noreturn]] QUARN_CORE_API void throwStackEmpty();
}  // namespace detail

template <class T>
class Stack {
 public:
  void push(T const &value) { m_items.append(value); }
  T pop() {
    if (m_items.isEmpty()) [[unlikely]]
      detail::throwStackEmpty();
    return m_items.pop();
  }
  T &top() {
    if (m_items.isEmpty()) [[unlikely]]
      detail::throwStackEmpty();
    return m_items[m_items.getSize() - 1];
  }
  bool isEmpty() const noexcept { return m_items.isEmpty(); }
  unsigned int getSize() const noexcept { return m_items.getSize(); }
  /// Frees the storage (the items themselves are the caller's).
  void clear() noexcept { m_items.clear(); }

 private:
  Array<T> m_items;
};

}  // namespace quarn
