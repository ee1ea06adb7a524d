// RecordBench.cpp - the record round trip of a pipeline: quarn against Qt 5, protobuf and a memcpy floor
//
// Every record a pipeline passes is made of property values, written to a
// byte stream, read back in another process (each element made by its class
// name), compared and released. This program does that for one record of 20
// properties (6 integers of mixed sizes, 4 doubles, 2 booleans, 4 strings of
// 0-40 units, an integer array of 32, a double array of 16, a 1024-bit
// fingerprint, a date-time), 256 different records cycled, in four forms side
// by side, and the same record as a DataRecord with named properties:
//
//   quarn     a pooled ValueArrayValue of pooled values, written to a reused
//             MemoryOutputStream and read back into a pooled ValueArrayValue
//             (elements made by class name);
//   qt        QVector<QVariant> (QVector<int> and QVector<double> registered
//             with stream operators and comparators, QBitArray) through
//             QDataStream (little-endian, Qt_5_15) over a QBuffer on a reused
//             QByteArray, read back into a reused QVector<QVariant>;
//   protobuf  the generated proto3 message of RecordBench.proto on arenas
//             whose first block is reused, serialised into a reused buffer;
//   memcpy    the floor: two memcpys of quarn's encoded bytes;
//   quarn_record  (round trip only) the same 20 values as a DataRecord of
//             named properties, kept and filled again for every record
//             through the values its properties hold, written, and read back
//             into a kept DataRecord (names compared in place, values read
//             into the ones it holds). The date-time is a DateTimeValue in
//             quarn, a QDateTime in Qt and milliseconds (sint64) in protobuf.
//
// Rows: "roundtrip/<peer>" (fill, serialise, read back, compare, release), and
// one row per step: "fill" (make the record and release it), "serialise",
// "readback" (read and release) and "compare" (the read record against the
// original). Counters: records per second (items_per_second), bytes per
// record on the wire, and heap allocations per record, counted by the
// malloc/calloc/realloc hook below once every pool is warm. The program ends
// with "ratio <row> quarn/<peer> = X" lines: above 1, quarn is faster.
//
// Qt and protobuf are optional at build time (bench/install-peers.sh); their
// rows are left out when they are missing. For callgrind, each round trip of
// one record is a function of its own (roundTripQuarn, roundTripQt,
// roundTripProtobuf) that calls countedRecord() once, so --toggle-collect
// can count its instructions alone and the calls of countedRecord say how
// many records that was.
#include <benchmark/benchmark.h>
#include <quarn/core/Ptr.h>
#include <quarn/data/DataRecord.h>
#include <quarn/data/Property.h>
#include <quarn/value/BitFingerprintValue.h>
#include <quarn/value/BooleanValue.h>
#include <quarn/value/DateTimeValue.h>
#include <quarn/value/DoubleArrayValue.h>
#include <quarn/value/DoubleValue.h>
#include <quarn/value/IntegerArrayValue.h>
#include <quarn/value/IntegerValue.h>
#include <quarn/value/MemoryStream.h>
#include <quarn/value/StringValue.h>
#include <quarn/value/ValueArrayValue.h>

#include <array>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <utility>
#include <vector>

#ifdef QUARN_HAVE_QT
#include <QBitArray>
#include <QBuffer>
#include <QByteArray>
#include <QDataStream>
#include <QDateTime>
#include <QMetaType>
#include <QString>
#include <QVariant>
#include <QVector>
#endif

#ifdef QUARN_HAVE_PROTOBUF
#include <google/protobuf/arena.h>

#include "RecordBench.pb.h"
#endif

#include "BenchSupport.h"

// ---- the allocation counter: every malloc, calloc and realloc of the process
// goes through here (the executable's definitions take precedence over the C
// library's for every shared library too). Counted per thread, without atomics.

extern "C" {
void *__libc_malloc(std::size_t size);
void *__libc_calloc(std::size_t count, std::size_t size);
void *__libc_realloc(void *p, std::size_t size);
void *__libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void *p);
}

namespace {
thread_local long t_allocations = 0;
}  // namespace

extern "C" {
void *malloc(std::size_t size) noexcept {
  ++t_allocations;
  return __libc_malloc(size);
}
void *calloc(std::size_t count, std::size_t size) noexcept {
  ++t_allocations;
  return __libc_calloc(count, size);
}
void *realloc(void *p, std::size_t size) noexcept {
  ++t_allocations;
  return __libc_realloc(p, size);
}
void *aligned_alloc(std::size_t alignment, std::size_t size) noexcept {
  ++t_allocations;
  return __libc_memalign(alignment, size);
}
int posix_memalign(void **p, std::size_t alignment, std::size_t size) noexcept {
  ++t_allocations;
  *p = __libc_memalign(alignment, size);
  return *p ? 0 : 12;  // ENOMEM
}
void free(void *p) noexcept { __libc_free(p); }
}

