// ClassTag.cpp - the process-wide registry of class names
//
// Two hash maps index the names: one by a case-folding hash (so that any
// letter case finds the same id) and one by the case-sensitive hash (so that a
// tag can be rebuilt from stored data, which is why two names with the same
// case-sensitive hash are refused). The registry lives from the first interning
// until the library unloads; a lock serialises interning and binding.
#include <quarn/core/ClassTag.h>

#include <atomic>
#include <mutex>

#include <quarn/core/Class.h>
#include <quarnCore/Array.h>
#include <quarnCore/Exception.h>
#include <quarnCore/HashMap.h>

namespace quarn {

namespace {

unsigned int foldedHash(char const *name) noexcept {
  unsigned int h = 0;
  for (auto const *p = reinterpret_cast<unsigned char const *>(name); *p; ++p) {
    unsigned int b = *p;
    if (b >= 'A' && b <= 'Z') b += 32;
    h = h * 31u + b;
  }
  return h;
}

int foldedCompare(char const *a, char const *b) noexcept {
  for (;; ++a, ++b) {
    char ca = (*a >= 'A' && *a <= 'Z') ? static_cast<char>(*a + 32) : *a;
    char cb = (*b >= 'A' && *b <= 'Z') ? static_cast<char>(*b + 32) : *b;
    if (ca != cb || !ca) return static_cast<signed char>(ca) - static_cast<signed char>(cb);
  }
}

struct FoldedNameTraits {
  static unsigned int hash(char const *key) noexcept { return foldedHash(key); }
  static bool equal(char const *a, char const *b) noexcept { return foldedCompare(a, b) == 0; }
};

struct HashTraits {
  static unsigned int hash(unsigned int key) noexcept { return key; }
  static bool equal(unsigned int a, unsigned int b) noexcept { return a == b; }
};

struct Registry;
Registry *g_registry = nullptr;

/// Counts the bindings and unbindings of classes (see getBindingGeneration).
std::atomic<unsigned int> g_bindingGeneration{0};

struct Registry {
  Registry() { g_registry = this; }
  ~Registry() { g_registry = nullptr; }

