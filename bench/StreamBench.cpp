// StreamBench.cpp - the stream primitives against protobuf's coded streams and a plain loop
//
// Each data set is written to and read from memory by quarn's primitives
// (MemoryOutputStream / MemoryInputStream) and, when protobuf is built in, by
// protobuf's CodedOutputStream / CodedInputStream over an array: integers as
// ZigZag varints, doubles as 8 little-endian bytes, strings length-prefixed
// as UTF-8 converted from the same UTF-16 units inside the timed loop (as our
// version-2 strings are). ASCII strings are also written by a plain
// UTF-16-to-UTF-8 loop. "quarn" rows go through iByteOutputStream /
// iByteInputStream, as values serialise themselves (one out-of-line call per
// primitive); "quarn_inline" rows use the inline overloads for streams typed
// as memory streams. Throughput counts the input (4 bytes an int, 8 a
// double, 2 a unit) so the rows compare directly; the program ends with
// "ratio <set> quarn/<peer> = X" lines: above 1, quarn is faster.
#include <benchmark/benchmark.h>
#include <quarn/value/ByteStream.h>
#include <quarn/value/MemoryStream.h>

#include <bit>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#ifdef QUARN_HAVE_PROTOBUF
#include <google/protobuf/io/coded_stream.h>
#include <google/protobuf/io/zero_copy_stream_impl_lite.h>
#include <google/protobuf/wire_format_lite.h>
#endif

#include "BenchSupport.h"

namespace {

using WString = quarn::BaseString<unsigned short>;

/// The values of one data set. A mixed set interleaves them record by record
/// (two ints, two doubles, one string); the others write each kind in a run.
struct DataSet {
  std::string name;
  std::vector<int> ints;
  std::vector<double> doubles;
  std::vector<WString> strings;
  bool mixed = false;
  std::int64_t inputBytes = 0;

