// ValueArrayValueTest.cpp - owned elements of any class, their named payload and hostile streams
#include <gtest/gtest.h>
#include <quarn/core/Class.h>
#include <quarn/core/Object.h>
#include <quarn/value/BitsetValue.h>
#include <quarn/value/BooleanValue.h>
#include <quarn/value/ByteArrayValue.h>
#include <quarn/value/DoubleArrayValue.h>
#include <quarn/value/DoubleValue.h>
#include <quarn/value/FlexArrayValue.h>
#include <quarn/value/FlexValue.h>
#include <quarn/value/IntegerArrayValue.h>
#include <quarn/value/IntegerValue.h>
#include <quarn/value/MissingValue.h>
#include <quarn/value/NullArrayValue.h>
#include <quarn/value/NullValue.h>
#include <quarn/value/StringArrayValue.h>
#include <quarn/value/StringValue.h>
#include <quarn/value/ValueArrayValue.h>
#include <quarnCore/LeakDetector.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "support/ExpectThrow.h"
#include "value/BitsetContracts.h"
#include "value/GoldenBytes.h"
#include "value/ValueArrayContracts.h"

namespace quarn::test {
namespace {

constexpr char kAnnotation[] = "\nValueArrayValue::deserialize: Tessary exception caught";

/// A class that can be made by name but is no value.
class NotAValue final : public Object {
 public:
  static ClassTagDecl const Tag;
  static ClassImp<NotAValue> m_class;
  static int live, made;
  static NotAValue *newInstance() { return ++made, ++live, new NotAValue(); }
  ClassTag const &getClassTag() const override { return Tag; }
  void deleteInstance() override { --live, delete this; }

