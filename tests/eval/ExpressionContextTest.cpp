// ExpressionContextTest.cpp - the expression context's references, derived lists and random source
#include <gtest/gtest.h>
#include <quarn/core/ComponentImpl.h>
#include <quarn/core/Ptr.h>
#include <quarn/data/DataNode.h>
#include <quarn/data/DataRecord.h>
#include <quarn/data/PropertyCollection.h>
#include <quarn/eval/ComponentInfo.h>
#include <quarn/eval/ExpressionContext.h>
#include <quarn/eval/RunContext.h>

#include <functional>
#include <string>

#include "support/ExpectThrow.h"
#include "value/ValueTesting.h"

namespace quarn::test {
namespace {

/// An iRandom that records what it is asked and answers a fixed draw.
class RecordingRandom : public ObjectImpl<RecordingRandom, DynamicObject, iRandom> {
  QUARN_COMPONENT(RecordingRandom)
 public:
  double getUniform(double low, double high) override {
    bounds = {low, high};
    return 0.25;
  }
  void setSeed(long s) override { seed = s; }
  std::pair<double, double> bounds{-1, -1};
  long seed = 0;
};
QUARN_DEFINE_COMPONENT(RecordingRandom, "Marlix.test.RecordingRandom");

class Runner : public ObjectImpl<Runner, DynamicObject, iRunnerSoap> {
  QUARN_COMPONENT(Runner)
 public:
  BaseString<unsigned short> const &getRunnerName() const override { return name; }
  BaseString<unsigned short> const &getRunnerAddress() const override { return name; }
  BaseString<unsigned short> name{"runner"};
};
QUARN_DEFINE_COMPONENT(Runner, "Marlix.test.Runner");

/// A run context with a current component, and one object of each kind the
/// expression context holds; the counts each should come back to.
class ExpressionContextTest : public ::testing::Test {
 protected:
  void SetUp() override { context->setComponentInfo(component.get()); }

  /// Every held object's count, in a fixed order, for before/after comparisons.
  std::vector<unsigned int> counts() const {
    return {context->getRefCount(), component->getRefCount(), list->getRefCount(),
            record->getRefCount(),  node->getRefCount(),      runner->getRefCount(), random->getRefCount()};
  }

  // Records and nodes are property lists too: name the interface to pick a constructor.
  iDataRecord *rec() const { return record.get(); }
  iNode *nod() const { return node.get(); }

