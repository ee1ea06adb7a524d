// Property.h - the library's property: a name and one owned value
//
// A Property is what the library's property lists (PropertyCollection,
// DataRecord, DataNode) hold: a counted object, "Marlix.data.Property",
// implementing iProperty. It owns its value (handed back to its pool with
// deleteInstance when the property goes or is redefined) and keeps the value's
// class for its life; its name never changes. A property made by
// newInstance() is undefined (no name, no value, getValueClass() is Value's
// tag); the lists make theirs with make() and hand out only those.
//
// Properties are shared by reference counting: a list holds one reference on
// each of its properties, and a caller that keeps a property longer than the
// list takes its own (Ptr<iProperty>). Records make and drop properties by
// the dozen, so the class pools them: the last release hands the property
// back to its pool (its value to the value's pool), and newInstance hands out
// a recycled one. The leak detector counts the properties handed out.
#pragma once

#include <quarn/core/ComponentImpl.h>
#include <quarn/core/Export.h>
#include <quarn/core/ObjectImpl.h>
#include <quarn/core/PooledClassImp.h>
#include <quarn/core/PooledObject.h>
#include <quarn/core/iProperty.h>
#include <quarn/value/Value.h>
#include <quarnCore/BaseString.h>

namespace quarn {

/// Counted and pooled: create with newInstance() or make() (count 0), hold with Ptr<Property>.
class QUARN_API Property : public ObjectImpl<Property, DynamicObject, iProperty>, public PooledObject {
 public:
  static ClassTagDecl const Tag;
  static PooledClassImp<Property, -1> m_class;
  static LeakDetector m_leakDetector;

  Property() = default;
  ~Property() override;

  /// An undefined property from the pool. Count 0.
  static Property *newInstance();
  /// Back to the pool (called by the last release).
  void deleteInstance() override;
  void onActivate() override {}
  /// Hands the value back and forgets the name.
  void onDeactivate() override;

  /// A defined property named `name` holding `value`, which it owns from now
  /// on (handed back if this fails). Count 0.
  static Property *make(BaseString<unsigned short> const &name, Value *value);
  static Property *make(BaseString<unsigned short> &&name, Value *value);

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
