// PropertyBench.cpp - property lookup by name, and a record's round trip through a byte stream
//
// Lookup: records of 8, 20 and 64 properties with names of 1 to 20 units;
// each iteration finds every name once. Rows: the library's DataRecord through
// iPropertyCollection::findProperty (a virtual call, as components make it),
// std::unordered_map<std::u16string, Value *>, and a linear scan of
// (std::u16string, Value *) pairs. Ratios above 1: the record is faster.
//
// Round trip: one record of 20 properties of mixed classes serialised to a
// memory stream and read back into a reused record, against the same 20
// values as one ValueArrayValue (which writes no names). Ratio record /
// value array: what the names cost (1 = nothing).
#include <benchmark/benchmark.h>
#include <quarn/core/Ptr.h>
#include <quarn/data/DataRecord.h>
#include <quarn/data/PropertyHelpers.h>
#include <quarn/value/DoubleArrayValue.h>
#include <quarn/value/IntegerValue.h>
#include <quarn/value/MemoryStream.h>
#include <quarn/value/ValueArrayValue.h>

#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "BenchSupport.h"

namespace {

using Name = quarn::BaseString<unsigned short>;

/// Property names as records carry them: short and long, many sharing a start.
std::string nameOf(int i) {
  static char const *const kStems[] = {"x",      "Id",        "Name",         "ALogP",
                                       "Charge", "MolWeight", "Num_H_Donors", "Molecular_Formula"};
  return kStems[i % 8] + std::to_string(i / 8);
}

std::u16string wide(std::string const &text) { return std::u16string(text.begin(), text.end()); }

/// The names of a record of `n` properties, in the three forms the rows use.
struct Names {
  explicit Names(int n) {
    for (int i = 0; i < n; ++i) {
      quarn.push_back(Name(nameOf(i).c_str()));
      std.push_back(wide(nameOf(i)));
    }
  }
  std::vector<Name> quarn;
  std::vector<std::u16string> std;
};

void BM_Lookup_Record(benchmark::State &state) {
  Names const names(static_cast<int>(state.range(0)));
  quarn::Ptr<quarn::DataRecord> record(quarn::DataRecord::newInstance());
  for (std::size_t i = 0; i < names.quarn.size(); ++i)
    quarn::util::defineIntegerValue(*record, names.quarn[i], static_cast<int>(i));
  quarn::iPropertyCollection &list = *record;
  for (auto _ : state)
    for (Name const &name : names.quarn) benchmark::DoNotOptimize(list.findProperty(name));
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

void BM_Lookup_UnorderedMap(benchmark::State &state) {
  Names const names(static_cast<int>(state.range(0)));
  quarn::IntegerValue value(1);
  std::unordered_map<std::u16string, quarn::Value *> map;
  for (std::u16string const &name : names.std) map.emplace(name, &value);
  for (auto _ : state)
    for (std::u16string const &name : names.std) benchmark::DoNotOptimize(map.find(name));
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

void BM_Lookup_LinearScan(benchmark::State &state) {
  Names const names(static_cast<int>(state.range(0)));
  quarn::IntegerValue value(1);
  std::vector<std::pair<std::u16string, quarn::Value *>> pairs;
  for (std::u16string const &name : names.std) pairs.emplace_back(name, &value);
  for (auto _ : state)
    for (std::u16string const &name : names.std) {
      quarn::Value *found = nullptr;
      for (auto const &[key, v] : pairs)
        if (key == name) {
          found = v;
          break;
        }
      benchmark::DoNotOptimize(found);
    }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

BENCHMARK(BM_Lookup_Record)->ArgName("properties")->Arg(8)->Arg(20)->Arg(64);
BENCHMARK(BM_Lookup_UnorderedMap)->ArgName("properties")->Arg(8)->Arg(20)->Arg(64);
BENCHMARK(BM_Lookup_LinearScan)->ArgName("properties")->Arg(8)->Arg(20)->Arg(64);

/// A record of 20 properties: integers, doubles, texts and small double arrays.
quarn::Ptr<quarn::DataRecord> twentyProperties() {
  quarn::Ptr<quarn::DataRecord> record(quarn::DataRecord::newInstance());
  quarn::Array<double> series;
  for (int i = 0; i < 4; ++i) series.append(i * 0.25);
  for (int i = 0; i < 20; ++i) {
    Name const name(nameOf(i).c_str());
    switch (i % 4) {
      case 0:
        quarn::util::defineIntegerValue(*record, name, i * 1000);
        break;
      case 1:
        quarn::util::defineDoubleValue(*record, name, i / 3.0);
        break;
      case 2:
        quarn::util::defineStringValue(*record, name, Name("CC(=O)Oc1ccccc1C(=O)O"));
        break;
      default:
        quarn::util::defineDoubleArrayValue(*record, name, series);
        break;
    }
  }
  return record;
}

void BM_RoundTrip_Record(benchmark::State &state) {
  quarn::Ptr<quarn::DataRecord> record = twentyProperties();
  quarn::Ptr<quarn::DataRecord> read(quarn::DataRecord::newInstance());
  quarn::MemoryOutputStream out;
  for (auto _ : state) {
    out.clear();
    record->serialize(out);
    quarn::MemoryInputStream in(out.getBuffer(), out.getSize());
    read->deserialize(in);
    benchmark::DoNotOptimize(read.get());
  }
  state.SetItemsProcessed(state.iterations());
  state.counters["bytes"] = out.getSize();
}

void BM_RoundTrip_ValueArray(benchmark::State &state) {
  quarn::Ptr<quarn::DataRecord> record = twentyProperties();
  quarn::ObjPtr<quarn::ValueArrayValue> array(quarn::ValueArrayValue::newInstance());
  for (unsigned int i = 0; i < record->getPropertyCount(); ++i) array->appendValue(*record->getProperty(i)->getValue());
  quarn::ObjPtr<quarn::ValueArrayValue> read(quarn::ValueArrayValue::newInstance());
  quarn::MemoryOutputStream out;
  for (auto _ : state) {
    out.clear();
    array->serialize(out);
    quarn::MemoryInputStream in(out.getBuffer(), out.getSize());
    read->deserialize(in);
    benchmark::DoNotOptimize(read.get());
  }
  state.SetItemsProcessed(state.iterations());
  state.counters["bytes"] = out.getSize();
}

BENCHMARK(BM_RoundTrip_Record);
BENCHMARK(BM_RoundTrip_ValueArray);

}  // namespace

int main(int argc, char **argv) {
  quarn::bench::RatioReporter reporter;
  for (char const *n : {"8", "20", "64"}) {
    std::string const arg = std::string("/properties:") + n;
    reporter.add({std::string("record/unordered_map (") + n + " properties)", "BM_Lookup_Record" + arg,
                  "BM_Lookup_UnorderedMap" + arg, "items_per_second"});
    reporter.add({std::string("record/linear scan (") + n + " properties)", "BM_Lookup_Record" + arg,
                  "BM_Lookup_LinearScan" + arg, "items_per_second"});
  }
  reporter.add({"record/value array (20 properties, write + read)", "BM_RoundTrip_Record", "BM_RoundTrip_ValueArray",
                "items_per_second"});
  return quarn::bench::runWithRatios(argc, argv, reporter);
}
