// MathTest.cpp - the chapter-26 approximations against true distribution values
#include <gtest/gtest.h>
#include <quarn/eval/Math.h>

#include <climits>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <initializer_list>
#include <limits>
#include <map>
#include <string>
#include <vector>

#include "support/DataRows.h"

namespace quarn {
namespace {

// True values from eval/data/distributions.tsv: table, x (or chi-square or t), degrees, expected.
struct Reference {
  double x;
  int v;
  double expected;
};
std::vector<Reference> const &reference(std::string const &table) {
  static auto const tables = [] {
    std::map<std::string, std::vector<Reference>> out;
    for (auto const &f : test::readRows("eval/data/distributions.tsv", 4))
      out[f[0]].push_back({std::stod(f[1]), std::stoi(f[2]), std::stod(f[3])});
    return out;
  }();
  auto const found = tables.find(table);
  if (found == tables.end()) throw std::runtime_error("no reference table " + table);
  return found->second;
}
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

Array<double> arrayOf(std::initializer_list<double> values) {
  Array<double> a;
  for (double v : values) a.append(v);
  return a;
}

// The exact sums agree with the true values to rounding.
constexpr double kSumRelative = 1e-12;
::testing::AssertionResult nearRelative(double got, double want) {
  if (std::fabs(got - want) <= kSumRelative * std::fabs(want)) return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure() << got << " vs " << want;
}

TEST(MathTest, DoubleToIntRoundsHalfAwayFromZeroAndSaturates) {
  struct Case {
    double x;
    int expected;
  };
  // clang-format off
  Case const cases[] = {{2.5, 3},       {-2.5, -3},       {0.0, 0},         {-0.0, 0},
                        {0.49, 0},      {-0.49, 0},       {1.5, 2},         {-1.5, -2},
                        {2147483646.6, INT_MAX}, {-2147483648.4, INT_MIN}, {1e300, INT_MAX},
                        {-1e300, INT_MIN}, {kNaN, 0}};
  // clang-format on
  for (Case const &c : cases) EXPECT_EQ(Math::doubleToInt(c.x), c.expected) << c.x;
}

TEST(MathTest, NormalDensityAndItsScaledForms) {
  EXPECT_DOUBLE_EQ(Math::z_26_2_1(0), 0.3989422804014327);
  EXPECT_DOUBLE_EQ(Math::z_26_2_1(-1), 0.24197072451914337);
  EXPECT_DOUBLE_EQ(Math::gaussianPDF(1, 2, 3), 0.5 * Math::z_26_2_1(1));
  for (double sigma : {0.0, -1.0}) {
    EXPECT_EQ(Math::gaussianPDF(0, sigma, 0.5), 0.0);
    EXPECT_EQ(Math::gaussianCDF(0, sigma, 0.5), 0.0);
  }
}

TEST(MathTest, NormalTailsStayWithinTheirBounds) {
  for (Reference const &r : reference("NormalLowerTail")) {
    EXPECT_NEAR(Math::p_26_2_17(r.x), r.expected, 7.5e-8) << r.x;
    EXPECT_NEAR(Math::q_26_2_17(r.x), 1 - r.expected, 7.5e-8) << r.x;
    EXPECT_NEAR(Math::gaussianCDF(10, 2, 10 + 2 * r.x), r.expected, 7.5e-8) << r.x;
    EXPECT_NEAR(Math::p_26_2_18(r.x), r.expected, 2.5e-4) << r.x;
  }
}

TEST(MathTest, ChiSquareSumsMatchTheTrueTail) {
  for (Reference const &r : reference("ChiSquareUpperTail")) {
    SCOPED_TRACE(testing::Message() << r.x << " " << r.v);
    double const q = Math::chiQ_Exact(r.x, r.v);
    if (r.v % 2 == 0) {
      EXPECT_TRUE(nearRelative(Math::chiQ_26_4_5(r.x, r.v), r.expected));
      EXPECT_EQ(q, Math::chiQ_26_4_5(r.x, r.v));
    } else {
      // 26.4.4 inherits twice the absolute error of 26.2.17. Its sum keeps
      // the first term even for one degree, which gives the tail for three.
      if (r.v > 1) {
        EXPECT_NEAR(Math::chiQ_26_4_4(r.x, r.v), r.expected, 1.5e-7);
      }
      if (r.v == 3) {
        EXPECT_NEAR(Math::chiQ_26_4_4(r.x, 1), r.expected, 1.5e-7);
      }
      EXPECT_EQ(q, Math::chiQ_26_4_4(r.x, r.v));
    }
    EXPECT_EQ(Math::chiQ(r.x, r.v), q);
    EXPECT_EQ(Math::chiP(r.x, r.v), 1 - q);
  }
}

TEST(MathTest, ArgumentsOutsideTheFormulasAreNotCheckedButStayDefined) {
  EXPECT_TRUE(std::isnan(Math::chiQ_26_4_4(-1, 3)));
  EXPECT_TRUE(std::isnan(Math::chiQ_26_4_5(-1, 4)));
  EXPECT_TRUE(std::isnan(Math::chiQ_26_4_14(-1, 40)));
  // The sums run no terms; the sanitizer build checks that their bounds do not overflow.
  for (int v : {INT_MIN, -2}) EXPECT_NEAR(Math::chiQ_26_4_5(2, v), std::exp(-1.0), 1e-15) << v;
  for (int v : {INT_MIN + 1, -1}) EXPECT_EQ(Math::chiQ_26_4_4(2, v), Math::chiQ_26_4_4(2, 1)) << v;
  for (int v : {INT_MIN, -1}) EXPECT_TRUE(std::isnan(Math::a_26_7(1, v))) << v;
}

TEST(MathTest, WilsonHilfertyFollowsTheTailForManyDegrees) {
  for (Reference const &r : reference("ChiSquareManyDegrees")) {
    // Cube-root approximation: within 5e-4 from 31 degrees on this grid.
    EXPECT_NEAR(Math::chiQ_26_4_14(r.x, r.v), r.expected, 5e-4) << r.x << " " << r.v;
    EXPECT_EQ(Math::chiQ(r.x, r.v), Math::chiQ_26_4_14(r.x, r.v));
    EXPECT_EQ(Math::chiP_26_4_14(r.x, r.v), 1 - Math::chiQ_26_4_14(r.x, r.v));
  }
  EXPECT_EQ(Math::chiQ(25, 30), Math::chiQ_26_4_5(25, 30));
  EXPECT_EQ(Math::chiQ(25, 31), Math::chiQ_26_4_14(25, 31));
  EXPECT_NE(Math::chiQ(25, 31), Math::chiQ_26_4_4(25, 31));
}

TEST(MathTest, StudentSumIsExact) {
  for (Reference const &r : reference("StudentA")) {
    EXPECT_TRUE(nearRelative(Math::a_26_7_3(r.x, r.v), r.expected)) << r.x << " " << r.v;
    EXPECT_TRUE(nearRelative(Math::a_26_7_3(-r.x, r.v), r.expected)) << -r.x << " " << r.v;
    EXPECT_EQ(Math::a_26_7(r.x, r.v), Math::a_26_7_3(r.x, r.v));  // |t| <= 10 or v > 5
  }
}

TEST(MathTest, StudentApproximationsFollowTheTail) {
  for (Reference const &r : reference("StudentAManyDegrees")) {
    // Normal approximation: within 2e-5 from 101 degrees on this grid.
    EXPECT_NEAR(Math::a_26_7_8(r.x, r.v), r.expected, 2e-5) << r.x << " " << r.v;
    EXPECT_EQ(Math::a_26_7(r.x, r.v), Math::a_26_7_8(r.x, r.v));
  }
  for (Reference const &r : reference("StudentALargeT")) {
    // Asymptotic series with its |t|^(v+1) second term: within 2.5e-4 above t = 10.
    EXPECT_NEAR(Math::a_26_7_7(r.x, r.v), r.expected, 2.5e-4) << r.x << " " << r.v;
    EXPECT_EQ(Math::a_26_7(-r.x, r.v), Math::a_26_7_7(r.x, r.v));
  }
}

TEST(MathTest, StudentAsymptoticSeriesDividesByTheNextPower) {
  // 1 - 2 (0.4991 / 20^2 + 0.0518 / 20^3)
  EXPECT_DOUBLE_EQ(Math::a_26_7_7(20, 2), 0.99749155);
  // 1 - 2 (9.948 / 11^5 - 14.05 / 11^6)
  EXPECT_DOUBLE_EQ(Math::a_26_7_7(-11, 5), 1 - 2 * (9.948 / 161051.0 - 14.05 / 1771561.0));
  for (int v : {0, 6, -1}) EXPECT_TRUE(std::isnan(Math::a_26_7_7(20, v))) << v;
}

TEST(MathTest, StudentChooserBoundaries) {
  struct Case {
    double t;
    int v;
    double (*expected)(double, int);
  };
  Case const cases[] = {
      {20, 5, Math::a_26_7_7},  {10, 5, Math::a_26_7_3},   {10.001, 5, Math::a_26_7_7},
      {-20, 1, Math::a_26_7_7}, {20, 6, Math::a_26_7_3},   {1, 100, Math::a_26_7_3},
      {1, 101, Math::a_26_7_8}, {20, 101, Math::a_26_7_8}, {0.5, 1, Math::a_26_7_3},
  };
  for (Case const &c : cases) EXPECT_EQ(Math::a_26_7(c.t, c.v), c.expected(c.t, c.v)) << c.t << " " << c.v;
}

TEST(MathTest, MeanAndDotProduct) {
  EXPECT_EQ(Math::getMean(arrayOf({1, 2, 3, 4})), 2.5);
  EXPECT_TRUE(std::isnan(Math::getMean(arrayOf({}))));
  EXPECT_EQ(Math::dotProduct(arrayOf({1, 2, 3}), arrayOf({4, 5, 6})), 32.0);
  EXPECT_EQ(Math::dotProduct(arrayOf({1, 2}), arrayOf({1, 2, 3})), 0.0);
  EXPECT_EQ(Math::dotProduct(arrayOf({}), arrayOf({})), 0.0);
}

TEST(MathTest, CorrelationCoefficient) {
  struct Case {
    std::initializer_list<double> x, y;
    double expected;  // NaN where there is no correlation to give
  };
  double const big = 1e9;
  Case const cases[] = {
      {{1, 2, 3, 4, 5}, {2, 4, 5, 4, 5}, 0.7745966692414834},  // sqrt(0.6)
      {{big + 1, big + 2, big + 3, big + 4, big + 5},
       {big + 2, big + 4, big + 5, big + 4, big + 5},
       0.7745966692414834},
      {{1, 2, 3}, {3, 5, 7}, 1.0},
      {{0.1, 0.2, 0.3, 0.4}, {-1, -2, -3, -4}, -1.0},
      {{1, 2}, {1, 2, 3}, kNaN},
      {{1}, {1}, kNaN},
      {{}, {}, kNaN},
      {{2, 2, 2}, {1, 2, 3}, kNaN},
      {{1, 2, 3}, {5, 5, 5}, kNaN},
  };
  for (Case const &c : cases) {
    double const r = Math::getCorrelationCoefficient(arrayOf(c.x), arrayOf(c.y));
    if (std::isnan(c.expected)) {
      EXPECT_TRUE(std::isnan(r)) << r;
    } else {
      EXPECT_NEAR(r, c.expected, 1e-12);
      EXPECT_LE(std::fabs(r), 1.0);
    }
  }
}

TEST(MathTest, PrintWritesOneLineOfShortestTexts) {
  struct Case {
    std::initializer_list<double> values;
    char const *expected;
  };
  Case const cases[] = {
      {{}, "[]\n"},
      {{0.1, -0.0, 1e21, 2.5}, "[0.1, -0, 1e+21, 2.5]\n"},
      {{kNaN, -std::numeric_limits<double>::infinity()}, "[nan, -inf]\n"},
  };
  for (Case const &c : cases) {
    char *buffer = nullptr;
    std::size_t size = 0;
    std::FILE *out = open_memstream(&buffer, &size);
    ASSERT_NE(out, nullptr);
    Math::print(arrayOf(c.values), out);
    std::fclose(out);
    EXPECT_EQ(std::string(buffer, size), c.expected);
    std::free(buffer);
  }
}

}  // namespace
}  // namespace quarn
