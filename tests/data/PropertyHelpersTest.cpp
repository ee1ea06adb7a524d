// PropertyHelpersTest.cpp - the property helpers' contracts, on the library's list and on a component's own
#include <gtest/gtest.h>
#include <quarn/core/Class.h>
#include <quarn/core/Ptr.h>
#include <quarn/data/PropertyCollection.h>
#include <quarn/data/PropertyHelpers.h>
#include <quarn/value/ArrayValue.h>
#include <quarn/value/DoubleValue.h>
#include <quarn/value/IntegerArrayValue.h>
#include <quarn/value/IntegerValue.h>
#include <quarn/value/NullValue.h>
#include <quarn/value/StringArrayValue.h>
#include <quarn/value/StringValue.h>
#include <quarnCore/Exception.h>

#include <memory>
#include <string>

#include "core/RegistrationFiles.h"
#include "support/ExpectThrow.h"
#include "value/ValueTesting.h"

namespace quarn::test {
namespace {

using namespace quarn::util;

/// The list under test: the library's PropertyCollection, or the test
/// component library's PropertyBag made by name.
class PropertyHelpersTest : public ::testing::TestWithParam<bool> {
 protected:
  void SetUp() override {
    if (GetParam()) {
      m_class = std::make_unique<ScratchClass>("Marlix.testlib.bag.");
      m_class->registerTo(QUARN_TEST_COMPONENTS);
      m_object.reset(Class::getClassInstance(ClassTag(m_class->c_str()))->as<CountedObject>());
      ASSERT_STREQ(m_object->getClassTag().getName(), "Marlix.testlib.PropertyBag");
    } else {
      m_object.reset(PropertyCollection::newInstance());
    }
    list = m_object->as<iPropertyCollection>();
    ASSERT_NE(list, nullptr);
  }
  /// What the list says when a name is defined again as another class.
  std::string redefined(char const *name, char const *held, char const *asked) const {
    if (GetParam()) return std::string("The bag holds ") + name + " as another class";
    return std::string("Property ") + name + " is already defined as " + held + ", not " + asked;
  }
  /// Every item of the property's value as text, joined by blanks.
  std::u16string textOfProperty(char const *name) const {
    Array<WString> items;
    list->findProperty(WString(name))->getValue()->getArray(items);
    std::u16string out;
    for (WString const &item : items) out += (out.empty() ? u"" : u" ") + str(item);
    return out;
  }

