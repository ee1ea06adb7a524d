// Property.cpp - a name and one owned value
#include <quarn/core/Ptr.h>
#include <quarn/data/Property.h>
#include <quarnCore/Exception.h>

namespace quarn {

ClassTagDecl const Property::Tag("Marlix.data.Property");
PooledClassImp<Property, -1> Property::m_class;
LeakDetector Property::m_leakDetector("Marlix.data.Property");

Property::~Property() { onDeactivate(); }

Property *Property::newInstance() {
  Property *property = m_class.acquire();
  property->AddToLeakDetector();
  return property;
}

void Property::deleteInstance() {
  RemoveFromLeakDetector();
  Property *self = this;
  m_class.release(self);
}

void Property::onDeactivate() {
  if (m_value) {
    m_value->deleteInstance();
    m_value = nullptr;
  }
  m_name.setNull();
}

Property *Property::make(BaseString<unsigned short> const &name, Value *value) {
  ObjPtr<Value> owned(value);
  return make(BaseString<unsigned short>(name), owned.detach());
}

Property *Property::make(BaseString<unsigned short> &&name, Value *value) {
  ObjPtr<Value> owned(value);
  Property *property = newInstance();
  property->m_name.swap(name);
  property->m_value = owned.detach();
  return property;
}

ClassTag const &Property::getValueClass() const { return m_value ? m_value->getClassTag() : Value::Tag; }

void Property::setValue(Value const &value) {
  if (!m_value) [[unlikely]]
    throw Exception("Property %ls has no value", m_name.getBuffer());
  value.assignTo(*m_value);
}

}  // namespace quarn
