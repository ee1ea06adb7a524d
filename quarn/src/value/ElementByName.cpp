// ElementByName.cpp - class names read from a stream, and values made by them
#include "ElementByName.h"

#include <quarn/core/CClassRegistryFile.h>
#include <quarn/core/Class.h>
#include <quarn/core/Ptr.h>
#include <quarn/core/iDataRecord.h>
#include <quarn/value/StreamLoadingPolicy.h>
#include <quarn/value/ValueArrayValue.h>
#include <quarnCore/Exception.h>

#include <cstring>

#include "NarrowText.h"

namespace quarn::detail {

BaseString<char> readClassName(iByteInputStream &in, unsigned int index, char const *what) {
  int length;
  in >> length;
  if (length == 0 || length == 1) [[unlikely]] {
    if (what) throw Exception("%hs %u has no class name", what, index);
    throw Exception("no class name");
  }
  if (length < 0 || static_cast<unsigned int>(length) - 1 > ValueArrayValue::kMaxClassNameLength) [[unlikely]] {
    if (what) throw Exception("Invalid class name length %d in %hs %u", length, what, index);
    throw Exception("invalid class name length %d", length);
  }
  BaseString<char> name;
  readNarrowBytes(in, name, static_cast<unsigned int>(length - 1));
  if (std::memchr(name.getBuffer(), 0, name.getLength())) [[unlikely]] {
    if (what) throw Exception("%hs %u has a class name with a zero byte", what, index);
    throw Exception("class name with a zero byte");
  }
  return name;
}

namespace {

/// An object of the class named `name` read from `in`, made as makeByName
/// says; `wanted` tells whether a bound class's instances may be made.
Object *makeKnown(iByteInputStream const &in, char const *name, bool (*wanted)(Class const &)) {
  Class const *bound = ClassTag::isInterned(name) ? ClassTag(name).findClass() : nullptr;
  if (bound) {
    if (!wanted(*bound)) [[unlikely]]
      throw Exception("Class %hs is not a value", name);
    Object *made = bound->newInstance();
    if (!made) [[unlikely]]
      throw Exception("Class %hs not registered.", name);
    return made;
  }
  // Refused before the name is interned, so that hostile data cannot fill the tag registry.
  if (!CClassRegistryFile::Exists(name)) [[unlikely]]
    throw Exception("Class %hs not registered.", name);
  if (!StreamLoadingScope::allows(in, name)) [[unlikely]]
    throw Exception("Class %hs is not loaded and this stream may not load it", name);
  return Class::getClassInstance(ClassTag(name));
}

}  // namespace

Value *makeByName(iByteInputStream const &in, BaseString<char> const &name) {
  ObjPtr<Object> made(makeKnown(in, name.getBuffer(), [](Class const &c) { return c.makesValues(); }));
  auto *value = static_cast<Value *>(made->findAs(Value::Tag));
  if (!value) [[unlikely]]
    throw Exception("Class %hs is not a value", name.getBuffer());  // `made` is handed back
  made.detach();
  return value;
}

Object *makeRecordByName(iByteInputStream const &in, BaseString<char> const &name) {
  // Data records are counted objects, not values: any bound class may be made and asked.
  ObjPtr<Object> made(makeKnown(in, name.getBuffer(), [](Class const &) { return true; }));
  if (!made->findAs(Value::Tag) && !made->findAs(iDataRecord::Tag)) [[unlikely]]
    throw Exception("Class %hs is neither a value nor a data record", name.getBuffer());
  return made.detach();
}

}  // namespace quarn::detail
