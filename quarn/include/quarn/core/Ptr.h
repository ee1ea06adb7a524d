// Ptr.h - smart pointers for quarn's objects
//
// Ptr<T> holds one reference of a counted object: it calls addRef when it
// takes an object and release when it lets go. ObjPtr<T> owns an object made
// through its class (newInstance, clone, cloneValue) and hands it back with
// deleteInstance() when reset or destroyed, so that pooled values return to
// their pool. Both are move-only owners except Ptr, which also copies (taking
// another reference). detach() gives the object up without releasing it.
#pragma once

#include <utility>

namespace quarn {

template <class T>
class Ptr {
 public:
  Ptr() noexcept = default;
  /// Takes a new reference of `object` (null allowed).
  explicit Ptr(T *object) : m_object(object) {
    if (m_object) m_object->addRef();
  }
  Ptr(Ptr const &other) : Ptr(other.m_object) {}
  Ptr(Ptr &&other) noexcept : m_object(std::exchange(other.m_object, nullptr)) {}
  Ptr &operator=(Ptr const &other) {
    if (this != &other) reset(other.m_object);
    return *this;
  }
  Ptr &operator=(Ptr &&other) noexcept {
    if (this != &other) {
      T *old = std::exchange(m_object, std::exchange(other.m_object, nullptr));
      if (old) old->release();
    }
    return *this;
  }
  ~Ptr() {
    if (m_object) m_object->release();
  }

  T *get() const noexcept { return m_object; }
  T *operator->() const noexcept { return m_object; }
  T &operator*() const noexcept { return *m_object; }
  explicit operator bool() const noexcept { return m_object != nullptr; }

  /// Releases the held object and takes a reference of `object`.
  void reset(T *object = nullptr) {
    if (object) object->addRef();
    T *old = std::exchange(m_object, object);
    if (old) old->release();
  }
  /// Gives the object up without releasing its reference.
  T *detach() noexcept { return std::exchange(m_object, nullptr); }

 private:
  T *m_object = nullptr;
};

template <class T>
class ObjPtr {
 public:
  ObjPtr() noexcept = default;
  /// Owns `object` (made through its class).
  explicit ObjPtr(T *object) noexcept : m_object(object) {}
  ObjPtr(ObjPtr const &) = delete;
  ObjPtr &operator=(ObjPtr const &) = delete;
  ObjPtr(ObjPtr &&other) noexcept : m_object(std::exchange(other.m_object, nullptr)) {}
  template <class U>
  ObjPtr(ObjPtr<U> &&other) noexcept : m_object(other.detach()) {}  // NOLINT(google-explicit-constructor)
  ObjPtr &operator=(ObjPtr &&other) noexcept {
    if (this != &other) reset(other.detach());
    return *this;
  }
  ~ObjPtr() { reset(); }

  T *get() const noexcept { return m_object; }
  T *operator->() const noexcept { return m_object; }
  T &operator*() const noexcept { return *m_object; }
  explicit operator bool() const noexcept { return m_object != nullptr; }

  /// Hands the owned object back to its class and owns `object` instead.
  void reset(T *object = nullptr) noexcept {
    T *old = std::exchange(m_object, object);
    if (old && old != object) old->deleteInstance();
  }
  /// Gives the object up without handing it back.
  T *detach() noexcept { return std::exchange(m_object, nullptr); }

 private:
  T *m_object = nullptr;
};

}  // namespace quarn
