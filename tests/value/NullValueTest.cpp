// NullValueTest.cpp - what a null value refuses and what it answers
#include <gtest/gtest.h>
#include <quarn/value/IntegerValue.h>
#include <quarn/value/MissingValue.h>
#include <quarn/value/NullValue.h>

#include <cmath>

#include "support/ExpectThrow.h"
#include "value/ValueTesting.h"

namespace quarn::test {
namespace {

TEST(NullValueTest, RefusesIntegerAndBooleanButReadsAsNaNAndEmptyText) {
  NullValue null;
  EXPECT_QUARN_THROW(null.getInteger(), "Invalid request: a NullValue type cannot hold a value");
  EXPECT_QUARN_THROW(null.getBoolean(), "Invalid request: a NullValue type cannot hold a value");
  EXPECT_TRUE(std::isnan(null.getDouble()));

  int i = 5;
  bool b = true;
  double d = 0;
  WString s = u16(u"old");
  EXPECT_FALSE(null.findInteger(i));
  EXPECT_FALSE(null.findBoolean(b));
  EXPECT_EQ(i, 5);
  EXPECT_TRUE(b);
  EXPECT_TRUE(null.findDouble(d));
  EXPECT_TRUE(std::isnan(d));
  EXPECT_TRUE(null.findString(s));
  EXPECT_FALSE(s.isNull());
  EXPECT_EQ(str(s), u"");
}

TEST(NullValueTest, HoldsNoItemsNoXmlTextAndNoPayload) {
  NullValue null;
  EXPECT_EQ(null.getSize(), 0u);
  EXPECT_EQ(null.hash(), 0u);
  Array<int> ints;
  ints.append(1);
  Array<WString> texts;
  texts.append(u16(u"x"));
  null.getArray(ints);
  null.getArray(texts);
  EXPECT_EQ(ints.getSize() + texts.getSize(), 0u);

  WString text = u16(u"old"), extra = u16(u"old");
  EXPECT_FALSE(null.getXMLText(text, extra));
  EXPECT_EQ(str(text) + str(extra), u"");
  EXPECT_TRUE(serialise(null, 1).empty());
  WString out;
  null.dump(out, 0);  // findString answers true: empty text, not "undefined"
  EXPECT_EQ(str(out), u"");
}

TEST(NullValueTest, EqualsOnlyAnotherNullValueAndOrdersOthersByName) {
  NullValue null;
  EXPECT_EQ(null.compare(NullValue()), 0);
  EXPECT_EQ(null.compare(MissingValue()), 'M' - 'N');
  EXPECT_EQ(null.compare(IntegerValue(1)), 'I' - 'N');
}

}  // namespace
}  // namespace quarn::test