namespace {

using quarn::ValueArrayValue;

constexpr unsigned int kRecords = 256;
constexpr unsigned int kIntArray = 32;
constexpr unsigned int kDoubleArray = 16;
constexpr unsigned int kFingerprintBits = 1024;
constexpr unsigned int kFingerprintWords = kFingerprintBits / 32;

/// One record's data, as the program that makes it holds it.
struct Source {
  int ints[6];
  double doubles[4];
  bool bools[2];
  std::u16string text[4];
  std::string utf8[4];  // the same texts for protobuf (ASCII, so the same bytes)
  std::vector<int> intArray;
  std::vector<double> doubleArray;
  std::array<std::uint32_t, kFingerprintWords> words;
  long long millis;  // an instant, milliseconds since 1970 UTC
};

std::vector<Source> const &records() {
  static std::vector<Source> const all = [] {
    std::mt19937 gen(13);
    std::uniform_int_distribution<int> tiny(-16, 15), small(-128, 127), medium(-32768, 32767),
        large(INT32_MIN, INT32_MAX), length(0, 40), letter(0x20, 0x7E), coin(0, 1), form(0, 3);
    std::uniform_real_distribution<double> real(-1e6, 1e6);
    std::uniform_int_distribution<std::uint32_t> word;
    auto mixed = [&](unsigned int i) {
      return i % 4 == 0 ? tiny(gen) : i % 4 == 1 ? small(gen) : i % 4 == 2 ? medium(gen) : large(gen);
    };
    std::vector<Source> out(kRecords);
    for (Source &r : out) {
      r.ints[0] = tiny(gen), r.ints[1] = small(gen), r.ints[2] = medium(gen);
      r.ints[3] = large(gen), r.ints[4] = tiny(gen), r.ints[5] = large(gen);
      for (double &d : r.doubles) {
        int f = form(gen);  // a quarter each of 0.0 and 1.0, half other numbers
        d = f == 0 ? 0.0 : f == 1 ? 1.0 : real(gen);
      }
      r.bools[0] = coin(gen) != 0, r.bools[1] = coin(gen) != 0;
      for (int k = 0; k < 4; ++k) {
        int n = length(gen);
        for (int c = 0; c < n; ++c) r.text[k].push_back(static_cast<char16_t>(letter(gen)));
        r.utf8[k].assign(r.text[k].begin(), r.text[k].end());
      }
      for (unsigned int i = 0; i < kIntArray; ++i) r.intArray.push_back(mixed(i));
      for (unsigned int i = 0; i < kDoubleArray; ++i) r.doubleArray.push_back(real(gen));
      for (std::uint32_t &w : r.words) w = word(gen);
      r.millis = std::uniform_int_distribution<long long>(0, 1900000000000LL)(gen);
    }
    return out;
  }();
  return all;
}

/// Called once by each round trip of one record, so that callgrind counts them.
[[gnu::noinline]] void countedRecord() { asm volatile(""); }

/// Allocations per record over the timed loop, and the record counters.
class Counting {
 public:
  Counting() : m_start(t_allocations) {}
  void finish(benchmark::State &state, double wireBytes) const {
    auto iterations = static_cast<double>(state.iterations());
    state.SetItemsProcessed(state.iterations());
    state.counters["allocs_per_record"] =
        iterations > 0 ? static_cast<double>(t_allocations - m_start) / iterations : 0;
    state.counters["bytes_per_record"] = wireBytes;
  }

