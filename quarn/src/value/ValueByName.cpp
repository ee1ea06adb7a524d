// ValueByName.cpp - values made from untrusted class names
#include "ValueByName.h"

#include <quarn/core/CClassRegistryFile.h>
#include <quarn/core/Class.h>
#include <quarn/core/Ptr.h>
#include <quarnCore/Exception.h>

namespace quarn::detail {

Value *makeValueByName(BaseString<char> const &name) {
  if (!ClassTag::isInterned(name.getBuffer()) && !CClassRegistryFile::Exists(name.getBuffer())) [[unlikely]]
    throw Exception("Class %hs not registered.", name.getBuffer());
  ObjPtr<Object> made(Class::getClassInstance(ClassTag(name.getBuffer())));
  auto *value = static_cast<Value *>(made->findAs(Value::Tag));
  if (!value) [[unlikely]]
    throw Exception("Class %hs is not a value", name.getBuffer());  // `made` is handed back
  made.detach();
  return value;
}

}  // namespace quarn::detail
