// Value.h - the root of every typed value that a record property holds
//
// Value fixes the virtual operations that every value class implements
// (coercion to the four scalar kinds and the four array kinds, comparison,
// hashing, cloning, clearing, XML text, byte-stream form) and supplies the
// defaults that concrete classes inherit. Values are pooled objects: create
// them with the concrete class's newInstance(), hand them back with
// deleteInstance(); a value taken from a pool starts cleared.
//
// Values are never assigned with operator= across classes: assignTo copies
// the content of a value into a value of its own class with
// assignToSameClass, and into any other class through the ValueTypeConverter
// registered for the ordered pair of class tags. Registration is queued and
// applied on the next lookup, so converters may register from static
// initialisers in any order. A missing converter throws Exception
// "Could not convert from %hs to %hs".
//
// Untrusted input: deserialize and setFromXMLText (and fillFromString of the
// arrays) take any bytes or text. Bad input throws Exception and leaves the
// value as it was (fillFromString keeps the fields before the bad one), and
// memory follows the input, not the numbers in it: one read, however deeply
// its values nest, holds at most kReadBytesPerInputByte (64) bytes of heap per
// byte it consumed (two per UTF-16 unit of a text) plus kReadAllowanceBytes
// (2 MiB) at any moment. So a count, a length or a bit count buys only the
// storage its bytes pay for: elements are stored as they arrive and little is
// reserved ahead, a null array stores only its count, a bitset read from a
// payload is as long as the words it carries, and a text grows a bitset to at
// most 10,000,000 bits (1.25 MB, inside the allowance). The worst case per
// byte is an array of value objects whose payloads are one byte each.
//
// The virtual operations are declared in slot order; that order is the vtable
// layout other binaries depend on.
#pragma once

#include <quarn/core/Class.h>
#include <quarn/core/ClassTag.h>
#include <quarn/core/Export.h>
#include <quarn/core/Object.h>
#include <quarn/core/PooledObject.h>
#include <quarnCore/Array.h>
#include <quarnCore/BaseString.h>
#include <quarnCore/LeakDetector.h>

namespace quarn {

class ValueTypeConverter;

class QUARN_API Value : public Object, public PooledObject {
 public:
  // ---- slots 1-12, inherited from Object

  /// 1. "Marlix.value.Value".
  ClassTag const &getClassTag() const override;
  /// 6. Throws "It is invalid to clone an interface: %hs"; concrete classes clone through their pool.
  Object *clone() const override;
  /// 7. The class object m_class.
  Class const &getClass() const override;
  /// 8. Writes the payload; Value's own part writes nothing and every class calls it first.
  void serialize(iByteOutputStream &out) const override = 0;
  /// 9. Reads the payload; Value's own part reads nothing and every class calls it first.
  /// Any bytes may arrive (see the file comment on untrusted input); a value
  /// array may load the component library of a class it names, as the
  /// StreamLoadingPolicy of `in` allows (StreamLoadingPolicy.h).
  void deserialize(iByteInputStream &in) override = 0;
  /// 10. Hands the instance back to its pool (or destroys it).
  void deleteInstance() override = 0;

 protected:
  /// 11.
  ~Value() override;
  /// 12. Answers for Value's tag, else asks Object.
  void *_SeekClassIdentity(ClassTag const &tag) const override;

 public:
  // ---- new slots 13-36

  /// 13. Number of items: 1 for a scalar.
  virtual unsigned int getSize() const;
  /// 14-17. The content as one scalar of each kind.
  virtual int getInteger() const = 0;
  virtual bool getBoolean() const = 0;
  virtual double getDouble() const = 0;
  virtual void getString(BaseString<unsigned short> &out) const = 0;
  /// 18-21. The content as an array of each kind (the array's contents are replaced).
  virtual void getArray(Array<BaseString<unsigned short>> &out) const = 0;
  virtual void getArray(Array<double> &out) const = 0;
  virtual void getArray(Array<int> &out) const = 0;
  virtual void getArray(Array<bool> &out) const = 0;
  /// 22. A diagnostic text: findString's text, or "undefined" when it finds
  /// none; with bit 0 of `flags`, prefixed by the class name and ":".
  virtual void dump(BaseString<unsigned short> &out, int flags) const;

 protected:
  /// 23-24. Report this instance to m_leakDetector (under "Value") and withdraw it.
  virtual void AddToLeakDetector();
  virtual void RemoveFromLeakDetector();

 public:
  /// 25. The class of one item: the value's own class for a scalar.
  virtual ClassTag const &getItemValueType() const;
  /// 26. The class of an array of such values: "Marlix.value.ValueArrayValue" here.
  virtual ClassTag getArrayValueType();
  /// 27. A copy made through the class's pool.
  virtual Value *cloneValue() const = 0;
  /// 28. Copies this value's content into `target`, which is of this value's class.
  virtual void assignToSameClass(Value &target) const = 0;
  /// 29-32. As the getters, answering true; classes that can be undefined
  /// answer false and leave `out` untouched.
  virtual bool findDouble(double &out) const;
  virtual bool findInteger(int &out) const;
  virtual bool findBoolean(bool &out) const;
  virtual bool findString(BaseString<unsigned short> &out) const;
  /// 33. Negative, zero or positive; values of different classes order by class name.
  virtual int compare(Value const &other) const = 0;
  /// 34. The XML text: getString into `text`, `extra` empty, true.
  virtual bool getXMLText(BaseString<unsigned short> &text, BaseString<unsigned short> &extra) const;
  /// 35. Reads the XML text through the converter from StringValue (`extra`
  /// is ignored). The buffer of `text` is borrowed, not copied: it is moved
  /// into a temporary StringValue and back, so `text` is unchanged afterwards
  /// but must not be read by another thread meanwhile.
  virtual void setFromXMLText(BaseString<unsigned short> const &text, BaseString<unsigned short> const &extra);
  /// 36. Resets the content to the class's cleared state.
  virtual void clear() = 0;

  // ---- the pooled side

  /// A value taken from a pool starts cleared.
  void onActivate() override;

  // ---- non-virtual

  /// Refuses: "It is invalid to create an interface instance: %hs".
  static Value *newInstance();

  /// Makes `target` hold this value's content in the target's own class.
  void assignTo(Value &target) const;
  /// Whether assignTo into a value of class `tag` finds a way.
  bool canAssignTo(ClassTag const &tag) const;

  /// Queues the converter for (from, to); a null converter removes the pair.
  /// Ignored once the library is unloading.
  static void RegisterTypeConverter(ClassTag const &from, ClassTag const &to, ValueTypeConverter *converter);
  /// Exactly RegisterTypeConverter(from, to, nullptr).
  static void UnRegisterTypeConverter(ClassTag const &from, ClassTag const &to);

  /// The heap one read of a payload or a text may hold: this many bytes per
  /// byte consumed, plus the allowance (see the file comment).
  static constexpr long long kReadBytesPerInputByte = 64;
  static constexpr long long kReadAllowanceBytes = 2 << 20;

  static constexpr char const className[] = "Marlix.value.Value";
  static ClassTagDecl const Tag;
  static ClassImp<Value> m_class;
  static LeakDetector m_leakDetector;

 protected:
  Value() = default;
  Value(Value const &other) : Object(other), PooledObject(other) {}

  /// Name order of two classes: the other value's class name against this
  /// one's, as signed 8-bit characters (difference of the first differing
  /// characters; a null name sorts first). Note the operand order.
  int compareClassName(Value const &other) const;

 private:
  /// Values are assigned with assignTo, never with operator=.
  Value &operator=(Value const &) { return *this; }
};

}  // namespace quarn
