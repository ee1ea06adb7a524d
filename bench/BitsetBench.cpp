// BitsetBench.cpp - bit counting and similarity screening of 2048-bit fingerprints against std::bitset and boost
//
// Three kinds of fingerprint do the same work side by side: quarn's
// BitFingerprintValue (held in a BitFingerprintArrayValue), std::bitset<2048>
// and boost::dynamic_bitset<std::uint64_t> (when the Boost headers are
// installed: bench/install-peers.sh). This file is compiled for the popcnt
// instruction (the pragma below), so both peers count with hardware popcount:
// the strongest fair form of each. quarn picks its own kernel at run time.
//
//   count/*      getNumBitsOn / count() of each of 512 fingerprints (in cache)
//   and/*        bits on in both, each fingerprint against one query
//   tanimoto/*   and-count / or-count against the query
//   screen/*     the Tanimoto screen of one query against 1,000,000
//                fingerprints (256 MB), counting those >= 0.7; bytes_per_second
//   memcpy       a memcpy of the same 256 MB: the memory bandwidth the
//                screen is measured against
//
// The program ends with "ratio count quarn/std::bitset = X" and its kin:
// above 1, quarn is faster. Every screen must find the same number of hits.
#pragma GCC target("popcnt")  // before any standard header: the peers' count() uses popcnt

#include <benchmark/benchmark.h>
#include <quarn/value/BitFingerprintArrayValue.h>
#include <quarn/value/BitFingerprintValue.h>

#include <bitset>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <vector>

#if __has_include(<boost/dynamic_bitset.hpp>)
#include <boost/dynamic_bitset.hpp>
#define QUARN_HAVE_BOOST_DYNAMIC_BITSET 1
#endif

#include "BenchSupport.h"

namespace {

constexpr unsigned int kBits = 2048;
constexpr unsigned int kWords64 = kBits / 64;
constexpr unsigned int kPool = 512;         // fingerprints per micro-benchmark pass
constexpr unsigned int kLibrary = 1000000;  // fingerprints screened
constexpr double kThreshold = 0.7;

using Words = std::vector<std::uint64_t>;  // kWords64 per fingerprint

/// `count` random fingerprints (about a quarter of the bits on); every 997th is
/// the query with a few bits changed, so the screen has hits.
Words makeWords(unsigned int count, Words const &query) {
  std::mt19937_64 random(2048);
  Words words(static_cast<std::size_t>(count) * kWords64);
  for (unsigned int f = 0; f < count; ++f) {
    std::uint64_t *w = &words[static_cast<std::size_t>(f) * kWords64];
    if (f % 997 == 0 && !query.empty()) {
      std::copy(query.begin(), query.end(), w);
      w[f % kWords64] ^= random() & random();
    } else {
      for (unsigned int k = 0; k < kWords64; ++k) w[k] = random() & random();
    }
  }
  return words;
}

Words const &queryWords() {
  static Words const query = makeWords(1, {});
  return query;
}

// ---- the three kinds of fingerprint, each built from the same words

struct Quarn {
  static constexpr char const name[] = "quarn";
  using Set = quarn::BitFingerprintArrayValue;
  static void build(Words const &words, unsigned int count, Set &out) {
    out.resize(count);
    for (unsigned int f = 0; f < count; ++f)
      out[f].setFromBuffer(reinterpret_cast<char const *>(&words[static_cast<std::size_t>(f) * kWords64]), kBits / 8,
                           kBits);
  }
  static quarn::BitFingerprintValue const &at(Set const &set, unsigned int f) {
    return set.getElements().getBuffer()[f];
  }
  template <class F>
  static unsigned int count(F const &a) {
    return a.getNumBitsOn();
  }
  template <class F>
  static unsigned int andCount(F const &a, F const &b) {
    return a.getAndBitsOn(b);
  }
  template <class F>
  static unsigned int orCount(F const &a, F const &b) {
    return a.getOrBitsOn(b);
  }
};

struct StdBitset {
  static constexpr char const name[] = "std::bitset";
  using Fingerprint = std::bitset<kBits>;
  using Set = std::vector<Fingerprint>;
  static void build(Words const &words, unsigned int count, Set &out) {
    out.assign(count, Fingerprint());
    for (unsigned int f = 0; f < count; ++f)
      for (unsigned int i = 0; i < kBits; ++i)
        if ((words[static_cast<std::size_t>(f) * kWords64 + i / 64] >> (i % 64)) & 1u) out[f].set(i);
  }
  static Fingerprint const &at(Set const &set, unsigned int f) { return set[f]; }
  static unsigned int count(Fingerprint const &a) { return static_cast<unsigned int>(a.count()); }
  static unsigned int andCount(Fingerprint const &a, Fingerprint const &b) {
    return static_cast<unsigned int>((a & b).count());
  }
  static unsigned int orCount(Fingerprint const &a, Fingerprint const &b) {
    return static_cast<unsigned int>((a | b).count());
  }
};

#ifdef QUARN_HAVE_BOOST_DYNAMIC_BITSET
struct Boost {
  static constexpr char const name[] = "boost";
  using Fingerprint = boost::dynamic_bitset<std::uint64_t>;
  using Set = std::vector<Fingerprint>;
  static void build(Words const &words, unsigned int count, Set &out) {
    out.assign(count, Fingerprint(kBits));
    for (unsigned int f = 0; f < count; ++f) {
      auto const *begin = &words[static_cast<std::size_t>(f) * kWords64];
      boost::from_block_range(begin, begin + kWords64, out[f]);
    }
  }
  static Fingerprint const &at(Set const &set, unsigned int f) { return set[f]; }
  static unsigned int count(Fingerprint const &a) { return static_cast<unsigned int>(a.count()); }
  // A scratch set reused across calls, so the peer pays no allocation per operation.
  static unsigned int andCount(Fingerprint const &a, Fingerprint const &b) {
    thread_local Fingerprint scratch(kBits);
    scratch = a;
    scratch &= b;
    return static_cast<unsigned int>(scratch.count());
  }
  static unsigned int orCount(Fingerprint const &a, Fingerprint const &b) {
    thread_local Fingerprint scratch(kBits);
    scratch = a;
    scratch |= b;
    return static_cast<unsigned int>(scratch.count());
  }
};
#endif

template <class Kind>
typename Kind::Set const &pool() {
  static auto const set = [] {
    auto s = std::make_unique<typename Kind::Set>();
    Kind::build(makeWords(kPool, queryWords()), kPool, *s);
    return s;
  }();
  return *set;
}

template <class Kind>
typename Kind::Set const &library() {
  static auto const set = [] {
    auto s = std::make_unique<typename Kind::Set>();
    Kind::build(makeWords(kLibrary, queryWords()), kLibrary, *s);
    return s;
  }();
  return *set;
}

template <class Kind>
decltype(auto) query() {
  static auto const set = [] {
    auto s = std::make_unique<typename Kind::Set>();
    Kind::build(queryWords(), 1, *s);
    return s;
  }();
  return Kind::at(*set, 0);
}

template <class Kind>
bool similar(unsigned int both, unsigned int either) {
  return either != 0 && static_cast<double>(both) / either >= kThreshold;
}

// ---- benchmarks

template <class Kind>
void BM_Count(benchmark::State &state) {
  auto const &set = pool<Kind>();
  for (auto _ : state) {
    unsigned long total = 0;
    for (unsigned int f = 0; f < kPool; ++f) total += Kind::count(Kind::at(set, f));
    benchmark::DoNotOptimize(total);
  }
  state.SetItemsProcessed(state.iterations() * kPool);
}

template <class Kind>
void BM_And(benchmark::State &state) {
  auto const &set = pool<Kind>();
  auto const &q = query<Kind>();
  for (auto _ : state) {
    unsigned long total = 0;
    for (unsigned int f = 0; f < kPool; ++f) total += Kind::andCount(Kind::at(set, f), q);
    benchmark::DoNotOptimize(total);
  }
  state.SetItemsProcessed(state.iterations() * kPool);
}

template <class Kind>
void BM_Tanimoto(benchmark::State &state) {
  auto const &set = pool<Kind>();
  auto const &q = query<Kind>();
  for (auto _ : state) {
    double total = 0;
    for (unsigned int f = 0; f < kPool; ++f) {
      auto const &fp = Kind::at(set, f);
      unsigned int either = Kind::orCount(fp, q);
      total += either ? static_cast<double>(Kind::andCount(fp, q)) / either : 0.0;
    }
    benchmark::DoNotOptimize(total);
  }
  state.SetItemsProcessed(state.iterations() * kPool);
}

template <class Kind>
void BM_Screen(benchmark::State &state) {
  auto const &set = library<Kind>();
  auto const &q = query<Kind>();
  unsigned int hits = 0;
  for (auto _ : state) {
    hits = 0;
    for (unsigned int f = 0; f < kLibrary; ++f) {
      auto const &fp = Kind::at(set, f);
      hits += similar<Kind>(Kind::andCount(fp, q), Kind::orCount(fp, q));
    }
    benchmark::DoNotOptimize(hits);
  }
  state.counters["hits"] = hits;
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(kLibrary) * (kBits / 8));
}

