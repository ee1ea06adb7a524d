// TimeStampTest.cpp - time stamps read in fixed time zones, each in a child process
#include <gtest/gtest.h>
#include <quarn/util/TimeStamp.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <ctime>
#include <random>
#include <string>
#include <vector>

namespace quarn {
namespace {

long convert(std::u16string const &stamp) {
  return util::ConvertTime(reinterpret_cast<unsigned short const *>(stamp.c_str()));
}

struct Case {
  std::u16string stamp;
  long expected;
};

// Converts every stamp in a child process whose TZ is `zone` (POSIX rules,
// so no zone files are needed) and checks the results here.
void expectInZone(char const *zone, std::vector<Case> const &cases) {
  int fds[2];
  ASSERT_EQ(pipe(fds), 0);
  pid_t const pid = fork();
  ASSERT_GE(pid, 0);
  if (pid == 0) {
    close(fds[0]);
    setenv("TZ", zone, 1);
    tzset();
    for (Case const &c : cases) {
      long const value = convert(c.stamp);
      if (write(fds[1], &value, sizeof value) != sizeof value) _exit(2);
    }
    _exit(0);
  }
  close(fds[1]);
  std::vector<long> results(cases.size());
  std::size_t got = 0;
  auto *out = reinterpret_cast<char *>(results.data());
  for (ssize_t n;
       got < results.size() * sizeof(long) && (n = read(fds[0], out + got, results.size() * sizeof(long) - got)) > 0;)
    got += static_cast<std::size_t>(n);
  close(fds[0]);
  int status = 0;
  ASSERT_EQ(waitpid(pid, &status, 0), pid);
  ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
  ASSERT_EQ(got, results.size() * sizeof(long));
  for (std::size_t i = 0; i < cases.size(); ++i)
    EXPECT_EQ(results[i], cases[i].expected)
        << zone << ": " << std::string(cases[i].stamp.begin(), cases[i].stamp.end());
}

TEST(TimeStampTest, ReadsStampsInUniversalTime) {
  expectInZone("UTC0", {
                           {u"Wed Jan 02 02:03:55 1980", 315626635},
                           {u"Thu Jan 01 00:00:00 1970", 0},
                           {u"Thu Jan 01 00:00:00 1", 0},  // year 1 stands for 1970
                           {u"tHU jAN 01 00:00:00 1970", 0},
                           {u"Xyz Foo 02 02:03:55 1980", 315626635},  // unknown names: January
                           {u"Wed J\u00e4n 02 02:03:55 1980", 315626635},
                           {u"Wed Jan 1 0:0:0 1902", -2145916800},
                           {u"Thu Dec 31 23:59:59 2037", 2145916799},
                           {u"Fri Feb 30 00:00:00 2001", 983491200},  // carried into March
                           {u"Sat Jan 00 00:00:00 2000", 946598400},  // day 0: the last of December
                           {u"  Wed   Jan 02   02:03:55 1980 trailing", 315626635},
                           {u"Tue Dec 31 23:59:59 1901", -1},
                           {u"Fri Jan 01 00:00:00 2038", -1},
                           {u"Fri Jan 01 00:00:00 0", -1},
                           {u"Fri Jan 01 00:00:00 -1970", -1},
                           {u"Wed Jan 02 02:03", -1},  // no year read
                           {u"Wed Jan 02 1980", -1},   // 1980 read as hours, then no ':'
                           {u"hello", -1},
                           {u"", -1},
                       });
}

TEST(TimeStampTest, ReadsStampsAsLocalTime) {
  expectInZone("JST-9", {
                            {u"Thu Jan 01 09:00:00 1970", 0},
                            {u"Thu Jan 01 09:00:00 1", 0},
                            {u"Wed Jan 02 02:03:55 1980", 315626635 - 9 * 3600},
                        });
  // Daylight saving is left for mktime to decide from the date.
  expectInZone("EST5EDT,M3.2.0,M11.1.0", {
                                             {u"Sat Jul 04 12:00:00 1998", 899553600 + 4 * 3600},
                                             {u"Sun Jan 04 12:00:00 1998", 883915200 + 5 * 3600},
                                         });
}

TEST(TimeStampTest, NullTextIsFailure) { EXPECT_EQ(util::ConvertTime(nullptr), -1); }

TEST(TimeStampTest, SurvivesRandomText) {
  // Text without digits never reaches a year; text with them may give any
  // time, and the sanitizer build checks that nothing is read out of bounds.
  std::mt19937 random(21);
  std::u16string const letters = u"  JanFebDecWedthu:\u00e4\uffff", digits = u"0123456789::  -+";
  std::uniform_int_distribution<int> length(0, 40), coin(0, 1);
  for (int round = 0; round < 2000; ++round) {
    bool const withDigits = coin(random);
    std::u16string const alphabet = withDigits ? letters + digits : letters;
    std::uniform_int_distribution<std::size_t> pick(0, alphabet.size() - 1);
    std::u16string stamp;
    for (int n = length(random); n > 0; --n) stamp.push_back(alphabet[pick(random)]);
    long const value = convert(stamp);
    if (!withDigits) {
      ASSERT_EQ(value, -1) << std::string(stamp.begin(), stamp.end());
    }
  }
}

}  // namespace
}  // namespace quarn