  std::unique_ptr<ScratchClass> m_class;
  Ptr<CountedObject> m_object;
  iPropertyCollection *list = nullptr;
};

INSTANTIATE_TEST_SUITE_P(LibraryAndComponent, PropertyHelpersTest, ::testing::Values(false, true),
                         [](auto const &info) { return info.param ? "ComponentBag" : "LibraryList"; });

TEST_P(PropertyHelpersTest, SetOrDefineDefinesWithTheValuesClassThenConvertsIntoIt) {
  iProperty *d = setOrDefine(*list, WString("d"), DoubleValue(0.5));
  EXPECT_EQ(d->getValueClass(), DoubleValue::Tag);
  EXPECT_EQ(setOrDefine(*list, WString("d"), IntegerValue(3)), d);
  EXPECT_EQ(d->getValue()->getDouble(), 3.0);
  setOrDefine(*list, WString("z"), NullValue());
  EXPECT_QUARN_THROW(setOrDefine(*list, WString("z"), IntegerValue(1)),
                     "Could not convert from Marlix.value.IntegerValue to Marlix.value.NullValue");
  EXPECT_EQ(list->getPropertyCount(), 2u);
}

TEST_P(PropertyHelpersTest, AppendOrDefineGrowsTheArrayOrDefinesItsArrayClass) {
  iProperty *a = appendOrDefine(*list, WString("a"), IntegerValue(5));
  EXPECT_EQ(a->getValueClass(), IntegerArrayValue::Tag);
  appendOrDefine(*list, WString("a"), IntegerValue(6));
  EXPECT_EQ(textOfProperty("a"), u"5 6");
  defineIntegerValue(*list, WString("n"), 1);
  EXPECT_QUARN_THROW(appendOrDefine(*list, WString("n"), IntegerValue(6)),
                     "Property n holds a Marlix.value.IntegerValue, not an array");
}

TEST_P(PropertyHelpersTest, DefineFamilyDefinesEachClassAndRefusesAnotherClass) {
  Array<int> ints;
  ints.append(1);
  ints.append(-2);
  Array<WString> texts;
  texts.append(WString("x"));
  Array<unsigned char> bytes;
  bytes.append(0xAB);
  Array<double> doubles;
  doubles.append(0.25);
  Array<bool> flags;
  flags.append(true);
  struct Case {
    char const *name;
    iProperty *property;
    char const *className;
    std::u16string text;
  } const cases[] = {
      {"i", defineIntegerValue(*list, WString("i"), -7), "Marlix.value.IntegerValue", u"-7"},
      {"d", defineDoubleValue(*list, WString("d"), 0.5), "Marlix.value.DoubleValue", u"0.5"},
      {"b", defineBooleanValue(*list, WString("b"), true), "Marlix.value.BooleanValue", u"true"},
      {"s", defineStringValue(*list, WString("s"), WString("hi")), "Marlix.value.StringValue", u"hi"},
      {"ia", defineIntegerArrayValue(*list, WString("ia"), ints), "Marlix.value.IntegerArrayValue", u"1 -2"},
      {"da", defineDoubleArrayValue(*list, WString("da"), doubles), "Marlix.value.DoubleArrayValue", u"0.25"},
      {"ba", defineBooleanArrayValue(*list, WString("ba"), flags), "Marlix.value.BooleanArrayValue", u"true"},
      {"sa", defineStringArrayValue(*list, WString("sa"), texts), "Marlix.value.StringArrayValue", u"x"},
      {"ya", defineByteArrayValue(*list, WString("ya"), bytes), "Marlix.value.ByteArrayValue", u"171"},
  };
  for (Case const &c : cases) {
    EXPECT_EQ(list->findProperty(WString(c.name)), c.property) << c.name;
    EXPECT_STREQ(c.property->getValueClass().getName(), c.className);
    EXPECT_EQ(textOfProperty(c.name), c.text) << c.name;
  }
  EXPECT_EQ(defineIntegerValue(*list, WString("i"), 8), cases[0].property);  // same class: set again
  EXPECT_EQ(textOfProperty("i"), u"8");
  EXPECT_QUARN_THROW(defineDoubleValue(*list, WString("i"), 1.0),
                     redefined("i", "Marlix.value.IntegerValue", "Marlix.value.DoubleValue"));
  EXPECT_EQ(textOfProperty("i"), u"8");
}

TEST_P(PropertyHelpersTest, ReadersReportAMissingNameAndRefuseTheWrongClass) {
  Array<unsigned char> bytes, out;
  bytes.append(1);
  bytes.append(2);
  out.append(9);
  WString text("kept");
  EXPECT_FALSE(getByteArray(*list, WString("y"), out));
  EXPECT_FALSE(getIthStringValue(*list, WString("y"), 0, text));
  EXPECT_FALSE(findStringValue(*list, WString("y"), text));
  EXPECT_FALSE(contains(*list, WString("y")));
  EXPECT_EQ(out.getSize(), 1u);
  EXPECT_EQ(str(text), u"kept");
  defineByteArrayValue(*list, WString("y"), bytes);
  EXPECT_TRUE(contains(*list, WString("y")));
  ASSERT_TRUE(getByteArray(*list, WString("y"), out));
  ASSERT_EQ(out.getSize(), 2u);
  EXPECT_EQ(out[1], 2);
  defineStringValue(*list, WString("s"), WString("text"));
  EXPECT_QUARN_THROW(getByteArray(*list, WString("s"), out),
                     "Property s holds a Marlix.value.StringValue, not Marlix.value.ByteArrayValue");
  defineIntegerArrayValue(*list, WString("empty"), Array<int>());  // an empty array has no text
  EXPECT_FALSE(findStringValue(*list, WString("empty"), text));
  EXPECT_EQ(str(text), u"kept");
  EXPECT_TRUE(findStringValue(*list, WString("s"), text));
  EXPECT_EQ(str(text), u"text");
}

TEST_P(PropertyHelpersTest, IthStringValuesReadAndWriteArraysAndScalarsAtIndexZero) {
  Array<WString> texts;
  texts.append(WString("a"));
  texts.append(WString("b"));
  defineStringArrayValue(*list, WString("sa"), texts);
  Array<int> ints;
  ints.append(1);
  defineIntegerArrayValue(*list, WString("ia"), ints);
  defineIntegerValue(*list, WString("i"), 4);
  WString out;
  ASSERT_TRUE(getIthStringValue(*list, WString("sa"), 1, out));
  EXPECT_EQ(str(out), u"b");
  ASSERT_TRUE(getIthStringValue(*list, WString("i"), 0, out));
  EXPECT_EQ(str(out), u"4");
  EXPECT_QUARN_THROW_AS(getIthStringValue(*list, WString("i"), 1, out), InvalidIndexException,
                        "Invalid index 1 (last valid index 0)");
  EXPECT_TRUE(setIthStringValue(*list, WString("sa"), 0, WString("z")));
  EXPECT_TRUE(setIthStringValue(*list, WString("ia"), 0, WString("42")));  // converted to the item class
  EXPECT_TRUE(setIthStringValue(*list, WString("i"), 0, WString("-3")));
  EXPECT_EQ(textOfProperty("sa"), u"z b");
  EXPECT_EQ(textOfProperty("ia"), u"42");
  EXPECT_EQ(textOfProperty("i"), u"-3");
  EXPECT_QUARN_THROW_AS(setIthStringValue(*list, WString("i"), 2, WString("1")), InvalidIndexException,
                        "Invalid index 2 (last valid index 0)");
  EXPECT_FALSE(setIthStringValue(*list, WString("none"), 0, WString("1")));
  EXPECT_FALSE(contains(*list, WString("none")));
}

TEST_P(PropertyHelpersTest, AssignValuesToCopiesEveryPropertyKeepingTheTargetsClasses) {
  Ptr<PropertyCollection> from(PropertyCollection::newInstance());
  defineIntegerValue(*from, WString("n"), 2);
  defineStringValue(*from, WString("s"), WString("t"));
  defineDoubleValue(*list, WString("n"), 0.0);
  EXPECT_EQ(assignValuesTo(*from, *list), 2u);
  EXPECT_EQ(list->findProperty(WString("n"))->getValueClass(), DoubleValue::Tag);
  EXPECT_EQ(textOfProperty("n"), u"2");
  EXPECT_EQ(textOfProperty("s"), u"t");
}

TEST_P(PropertyHelpersTest, ExpandTextValueReplacesKnownReferencesOnly) {
  defineStringValue(*list, WString("who"), WString("world"));
  defineIntegerValue(*list, WString("n"), 3);
  defineIntegerArrayValue(*list, WString("empty"), Array<int>());
  struct Case {
    std::u16string text, expanded;
  } const cases[] = {
      {u"Hello ${who}!", u"Hello world!"},
      {u"${n}${n}", u"33"},
      {u"${missing} ${empty}", u"${missing} ${empty}"},
      {u"${who", u"${who"},
      {u"$${who}", u"$world"},
      {u"${}", u"${}"},
      {u"", u""},
      {u"$", u"$"},
  };
  for (Case const &c : cases) EXPECT_EQ(str(expandTextValue(*list, u16(c.text))), c.expanded) << utf8(u16(c.text));
  EXPECT_TRUE(expandTextValue(*list, WString()).isNull());
}

}  // namespace
}  // namespace quarn::test
