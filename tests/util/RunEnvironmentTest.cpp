// RunEnvironmentTest.cpp - the run getters over a context's run properties, and the system names
#include <gtest/gtest.h>
#include <quarn/core/Ptr.h>
#include <quarn/data/PropertyHelpers.h>
#include <quarn/eval/RunContext.h>
#include <quarn/util/RunEnvironment.h>

#include <pwd.h>
#include <unistd.h>

#include <climits>
#include <string>
#include <vector>

#include "value/ValueTesting.h"

namespace quarn::test {
namespace {

using Getter = void (*)(iContext const *, WString &);

struct Case {
  char const *name;
  Getter get;
  char const *property;
  std::u16string present;  // with the property set to "value"
  std::u16string absent;   // without it, the output pre-filled with "default"
};

Case const kCases[] = {
    {"getUserName", util::getUserName, "USERNAME", u"value", u"default"},
    {"getSessionID", util::getSessionID, "SessionID", u"value", u"default"},
    {"getLocalRunDirectory", util::getLocalRunDirectory, "RunDirectoryLocal", u"value", u""},
    {"getRootDirectory", util::getRootDirectory, "MarlixRoot", u"value", u""},
    {"getLocalRunDirectoryTemp", util::getLocalRunDirectoryTemp, "RunDirectoryLocal", u"value/temp", u"/temp"},
};

std::u16string run(Getter get, iContext const *context) {
  WString out("default");
  get(context, out);
  return str(out);
}

TEST(RunEnvironmentTest, GettersReadTheirRunPropertyAndLeaveOrClearTheOutputWhenAbsent) {
  for (Case const &c : kCases) {
    Ptr<RunContext> context(RunContext::newInstance());
    iPropertyCollection &run = *context->getRunProperties();
    EXPECT_EQ(test::run(c.get, context.get()), c.absent) << c.name;
    EXPECT_EQ(test::run(c.get, nullptr), c.absent) << c.name << " without a context";
    // Names are exact: another letter case is a different property.
    std::string lower(c.property);
    for (char &ch : lower) ch = static_cast<char>(std::tolower(static_cast<unsigned char>(ch)));
    util::defineStringValue(run, WString(lower.c_str()), WString("wrong"));
    EXPECT_EQ(test::run(c.get, context.get()), c.absent) << c.name << " with " << lower;
    util::defineStringValue(run, WString(c.property), WString("value"));
    EXPECT_EQ(test::run(c.get, context.get()), c.present) << c.name;
  }
}

TEST(RunEnvironmentTest, AnyValueClassGivesItsText) {
  Ptr<RunContext> context(RunContext::newInstance());
  util::defineIntegerValue(*context->getRunProperties(), WString("SessionID"), 4711);
  EXPECT_EQ(run(util::getSessionID, context.get()), u"4711");
}

/// `text` as the getters give it: widened from UTF-8, cut to `limit` units.
std::u16string systemName(std::string const &text, unsigned int limit) {
  WString wide;
  util::ConvertUTF8toString(wide, text.c_str());
  std::u16string out = str(wide);
  return out.substr(0, limit);
}

TEST(RunEnvironmentTest, HostNameIsTheSystemsCutTo15Units) {
  char name[HOST_NAME_MAX + 1] = {};
  ASSERT_EQ(gethostname(name, sizeof name - 1), 0);
  WString out("stale");
  util::getHostName(out);
  EXPECT_EQ(str(out), systemName(name, 15));
  EXPECT_LE(out.getLength(), 15u);
}

TEST(RunEnvironmentTest, UserNameIsTheEffectiveUsersAccountCutTo127Units) {
  std::vector<char> buffer(1 << 16);
  passwd entry{};
  passwd *found = nullptr;
  ASSERT_EQ(getpwuid_r(geteuid(), &entry, buffer.data(), buffer.size(), &found), 0);
  if (!found) GTEST_SKIP() << "the effective user " << geteuid() << " has no account entry";
  WString out("stale");
  util::getUserName(out);
  EXPECT_EQ(str(out), systemName(found->pw_name, 127));
}

}  // namespace
}  // namespace quarn::test
