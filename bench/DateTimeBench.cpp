// DateTimeBench.cpp - date-time conversions, formatting and parsing against Hinnant's date, std::chrono and glibc
//
// Conversions: 4096 instants from 1583 to 2400 (century years, 28 and 29
// February and year ends among them), calendar fields to a julian day number
// (TMToJulian) and back (julianToTM), every row reading the same struct tm
// and milliseconds and writing a struct tm, beside Howard Hinnant's date library
// (sys_days <-> year_month_day plus the fraction of the day through hh_mm_ss)
// when it is installed, and the same with C++20 std::chrono.
//
// Text: getString of a value whose text cache is invalid (a field was set
// again, as when a record is refilled) with the default format
// "%a %b %e %T %Y", into a string whose buffer is kept, beside glibc's
// wcsftime and strftime of the same struct tm in the C locale; set(text,
// format) with that format beside glibc's strptime.
//
// Every row counts instants per second; the program ends with "ratio <row>
// quarn/<peer> = X" lines: above 1, quarn is faster.
#include <chrono>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <cwchar>
#include <random>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include <quarn/value/DateTimeValue.h>

#if __has_include(<date/date.h>)
#include <date/date.h>
#define QUARN_HAVE_HINNANT_DATE 1
#endif

#include "BenchSupport.h"

namespace {

using quarn::DateTimeValue;
constexpr std::size_t kCount = 4096;

struct Instant {
  int year, month, day, hour, minute, second, ms;
};

std::vector<Instant> instants() {
  std::mt19937 gen(2010);
  std::uniform_int_distribution<int> year(1583, 2400), month(1, 12), hour(0, 23), minute(0, 59), ms(0, 999);
  std::vector<Instant> out(kCount);
  for (std::size_t i = 0; i < kCount; ++i) {
    Instant &t = out[i];
    t.year = year(gen);
    t.month = month(gen);
    t.day = std::uniform_int_distribution<int>(1, DateTimeValue::daysInMonth(t.month, t.year))(gen);
    t.hour = hour(gen), t.minute = minute(gen), t.second = minute(gen), t.ms = ms(gen);
    switch (i % 16) {  // the awkward days
      case 0: t.year = 1600 + 100 * static_cast<int>(i / 16 % 9), t.month = 1, t.day = 1; break;
      case 1: t.year = 1584 + 4 * static_cast<int>(i / 16 % 200), t.month = 2, t.day = 29; break;
      case 2: t.month = 2, t.day = 28; break;
      case 3: t.month = 12, t.day = 31; break;
      default: break;
    }
  }
  return out;
}

struct tm fieldsOf(Instant const &t) {
  struct tm f {};
  f.tm_year = t.year - 1900, f.tm_mon = t.month - 1, f.tm_mday = t.day;
  f.tm_hour = t.hour, f.tm_min = t.minute, f.tm_sec = t.second;
  return f;
}

void setItems(benchmark::State &state) {
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * kCount));
}

// ---- calendar -> julian

void toJulianQuarn(benchmark::State &state, std::vector<struct tm> const &fields, std::vector<int> const &ms) {
  for (auto _ : state)
    for (std::size_t i = 0; i < kCount; ++i) {
      double jd;
      DateTimeValue::TMToJulian(fields[i], ms[i], jd);
      benchmark::DoNotOptimize(jd);
    }
  setItems(state);
}

template <class Days, class YMD, class Year, class Month, class Day>
double julianOf(struct tm const &t, int ms) {
  Days const days = YMD(Year(t.tm_year + 1900), Month(static_cast<unsigned>(t.tm_mon + 1)),
                        Day(static_cast<unsigned>(t.tm_mday)));
  double const seconds = ((t.tm_hour - 12) * 60 + t.tm_min) * 60 + t.tm_sec + ms / 1000.0;
  return static_cast<double>(days.time_since_epoch().count()) + 2440588 + seconds / 86400;
}

