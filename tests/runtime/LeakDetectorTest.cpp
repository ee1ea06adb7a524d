// LeakDetectorTest.cpp - live counts, naming, and the text of the leak report
#include <quarnCore/LeakDetector.h>

#include <cstdio>
#include <string>

#include <gtest/gtest.h>

namespace {

using quarn::LeakDetector;

std::string report() {
  quarn::BaseString<unsigned short> text("");
  LeakDetector::report(text);
  std::string narrow;
  for (unsigned int i = 0; i < text.getLength(); ++i) narrow.push_back(static_cast<char>(text[i]));
  return narrow;
}

std::string atLine(void const *p) {
  char line[64];
  std::snprintf(line, sizeof line, "  at %p\n", p);
  return line;
}

TEST(LeakDetectorTest, CountsLiveInstances) {
  long before = LeakDetector::getTotalLiveCount();
  LeakDetector detector("CountedThing");
  int a, b, c;
  detector.Add(&a, "CountedThing");
  detector.Add(&b, "CountedThing");
  detector.Add(&c, "CountedThing");
  detector.Sub(&b);
  EXPECT_EQ(detector.getLiveCount(), 2);
  EXPECT_EQ(LeakDetector::getTotalLiveCount(), before + 2);
  detector.Sub(&a);
  detector.Sub(&c);
  EXPECT_EQ(LeakDetector::getTotalLiveCount(), before);
}

TEST(LeakDetectorTest, TakesItsNameFromTheFirstNamedAdd) {
  LeakDetector unnamed;
  EXPECT_EQ(unnamed.getName(), quarn::BaseString<char>(""));
  int x;
  unnamed.Add(&x, "FirstName");
  unnamed.Add(&x, "SecondName");
  EXPECT_EQ(unnamed.getName(), quarn::BaseString<char>("FirstName"));
  unnamed.Sub(&x);
  unnamed.Sub(&x);
  unsigned short const wide[] = {'W', 0x0141, 'd', 0};
  LeakDetector fromWide(wide);
  EXPECT_EQ(fromWide.getName(), quarn::BaseString<char>("W?d"));
}

TEST(LeakDetectorTest, ReportListsLiveClassesAndTrackedAddresses) {
  unsigned int before = [] {
    quarn::BaseString<unsigned short> ignored;
    return LeakDetector::report(ignored);
  }();
  int a, b;
  {
    LeakDetector counted("ReportedThing");
    LeakDetector tracked("TrackedThing", true);
    LeakDetector idle("IdleThing");
    counted.Add(&a, "ReportedThing");
    counted.Add(&b, "ReportedThing");
    tracked.Add(&a, "TrackedThing");
    tracked.Add(&b, "TrackedThing");
    tracked.Sub(&a);
    quarn::BaseString<unsigned short> text;
    EXPECT_EQ(LeakDetector::report(text), before + 2);
    std::string r = report();
    EXPECT_NE(r.find("ReportedThing: 2 live\n"), std::string::npos) << r;
    EXPECT_NE(r.find("TrackedThing: 1 live\n" + atLine(&b)), std::string::npos) << r;
    EXPECT_EQ(r.find(atLine(&a)), std::string::npos) << r;
    EXPECT_EQ(r.find("IdleThing"), std::string::npos) << r;
  }
  // Destroyed detectors leave the list even with instances still counted.
  EXPECT_EQ(report().find("ReportedThing"), std::string::npos);
}

}  // namespace
