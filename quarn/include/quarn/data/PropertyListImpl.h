// PropertyListImpl.h - iPropertyCollection over a PropertyTable, written once
//
// PropertyListImpl<Self, iX...> is a counted class (ObjectImpl over
// DynamicObject) that implements iPropertyCollection, and the further
// interfaces iX..., over its PropertyTable. PropertyCollection, DataRecord and
// DataNode are built on it, so each is its own property list: findAs(
// iPropertyCollection::Tag) answers on every one of them.
//
// Ownership as the data interfaces state: the pointers handed out are
// borrowed; the table holds one reference on each property.
#pragma once

#include <quarn/core/DynamicObject.h>
#include <quarn/core/ObjectImpl.h>
#include <quarn/core/iPropertyCollection.h>
#include <quarn/data/Property.h>
#include <quarn/data/PropertyTable.h>

namespace quarn {

template <class Self, class... More>
class PropertyListImpl : public ObjectImpl<Self, DynamicObject, iPropertyCollection, More...> {
 public:
  unsigned int getPropertyCount() const override { return m_properties.size(); }
  iProperty *getProperty(unsigned int i) const override { return m_properties.at(i); }
  iProperty *findProperty(BaseString<unsigned short> const &name) const override { return m_properties.find(name); }
  iProperty *defineProperty(BaseString<unsigned short> const &name, ClassTag const &valueClass) override {
    return m_properties.define(name, valueClass);
  }
  void removePropertyAt(unsigned int i) override { m_properties.removeAt(i); }
  bool removeProperty(BaseString<unsigned short> const &name) override { return m_properties.remove(name); }
  void clearProperties() override { m_properties.clear(); }

  /// The storage itself, for the library's own fast paths.
  detail::PropertyTable &properties() noexcept { return m_properties; }
  detail::PropertyTable const &properties() const noexcept { return m_properties; }

 protected:
  PropertyListImpl() = default;
  ~PropertyListImpl() override = default;

  detail::PropertyTable m_properties;
};

}  // namespace quarn