  Ptr<RunContext> context{RunContext::newInstance()};
  Ptr<ComponentInfo> component{ComponentInfo::newInstance()};
  Ptr<PropertyCollection> list{PropertyCollection::newInstance()};
  Ptr<DataRecord> record{DataRecord::newInstance()};
  Ptr<DataNode> node{DataNode::newInstance()};
  Ptr<Runner> runner{Runner::newInstance()};
  Ptr<RecordingRandom> random{RecordingRandom::newInstance()};
};

TEST_F(ExpressionContextTest, EachConstructorTakesOneReferenceOfEachServiceButTheRandomSource) {
  // counts(): context, component, list, record, node, runner, random.
  struct Case {
    char const *name;
    std::function<ExpressionContext *()> make;
    std::vector<unsigned int> held;
  } const cases[] = {
      {"list", [&] { return new ExpressionContext(context.get(), list.get(), random.get(), runner.get()); },
       {2, 3, 2, 1, 1, 2, 1}},
      {"record", [&] { return new ExpressionContext(context.get(), rec(), random.get(), runner.get()); },
       {2, 3, 1, 2, 1, 2, 1}},
      {"node", [&] { return new ExpressionContext(context.get(), nod(), random.get(), runner.get()); },
       {2, 3, 1, 1, 2, 2, 1}},
      {"no context", [&] { return new ExpressionContext(nullptr, nod(), nullptr, nullptr); },
       {1, 2, 1, 1, 2, 1, 1}},
  };
  std::vector<unsigned int> const before = counts();
  for (Case const &c : cases) {
    auto *made = c.make();
    EXPECT_EQ(counts(), c.held) << c.name;
    EXPECT_EQ(made->getComponentInfo(), made->getContext() ? component.get() : nullptr) << c.name;
    delete made;
    EXPECT_EQ(counts(), before) << c.name;
  }
}

/// set(a), set(b), set(b) again, set(null): old released, new taken, the same one kept once.
template <class T, class Set>
void expectSetterCounts(char const *name, ExpressionContext &ec, Set set, T *a, T *b) {
  unsigned int const a0 = a->getRefCount(), b0 = b->getRefCount();
  (ec.*set)(a);
  EXPECT_EQ(a->getRefCount(), a0 + 1) << name;
  (ec.*set)(b);
  EXPECT_EQ(a->getRefCount(), a0) << name;
  EXPECT_EQ(b->getRefCount(), b0 + 1) << name;
  (ec.*set)(b);
  EXPECT_EQ(b->getRefCount(), b0 + 1) << name;
  (ec.*set)(nullptr);
  EXPECT_EQ(b->getRefCount(), b0) << name;
  (ec.*set)(a);  // left held, for the destructor to release
}

TEST_F(ExpressionContextTest, EverySetterTakesTheNewBeforeReleasingTheOld) {
  Ptr<PropertyCollection> list2(PropertyCollection::newInstance());
  Ptr<DataRecord> record2(DataRecord::newInstance());
  Ptr<DataNode> node2(DataNode::newInstance());
  Ptr<Runner> runner2(Runner::newInstance());
  std::vector<unsigned int> const before = counts();
  {
    ExpressionContext ec(nullptr, static_cast<iPropertyCollection *>(nullptr), nullptr, nullptr);
    expectSetterCounts<iPropertyCollection>("list", ec, &ExpressionContext::setExpressionPropertyList, list.get(),
                                            list2.get());
    expectSetterCounts<iDataRecord>("record", ec, &ExpressionContext::setDataRecord, record.get(), record2.get());
    expectSetterCounts<iNode>("node", ec, &ExpressionContext::setNode, node.get(), node2.get());
    expectSetterCounts<iRunnerSoap>("runner", ec, &ExpressionContext::setRunnerSoap, runner.get(), runner2.get());
    // A setter given the only reference keeps the object alive.
    Ptr<Runner> sole(Runner::newInstance());
    ec.setRunnerSoap(sole.get());
    sole.reset();
    ec.setRunnerSoap(ec.getRunnerSoap());
    EXPECT_EQ(ec.getRunnerSoap()->getRefCount(), 1u);
    EXPECT_EQ(utf8(ec.getRunnerSoap()->getRunnerName()), "runner");
  }
  // context and component untouched; list, record, node, runner each held once by ec, now released.
  EXPECT_EQ(counts(), before);
  EXPECT_EQ(list2->getRefCount(), 1u);
}

TEST_F(ExpressionContextTest, PropertyListIsDerivedFromTheRecordElseTheNodeAndDerivedAgainAfterASet) {
  Ptr<DataNode> node2(DataNode::newInstance());
  ExpressionContext ec(context.get(), nod(), nullptr, nullptr);
  EXPECT_EQ(ec.getPropertyList(), node->getPropertyList());
  EXPECT_EQ(node->getRefCount(), 3u);  // ours, the node member, the cached list (the node itself)
  ec.setNode(nullptr);                 // a null node keeps the list
  EXPECT_EQ(ec.getPropertyList(), node->getPropertyList());
  ec.setNode(node2.get());
  EXPECT_EQ(node->getRefCount(), 1u);
  EXPECT_EQ(ec.getPropertyList(), node2->getPropertyList());
  ec.setDataRecord(record.get());  // a record comes before the node
  EXPECT_EQ(node2->getRefCount(), 2u);
  EXPECT_EQ(ec.getPropertyList(), static_cast<iPropertyCollection *>(record.get()));
  EXPECT_EQ(record->getRefCount(), 3u);
  ec.setDataRecord(nullptr);  // a null record keeps the list too
  EXPECT_EQ(ec.getPropertyList(), static_cast<iPropertyCollection *>(record.get()));
  EXPECT_EQ(record->getRefCount(), 2u);
  // A list given at construction is used as it is, until a node replaces it.
  ExpressionContext given(nullptr, list.get(), nullptr, nullptr);
  EXPECT_EQ(given.getPropertyList(), list.get());
  given.setNode(node.get());
  EXPECT_EQ(list->getRefCount(), 1u);
  EXPECT_EQ(given.getPropertyList(), node->getPropertyList());
  ExpressionContext empty(nullptr, static_cast<iNode *>(nullptr), nullptr, nullptr);
  EXPECT_EQ(empty.getPropertyList(), nullptr);
}

TEST_F(ExpressionContextTest, ExpressionListIsMadeByNameOnRequestAndKept) {
  long const live = PropertyCollection::m_leakDetector.getLiveCount();
  {
    ExpressionContext ec(context.get(), rec(), nullptr, nullptr);
    EXPECT_EQ(ec.getExpressionPropertyList(false), nullptr);
    iPropertyCollection *locals = ec.getExpressionPropertyList(true);
    ASSERT_NE(locals, nullptr);
    EXPECT_STREQ(locals->getClassTag().getName(), "Marlix.data.PropertyCollection");
    EXPECT_EQ(locals->getRefCount(), 1u);
    EXPECT_EQ(ec.getExpressionPropertyList(true), locals);
    EXPECT_EQ(ec.getExpressionPropertyList(false), locals);
    EXPECT_EQ(PropertyCollection::m_leakDetector.getLiveCount(), live + 1);
  }
  EXPECT_EQ(PropertyCollection::m_leakDetector.getLiveCount(), live);
}

TEST_F(ExpressionContextTest, KeepsTheFirstRandomSourceAndDrawsBetweenZeroAndOne) {
  Ptr<RecordingRandom> second(RecordingRandom::newInstance());
  ExpressionContext ec(context.get(), rec(), nullptr, nullptr);
  EXPECT_FALSE(ec.hasRandom());
  ec.setRandom(random.get());
  ec.setRandom(second.get());
  ec.setRandom(nullptr);
  EXPECT_TRUE(ec.hasRandom());
  EXPECT_EQ(ec.getRandomDouble(), 0.25);
  EXPECT_EQ(random->bounds, std::make_pair(0.0, 1.0));
  ec.seedRandom(-77);
  EXPECT_EQ(random->seed, -77);
  EXPECT_EQ(second->bounds.first, -1);
  EXPECT_EQ(random->getRefCount(), 1u);  // borrowed, never counted
}

TEST_F(ExpressionContextTest, WithoutRandomSourceDrawingAndSeedingThrowTheFixedMessage) {
  ExpressionContext ec(context.get(), rec(), nullptr, nullptr);
  char const *message = "Unable to get random number object while evaluating expression.  Please contact Marlix.";
  EXPECT_QUARN_THROW(ec.getRandomDouble(), message);
  EXPECT_QUARN_THROW(ec.seedRandom(1), message);
  ec.setRandom(random.get());  // still usable afterwards
  EXPECT_EQ(ec.getRandomDouble(), 0.25);
}

TEST_F(ExpressionContextTest, CurrentParameterStartsEmptyAndContextNotAvailableIsItsText) {
  ExpressionContext ec(context.get(), rec(), nullptr, nullptr);
  EXPECT_EQ(str(ec.getCurrentParameter()), u"");
  ec.setCurrentParameter(u16(u"threshold").getBuffer());
  EXPECT_EQ(str(ec.getCurrentParameter()), u"threshold");
  EXPECT_EQ(str(WString(ContextNotAvailable)), u"iContext not available.");
}

}  // namespace
}  // namespace quarn::test
