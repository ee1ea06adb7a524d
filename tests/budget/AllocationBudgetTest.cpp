// AllocationBudgetTest.cpp - reading hostile payloads and texts costs memory in proportion to the bytes read
#include <gtest/gtest.h>
#include <quarn/quarn.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "budget/CountingAllocator.h"
#include "support/ChunkedInputStream.h"

namespace quarn::test {
namespace {

/// The budget of one read, as Value.h states it.
constexpr long long kPerByte = Value::kReadBytesPerInputByte;
constexpr long long kAllowance = Value::kReadAllowanceBytes;

Bytes operator+(Bytes a, Bytes const &b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}
Bytes times(Bytes const &part, int n) {
  Bytes out;
  for (int k = 0; k < n; ++k) out.insert(out.end(), part.begin(), part.end());
  return out;
}
Bytes streamInt(int v) {
  RecordingOutputStream out;
  out << v;
  return out.bytes;
}
Bytes named(std::string const &name) {
  return streamInt(static_cast<int>(name.size() + 1)) + Bytes(name.begin(), name.end());
}

struct Hostile {
  std::string what;
  Bytes bytes;
};

/// Payloads whose counts, lengths and sizes ask for far more than they carry.
std::vector<Hostile> hostilePayloads() {
  Bytes const most = hexBytes("03 FF FF FF 7F"), zeros = Bytes(65536, 0), ones = times(hexBytes("04"), 65536);
  Bytes const nullName = named(NullValue::className), nullArrayName = named(NullArrayValue::className);
  Bytes nested;
  for (int level = 0; level < ValueArrayValue::kMaxNesting - 1; ++level)
    nested = nested + hexBytes("02 00 10") + named(ValueArrayValue::className);
  return {
      {"the largest count, then nothing", most},
      {"the largest count, then 64 KiB of zero bytes", most + zeros},
      {"the largest count, then 64 KiB of 01 bytes", most + ones},
      {"twice the largest count, then 64 KiB of zero bytes", most + most + zeros},
      {"a count of 65536, then 64 KiB of zero bytes", hexBytes("03 00 00 01 00") + zeros},
      {"64 null arrays of 1048576 nulls in a value array",
       hexBytes("01 40") + times(nullArrayName + hexBytes("03 00 00 10 00"), 64)},
      {"4096 nulls in a value array", hexBytes("02 00 10") + times(nullName, 4096)},
      {"63 value arrays inside one another, each claiming 4096 elements", nested + hexBytes("00")},
  };
}

/// Texts whose numbers ask for far more than they carry.
std::vector<std::u16string> hostileTexts() {
  return {u"2147483647",
          u"2147483647 2147483647",
          u"10000000",
          u"10000000 1",
          u"1;2;3;4;5;6;7;8;9;10000000",
          std::u16string(4096, u'9'),
          u"1e308",
          u"\"a\",\"b\"",
          u"AAAA"};
}

/// The peak of one read of `bytes` above what was live before it; `consumed` the bytes it took.
long long measureRead(Value &target, Bytes const &bytes, int version, bool memory, long long &consumed) {
  MemoryInputStream fast(bytes.data(), static_cast<unsigned int>(bytes.size()), version);
  ChunkedInputStream slow(bytes, 1024, version);
  iByteInputStream &in = memory ? static_cast<iByteInputStream &>(fast) : slow;
  long long const before = liveHeapBytes();
  resetPeakHeapBytes();
  try {
    target.deserialize(in);
  } catch (Exception const &) {
  }
  consumed = memory ? fast.getPosition() : static_cast<long long>(slow.getPosition());
  return peakHeapBytes() - before;
}

template <class T>
class AllocationBudgetTest : public ::testing::Test {};

using ValueClasses =
    ::testing::Types<IntegerValue, DoubleValue, BooleanValue, StringValue, NullValue, MissingValue, IntegerArrayValue,
                     DoubleArrayValue, StringArrayValue, BooleanArrayValue, ByteArrayValue, IntegerFingerprintValue,
                     DoubleFingerprintValue, StringFingerprintValue, BitsetValue, BitsetValue2D, BitsetValue3D,
                     BitFingerprintValue, BitsetArrayValue, BitFingerprintArrayValue, FlexValue, FlexArrayValue,
                     ValueArrayValue, NullArrayValue>;
TYPED_TEST_SUITE(AllocationBudgetTest, ValueClasses);

TYPED_TEST(AllocationBudgetTest, AHostilePayloadCostsAtMostTheBudgetOfTheBytesItConsumed) {
  if (!heapCounting()) GTEST_SKIP() << "allocations are not counted in this build";
  for (Hostile const &h : hostilePayloads())
    for (int version : {1, 2})
      for (bool memory : {true, false}) {
        ObjPtr<Value> target(TypeParam::newInstance());
        long long consumed = 0;
        measureRead(*target, h.bytes, version, memory, consumed);  // pools and caches warm up
        long long const peak = measureRead(*target, h.bytes, version, memory, consumed);
        EXPECT_LE(peak, kPerByte * consumed + kAllowance)
            << h.what << ", version " << version << (memory ? ", memory stream" : ", chunked stream");
      }
}

TYPED_TEST(AllocationBudgetTest, AHostileTextCostsAtMostTheBudgetOfItsBytes) {
  if (!heapCounting()) GTEST_SKIP() << "allocations are not counted in this build";
  for (std::u16string const &text : hostileTexts()) {
    BaseString<unsigned short> units(reinterpret_cast<unsigned short const *>(text.c_str()));
    long long const bytes = 2 * static_cast<long long>(text.size());
    auto read = [&](std::function<void(TypeParam &)> const &f) {
      ObjPtr<TypeParam> target(TypeParam::newInstance());
      long long const before = liveHeapBytes();
      resetPeakHeapBytes();
      try {
        f(*target);
      } catch (Exception const &) {
      }
      long long const peak = peakHeapBytes() - before;
      EXPECT_LE(peak, kPerByte * bytes + kAllowance) << text.size() << " units";
    };
    read([&](TypeParam &v) { v.setFromXMLText(units, BaseString<unsigned short>()); });
    if constexpr (std::is_base_of_v<ArrayValue, TypeParam>)
      read([&](TypeParam &v) { v.fillFromString(units, ';', true); });
  }
}

}  // namespace
}  // namespace quarn::test
