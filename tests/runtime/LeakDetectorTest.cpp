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
  EXPECT_EQ(LeakDetector(wide).getName(), quarn::BaseString<char>("W?d"));
}

TEST(LeakDetectorTest, CountsLiveInstancesAndReportsLiveClassesAndTrackedAddresses) {
  quarn::BaseString<unsigned short> text;
  unsigned int before = LeakDetector::report(text);
  long totalBefore = LeakDetector::getTotalLiveCount();
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
    EXPECT_EQ(counted.getLiveCount(), 2);
    EXPECT_EQ(LeakDetector::getTotalLiveCount(), totalBefore + 3);
    EXPECT_EQ(LeakDetector::report(text), before + 2);
    std::string r = report();
    EXPECT_NE(r.find("ReportedThing: 2 live\n"), std::string::npos) << r;
    EXPECT_NE(r.find("TrackedThing: 1 live\n" + atLine(&b)), std::string::npos) << r;
    EXPECT_EQ(r.find(atLine(&a)), std::string::npos) << r;
    EXPECT_EQ(r.find("IdleThing"), std::string::npos) << r;
    counted.Sub(&b);
    tracked.Sub(&b);
    EXPECT_EQ(LeakDetector::getTotalLiveCount(), totalBefore + 1);
  }
  // Destroyed detectors leave the list even with instances still counted.
  EXPECT_EQ(report().find("ReportedThing"), std::string::npos);
}

}  // namespace
