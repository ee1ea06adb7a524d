// Math.cpp - the chapter-26 approximations and the array statistics
#include <quarn/eval/Math.h>
#include <quarnCore/TextUtil.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <limits>

namespace quarn {

namespace {

constexpr double kInvSqrtTwoPi = 0.3989422804014327;  // 1/sqrt(2 pi)
constexpr double kSqrtTwoPi = 2.5066282746310007;     // sqrt(2 pi)
constexpr double kTwoOverPi = 0.6366197723675814;     // 2/pi
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

}  // namespace

Math::~Math() = default;

int Math::doubleToInt(double x) {
  double const shifted = std::trunc(x <= 0 ? x - 0.5 : x + 0.5);
  if (std::isnan(shifted)) return 0;
  if (shifted <= INT_MIN) return INT_MIN;
  if (shifted >= INT_MAX) return INT_MAX;
  return static_cast<int>(shifted);
}

double Math::z_26_2_1(double x) { return std::exp(-x * x / 2) * kInvSqrtTwoPi; }

double Math::gaussianPDF(double mean, double sigma, double x) {
  if (sigma <= 0) return 0.0;
  return (1 / sigma) * z_26_2_1((x - mean) / sigma);
}

double Math::gaussianCDF(double mean, double sigma, double x) {
  if (sigma <= 0) return 0.0;
  return p_26_2_17((x - mean) / sigma);
}

double Math::p_26_2_17(double x) {
  if (x < 0) return 1 - p_26_2_17(-x);
  double const t = 1 / (1 + 0.2316419 * x);
  double const poly = t * (0.31938153 + t * (-0.356563782 + t * (1.781477937 + t * (-1.821255978 + t * 1.330274429))));
  return 1 - z_26_2_1(x) * poly;
}

double Math::q_26_2_17(double x) { return 1 - p_26_2_17(x); }

double Math::p_26_2_18(double x) {
  if (x < 0) return 1 - p_26_2_18(-x);
  double const s = 1 + x * (0.196854 + x * (0.115194 + x * (0.000344 + x * 0.019527)));
  double const s2 = s * s;
  return 1 - 0.5 / (s2 * s2);
}

double Math::chiQ_26_4_4(double x, int v) {
  double const chi = std::sqrt(x);
  double term = chi;
  double sum = chi;  // the first term, kept even for v = 1
  for (long long r = 2; r <= (v - 1LL) / 2; ++r) {
    term *= x / (2.0 * static_cast<double>(r) - 1);
    sum += term;
  }
  return 2 * q_26_2_17(chi) + 2 * z_26_2_1(chi) * sum;
}

double Math::chiQ_26_4_5(double x, int v) {
  double const chi = std::sqrt(x);
  double term = 1;
  double sum = 1;
  for (long long r = 1; r <= (v - 2LL) / 2; ++r) {
    term *= x / (2.0 * static_cast<double>(r));
    sum += term;
  }
  return z_26_2_1(chi) * sum * kSqrtTwoPi;
}

double Math::chiQ_Exact(double x, int v) { return v % 2 != 0 ? chiQ_26_4_4(x, v) : chiQ_26_4_5(x, v); }

double Math::chiQ_26_4_14(double x, int v) {
  double const h = 2.0 / (9.0 * v);
  return q_26_2_17((std::pow(x / v, 1.0 / 3.0) - (1 - h)) / std::sqrt(h));
}

double Math::chiQ(double x, int v) { return v < 31 ? chiQ_Exact(x, v) : chiQ_26_4_14(x, v); }

double Math::chiP_26_4_4(double x, int v) { return 1 - chiQ_26_4_4(x, v); }
double Math::chiP_26_4_5(double x, int v) { return 1 - chiQ_26_4_5(x, v); }
double Math::chiP_Exact(double x, int v) { return 1 - chiQ_Exact(x, v); }
double Math::chiP_26_4_14(double x, int v) { return 1 - chiQ_26_4_14(x, v); }
double Math::chiP(double x, int v) { return 1 - chiQ(x, v); }

double Math::a_26_7_3(double t, int v) {
  double const theta = std::atan(std::fabs(t) / std::sqrt(static_cast<double>(v)));
  double const cos2 = std::cos(theta) * std::cos(theta);
  if (v % 2 == 0) {
    double term = 1;
    double sum = 1;
    for (long long k = 2; k <= v - 2LL; k += 2) {
      term *= (k - 1.0) / static_cast<double>(k) * cos2;
      sum += term;
    }
    return std::sin(theta) * sum;
  }
  if (v == 1) return theta * kTwoOverPi;
  double term = std::cos(theta);
  double sum = term;
  for (long long k = 3; k <= v - 2LL; k += 2) {
    term *= (k - 1.0) / static_cast<double>(k) * cos2;
    sum += term;
  }
  return (theta + std::sin(theta) * sum) * kTwoOverPi;
}

double Math::a_26_7_7(double t, int v) {
  static constexpr double a[] = {0.3183, 0.4991, 1.1094, 3.0941, 9.948};
  static constexpr double b[] = {0.0, 0.0518, -0.046, -2.756, -14.05};
  if (v < 1 || v > 5) return kNaN;
  double const at = std::fabs(t);
  return 1 - 2 * (a[v - 1] / std::pow(at, v) + b[v - 1] / std::pow(at, v + 1));
}

double Math::a_26_7_8(double t, int v) {
  double const x = std::fabs(t) * (1 - 1.0 / (4.0 * v)) / std::sqrt(1 + t * t / (2.0 * v));
  return 2 * p_26_2_17(x) - 1;
}

double Math::a_26_7(double t, int v) {
  if (v <= 5 && std::fabs(t) > 10) return a_26_7_7(t, v);
  return v < 101 ? a_26_7_3(t, v) : a_26_7_8(t, v);
}

double Math::getMean(Array<double> const &values) {
  double sum = 0;
  for (unsigned int i = 0; i < values.getSize(); ++i) sum += values[i];
  return sum / values.getSize();
}

double Math::dotProduct(Array<double> const &a, Array<double> const &b) {
  if (a.getSize() != b.getSize()) return 0.0;
  double sum = 0;
  for (unsigned int i = 0; i < a.getSize(); ++i) sum += a[i] * b[i];
  return sum;
}

double Math::getCorrelationCoefficient(Array<double> const &x, Array<double> const &y) {
  unsigned int const n = x.getSize();
  if (n != y.getSize() || n < 2) return kNaN;
  // Running means and sums of squared and crossed deviations (Welford's
  // update), over the series shifted by their first elements so that a large
  // common offset does not swamp the deviations.
  double const x0 = x[0], y0 = y[0];
  double meanX = 0, meanY = 0, sxx = 0, syy = 0, sxy = 0;
  for (unsigned int i = 0; i < n; ++i) {
    double const xi = x[i] - x0, yi = y[i] - y0;
    double const dx = xi - meanX;
    double const dy = yi - meanY;
    meanX += dx / (i + 1);
    meanY += dy / (i + 1);
    double const ex = xi - meanX;
    double const ey = yi - meanY;
    sxx += dx * ex;
    syy += dy * ey;
    sxy += dx * ey;
  }
  if (sxx == 0 || syy == 0) return kNaN;
  double const r = sxy / (std::sqrt(sxx) * std::sqrt(syy));
  return std::isnan(r) ? r : std::clamp(r, -1.0, 1.0);
}

void Math::print(Array<double> const &values, std::FILE *out) {
  std::fputc('[', out);
  for (unsigned int i = 0; i < values.getSize(); ++i) {
    char text[32];
    util::doubleToString(values[i], text, sizeof text);
    std::fputs(i ? ", " : "", out);
    std::fputs(text, out);
  }
  std::fputs("]\n", out);
}

}  // namespace quarn