 private:
  long m_start;
};

// ---------------------------------------------------------------------------
// quarn

namespace q {

using namespace quarn;

/// Appends a new pooled V to `record` and returns it for filling.
template <class V>
V *add(ValueArrayValue &record) {
  ObjPtr<V> v(V::newInstance());
  V *added = v.get();
  record.appendValue(ObjPtr<Value>(std::move(v)));
  return added;
}

/// The julian day of `millis` after 1970-01-01 00:00 UTC.
double julianOf(long long millis) { return 2440587.5 + static_cast<double>(millis) / 86400000.0; }

void addInteger(ValueArrayValue &record, int v) { add<IntegerValue>(record)->setInteger(v); }
void addDouble(ValueArrayValue &record, double v) { add<DoubleValue>(record)->setDouble(v); }
void addBoolean(ValueArrayValue &record, bool v) { add<BooleanValue>(record)->setBoolean(v); }
void addString(ValueArrayValue &record, std::u16string const &text) {
  add<StringValue>(record)->setString(reinterpret_cast<unsigned short const *>(text.data()),
                                      static_cast<unsigned int>(text.size()));
}

/// A pooled record holding `r` (hand it back with deleteInstance()). Every
/// value comes from its pool and is filled in the storage it kept.
ValueArrayValue *fill(Source const &r) {
  ObjPtr<ValueArrayValue> record(ValueArrayValue::newInstance());
  ValueArrayValue &a = *record;
  addInteger(a, r.ints[0]), addDouble(a, r.doubles[0]), addString(a, r.text[0]), addBoolean(a, r.bools[0]);
  addInteger(a, r.ints[1]), addDouble(a, r.doubles[1]), addString(a, r.text[1]);
  addInteger(a, r.ints[2]), addDouble(a, r.doubles[2]), addString(a, r.text[2]), addBoolean(a, r.bools[1]);
  addInteger(a, r.ints[3]), addDouble(a, r.doubles[3]), addString(a, r.text[3]);
  addInteger(a, r.ints[4]), addInteger(a, r.ints[5]);
  add<IntegerArrayValue>(a)->setElements(r.intArray.data(), kIntArray);
  add<DoubleArrayValue>(a)->setElements(r.doubleArray.data(), kDoubleArray);
  add<BitFingerprintValue>(a)->setFromBuffer(reinterpret_cast<char const *>(r.words.data()), 4 * kFingerprintWords,
                                             kFingerprintBits);
  add<DateTimeValue>(a)->setJulian(julianOf(r.millis));
  return record.detach();
}

void serialise(ValueArrayValue const &record, MemoryOutputStream &out) {
  out.clear();
  record.serialize(out);
}

/// A pooled record read from `size` bytes at `bytes`.
ValueArrayValue *readBack(unsigned char const *bytes, unsigned int size) {
  ObjPtr<ValueArrayValue> record(ValueArrayValue::newInstance());
  MemoryInputStream in(bytes, size);
  record->deserialize(in);
  return record.detach();
}

bool same(ValueArrayValue const &a, ValueArrayValue const &b) { return a.compare(b) == 0; }

/// Every record encoded once.
std::vector<std::vector<unsigned char>> const &encoded() {
  static std::vector<std::vector<unsigned char>> const all = [] {
    std::vector<std::vector<unsigned char>> out;
    MemoryOutputStream stream;
    for (Source const &r : records()) {
      ObjPtr<ValueArrayValue> record(fill(r));
      serialise(*record, stream);
      out.emplace_back(stream.getBuffer(), stream.getBuffer() + stream.getSize());
    }
    return out;
  }();
  return all;
}

double averageWireBytes() {
  double sum = 0;
  for (auto const &bytes : encoded()) sum += static_cast<double>(bytes.size());
  return sum / kRecords;
}

/// The record's 20 properties by name, in the order of fill's elements.
constexpr char const *kNames[] = {"id",    "weight", "name",   "active",   "count",       "logp",      "formula",
                                  "atoms", "charge", "smiles", "valid",    "bonds",       "tpsa",      "source",
                                  "rings", "donors", "shape",  "spectrum", "fingerprint", "registered"};

/// A record with the properties of `r` under kNames: the record a pipeline
/// keeps and fills again for every record it passes.
DataRecord *namedRecord(Source const &r) {
  ObjPtr<ValueArrayValue> values(fill(r));
  Ptr<DataRecord> record(DataRecord::newInstance());
  for (unsigned int i = 0; i < values->getSize(); ++i) {
    Value const &v = (*values)[i];
    record->defineProperty(WString(kNames[i]), v.getClassTag())->setValue(v);
  }
  return record.detach();
}

template <class V>
V &valueAt(DataRecord &record, unsigned int i) {
  return *static_cast<V *>(record.properties().at(i)->getValue());
}

/// Fills the properties of `record` (made by namedRecord) with `r`, in the values they hold.
void fillNamed(DataRecord &record, Source const &r) {
  unsigned int i = 0;
  auto integer = [&](int v) { valueAt<IntegerValue>(record, i++).setInteger(v); };
  auto real = [&](double v) { valueAt<DoubleValue>(record, i++).setDouble(v); };
  auto boolean = [&](bool v) { valueAt<BooleanValue>(record, i++).setBoolean(v); };
  auto text = [&](std::u16string const &t) {
    valueAt<StringValue>(record, i++)
        .setString(reinterpret_cast<unsigned short const *>(t.data()), static_cast<unsigned int>(t.size()));
  };
  integer(r.ints[0]), real(r.doubles[0]), text(r.text[0]), boolean(r.bools[0]);
  integer(r.ints[1]), real(r.doubles[1]), text(r.text[1]);
  integer(r.ints[2]), real(r.doubles[2]), text(r.text[2]), boolean(r.bools[1]);
  integer(r.ints[3]), real(r.doubles[3]), text(r.text[3]);
  integer(r.ints[4]), integer(r.ints[5]);
  valueAt<IntegerArrayValue>(record, i++).setElements(r.intArray.data(), kIntArray);
  valueAt<DoubleArrayValue>(record, i++).setElements(r.doubleArray.data(), kDoubleArray);
  valueAt<BitFingerprintValue>(record, i++)
      .setFromBuffer(reinterpret_cast<char const *>(r.words.data()), 4 * kFingerprintWords, kFingerprintBits);
  valueAt<DateTimeValue>(record, i++).setJulian(julianOf(r.millis));
}

/// Same names in the same order, and equal values.
bool same(DataRecord &a, DataRecord &b) {
  auto const &x = a.properties(), &y = b.properties();
  if (x.size() != y.size()) return false;
  for (unsigned int i = 0; i < x.size(); ++i)
    if (x.at(i)->getName() != y.at(i)->getName() || x.at(i)->getValue()->compare(*y.at(i)->getValue()) != 0)
      return false;
  return true;
}

}  // namespace q

/// One whole round trip of record `r` as a DataRecord: `written` filled,
/// written to `out` and read back into `read`; false when what was read differs.
[[gnu::noinline]] bool roundTripQuarnRecord(Source const &r, quarn::DataRecord &written, quarn::DataRecord &read,
                                            quarn::MemoryOutputStream &out) {
  countedRecord();
  q::fillNamed(written, r);
  out.clear();
  written.serialize(out);
  quarn::MemoryInputStream in(out.getBuffer(), out.getSize());
  read.deserialize(in);
  return q::same(read, written);
}

void roundTripQuarnRecordRow(benchmark::State &state) {
  quarn::Ptr<quarn::DataRecord> written(q::namedRecord(records()[0]));
  quarn::Ptr<quarn::DataRecord> read(quarn::DataRecord::newInstance());
  quarn::MemoryOutputStream out;
  double wire = 0;
  for (Source const &r : records()) {  // warms the pools and the record read into
    roundTripQuarnRecord(r, *written, *read, out);
    wire += out.getSize();
  }
  Counting counting;
  unsigned int k = 0;
  for (auto _ : state) {
    if (!roundTripQuarnRecord(records()[k], *written, *read, out)) [[unlikely]]
      state.SkipWithError("quarn read back a different DataRecord");
    k = (k + 1) % kRecords;
  }
  counting.finish(state, wire / kRecords);
}

/// One whole round trip of record `r`: false when what was read differs.
[[gnu::noinline]] bool roundTripQuarn(Source const &r, quarn::MemoryOutputStream &out) {
  countedRecord();
  quarn::ObjPtr<ValueArrayValue> record(q::fill(r));
  q::serialise(*record, out);
  quarn::ObjPtr<ValueArrayValue> read(q::readBack(out.getBuffer(), out.getSize()));
  return q::same(*read, *record);
}

void roundTripQuarnRow(benchmark::State &state) {
  quarn::MemoryOutputStream out;
  for (Source const &r : records()) roundTripQuarn(r, out);  // warms the pools
  Counting counting;
  unsigned int k = 0;
  for (auto _ : state) {
    if (!roundTripQuarn(records()[k], out)) [[unlikely]]
      state.SkipWithError("quarn read back a different record");
    k = (k + 1) % kRecords;
  }
  counting.finish(state, q::averageWireBytes());
}

void fillQuarnRow(benchmark::State &state) {
  for (Source const &r : records()) q::fill(r)->deleteInstance();
  Counting counting;
  unsigned int k = 0;
  for (auto _ : state) {
    ValueArrayValue *record = q::fill(records()[k]);
    benchmark::DoNotOptimize(record);
    record->deleteInstance();
    k = (k + 1) % kRecords;
  }
  counting.finish(state, q::averageWireBytes());
}

void serialiseQuarnRow(benchmark::State &state) {
  std::vector<quarn::ObjPtr<ValueArrayValue>> filled;
  for (Source const &r : records()) filled.emplace_back(q::fill(r));
  quarn::MemoryOutputStream out;
  for (auto const &record : filled) q::serialise(*record, out);
  Counting counting;
  unsigned int k = 0;
  for (auto _ : state) {
    q::serialise(*filled[k], out);
    benchmark::DoNotOptimize(out.getBuffer());
    k = (k + 1) % kRecords;
  }
  counting.finish(state, q::averageWireBytes());
}

void readBackQuarnRow(benchmark::State &state) {
  auto const &encoded = q::encoded();
  for (auto const &bytes : encoded)
    q::readBack(bytes.data(), static_cast<unsigned int>(bytes.size()))->deleteInstance();
  Counting counting;
  unsigned int k = 0;
  for (auto _ : state) {
    ValueArrayValue *record = q::readBack(encoded[k].data(), static_cast<unsigned int>(encoded[k].size()));
    benchmark::DoNotOptimize(record);
    record->deleteInstance();
    k = (k + 1) % kRecords;
  }
  counting.finish(state, q::averageWireBytes());
}

void compareQuarnRow(benchmark::State &state) {
  std::vector<quarn::ObjPtr<ValueArrayValue>> filled, read;
  for (unsigned int k = 0; k < kRecords; ++k) {
    filled.emplace_back(q::fill(records()[k]));
    read.emplace_back(q::readBack(q::encoded()[k].data(), static_cast<unsigned int>(q::encoded()[k].size())));
  }
  Counting counting;
  unsigned int k = 0;
  for (auto _ : state) {
    if (!q::same(*read[k], *filled[k])) [[unlikely]]
      state.SkipWithError("quarn records differ");
    k = (k + 1) % kRecords;
  }
  counting.finish(state, q::averageWireBytes());
}

// ---------------------------------------------------------------------------
// the floor: the encoded bytes copied out and back

void roundTripMemcpyRow(benchmark::State &state) {
  auto const &encoded = q::encoded();
  std::vector<unsigned char> wire(4096), back(4096);
  Counting counting;
  unsigned int k = 0;
  for (auto _ : state) {
    std::size_t n = encoded[k].size();
    std::memcpy(wire.data(), encoded[k].data(), n);
    benchmark::ClobberMemory();
    std::memcpy(back.data(), wire.data(), n);
    benchmark::DoNotOptimize(back.data());
    k = (k + 1) % kRecords;
  }
  counting.finish(state, q::averageWireBytes());
}

// ---------------------------------------------------------------------------
// Qt 5

#ifdef QUARN_HAVE_QT
namespace qt {

using Record = QVector<QVariant>;

void registerTypes() {
  static bool const done = [] {
    qRegisterMetaTypeStreamOperators<QVector<int>>("QVector<int>");
    qRegisterMetaTypeStreamOperators<QVector<double>>("QVector<double>");
    QMetaType::registerComparators<QVector<int>>();
    QMetaType::registerComparators<QVector<double>>();
    return true;
  }();
  (void)done;
}

QVariant text(std::u16string const &t) {
  return QString(reinterpret_cast<QChar const *>(t.data()), static_cast<int>(t.size()));
}

/// Replaces the contents of `record` with `r`.
void fill(Record &record, Source const &r) {
  record.clear();
  record.append(r.ints[0]), record.append(r.doubles[0]), record.append(text(r.text[0])), record.append(r.bools[0]);
  record.append(r.ints[1]), record.append(r.doubles[1]), record.append(text(r.text[1]));
  record.append(r.ints[2]), record.append(r.doubles[2]), record.append(text(r.text[2])), record.append(r.bools[1]);
  record.append(r.ints[3]), record.append(r.doubles[3]), record.append(text(r.text[3]));
  record.append(r.ints[4]), record.append(r.ints[5]);
  QVector<int> ints(static_cast<int>(kIntArray));
  std::memcpy(ints.data(), r.intArray.data(), sizeof(int) * kIntArray);
  record.append(QVariant::fromValue(ints));
  QVector<double> doubles(static_cast<int>(kDoubleArray));
  std::memcpy(doubles.data(), r.doubleArray.data(), sizeof(double) * kDoubleArray);
  record.append(QVariant::fromValue(doubles));
  record.append(QBitArray::fromBits(reinterpret_cast<char const *>(r.words.data()), kFingerprintBits));
  record.append(QDateTime::fromMSecsSinceEpoch(r.millis, Qt::UTC));
}

/// A stream pair over one reused byte array.
struct Channel {
  QByteArray bytes;
  QBuffer buffer;
  QDataStream out, in;

