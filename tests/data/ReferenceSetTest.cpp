// ReferenceSetTest.cpp - reference counting through every operation of both reference sets
#include <gtest/gtest.h>
#include <quarn/core/Ptr.h>
#include <quarn/data/DataNode.h>
#include <quarn/data/NodeReferenceSet.h>
#include <quarn/data/Property.h>
#include <quarn/data/PropertyReferenceSet.h>
#include <quarn/value/IntegerValue.h>
#include <quarnCore/Exception.h>

#include <string>
#include <utility>

#include "support/ExpectThrow.h"
#include "value/ValueTesting.h"

namespace quarn::test {
namespace {

// How each set's members are made: real counted objects named "m0", "m1", ...
struct NodeSet {
  using Set = NodeReferenceSet;
  using Member = iNode;
  static Ptr<iNode> make(int i) {
    Ptr<DataNode> node(DataNode::newInstance());
    node->setName(WString(("m" + std::to_string(i)).c_str()));
    return Ptr<iNode>(node.get());
  }
};
struct PropertySet {
  using Set = PropertyReferenceSet;
  using Member = iProperty;
  static Ptr<iProperty> make(int i) {
    IntegerValue *value = IntegerValue::newInstance();
    *value = i;
    return Ptr<iProperty>(Property::make(WString(("m" + std::to_string(i)).c_str()), value));
  }
};

template <class Traits>
class ReferenceSetTest : public ::testing::Test {
 protected:
  using Set = typename Traits::Set;
  Ptr<typename Traits::Member> m[3] = {Traits::make(0), Traits::make(1), Traits::make(2)};
  /// The count of each member beyond the test's own reference.
  std::string extra() const {
    std::string out;
    for (auto const &member : m) out += std::to_string(member->getRefCount() - 1);
    return out;
  }
  Set ofAll() {
    Set set;
    for (auto const &member : m) set.add(member.get());
    return set;
  }
};

using SetKinds = ::testing::Types<NodeSet, PropertySet>;
TYPED_TEST_SUITE(ReferenceSetTest, SetKinds);

TYPED_TEST(ReferenceSetTest, AddTakesAReferenceEachTimeAndRemoveGivesOneBack) {
  typename TestFixture::Set set;
  set.add(this->m[0].get());
  set.add(this->m[0].get());
  set.add(nullptr);
  set.add(this->m[1].get());
  EXPECT_EQ(set.getSize(), 4u);
  EXPECT_EQ(this->extra(), "210");
  set.remove(2);  // the null entry
  EXPECT_EQ(this->extra(), "210");
  set.remove(0);
  EXPECT_EQ(this->extra(), "110");
  EXPECT_EQ(set[0], this->m[0].get());
  EXPECT_EQ(set[1], this->m[1].get());
  EXPECT_QUARN_THROW_AS(set.remove(2), InvalidIndexException,
                        "Invalid index 2 (last valid index 1)\nReferenceSetImpl::remove: Tessary exception caught");
  EXPECT_QUARN_THROW_AS(set[2], InvalidIndexException, "Invalid index 2 (last valid index 1)");
  set.clear();
  EXPECT_EQ(set.getSize(), 0u);
  EXPECT_EQ(set.getArray().getCapacity(), 0u);
  EXPECT_EQ(this->extra(), "000");
}

TYPED_TEST(ReferenceSetTest, ResizeReleasesWhatItCutsAndGrowsWithoutReferences) {
  typename TestFixture::Set set = this->ofAll();
  set.resize(1);
  EXPECT_EQ(this->extra(), "100");
  set.resize(3);
  EXPECT_EQ(this->extra(), "100");
  // The caller fills grown entries and gives them their reference.
  set[1] = this->m[1].get();
  set[2] = this->m[2].get();
  this->m[1]->addRef();
  this->m[2]->addRef();
  EXPECT_EQ(this->extra(), "111");
  set.resize(0);
  EXPECT_EQ(this->extra(), "000");
}

TYPED_TEST(ReferenceSetTest, CopiesAndAssignmentsTakeTheirOwnReferences) {
  using Set = typename TestFixture::Set;
  Set set = this->ofAll();
  {
    Set copy(set);
    EXPECT_EQ(this->extra(), "222");
    Set fromArray(set.getArray());
    EXPECT_EQ(this->extra(), "333");
  }
  EXPECT_EQ(this->extra(), "111");
  Set other;
  other.add(this->m[0].get());
  EXPECT_EQ(this->extra(), "211");
  other = set;  // releases m0 once, then takes all three
  EXPECT_EQ(this->extra(), "222");
  other = set.getArray();
  EXPECT_EQ(this->extra(), "222");
  auto &self = other;
  other = self;  // releases and re-takes the same references
  EXPECT_EQ(this->extra(), "222");
  EXPECT_EQ(other.getSize(), 3u);
  other.clear();
  set.clear();
  EXPECT_EQ(this->extra(), "000");
}

TEST(ReferenceSetDumpTest, ListsEveryEntryByName) {
  Ptr<iNode> node = NodeSet::make(4);
  NodeReferenceSet nodes;
  nodes.add(node.get());
  nodes.add(nullptr);
  WString text("old");
  nodes.dump(text);
  EXPECT_EQ(str(text), u"[0] m4\n[1] null\n");
  nodes.remove(1);  // a set that is destroyed must hold no null entry
  Ptr<iProperty> property = PropertySet::make(7);
  PropertyReferenceSet properties;
  properties.add(property.get());
  properties.dump(text);
  EXPECT_EQ(str(text), u"[0] m7 = 7\n");
  properties.remove(0);
  properties.dump(text);
  EXPECT_EQ(str(text), u"");
}

}  // namespace
}  // namespace quarn::test