  template <class Coder>
  void each(Coder &coder) const {
    if (mixed) {
      for (std::size_t r = 0; r < strings.size(); ++r) {
        coder.integer(ints[2 * r]);
        coder.integer(ints[2 * r + 1]);
        coder.real(doubles[2 * r]);
        coder.real(doubles[2 * r + 1]);
        coder.string(strings[r]);
      }
      return;
    }
    for (int v : ints) coder.integer(v);
    for (double v : doubles) coder.real(v);
    for (WString const &v : strings) coder.string(v);
  }
};

std::vector<int> randomInts(std::size_t n, int lo, int hi, unsigned seed) {
  std::mt19937 gen(seed);
  std::uniform_int_distribution<int> dist(lo, hi);
  std::vector<int> out(n);
  for (int &v : out) v = dist(gen);
  return out;
}

/// Ints across all four encodings: a quarter each of -16..15, bytes, shorts and the rest.
std::vector<int> mixedInts(std::size_t n, unsigned seed) {
  std::mt19937 gen(seed);
  std::uniform_int_distribution<int> tiny(-16, 15), small(-128, 127), medium(-32768, 32767),
      large(INT32_MIN, INT32_MAX);
  std::vector<int> out(n);
  for (std::size_t i = 0; i < n; ++i)
    out[i] = i % 4 == 0 ? tiny(gen) : i % 4 == 1 ? small(gen) : i % 4 == 2 ? medium(gen) : large(gen);
  return out;
}

std::vector<double> randomDoubles(std::size_t n, double zeroOneShare, unsigned seed) {
  std::mt19937 gen(seed);
  std::uniform_real_distribution<double> real(-1e6, 1e6), share(0, 1);
  std::vector<double> out(n);
  for (double &v : out) {
    double s = share(gen);
    v = s < zeroOneShare / 2 ? 0.0 : s < zeroOneShare ? 1.0 : real(gen);
  }
  return out;
}

std::vector<WString> asciiStrings(std::size_t n, unsigned length, unsigned seed) {
  std::mt19937 gen(seed);
  std::uniform_int_distribution<int> letter(0x20, 0x7E);
  std::vector<WString> out(n);
  for (WString &s : out) {
    s.resize(length);
    for (unsigned i = 0; i < length; ++i) s.getBuffer()[i] = static_cast<unsigned short>(letter(gen));
  }
  return out;
}

std::vector<DataSet> const &dataSets() {
  static std::vector<DataSet> const sets = [] {
    std::vector<DataSet> s(8);
    s[0].name = "ints_small", s[0].ints = randomInts(4096, -16, 15, 1);
    s[1].name = "ints_mixed", s[1].ints = mixedInts(4096, 2);
    s[2].name = "ints_large", s[2].ints = randomInts(4096, INT32_MIN, INT32_MAX, 3);
    s[3].name = "doubles", s[3].doubles = randomDoubles(4096, 0.0, 4);
    s[4].name = "doubles_01", s[4].doubles = randomDoubles(4096, 0.8, 5);
    s[5].name = "ascii16", s[5].strings = asciiStrings(256, 16, 6);
    s[6].name = "ascii4096", s[6].strings = asciiStrings(16, 4096, 7);
    s[7].name = "mixed", s[7].mixed = true, s[7].ints = mixedInts(1024, 8), s[7].doubles = randomDoubles(1024, 0.5, 9),
    s[7].strings = asciiStrings(512, 16, 10);
    for (DataSet &d : s) {
      d.inputBytes = static_cast<std::int64_t>(4 * d.ints.size() + 8 * d.doubles.size());
      for (WString const &v : d.strings) d.inputBytes += 2 * v.getLength();
    }
    return s;
  }();
  return sets;
}

// The plain conversions: one unit or one byte at a time.
unsigned char *plainUtf16ToUtf8(unsigned short const *s, unsigned int n, unsigned char *p) {
  for (unsigned int i = 0; i < n; ++i) {
    unsigned int u = s[i];
    if (u < 0x80) {
      *p++ = static_cast<unsigned char>(u);
    } else if (u < 0x800) {
      *p++ = static_cast<unsigned char>(0xC0 | u >> 6);
      *p++ = static_cast<unsigned char>(0x80 | (u & 0x3F));
    } else {
      *p++ = static_cast<unsigned char>(0xE0 | u >> 12);
      *p++ = static_cast<unsigned char>(0x80 | (u >> 6 & 0x3F));
      *p++ = static_cast<unsigned char>(0x80 | (u & 0x3F));
    }
  }
  return p;
}

void plainUtf8ToUtf16(unsigned char const *p, std::size_t n, WString &out) {
  out.resize(static_cast<unsigned int>(n));
  unsigned short *d = out.getBuffer();
  unsigned char const *end = p + n;
  while (p < end) {
    unsigned int b = *p++;
    if (b < 0x80) {
      *d++ = static_cast<unsigned short>(b);
    } else if (b < 0xE0) {
      *d++ = static_cast<unsigned short>((b & 0x1F) << 6 | (p[0] & 0x3F));
      p += 1;
    } else {
      *d++ = static_cast<unsigned short>((b & 0x0F) << 12 | (p[0] & 0x3F) << 6 | (p[1] & 0x3F));
      p += 2;
    }
  }
  out.resize(static_cast<unsigned int>(d - out.getBuffer()));
}

// ---- quarn: through the interfaces as values write and read themselves
// (Out = iByteOutputStream), or inline on streams known to be memory streams.

template <class Out>
struct QuarnWriter {
  Out &out;
  void integer(int v) { out << v; }
  void real(double v) { out << v; }
  void string(WString const &v) { out << v; }
};

template <class In>
struct QuarnReader {
  In &in;
  WString text;
  void integer(int) {
    int v;
    in >> v;
    benchmark::DoNotOptimize(v);
  }
  void real(double) {
    double v;
    in >> v;
    benchmark::DoNotOptimize(v);
  }
  void string(WString const &) {
    in >> text;
    benchmark::DoNotOptimize(text.getBuffer());
  }
};

template <class Out>
void encodeQuarn(benchmark::State &state, DataSet const &set) {
  quarn::MemoryOutputStream out;
  for (auto _ : state) {
    out.clear();
    QuarnWriter<Out> writer{out};
    set.each(writer);
    benchmark::DoNotOptimize(out.getBuffer());
  }
  state.SetBytesProcessed(state.iterations() * set.inputBytes);
  state.counters["wire_bytes"] = out.getSize();
}

template <class In>
void decodeQuarn(benchmark::State &state, DataSet const &set) {
  quarn::MemoryOutputStream out;
  QuarnWriter<quarn::MemoryOutputStream> writer{out};
  set.each(writer);
  for (auto _ : state) {
    quarn::MemoryInputStream in(out.getBuffer(), out.getSize());
    QuarnReader<In> reader{in, {}};
    set.each(reader);
    if (in.getPosition() != out.getSize()) state.SkipWithError("quarn decode did not consume the payload");
  }
  state.SetBytesProcessed(state.iterations() * set.inputBytes);
}

// ---- the plain loop (strings only)

void encodePlain(benchmark::State &state, DataSet const &set) {
  std::vector<unsigned char> buffer(static_cast<std::size_t>(set.inputBytes) * 2 + 16);
  for (auto _ : state) {
    unsigned char *p = buffer.data();
    for (WString const &s : set.strings) p = plainUtf16ToUtf8(s.getBuffer(), s.getLength(), p);
    benchmark::DoNotOptimize(p);
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(state.iterations() * set.inputBytes);
}

// ---- protobuf

#ifdef QUARN_HAVE_PROTOBUF
using google::protobuf::internal::WireFormatLite;
using google::protobuf::io::ArrayOutputStream;
using google::protobuf::io::CodedInputStream;
using google::protobuf::io::CodedOutputStream;

struct ProtoWriter {
  CodedOutputStream &out;
  std::string &utf8;
  void integer(int v) { out.WriteVarint32(WireFormatLite::ZigZagEncode32(v)); }
  void real(double v) { out.WriteLittleEndian64(std::bit_cast<std::uint64_t>(v)); }
  void string(WString const &v) {
    utf8.resize(3 * std::size_t{v.getLength()});
    auto *begin = reinterpret_cast<unsigned char *>(utf8.data());
    utf8.resize(static_cast<std::size_t>(plainUtf16ToUtf8(v.getBuffer(), v.getLength(), begin) - begin));
    out.WriteVarint32(static_cast<std::uint32_t>(utf8.size()));
    out.WriteString(utf8);
  }
};

struct ProtoReader {
  CodedInputStream &in;
  std::string utf8;
  WString text;
  bool ok = true;
  void integer(int) {
    std::uint32_t v;
    ok &= in.ReadVarint32(&v);
    benchmark::DoNotOptimize(WireFormatLite::ZigZagDecode32(v));
  }
  void real(double) {
    std::uint64_t v;
    ok &= in.ReadLittleEndian64(&v);
    benchmark::DoNotOptimize(std::bit_cast<double>(v));
  }
  void string(WString const &) {
    std::uint32_t n;
    ok &= in.ReadVarint32(&n) && in.ReadString(&utf8, static_cast<int>(n));
    plainUtf8ToUtf16(reinterpret_cast<unsigned char const *>(utf8.data()), utf8.size(), text);
    benchmark::DoNotOptimize(text.getBuffer());
  }
};

std::vector<std::uint8_t> protoBuffer(DataSet const &set) {
  return std::vector<std::uint8_t>(static_cast<std::size_t>(set.inputBytes) * 2 + 5 * set.strings.size() + 64);
}

void encodeProtobuf(benchmark::State &state, DataSet const &set) {
  std::vector<std::uint8_t> buffer = protoBuffer(set);
  std::string utf8;
  std::int64_t size = 0;
  for (auto _ : state) {
    ArrayOutputStream array(buffer.data(), static_cast<int>(buffer.size()));
    CodedOutputStream out(&array);
    ProtoWriter writer{out, utf8};
    set.each(writer);
    size = out.ByteCount();
    benchmark::DoNotOptimize(buffer.data());
  }
  state.SetBytesProcessed(state.iterations() * set.inputBytes);
  state.counters["wire_bytes"] = static_cast<double>(size);
}

void decodeProtobuf(benchmark::State &state, DataSet const &set) {
  std::vector<std::uint8_t> buffer = protoBuffer(set);
  int size;
  {
    std::string utf8;
    ArrayOutputStream array(buffer.data(), static_cast<int>(buffer.size()));
    CodedOutputStream out(&array);
    ProtoWriter writer{out, utf8};
    set.each(writer);
    size = out.ByteCount();
  }
  for (auto _ : state) {
    CodedInputStream in(buffer.data(), size);
    ProtoReader reader{in, {}, {}};
    set.each(reader);
    if (!reader.ok || in.CurrentPosition() != size) state.SkipWithError("protobuf decode did not consume the payload");
  }
  state.SetBytesProcessed(state.iterations() * set.inputBytes);
}
#endif

}  // namespace

int main(int argc, char **argv) {
  using quarn::iByteInputStream;
  using quarn::iByteOutputStream;
  using quarn::MemoryInputStream;
  using quarn::MemoryOutputStream;
  quarn::bench::RatioReporter reporter;
  auto pair = [&](std::string const &base, char const *ours, char const *peer) {
    reporter.add({base + ours + "/" + peer, base + ours, base + peer, "bytes_per_second"});
  };
  for (DataSet const &set : dataSets()) {
    for (bool encode : {true, false}) {
      std::string const base = std::string(encode ? "encode/" : "decode/") + set.name + "/";
      benchmark::RegisterBenchmark((base + "quarn").c_str(),
                                   encode ? encodeQuarn<iByteOutputStream> : decodeQuarn<iByteInputStream>, set);
      benchmark::RegisterBenchmark((base + "quarn_inline").c_str(),
                                   encode ? encodeQuarn<MemoryOutputStream> : decodeQuarn<MemoryInputStream>, set);
#ifdef QUARN_HAVE_PROTOBUF
      benchmark::RegisterBenchmark((base + "protobuf").c_str(), encode ? encodeProtobuf : decodeProtobuf, set);
      pair(base, "quarn", "protobuf");
      pair(base, "quarn_inline", "protobuf");
#endif
      if (encode && !set.strings.empty() && set.ints.empty()) {
        benchmark::RegisterBenchmark((base + "plain").c_str(), encodePlain, set);
        pair(base, "quarn", "plain");
      }
    }
  }
  return quarn::bench::runWithRatios(argc, argv, reporter);
}