void BM_Memcpy(benchmark::State &state) {
  std::size_t const bytes = static_cast<std::size_t>(kLibrary) * (kBits / 8);
  static std::vector<unsigned char> const source(bytes, 0x5A);
  static std::vector<unsigned char> target(bytes, 0);
  for (auto _ : state) {
    std::memcpy(target.data(), source.data(), bytes);
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes));
}

template <class Kind>
void registerKind() {
  std::string const suffix = std::string("/") + Kind::name;
  benchmark::RegisterBenchmark(("count" + suffix).c_str(), BM_Count<Kind>);
  benchmark::RegisterBenchmark(("and" + suffix).c_str(), BM_And<Kind>);
  benchmark::RegisterBenchmark(("tanimoto" + suffix).c_str(), BM_Tanimoto<Kind>);
  benchmark::RegisterBenchmark(("screen" + suffix).c_str(), BM_Screen<Kind>)->Unit(benchmark::kMillisecond);
}

}  // namespace

int main(int argc, char **argv) {
  registerKind<Quarn>();
  registerKind<StdBitset>();
#ifdef QUARN_HAVE_BOOST_DYNAMIC_BITSET
  registerKind<Boost>();
#endif
  benchmark::RegisterBenchmark("memcpy", BM_Memcpy)->Unit(benchmark::kMillisecond);

  quarn::bench::RatioReporter reporter;
  for (char const *peer : {"std::bitset", "boost"})
    for (char const *work : {"count", "and", "tanimoto", "screen"})
      reporter.add({std::string(work) + " quarn/" + peer, std::string(work) + "/quarn", std::string(work) + "/" + peer,
                    std::string(work) == "screen" ? "bytes_per_second" : "items_per_second"});
  reporter.add({"screen quarn/memcpy", "screen/quarn", "memcpy", "bytes_per_second"});
  return quarn::bench::runWithRatios(argc, argv, reporter);
}
