// ValueConversionTest.cpp - assignTo between every pair of scalar classes and out of the null values
#include <gtest/gtest.h>
#include <quarn/core/Ptr.h>
#include <quarn/value/BooleanValue.h>
#include <quarn/value/DoubleValue.h>
#include <quarn/value/IntegerValue.h>
#include <quarn/value/MissingValue.h>
#include <quarn/value/NullValue.h>
#include <quarn/value/StringValue.h>

#include <functional>
#include <memory>
#include <vector>

#include "support/ExpectThrow.h"
#include "value/ValueTesting.h"

namespace quarn::test {
namespace {

using Make = std::function<Value *()>;

template <class T, class... Args>
Make make(Args... args) {
  return [=] {
    T *v = T::newInstance();
    *v = T(args...);
    return static_cast<Value *>(v);
  };
}

Make text(char const *s) {
  return [=] {
    StringValue *v = StringValue::newInstance();
    *v = s;
    return static_cast<Value *>(v);
  };
}

// Each row converts `from` into a value of the class of `expected`, which
// first holds `before`, and compares the result with `expected`.
struct Case {
  Make from, before, expected;
};

void check(std::vector<Case> const &cases) {
  for (std::size_t k = 0; k < cases.size(); ++k) {
    ObjPtr<Value> from(cases[k].from()), target(cases[k].before()), expected(cases[k].expected());
    ASSERT_EQ(target->getClassTag(), expected->getClassTag());
    EXPECT_TRUE(from->canAssignTo(target->getClassTag())) << "row " << k;
    from->assignTo(*target);
    EXPECT_EQ(target->compare(*expected), 0) << "row " << k << ": " << utf8([&] {
      WString s;
      target->dump(s, 1);
      return s;
    }());
  }
}

TEST(ValueConversionTest, EachScalarConvertsIntoEachScalarThroughTheTargetsGetter) {
  check({
      {make<IntegerValue>(-5), make<IntegerValue>(1), make<IntegerValue>(-5)},
      {make<IntegerValue>(-5), make<DoubleValue>(1.0), make<DoubleValue>(-5.0)},
      {make<IntegerValue>(-5), make<BooleanValue>(false), make<BooleanValue>(true)},
      {make<IntegerValue>(-5), text("x"), text("-5")},
      {make<DoubleValue>(-2.9), make<IntegerValue>(1), make<IntegerValue>(-2)},
      {make<DoubleValue>(-2.9), make<DoubleValue>(1.0), make<DoubleValue>(-2.9)},
      {make<DoubleValue>(-0.0), make<BooleanValue>(true), make<BooleanValue>(false)},
      {make<DoubleValue>(0.1), text("x"), text("0.1")},
      {make<BooleanValue>(true), make<IntegerValue>(7), make<IntegerValue>(1)},
      {make<BooleanValue>(true), make<DoubleValue>(7.0), make<DoubleValue>(1.0)},
      {make<BooleanValue>(true), make<BooleanValue>(false), make<BooleanValue>(true)},
      {make<BooleanValue>(false), text("x"), text("false")},
      {text(" 12 "), make<IntegerValue>(1), make<IntegerValue>(12)},
      {text("1e3"), make<DoubleValue>(1.0), make<DoubleValue>(1000.0)},
      {text("off"), make<BooleanValue>(true), make<BooleanValue>(false)},
      {text("abc"), text("x"), text("abc")},
  });
}

TEST(ValueConversionTest, NullAndMissingClearTheTarget) {
  auto missing = [] {
    MissingValue *m = MissingValue::newInstance();
    m->setMissingString(u16(u"why"));
    return static_cast<Value *>(m);
  };
  Make null = [] { return static_cast<Value *>(NullValue::newInstance()); };
  for (Make const &from : {null, Make(missing)}) {
    check({
        {from, make<IntegerValue>(9), make<IntegerValue>(0)},
        {from, make<DoubleValue>(9.5), make<DoubleValue>(0.0)},
        {from, make<BooleanValue>(true), make<BooleanValue>(false)},
        {from, text("abc"), text("")},
    });
  }
  StringValue nullText;
  NullValue().assignTo(nullText);
  EXPECT_TRUE(nullText.getString().isNull());  // cleared: a null text stays null
}

TEST(ValueConversionTest, FailedConversionLeavesTheTargetAsItWas) {
  IntegerValue target(4);
  EXPECT_QUARN_THROW(StringValue("4x").assignTo(target), "Cannot convert '4x' to an integer");
  EXPECT_EQ(target.getInteger(), 4);
}

TEST(ValueConversionTest, NothingConvertsIntoTheNullValues) {
  NullValue null;
  MissingValue missing;
  EXPECT_QUARN_THROW(StringValue("x").assignTo(null),
                     "Could not convert from Marlix.value.StringValue to Marlix.value.NullValue");
  EXPECT_QUARN_THROW(null.assignTo(missing),
                     "Could not convert from Marlix.value.NullValue to Marlix.value.MissingValue");
  EXPECT_FALSE(IntegerValue(1).canAssignTo(MissingValue::Tag));
}

TEST(ValueConversionTest, XmlTextOfEachScalarIsReadThroughTheConverterFromText) {
  IntegerValue i;
  DoubleValue d;
  BooleanValue b;
  i.setFromXMLText(u16(u"-17"), WString());
  d.setFromXMLText(u16(u"2.5e-3"), WString());
  b.setFromXMLText(u16(u"yes"), WString());
  EXPECT_EQ(i.getInteger(), -17);
  EXPECT_EQ(d.getDouble(), 2.5e-3);
  EXPECT_TRUE(b.getBoolean());
}

}  // namespace
}  // namespace quarn::test