  Channel() {
    bytes.reserve(8192);  // reserved: resize(0) then keeps the storage
    buffer.setBuffer(&bytes);
    buffer.open(QIODevice::ReadWrite);
    for (QDataStream *s : {&out, &in}) {
      s->setDevice(&buffer);
      s->setByteOrder(QDataStream::LittleEndian);
      s->setVersion(QDataStream::Qt_5_15);
    }
  }
  void serialise(Record const &record) {
    bytes.resize(0);
    buffer.seek(0);
    out << record;
  }
  void readBack(Record &record) {
    buffer.seek(0);
    in >> record;
  }
};

double averageWireBytes() {
  registerTypes();
  Channel channel;
  Record record;
  double sum = 0;
  for (Source const &r : records()) {
    fill(record, r);
    channel.serialise(record);
    sum += channel.bytes.size();
  }
  return sum / kRecords;
}

}  // namespace qt

[[gnu::noinline]] bool roundTripQt(Source const &r, qt::Channel &channel, qt::Record &record, qt::Record &read) {
  countedRecord();
  qt::fill(record, r);
  channel.serialise(record);
  channel.readBack(read);
  bool same = read == record;
  record.clear();
  read.clear();
  return same;
}

void roundTripQtRow(benchmark::State &state) {
  qt::registerTypes();
  qt::Channel channel;
  qt::Record record, read;
  for (Source const &r : records()) roundTripQt(r, channel, record, read);
  Counting counting;
  unsigned int k = 0;
  for (auto _ : state) {
    if (!roundTripQt(records()[k], channel, record, read)) [[unlikely]]
      state.SkipWithError("Qt read back a different record");
    k = (k + 1) % kRecords;
  }
  counting.finish(state, qt::averageWireBytes());
}

void fillQtRow(benchmark::State &state) {
  qt::registerTypes();
  qt::Record record;
  for (Source const &r : records()) qt::fill(record, r);
  Counting counting;
  unsigned int k = 0;
  for (auto _ : state) {
    qt::fill(record, records()[k]);
    benchmark::DoNotOptimize(record.data());
    record.clear();
    k = (k + 1) % kRecords;
  }
  counting.finish(state, qt::averageWireBytes());
}

std::vector<qt::Record> filledQt() {
  std::vector<qt::Record> filled(kRecords);
  for (unsigned int k = 0; k < kRecords; ++k) qt::fill(filled[k], records()[k]);
  return filled;
}

void serialiseQtRow(benchmark::State &state) {
  qt::registerTypes();
  std::vector<qt::Record> const filled = filledQt();
  qt::Channel channel;
  for (auto const &record : filled) channel.serialise(record);
  Counting counting;
  unsigned int k = 0;
  for (auto _ : state) {
    channel.serialise(filled[k]);
    benchmark::DoNotOptimize(channel.bytes.data());
    k = (k + 1) % kRecords;
  }
  counting.finish(state, qt::averageWireBytes());
}

void readBackQtRow(benchmark::State &state) {
  qt::registerTypes();
  std::vector<qt::Record> const filled = filledQt();
  std::vector<qt::Channel> channels(kRecords);
  for (unsigned int k = 0; k < kRecords; ++k) channels[k].serialise(filled[k]);
  qt::Record read;
  for (auto &channel : channels) channel.readBack(read);
  Counting counting;
  unsigned int k = 0;
  for (auto _ : state) {
    channels[k].readBack(read);
    benchmark::DoNotOptimize(read.data());
    read.clear();
    k = (k + 1) % kRecords;
  }
  counting.finish(state, qt::averageWireBytes());
}

void compareQtRow(benchmark::State &state) {
  qt::registerTypes();
  std::vector<qt::Record> const filled = filledQt();
  std::vector<qt::Record> read(kRecords);
  qt::Channel channel;
  for (unsigned int k = 0; k < kRecords; ++k) {
    channel.serialise(filled[k]);
    channel.readBack(read[k]);
  }
  Counting counting;
  unsigned int k = 0;
  for (auto _ : state) {
    if (!(read[k] == filled[k])) [[unlikely]]
      state.SkipWithError("Qt records differ");
    k = (k + 1) % kRecords;
  }
  counting.finish(state, qt::averageWireBytes());
}
#endif

// ---------------------------------------------------------------------------
// protobuf

#ifdef QUARN_HAVE_PROTOBUF
namespace pb {

using google::protobuf::Arena;
using quarnbench::Record;

/// An arena whose first block is this object's own storage: Reset() keeps it.
class ReusedArena {
 public:
  ReusedArena() : m_arena(options(m_block)) {}
  Arena *get() noexcept { return &m_arena; }
  void reset() { m_arena.Reset(); }

