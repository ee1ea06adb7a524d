// RecordFileFuzzer.cpp - libFuzzer target: RecordFileReader over arbitrary bytes
//
// Reads every record of the input as a record file (values and data records),
// going on past each damaged record as a reader may, then seeks back and
// forth by index. Bad input must end in quarn::Exception only: no crash, no
// read outside the input, no unbounded allocation, no leak. Every record
// read must serialise in the file's stream version and read back equal
// (FuzzTargets.h). No class name may load a component library.
#include <cstdint>

#include "FuzzTargets.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size) {
  using namespace quarn;
  // The reader reads each record from a slice of its own, under the process policy.
  static bool const policySet = (StreamLoadingPolicy::setProcessPolicy(StreamLoadingPolicy::forbidAll()), true);
  (void)policySet;
  if (size > 1u << 20) return 0;
  MemoryInputStream stream(data, static_cast<unsigned int>(size));
  try {
    RecordFileReader in(stream);
    int const version = in.getHeader().streamVersion;
    ObjPtr<Object> record;
    // Each call either reads a record, throws past a damaged one, or ends;
    // every call consumes input, so the loop ends.
    for (int calls = 0; calls < 100000; ++calls) {
      try {
        if (!in.next(record)) break;
      } catch (Exception const &) {
        continue;
      }
      if (auto const *value = record->as<Value>())
        fuzz::checkRoundTrip(*value, version);
      else if (auto const *dataRecord = record->as<DataRecord>())
        fuzz::checkRecordRoundTrip(*dataRecord, version);
      else
        std::abort();  // next() hands out values and data records only
    }
    std::uint64_t const records = in.getIndex();
    // Over a stream only forward seeks work: the rest must be refused cleanly.
    for (std::uint64_t index : {std::uint64_t{0}, records / 2, records, records + 1}) {
      try {
        in.seek(index);
        in.next(record);
      } catch (Exception const &) {
      }
    }
  } catch (Exception const &) {
  }
  return 0;
}
