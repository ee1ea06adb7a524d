// ValueContractTest.cpp - the promises every value class keeps, run over each class
//
// A class joins by adding a Contract<T> specialisation (its sample values and
// which promises it makes) and its name to ValueClasses.
#include <gtest/gtest.h>
#include <quarn/core/Object.h>
#include <quarn/core/Ptr.h>
#include <quarn/value/BooleanValue.h>
#include <quarn/value/DateTimeValue.h>
#include <quarn/value/DoubleValue.h>
#include <quarn/value/IntegerValue.h>
#include <quarn/value/MissingValue.h>
#include <quarn/value/NullValue.h>
#include <quarn/value/StringValue.h>
#include <quarnCore/Exception.h>

#include <climits>
#include <cstring>
#include <limits>
#include <string>
#include <type_traits>
#include <vector>

#include "value/ArrayContracts.h"
#include "value/BitsetContracts.h"
#include "value/ValueArrayContracts.h"
#include "value/ValueTesting.h"

namespace quarn::test {
namespace {

int sign(int x) { return (x > 0) - (x < 0); }

template <class T>
struct Contract;

// Each Contract names the class's array class, lists sample values, and says
// whether a value survives a byte stream whole and whether its XML text
// promises to read back to an equal value (by default: both).
struct ScalarContract {
  static constexpr bool streamKeepsAll = true;
  static bool xmlRoundTrips(Value const &) { return true; }
};

template <>
struct Contract<IntegerValue> : ScalarContract {
  static constexpr char const arrayClass[] = "Marlix.value.IntegerArrayValue";
  static std::vector<IntegerValue> samples() {
    return {IntegerValue(0),    IntegerValue(7),     IntegerValue(-16),     IntegerValue(16),
            IntegerValue(-129), IntegerValue(40000), IntegerValue(INT_MIN), IntegerValue(INT_MAX)};
  }
};

template <>
struct Contract<DoubleValue> : ScalarContract {
  static constexpr char const arrayClass[] = "Marlix.value.DoubleArrayValue";
  // No NaN (it equals nothing) and no -0.0 (equal to 0.0 but hashed apart):
  // DoubleValueTest covers both.
  static std::vector<DoubleValue> samples() {
    double const inf = std::numeric_limits<double>::infinity();
    return {DoubleValue(0.0),   DoubleValue(1.0),    DoubleValue(0.5), DoubleValue(-2.75), DoubleValue(0.1),
            DoubleValue(1e300), DoubleValue(5e-324), DoubleValue(inf), DoubleValue(-inf),  DoubleValue(-1e-7)};
  }
};

template <>
struct Contract<BooleanValue> : ScalarContract {
  static constexpr char const arrayClass[] = "Marlix.value.BooleanArrayValue";
  static std::vector<BooleanValue> samples() { return {BooleanValue(false), BooleanValue(true)}; }
};

template <>
struct Contract<StringValue> : ScalarContract {
  static constexpr char const arrayClass[] = "Marlix.value.StringArrayValue";
  static std::vector<StringValue> samples() {
    std::vector<StringValue> s(8);
    s[1] = u16(u"");
    s[2] = u16(u"a");
    s[3] = u16(u"h\u00E9llo \u20AC");
    s[4] = u16(u"\U0001F600\uFFFF\u0080\u07FF\u0800");
    s[5] = u16(u"x\"&<>'y");
    s[6] = u16(std::u16string(300, u'\u00E9'));
    s[7] = u16(u"line\nbreak\ttab");
    return s;  // s[0] stays null
  }
  // Entities written by getXMLText are not undone when read back.
  static bool xmlRoundTrips(StringValue const &v) {
    for (char16_t c : str(v.getString()))
      if (c == u'&' || c == u'"' || c == u'\'' || c == u'<' || c == u'>') return false;
    return true;
  }
};

template <>
struct Contract<NullValue> : ScalarContract {
  static constexpr char const arrayClass[] = "Marlix.value.NullArrayValue";
  static std::vector<NullValue> samples() { return std::vector<NullValue>(1); }
  static bool xmlRoundTrips(NullValue const &) { return false; }
};

template <>
struct Contract<MissingValue> {
  static constexpr char const arrayClass[] = "Marlix.value.NullArrayValue";
  static std::vector<MissingValue> samples() {
    std::vector<MissingValue> s(4);
    s[1].setMissingString(u16(u""));
    s[2].setMissingString(u16(u"not measured"));
    s[3].setMissingString(u16(u"out of range"));
    return s;
  }
  // The missing string is not part of the payload.
  static constexpr bool streamKeepsAll = false;
  static bool xmlRoundTrips(MissingValue const &) { return false; }
};

template <>
struct Contract<DateTimeValue> {
  static constexpr char const arrayClass[] = "Marlix.value.ValueArrayValue";
  static constexpr bool streamKeepsAll = true;
  static constexpr bool xmlExtraNamesType = true;  // the extra text is the format
  // compare() reads the stored julians, which text read back leaves invalid
  // (DateTimeTextTest reads XML text back).
  static bool xmlRoundTrips(DateTimeValue const &) { return false; }
  static std::vector<DateTimeValue> samples() {
    std::vector<DateTimeValue> s(6);
    s[1].set(2000, 1, 1, 12, 0, 0, 0);
    s[2].set(1582, 10, 15, 0, 0, 0, 999);
    s[3].setJulian(0.25);
    s[4].set(2024, 2, 29, 23, 59, 59, 1);
    s[4].setTimeZone(BaseString<unsigned short>("CET"), false);
    s[4].setDateTimeFormat(u16(u"%Y-%m-%d %Z").getBuffer());
    s[4].getText();
    s[5].setTime(8, 0, 0, -1);
    for (std::size_t i = 1; i < s.size(); ++i) s[i].getJulian();
    return s;  // s[0] stays cleared
  }
};

// The flexible value (samples in ValueArrayContracts.h).
template <>
struct Contract<FlexValue> : FlexContract {};

// The typed arrays and fingerprints (samples in ArrayContracts.h).
template <class T>
  requires std::is_base_of_v<ArrayValue, T>
struct Contract<T> : ArrayContract<T> {};

// The bitsets and bit fingerprints (samples in BitsetContracts.h).
template <class T>
  requires std::is_base_of_v<BitsetValue, T>
struct Contract<T> : BitsetContract<T> {};

/// The item class a value reports: its own class, unless its contract names another.
template <class T>
ClassTag const &expectedItemType() {
  if constexpr (requires { Contract<T>::itemType(); })
    return Contract<T>::itemType();
  else
    return T::Tag;
}

template <class T>
class ValueContractTest : public ::testing::Test {
 protected:
  std::vector<T> samples = Contract<T>::samples();
};

/// A list of value classes, as GoogleTest types, that can count its members with a property.
template <class... T>
struct ClassList {
  using Types = ::testing::Types<T...>;
  static constexpr int size = sizeof...(T);
  template <template <class> class Property>
  static constexpr int count = (0 + ... + (Property<T>::value ? 1 : 0));
};
template <class T>
struct DumpsAsList : std::bool_constant<requires { Contract<T>::dumpsAsList; }> {};
template <class T>
struct IsPooled : std::bool_constant<requires { T::m_class.getOutstanding(); }> {};

using ValueClasses = ClassList<IntegerValue, DoubleValue, BooleanValue, StringValue, NullValue, MissingValue,
                               IntegerArrayValue, DoubleArrayValue, StringArrayValue, BooleanArrayValue, ByteArrayValue,
                               IntegerFingerprintValue, DoubleFingerprintValue, StringFingerprintValue, BitsetValue,
                               BitsetValue2D, BitsetValue3D, BitFingerprintValue, BitsetArrayValue,
                               BitFingerprintArrayValue, FlexValue, FlexArrayValue, ValueArrayValue, NullArrayValue, DateTimeValue>;
TYPED_TEST_SUITE(ValueContractTest, ValueClasses::Types);

// The parts of the contract that hold for some classes only run over exactly
// those classes (rather than skipping the others).
// Arrays dump every element at an indentation (ArrayValueTest); the others dump their text.
using TextDumpClasses = ClassList<IntegerValue, DoubleValue, BooleanValue, StringValue, NullValue, MissingValue,
                                  BitsetValue, BitsetValue2D, BitsetValue3D, BitFingerprintValue, FlexValue,
                                  DateTimeValue>;
static_assert(TextDumpClasses::count<DumpsAsList> == 0 &&
                  TextDumpClasses::size + ValueClasses::count<DumpsAsList> == ValueClasses::size,
              "every value class that does not dump as a list is in TextDumpClasses");
// BitsetValue3D is not pooled: its instances are made with new and destroyed.
using PooledClasses = ClassList<IntegerValue, DoubleValue, BooleanValue, StringValue, NullValue, MissingValue,
                                IntegerArrayValue, DoubleArrayValue, StringArrayValue, BooleanArrayValue,
                                ByteArrayValue, IntegerFingerprintValue, DoubleFingerprintValue,
                                StringFingerprintValue, BitsetValue, BitsetValue2D, BitFingerprintValue,
                                BitsetArrayValue, BitFingerprintArrayValue, FlexValue, FlexArrayValue, ValueArrayValue,
                                NullArrayValue, DateTimeValue>;
static_assert(PooledClasses::count<IsPooled> == PooledClasses::size &&
                  ValueClasses::count<IsPooled> == PooledClasses::size,
              "every pooled value class is in PooledClasses");

template <class T>
class ValueTextDumpTest : public ValueContractTest<T> {};
TYPED_TEST_SUITE(ValueTextDumpTest, TextDumpClasses::Types);
template <class T>
class PooledValueTest : public ValueContractTest<T> {};
TYPED_TEST_SUITE(PooledValueTest, PooledClasses::Types);

TYPED_TEST(ValueContractTest, ValuesThatCompareEqualHashEqual) {
  for (auto const &a : this->samples)
    for (auto const &b : this->samples)
      if (a.compare(b) == 0) {
        EXPECT_EQ(a.hash(), b.hash());
      }
}

TYPED_TEST(ValueContractTest, CompareIsConsistentInBothDirections) {
  auto const &s = this->samples;
  for (std::size_t i = 0; i < s.size(); ++i) {
    EXPECT_EQ(s[i].compare(s[i]), 0) << "sample " << i;
    for (std::size_t j = 0; j < s.size(); ++j)
      if constexpr (requires { Contract<TypeParam>::comparesEqualOrNot; })
        EXPECT_EQ(s[i].compare(s[j]) == 0, s[j].compare(s[i]) == 0) << "samples " << i << ", " << j;
      else
        EXPECT_EQ(sign(s[i].compare(s[j])), -sign(s[j].compare(s[i]))) << "samples " << i << ", " << j;
  }
}

TYPED_TEST(ValueContractTest, CloneIsAnEqualValueOfTheSameClass) {
  for (auto const &sample : this->samples) {
    ObjPtr<Value> viaClone(static_cast<Value *>(sample.clone()));
    ObjPtr<Value> viaCloneValue(sample.cloneValue());
    ObjPtr<TypeParam> viaAllocateCopy(TypeParam::allocateCopy(sample));
    for (Value *copy : {viaClone.get(), viaCloneValue.get(), static_cast<Value *>(viaAllocateCopy.get())}) {
      ASSERT_NE(copy, nullptr);
      EXPECT_NE(copy, &sample);
      EXPECT_EQ(copy->getClassTag(), TypeParam::Tag);
      EXPECT_EQ(sample.compare(*copy), 0);
      EXPECT_EQ(copy->compare(sample), 0);
    }
  }
}

TYPED_TEST(ValueContractTest, AssignToACleanValueOfTheSameClassGivesAnEqualValue) {
  for (auto const &sample : this->samples) {
    TypeParam target;
    sample.assignTo(target);
    EXPECT_EQ(target.compare(sample), 0);
  }
}

TYPED_TEST(ValueContractTest, StreamRoundTripGivesAnEqualValueInVersions1And2) {
  for (int version : {1, 2}) {
    for (auto const &sample : this->samples) {
      Bytes bytes = serialise(sample, version);
      TypeParam expected;
      if constexpr (Contract<TypeParam>::streamKeepsAll) sample.assignTo(expected);
      for (int chunk : kChunkSizes) {
        ChunkedInputStream in(bytes, chunk, version);
        TypeParam read;
        read.deserialize(in);
        EXPECT_EQ(read.compare(expected), 0) << "version " << version << ", chunk " << chunk;
        EXPECT_TRUE(in.atEnd()) << "version " << version << ", chunk " << chunk;
      }
    }
  }
}

TYPED_TEST(ValueContractTest, EveryTruncatedPayloadFailsWithAnEofMessageAndKeepsTheValue) {
  auto const &s = this->samples;
  for (int version : {1, 2}) {
    for (std::size_t i = 0; i < s.size(); ++i) {
      Bytes bytes = serialise(s[i], version);
      for (std::size_t cut = 0; cut < bytes.size(); ++cut) {
        TypeParam const before(s[(i + 1) % s.size()]);
        TypeParam target(before);
        ChunkedInputStream in(Bytes(bytes.begin(), bytes.begin() + static_cast<long>(cut)), 3, version);
        try {
          target.deserialize(in);
          ADD_FAILURE() << "no failure: version " << version << ", sample " << i << ", cut " << cut;
        } catch (Exception const &e) {
          EXPECT_EQ(std::string(e.what()).rfind("EOF reading", 0), 0u) << e.what();
        }
        EXPECT_EQ(target.compare(before), 0) << "version " << version << ", sample " << i << ", cut " << cut;
        EXPECT_EQ(serialise(target, version), serialise(before, version));
      }
    }
  }
}

TYPED_TEST(ValueContractTest, XmlTextReadsBackToAnEqualValueWhereTheClassPromisesIt) {
  for (auto const &sample : this->samples) {
    WString text, extra;
    bool has = sample.getXMLText(text, extra);
    if constexpr (!requires { Contract<TypeParam>::xmlExtraNamesType; }) {
      EXPECT_EQ(str(extra), u"");
    }
    if (!Contract<TypeParam>::xmlRoundTrips(sample)) continue;
    ASSERT_TRUE(has);
    unsigned short const *buffer = text.getBuffer();
    TypeParam read;
    read.setFromXMLText(text, extra);
    EXPECT_EQ(read.compare(sample), 0) << utf8(text);
    EXPECT_EQ(text.getBuffer(), buffer) << "the text must be handed back, not copied";
  }
}

TYPED_TEST(ValueContractTest, AnswersToItsOwnTagAndToItsBases) {
  TypeParam value;
  EXPECT_STREQ(value.getArrayValueType().getName(), Contract<TypeParam>::arrayClass);
  EXPECT_EQ(value.getClassTag(), TypeParam::Tag);
  EXPECT_STREQ(value.getClassTag().getName(), TypeParam::className);
  EXPECT_EQ(value.getClass().getClassTag(), TypeParam::Tag);
  EXPECT_EQ(value.getItemValueType(), expectedItemType<TypeParam>());
  EXPECT_EQ(value.findAs(TypeParam::Tag), static_cast<void *>(&value));
  EXPECT_EQ(value.findAs(Value::Tag), static_cast<void *>(static_cast<Value *>(&value)));
  EXPECT_TRUE(value.isA(Object::Tag));
  EXPECT_EQ(value.isA(ClassTag("Marlix.value.ValueArrayValue")), (std::is_same_v<TypeParam, ValueArrayValue>));
}

TYPED_TEST(ValueContractTest, EachInstanceIsCountedOnceInItsOwnClassLeakDetector) {
  long const own = TypeParam::m_leakDetector.getLiveCount();
  long const base = NullValue::m_leakDetector.getLiveCount();
  {
    TypeParam a;
    TypeParam b(a);
    EXPECT_EQ(TypeParam::m_leakDetector.getLiveCount(), own + 2);
    if constexpr (!std::is_same_v<TypeParam, NullValue>) {
      EXPECT_EQ(NullValue::m_leakDetector.getLiveCount(), base);
    }
  }
  EXPECT_EQ(TypeParam::m_leakDetector.getLiveCount(), own);
}

TYPED_TEST(PooledValueTest, ReleasedInstanceIsHandedOutAgain) {
  auto &pool = TypeParam::m_class;
  int const outstanding = pool.getOutstanding();
  TypeParam *first = TypeParam::newInstance();
  EXPECT_EQ(pool.getOutstanding(), outstanding + 1);
  first->deleteInstance();
  EXPECT_EQ(pool.getOutstanding(), outstanding);
  TypeParam *second = TypeParam::newInstance();
  EXPECT_EQ(second, first);
  second->deleteInstance();
}

TYPED_TEST(ValueTextDumpTest, DumpShowsTheFoundTextOptionallyAfterTheClassName) {
  for (auto const &sample : this->samples) {
    WString found, plain, named;
    std::u16string text = sample.findString(found) ? (found.isNull() ? u"" : str(found)) : u"undefined";
    sample.dump(plain, 0);
    sample.dump(named, 1);
    EXPECT_EQ(str(plain), text);
    EXPECT_EQ(str(named), str(WString(TypeParam::className)) + u":" + text);
  }
}

}  // namespace
}  // namespace quarn::test