 private:
  static google::protobuf::ArenaOptions options(std::array<char, 64 * 1024> &block) {
    google::protobuf::ArenaOptions o;
    o.initial_block = block.data();
    o.initial_block_size = block.size();
    return o;
  }
  std::array<char, 64 * 1024> m_block;
  Arena m_arena;
};

Record *fill(Arena *arena, Source const &r) {
  Record *m = Arena::CreateMessage<Record>(arena);
  m->set_i0(r.ints[0]), m->set_d0(r.doubles[0]), m->set_s0(r.utf8[0]), m->set_b0(r.bools[0]);
  m->set_i1(r.ints[1]), m->set_d1(r.doubles[1]), m->set_s1(r.utf8[1]);
  m->set_i2(r.ints[2]), m->set_d2(r.doubles[2]), m->set_s2(r.utf8[2]), m->set_b1(r.bools[1]);
  m->set_i3(r.ints[3]), m->set_d3(r.doubles[3]), m->set_s3(r.utf8[3]);
  m->set_i4(r.ints[4]), m->set_i5(r.ints[5]);
  m->mutable_ints()->Add(r.intArray.begin(), r.intArray.end());
  m->mutable_doubles()->Add(r.doubleArray.begin(), r.doubleArray.end());
  m->set_fingerprint(r.words.data(), 4 * kFingerprintWords);
  m->set_when(r.millis);
  return m;
}

/// Serialises into `buffer` and returns the byte count.
int serialise(Record const &m, std::vector<std::uint8_t> &buffer) {
  auto size = static_cast<int>(m.ByteSizeLong());
  m.SerializeWithCachedSizesToArray(buffer.data());
  return size;
}

Record *readBack(Arena *arena, std::uint8_t const *bytes, int size) {
  Record *m = Arena::CreateMessage<Record>(arena);
  if (!m->ParseFromArray(bytes, size)) std::abort();
  return m;
}

template <class F>
bool sameRepeated(F const &a, F const &b) {
  return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin());
}

/// Field by field, as generated code would compare.
bool same(Record const &a, Record const &b) {
  return a.i0() == b.i0() && a.d0() == b.d0() && a.s0() == b.s0() && a.b0() == b.b0() && a.i1() == b.i1() &&
         a.d1() == b.d1() && a.s1() == b.s1() && a.i2() == b.i2() && a.d2() == b.d2() && a.s2() == b.s2() &&
         a.b1() == b.b1() && a.i3() == b.i3() && a.d3() == b.d3() && a.s3() == b.s3() && a.i4() == b.i4() &&
         a.i5() == b.i5() && sameRepeated(a.ints(), b.ints()) && sameRepeated(a.doubles(), b.doubles()) &&
         a.fingerprint() == b.fingerprint() && a.when() == b.when();
}

double averageWireBytes() {
  ReusedArena arena;
  std::vector<std::uint8_t> buffer(8192);
  double sum = 0;
  for (Source const &r : records()) {
    sum += serialise(*fill(arena.get(), r), buffer);
    arena.reset();
  }
  return sum / kRecords;
}

}  // namespace pb

