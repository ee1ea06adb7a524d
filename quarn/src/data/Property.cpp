// Property.cpp - a name and one owned value
#include <quarn/core/Ptr.h>
#include <quarn/data/Property.h>
#include <quarnCore/Exception.h>

#include <utility>

namespace quarn {

QUARN_DEFINE_COMPONENT(Property, "Marlix.data.Property");

Property::~Property() {
  if (m_value) m_value->deleteInstance();
}

Property *Property::make(BaseString<unsigned short> const &name, Value *value) {
  ObjPtr<Value> owned(value);
  BaseString<unsigned short> copy(name);
  Property *property = newInstance();
  property->m_name.swap(copy);
  property->m_value = owned.detach();
  return property;
}

void Property::define(BaseString<unsigned short> const &name, Value *value) {
  ObjPtr<Value> owned(value);
  BaseString<unsigned short> copy(name);
  m_name.swap(copy);
  if (Value *old = std::exchange(m_value, owned.detach())) old->deleteInstance();
}

ClassTag const &Property::getValueClass() const { return m_value ? m_value->getClassTag() : Value::Tag; }

void Property::setValue(Value const &value) {
  if (!m_value) [[unlikely]]
    throw Exception("Property %ls has no value", m_name.getBuffer());
  value.assignTo(*m_value);
}

}  // namespace quarn
