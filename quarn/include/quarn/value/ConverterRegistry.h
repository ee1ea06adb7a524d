// ConverterRegistry.h - the registry of value converters behind Value::assignTo
//
// Registrations are queued, not applied: enqueue() only appends (from, to,
// converter) to a pending list, so converters may register from static
// initialisers in any order. Every lookup first applies the pending list in
// order - a converter is stored, replacing the converter of an equal key in
// place; a null converter removes the key, and a missing key is no error -
// and then frees it. The map is created by the first lookup: a chained hash
// map keyed by the ordered pair of tags (by tag identity), hashed by the XOR
// of the two case-sensitive name hashes, with 31 buckets growing to the next
// prime above twice the count (31 -> 67) once it holds floor(0.75 x buckets).
//
// One registry serves the process (process()): it is made by the first
// registration and freed when the library unloads, after which process()
// answers null and registrations and lookups find nothing. A lock around
// enqueue and apply-and-lookup makes concurrent first conversions safe; the
// lookup order and results are those of the unlocked design.
//
// Value::RegisterTypeConverter, UnRegisterTypeConverter, assignTo and
// canAssignTo are the public face; this class is exposed for inspection.
#pragma once

#include <quarn/core/ClassTag.h>
#include <quarn/core/Export.h>
#include <quarnCore/Array.h>
#include <quarnCore/HashMap.h>

#include <memory>
#include <mutex>

namespace quarn {

class ValueTypeConverter;

namespace detail {

class QUARN_API ConverterRegistry {
 public:
  ConverterRegistry() noexcept;
  ~ConverterRegistry();
  ConverterRegistry(ConverterRegistry const &) = delete;
  ConverterRegistry &operator=(ConverterRegistry const &) = delete;

  /// Queues (from, to, converter); a null converter removes the pair when applied.
  void enqueue(ClassTag const &from, ClassTag const &to, ValueTypeConverter *converter);
  /// Applies the pending list, then returns the converter of (from, to) or null.
  ValueTypeConverter *find(ClassTag const &from, ClassTag const &to);

  /// Buckets of the map (0 before the first lookup made it).
  unsigned int getBucketCount() const;
  /// Pairs in the map (pending registrations not counted).
  unsigned int getCount() const;
  /// Registrations queued and not yet applied.
  unsigned int getPendingCount() const;

  /// The key hash of a pair: the XOR of the case-sensitive hashes of the two names.
  static unsigned int keyHash(ClassTag const &from, ClassTag const &to) noexcept;

  /// The registry of the process, made on first use; null once the library unloads.
  static ConverterRegistry *process() noexcept;

 private:
  struct Key {
    int from;
    int to;
    unsigned int hash;
  };
  struct KeyTraits {
    static unsigned int hash(Key const &key) noexcept { return key.hash; }
    static bool equal(Key const &a, Key const &b) noexcept { return a.from == b.from && a.to == b.to; }
  };
  struct Pending {
    Key key;
    ValueTypeConverter *converter;
  };
  using Map = HashMap<Key, ValueTypeConverter *, KeyTraits>;

  static Key makeKey(ClassTag const &from, ClassTag const &to) noexcept;
  void applyPending();

  mutable std::mutex m_mutex;
  Array<Pending> m_pending;
  std::unique_ptr<Map> m_map;
};

}  // namespace detail
}  // namespace quarn
