// Object.cpp - identity queries and the refusals of the root object
#include <quarn/core/Object.h>

#include <quarn/core/PooledObject.h>
#include <quarnCore/Exception.h>

namespace quarn {

ClassTagDecl const Object::Tag("Marlix.obj.Object");
bool Object::m_dontUsePools = false;

ClassTag const &Object::getClassTag() const { return Tag; }

bool Object::isA(ClassTag const &tag) const { return findAs(tag) != nullptr; }

void *Object::findAs(ClassTag const &tag) const { return _SeekClassIdentity(tag); }

void *Object::getAs(ClassTag const &tag) const {
  void *found = findAs(tag);
  if (!found) throw NotImplementedException(tag.getName() ? tag.getName() : "");
  return found;
}

unsigned int Object::hash() const { return 0; }

Object *Object::clone() const { return nullptr; }

Class const &Object::getClass() const { throw Exception("Cannot return Class object for this class."); }

void Object::serialize(iByteOutputStream &) const { throw NotImplementedException("Object::serialize"); }

void Object::deserialize(iByteInputStream &) { throw NotImplementedException("Object::deserialize"); }

void Object::deleteInstance() {
  throw Exception("Unable to delete instance on quarn::Object.  Call derived method instead");
}

Object::~Object() = default;

void *Object::_SeekClassIdentity(ClassTag const &tag) const {
  return tag.getId() == Tag.getId() ? const_cast<Object *>(this) : nullptr;
}

PooledObject::~PooledObject() = default;

}  // namespace quarn
