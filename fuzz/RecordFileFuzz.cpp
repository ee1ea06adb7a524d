// RecordFileFuzz.cpp - libFuzzer target: RecordFileReader over arbitrary bytes
//
// Reads every record of the input as a record file, going on past each
// damaged record as a reader may, then seeks back and forth by index. Bad
// input must end in quarn::Exception only: no crash, no read outside the
// input, no unbounded allocation, no leak. Seed it with files written by
// RecordFileWriter (the example host leaves one at
// /tmp/quarn-demo-records.qrf).
#include <quarn/core/Ptr.h>
#include <quarn/value/MemoryStream.h>
#include <quarn/value/RecordFileReader.h>
#include <quarn/value/Value.h>
#include <quarnCore/Exception.h>

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size) {
  if (size > 1u << 20) return 0;
  quarn::MemoryInputStream stream(data, static_cast<unsigned int>(size));
  try {
    quarn::RecordFileReader in(stream);
    quarn::ObjPtr<quarn::Value> record;
    // Each call either reads a record, throws past a damaged one, or ends;
    // every call consumes input, so the loop ends.
    for (int calls = 0; calls < 100000; ++calls) {
      try {
        if (!in.next(record)) break;
      } catch (quarn::Exception const &) {
      }
    }
    std::uint64_t const records = in.getIndex();
    // Over a stream only forward seeks work: the rest must be refused cleanly.
    for (std::uint64_t index : {std::uint64_t{0}, records / 2, records, records + 1}) {
      try {
        in.seek(index);
        in.next(record);
      } catch (quarn::Exception const &) {
      }
    }
  } catch (quarn::Exception const &) {
  }
  return 0;
}
