// BenchSupport.h - a console reporter that ends with the ratios between benchmarks
//
// Each program names pairs of its benchmarks (ours, baseline) and the counter
// to compare (a rate such as items_per_second or bytes_per_second). After the
// usual table the reporter prints one line per pair that ran, for example
// "ratio pool/new (1 thread) = 1.24": above 1 means ours is faster. With
// --benchmark_repetitions the median of the repetitions is compared (add
// --benchmark_enable_random_interleaving=true on a busy machine). Pairs whose
// benchmarks were filtered out or left out of the build print nothing.
#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace quarn::bench {

struct Ratio {
  std::string label;     // "pool/new (1 thread)"
  std::string ours;      // benchmark name as reported
  std::string baseline;  // benchmark name as reported
  std::string counter;   // "items_per_second"
};

class RatioReporter : public benchmark::ConsoleReporter {
 public:
  void add(Ratio ratio) { m_ratios.push_back(std::move(ratio)); }

  void ReportRuns(std::vector<Run> const &runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (Run const &run : runs) {
      if (run.error_occurred) continue;
      bool median = run.run_type == Run::RT_Aggregate && run.aggregate_name == "median";
      if (run.run_type == Run::RT_Aggregate && !median) continue;
      // A median aggregate stands for its repetitions; it is reported after them.
      auto &rates = m_rates[run.run_name.str()];
      for (auto const &[name, counter] : run.counters) {
        if (median) rates[name].clear();
        rates[name].push_back(counter.value);
      }
    }
  }

  void Finalize() override {
    ConsoleReporter::Finalize();
    for (Ratio const &ratio : m_ratios) {
      double ours = rate(ratio.ours, ratio.counter);
      double baseline = rate(ratio.baseline, ratio.counter);
      if (ours > 0 && baseline > 0) std::printf("ratio %s = %.2f\n", ratio.label.c_str(), ours / baseline);
    }
    std::fflush(stdout);
  }

 private:
  double rate(std::string const &benchmark, std::string const &counter) const {
    auto b = m_rates.find(benchmark);
    if (b == m_rates.end()) return 0;
    auto c = b->second.find(counter);
    if (c == b->second.end() || c->second.empty()) return 0;
    std::vector<double> samples = c->second;
    std::sort(samples.begin(), samples.end());
    return samples[samples.size() / 2];
  }

  std::vector<Ratio> m_ratios;
  std::map<std::string, std::map<std::string, std::vector<double>>> m_rates;  // benchmark -> counter -> samples
};

/// The main of every benchmark program: run what the command line selects, then the ratios.
inline int runWithRatios(int argc, char **argv, RatioReporter &reporter) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  benchmark::Shutdown();
  return 0;
}

}  // namespace quarn::bench
