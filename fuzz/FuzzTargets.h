// FuzzTargets.h - what the fuzz targets share: the value classes by number, and the round-trip check
//
// Each target takes its first input byte to choose what to read (a class, a
// stream version, a stream kind) and the rest as the input itself, so one
// target covers every class and the corpora stay in one folder per target.
// Whatever a target reads successfully must serialise and read back to an
// equal value that serialises to the same bytes (a value that is not equal to
// itself, such as a NaN, to the same bytes alone); a difference aborts, which
// libFuzzer reports as a crash.
#pragma once

#include <quarn/quarn.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace quarn::fuzz {

using Maker = Value *(*)();

template <class T>
Value *make() {
  return T::newInstance();
}

/// Every value class, by number.
inline constexpr Maker kClasses[] = {
    make<IntegerValue>,
    make<DoubleValue>,
    make<BooleanValue>,
    make<StringValue>,
    make<NullValue>,
    make<MissingValue>,
    make<IntegerArrayValue>,
    make<DoubleArrayValue>,
    make<StringArrayValue>,
    make<BooleanArrayValue>,
    make<ByteArrayValue>,
    make<IntegerFingerprintValue>,
    make<DoubleFingerprintValue>,
    make<StringFingerprintValue>,
    make<BitsetValue>,
    make<BitsetValue2D>,
    make<BitsetValue3D>,
    make<BitFingerprintValue>,
    make<BitsetArrayValue>,
    make<BitFingerprintArrayValue>,
    make<FlexValue>,
    make<FlexArrayValue>,
    make<ValueArrayValue>,
    make<NullArrayValue>,
    make<DateTimeValue>,
};
inline constexpr unsigned kClassCount = sizeof kClasses / sizeof kClasses[0];

/// The value class chosen by the low five bits of `selector`.
inline Value *newValue(unsigned char selector) { return kClasses[(selector & 0x1F) % kClassCount](); }

[[noreturn]] inline void fail(char const *what, Value const &value) {
  std::fprintf(stderr, "round trip failed for %s: %s\n", value.getClassTag().getName(), what);
  std::abort();
}

/// A stream over bytes that hands out at most 7 bytes per read, so that the
/// decoders' general path runs (memory streams take their fast path).
class TrickleStream final : public iByteInputStream {
 public:
  TrickleStream(unsigned char const *data, std::size_t size, int streamVersion) : m_data(data), m_left(size) {
    version = streamVersion;
  }
  int read(void *out, int count) override {
    std::size_t n = std::min<std::size_t>({static_cast<std::size_t>(count < 0 ? 0 : count), 7, m_left});
    if (n) std::memcpy(out, m_data, n);
    m_data += n;
    m_left -= n;
    return static_cast<int>(n);
  }

 private:
  unsigned char const *m_data;
  std::size_t m_left;
};

/// `value` serialises in `version`, reads back equal and serialises to the same bytes again.
inline void checkRoundTrip(Value const &value, int version) {
  MemoryOutputStream first(version);
  value.serialize(first);
  ObjPtr<Value> back(static_cast<Value *>(value.getClass().newInstance()));
  MemoryInputStream in(first.getBuffer(), first.getSize(), version);
  try {
    back->deserialize(in);
  } catch (Exception const &e) {
    std::fprintf(stderr, "%s\n", e.what());
    fail("its own bytes do not read back", value);
  }
  if (in.getPosition() != first.getSize()) fail("bytes left over", value);
  // A value that is not equal to itself (a NaN) is checked by its bytes alone.
  bool const comparable = value.compare(value) == 0;
  if (comparable && (back->compare(value) != 0 || value.compare(*back) != 0))
    fail("not equal after reading back", value);
  MemoryOutputStream second(version);
  back->serialize(second);
  if (second.getSize() != first.getSize() ||
      (first.getSize() && std::memcmp(second.getBuffer(), first.getBuffer(), first.getSize())))
    fail("different bytes the second time", value);
  ObjPtr<Value> copy(value.cloneValue());
  if (comparable && copy->compare(value) != 0) fail("a clone is not equal", value);
}

[[noreturn]] inline void failRecord(char const *what) {
  std::fprintf(stderr, "round trip failed for a DataRecord: %s\n", what);
  std::abort();
}

/// `record` serialises in `version`, reads back with the same properties
/// (names, classes, equal values, in order) and serialises to the same bytes
/// again; its clone has the same properties too.
inline void checkRecordRoundTrip(DataRecord const &record, int version) {
  MemoryOutputStream first(version);
  record.serialize(first);
  Ptr<DataRecord> back(DataRecord::newInstance());
  MemoryInputStream in(first.getBuffer(), first.getSize(), version);
  try {
    back->deserialize(in);
  } catch (Exception const &e) {
    std::fprintf(stderr, "%s\n", e.what());
    failRecord("its own bytes do not read back");
  }
  if (in.getPosition() != first.getSize()) failRecord("bytes left over");
  Ptr<DataRecord> copy(record.clone()->as<DataRecord>());
  for (DataRecord const *other : {back.get(), copy.get()}) {
    if (other->getPropertyCount() != record.getPropertyCount()) failRecord("a different property count");
    for (unsigned int i = 0; i < record.getPropertyCount(); ++i) {
      iProperty const *p = record.getProperty(i), *q = other->getProperty(i);
      if (!(p->getName() == q->getName()) || !(p->getValueClass() == q->getValueClass()))
        failRecord("a property's name or class differs");
      Value const &v = *p->getValue();
      if (v.compare(v) == 0 && v.compare(*q->getValue()) != 0) failRecord("a property's value differs");
    }
  }
  MemoryOutputStream second(version);
  back->serialize(second);
  if (second.getSize() != first.getSize() ||
      (first.getSize() && std::memcmp(second.getBuffer(), first.getBuffer(), first.getSize())))
    failRecord("different bytes the second time");
}

}  // namespace quarn::fuzz
