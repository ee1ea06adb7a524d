// PoolBench.cpp - pooled acquire and release against new and delete of the same class
//
// Small is a value-sized pooled class (Object + PooledObject, a PooledClassImp
// without bound). Each benchmark takes `batch` instances and hands them back,
// through the pool (newInstance / deleteInstance, as values are used) or
// through new / delete (glibc malloc), on one thread and on two. The program
// ends with "ratio pool/new ... = X": above 1, the pool is faster.
#include <benchmark/benchmark.h>
#include <quarn/core/Object.h>
#include <quarn/core/PooledClassImp.h>
#include <quarn/core/PooledObject.h>

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

void BM_Pool(benchmark::State &state) {
  std::vector<Small *> held(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    for (Small *&s : held) s = Small::newInstance();
    benchmark::DoNotOptimize(held.data());
    for (Small *s : held) s->deleteInstance();
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

void BM_New(benchmark::State &state) {
  std::vector<Small *> held(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    for (Small *&s : held) s = new Small();
    benchmark::DoNotOptimize(held.data());
    for (Small *s : held) delete s;
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

BENCHMARK(BM_Pool)->ArgName("batch")->Arg(1)->Arg(16)->Threads(1)->Threads(2)->UseRealTime();
BENCHMARK(BM_New)->ArgName("batch")->Arg(1)->Arg(16)->Threads(1)->Threads(2)->UseRealTime();

}  // namespace

int main(int argc, char **argv) {
  quarn::bench::RatioReporter reporter;
  for (char const *batch : {"1", "16"}) {
    for (char const *threads : {"1", "2"}) {
      std::string const suffix = std::string("/batch:") + batch + "/real_time/threads:" + threads;
      reporter.add(
          {std::string("pool/new (batch ") + batch + ", " + threads + " thread" + (threads[0] == '1' ? "" : "s") + ")",
           "BM_Pool" + suffix, "BM_New" + suffix, "items_per_second"});
    }
  }
  return quarn::bench::runWithRatios(argc, argv, reporter);
}