void toJulianChrono(benchmark::State &state, std::vector<struct tm> const &fields, std::vector<int> const &ms) {
  namespace c = std::chrono;
  for (auto _ : state)
    for (std::size_t i = 0; i < kCount; ++i)
      benchmark::DoNotOptimize(julianOf<c::sys_days, c::year_month_day, c::year, c::month, c::day>(fields[i], ms[i]));
  setItems(state);
}

#ifdef QUARN_HAVE_HINNANT_DATE
void toJulianHinnant(benchmark::State &state, std::vector<struct tm> const &fields, std::vector<int> const &ms) {
  for (auto _ : state)
    for (std::size_t i = 0; i < kCount; ++i)
      benchmark::DoNotOptimize(
          julianOf<date::sys_days, date::year_month_day, date::year, date::month, date::day>(fields[i], ms[i]));
  setItems(state);
}
#endif

// ---- julian -> calendar

void fromJulianQuarn(benchmark::State &state, std::vector<double> const &julians) {
  for (auto _ : state)
    for (double jd : julians) {
      struct tm f;
      int ms;
      DateTimeValue::julianToTM(jd, f, ms);
      benchmark::DoNotOptimize(f);
      benchmark::DoNotOptimize(ms);
    }
  setItems(state);
}

template <class Days, class YMD, class HMS, class Ms>
void calendarOf(double jd, struct tm &f, int &ms) {
  double const t = jd - 2440587.5;
  double const whole = std::floor(t);
  YMD const ymd{Days{typename Days::duration{static_cast<int>(whole)}}};
  HMS const hms{Ms{static_cast<long long>((t - whole) * 86400000.0 + 0.5)}};
  f.tm_year = static_cast<int>(ymd.year()) - 1900;
  f.tm_mon = static_cast<int>(static_cast<unsigned>(ymd.month())) - 1;
  f.tm_mday = static_cast<int>(static_cast<unsigned>(ymd.day()));
  f.tm_hour = static_cast<int>(hms.hours().count());
  f.tm_min = static_cast<int>(hms.minutes().count());
  f.tm_sec = static_cast<int>(hms.seconds().count());
  ms = static_cast<int>(hms.subseconds().count());
}

void fromJulianChrono(benchmark::State &state, std::vector<double> const &julians) {
  namespace c = std::chrono;
  for (auto _ : state)
    for (double jd : julians) {
      struct tm f;
      int ms;
      calendarOf<c::sys_days, c::year_month_day, c::hh_mm_ss<c::milliseconds>, c::milliseconds>(jd, f, ms);
      benchmark::DoNotOptimize(f);
      benchmark::DoNotOptimize(ms);
    }
  setItems(state);
}

#ifdef QUARN_HAVE_HINNANT_DATE
void fromJulianHinnant(benchmark::State &state, std::vector<double> const &julians) {
  for (auto _ : state)
    for (double jd : julians) {
      struct tm f;
      int ms;
      calendarOf<date::sys_days, date::year_month_day, date::hh_mm_ss<std::chrono::milliseconds>,
                 std::chrono::milliseconds>(jd, f, ms);
      benchmark::DoNotOptimize(f);
      benchmark::DoNotOptimize(ms);
    }
  setItems(state);
}
#endif

// ---- formatting

void formatQuarn(benchmark::State &state, std::vector<DateTimeValue> *values) {
  DateTimeValue::WString out;
  for (auto _ : state)
    for (DateTimeValue &v : *values) {
      v.setDayOfMonth(v.getDayOfMonth());  // the cached text is stale now
      v.getString(out);
      benchmark::DoNotOptimize(out.getBuffer());
    }
  setItems(state);
}

void formatWcsftime(benchmark::State &state, std::vector<struct tm> const &fields) {
  wchar_t buffer[64];
  for (auto _ : state)
    for (struct tm const &f : fields) benchmark::DoNotOptimize(std::wcsftime(buffer, 64, L"%a %b %e %T %Y", &f));
  setItems(state);
}

