// PoolBench.cpp - pooled acquire and release against new and delete of the same class
//
// Two classes: IntegerValue, the real pooled scalar (whose constructor and
// destructor report to its leak detector, as every quarn class does), and
// Small, a bare value-sized pooled class (Object + PooledObject, no leak
// detector: the hardest case for the pool). Each benchmark takes `batch`
// instances and hands them back, through the pool (newInstance /
// deleteInstance, as values are used) or through new / delete (glibc malloc),
// on one thread and on two. The program ends with "ratio pool/new ... = X":
// above 1, the pool is faster.
#include <benchmark/benchmark.h>
#include <quarn/core/Object.h>
#include <quarn/core/PooledClassImp.h>
#include <quarn/core/PooledObject.h>
#include <quarn/value/IntegerValue.h>

#include <vector>

#include "BenchSupport.h"

namespace {

/// About the size of a scalar value: two vtable pointers and a payload.
class Small : public quarn::Object, public quarn::PooledObject {
 public:
  static quarn::ClassTagDecl const Tag;
  static quarn::PooledClassImp<Small, -1> m_class;

  static Small *newInstance() { return m_class.acquire(); }
  void deleteInstance() override {
    Small *self = this;
    m_class.release(self);
  }
  quarn::ClassTag const &getClassTag() const override { return Tag; }
  void onActivate() override { payload = 0; }
  void onDeactivate() override {}
  ~Small() override = default;  // public: the new / delete baseline deletes directly

  long long payload = 0;
};

quarn::ClassTagDecl const Small::Tag("Bench.value.Small");
quarn::PooledClassImp<Small, -1> Small::m_class;

template <class T>
void BM_Pool(benchmark::State &state) {
  std::vector<T *> held(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    for (T *&s : held) s = T::newInstance();
    benchmark::DoNotOptimize(held.data());
    for (T *s : held) s->deleteInstance();
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

template <class T>
void BM_New(benchmark::State &state) {
  std::vector<T *> held(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    for (T *&s : held) s = new T();
    benchmark::DoNotOptimize(held.data());
    for (T *s : held) delete s;
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

// One thread is timed in CPU time, which a busy machine disturbs least; two
// threads in real time, so that waiting for each other's lock counts.
#define QUARN_POOL_BENCH(T)                                                                      \
  BENCHMARK_TEMPLATE(BM_Pool, T)->Name("BM_Pool/" #T)->ArgName("batch")->Arg(1)->Arg(16)->Threads(1); \
  BENCHMARK_TEMPLATE(BM_Pool, T)                                                                 \
      ->Name("BM_Pool/" #T)->ArgName("batch")->Arg(1)->Arg(16)->Threads(2)->UseRealTime();       \
  BENCHMARK_TEMPLATE(BM_New, T)->Name("BM_New/" #T)->ArgName("batch")->Arg(1)->Arg(16)->Threads(1);   \
  BENCHMARK_TEMPLATE(BM_New, T)->Name("BM_New/" #T)->ArgName("batch")->Arg(1)->Arg(16)->Threads(2)->UseRealTime()

using quarn::IntegerValue;
QUARN_POOL_BENCH(IntegerValue);
QUARN_POOL_BENCH(Small);

}  // namespace

int main(int argc, char **argv) {
  quarn::bench::RatioReporter reporter;
  for (char const *type : {"IntegerValue", "Small"}) {
    for (char const *batch : {"1", "16"}) {
      for (char const *suffix : {"/threads:1", "/real_time/threads:2"}) {
        std::string const name = std::string("/") + type + "/batch:" + batch + suffix;
        std::string const label = std::string("pool/new ") + type + " (batch " + batch + ", " +
                                  (suffix[1] == 't' ? "1 thread)" : "2 threads)");
        reporter.add({label, "BM_Pool" + name, "BM_New" + name, "items_per_second"});
      }
    }
  }
  return quarn::bench::runWithRatios(argc, argv, reporter);
}
