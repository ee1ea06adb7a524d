// RunContextTest.cpp - the run context's parameter stack, and the random source
#include <gtest/gtest.h>
#include <quarn/core/Class.h>
#include <quarn/core/Ptr.h>
#include <quarn/data/DataRecord.h>
#include <quarn/data/PropertyHelpers.h>
#include <quarn/eval/ComponentInfo.h>
#include <quarn/eval/ContextParamsPushPop.h>
#include <quarn/eval/RandomSource.h>
#include <quarn/eval/RunContext.h>
#include <quarn/value/IntegerValue.h>

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <vector>

#include "support/ExpectThrow.h"
#include "value/ValueTesting.h"

namespace quarn::test {
namespace {

/// A component description whose parameter "level" is `level`.
Ptr<ComponentInfo> component(int level) {
  Ptr<ComponentInfo> info(ComponentInfo::newInstance());
  util::defineIntegerValue(*info, WString("level"), level);
  return info;
}

/// The current component's "level", or -1 when there is none.
int level(iContext const &context) {
  iProperty *p = context.findParameter(WString("level"));
  return p ? p->getValue()->getInteger() : -1;
}

TEST(RunContextTest, IsMadeByNameWithRunPropertiesAndARandomSource) {
  Ptr<CountedObject> made(Class::getClassInstance(ClassTag("Marlix.eval.RunContext"))->as<CountedObject>());
  auto *context = made->as<iContext>();
  ASSERT_NE(context, nullptr);
  ASSERT_NE(context->getRunProperties(), nullptr);
  EXPECT_STREQ(context->getRunProperties()->getClassTag().getName(), "Marlix.data.PropertyCollection");
  ASSERT_NE(context->getRandom(), nullptr);
  EXPECT_STREQ(context->getRandom()->getClassTag().getName(), "Marlix.eval.RandomSource");
  EXPECT_EQ(context->getRunnerSoap(), nullptr);
  EXPECT_EQ(context->getComponentInfo(), nullptr);
  EXPECT_EQ(context->getCurrentRecord(), nullptr);
  EXPECT_EQ(level(*context), -1);
  Ptr<CountedObject> info(Class::getClassInstance(ClassTag("Marlix.eval.ComponentInfo"))->as<CountedObject>());
  ASSERT_NE(info->as<iComponentInfo>(), nullptr);
  EXPECT_EQ(info->as<iComponentInfo>()->getParameters(), info->as<iPropertyCollection>());
}

TEST(RunContextTest, NestedPushesAreUndoneInOrderAndReleaseWhatTheyTook) {
  Ptr<RunContext> context(RunContext::newInstance());
  Ptr<ComponentInfo> base = component(0), outer = component(1), inner = component(2);
  Ptr<DataRecord> r1(DataRecord::newInstance()), r2(DataRecord::newInstance());
  context->setComponentInfo(base.get());
  struct Step {
    iComponentInfo *push;  // null: a pop
    iDataRecord *record;
    int level;                     // then current
    iDataRecord *current;          // then current
    unsigned int outerCount, r1Count;
  } const steps[] = {
      {outer.get(), r1.get(), 1, r1.get(), 2, 2},
      {inner.get(), r2.get(), 2, r2.get(), 2, 2},
      {nullptr, nullptr, 1, r1.get(), 2, 2},  // pop: the outer push is current again
      {nullptr, nullptr, 0, nullptr, 1, 1},   // pop: back to the base component
      {nullptr, nullptr, 0, nullptr, 1, 1},   // a pop without a push changes nothing
  };
  for (Step const &s : steps) {
    if (s.push)
      context->pushParams(s.push, s.record);
    else
      context->popParams();
    EXPECT_EQ(level(*context), s.level);
    EXPECT_EQ(context->getCurrentRecord(), s.current);
    EXPECT_EQ(outer->getRefCount(), s.outerCount);
    EXPECT_EQ(r1->getRefCount(), s.r1Count);
  }
  EXPECT_EQ(inner->getRefCount(), 1u);
  EXPECT_EQ(r2->getRefCount(), 1u);
  EXPECT_EQ(base->getRefCount(), 2u);
  context->setComponentInfo(nullptr);
  EXPECT_EQ(base->getRefCount(), 1u);
  EXPECT_EQ(level(*context), -1);
}

TEST(RunContextTest, PushWithoutComponentKeepsTheCurrentOneForTheNewRecord) {
  Ptr<RunContext> context(RunContext::newInstance());
  Ptr<ComponentInfo> base = component(7);
  Ptr<DataRecord> record(DataRecord::newInstance());
  context->setComponentInfo(base.get());
  {
    ContextParamsPushPop params(context.get(), nullptr, record.get());
    EXPECT_EQ(context->getComponentInfo(), base.get());
    EXPECT_EQ(context->getCurrentRecord(), record.get());
    EXPECT_EQ(level(*context), 7);
  }
  EXPECT_EQ(context->getPushDepth(), 0u);
  ContextParamsPushPop none(nullptr, base.get(), record.get());  // no context: nothing happens
  EXPECT_EQ(base->getRefCount(), 2u);
}

TEST(RunContextTest, GuardsRestoreTheParametersWhenAnExceptionLeavesTheirScope) {
  Ptr<RunContext> context(RunContext::newInstance());
  Ptr<ComponentInfo> base = component(0), outer = component(1), inner = component(2);
  Ptr<DataRecord> record(DataRecord::newInstance());
  context->setComponentInfo(base.get());
  std::vector<int> seen;
  try {
    ContextParamsPushPop first(context.get(), outer.get(), record.get());
    seen.push_back(level(*context));
    try {
      ContextParamsPushPop second(context.get(), inner.get(), record.get());
      seen.push_back(level(*context));
      throw Exception("boom");
    } catch (Exception const &) {
      seen.push_back(level(*context));
    }
    throw std::runtime_error("out");
  } catch (std::runtime_error const &) {
    seen.push_back(level(*context));
  }
  EXPECT_EQ(seen, (std::vector<int>{1, 2, 1, 0}));
  EXPECT_EQ(context->getPushDepth(), 0u);
  EXPECT_EQ(outer->getRefCount(), 1u);
  EXPECT_EQ(inner->getRefCount(), 1u);
  EXPECT_EQ(record->getRefCount(), 1u);
}

TEST(RunContextTest, ReplacedRandomSourceAndRunnerAreCounted) {
  Ptr<RunContext> context(RunContext::newInstance());
  Ptr<RandomSource> source(RandomSource::newInstance());
  context->setRandom(source.get());
  EXPECT_EQ(source->getRefCount(), 2u);
  EXPECT_EQ(context->getRandom(), source.get());
  context->setRandom(nullptr);
  EXPECT_EQ(source->getRefCount(), 1u);
  EXPECT_EQ(context->getRandom(), nullptr);
}

std::vector<double> draws(RandomSource &source, double low, double high, int n = 200) {
  std::vector<double> out;
  for (int i = 0; i < n; ++i) out.push_back(source.getUniform(low, high));
  return out;
}

TEST(RandomSourceTest, SameSeedGivesTheSameDrawsAndAnUnseededSourceRunsFromTheDefaultSeed) {
  Ptr<RandomSource> a(RandomSource::newInstance()), b(RandomSource::newInstance());
  std::vector<double> const unseeded = draws(*a, 0, 1);
  b->setSeed(5489);
  EXPECT_EQ(draws(*b, 0, 1), unseeded);
  a->setSeed(42);
  b->setSeed(42);
  std::vector<double> const first = draws(*a, 0, 1);
  EXPECT_EQ(draws(*b, 0, 1), first);
  EXPECT_NE(first, unseeded);
  a->setSeed(-42);  // negative seeds are seeds too
  EXPECT_NE(draws(*a, 0, 1), first);
}

TEST(RandomSourceTest, DrawsStayWithinTheirBounds) {
  struct Case {
    double low, high, min, max;  // every draw in [min, max]
  } const cases[] = {
      {0, 1, 0, 0x1.fffffffffffffp-1},
      {-3, 5, -3, std::nextafter(5.0, 0.0)},
      {5, -3, std::nextafter(-3.0, 0.0), 5},  // bounds the other way round
      {2, 2, 2, 2},
      {1, std::nextafter(1.0, 2.0), 1, 1},  // rounding never reaches the excluded bound
  };
  Ptr<RandomSource> source(RandomSource::newInstance());
  for (Case const &c : cases) {
    double lo = c.max, hi = c.min;
    for (double d : draws(*source, c.low, c.high, 2000)) {
      lo = std::min(lo, d);
      hi = std::max(hi, d);
    }
    EXPECT_GE(lo, c.min) << c.low << " " << c.high;
    EXPECT_LE(hi, c.max) << c.low << " " << c.high;
  }
}

}  // namespace
}  // namespace quarn::test
