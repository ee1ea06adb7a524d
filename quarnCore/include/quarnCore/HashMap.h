// HashMap.h - the separate-chaining hash map of quarn
//
// Starts with 31 buckets. A node's bucket is its hash modulo the bucket count;
// lookups compare the stored hash first and then the key. Before a new key is
// inserted, a map whose count has reached floor(0.75 x buckets) is rehashed to
// the smallest prime above twice the bucket count (31 -> 67 -> 137 -> 277 ...),
// every node relinked at the head of its new bucket. New nodes go to the head of
// their bucket. Removed nodes are kept on a stack of spare nodes that later
// inserts reuse before allocating.
//
// Traits supplies `static unsigned int hash(K const &)` and
// `static bool equal(K const &, K const &)`. Not thread-safe: callers lock.
//
// Errors: "Tried to find in a hash map with 0 buckets", "Tried to put into a
// hash map with 0 buckets", "Tried to remove from hash map with 0 buckets",
// "Cannot resize a hash map to 0".
#pragma once

#include <quarnCore/Array.h>
#include <quarnCore/Export.h>
#include <quarnCore/Stack.h>

namespace quarn {

namespace detail {
enum class HashMapError { Find, Put, Remove, Resize };
[[noreturn]] QUARN_CORE_API void throwHashMapError(HashMapError which);
/// Smallest prime above n by the stepping rule of the map (2 for n == 1).
QUARN_CORE_API unsigned int nextPrime(unsigned int n);
}  // namespace detail

template <class K, class V, class Traits>
class HashMap {
  struct Node {
    unsigned int hash;
    K key;
    V value;
    Node *next;
  };

 public:
  explicit HashMap(unsigned int buckets = 31) {
    if (buckets == 0) [[unlikely]]
      detail::throwHashMapError(detail::HashMapError::Resize);
    m_buckets.resize(buckets);
    m_threshold = buckets * 3 / 4;
  }
  HashMap(HashMap const &) = delete;
  HashMap &operator=(HashMap const &) = delete;
  ~HashMap() {
    for (unsigned int b = 0; b < m_buckets.getSize(); ++b) {
      for (Node *n = m_buckets[b]; n;) {
        Node *next = n->next;
        delete n;
        n = next;
      }
    }
    while (!m_spare.isEmpty()) delete m_spare.pop();
  }

  unsigned int getCount() const noexcept { return m_count; }
  unsigned int getBucketCount() const noexcept { return m_buckets.getSize(); }
  unsigned int getSpareCount() const noexcept { return m_spare.getSize(); }

  /// The value stored under `key`, or nullptr.
  V *find(K const &key) { return find(key, Traits::hash(key)); }
  V const *find(K const &key) const { return const_cast<HashMap *>(this)->find(key); }
  V *find(K const &key, unsigned int hash) {
    if (m_buckets.getSize() == 0) [[unlikely]]
      detail::throwHashMapError(detail::HashMapError::Find);
    for (Node *n = m_buckets[hash % m_buckets.getSize()]; n; n = n->next)
      if (n->hash == hash && Traits::equal(n->key, key)) return &n->value;
    return nullptr;
  }

  /// Stores `value` under `key`: replaces the value of an existing key in place,
  /// else inserts a new node. Returns true when a new key was inserted.
  bool put(K const &key, V const &value) {
    unsigned int hash = Traits::hash(key);
    if (m_buckets.getSize() == 0) [[unlikely]]
      detail::throwHashMapError(detail::HashMapError::Put);
    if (V *existing = find(key, hash)) {
      *existing = value;
      return false;
    }
    insertNew(key, value, hash);
    return true;
  }

  /// Inserts a key the caller knows to be absent.
  void insertNew(K const &key, V const &value, unsigned int hash) {
    if (m_buckets.getSize() == 0) [[unlikely]]
      detail::throwHashMapError(detail::HashMapError::Put);
    if (m_count >= m_threshold) resize(detail::nextPrime(2 * m_buckets.getSize()));
    Node *n;
    if (!m_spare.isEmpty()) {
      n = m_spare.pop();
      n->key = key;
      n->value = value;
    } else {
      n = new Node{hash, key, value, nullptr};
    }
    n->hash = hash;
    Node *&head = m_buckets[hash % m_buckets.getSize()];
    n->next = head;
    head = n;
    ++m_count;
  }

  /// Removes `key`; returns whether it was present (absence is not an error).
  bool remove(K const &key) {
    if (m_buckets.getSize() == 0) [[unlikely]]
      detail::throwHashMapError(detail::HashMapError::Remove);
    unsigned int hash = Traits::hash(key);
    for (Node **link = &m_buckets[hash % m_buckets.getSize()]; *link; link = &(*link)->next) {
      Node *n = *link;
      if (n->hash == hash && Traits::equal(n->key, key)) {
        *link = n->next;
        n->next = nullptr;
        m_spare.push(n);
        --m_count;
        return true;
      }
    }
    return false;
  }

  /// Relinks every node into `buckets` buckets.
  void resize(unsigned int buckets) {
    if (buckets == 0) [[unlikely]]
      detail::throwHashMapError(detail::HashMapError::Resize);
    Array<Node *> fresh;
    fresh.resize(buckets);
    for (unsigned int b = 0; b < m_buckets.getSize(); ++b) {
      for (Node *n = m_buckets[b]; n;) {
        Node *next = n->next;
        Node *&head = fresh[n->hash % buckets];
        n->next = head;
        head = n;
        n = next;
      }
    }
    m_buckets.swap(fresh);
    m_threshold = static_cast<unsigned int>(static_cast<unsigned long long>(buckets) * 3 / 4);
  }

  /// Calls f(key, value) for every entry, bucket by bucket.
  template <class F>
  void forEach(F &&f) const {
    for (unsigned int b = 0; b < m_buckets.getSize(); ++b)
      for (Node *n = m_buckets[b]; n; n = n->next) f(n->key, n->value);
  }

 private:
  Array<Node *> m_buckets;
  unsigned int m_count = 0;
  unsigned int m_threshold = 0;
  Stack<Node *> m_spare;
};

}  // namespace quarn