[[gnu::noinline]] bool roundTripProtobuf(Source const &r, pb::ReusedArena &arena, std::vector<std::uint8_t> &buffer) {
  countedRecord();
  pb::Record *record = pb::fill(arena.get(), r);
  int size = pb::serialise(*record, buffer);
  pb::Record *read = pb::readBack(arena.get(), buffer.data(), size);
  bool same = pb::same(*read, *record);
  arena.reset();
  return same;
}

void roundTripProtobufRow(benchmark::State &state) {
  pb::ReusedArena arena;
  std::vector<std::uint8_t> buffer(8192);
  for (Source const &r : records()) roundTripProtobuf(r, arena, buffer);
  Counting counting;
  unsigned int k = 0;
  for (auto _ : state) {
    if (!roundTripProtobuf(records()[k], arena, buffer)) [[unlikely]]
      state.SkipWithError("protobuf read back a different record");
    k = (k + 1) % kRecords;
  }
  counting.finish(state, pb::averageWireBytes());
}

void fillProtobufRow(benchmark::State &state) {
  pb::ReusedArena arena;
  Counting counting;
  unsigned int k = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(pb::fill(arena.get(), records()[k]));
    arena.reset();
    k = (k + 1) % kRecords;
  }
  counting.finish(state, pb::averageWireBytes());
}