 private:
  ~NotAValue() override = default;
};
ClassTagDecl const NotAValue::Tag("Marlix.test.NotAValue");
ClassImp<NotAValue> NotAValue::m_class;
int NotAValue::live = 0, NotAValue::made = 0;

/// The framing of one element's class name.
Bytes nameFrame(std::string const &name) {
  Bytes length = serialise(IntegerValue(static_cast<int>(name.size()) + 1));
  return length + bytesOfText(name);
}

/// `levels` value arrays inside one another around one IntegerValue.
ValueArrayValue nested(int levels) {
  ValueArrayValue v = valuesOf(IntegerValue(1));
  for (int k = 1; k < levels; ++k) v = valuesOf(v);
  return v;
}

/// Appends the last contract sample of each class.
template <template <class> class Contract, class... A>
void appendLastSamples(ValueArrayValue &all) {
  (all.appendValue(Contract<A>::samples().back()), ...);
}

/// One value of every class of the library.
ValueArrayValue everyClass() {
  ValueArrayValue all =
      valuesOf(IntegerValue(7), DoubleValue(0.5), BooleanValue(true), StringValue("s"), NullValue(), MissingValue(),
               flexesOf({FlexValue(1), FlexValue("n")}), nullsOf(2), valuesOf(IntegerValue(1), StringValue("in")));
  for (FlexValue const &f : FlexContract::samples()) all.appendValue(f);
  appendLastSamples<ArrayContract, IntegerArrayValue, DoubleArrayValue, StringArrayValue, BooleanArrayValue,
                    ByteArrayValue, IntegerFingerprintValue, DoubleFingerprintValue, StringFingerprintValue,
                    BitsetArrayValue, BitFingerprintArrayValue>(all);
  appendLastSamples<BitsetContract, BitsetValue2D, BitsetValue3D>(all);
  all.appendValue(bitsetOf(100, {3, 64, 99}));
  all.appendValue(bitsetOf<BitFingerprintValue>(7, {0, 6}));
  return all;
}

/// A record as pipelines pass them: scalars, a text, typed arrays and a bitset.
ValueArrayValue mixedRecord() {
  return valuesOf(IntegerValue(40000), DoubleValue(0.5), StringValue("h\xE9"), BooleanValue(true),
                  arrayOf<IntegerArrayValue>({1, -129}), arrayOf<DoubleArrayValue>({1.0, 0.0}), bitsetOf(33, {0, 32}),
                  valuesOf(IntegerValue(7)));
}

/// Collects what is written; not a memory stream, so writers take their general path.
class CollectingStream final : public iByteOutputStream {
 public:
  void write(void const *data, int count) override {
    auto const *p = static_cast<unsigned char const *>(data);
    if (count > 0) bytes.insert(bytes.end(), p, p + count);
  }
  Bytes bytes;
};

/// `bytes` read into `target` from a memory stream.
void readFromMemory(ValueArrayValue &target, Bytes const &bytes) {
  MemoryInputStream in(bytes.data(), static_cast<unsigned int>(bytes.size()));
  target.deserialize(in);
  EXPECT_EQ(in.getPosition(), bytes.size());
}

/// Instances alive in the process once every pool is emptied.
long liveInstances() {
  Class::clearAllClassPools();
  return LeakDetector::getTotalLiveCount();
}

TEST(ValueArrayValueTest, EachElementIsFramedByItsClassNameThenItsPayload) {
  EXPECT_EQ(hexOf(serialise(valuesOf(IntegerValue(7)))),
            "04 01 1A " + hexOf(bytesOfText(IntegerValue::className)) + " 1C");
  EXPECT_EQ(hexOf(serialise(ValueArrayValue())), "00");
  Bytes const two =
      golden("08") + nameFrame(StringValue::className) + golden("08 41") + nameFrame(NullValue::className);
  EXPECT_EQ(serialise(valuesOf(StringValue("A"), NullValue())), two);
  readEach<ValueArrayValue>(two, 2, [](ValueArrayValue const &read) {
    ASSERT_EQ(read.getSize(), 2u);
    EXPECT_EQ(read[0].getClassTag(), StringValue::Tag);
    EXPECT_EQ(read[1].getClassTag(), NullValue::Tag);
  });
}

TEST(ValueArrayValueTest, AMixedRecordKeepsItsBytesOnEveryPath) {
  Bytes const golden_ =
      golden("20") + nameFrame(IntegerValue::className) + golden("03 40 9C 00 00") + nameFrame(DoubleValue::className) +
      golden("02 00 00 00 00 00 00 E0 3F") + nameFrame(StringValue::className) + golden("0C 68 C3 A9") +
      nameFrame(BooleanValue::className) + golden("01") + nameFrame(IntegerArrayValue::className) +
      golden("08 04 02 7F FF") + nameFrame(DoubleArrayValue::className) + golden("08 01 00") +
      nameFrame(BitsetValue::className) + golden("01 21 08 04 04") + nameFrame(ValueArrayValue::className) +
      golden("04") + nameFrame(IntegerValue::className) + golden("1C");
  ValueArrayValue const record = mixedRecord();
  EXPECT_EQ(hexOf(serialise(record)), hexOf(golden_));
  CollectingStream general;  // the general path writes the same bytes
  record.serialize(general);
  EXPECT_EQ(hexOf(general.bytes), hexOf(golden_));
  readEach<ValueArrayValue>(golden_, 2, [&](ValueArrayValue const &read) { EXPECT_EQ(read.compare(record), 0); });
  // A name in another letter case is the same class, and interns nothing.
  int const tags = ClassTag::getNumClassTags();
  Bytes const upper = golden("04") + nameFrame("MARLIX.VALUE.INTEGERVALUE") + golden("1C");
  readEach<ValueArrayValue>(upper, 2,
                            [](ValueArrayValue const &read) { EXPECT_EQ(read.compare(valuesOf(IntegerValue(7))), 0); });
  EXPECT_EQ(ClassTag::getNumClassTags(), tags);
}

TEST(ValueArrayValueTest, OneValueOfEveryClassRoundTripsAndEveryTruncationFailsHandingBackWhatItMade) {
  ValueArrayValue const all = everyClass();
  ValueArrayValue const before = valuesOf(StringValue("kept"));
  long const baseline = liveInstances();
  for (int version : {1, 2}) {
    Bytes const bytes = serialise(all, version);
    readEach<ValueArrayValue>(bytes, version, [&](ValueArrayValue const &read) {
      ASSERT_EQ(read.getSize(), all.getSize());
      for (unsigned int i = 0; i < all.getSize(); ++i)
        EXPECT_EQ(read[i].compare(all[i]), 0) << all[i].getClassTag().getName();
    });
    for (std::size_t cut = 0; cut < bytes.size(); ++cut) {
      {
        ValueArrayValue target(before);
        ChunkedInputStream in(Bytes(bytes.begin(), bytes.begin() + static_cast<long>(cut)), 5, version);
        try {
          target.deserialize(in);
          ADD_FAILURE() << "no failure at cut " << cut;
        } catch (Exception const &e) {
          EXPECT_EQ(std::string(e.what()).rfind("EOF reading", 0), 0u) << e.what();
        }
        EXPECT_EQ(target.compare(before), 0) << "cut " << cut;
      }
      ASSERT_EQ(liveInstances(), baseline) << "version " << version << ", cut " << cut;
    }
  }
}

TEST(ValueArrayValueTest, BadClassNamesFailClearlyAtEachNestingLevelAndLeaveNothingBehind) {
  Bytes const seven = nameFrame(IntegerValue::className) + golden("1C");
  // The last row fails inside a nested array: annotated at each level.
  // clang-format off
  struct Case { Bytes bytes; std::string message; } const cases[] = {
      {golden("04") + nameFrame("Marlix.value.NoSuchValue"), "Class Marlix.value.NoSuchValue not registered."},
      {golden("04") + nameFrame("Marlix.test.NotAValue"), "Class Marlix.test.NotAValue is not a value"},
      {golden("04") + nameFrame("Marlix.obj.CountedObject"), "Class Marlix.obj.CountedObject is not a value"},
      {golden("04") + nameFrame("Marlix.interface.iNode"), "Class Marlix.interface.iNode is not a value"},
      {golden("04") + nameFrame("Marlix.value.Value"),
       "It is invalid to create an interface instance: Marlix.value.Value"},
      {golden("08") + seven + nameFrame("Marlix.value.ArrayValue"),
       "It is invalid to create an interface instance: Marlix.value.ArrayValue"},
      {golden("04 FC"), "Invalid class name length -1 in ValueArrayValue element 0"},
      {golden("04 03 FF FF FF 7F"), "Invalid class name length 2147483647 in ValueArrayValue element 0"},
      {golden("08") + seven + golden("02 02 04"), "Invalid class name length 1026 in ValueArrayValue element 1"},
      {golden("04 00"), "ValueArrayValue element 0 has no class name"},
      {golden("08") + seven + golden("04"), "ValueArrayValue element 1 has no class name"},
      {golden("04 0C 41 00"), "ValueArrayValue element 0 has a class name with a zero byte"},
      {golden("04") + nameFrame(ValueArrayValue::className) + golden("04") + nameFrame("Marlix.x.Missing"),
       std::string("Class Marlix.x.Missing not registered.") + kAnnotation},
  };
  // clang-format on
  ValueArrayValue const before = valuesOf(IntegerValue(3));
  long const baseline = liveInstances();
  int const tags = ClassTag::getNumClassTags();
  for (auto const &c : cases) {
    {
      ValueArrayValue target(before);
      ChunkedInputStream in(c.bytes, 8);
      EXPECT_QUARN_THROW(target.deserialize(in), c.message + kAnnotation);
      EXPECT_EQ(target.compare(before), 0);
      MemoryInputStream memory(c.bytes.data(), static_cast<unsigned int>(c.bytes.size()));
      EXPECT_QUARN_THROW(target.deserialize(memory), c.message + kAnnotation);
      EXPECT_EQ(target.compare(before), 0);
    }
    EXPECT_EQ(liveInstances(), baseline) << c.message;
  }
  EXPECT_EQ(NotAValue::made, 0);  // a bound class that makes no values is refused before one is made
  EXPECT_EQ(ClassTag::getNumClassTags(), tags);  // unknown names were not interned
  ValueArrayValue target;  // a name that could escape the classes folder is refused
  ChunkedInputStream in(golden("04") + nameFrame("../x"), 8);
  try {
    target.deserialize(in);
    ADD_FAILURE() << "no failure";
  } catch (Exception const &e) {
    EXPECT_EQ(std::string(e.what()).rfind("Invalid class name '../x'", 0), 0u) << e.what();
  }
  EXPECT_EQ(target.getSize(), 0u);
}

TEST(ValueArrayValueTest, ArraysNestSixtyFourDeepAndNoDeeper) {
  ValueArrayValue const deepest = nested(ValueArrayValue::kMaxNesting);
  readEach<ValueArrayValue>(serialise(deepest), 2,
                            [&](ValueArrayValue const &read) { EXPECT_EQ(read.compare(deepest), 0); });

  std::string expected = "ValueArrayValue nesting deeper than 64 levels";
  for (int k = 0; k <= ValueArrayValue::kMaxNesting; ++k) expected += kAnnotation;
  ValueArrayValue target;
  ChunkedInputStream tooDeep(serialise(nested(ValueArrayValue::kMaxNesting + 1)), 1024);
  EXPECT_QUARN_THROW(target.deserialize(tooDeep), expected);

  // A hostile stream nests without end: it fails at the limit, not at the end of the stack.
  Bytes const level = golden("04") + nameFrame(ValueArrayValue::className);
  Bytes endless;
  for (int k = 0; k < 10000; ++k) endless.insert(endless.end(), level.begin(), level.end());
  ChunkedInputStream hostile(endless, 1024);
  EXPECT_QUARN_THROW(target.deserialize(hostile), expected);
  EXPECT_EQ(target.getSize(), 0u);

  // The depth is counted per read: a full-depth array still reads afterwards.
  ChunkedInputStream again(serialise(deepest), 1024);
  target.deserialize(again);
  EXPECT_EQ(target.compare(deepest), 0);
}

TEST(ValueArrayValueTest, ACountTheStreamCannotHoldFailsAtItsEndHandingBackTheElementsMade) {
  int const outstanding = IntegerValue::m_class.getOutstanding();
  ValueArrayValue target = valuesOf(StringValue("kept"));
  ChunkedInputStream in(golden("03 FF FF FF 7F") + nameFrame(IntegerValue::className) + golden("1C"), 3);
  EXPECT_QUARN_THROW(target.deserialize(in), std::string("EOF reading int header") + kAnnotation);
  EXPECT_EQ(IntegerValue::m_class.getOutstanding(), outstanding);
  EXPECT_EQ(textOf(target[0]), u"kept");
  ChunkedInputStream negative(golden("FC"), 3);
  EXPECT_QUARN_THROW(target.deserialize(negative), std::string("Invalid array element count -1") + kAnnotation);
}

TEST(ValueArrayValueTest, TheArrayOwnsItsElementsAndHandsThemBack) {
  auto &pool = IntegerValue::m_class;
  int const outstanding = pool.getOutstanding();
  {
    ValueArrayValue a;
    IntegerValue seven(7);
    a.appendValue(seven);  // a copy
    EXPECT_NE(&a[0], &seven);
    IntegerValue *given = IntegerValue::newInstance();
    a.appendValue(given);  // the object itself
    EXPECT_EQ(&a.getIthValue(1), given);
    EXPECT_EQ(pool.getOutstanding(), outstanding + 2);
    ObjPtr<IntegerValue> owned(IntegerValue::newInstance());
    IntegerValue *const passed = owned.get();
    a.appendValue(ObjPtr<Value>(std::move(owned)));  // ownership passes, no copy
    EXPECT_FALSE(owned);
    EXPECT_EQ(&a.getIthValue(2), passed);
    a.remove(2);
    EXPECT_EQ(pool.getOutstanding(), outstanding + 2);
    ValueArrayValue copy(a);
    EXPECT_NE(&copy[0], &a[0]);
    EXPECT_EQ(pool.getOutstanding(), outstanding + 4);
    a.remove(0);
    a.setIthValue(0, StringValue("s"));
    EXPECT_EQ(pool.getOutstanding(), outstanding + 2);
    a.resize(3);
    EXPECT_EQ(a[2].getClassTag(), NullValue::Tag);
    a.insertValue(0, IntegerValue(5));
    copy = a;
    EXPECT_EQ(pool.getOutstanding(), outstanding + 2);
    EXPECT_QUARN_THROW(a.appendValue(static_cast<Value *>(nullptr)), "ValueArrayValue cannot hold a null element");
    EXPECT_QUARN_THROW_AS(
        a.insertValue(5, IntegerValue(0)), InvalidIndexException,
        "Invalid index 5 (last valid index 3)\nValueArrayValue::insertValue: Tessary exception caught");
    EXPECT_QUARN_THROW_AS(a.remove(4), InvalidIndexException, "Invalid index 4 (last valid index 3)");
  }
  EXPECT_EQ(pool.getOutstanding(), outstanding);

  ValueArrayValue *pooled = ValueArrayValue::newInstance();
  pooled->appendValue(IntegerValue(1));
  pooled->deleteInstance();
  EXPECT_EQ(pool.getOutstanding(), outstanding);
}

TEST(ValueArrayValueTest, ReadingIntoAnArrayThatHeldOtherElementsHandsThemBackAndKeepsItsBuffer) {
  Bytes const bytes = serialise(mixedRecord());
  ValueArrayValue const record = mixedRecord();
  // clang-format off
  ValueArrayValue const befores[] = {
      ValueArrayValue(), valuesOf(StringValue("one")),
      valuesOf(nullsOf(2), FlexValue(1), StringValue("a"), BooleanValue(false), IntegerValue(1), DoubleValue(2),
               MissingValue(), NullValue(), StringValue("b"), IntegerValue(3)),
  };
  // clang-format on
  long const baseline = liveInstances();
  for (ValueArrayValue const &before : befores) {
    {
      ValueArrayValue target(before);
      readFromMemory(target, bytes);
      EXPECT_EQ(target.compare(record), 0);
      readEach<ValueArrayValue>(bytes, 2, [&](ValueArrayValue const &read) { EXPECT_EQ(read.compare(record), 0); });
      // A failure half-way hands back what it made and keeps what the array held.
      ValueArrayValue kept(before);
      Bytes const cut(bytes.begin(), bytes.end() - 1);  // the nested array's integer is missing
      MemoryInputStream in(cut.data(), static_cast<unsigned int>(cut.size()));
      EXPECT_QUARN_THROW(kept.deserialize(in), std::string("EOF reading int header") + kAnnotation + kAnnotation);
      EXPECT_EQ(kept.compare(before), 0);
    }
    EXPECT_EQ(liveInstances(), baseline) << before.getSize();
  }
  // A pooled array comes back empty with its buffer, and reads into that buffer.
  ValueArrayValue *pooled = ValueArrayValue::newInstance();
  readFromMemory(*pooled, bytes);
  Value *const *buffer = pooled->getElements().getBuffer();
  pooled->deleteInstance();
  ValueArrayValue *again = ValueArrayValue::newInstance();
  ASSERT_EQ(again, pooled);
  readFromMemory(*again, bytes);
  EXPECT_EQ(again->getElements().getBuffer(), buffer);
  EXPECT_EQ(again->compare(record), 0);
  again->deleteInstance();
}

TEST(ValueArrayValueTest, ThreadsReadRecordsConcurrentlyAndRefuseUnknownNamesAlike) {
  Bytes const mixed = serialise(mixedRecord());
  Bytes const every = serialise(everyClass());
  Bytes const unknown = golden("04") + nameFrame("Marlix.value.NoSuchThreadValue");
  ValueArrayValue const mixedValue = mixedRecord(), everyValue = everyClass();
  int const tags = ClassTag::getNumClassTags();
  std::atomic<int> failures{0};
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&, t] {
      for (int k = 0; k < 200; ++k) {
        ObjPtr<ValueArrayValue> read(ValueArrayValue::newInstance());
        bool const useEvery = (k + t) % 3 == 0;
        Bytes const &bytes = useEvery ? every : mixed;
        MemoryInputStream in(bytes.data(), static_cast<unsigned int>(bytes.size()));
        read->deserialize(in);
        if (read->compare(useEvery ? everyValue : mixedValue) != 0) ++failures;
        if (k % 50 == t) {
          MemoryInputStream bad(unknown.data(), static_cast<unsigned int>(unknown.size()));
          try {
            read->deserialize(bad);
            ++failures;
          } catch (Exception const &e) {
            if (std::string(e.what()).rfind("Class Marlix.value.NoSuchThreadValue not registered.", 0) != 0) ++failures;
          }
        }
      }
    });
  }
  for (std::thread &t : threads) t.join();
  EXPECT_EQ(failures.load(), 0);
  EXPECT_EQ(ClassTag::getNumClassTags(), tags);
}

