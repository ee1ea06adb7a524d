// ConverterRegistryTest.cpp - queued registration, replacement, removal and growth of the converter map
#include <gtest/gtest.h>
#include <quarn/value/BooleanValue.h>
#include <quarn/value/ConverterRegistry.h>
#include <quarn/value/DoubleValue.h>
#include <quarn/value/IntegerValue.h>
#include <quarn/value/NullValue.h>
#include <quarn/value/StringValue.h>
#include <quarn/value/ValueTypeConverter.h>

#include <string>
#include <thread>
#include <vector>

#include "support/ExpectThrow.h"
#include "value/ValueTesting.h"

namespace quarn::test {
namespace {

using detail::ConverterRegistry;

// Records its calls; registered by hand, not by construction.
struct Spy final : ValueTypeConverter {
  void convert(Value const &from, Value &to) override { ++calls, lastFrom = &from, lastTo = &to; }
  int calls = 0;
  Value const *lastFrom = nullptr;
  Value *lastTo = nullptr;
};

ClassTag tagNamed(std::string const &name) { return ClassTag(name.c_str()); }

TEST(ConverterRegistryTest, RegistrationWaitsForTheFirstLookupAndReplacesAKnownPairInPlace) {
  ConverterRegistry registry;
  Spy a;
  ClassTag const from = tagNamed("Test.value.QueuedFrom"), to = tagNamed("Test.value.QueuedTo");
  registry.enqueue(from, to, &a);
  registry.enqueue(from, to, nullptr);
  EXPECT_EQ(registry.getPendingCount(), 2u);
  EXPECT_EQ(registry.getBucketCount(), 0u);  // no map before a lookup

  EXPECT_EQ(registry.find(from, to), nullptr);  // registered and removed again, in order
  EXPECT_EQ(registry.getPendingCount(), 0u);
  EXPECT_EQ(registry.getBucketCount(), 31u);
  EXPECT_EQ(registry.getCount(), 0u);
  // a known pair is replaced in place and an unknown removal does nothing
  Spy first, second;
  registry.enqueue(from, to, &first);
  EXPECT_EQ(registry.find(from, to), &first);
  registry.enqueue(from, to, &second);
  registry.enqueue(to, tagNamed("Test.value.Unknown"), nullptr);
  EXPECT_EQ(registry.find(from, to), &second);
  EXPECT_EQ(registry.getCount(), 1u);
}

TEST(ConverterRegistryTest, PairsAreOrderedAndMatchedByTagIdentity) {
  ConverterRegistry registry;
  Spy forward, backward;
  ClassTag a = tagNamed("Test.value.OrderA"), b = tagNamed("Test.value.OrderB");
  // Both directions share one key hash (an XOR), so they meet in one bucket.
  EXPECT_EQ(ConverterRegistry::keyHash(a, b),
            ClassTag::hashName("Test.value.OrderA") ^ ClassTag::hashName("Test.value.OrderB"));
  EXPECT_EQ(ConverterRegistry::keyHash(a, b), ConverterRegistry::keyHash(b, a));
  registry.enqueue(a, b, &forward);
  EXPECT_EQ(registry.find(b, a), nullptr);
  registry.enqueue(b, a, &backward);
  EXPECT_EQ(registry.find(a, b), &forward);
  EXPECT_EQ(registry.find(b, a), &backward);
  // A tag spelled in other letters is the same tag.
  EXPECT_EQ(registry.find(tagNamed("TEST.VALUE.ORDERA"), b), &forward);
}

TEST(ConverterRegistryTest, MapGrowsTo67BucketsOnThe24thPair) {
  ConverterRegistry registry;
  Spy spy;
  ClassTag to = tagNamed("Test.value.GrowTo");
  std::vector<ClassTag> froms;
  for (int i = 0; i < 24; ++i) froms.push_back(tagNamed("Test.value.Grow" + std::to_string(i)));
  for (int i = 0; i < 23; ++i) registry.enqueue(froms[i], to, &spy);
  for (auto [count, buckets] : {std::pair{23u, 31u}, std::pair{24u, 67u}}) {
    if (count == 24) registry.enqueue(froms[23], to, &spy);
    registry.find(to, to);
    EXPECT_EQ(registry.getCount(), count);
    EXPECT_EQ(registry.getBucketCount(), buckets);
  }
  for (ClassTag const &from : froms) EXPECT_EQ(registry.find(from, to), &spy);
}

TEST(ConverterRegistryTest, ConcurrentRegistrationsAndFirstLookupsAreSafe) {
  ConverterRegistry registry;
  Spy spy;
  ClassTag to = tagNamed("Test.value.ThreadTo");
  std::vector<ClassTag> froms;
  for (int i = 0; i < 200; ++i) froms.push_back(tagNamed("Test.value.Thread" + std::to_string(i)));
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&, t] {
      for (int i = t; i < 200; i += 4) {
        registry.enqueue(froms[i], to, &spy);
        EXPECT_EQ(registry.find(froms[i], to), &spy);
      }
    });
  }
  for (auto &thread : threads) thread.join();
  EXPECT_EQ(registry.getCount(), 200u);
}

TEST(ConverterRegistryTest, AssignToUsesTheRegisteredConverterExceptForTheSameClass) {
  ConverterRegistry *registry = ConverterRegistry::process();
  ValueTypeConverter *original = registry->find(IntegerValue::Tag, IntegerValue::Tag);
  Spy spy;
  Value::RegisterTypeConverter(IntegerValue::Tag, IntegerValue::Tag, &spy);
  IntegerValue from(3), to(0);
  from.assignTo(to);
  Value::RegisterTypeConverter(IntegerValue::Tag, IntegerValue::Tag, original);
  EXPECT_EQ(spy.calls, 0);
  EXPECT_EQ(to.getInteger(), 3);
  EXPECT_EQ(registry->find(IntegerValue::Tag, IntegerValue::Tag), original);
  // another pair: assignTo uses the registered converter until it is unregistered
  NullValue null;
  EXPECT_FALSE(from.canAssignTo(NullValue::Tag));
  Value::RegisterTypeConverter(IntegerValue::Tag, NullValue::Tag, &spy);
  EXPECT_TRUE(from.canAssignTo(NullValue::Tag));
  from.assignTo(null);
  EXPECT_EQ(spy.calls, 1);
  EXPECT_EQ(spy.lastFrom, &from);
  EXPECT_EQ(spy.lastTo, &null);
  Value::UnRegisterTypeConverter(IntegerValue::Tag, NullValue::Tag);
  EXPECT_FALSE(from.canAssignTo(NullValue::Tag));
  EXPECT_QUARN_THROW(from.assignTo(null), "Could not convert from Marlix.value.IntegerValue to Marlix.value.NullValue");
  EXPECT_EQ(spy.calls, 1);
  // a converter refuses values of other classes
  ValueTypeConverter *toText = registry->find(IntegerValue::Tag, StringValue::Tag);
  ASSERT_NE(toText, nullptr);
  DoubleValue notAnInteger(1.0);
  StringValue target;
  EXPECT_QUARN_THROW(toText->convert(notAnInteger, target),
                     "Could not convert from Marlix.value.DoubleValue to Marlix.value.StringValue");
}

}  // namespace
}  // namespace quarn::test
