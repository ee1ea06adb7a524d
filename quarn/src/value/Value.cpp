// Value.cpp - the defaults of the value root, assignment between classes and its statics
#include <quarn/core/Interface.h>
#include <quarn/value/ConverterRegistry.h>
#include <quarn/value/StringValue.h>
#include <quarn/value/TypedValueTypeConverter.h>
#include <quarn/value/Value.h>
#include <quarn/value/ValueTypeConverter.h>
#include <quarnCore/Exception.h>

#include <utility>

namespace quarn {

namespace detail {
void throwCannotConvert(char const *from, char const *to) {
  throw Exception("Could not convert from %hs to %hs", from, to);
}
}  // namespace detail

ClassTagDecl const Value::Tag(Value::className);
ClassImp<Value> Value::m_class;
LeakDetector Value::m_leakDetector("Value");

ValueTypeConverter::~ValueTypeConverter() = default;

Value::~Value() = default;

ClassTag const &Value::getClassTag() const { return Tag; }

Object *Value::clone() const { detail::throwInterfaceClone(getClassTag().getName()); }

Class const &Value::getClass() const { return m_class; }

// The bodies of the pure slots: Value's own part of the payload is empty.
void Value::serialize(iByteOutputStream &) const {}
void Value::deserialize(iByteInputStream &) {}

void *Value::_SeekClassIdentity(ClassTag const &tag) const {
  if (tag.getId() == Tag.getId()) return const_cast<Value *>(this);
  return Object::_SeekClassIdentity(tag);
}

unsigned int Value::getSize() const { return 1; }

void Value::dump(BaseString<unsigned short> &out, int flags) const {
  out.resize(0);
  BaseString<unsigned short> text;
  bool found = findString(text);
  if (flags & 1) {
    out.appendAscii(getClassTag().getName());
    out.append(static_cast<unsigned short>(':'));
  }
  if (found)
    out.append(text);
  else
    out.appendAscii("undefined");
}

void Value::AddToLeakDetector() { m_leakDetector.Add(this, "Value"); }
void Value::RemoveFromLeakDetector() { m_leakDetector.Sub(this); }

ClassTag const &Value::getItemValueType() const { return getClassTag(); }

ClassTag Value::getArrayValueType() {
  static ClassTag const arrayTag("Marlix.value.ValueArrayValue");
  return arrayTag;
}

bool Value::findDouble(double &out) const {
  out = getDouble();
  return true;
}
bool Value::findInteger(int &out) const {
  out = getInteger();
  return true;
}
bool Value::findBoolean(bool &out) const {
  out = getBoolean();
  return true;
}
bool Value::findString(BaseString<unsigned short> &out) const {
  getString(out);
  return true;
}

bool Value::getXMLText(BaseString<unsigned short> &text, BaseString<unsigned short> &extra) const {
  getString(text);
  extra.resize(0);
  return true;
}

void Value::setFromXMLText(BaseString<unsigned short> const &text, BaseString<unsigned short> const &) {
  // Borrow the caller's buffer for the temporary and give it back however
  // the conversion ends: no copy of the text is made.
  auto &borrowed = const_cast<BaseString<unsigned short> &>(text);
  StringValue temporary;
  temporary.attachString(borrowed);
  struct GiveBack {
    BaseString<unsigned short> &owner;
    StringValue &temporary;
    ~GiveBack() { owner.attach(temporary.getString()); }
  } giveBack{borrowed, temporary};
  temporary.assignTo(*this);
}

void Value::onActivate() { clear(); }

Value *Value::newInstance() { detail::throwInterfaceInstance(Tag.getName()); }

void Value::assignTo(Value &target) const {
  ClassTag const &from = getClassTag();
  ClassTag const &to = target.getClassTag();
  if (from.getId() == to.getId()) {
    assignToSameClass(target);
    return;
  }
  detail::ConverterRegistry *registry = detail::ConverterRegistry::process();
  ValueTypeConverter *converter = registry ? registry->find(from, to) : nullptr;
  if (!converter) [[unlikely]]
    detail::throwCannotConvert(from.getName(), to.getName());
  converter->convert(*this, target);
}

bool Value::canAssignTo(ClassTag const &tag) const {
  if (tag.getId() == getClassTag().getId()) return true;
  detail::ConverterRegistry *registry = detail::ConverterRegistry::process();
  return registry && registry->find(getClassTag(), tag);
}

void Value::RegisterTypeConverter(ClassTag const &from, ClassTag const &to, ValueTypeConverter *converter) {
  if (detail::ConverterRegistry *registry = detail::ConverterRegistry::process())
    registry->enqueue(from, to, converter);
}

void Value::UnRegisterTypeConverter(ClassTag const &from, ClassTag const &to) {
  RegisterTypeConverter(from, to, nullptr);
}

int Value::compareClassName(Value const &other) const {
  return BaseString<char>::compare(other.getClassTag().getName(), getClassTag().getName());
}

}  // namespace quarn