void serialiseProtobufRow(benchmark::State &state) {
  pb::ReusedArena arena;
  std::vector<pb::Record *> filled;
  for (Source const &r : records()) filled.push_back(pb::fill(arena.get(), r));
  std::vector<std::uint8_t> buffer(8192);
  Counting counting;
  unsigned int k = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(pb::serialise(*filled[k], buffer));
    k = (k + 1) % kRecords;
  }
  counting.finish(state, pb::averageWireBytes());
}

void readBackProtobufRow(benchmark::State &state) {
  pb::ReusedArena arena, readArena;
  std::vector<std::vector<std::uint8_t>> encoded;
  for (Source const &r : records()) {
    std::vector<std::uint8_t> buffer(8192);
    buffer.resize(static_cast<std::size_t>(pb::serialise(*pb::fill(arena.get(), r), buffer)));
    encoded.push_back(std::move(buffer));
  }
  Counting counting;
  unsigned int k = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(pb::readBack(readArena.get(), encoded[k].data(), static_cast<int>(encoded[k].size())));
    readArena.reset();
    k = (k + 1) % kRecords;
  }
  counting.finish(state, pb::averageWireBytes());
}

void compareProtobufRow(benchmark::State &state) {
  pb::ReusedArena arena;
  std::vector<pb::Record *> filled, read;
  std::vector<std::uint8_t> buffer(8192);
  for (Source const &r : records()) {
    filled.push_back(pb::fill(arena.get(), r));
    read.push_back(pb::readBack(arena.get(), buffer.data(), pb::serialise(*filled.back(), buffer)));
  }
  Counting counting;
  unsigned int k = 0;
  for (auto _ : state) {
    if (!pb::same(*read[k], *filled[k])) [[unlikely]]
      state.SkipWithError("protobuf records differ");
    k = (k + 1) % kRecords;
  }
  counting.finish(state, pb::averageWireBytes());
}
#endif

}  // namespace

