// ArrayBench.cpp - the typed arrays against protobuf's packed fields, the standard algorithms and boost's hash
//
// Serialisation: an IntegerArrayValue and a DoubleArrayValue of 1,000 and
// 100,000 elements are written to and read from memory streams (through
// serialize / deserialize, as a record writes its properties; the array read
// into is reused, as a pooled one is) beside protobuf's packed repeated
// fields written with CodedOutputStream and read with CodedInputStream over
// an array: sint32 as ZigZag varints (size pass, tag, length, varints) and
// doubles as 8 raw little-endian bytes each (tag, length, one block), when
// protobuf is built in. The integers mix all four of our encodings (a quarter
// each of -16..15, bytes, shorts and the rest).
//
// Search and order over 100,000 elements: find of a value that is absent
// against std::find, and compareValues of two equal arrays against
// std::lexicographical_compare, both walking the whole array. Hash of an
// integer array against boost::hash_range over the same elements, when boost
// is there. Every row counts elements per second, and the program ends with
// "ratio <row> quarn/<peer> = X" lines: above 1, quarn is faster.
#include <algorithm>
#include <climits>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include <quarn/value/DoubleArrayValue.h>
#include <quarn/value/IntegerArrayValue.h>
#include <quarn/value/MemoryStream.h>

#ifdef QUARN_HAVE_PROTOBUF
#include <google/protobuf/io/coded_stream.h>
#include <google/protobuf/io/zero_copy_stream_impl_lite.h>
#include <google/protobuf/wire_format_lite.h>
#endif

#if __has_include(<boost/functional/hash.hpp>)
#include <boost/functional/hash.hpp>
#define QUARN_HAVE_BOOST_HASH 1
#endif

#include "BenchSupport.h"

namespace {

using quarn::DoubleArrayValue;
using quarn::IntegerArrayValue;

/// A quarter each of -16..15, bytes, shorts and full 32-bit values.
std::vector<int> mixedInts(std::size_t n, unsigned seed) {
  std::mt19937 gen(seed);
  std::uniform_int_distribution<int> tiny(-16, 15), small(-128, 127), medium(-32768, 32767), large(INT32_MIN, INT32_MAX);
  std::vector<int> out(n);
  for (std::size_t i = 0; i < n; ++i)
    out[i] = i % 4 == 0 ? tiny(gen) : i % 4 == 1 ? small(gen) : i % 4 == 2 ? medium(gen) : large(gen);
  std::shuffle(out.begin(), out.end(), gen);
  return out;
}

std::vector<double> randomDoubles(std::size_t n, unsigned seed) {
  std::mt19937 gen(seed);
  std::uniform_real_distribution<double> real(-1e6, 1e6);
  std::vector<double> out(n);
  for (double &v : out) v = real(gen);
  return out;
}

template <class A, class T>
A arrayOf(std::vector<T> const &v) {
  return A(v.data(), static_cast<unsigned int>(v.size()));
}

void setItems(benchmark::State &state, std::size_t n) {
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(n));
}

// ---- serialisation, quarn

template <class A, class T>
void encodeQuarn(benchmark::State &state, std::vector<T> const &data) {
  A const array = arrayOf<A>(data);
  quarn::MemoryOutputStream out;
  for (auto _ : state) {
    out.clear();
    array.serialize(out);
    benchmark::DoNotOptimize(out.getBuffer());
  }
  setItems(state, data.size());
  state.counters["wire_bytes"] = out.getSize();
}

template <class A, class T>
void decodeQuarn(benchmark::State &state, std::vector<T> const &data) {
  quarn::MemoryOutputStream out;
  arrayOf<A>(data).serialize(out);
  A read;
  for (auto _ : state) {
    quarn::MemoryInputStream in(out.getBuffer(), out.getSize());
    read.deserialize(in);
    benchmark::DoNotOptimize(read.getBuffer());
  }
  if (read.getSize() != data.size()) state.SkipWithError("quarn decode lost elements");
  setItems(state, data.size());
}

// ---- serialisation, protobuf packed fields

#ifdef QUARN_HAVE_PROTOBUF
using google::protobuf::io::ArrayOutputStream;
using google::protobuf::io::CodedInputStream;
using google::protobuf::io::CodedOutputStream;
using google::protobuf::internal::WireFormatLite;