  std::mutex mutex;
  Array<BaseString<char>> names;  // a name's buffer never moves, so tags may point into it
  Array<Class *> classes;
  HashMap<char const *, int, FoldedNameTraits> byName{31};
  HashMap<unsigned int, int, HashTraits> byHash{31};
};

// Created by the first interning; destroyed at unload after every class object
// (which were all constructed after it).
Registry &registry() {
  static Registry r;
  return r;
}

[[noreturn]] void throwBadId(int id, int count) { detail::throwInvalidIndex(static_cast<unsigned int>(id), count - 1); }

}  // namespace

unsigned int ClassTag::hashName(char const *name) noexcept {
  unsigned int h = 0;
  if (name)
    for (auto const *p = reinterpret_cast<unsigned char const *>(name); *p; ++p) h = h * 31u + *p;
  return h;
}

ClassTag::ClassTag(char const *name) { Init(name ? name : ""); }

ClassTag::ClassTag(BaseString<char> const &name) { Init(name.isNull() ? "" : name.getBuffer()); }

ClassTag::ClassTag(unsigned short const *name) : ClassTag(BaseString<unsigned short>(name)) {}

ClassTag::ClassTag(BaseString<unsigned short> const &name) {
  BaseString<char> narrow("");
  for (unsigned int i = 0; i < name.getLength(); ++i) {
    unsigned short unit = name.getBuffer()[i];
    if (unit > 255) throw Exception("Unable to convert character 0x%x", unit);
    narrow.append(static_cast<char>(unit));
  }
  Init(narrow.getBuffer());
}

ClassTag::ClassTag(int value, bool byHash) {
  Registry *r = g_registry;
  if (byHash) {
    if (!r) throw Exception("ClassTag arrays not initialized");
    std::lock_guard lock(r->mutex);
    int const *id = r->byHash.find(static_cast<unsigned int>(value));
    if (!id) throw Exception("ClassTag with hash '0x%X' not found", value);
    m_id = *id;
    m_length = r->names[static_cast<unsigned int>(m_id)].getLength();
    m_name = r->names[static_cast<unsigned int>(m_id)].getBuffer();
    return;
  }
  if (value == -1) return;
  if (!r) throw Exception("ClassTagNames array pointer is invalid");
  std::lock_guard lock(r->mutex);
  int count = static_cast<int>(r->names.getSize());
  if (value < 0 || value >= count) throwBadId(value, count);
  m_id = value;
  m_length = r->names[static_cast<unsigned int>(value)].getLength();
  m_name = r->names[static_cast<unsigned int>(value)].getBuffer();
}

ClassTag::~ClassTag() = default;
ClassTagDecl::~ClassTagDecl() = default;

void ClassTag::Init(char const *name) {
  Registry &r = registry();
  std::lock_guard lock(r.mutex);
  if (int const *id = r.byName.find(name)) {
    m_id = *id;
    m_length = r.names[static_cast<unsigned int>(*id)].getLength();
    m_name = r.names[static_cast<unsigned int>(*id)].getBuffer();
    return;
  }
  int id = static_cast<int>(r.names.getSize());
  unsigned int h = hashName(name);
  if (int const *clash = r.byHash.find(h))
    throw Exception("multiple class tags with same hash: '%hs' and '%hs'",
                    r.names[static_cast<unsigned int>(*clash)].getBuffer(), name);
  // Make room everywhere first, so that a failed allocation leaves the registry as it was.
  r.names.reserve(r.names.getSize() + 1);
  r.classes.reserve(r.classes.getSize() + 1);
  BaseString<char> stored(name);
  char const *key = stored.getBuffer();
  unsigned int const length = stored.getLength();
  r.byHash.insertNew(h, id, h);
  try {
    r.byName.insertNew(key, id, foldedHash(key));
  } catch (...) {
    r.byHash.remove(h);
    throw;
  }
  r.names.append(std::move(stored));
  r.classes.append(nullptr);
  m_id = id;
  m_length = length;
  m_name = key;
}

int ClassTag::getHash() const noexcept { return static_cast<int>(hashName(m_name)); }

bool ClassTag::isInterned(char const *name) {
  Registry &r = registry();
  std::lock_guard lock(r.mutex);
  return r.byName.find(name ? name : "") != nullptr;
}

bool ClassTag::lookup(char const *name, ClassTag &tag) {
  Registry &r = registry();
  std::lock_guard lock(r.mutex);
  int const *id = r.byName.find(name ? name : "");
  if (!id) return false;
  BaseString<char> const &stored = r.names[static_cast<unsigned int>(*id)];
  tag.m_id = *id;
  tag.m_length = stored.getLength();
  tag.m_name = stored.getBuffer();
  return true;
}

unsigned int ClassTag::getBindingGeneration() noexcept { return g_bindingGeneration.load(std::memory_order_acquire); }

int ClassTag::getNumClassTags() {
  Registry *r = g_registry;
  if (!r) return 0;
  std::lock_guard lock(r->mutex);
  return static_cast<int>(r->names.getSize());
}

void ClassTag::setClass(Class *c) const {
  Registry *r = g_registry;
  if (!r) return;  // the library is unloading: nothing is left to bind to
  std::lock_guard lock(r->mutex);
  int count = static_cast<int>(r->classes.getSize());
  if (m_id < 0 || m_id >= count) throwBadId(m_id, count);
  r->classes[static_cast<unsigned int>(m_id)] = c;
  g_bindingGeneration.fetch_add(1, std::memory_order_acq_rel);
}

Class *ClassTag::findClass() const {
  Registry *r = g_registry;
  int count = 0;
  if (r) {
    std::lock_guard lock(r->mutex);
    count = static_cast<int>(r->classes.getSize());
    if (m_id >= 0 && m_id < count) return r->classes[static_cast<unsigned int>(m_id)];
  }
  throwBadId(m_id, count);
}

Class &ClassTag::getClass() const {
  Class *c = findClass();
  if (!c) throw Exception("Class name %hs has no implementation class registered", m_name);
  return *c;
}

void ClassTag::addMemoryUsage(int bytes, int *info) const {
  int n = info[0];
  for (int i = 0; i < n; ++i) {
    int *triple = info + 1 + 3 * i;
    if (triple[0] == m_id) {
      triple[1] += 1;
      triple[2] += bytes;
      return;
    }
  }
  int *triple = info + 1 + 3 * n;
  triple[0] = m_id;
  triple[1] = 1;
  triple[2] = bytes;
  info[0] = n + 1;
}

int ClassTag::getInfoSize(int *info) { return info[0]; }

unsigned int ClassTag::getAllObjects(int *info) {
  unsigned int sum = 0;
  for (int i = 0; i < info[0]; ++i) sum += static_cast<unsigned int>(info[2 + 3 * i]);
  return sum;
}

unsigned int ClassTag::getAllBytes(int *info) {
  unsigned int sum = 0;
  for (int i = 0; i < info[0]; ++i) sum += static_cast<unsigned int>(info[3 + 3 * i]);
  return sum;
}

int ClassTag::getNumObjects(int *info, ClassTag &tag) {
  for (int i = 0; i < info[0]; ++i)
    if (info[1 + 3 * i] == tag.m_id) return info[2 + 3 * i];
  return 0;
}

int ClassTag::getNumBytes(int *info, ClassTag &tag) {
  for (int i = 0; i < info[0]; ++i)
    if (info[1 + 3 * i] == tag.m_id) return info[3 + 3 * i];
  return 0;
}

void ClassTag::getInfo(int *info, unsigned int index, BaseString<unsigned short> &name, int &objects, int &bytes) {
  int const *triple = info + 1 + 3 * index;
  ClassTag tag(triple[0], false);
  name = BaseString<unsigned short>(tag.getName() ? tag.getName() : "");
  objects = triple[1];
  bytes = triple[2];
}

}  // namespace quarn