int main(int argc, char **argv) {
  quarn::bench::RatioReporter reporter;
  struct Step {
    char const *name;
    void (*quarn)(benchmark::State &);
    void (*qt)(benchmark::State &);
    void (*protobuf)(benchmark::State &);
  };
  std::vector<Step> steps = {
      {"roundtrip", roundTripQuarnRow, nullptr, nullptr}, {"fill", fillQuarnRow, nullptr, nullptr},
      {"serialise", serialiseQuarnRow, nullptr, nullptr}, {"readback", readBackQuarnRow, nullptr, nullptr},
      {"compare", compareQuarnRow, nullptr, nullptr},
  };
#ifdef QUARN_HAVE_QT
  steps[0].qt = roundTripQtRow, steps[1].qt = fillQtRow, steps[2].qt = serialiseQtRow;
  steps[3].qt = readBackQtRow, steps[4].qt = compareQtRow;
#endif
#ifdef QUARN_HAVE_PROTOBUF
  steps[0].protobuf = roundTripProtobufRow, steps[1].protobuf = fillProtobufRow;
  steps[2].protobuf = serialiseProtobufRow, steps[3].protobuf = readBackProtobufRow;
  steps[4].protobuf = compareProtobufRow;
#endif
  auto pair = [&](std::string const &step, char const *peer) {
    reporter.add({step + " quarn/" + peer, step + "/quarn", step + "/" + peer, "items_per_second"});
  };
  for (Step const &s : steps) {
    std::string const step = s.name;
    benchmark::RegisterBenchmark((step + "/quarn").c_str(), s.quarn);
    if (s.qt) {
      benchmark::RegisterBenchmark((step + "/qt").c_str(), s.qt);
      pair(step, "qt");
    }
    if (s.protobuf) {
      benchmark::RegisterBenchmark((step + "/protobuf").c_str(), s.protobuf);
      pair(step, "protobuf");
    }
    if (step == "roundtrip") {
      benchmark::RegisterBenchmark("roundtrip/memcpy", roundTripMemcpyRow);
      pair(step, "memcpy");
      benchmark::RegisterBenchmark("roundtrip/quarn_record", roundTripQuarnRecordRow);
      reporter.add({"roundtrip quarn_record/quarn", "roundtrip/quarn_record", "roundtrip/quarn", "items_per_second"});
      if (s.qt)
        reporter.add({"roundtrip quarn_record/qt", "roundtrip/quarn_record", "roundtrip/qt", "items_per_second"});
      if (s.protobuf)
        reporter.add(
            {"roundtrip quarn_record/protobuf", "roundtrip/quarn_record", "roundtrip/protobuf", "items_per_second"});
    }
  }
  return quarn::bench::runWithRatios(argc, argv, reporter);
}
