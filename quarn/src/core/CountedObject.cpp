// CountedObject.cpp - reference counting and the dynamic and component bases
#include <quarn/core/ComponentObject.h>
#include <quarn/core/CountedObject.h>
#include <quarn/core/DynamicObject.h>
#include <quarnCore/Exception.h>
#include <quarnCore/Interlocked.h>

#include <atomic>

namespace quarn {

namespace detail {
void throwInterfaceInstance(char const *className) {
  throw Exception("It is invalid to create an interface instance: %hs", className);
}
void throwInterfaceClone(char const *className) {
  throw Exception("It is invalid to clone an interface: %hs", className);
}
}  // namespace detail

// ---- CountedObject

ClassTagDecl const CountedObject::Tag("Marlix.obj.CountedObject");
ClassImp<CountedObject> CountedObject::m_class;
LeakDetector CountedObject::m_leakDetector("CountedObject");

CountedObject::~CountedObject() = default;

ClassTag const &CountedObject::getClassTag() const { return Tag; }
Object *CountedObject::clone() const { detail::throwInterfaceClone(getClassTag().getName()); }
Class const &CountedObject::getClass() const { return m_class; }

void *CountedObject::_SeekClassIdentity(ClassTag const &tag) const {
  if (tag.getId() == Tag.getId()) return const_cast<CountedObject *>(this);
  return Object::_SeekClassIdentity(tag);
}

void CountedObject::AddToLeakDetector() { m_leakDetector.Add(this, "CountedObject"); }
void CountedObject::RemoveFromLeakDetector() { m_leakDetector.Sub(this); }

unsigned int CountedObject::addRef() { return static_cast<unsigned int>(InterlockedIncrement(refCount)); }

unsigned int CountedObject::release() {
  // Drop a reference while others remain; the holder of the last one (count 0
  // or 1) is the only user left and deletes the object without atomics.
  std::atomic_ref<int> count(refCount);
  int current = count.load(std::memory_order_acquire);
  while (current >= 2) {
    if (count.compare_exchange_weak(current, current - 1, std::memory_order_acq_rel))
      return static_cast<unsigned int>(current - 1);
  }
  FinalRelease();
  refCount = 0;
  deleteInstance();
  return 0;
}

void CountedObject::FinalRelease() {}

unsigned int CountedObject::getRefCount() const noexcept {
  return static_cast<unsigned int>(std::atomic_ref<int>(const_cast<int &>(refCount)).load(std::memory_order_acquire));
}

CountedObject *CountedObject::newInstance() { detail::throwInterfaceInstance(Tag.getName()); }

// ---- DynamicObject

ClassTagDecl const DynamicObject::Tag("Marlix.obj.DynamicObject");
ClassImp<DynamicObject> DynamicObject::m_class;
LeakDetector DynamicObject::m_leakDetector("DynamicObject");

DynamicObject::~DynamicObject() = default;

ClassTag const &DynamicObject::getClassTag() const { return Tag; }
Class const &DynamicObject::getClass() const { return m_class; }
Object *DynamicObject::clone() const { detail::throwInterfaceClone(getClassTag().getName()); }

void *DynamicObject::_SeekClassIdentity(ClassTag const &tag) const {
  if (tag.getId() == Tag.getId()) return const_cast<DynamicObject *>(this);
  return CountedObject::_SeekClassIdentity(tag);
}

void DynamicObject::AddToLeakDetector() { m_leakDetector.Add(this, "DynamicObject"); }
void DynamicObject::RemoveFromLeakDetector() { m_leakDetector.Sub(this); }
void DynamicObject::FinalConstruct() {}

unsigned int DynamicObject::ReleaseNoCheck() {
  std::atomic_ref<int> count(refCount);
  int current = count.load(std::memory_order_acquire);
  while (current > 0) {
    if (count.compare_exchange_weak(current, current - 1, std::memory_order_acq_rel))
      return static_cast<unsigned int>(current - 1);
  }
  return static_cast<unsigned int>(current);
}

char const *DynamicObject::getRegisteredName() { return Tag.getName(); }
DynamicObject *DynamicObject::newInstance() { detail::throwInterfaceInstance(Tag.getName()); }

// ---- iComponent and ComponentObject

QUARN_DEFINE_INTERFACE(iComponent);

ClassTagDecl const ComponentObject::Tag("Marlix.obj.ComponentObject");
ClassImp<ComponentObject> ComponentObject::m_class;
LeakDetector ComponentObject::m_leakDetector("ComponentObject");

ComponentObject::~ComponentObject() = default;

ClassTag const &ComponentObject::getClassTag() const { return Tag; }
Class const &ComponentObject::getClass() const { return m_class; }
Object *ComponentObject::clone() const { detail::throwInterfaceClone(getClassTag().getName()); }
ComponentObject *ComponentObject::newInstance() { detail::throwInterfaceInstance(Tag.getName()); }

void *ComponentObject::_SeekClassIdentity(ClassTag const &tag) const {
  if (tag.getId() == Tag.getId()) return const_cast<ComponentObject *>(this);
  if (tag.getId() == iComponent::Tag.getId())
    return const_cast<iComponent *>(static_cast<iComponent const *>(this));
  return DynamicObject::_SeekClassIdentity(tag);
}

void ComponentObject::AddToLeakDetector() { m_leakDetector.Add(dynamic_cast<void *>(this), "ComponentObject"); }
void ComponentObject::RemoveFromLeakDetector() { m_leakDetector.Sub(dynamic_cast<void *>(this)); }

}  // namespace quarn
