// Class.h - class objects: one per class, creating and pooling its instances
//
// Every concrete class has exactly one class object, its static member
// `m_class`, which binds itself to the class's tag when the library loads, so
// that a tag or a name can be turned into new instances. ClassImp<T> creates
// with T::newInstance(); PooledClassImp<T, maxSize> recycles released
// instances instead of freeing them (see its comment for the protocol).
// Class's static operations look classes up by tag and fall back on creation
// from component libraries when nothing is bound.
#pragma once

#include <atomic>
#include <type_traits>

#include <quarn/core/ClassTag.h>
#include <quarn/core/Export.h>
#include <quarnCore/BaseString.h>
#include <quarnCore/LeakDetector.h>

namespace quarn {

class Object;
class Value;

class QUARN_API Class {
 public:
  // Virtual operations, in slot order.
  virtual ClassTag const &getClassTag() const = 0;
  /// A new (or recycled) instance.
  virtual Object *newInstance() const = 0;
  /// Destroys the pooled free instances and returns how many; 0 for an unpooled class.
  virtual unsigned int ClearPool(bool);
  /// Writes the class name into `name`, sets the first three numbers to -1,
  /// leaves the fourth as the caller set it, and returns false: no pool report.
  virtual bool getPoolDebugInfo(BaseString<unsigned short> &name, int &, int &, int &, int &) const;

  /// Whether the instances are values (of Value's family), known without making one.
  bool makesValues() const noexcept { return m_makesValues; }

 protected:
  Class() = default;
  virtual ~Class();
  Class(Class const &) = delete;
  Class &operator=(Class const &) = delete;

  /// Binds `c` to its tag.
  static void setClass(Class *c);
  /// Unbinds whatever is bound to `tag`.
  static void unbind(ClassTag const &tag);

  /// Set by the class object of a class derived from Value.
  bool m_makesValues = false;

 public:
  /// The class bound to `tag`, or null.
  static Class const *findClass(ClassTag const &tag);
  /// The class bound to `tag`, loading the component library that serves the
  /// name when none is bound; "Class %hs not registered." when none serves it.
  static Class const &getClass(ClassTag const &tag);
  /// A new instance of the class of `tag` (bound class first, then a component
  /// library); "Class %hs not registered." when neither can make one.
  static Object *getClassInstance(ClassTag const &tag);
  /// As getClassInstance, but null instead of the exception.
  static Object *findClassInstance(ClassTag const &tag);
  /// Empties every pool, repeating until a pass finds nothing to free.
  static void clearAllClassPools();
  /// A text report of every class that reports pool statistics (one line each).
  static void debugAllClassPools(BaseString<unsigned short> &out);
};

/// The class object of an unpooled class: creates with T::newInstance().
template <class T>
class QUARN_API ClassImp : public Class {
 public:
  ClassImp() : tag(T::Tag) {
    // T is complete here, so Value is too when T derives from it.
    m_makesValues = std::is_base_of_v<Value, T>;
    setClass(this);
    leakDetector.SetName(tag.getName());
  }
  ~ClassImp() override { unbind(tag); }

  ClassTag const &getClassTag() const override { return tag; }
  Object *newInstance() const override { return T::newInstance(); }
  LeakDetector &getLeakDetector() noexcept { return leakDetector; }

 protected:
  ClassTag tag;
  LeakDetector leakDetector;
};

namespace detail {
[[noreturn]] QUARN_API void throwPoolLeak();
[[noreturn]] QUARN_API void throwCopyConstructorError();
QUARN_API bool poolsDisabled() noexcept;
}  // namespace detail

}  // namespace quarn
