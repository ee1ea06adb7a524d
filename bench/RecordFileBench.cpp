// RecordFileBench.cpp - 100,000 demo records through a record file against bare value streams
//
// The records are those of the example host: an integer, a greeting, a
// double, a short double array and a 16-bit bitset in one ValueArrayValue.
// "bare" writes them one after another with serialize() on a FileOutputStream
// and reads them back with deserialize() from a FileInputStream, as hosts
// did before record files; "record_file" goes through RecordFileWriter and
// RecordFileReader (class name, length and CRC-32C per record, each read from
// its own slice). Both write and read the same temporary file. The program
// ends with "ratio record_file/bare (write|read) = X": above 1, the record
// file is faster; the goal is at least 0.9.
#include <benchmark/benchmark.h>
#include <quarn/value/BitsetValue.h>
#include <quarn/value/DoubleArrayValue.h>
#include <quarn/value/DoubleValue.h>
#include <quarn/value/FileStream.h>
#include <quarn/value/IntegerValue.h>
#include <quarn/value/RecordFileReader.h>
#include <quarn/value/RecordFileWriter.h>
#include <quarn/value/StringValue.h>
#include <quarn/value/ValueArrayValue.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include "BenchSupport.h"

namespace {

using quarn::ObjPtr;
constexpr int kRecords = 100000;

std::vector<ObjPtr<quarn::ValueArrayValue>> const &records() {
  static std::vector<ObjPtr<quarn::ValueArrayValue>> const made = [] {
    std::vector<ObjPtr<quarn::ValueArrayValue>> out;
    for (int n = 0; n < kRecords; ++n) {
      ObjPtr<quarn::ValueArrayValue> record(quarn::ValueArrayValue::newInstance());
      ObjPtr<quarn::IntegerValue> count(quarn::IntegerValue::newInstance());
      *count = n + 1;
      record->appendValue(count.detach());
      ObjPtr<quarn::StringValue> text(quarn::StringValue::newInstance());
      *text = ("Hello, record " + std::to_string(n) + "!").c_str();
      record->appendValue(text.detach());
      ObjPtr<quarn::DoubleValue> ratio(quarn::DoubleValue::newInstance());
      *ratio = n / 8.0;
      record->appendValue(ratio.detach());
      ObjPtr<quarn::DoubleArrayValue> series(quarn::DoubleArrayValue::newInstance());
      for (int i = 0; i <= n % 4; ++i) series->append(i * 0.5);
      record->appendValue(series.detach());
      ObjPtr<quarn::BitsetValue> flags(quarn::BitsetValue::newInstance());
      flags->resize(16);
      flags->setOn(static_cast<unsigned int>(n % 16));
      record->appendValue(flags.detach());
      out.push_back(std::move(record));
    }
    return out;
  }();
  return made;
}

std::string const &path(bool recordFile) {
  static std::string const paths[2] = {
      (std::filesystem::temp_directory_path() / ("quarn-bench-" + std::to_string(::getpid()) + ".bin")).string(),
      (std::filesystem::temp_directory_path() / ("quarn-bench-" + std::to_string(::getpid()) + ".qrf")).string()};
  return paths[recordFile];
}

void writeBare() {
  quarn::FileOutputStream out(path(false).c_str());
  for (auto const &record : records()) record->serialize(out);
  out.close();
}

void writeRecordFile() {
  quarn::RecordFileWriter out(path(true).c_str());
  for (auto const &record : records()) out.write(*record);
  out.close();
}

void BM_WriteBare(benchmark::State &state) {
  records();
  for (auto _ : state) writeBare();
  state.SetItemsProcessed(state.iterations() * kRecords);
}

void BM_WriteRecordFile(benchmark::State &state) {
  records();
  for (auto _ : state) writeRecordFile();
  state.SetItemsProcessed(state.iterations() * kRecords);
}

void BM_ReadBare(benchmark::State &state) {
  writeBare();
  for (auto _ : state) {
    quarn::FileInputStream in(path(false).c_str());
    for (int n = 0; n < kRecords; ++n) {
      ObjPtr<quarn::ValueArrayValue> record(quarn::ValueArrayValue::newInstance());
      record->deserialize(in);
      benchmark::DoNotOptimize(record.get());
    }
  }
  state.SetItemsProcessed(state.iterations() * kRecords);
}

void BM_ReadRecordFile(benchmark::State &state) {
  writeRecordFile();
  for (auto _ : state) {
    quarn::RecordFileReader in(path(true).c_str());
    int n = 0;
    for (ObjPtr<quarn::Value> record; in.next(record); ++n) benchmark::DoNotOptimize(record.get());
    if (n != kRecords) state.SkipWithError("records went missing");
  }
  state.SetItemsProcessed(state.iterations() * kRecords);
}

BENCHMARK(BM_WriteBare)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_WriteRecordFile)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ReadBare)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ReadRecordFile)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char **argv) {
  quarn::bench::RatioReporter reporter;
  reporter.add({"record_file/bare (write)", "BM_WriteRecordFile", "BM_WriteBare", "items_per_second"});
  reporter.add({"record_file/bare (read)", "BM_ReadRecordFile", "BM_ReadBare", "items_per_second"});
  int status = quarn::bench::runWithRatios(argc, argv, reporter);
  std::filesystem::remove(path(false));
  std::filesystem::remove(path(true));
  return status;
}