constexpr int kField = 1;

void writePacked(CodedOutputStream &out, std::vector<int> const &data) {
  std::size_t size = 0;
  for (int v : data) size += CodedOutputStream::VarintSize32(WireFormatLite::ZigZagEncode32(v));
  out.WriteTag(WireFormatLite::MakeTag(kField, WireFormatLite::WIRETYPE_LENGTH_DELIMITED));
  out.WriteVarint32(static_cast<std::uint32_t>(size));
  for (int v : data) out.WriteVarint32(WireFormatLite::ZigZagEncode32(v));
}

void writePacked(CodedOutputStream &out, std::vector<double> const &data) {
  out.WriteTag(WireFormatLite::MakeTag(kField, WireFormatLite::WIRETYPE_LENGTH_DELIMITED));
  out.WriteVarint32(static_cast<std::uint32_t>(8 * data.size()));
  out.WriteRaw(data.data(), static_cast<int>(8 * data.size()));  // little-endian host: the wire form
}

bool readPacked(CodedInputStream &in, std::vector<int> &out) {
  std::uint32_t tag, size;
  if (!in.ReadVarint32(&tag) || !in.ReadVarint32(&size)) return false;
  auto limit = in.PushLimit(static_cast<int>(size));
  out.clear();
  while (in.BytesUntilLimit() > 0) {
    std::uint32_t v;
    if (!in.ReadVarint32(&v)) return false;
    out.push_back(WireFormatLite::ZigZagDecode32(v));
  }
  in.PopLimit(limit);
  return true;
}

bool readPacked(CodedInputStream &in, std::vector<double> &out) {
  std::uint32_t tag, size;
  if (!in.ReadVarint32(&tag) || !in.ReadVarint32(&size)) return false;
  out.resize(size / 8);
  return in.ReadRaw(out.data(), static_cast<int>(size));
}

template <class T>
void encodeProtobuf(benchmark::State &state, std::vector<T> const &data) {
  std::vector<std::uint8_t> buffer(10 * data.size() + 16);
  std::int64_t size = 0;
  for (auto _ : state) {
    ArrayOutputStream array(buffer.data(), static_cast<int>(buffer.size()));
    CodedOutputStream out(&array);
    writePacked(out, data);
    size = out.ByteCount();
    benchmark::DoNotOptimize(buffer.data());
  }
  setItems(state, data.size());
  state.counters["wire_bytes"] = static_cast<double>(size);
}

template <class T>
void decodeProtobuf(benchmark::State &state, std::vector<T> const &data) {
  std::vector<std::uint8_t> buffer(10 * data.size() + 16);
  int size;
  {
    ArrayOutputStream array(buffer.data(), static_cast<int>(buffer.size()));
    CodedOutputStream out(&array);
    writePacked(out, data);
    out.Trim();
    size = static_cast<int>(out.ByteCount());
  }
  std::vector<T> read;
  for (auto _ : state) {
    CodedInputStream in(buffer.data(), size);
    if (!readPacked(in, read)) state.SkipWithError("protobuf decode failed");
    benchmark::DoNotOptimize(read.data());
  }
  if (read != data) state.SkipWithError("protobuf decode lost elements");
  setItems(state, data.size());
}
#endif

// ---- search, order and hash over 100,000 elements

template <class A, class T>
void findQuarn(benchmark::State &state, std::vector<T> const &data, T absent) {
  A const array = arrayOf<A>(data);
  for (auto _ : state) benchmark::DoNotOptimize(array.find(absent));
  setItems(state, data.size());
}

template <class T>
void findStd(benchmark::State &state, std::vector<T> const &data, T absent) {
  for (auto _ : state) benchmark::DoNotOptimize(std::find(data.begin(), data.end(), absent));
  setItems(state, data.size());
}

template <class A, class T>
void compareQuarn(benchmark::State &state, std::vector<T> const &data) {
  A const a = arrayOf<A>(data), b = arrayOf<A>(data);
  for (auto _ : state) benchmark::DoNotOptimize(a.compareValues(b));
  setItems(state, data.size());
}

template <class T>
void compareStd(benchmark::State &state, std::vector<T> const &data) {
  std::vector<T> const other = data;
  for (auto _ : state)
    benchmark::DoNotOptimize(std::lexicographical_compare(data.begin(), data.end(), other.begin(), other.end()));
  setItems(state, data.size());
}