TEST(ValueArrayValueTest, HashAndOrderFollowTheElements) {
  EXPECT_EQ(ValueArrayValue().hash(), 0u);
  EXPECT_EQ(valuesOf(IntegerValue(1), IntegerValue(2)).hash(), 33u);
  // clang-format off
  struct Case { ValueArrayValue a, b; int expected; } const cases[] = {
      {valuesOf(IntegerValue(1), IntegerValue(2)), valuesOf(IntegerValue(9)), 1},
      {valuesOf(IntegerValue(9)), valuesOf(IntegerValue(1), IntegerValue(2)), -1},
      {valuesOf(IntegerValue(1), IntegerValue(2)), valuesOf(IntegerValue(1), IntegerValue(3)), -1},
      {valuesOf(IntegerValue(1)), valuesOf(IntegerValue(1)), 0},
      {valuesOf(IntegerValue(1)), valuesOf(StringValue("1")), 'S' - 'I'},
  };
  // clang-format on
  for (auto const &c : cases) EXPECT_EQ(c.a.compare(c.b), c.expected) << hexOf(serialise(c.a));
  EXPECT_EQ(ValueArrayValue().compare(NullArrayValue()), 'N' - 'V');
}

TEST(ValueArrayValueTest, ConvertsElementWiseWithTypedArraysAndScalarsByEachElementsOwnRules) {
  Make const before = make(valuesOf(IntegerValue(9)));
  Make const mixed = make(valuesOf(IntegerValue(1), StringValue("2"), DoubleValue(3.5)));
  // clang-format off
  expectConversions({
      {make(arrayOf<IntegerArrayValue>({1, 2})), before, make(valuesOf(IntegerValue(1), IntegerValue(2)))},
      {make(arrayOf<ByteArrayValue>({200})), before, make(valuesOf(IntegerValue(200)))},
      {make(flexesOf({FlexValue(1.5f)})), before, make(valuesOf(FlexValue(1.5f)))},
      {make(nullsOf(3)), before, make(valuesOf(NullValue(), NullValue(), NullValue()))},
      {make(StringValue("x")), before, make(valuesOf(StringValue("x")))},
      {make(MissingValue()), before, make(ValueArrayValue())},
      {mixed, make(IntegerArrayValue()), make(arrayOf<IntegerArrayValue>({1, 2, 3}))},
      {mixed, make(DoubleArrayValue()), make(arrayOf<DoubleArrayValue>({1.0, 2.0, 3.5}))},
      {mixed, make(IntegerValue()), make(IntegerValue(1))}, {mixed, make(FlexValue()), make(FlexValue(1))},
      {mixed, make(FlexArrayValue()), make(flexesOf({FlexValue(1), FlexValue(u16(u"2")), FlexValue(3.5)}))},
      {mixed, make(NullArrayValue()), make(nullsOf(3))},
  });
  // clang-format on
  FlexArrayValue flexes = flexesOf({FlexValue(1)});
  IntegerArrayValue asInts = arrayOf<IntegerArrayValue>({1, 2, 3});
  FlexArrayValue kept = flexes;
  EXPECT_QUARN_THROW(valuesOf(IntegerValue(1), BitsetValue()).assignTo(flexes),
                     "Could not convert from Marlix.value.BitsetValue to Marlix.value.FlexValue");
  EXPECT_EQ(flexes.compare(kept), 0);
  EXPECT_QUARN_THROW(valuesOf(StringValue("x")).assignTo(asInts), "Cannot convert 'x' to an integer");
  EXPECT_EQ(asInts.getSize(), 3u);
  // single elements convert by their own class rules
  ValueArrayValue a = valuesOf(IntegerValue(12), StringValue("34"), DoubleValue(5.5));
  WString text;
  a.getIthString(0, text);
  EXPECT_EQ(str(text), u"12");
  EXPECT_EQ(a.getIthInteger(1), 34);
  EXPECT_EQ(a.getIthDouble(2), 5.5);
  ObjPtr<Value> item;
  a.getIthValue(1, item);
  EXPECT_EQ(item->getClassTag(), StringValue::Tag);
  EXPECT_NE(item.get(), &a[1]);
  IntegerValue target;
  a.getIthValue(1, target);
  EXPECT_EQ(target.getInteger(), 34);
  EXPECT_QUARN_THROW(valuesOf(StringValue("x")).getIthInteger(0), "Cannot convert 'x' to an integer");
  EXPECT_QUARN_THROW(a.appendValueFromXMLText(u16(u"1"), WString()),
                     "It is invalid to create an interface instance: Marlix.value.Value\n"
                     "ArrayValue::appendValueFromXMLText: Tessary exception caught");
}

}  // namespace
}  // namespace quarn::test
