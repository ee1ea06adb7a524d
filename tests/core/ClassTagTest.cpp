// ClassTagTest.cpp - interning, case folding, hash rebuild and the memory-usage block
#include <quarn/core/Class.h>
#include <quarn/core/ClassTag.h>
#include <quarn/core/CountedObject.h>
#include <quarnCore/Exception.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "support/ExpectThrow.h"

using quarn::ClassTag;

namespace {

unsigned int caseSensitiveHash(char const *s) {
  unsigned int h = 0;
  for (; *s; ++s) h = h * 31u + static_cast<unsigned char>(*s);
  return h;
}

TEST(ClassTagTest, OtherLetterCaseFindsFirstSpellingAndItsDenseId) {
  int before = ClassTag::getNumClassTags();
  ClassTag first("Marlix.test.CaseFolding"), second("Marlix.test.DenseB");
  ClassTag upper("MARLIX.TEST.CASEFOLDING");
  EXPECT_EQ(first, upper);
  EXPECT_TRUE(first.matches(upper));
  EXPECT_STREQ(upper.getName(), "Marlix.test.CaseFolding");
  EXPECT_EQ(upper.getId(), before);
  EXPECT_EQ(second.getId(), before + 1);
  EXPECT_EQ(ClassTag::getNumClassTags(), before + 2);
  // The tag's hash is the case-sensitive hash of its (first) name; a spelling's own hash differs.
  EXPECT_EQ(static_cast<unsigned int>(upper.getHash()), caseSensitiveHash("Marlix.test.CaseFolding"));
  EXPECT_NE(caseSensitiveHash("MARLIX.TEST.CASEFOLDING"), static_cast<unsigned int>(first.getHash()));
  EXPECT_EQ(ClassTag().getHash(), 0);
  EXPECT_EQ(ClassTag("").getHash(), 0);
}

TEST(ClassTagTest, RebuildsFromHashAndFromId) {
  ClassTag tag("Marlix.test.Rebuild");
  EXPECT_EQ(ClassTag(tag.getHash(), true).getName(), tag.getName());
  EXPECT_EQ(ClassTag(tag.getId(), false).getName(), tag.getName());

  int unknown = static_cast<int>(caseSensitiveHash("Marlix.test.NeverInterned"));
  char expected[80];
  std::snprintf(expected, sizeof expected, "ClassTag with hash '0x%X' not found", unknown);
  EXPECT_QUARN_THROW(ClassTag(unknown, true), expected);

  int count = ClassTag::getNumClassTags();
  EXPECT_QUARN_THROW_AS(
      ClassTag(count, false), quarn::InvalidIndexException,
      "Invalid index " + std::to_string(count) + " (last valid index " + std::to_string(count - 1) + ")");
  ClassTag empty(-1, false);  // the empty tag
  EXPECT_EQ(empty.getId(), -1);
  EXPECT_EQ(empty.getName(), nullptr);
  EXPECT_EQ(empty, ClassTag());
  EXPECT_QUARN_THROW_AS(empty.findClass(), quarn::InvalidIndexException,
                        "Invalid index -1 (last valid index " + std::to_string(count - 1) + ")");
}

TEST(ClassTagTest, HashCollisionRegistersNothing) {
  // "Aa" and "BB" share the case-sensitive hash 2112 but fold to different names.
  ASSERT_EQ(caseSensitiveHash("Marlix.test.Aa"), caseSensitiveHash("Marlix.test.BB"));
  ClassTag first("Marlix.test.Aa");
  int count = ClassTag::getNumClassTags();
  EXPECT_QUARN_THROW(ClassTag("Marlix.test.BB"),
                     "multiple class tags with same hash: 'Marlix.test.Aa' and 'Marlix.test.BB'");
  EXPECT_EQ(ClassTag::getNumClassTags(), count);
  EXPECT_EQ(ClassTag(first.getHash(), true), first);
}

TEST(ClassTagTest, WideNamesConvertUnitByUnitAndAnUnboundTagHasNoClass) {
  unsigned short const latin[] = {'M', 'a', 'r', 'l', 'i', 'x', '.', 0xE9, 0};
  ClassTag tag(latin);
  EXPECT_STREQ(tag.getName(), "Marlix.\xE9");
  unsigned short const wide[] = {'M', 0x263A, 0};
  EXPECT_QUARN_THROW(ClassTag{wide}, "Unable to convert character 0x263a");
  EXPECT_EQ(ClassTag(static_cast<unsigned short const *>(nullptr)), ClassTag(""));
  EXPECT_EQ(ClassTag("Marlix.test.Unbound").findClass(), nullptr);
  EXPECT_QUARN_THROW(ClassTag("Marlix.test.Unbound").getClass(),
                     "Class name Marlix.test.Unbound has no implementation class registered");
  EXPECT_EQ(&quarn::CountedObject::Tag.getClass(), &quarn::CountedObject::m_class);
}

// lookup is how names read from streams are found: one probe, nothing interned.
TEST(ClassTagTest, LookupFindsAnyLetterCaseWithoutInterningAndTagsKeepTheirNameLength) {
  ClassTag const first("Marlix.test.LookedUp");
  int const count = ClassTag::getNumClassTags();
  ClassTag found;
  ASSERT_TRUE(ClassTag::lookup("MARLIX.test.lookedup", found));
  EXPECT_EQ(found, first);
  EXPECT_EQ(found.getName(), first.getName());
  ClassTag untouched = first;
  EXPECT_FALSE(ClassTag::lookup("Marlix.test.NeverLookedUp", untouched));
  EXPECT_EQ(untouched, first);
  EXPECT_FALSE(ClassTag::isInterned("Marlix.test.NeverLookedUp"));
  EXPECT_EQ(ClassTag::getNumClassTags(), count);
  // Every way of making a tag carries the length of the interned spelling.
  for (ClassTag const &tag : {first, found, ClassTag("marlix.TEST.lookedup"), ClassTag(first.getHash(), true),
                              ClassTag(first.getId(), false)})
    EXPECT_EQ(tag.getNameLength(), std::strlen("Marlix.test.LookedUp"));
  EXPECT_EQ(ClassTag().getNameLength(), 0u);
  EXPECT_EQ(ClassTag("").getNameLength(), 0u);
}

// Caches of findClass compare the binding generation: binding and unbinding change it.
struct GenerationProbe {
  static quarn::ClassTagDecl const Tag;
  static quarn::Object *newInstance() { return nullptr; }
};
quarn::ClassTagDecl const GenerationProbe::Tag("Marlix.test.GenerationProbe");

TEST(ClassTagTest, BindingAndUnbindingChangeTheBindingGeneration) {
  unsigned int const before = ClassTag::getBindingGeneration();
  unsigned int bound;
  {
    quarn::ClassImp<GenerationProbe> c;  // binds itself to the tag
    bound = ClassTag::getBindingGeneration();
    EXPECT_NE(bound, before);
    EXPECT_EQ(ClassTag::getBindingGeneration(), bound);  // reading changes nothing
  }
  EXPECT_NE(ClassTag::getBindingGeneration(), bound);  // unbound
}

TEST(ClassTagTest, MemoryUsageBlockAccumulatesPerTag) {
  ClassTag a("Marlix.test.MemoryA");
  ClassTag b("Marlix.test.MemoryB");
  int info[1 + 3 * 4] = {0};
  a.addMemoryUsage(10, info);
  a.addMemoryUsage(20, info);
  EXPECT_EQ(std::vector<int>(info, info + 4), (std::vector<int>{1, a.getId(), 2, 30}));  // count; id, objects, bytes
  b.addMemoryUsage(5, info);
  EXPECT_EQ(ClassTag::getInfoSize(info), 2);
  EXPECT_EQ(ClassTag::getAllObjects(info), 3u);
  EXPECT_EQ(ClassTag::getAllBytes(info), 35u);
  EXPECT_EQ(ClassTag::getNumObjects(info, b), 1);
  EXPECT_EQ(ClassTag::getNumBytes(info, a), 30);
  ClassTag absent("Marlix.test.MemoryAbsent");
  EXPECT_EQ(ClassTag::getNumObjects(info, absent), 0);

  quarn::BaseString<unsigned short> name;
  int objects = 0, bytes = 0;
  ClassTag::getInfo(info, 1, name, objects, bytes);
  EXPECT_EQ(name, quarn::BaseString<unsigned short>("Marlix.test.MemoryB"));
  EXPECT_EQ(objects * 100 + bytes, 105);
  int empty[1] = {0};
  EXPECT_EQ(ClassTag::getAllObjects(empty), 0u);
}

}  // namespace
