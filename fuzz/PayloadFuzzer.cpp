// PayloadFuzzer.cpp - every value class's byte-stream payload, in stream versions 1 and 2
//
// First byte: bits 0-4 the class (FuzzTargets.h), bit 5 the general stream
// path instead of the memory stream's, bit 6 stream version 1 instead of 2.
// Streams may not load component libraries here.
#include "FuzzTargets.h"

extern "C" int LLVMFuzzerTestOneInput(unsigned char const *data, std::size_t size) {
  using namespace quarn;
  if (size < 1 || size > 0x7FFFFFFF) return 0;
  unsigned char const selector = data[0];
  int const version = selector & 0x40 ? 1 : 2;
  ObjPtr<Value> value(fuzz::newValue(selector));
  MemoryInputStream memory(data + 1, static_cast<unsigned int>(size - 1), version);
  fuzz::TrickleStream trickle(data + 1, size - 1, version);
  iByteInputStream &in = selector & 0x20 ? static_cast<iByteInputStream &>(trickle) : memory;
  StreamLoadingScope noLoading(in, StreamLoadingPolicy::forbidAll());
  try {
    value->deserialize(in);
  } catch (Exception const &) {
    return 0;
  }
  fuzz::checkRoundTrip(*value, version);
  return 0;
}
