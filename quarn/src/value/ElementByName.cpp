// ElementByName.cpp - class names read from a stream, and values made by them
#include "ElementByName.h"

#include <quarn/core/CClassRegistryFile.h>
#include <quarn/core/Class.h>
#include <quarn/core/Ptr.h>
#include <quarn/core/iDataRecord.h>
#include <quarn/value/StreamLoadingPolicy.h>
#include <quarnCore/Exception.h>

#include <cstring>

#include "NarrowText.h"

namespace quarn::detail {

namespace {

/// This thread's memo of element class names.
constinit thread_local ClassNameMemo t_names;

}  // namespace

ElementReader::ElementReader(iByteInputStream &in, char const *what) noexcept
    : m_in(in),
      m_memory(asMemoryStream(in)),
      m_what(what),
      m_memo(t_names),
      m_generation(ClassTag::getBindingGeneration()) {}

void ElementReader::failLength(int length, unsigned int index) const {
  if (length == 0 || length == 1) {
    if (m_what) throw Exception("%hs %u has no class name", m_what, index);
    throw Exception("no class name");
  }
  if (m_what) throw Exception("Invalid class name length %d in %hs %u", length, m_what, index);
  throw Exception("invalid class name length %d", length);
}

void ElementReader::checkNoZero(Name name, unsigned int index) const {
  if (std::memchr(name.bytes, 0, name.length)) [[unlikely]] {
    if (m_what) throw Exception("%hs %u has a class name with a zero byte", m_what, index);
    throw Exception("class name with a zero byte");
  }
}

ElementReader::Name ElementReader::readStreamedName(unsigned int length, Scratch &scratch) {
  readNarrowBytes(m_in, scratch, length);
  return {scratch, length};
}

Value *ElementReader::readStreamedValue(unsigned int length, unsigned int index) {
  Scratch scratch;
  return makeValue(readStreamedName(length, scratch), index);
}

void ElementReader::failNotRegistered(Name name) {
  throw Exception("Class %hs not registered.", BaseString<char>(name.bytes, name.length).getBuffer());
}

/// A new object of the class named `name` (terminated, `length` bytes, no
/// zero byte), which the memo did not know: one registry probe finds an
/// interned name and its bound class (refused before anything is made unless
/// it makes values, or `records` is set); otherwise the object is made by
/// name as Class::getClassInstance makes it, which may load the component
/// library registered for the name. A name that no class serves is refused
/// before it is interned, so that hostile data cannot fill the tag registry.
/// A bound class is remembered for the exact interned spelling when its
/// instances are values through their Value base, so that the memo can
/// answer with a cast.
Object *ElementReader::makeUnknown(char const *name, unsigned int length, bool records) {
  ClassTag tag;
  bool const interned = ClassTag::lookup(name, tag);
  if (interned) {
    if (Class const *c = tag.findClass()) {
      if (!records && !c->makesValues()) [[unlikely]]
        throw Exception("Class %hs is not a value", name);
      Object *made = c->newInstance();
      if (!made) [[unlikely]]
        failNotRegistered({name, length});
      if (c->makesValues() && static_cast<Object *>(static_cast<Value *>(made->findAs(Value::Tag))) == made &&
          tag.getNameLength() == length && std::memcmp(tag.getName(), name, length) == 0)
        m_memo.remember(tag.getName(), length, m_generation, c);
      return made;
    }
  }
  if (!CClassRegistryFile::Exists(name)) [[unlikely]]
    failNotRegistered({name, length});
  if (!StreamLoadingScope::allows(m_in, name)) [[unlikely]]
    throw Exception("Class %hs is not loaded and this stream may not load it", name);
  return Class::getClassInstance(interned ? tag : ClassTag(name));
}

Value *ElementReader::makeUnknownValue(Name name, unsigned int index) {
  checkNoZero(name, index);
  char terminated[ValueArrayValue::kMaxClassNameLength + 1];
  std::memcpy(terminated, name.bytes, name.length);
  terminated[name.length] = 0;
  ObjPtr<Object> made(makeUnknown(terminated, name.length, false));
  auto *value = static_cast<Value *>(made->findAs(Value::Tag));
  if (!value) [[unlikely]]
    throw Exception("Class %hs is not a value", terminated);  // `made` is handed back
  made.detach();
  return value;
}

Object *ElementReader::makeUnknownRecord(Name name, unsigned int index) {
  checkNoZero(name, index);
  char terminated[ValueArrayValue::kMaxClassNameLength + 1];
  std::memcpy(terminated, name.bytes, name.length);
  terminated[name.length] = 0;
  // Data records are counted objects, not values: any bound class may be made and asked.
  ObjPtr<Object> made(makeUnknown(terminated, name.length, true));
  if (!made->findAs(Value::Tag) && !made->findAs(iDataRecord::Tag)) [[unlikely]]
    throw Exception("Class %hs is neither a value nor a data record", terminated);
  return made.detach();
}

}  // namespace quarn::detail
