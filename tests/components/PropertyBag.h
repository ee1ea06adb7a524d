// PropertyBag.h - a property list written by a component library on its own
//
// "Marlix.testlib.PropertyBag" implements iPropertyCollection without the
// library's property classes: its properties ("Marlix.testlib.BagProperty")
// sit in a std::vector and are found by a plain scan. The data tests drive it
// through the property helpers, which must work on any implementation.
#pragma once

#include <quarn/core/Class.h>
#include <quarn/core/ComponentImpl.h>
#include <quarn/core/Ptr.h>
#include <quarn/core/iPropertyCollection.h>
#include <quarn/value/Value.h>
#include <quarnCore/Exception.h>
#include <quarnCore/Throw.h>

#include <vector>

namespace quarn::test {

class BagProperty : public ObjectImpl<BagProperty, DynamicObject, iProperty> {
  QUARN_COMPONENT(BagProperty)

 public:
  ~BagProperty() override {
    if (m_value) m_value->deleteInstance();
  }
  BaseString<unsigned short> const &getName() const override { return m_name; }
  ClassTag const &getValueClass() const override { return m_value->getClassTag(); }
  Value *getValue() const override { return m_value; }
  void setValue(Value const &value) override { value.assignTo(*m_value); }

  BaseString<unsigned short> m_name;
  Value *m_value = nullptr;
};

class PropertyBag : public ComponentImpl<PropertyBag, iPropertyCollection> {
  QUARN_COMPONENT(PropertyBag)

 public:
  unsigned int getPropertyCount() const override { return static_cast<unsigned int>(m_items.size()); }
  iProperty *getProperty(unsigned int i) const override {
    if (i >= m_items.size()) detail::throwInvalidIndex(i, getPropertyCount() - 1);
    return m_items[i].get();
  }
  iProperty *findProperty(BaseString<unsigned short> const &name) const override {
    for (auto const &p : m_items)
      if (p->m_name == name) return p.get();
    return nullptr;
  }
  iProperty *defineProperty(BaseString<unsigned short> const &name, ClassTag const &valueClass) override {
    if (iProperty *found = findProperty(name)) {
      if (found->getValueClass() != valueClass) throw Exception("The bag holds %ls as another class", name.getBuffer());
      return found;
    }
    ObjPtr<Object> made(Class::getClassInstance(valueClass));
    auto *value = static_cast<Value *>(made->findAs(Value::Tag));
    if (!value) throw Exception("The bag holds only values");
    Ptr<BagProperty> property(BagProperty::newInstance());
    property->m_name = name;
    property->m_value = value;
    made.detach();
    m_items.push_back(property);
    return property.get();
  }
  void removePropertyAt(unsigned int i) override {
    getProperty(i);
    m_items.erase(m_items.begin() + i);
  }
  bool removeProperty(BaseString<unsigned short> const &name) override {
    for (auto it = m_items.begin(); it != m_items.end(); ++it)
      if ((*it)->m_name == name) {
        m_items.erase(it);
        return true;
      }
    return false;
  }
  void clearProperties() override { m_items.clear(); }

 private:
  std::vector<Ptr<BagProperty>> m_items;
};

}  // namespace quarn::test
