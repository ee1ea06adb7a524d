// DataRecordTest.cpp - records: their interfaces, copies, byte-stream form and hostile input
#include <gtest/gtest.h>
#include <quarn/core/Class.h>
#include <quarn/core/Ptr.h>
#include <quarn/data/DataRecord.h>
#include <quarn/data/Property.h>
#include <quarn/value/BooleanValue.h>
#include <quarn/value/DoubleValue.h>
#include <quarn/value/IntegerValue.h>
#include <quarn/value/MemoryStream.h>
#include <quarn/value/StringValue.h>
#include <quarn/value/ValueArrayValue.h>
#include <quarnCore/Exception.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "support/ExpectThrow.h"
#include "value/GoldenBytes.h"
#include "value/ValueTesting.h"

namespace quarn::test {
namespace {

constexpr char kAnnotation[] = "\nDataRecord::deserialize: Tessary exception caught";

Bytes frame(std::string const &name) {
  // L = bytes + 1: one byte L*4 up to 15, else 01 and one byte.
  unsigned int const l = static_cast<unsigned int>(name.size()) + 1;
  Bytes head = l <= 15 ? Bytes{static_cast<unsigned char>(l * 4)} : Bytes{0x01, static_cast<unsigned char>(l)};
  return head + bytesOfText(name);
}

Bytes bytesOf(DataRecord const &record, int version = 2) {
  MemoryOutputStream out(version);
  record.serialize(out);
  return Bytes(out.getBuffer(), out.getBuffer() + out.getSize());
}

/// A record {"n": IntegerValue 7} and its bytes.
Ptr<DataRecord> smallRecord() {
  Ptr<DataRecord> record(DataRecord::newInstance());
  record->defineProperty(u16(u"n"), IntegerValue::Tag)->setValue(IntegerValue(7));
  return record;
}
Bytes const kSmall = golden("04 04 08 6E") + frame("Marlix.value.IntegerValue") + golden("1C");

/// Every property of `a` equals the one at the same place in `b`.
void expectSameProperties(iPropertyCollection const &a, iPropertyCollection const &b) {
  ASSERT_EQ(a.getPropertyCount(), b.getPropertyCount());
  for (unsigned int i = 0; i < a.getPropertyCount(); ++i) {
    iProperty const *p = a.getProperty(i), *q = b.getProperty(i);
    EXPECT_EQ(p->getName(), q->getName()) << i;
    EXPECT_EQ(p->getValueClass(), q->getValueClass()) << utf8(p->getName());
    EXPECT_EQ(p->getValue()->compare(*q->getValue()), 0) << utf8(p->getName());
  }
}

TEST(DataRecordTest, IsItsOwnPropertyListAndClonesDeeply) {
  Ptr<DataRecord> record = smallRecord();
  auto *asList = record->as<iPropertyCollection>();
  auto *asRecord = record->as<iDataRecord>();
  ASSERT_TRUE(asList && asRecord);
  EXPECT_EQ(asRecord->getPropertyList(), asList);
  Ptr<DataRecord> copy(record->clone()->as<DataRecord>());
  EXPECT_EQ(copy->getRefCount(), 1u);  // made with a count of 0
  expectSameProperties(*record, *copy);
  copy->getProperty(0)->setValue(IntegerValue(8));
  EXPECT_EQ(record->getProperty(0)->getValue()->getInteger(), 7);
}

TEST(DataRecordTest, CopyFromReplacesThePropertiesAndCopyingItselfKeepsThem) {
  Ptr<DataRecord> source = smallRecord(), target(DataRecord::newInstance());
  source->defineProperty(u16(u"s"), StringValue::Tag)->setValue(StringValue("x"));
  target->defineProperty(u16(u"old"), DoubleValue::Tag);
  target->copyFrom(*source);
  expectSameProperties(*source, *target);
  EXPECT_EQ(target->findProperty(u16(u"old")), nullptr);
  EXPECT_NE(target->getProperty(0), source->getProperty(0));  // copies, not shared
  iProperty *before = target->getProperty(0);
  target->copyFrom(*target);
  EXPECT_EQ(target->getProperty(0), before);
}

TEST(DataRecordTest, WritesTheGoldenBytesAndReadsThemBackThroughEveryChunkSize) {
  EXPECT_EQ(hexOf(bytesOf(*smallRecord())), hexOf(kSmall));
  for (int chunk : kChunkSizes) {
    ChunkedInputStream in(kSmall, chunk);
    Ptr<DataRecord> read(DataRecord::newInstance());
    read->deserialize(in);
    EXPECT_TRUE(in.atEnd());
    expectSameProperties(*read, *smallRecord());
  }
}

TEST(DataRecordTest, RoundTripsOnePropertyOfEveryValueClassInBothStreamVersions) {
  static char const *const kClasses[] = {
      "Marlix.value.IntegerValue",
      "Marlix.value.DoubleValue",
      "Marlix.value.BooleanValue",
      "Marlix.value.StringValue",
      "Marlix.value.NullValue",
      "Marlix.value.MissingValue",
      "Marlix.value.IntegerArrayValue",
      "Marlix.value.DoubleArrayValue",
      "Marlix.value.StringArrayValue",
      "Marlix.value.BooleanArrayValue",
      "Marlix.value.ByteArrayValue",
      "Marlix.value.IntegerFingerprintValue",
      "Marlix.value.DoubleFingerprintValue",
      "Marlix.value.StringFingerprintValue",
      "Marlix.value.BitsetValue",
      "Marlix.value.BitsetValue2D",
      "Marlix.value.BitsetValue3D",
      "Marlix.value.BitFingerprintValue",
      "Marlix.value.BitsetArrayValue",
      "Marlix.value.BitFingerprintArrayValue",
      "Marlix.value.FlexValue",
      "Marlix.value.FlexArrayValue",
      "Marlix.value.ValueArrayValue",
      "Marlix.value.NullArrayValue",
  };
  Ptr<DataRecord> record(DataRecord::newInstance());
  for (char const *name : kClasses) {
    ClassTag tag(name);
    ASSERT_NE(tag.findClass(), nullptr) << name;
    record->defineProperty(WString(name), tag);
  }
  // Content where a class takes it from a scalar.
  record->findProperty(WString("Marlix.value.IntegerValue"))->setValue(IntegerValue(-40000));
  record->findProperty(WString("Marlix.value.DoubleValue"))->setValue(DoubleValue(0.1));
  record->findProperty(WString("Marlix.value.BooleanValue"))->setValue(BooleanValue(true));
  record->findProperty(WString("Marlix.value.StringValue"))
      ->setValue(StringValue(u16(u"h\u00E9llo \U0001F600").getBuffer()));
  auto *list =
      static_cast<ValueArrayValue *>(record->findProperty(WString("Marlix.value.ValueArrayValue"))->getValue());
  list->appendValue(IntegerValue(5));
  list->appendValue(StringValue("five"));
  for (int version : {1, 2}) {
    Bytes const bytes = bytesOf(*record, version);
    ChunkedInputStream in(bytes, 5, version);
    Ptr<DataRecord> read(DataRecord::newInstance());
    read->deserialize(in);
    EXPECT_TRUE(in.atEnd()) << version;
    expectSameProperties(*record, *read);
  }
}

/// A record of the `names` in order, property k holding IntegerValue k when
/// `doubles` is false, DoubleValue k + 0.5 when it is.
Ptr<DataRecord> recordOf(std::vector<char const *> const &names, bool doubles = false) {
  Ptr<DataRecord> record(DataRecord::newInstance());
  int k = 0;
  for (char const *name : names) {
    iProperty *p = record->defineProperty(WString(name), doubles ? DoubleValue::Tag : IntegerValue::Tag);
    if (doubles)
      p->setValue(DoubleValue(k++ + 0.5));
    else
      p->setValue(IntegerValue(k++));
  }
  return record;
}

TEST(DataRecordTest, ReadsAgainIntoARecordThatHeldOtherNamesOrClasses) {
  Ptr<DataRecord> const source = recordOf({"a", "b", "c"});
  source->defineProperty(WString("s"), StringValue::Tag)->setValue(StringValue("text"));
  Bytes const bytes = bytesOf(*source);
  long const properties = Property::m_leakDetector.getLiveCount();
  std::vector<char const *> const helds[] = {
      {"a", "b", "c", "s"}, {"a", "b", "c", "s", "t", "u"}, {"a"}, {}, {"a", "x", "c", "s", "t"}, {"s", "c", "b", "a"}};
  for (auto const &names : helds)
    for (bool doubles : {false, true}) {
      Ptr<DataRecord> record = recordOf(names, doubles);
      Value const *kept = names.empty() ? nullptr : record->getProperty(0)->getValue();
      for (int again = 0; again < 2; ++again) {
        ChunkedInputStream in(bytes, 64);
        record->deserialize(in);
        expectSameProperties(*record, *source);
        EXPECT_EQ(record->findProperty(WString("s"))->getValue()->getClassTag(), StringValue::Tag);
      }
      // Same name and class in the same place: read into the value it held.
      if (!doubles && !names.empty() && std::string(names[0]) == "a") {
        EXPECT_EQ(record->getProperty(0)->getValue(), kept) << names.size();
      }
    }
  EXPECT_EQ(Property::m_leakDetector.getLiveCount(), properties);
}

TEST(DataRecordTest, AFailureInARecordReadAgainKeepsItsNamesAndLeaksNothing) {
  long const properties = Property::m_leakDetector.getLiveCount();
  Ptr<DataRecord> record = recordOf({"a", "b", "c", "d"});
  Bytes const others = bytesOf(*recordOf({"a", "b", "q", "r"}));
  Bytes const fewer = bytesOf(*recordOf({"a", "b"}));
  for (Bytes const &bytes : {others, fewer})
    for (std::size_t cut = 0; cut < bytes.size(); ++cut) {
      ChunkedInputStream in(Bytes(bytes.begin(), bytes.begin() + static_cast<long>(cut)), 7);
      EXPECT_THROW(record->deserialize(in), Exception) << cut;
      ASSERT_EQ(record->getPropertyCount(), 4u) << cut;
      char const *const names[] = {"a", "b", "c", "d"};
      for (unsigned int i = 0; i < 4; ++i) EXPECT_EQ(record->getProperty(i)->getName(), WString(names[i])) << cut;
      EXPECT_EQ(record->findProperty(WString("d"))->getValue()->getInteger(), 3) << cut;
    }
  record.reset();
  EXPECT_EQ(Property::m_leakDetector.getLiveCount(), properties);
}

TEST(DataRecordTest, RecordsReadOnSeveralThreadsAtOnceComeOutWhole) {
  Ptr<DataRecord> const a = recordOf({"a", "b", "c", "d", "e", "f", "g", "h", "i", "j"});
  Ptr<DataRecord> const b = recordOf({"a", "b", "x", "y"}, true);
  Bytes const bytesA = bytesOf(*a), bytesB = bytesOf(*b);
  std::vector<std::thread> threads;
  std::atomic<int> wrong{0};
  for (int t = 0; t < 4; ++t)
    threads.emplace_back([&, t] {
      Ptr<DataRecord> record(DataRecord::newInstance());
      for (int k = 0; k < 300; ++k) {
        bool const first = (k + t) % 3 != 0;
        MemoryInputStream in((first ? bytesA : bytesB).data(),
                             static_cast<unsigned int>((first ? bytesA : bytesB).size()), 2);
        record->deserialize(in);
        DataRecord const &want = first ? *a : *b;
        if (record->getPropertyCount() != want.getPropertyCount()) ++wrong;
        for (unsigned int i = 0; i < want.getPropertyCount() && i < record->getPropertyCount(); ++i)
          if (record->getProperty(i)->getName() != want.getProperty(i)->getName() ||
              record->getProperty(i)->getValue()->compare(*want.getProperty(i)->getValue()) != 0)
            ++wrong;
      }
    });
  for (std::thread &thread : threads) thread.join();
  EXPECT_EQ(wrong.load(), 0);
}

TEST(DataRecordTest, RefusesHostileStreamsLeavingTheRecordAsItWasAndLeakingNothing) {
  Bytes const intName = frame("Marlix.value.IntegerValue");
  struct Case {
    Bytes bytes;
    std::string message;
  } const cases[] = {
      {golden("08 00"), "Unsupported DataRecord version 2"},
      {golden("04 FC"), "Invalid property count -1 in DataRecord"},
      {golden("04 03 FF FF FF 7F"), "EOF reading int header"},  // a huge count costs nothing
      {golden("04 04 00") + intName + golden("1C"), "DataRecord property 0 has no name"},
      {golden("04 04 04") + intName + golden("1C"), "DataRecord property 0 has no name"},
      {golden("04 08 08 6E") + intName + golden("1C 08 6E") + intName + golden("1C"),
       "DataRecord property 1 repeats the name n"},
      {golden("04 04 08 6E 00"), "DataRecord property 0 has no class name"},
      {golden("04 04 08 6E 03 00 10 00 00"), "Invalid class name length 4096 in DataRecord property 0"},
      {golden("04 04 08 6E 0C 61 00"), "DataRecord property 0 has a class name with a zero byte"},
      {golden("04 04 08 6E") + frame("Marlix.nothing.Here") + golden("1C"),
       "Class Marlix.nothing.Here not registered."},
      {golden("04 04 08 6E") + frame("Marlix.data.PropertyCollection"),
       "Class Marlix.data.PropertyCollection is not a value"},
  };
  long const properties = Property::m_leakDetector.getLiveCount();
  Ptr<DataRecord> record = smallRecord();
  for (Case const &c : cases) {
    ChunkedInputStream in(c.bytes, 3);
    EXPECT_QUARN_THROW(record->deserialize(in), c.message + kAnnotation) << hexOf(c.bytes);
    expectSameProperties(*record, *smallRecord());
  }
  for (std::size_t cut = 0; cut < kSmall.size(); ++cut) {
    ChunkedInputStream in(Bytes(kSmall.begin(), kSmall.begin() + static_cast<long>(cut)), 2);
    EXPECT_THROW(record->deserialize(in), Exception) << cut;
    expectSameProperties(*record, *smallRecord());
  }
  record.reset();
  EXPECT_EQ(Property::m_leakDetector.getLiveCount(), properties);
}

}  // namespace
}  // namespace quarn::test