void formatStrftime(benchmark::State &state, std::vector<struct tm> const &fields) {
  char buffer[64];
  for (auto _ : state)
    for (struct tm const &f : fields) benchmark::DoNotOptimize(std::strftime(buffer, 64, "%a %b %e %T %Y", &f));
  setItems(state);
}

// ---- parsing

void parseQuarn(benchmark::State &state, std::vector<DateTimeValue::WString> const &texts) {
  static DateTimeValue::WString const format("%a %b %e %T %Y");
  DateTimeValue v;
  for (auto _ : state)
    for (auto const &text : texts) {
      v.set(text.getBuffer(), format.getBuffer());
      benchmark::DoNotOptimize(v.getTM());
    }
  setItems(state);
}

void parseStrptime(benchmark::State &state, std::vector<std::string> const &texts) {
  for (auto _ : state)
    for (auto const &text : texts) {
      struct tm f {};
      benchmark::DoNotOptimize(strptime(text.c_str(), "%a %b %e %T %Y", &f));
      benchmark::DoNotOptimize(f);
    }
  setItems(state);
}

}  // namespace

int main(int argc, char **argv) {
  quarn::bench::RatioReporter reporter;
  auto pair = [&](std::string const &row, char const *peer) {
    reporter.add({row + " quarn/" + peer, row + "/quarn", row + "/" + peer, "items_per_second"});
  };
  static std::vector<Instant> const in = instants();
  static std::vector<struct tm> fields, fullFields;
  static std::vector<int> ms;
  static std::vector<double> julians;
  static std::vector<DateTimeValue> values(kCount);
  static std::vector<DateTimeValue::WString> texts;
  static std::vector<std::string> narrowTexts;
  for (std::size_t i = 0; i < kCount; ++i) {
    Instant const &t = in[i];
    fields.push_back(fieldsOf(t));
    ms.push_back(t.ms);
    double jd;
    DateTimeValue::TMToJulian(fields.back(), t.ms, jd);
    julians.push_back(jd);
    values[i].set(t.year, t.month, t.day, t.hour, t.minute, t.second, t.ms);
    struct tm full = fields.back();
    full.tm_wday = values[i].getDayOfWeek() - 1;
    full.tm_yday = values[i].getDayOfYear() - 1;
    fullFields.push_back(full);
    texts.push_back(values[i].getText());
    char narrow[64];
    std::strftime(narrow, sizeof narrow, "%a %b %e %T %Y", &full);
    narrowTexts.emplace_back(narrow);
  }

  benchmark::RegisterBenchmark("toJulian/quarn", toJulianQuarn, fields, ms);
  benchmark::RegisterBenchmark("toJulian/chrono", toJulianChrono, fields, ms);
  benchmark::RegisterBenchmark("fromJulian/quarn", fromJulianQuarn, julians);
  benchmark::RegisterBenchmark("fromJulian/chrono", fromJulianChrono, julians);
  pair("toJulian", "chrono");
  pair("fromJulian", "chrono");
#ifdef QUARN_HAVE_HINNANT_DATE
  benchmark::RegisterBenchmark("toJulian/hinnant", toJulianHinnant, fields, ms);
  benchmark::RegisterBenchmark("fromJulian/hinnant", fromJulianHinnant, julians);
  pair("toJulian", "hinnant");
  pair("fromJulian", "hinnant");
#endif
  benchmark::RegisterBenchmark("format/quarn", formatQuarn, &values);
  benchmark::RegisterBenchmark("format/wcsftime", formatWcsftime, fullFields);
  benchmark::RegisterBenchmark("format/strftime", formatStrftime, fullFields);
  pair("format", "wcsftime");
  pair("format", "strftime");
  benchmark::RegisterBenchmark("parse/quarn", parseQuarn, texts);
  benchmark::RegisterBenchmark("parse/strptime", parseStrptime, narrowTexts);
  pair("parse", "strptime");
  return quarn::bench::runWithRatios(argc, argv, reporter);
}
