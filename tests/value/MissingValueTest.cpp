// MissingValueTest.cpp - the missing string: compared and copied, but never cleared or written
#include <gtest/gtest.h>
#include <quarn/value/IntegerValue.h>
#include <quarn/value/MissingValue.h>
#include <quarn/value/NullValue.h>

#include "support/ExpectThrow.h"
#include "value/ValueTesting.h"

namespace quarn::test {
namespace {

MissingValue missing(std::u16string_view why) {
  MissingValue m;
  m.setMissingString(u16(why));
  return m;
}

TEST(MissingValueTest, BehavesAsANullValueWhoseTextIsNotTheMissingString) {
  MissingValue m = missing(u"sensor offline");
  EXPECT_QUARN_THROW(m.getInteger(), "Invalid request: a NullValue type cannot hold a value");
  EXPECT_EQ(textOf(m), u"");
  EXPECT_EQ(m.as<NullValue>(), static_cast<NullValue *>(&m));
}

TEST(MissingValueTest, ComparesByMissingStringsAndOtherClassesByName) {
  struct Case {
    MissingValue a, b;
    int expected;
  } const cases[] = {
      {missing(u"a"), missing(u"b"), 'a' - 'b'},
      {missing(u"b"), missing(u"a"), 'b' - 'a'},
      {missing(u"same"), missing(u"same"), 0},
      {MissingValue(), missing(u""), -1},  // null first
  };
  for (auto const &c : cases) EXPECT_EQ(c.a.compare(c.b), c.expected);
  EXPECT_EQ(missing(u"a").compare(NullValue()), 'N' - 'M');
  EXPECT_EQ(missing(u"a").compare(IntegerValue(1)), 'I' - 'M');
}

TEST(MissingValueTest, ClearAndThePoolKeepTheMissingString) {
  MissingValue m = missing(u"why");
  m.clear();
  EXPECT_EQ(str(m.getMissingString()), u"why");

  MissingValue *pooled = MissingValue::newInstance();
  pooled->setMissingString(u16(u"left over"));
  pooled->deleteInstance();
  MissingValue *again = MissingValue::newInstance();
  EXPECT_EQ(again, pooled);
  EXPECT_EQ(str(again->getMissingString()), u"left over");
  again->deleteInstance();
}

TEST(MissingValueTest, AssignmentCopiesTheMissingString) {
  MissingValue target;
  missing(u"copied").assignTo(target);
  EXPECT_EQ(str(target.getMissingString()), u"copied");
  target.assignTo(target);
  EXPECT_EQ(str(target.getMissingString()), u"copied");

  MissingValue fromMissingAsNull(static_cast<NullValue const &>(missing(u"kept")));
  EXPECT_EQ(str(fromMissingAsNull.getMissingString()), u"kept");
  MissingValue fromNull{NullValue()};
  EXPECT_TRUE(fromNull.getMissingString().isNull());
  target = NullValue();
  EXPECT_TRUE(target.getMissingString().isNull());
}

}  // namespace
}  // namespace quarn::test
