// ValueTest.cpp - the defaults and refusals of the value root, and its slot order
#include <gtest/gtest.h>
#include <quarn/value/IntegerValue.h>
#include <quarn/value/Value.h>
#include <quarnCore/Exception.h>

#include <cstdint>
#include <cstring>

#include "support/ExpectThrow.h"
#include "value/ValueTesting.h"

namespace quarn::test {
namespace {

// A value that keeps every default of Value: it holds an optional integer.
class Bare : public Value {
 public:
  ~Bare() override = default;
  void serialize(iByteOutputStream &out) const override { Value::serialize(out); }
  void deserialize(iByteInputStream &in) override { Value::deserialize(in); }
  void deleteInstance() override { delete this; }
  int getInteger() const override { return held; }
  bool getBoolean() const override { return held != 0; }
  double getDouble() const override { return held; }
  void getString(WString &out) const override { out = WString("seven"); }
  void getArray(Array<WString> &) const override {}
  void getArray(Array<double> &) const override {}
  void getArray(Array<int> &) const override {}
  void getArray(Array<bool> &) const override {}
  Value *cloneValue() const override { return nullptr; }
  void assignToSameClass(Value &) const override {}
  bool findString(WString &out) const override { return defined && Value::findString(out); }
  int compare(Value const &) const override { return 0; }
  void clear() override {}
  void onDeactivate() override {}

  int held = 7;
  bool defined = true;
};

TEST(ValueTest, ValueItselfCannotBeCreatedOrClonedAndGivesTheDefaultsOfAScalar) {
  EXPECT_QUARN_THROW(Value::newInstance(), "It is invalid to create an interface instance: Marlix.value.Value");
  EXPECT_QUARN_THROW(Value::m_class.newInstance(), "It is invalid to create an interface instance: Marlix.value.Value");
  Bare bare;
  EXPECT_QUARN_THROW(bare.clone(), "It is invalid to clone an interface: Marlix.value.Value");
  EXPECT_EQ(bare.getSize(), 1u);
  EXPECT_EQ(bare.getItemValueType(), Value::Tag);
  EXPECT_STREQ(bare.getArrayValueType().getName(), "Marlix.value.ValueArrayValue");
  int i = 0;
  EXPECT_TRUE(bare.findInteger(i));
  EXPECT_EQ(i, 7);

  WString text = u16(u"old"), extra = u16(u"old");
  EXPECT_TRUE(bare.getXMLText(text, extra));
  EXPECT_EQ(str(text), u"seven");
  EXPECT_FALSE(extra.isNull());
  EXPECT_EQ(str(extra), u"");
  bare.defined = false;  // dump says undefined when no text is found
  WString out = u16(u"previous");
  bare.dump(out, 0);
  EXPECT_EQ(str(out), u"undefined");
  bare.dump(out, 1);
  EXPECT_EQ(str(out), u"Marlix.value.Value:undefined");
  bare.dump(out, 2);  // only bit 0 asks for the class name
  EXPECT_EQ(str(out), u"undefined");
}

TEST(ValueTest, SetFromXMLTextFailureGivesTheTextBackUntouched) {
  IntegerValue value(5);
  WString text = u16(u"12x");
  unsigned short const *buffer = text.getBuffer();
  EXPECT_QUARN_THROW(value.setFromXMLText(text, WString()), "Cannot convert '12x' to an integer");
  EXPECT_EQ(text.getBuffer(), buffer);
  EXPECT_EQ(str(text), u"12x");
  EXPECT_EQ(value.getInteger(), 5);
  value.setFromXMLText(u16(u" -12 "), WString());
  EXPECT_EQ(value.getInteger(), -12);
}

#if defined(__GXX_ABI_VERSION)
// In this ABI a pointer to a virtual member function holds 1 + the byte
// offset of its vtable entry. The destructor takes two entries, so from slot
// 12 on the entry index equals the slot number.
template <class F>
std::size_t entryOf(F member) {
  struct {
    std::uintptr_t ptr;
    std::ptrdiff_t adjust;
  } raw;
  static_assert(sizeof(F) == sizeof(raw));
  std::memcpy(&raw, &member, sizeof raw);
  return (raw.ptr - 1) / sizeof(void *);
}

struct Slots : Value {
  static std::size_t seek() { return entryOf(&Slots::_SeekClassIdentity); }
  static std::size_t add() { return entryOf(&Slots::AddToLeakDetector); }
  static std::size_t remove() { return entryOf(&Slots::RemoveFromLeakDetector); }
};

TEST(ValueTest, VirtualOperationsKeepTheirSlotOrder) {
  using V = Value;
  EXPECT_EQ(entryOf(&V::getClassTag), 0u);
  // Each run lists consecutive slots, starting at the slot given.
  // clang-format off
  std::size_t const from4[] = {entryOf(&V::hash), entryOf(&V::clone), entryOf(&V::getClass), entryOf(&V::serialize),
                               entryOf(&V::deserialize), entryOf(&V::deleteInstance)};
  std::size_t const from12[] = {
      Slots::seek(), entryOf(&V::getSize), entryOf(&V::getInteger), entryOf(&V::getBoolean), entryOf(&V::getDouble),
      entryOf(static_cast<void (V::*)(WString &) const>(&V::getString)),
      entryOf(static_cast<void (V::*)(Array<WString> &) const>(&V::getArray)),
      entryOf(static_cast<void (V::*)(Array<double> &) const>(&V::getArray)),
      entryOf(static_cast<void (V::*)(Array<int> &) const>(&V::getArray)),
      entryOf(static_cast<void (V::*)(Array<bool> &) const>(&V::getArray)),
      entryOf(&V::dump), Slots::add(), Slots::remove(), entryOf(&V::getItemValueType), entryOf(&V::getArrayValueType),
      entryOf(&V::cloneValue), entryOf(&V::assignToSameClass), entryOf(&V::findDouble), entryOf(&V::findInteger),
      entryOf(&V::findBoolean), entryOf(&V::findString), entryOf(&V::compare), entryOf(&V::getXMLText),
      entryOf(&V::setFromXMLText), entryOf(&V::clear)};
  // clang-format on
  for (std::size_t k = 0; k < std::size(from4); ++k) EXPECT_EQ(from4[k], 4 + k) << "slot " << 4 + k;
  for (std::size_t k = 0; k < std::size(from12); ++k) EXPECT_EQ(from12[k], 12 + k) << "slot " << 12 + k;
}
#endif

}  // namespace
}  // namespace quarn::test
