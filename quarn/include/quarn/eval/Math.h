// Math.h - normal, chi-square and Student t probabilities, and array statistics
//
// Static functions that expressions call. Each approximation is named after
// the formula it implements from Abramowitz and Stegun, Handbook of
// Mathematical Functions, chapter 26 (p_26_2_17 is formula 26.2.17), and keeps
// that formula's accuracy:
//
//   p_26_2_17  lower normal tail, absolute error below 7.5e-8
//   p_26_2_18  lower normal tail, absolute error below 2.5e-4
//   chiQ_26_4_4 / chiQ_26_4_5  upper chi-square tail for odd / even degrees of
//              freedom: finite sums, the odd one through 26.2.17 (so within
//              1.5e-7), the even one exact to rounding
//   chiQ_26_4_14  Wilson-Hilferty cube-root approximation, for many degrees
//   a_26_7_3   Student A(t|v) = P(|T| < t), a finite sum, exact to rounding
//   a_26_7_7   its asymptotic series for large |t|, for v = 1 to 5
//   a_26_7_8   its normal approximation, for many degrees
//
// The choosers take the exact sums where they are cheap: chiQ uses the sums
// below 31 degrees of freedom and Wilson-Hilferty from 31; a_26_7 uses 26.7.7
// when v <= 5 and |t| > 10, else 26.7.3 below 101 degrees and 26.7.8 from 101.
//
// Kept as stored expressions have always computed them:
// - chiQ_26_4_4 always includes the first term of its sum, so for v = 1 it
//   gives 2 Q(sqrt x) + 2 sqrt(x) Z(sqrt x), which is the tail for 3 degrees.
// - a_26_7_7's second term divides by |t|^(v+1).
//
// Nothing throws, and arguments are not checked: outside a formula's domain
// the result is what the arithmetic gives. A negative chi-square value gives
// NaN (through its square root), degrees of freedom below 1 give numbers
// without meaning, and a_26_7_7 outside v = 1..5, where its coefficients end,
// gives NaN. The exact sums take time in proportion to v. Degrees of freedom
// are `int`, everything else double.
#pragma once

#include <quarn/core/Export.h>
#include <quarnCore/Array.h>

#include <cstdio>

namespace quarn {

/// Stateless: a class only so that its functions share one name; create freely.
class QUARN_API Math {
 public:
  Math() = default;
  Math(Math const &) = default;
  Math &operator=(Math const &) = default;
  virtual ~Math();

  /// `x` rounded half away from zero (2.5 -> 3, -2.5 -> -3). Beyond the int
  /// range the result saturates at INT_MIN / INT_MAX; NaN gives 0.
  static int doubleToInt(double x);

  /// Standard normal density Z(x) = exp(-x^2/2) / sqrt(2 pi) (26.2.1).
  static double z_26_2_1(double x);
  /// Normal density with the given mean and standard deviation; 0.0 when sigma <= 0.
  static double gaussianPDF(double mean, double sigma, double x);
  /// Normal lower tail with the given mean and standard deviation, by 26.2.17;
  /// 0.0 when sigma <= 0.
  static double gaussianCDF(double mean, double sigma, double x);
  /// Lower standard normal tail P(x) by 26.2.17 (negative x: 1 - P(-x)).
  static double p_26_2_17(double x);
  /// Upper tail 1 - p_26_2_17(x).
  static double q_26_2_17(double x);
  /// Lower standard normal tail P(x) by 26.2.18 (negative x: 1 - P(-x)).
  static double p_26_2_18(double x);

  /// Upper chi-square tail Q(x|v) for odd v (26.4.4; see the file comment for v = 1).
  static double chiQ_26_4_4(double x, int v);
  /// Upper chi-square tail Q(x|v) for even v (26.4.5).
  static double chiQ_26_4_5(double x, int v);
  /// chiQ_26_4_4 for odd v, chiQ_26_4_5 for even v.
  static double chiQ_Exact(double x, int v);
  /// Wilson-Hilferty: Q of ((x/v)^(1/3) - (1 - h)) / sqrt(h) with h = 2/(9v) (26.4.14).
  static double chiQ_26_4_14(double x, int v);
  /// chiQ_Exact for v < 31, else chiQ_26_4_14.
  static double chiQ(double x, int v);
  /// The lower tails: 1 - the matching chiQ.
  static double chiP_26_4_4(double x, int v);
  static double chiP_26_4_5(double x, int v);
  static double chiP_Exact(double x, int v);
  static double chiP_26_4_14(double x, int v);
  static double chiP(double x, int v);

  /// Student A(t|v), the probability that |T| < |t|, exactly (26.7.3).
  static double a_26_7_3(double t, int v);
  /// A(t|v) = 1 - 2 (a[v] / |t|^v + b[v] / |t|^(v+1)) for v = 1..5 (26.7.7).
  static double a_26_7_7(double t, int v);
  /// A(t|v) = 2 P(x) - 1 with x = |t| (1 - 1/(4v)) / sqrt(1 + t^2/(2v)) (26.7.8).
  static double a_26_7_8(double t, int v);
  /// 26.7.7 when v <= 5 and |t| > 10; else 26.7.3 for v < 101, 26.7.8 from 101.
  static double a_26_7(double t, int v);

  /// The elements' sum in index order divided by their count (NaN when empty).
  static double getMean(Array<double> const &values);
  /// The sum of products in index order; 0.0 when the sizes differ.
  static double dotProduct(Array<double> const &a, Array<double> const &b);
  /// Pearson's correlation coefficient r of the pairs (x[i], y[i]), computed in
  /// one pass with running means and co-moments (no cancellation of large
  /// sums), and held within [-1, 1] against rounding. NaN, the honest answer,
  /// when the sizes differ, when there are fewer than two pairs, or when
  /// either series has no variance (all its elements equal).
  static double getCorrelationCoefficient(Array<double> const &x, Array<double> const &y);
  /// Writes the elements on one line as "[e0, e1, ...]" and a newline, each
  /// element in the shortest text that reads back to the same double ("0.1",
  /// "-0", "1e+21", "nan", "inf"); an empty array gives "[]". `out` must be
  /// an open stream.
  static void print(Array<double> const &values, std::FILE *out = stdout);
};

}  // namespace quarn