void hashQuarn(benchmark::State &state, std::vector<int> const &data) {
  IntegerArrayValue const array = arrayOf<IntegerArrayValue>(data);
  for (auto _ : state) benchmark::DoNotOptimize(array.hash());
  setItems(state, data.size());
}

#ifdef QUARN_HAVE_BOOST_HASH
void hashBoost(benchmark::State &state, std::vector<int> const &data) {
  for (auto _ : state) benchmark::DoNotOptimize(boost::hash_range(data.begin(), data.end()));
  setItems(state, data.size());
}
#endif

}  // namespace

int main(int argc, char **argv) {
  quarn::bench::RatioReporter reporter;
  auto pair = [&](std::string const &row, char const *peer) {
    reporter.add({row + " quarn/" + peer, row + "/quarn", row + "/" + peer, "items_per_second"});
  };
  static std::vector<int> const ints1k = mixedInts(1000, 1), ints100k = mixedInts(100000, 2);
  static std::vector<double> const doubles1k = randomDoubles(1000, 3), doubles100k = randomDoubles(100000, 4);

  struct Set {
    char const *name;
    std::vector<int> const *ints;
    std::vector<double> const *doubles;
  };
  for (Set const &set : {Set{"1000", &ints1k, &doubles1k}, Set{"100000", &ints100k, &doubles100k}}) {
    std::string const n = set.name;
    for (bool encode : {true, false}) {
      std::string const op = encode ? "encode" : "decode";
      std::string const intRow = op + "/int/" + n, doubleRow = op + "/double/" + n;
      benchmark::RegisterBenchmark((intRow + "/quarn").c_str(),
                                   encode ? encodeQuarn<IntegerArrayValue, int> : decodeQuarn<IntegerArrayValue, int>,
                                   *set.ints);
      benchmark::RegisterBenchmark((doubleRow + "/quarn").c_str(),
                                   encode ? encodeQuarn<DoubleArrayValue, double> : decodeQuarn<DoubleArrayValue, double>,
                                   *set.doubles);
#ifdef QUARN_HAVE_PROTOBUF
      benchmark::RegisterBenchmark((intRow + "/protobuf").c_str(), encode ? encodeProtobuf<int> : decodeProtobuf<int>,
                                   *set.ints);
      benchmark::RegisterBenchmark((doubleRow + "/protobuf").c_str(),
                                   encode ? encodeProtobuf<double> : decodeProtobuf<double>, *set.doubles);
      pair(intRow, "protobuf");
      pair(doubleRow, "protobuf");
#endif
    }
  }

  // Searches look for a value the data does not hold, so every row walks the whole array.
  benchmark::RegisterBenchmark("find/int/100000/quarn", findQuarn<IntegerArrayValue, int>, ints100k, 1 << 30);
  benchmark::RegisterBenchmark("find/int/100000/std", findStd<int>, ints100k, 1 << 30);
  benchmark::RegisterBenchmark("find/double/100000/quarn", findQuarn<DoubleArrayValue, double>, doubles100k, 1e9);
  benchmark::RegisterBenchmark("find/double/100000/std", findStd<double>, doubles100k, 1e9);
  benchmark::RegisterBenchmark("compare/int/100000/quarn", compareQuarn<IntegerArrayValue, int>, ints100k);
  benchmark::RegisterBenchmark("compare/int/100000/std", compareStd<int>, ints100k);
  benchmark::RegisterBenchmark("compare/double/100000/quarn", compareQuarn<DoubleArrayValue, double>, doubles100k);
  benchmark::RegisterBenchmark("compare/double/100000/std", compareStd<double>, doubles100k);
  for (char const *row : {"find/int/100000", "find/double/100000", "compare/int/100000", "compare/double/100000"})
    pair(row, "std");

  benchmark::RegisterBenchmark("hash/int/100000/quarn", hashQuarn, ints100k);
#ifdef QUARN_HAVE_BOOST_HASH
  benchmark::RegisterBenchmark("hash/int/100000/boost", hashBoost, ints100k);
  pair("hash/int/100000", "boost");
#endif
  return quarn::bench::runWithRatios(argc, argv, reporter);
}
