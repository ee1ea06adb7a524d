// Class.cpp - lookups over all class objects and pool maintenance
#include <quarn/core/Class.h>

#include <algorithm>
#include <cstdio>
#include <vector>

#include <quarn/core/DynamicCreation.h>
#include <quarn/core/DynamicObject.h>
#include <quarn/core/Object.h>
#include <quarnCore/Exception.h>

#include "Trace.h"

namespace quarn {

namespace detail {
void throwPoolLeak() { throw Exception("Object leak, object being returned to pool when none were outstanding..."); }
void throwCopyConstructorError() { throw Exception("Error when calling class copy constructor."); }
bool poolsDisabled() noexcept { return Object::m_dontUsePools; }
}  // namespace detail

namespace {
using detail::throwNotRegistered;
}  // namespace

Class::~Class() = default;

unsigned int Class::ClearPool(bool) { return 0; }

bool Class::getPoolDebugInfo(BaseString<unsigned short> &name, int &a, int &b, int &c, int &) const {
  name = BaseString<unsigned short>(getClassTag().getName());
  a = b = c = -1;
  return false;
}

void Class::setClass(Class *c) { c->getClassTag().setClass(c); }

void Class::unbind(ClassTag const &tag) { tag.setClass(nullptr); }

Class const *Class::findClass(ClassTag const &tag) { return tag.findClass(); }

Class const &Class::getClass(ClassTag const &tag) {
  if (Class const *c = tag.findClass()) return *c;
  detail::traceClasses("class %s: no class object bound; looking for its registration file", tag.getName());
  if (DynamicObject *made = createInstance(tag)) made->deleteInstance();
  if (Class const *c = tag.findClass()) return *c;
  throwNotRegistered(tag);
}

Object *Class::getClassInstance(ClassTag const &tag) {
  Object *instance = findClassInstance(tag);
  if (!instance) throwNotRegistered(tag);
  return instance;
}

Object *Class::findClassInstance(ClassTag const &tag) {
  if (Class const *c = tag.findClass()) return c->newInstance();
  detail::traceClasses("class %s: no class object bound; looking for its registration file", tag.getName());
  if (DynamicObject *made = createInstance(tag)) return made;
  if (Class const *c = tag.findClass()) return c->newInstance();
  return nullptr;
}

void Class::clearAllClassPools() {
  bool clean;
  do {
    clean = true;
    int count = ClassTag::getNumClassTags();
    for (int id = 0; id < count; ++id) {
      if (Class *c = ClassTag(id, false).findClass())
        if (c->ClearPool(false) != 0) clean = false;
    }
  } while (!clean);
  int count = ClassTag::getNumClassTags();
  for (int id = 0; id < count; ++id)
    if (Class *c = ClassTag(id, false).findClass()) c->ClearPool(true);
}

void Class::debugAllClassPools(BaseString<unsigned short> &out) {
  out = BaseString<unsigned short>("");
  int count = ClassTag::getNumClassTags();
  out.reserve(static_cast<unsigned int>(count) * 60);
  struct Entry {
    int id, first, second;
  };
  std::vector<Entry> entries;
  BaseString<unsigned short> name;
  for (int id = 0; id < count; ++id) {
    Class *c = ClassTag(id, false).findClass();
    int a = -1, b = -1, d = -1, max = -1;
    if (c && c->getPoolDebugInfo(name, a, b, d, max)) entries.push_back({id, a, b});
  }
  // Largest pools first; the id keeps the order stable.
  std::sort(entries.begin(), entries.end(), [](Entry const &x, Entry const &y) {
    return x.first != y.first ? x.first > y.first : x.id < y.id;
  });
  char number[32];
  for (Entry const &e : entries) {
    Class *c = ClassTag(e.id, false).findClass();
    int pooled = -1, using_ = -1, out_ = -1, max = -1;
    if (!c || !c->getPoolDebugInfo(name, pooled, using_, out_, max)) continue;
    out += name;
    std::snprintf(number, sizeof number, "%d", pooled);
    out.appendAscii(" pool: ").appendAscii(number);
    std::snprintf(number, sizeof number, "%d", using_);
    out.appendAscii(" items using ").appendAscii(number);
    std::snprintf(number, sizeof number, "%d", out_);
    out.appendAscii(" items out; ").appendAscii(number);
    if (max == -1) {
      out.appendAscii(" infinite pool size");
    } else {
      std::snprintf(number, sizeof number, "%d", max);
      out.appendAscii(" max pool size ").appendAscii(number);
    }
    out.append(static_cast<unsigned short>('\n'));
  }
}

}  // namespace quarn
