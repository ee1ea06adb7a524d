// ByteArrayValueTest.cpp - the Base64 XML text, byte rules and pool bounds of the byte array
#include <quarn/value/ByteArrayValue.h>
#include <quarn/value/IntegerValue.h>
#include <quarn/value/MemoryStream.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/ExpectThrow.h"
#include "value/ArrayContracts.h"
#include "value/ValueTesting.h"

namespace quarn::test {
namespace {

ByteArrayValue bytesFrom(std::string const &text) {
  return ByteArrayValue(reinterpret_cast<unsigned char const *>(text.data()), static_cast<unsigned int>(text.size()));
}

TEST(ByteArrayValueTest, XmlTextIsBase64AsInRfc4648) {
  struct Case {
    char const *bytes;
    char16_t const *base64;
  } const cases[] = {{"", u""},         {"f", u"Zg=="},         {"fo", u"Zm8="},     {"foo", u"Zm9v"},
                     {"foob", u"Zm9vYg=="}, {"fooba", u"Zm9vYmE="}, {"foobar", u"Zm9vYmFy"}};
  for (auto const &c : cases) {
    WString text, second = u16(u"x");
    EXPECT_TRUE(bytesFrom(c.bytes).getXMLText(text, second));
    EXPECT_EQ(str(text), c.base64);
    EXPECT_EQ(str(second), u"");
    ByteArrayValue read = bytesFrom("old");
    read.setFromXMLText(text, second);
    EXPECT_EQ(read.compare(bytesFrom(c.bytes)), 0) << c.bytes;
  }
  EXPECT_TRUE(ByteArrayValue().hasXMLText());
}

TEST(ByteArrayValueTest, InvalidBase64LeavesTheBytesAsTheyWere) {
  ByteArrayValue a = bytesFrom("keep");
  EXPECT_QUARN_THROW(a.setFromXMLText(u16(u"Zm9"), WString()), "Invalid Base64 text");
  EXPECT_EQ(a.compare(bytesFrom("keep")), 0);
}

TEST(ByteArrayValueTest, AbridgedTextShowsTheFirstSixtyBytesAndTheCount) {
  std::string const sixtyOne(61, '\x9B');
  WString full, abridged, second;
  ByteArrayValue const short59 = bytesFrom(sixtyOne.substr(0, 59));
  short59.getXMLText(full, second);
  EXPECT_TRUE(short59.getAbridgedXMLText(abridged, second));
  EXPECT_EQ(str(abridged), str(full));
  bytesFrom(sixtyOne.substr(0, 60)).getXMLText(full, second);  // the Base64 of exactly 60 bytes
  for (unsigned int size : {60u, 61u}) {
    bytesFrom(sixtyOne.substr(0, size)).getAbridgedXMLText(abridged, second);
    EXPECT_EQ(str(abridged), str(full) + u"... (" + (size == 60 ? u"60" : u"61") + u" bytes)");
    EXPECT_EQ(str(second), u"");
  }
}

TEST(ByteArrayValueTest, BytesTakeTheLowEightBitsAndOrderUnsigned) {
  ByteArrayValue a = bytesFrom("ab");
  a.setIthValue(0, IntegerValue(-1));
  a.appendValue(IntegerValue(300));
  EXPECT_EQ(a[0], 255);
  EXPECT_EQ(a.getIthInteger(2), 44);
  EXPECT_EQ(arrayOf<ByteArrayValue>({255}).compare(arrayOf<ByteArrayValue>({1})), 1);
  expectPayload(arrayOf<ByteArrayValue>({1, 255}), "08 01 FF");
}

// The payload 00 from a memory stream once copied zero bytes to a null buffer (seen under UBSan).
TEST(ByteArrayValueTest, AnEmptyPayloadFromMemoryReadsAsNoBytes) {
  unsigned char const payload[] = {0x00, 0x2A};
  for (int version : {1, 2}) {
    MemoryInputStream in(payload, 1, version);
    ByteArrayValue read = bytesFrom("old");
    read.deserialize(in);
    EXPECT_EQ(read.getSize(), 0u);
    EXPECT_EQ(in.getPosition(), 1u);
  }
}

TEST(ByteArrayValueTest, ThePoolKeepsReleasedInstancesOnlyWhileFewerThanFiftyAreOut) {
  auto &pool = ByteArrayValue::m_class;
  int const already = pool.getOutstanding();
  ASSERT_LT(already, 50);
  std::vector<ByteArrayValue *> out;
  while (pool.getOutstanding() < 50) out.push_back(ByteArrayValue::newInstance());
  unsigned int const pooled = pool.getPoolSize();
  out.back()->deleteInstance();  // 50 out: destroyed
  out.pop_back();
  EXPECT_EQ(pool.getPoolSize(), pooled);
  out.back()->deleteInstance();  // 49 out: kept
  out.pop_back();
  EXPECT_EQ(pool.getPoolSize(), pooled + 1);
  for (ByteArrayValue *v : out) v->deleteInstance();
  EXPECT_EQ(pool.getOutstanding(), already);
}

}  // namespace
}  // namespace quarn::test
