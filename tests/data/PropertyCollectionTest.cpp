// PropertyCollectionTest.cpp - the property-list operations, run over every list class of the library
#include <gtest/gtest.h>
#include <quarn/core/Class.h>
#include <quarn/core/Ptr.h>
#include <quarn/data/DataNode.h>
#include <quarn/data/DataRecord.h>
#include <quarn/data/PropertyCollection.h>
#include <quarn/value/DoubleValue.h>
#include <quarn/value/IntegerValue.h>
#include <quarn/value/NullValue.h>
#include <quarn/value/StringValue.h>
#include <quarnCore/Exception.h>

#include <string>
#include <vector>

#include "support/ExpectThrow.h"
#include "value/ValueTesting.h"

namespace quarn::test {
namespace {

WString nameOf(int i) { return WString(("p" + std::to_string(i)).c_str()); }

template <class T>
class PropertyListTest : public ::testing::Test {
 protected:
  Ptr<T> object{T::newInstance()};
  iPropertyCollection &list = *object->template as<iPropertyCollection>();
};

using ListClasses = ::testing::Types<PropertyCollection, DataRecord, DataNode>;
TYPED_TEST_SUITE(PropertyListTest, ListClasses);

TYPED_TEST(PropertyListTest, IsMadeByNameAndAnswersAsAPropertyCollection) {
  Ptr<CountedObject> made(Class::getClassInstance(TypeParam::Tag)->template as<CountedObject>());
  ASSERT_TRUE(made);
  EXPECT_EQ(made->getRefCount(), 1u);
  auto *list = made->template as<iPropertyCollection>();
  ASSERT_NE(list, nullptr);
  EXPECT_EQ(list->getPropertyCount(), 0u);
  EXPECT_EQ(static_cast<CountedObject *>(list), made.get());
}

TYPED_TEST(PropertyListTest, DefinesFindsAndKeepsInsertionOrder) {
  iPropertyCollection &list = this->list;
  iProperty *b = list.defineProperty(u16(u"b"), IntegerValue::Tag);
  iProperty *a = list.defineProperty(u16(u"a"), StringValue::Tag);
  ASSERT_TRUE(a && b);
  EXPECT_EQ(list.getPropertyCount(), 2u);
  EXPECT_EQ(list.getProperty(0), b);
  EXPECT_EQ(list.getProperty(1), a);
  EXPECT_EQ(list.findProperty(u16(u"a")), a);
  EXPECT_EQ(list.findProperty(u16(u"A")), nullptr);  // names are case-sensitive
  EXPECT_EQ(list.findProperty(u16(u"")), nullptr);
  EXPECT_EQ(list.findProperty(WString()), nullptr);
  EXPECT_EQ(str(a->getName()), u"a");
  EXPECT_EQ(a->getValueClass(), StringValue::Tag);
  ASSERT_NE(b->getValue(), nullptr);
  EXPECT_EQ(b->getValue()->getClassTag(), IntegerValue::Tag);
  EXPECT_EQ(b->getValue()->getInteger(), 0);  // a fresh value starts cleared
  // Defining again with the same class gives the same property.
  EXPECT_EQ(list.defineProperty(u16(u"b"), IntegerValue::Tag), b);
  EXPECT_EQ(list.getPropertyCount(), 2u);
  EXPECT_QUARN_THROW_AS(list.getProperty(2), InvalidIndexException, "Invalid index 2 (last valid index 1)");
}

TYPED_TEST(PropertyListTest, RefusesBadDefinitionsAndChangesNothing) {
  iPropertyCollection &list = this->list;
  list.defineProperty(u16(u"n"), IntegerValue::Tag);
  struct Case {
    WString name;
    ClassTag tag;
    char const *message;
  } const cases[] = {
      {u16(u"n"), DoubleValue::Tag,
       "Property n is already defined as Marlix.value.IntegerValue, not Marlix.value.DoubleValue"},
      {u16(u""), IntegerValue::Tag, "A property needs a name"},
      {WString(), IntegerValue::Tag, "A property needs a name"},
      {u16(u"x"), PropertyCollection::Tag, "Class Marlix.data.PropertyCollection is not a value"},
      {u16(u"x"), Value::Tag, "It is invalid to create an interface instance: Marlix.value.Value"},
  };
  for (Case const &c : cases) {
    EXPECT_QUARN_THROW(list.defineProperty(c.name, c.tag), c.message);
    EXPECT_EQ(list.getPropertyCount(), 1u);
  }
}

TYPED_TEST(PropertyListTest, SetValueConvertsIntoTheDeclaredClassOrRefuses) {
  iProperty *p = this->list.defineProperty(u16(u"d"), DoubleValue::Tag);
  p->setValue(IntegerValue(3));
  EXPECT_EQ(p->getValue()->getClassTag(), DoubleValue::Tag);
  EXPECT_EQ(p->getValue()->getDouble(), 3.0);
  iProperty *none = this->list.defineProperty(u16(u"z"), NullValue::Tag);
  EXPECT_QUARN_THROW(none->setValue(IntegerValue(9)),
                     "Could not convert from Marlix.value.IntegerValue to Marlix.value.NullValue");
  EXPECT_EQ(none->getValue()->getClassTag(), NullValue::Tag);
}

TYPED_TEST(PropertyListTest, RemovesByIndexAndNameAndClears) {
  iPropertyCollection &list = this->list;
  for (int i = 0; i < 4; ++i) list.defineProperty(nameOf(i), IntegerValue::Tag);
  Ptr<iProperty> kept(list.getProperty(1));  // a reference of our own outlives removal
  EXPECT_EQ(kept->getRefCount(), 2u);
  list.removePropertyAt(1);
  EXPECT_EQ(kept->getRefCount(), 1u);
  EXPECT_EQ(list.findProperty(nameOf(1)), nullptr);
  EXPECT_EQ(list.getProperty(1), list.findProperty(nameOf(2)));
  EXPECT_TRUE(list.removeProperty(nameOf(0)));
  EXPECT_FALSE(list.removeProperty(nameOf(0)));
  EXPECT_QUARN_THROW_AS(list.removePropertyAt(2), InvalidIndexException, "Invalid index 2 (last valid index 1)");
  list.clearProperties();
  EXPECT_EQ(list.getPropertyCount(), 0u);
  EXPECT_EQ(list.findProperty(nameOf(2)), nullptr);
}

TYPED_TEST(PropertyListTest, FindsEveryNameAcrossTheIndexThresholdThroughRemovals) {
  iPropertyCollection &list = this->list;
  constexpr int kCount = 100;
  for (int i = 0; i < kCount; ++i) {
    list.defineProperty(nameOf(i), IntegerValue::Tag)->setValue(IntegerValue(i));
    for (int k = 0; k <= i; ++k) ASSERT_EQ(list.findProperty(nameOf(k))->getValue()->getInteger(), k) << i;
    ASSERT_EQ(list.findProperty(nameOf(i + 1)), nullptr);
  }
  // Remove from the front until the list is small again: every survivor is still found.
  for (int i = 0; i < kCount - 3; ++i) {
    ASSERT_TRUE(list.removeProperty(nameOf(i)));
    ASSERT_EQ(list.findProperty(nameOf(i)), nullptr);
    for (int k = i + 1; k < kCount; ++k) ASSERT_EQ(list.findProperty(nameOf(k))->getValue()->getInteger(), k);
  }
}

TEST(PropertyTest, TheLastReleaseReturnsThePropertyAndItsValueToTheirPools) {
  long const before = Property::m_leakDetector.getLiveCount();
  IntegerValue *value = IntegerValue::newInstance();
  Property *property = Property::make(u16(u"n"), value);
  EXPECT_EQ(Property::m_leakDetector.getLiveCount(), before + 1);
  EXPECT_EQ(property->getRefCount(), 0u);
  property->addRef();
  EXPECT_EQ(property->release(), 0u);
  EXPECT_EQ(Property::m_leakDetector.getLiveCount(), before);
  Property *again = Property::newInstance();
  IntegerValue *valueAgain = IntegerValue::newInstance();
  EXPECT_EQ(again, property);  // recycled, last released first
  EXPECT_EQ(valueAgain, value);
  EXPECT_TRUE(again->getName().isNull());
  EXPECT_EQ(again->getValue(), nullptr);
  EXPECT_EQ(again->getValueClass(), Value::Tag);
  valueAgain->deleteInstance();
  again->deleteInstance();
}

TEST(PropertyTableTest, EqualNamesHashEqualAndTheIndexHandlesCollidingSlots) {
  WString a = u16(u"abcdefghi"), b = u16(u"abcdefghi");
  EXPECT_EQ(detail::PropertyTable::hashName(a.getBuffer(), a.getLength()),
            detail::PropertyTable::hashName(b.getBuffer(), b.getLength()));
  EXPECT_NE(detail::PropertyTable::hashName(a.getBuffer(), 8), detail::PropertyTable::hashName(a.getBuffer(), 9));
}

}  // namespace
}  // namespace quarn::test
