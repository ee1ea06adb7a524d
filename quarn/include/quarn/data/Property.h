// Property.h - the library's property: a name and one owned value
//
// A Property is what the library's property lists (PropertyCollection,
// DataRecord, DataNode) hold: a counted object, "Marlix.data.Property",
// implementing iProperty. It owns its value (handed back to its pool with
// deleteInstance when the property goes or is redefined) and keeps the value's
// class for its life. A property made by newInstance() is undefined (no
// value, getValueClass() is Value's tag) until define() gives it a name and a
// value; the lists hand out only defined properties.
//
// Properties are shared by reference counting: a list holds one reference on
// each of its properties, and a caller that keeps a property longer than the
// list takes its own (Ptr<iProperty>).
#pragma once

#include <quarn/core/ComponentImpl.h>
#include <quarn/core/Export.h>
#include <quarn/core/ObjectImpl.h>
#include <quarn/core/iProperty.h>
#include <quarn/value/Value.h>
#include <quarnCore/BaseString.h>

namespace quarn {

/// Counted: create with newInstance() (count 0), hold with Ptr<Property>.
class QUARN_API Property : public ObjectImpl<Property, DynamicObject, iProperty> {
  QUARN_COMPONENT(Property)

 public:
  Property() = default;
  ~Property() override;

  /// A defined property named `name` holding `value`, which it owns from now
  /// on (handed back if this fails). Count 0.
  static Property *make(BaseString<unsigned short> const &name, Value *value);

  /// Gives the property its name and `value`, owned from now on (handed back
  /// if this fails); the old value is handed back.
  void define(BaseString<unsigned short> const &name, Value *value);

  // ---- iProperty

  BaseString<unsigned short> const &getName() const override { return m_name; }
  ClassTag const &getValueClass() const override;
  Value *getValue() const override { return m_value; }
  /// Throws "Property %ls has no value" on an undefined property.
  void setValue(Value const &value) override;

 private:
  BaseString<unsigned short> m_name;
  Value *m_value = nullptr;
};

}  // namespace quarn
