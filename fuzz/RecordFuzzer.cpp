// RecordFuzzer.cpp - the data record's byte-stream form (DataRecord::deserialize), in stream versions 1 and 2
//
// First byte: bit 5 the general stream path instead of the memory stream's,
// bit 6 stream version 1 instead of 2; the other bits are free. Streams may
// not load component libraries here, so the properties' values are of the
// classes already bound.
#include "FuzzTargets.h"

extern "C" int LLVMFuzzerTestOneInput(unsigned char const *data, std::size_t size) {
  using namespace quarn;
  if (size < 1 || size > 0x7FFFFFFF) return 0;
  unsigned char const selector = data[0];
  int const version = selector & 0x40 ? 1 : 2;
  Ptr<DataRecord> record(DataRecord::newInstance());
  MemoryInputStream memory(data + 1, static_cast<unsigned int>(size - 1), version);
  fuzz::TrickleStream trickle(data + 1, size - 1, version);
  iByteInputStream &in = selector & 0x20 ? static_cast<iByteInputStream &>(trickle) : memory;
  StreamLoadingScope noLoading(in, StreamLoadingPolicy::forbidAll());
  try {
    record->deserialize(in);
  } catch (Exception const &) {
    if (record->getPropertyCount() != 0) fuzz::failRecord("a failed read left properties behind");
    return 0;
  }
  fuzz::checkRecordRoundTrip(*record, version);
  return 0;
}
