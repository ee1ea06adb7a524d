// BitsetConverters.cpp - the converters into and out of the bitsets, bit fingerprints and bitset arrays
//
// Into a bitset (BitsetValue or BitFingerprintValue):
//   integer fingerprint, integer array or integer: 1-based positions (<= 0
//     ignored); the bitset grows to the largest only when it is not longer
//     already, and refuses to grow past 10,000,000 bits before touching
//     anything; then exactly those positions are on (an integer is a list of
//     one, so an integer array spliced into a bitset array gives one bitset
//     per element);
//   text: setFromString; bytes: 8 bits per byte, least significant bit first;
//   another bitset class: n and the words; a bitset array: its element 0 (an
//   empty array throws InvalidIndexException(0, -1)); null or missing: cleared.
// Out of a bitset (any of the four bitset classes):
//   integer fingerprint or integer array: the 1-based positions; text:
//   getString; bytes: the first ceil(n / 8) bytes of the words; integer,
//   double, boolean: the first-word coercions; a bitset array: one element.
// Into a bitset array: from a bitset or a text, one element (so an array's
// XML text, its element 0's positions, reads back); between the two arrays,
// element by element.
#include <quarn/value/BitFingerprintArrayValue.h>
#include <quarn/value/BitFingerprintValue.h>
#include <quarn/value/BitsetArrayValue.h>
#include <quarn/value/BitsetValue.h>
#include <quarn/value/BitsetValue2D.h>
#include <quarn/value/BitsetValue3D.h>
#include <quarn/value/BooleanValue.h>
#include <quarn/value/ByteArrayValue.h>
#include <quarn/value/DoubleValue.h>
#include <quarn/value/IntegerArrayValue.h>
#include <quarn/value/IntegerFingerprintValue.h>
#include <quarn/value/IntegerValue.h>
#include <quarn/value/MissingValue.h>
#include <quarn/value/NullValue.h>
#include <quarn/value/StringValue.h>
#include <quarn/value/TypedValueTypeConverter.h>
#include <quarnCore/Exception.h>

#include <algorithm>
#include <climits>
#include <concepts>
#include <type_traits>
#include <utility>

namespace quarn {

namespace {

/// The largest position an integer list may make a bitset grow to.
constexpr int kMaxPositionsBits = static_cast<int>(BitsetValue::kMaxGrowBits);

template <class T>
concept Bitset = std::derived_from<T, BitsetValue>;
template <class T>
concept PositionList = std::derived_from<T, IntegerArrayValue>;
template <class T>
concept BitsetArray = std::same_as<T, BitsetArrayValue> || std::same_as<T, BitFingerprintArrayValue>;
template <class T>
concept Undefined = std::derived_from<T, NullValue>;

[[noreturn, gnu::cold]] void failTooLarge(char const *from, char const *to) {
  throw Exception("Cannot convert %hss containing numbers greater than 10,000,000 to a %hs", from, to);
}

[[noreturn, gnu::cold]] void failTooManyBytes(unsigned int bytes, char const *to) {
  throw Exception("Cannot convert %u bytes to a %hs: more than 4294967295 bits", bytes, to);
}

/// Exactly the 1-based `positions` on (<= 0 ignored), growing `to` only when it is too short.
template <Bitset To>
void setPositions(int const *positions, unsigned int count, char const *from, To &to) {
  int largest = 0;
  for (unsigned int i = 0; i < count; ++i) largest = std::max(largest, positions[i]);
  if (to.getNumBits() <= static_cast<unsigned int>(largest)) {
    if (largest > kMaxPositionsBits) failTooLarge(from, To::shortName);
    to.resize(static_cast<unsigned int>(largest));
  }
  to.setAll(false);
  for (unsigned int i = 0; i < count; ++i)
    if (positions[i] > 0) to.setOn(static_cast<unsigned int>(positions[i] - 1));
}

template <PositionList From, Bitset To>
void convertBits(From const &from, To &to) {
  setPositions(from.getBuffer(), from.getSize(), From::shortName, to);
}

template <Bitset To>
void convertBits(IntegerValue const &from, To &to) {
  int const position = from.getInteger();
  setPositions(&position, 1, IntegerValue::shortName, to);
}

template <Bitset To>
void convertBits(StringValue const &from, To &to) {
  to.setFromString(from.getString());
}

template <Bitset To>
void convertBits(ByteArrayValue const &from, To &to) {
  unsigned int const bytes = from.getSize();
  if (bytes > UINT_MAX / 8) [[unlikely]]
    failTooManyBytes(bytes, To::shortName);
  to.setFromBuffer(reinterpret_cast<char const *>(from.getBuffer()), bytes, bytes * 8);
}

template <Bitset From, Bitset To>
void convertBits(From const &from, To &to) {
  static_cast<BitsetValue &>(to) = static_cast<BitsetValue const &>(from);
}

template <BitsetArray From, Bitset To>
void convertBits(From const &from, To &to) {
  from.getIthValue(0, to);  // checks the index before touching `to`
}

template <Undefined From, class To>
void convertBits(From const &, To &to) {
  to.clear();
}

template <Bitset From, PositionList To>
void convertBits(From const &from, To &to) {
  Array<int> positions;
  from.getArray(positions);
  to.setElements(std::move(positions));
}

template <Bitset From>
void convertBits(From const &from, StringValue &to) {
  from.getString(to.getString());
}

template <Bitset From>
void convertBits(From const &from, ByteArrayValue &to) {
  unsigned int const count = from.getNumBits() / 8 + (from.getNumBits() % 8 != 0);
  auto const *words = reinterpret_cast<unsigned char const *>(from.getBuffer());
  Array<unsigned char> bytes;
  bytes.resize(count);
  std::copy(words, words + count, bytes.getBuffer());
  to.setElements(std::move(bytes));
}

template <Bitset From>
void convertBits(From const &from, IntegerValue &to) {
  to = from.getInteger();
}
template <Bitset From>
void convertBits(From const &from, DoubleValue &to) {
  to.setDouble(from.getDouble());
}
template <Bitset From>
void convertBits(From const &from, BooleanValue &to) {
  to = from.getBoolean();
}

template <class From, BitsetArray To>
requires Bitset<From> || std::same_as<From, StringValue>
void convertBits(From const &from, To &to) {
  Array<typename To::ElementType> elements;
  elements.resize(1);
  convertBits(from, elements[0]);
  to.setElements(std::move(elements));
}

template <BitsetArray From, BitsetArray To>
void convertBits(From const &from, To &to) {
  Array<typename To::ElementType> elements;
  elements.resize(from.getSize());
  for (unsigned int i = 0; i < from.getSize(); ++i) convertBits(from[i], elements[i]);
  to.setElements(std::move(elements));
}

template <class From, class To>
struct BitsetConverter final : TypedValueTypeConverter<From, To> {
  void convertTyped(From const &from, To &to) override { convertBits(from, to); }
};

using BitsetClasses = TypeList<BitsetValue, BitsetValue2D, BitsetValue3D, BitFingerprintValue>;
using BitsetTargets = TypeList<BitsetValue, BitFingerprintValue>;

ConverterGrid<
    BitsetConverter,
    TypeList<IntegerFingerprintValue, IntegerArrayValue, IntegerValue, StringValue, ByteArrayValue, BitsetValue2D,
             BitsetValue3D, BitsetArrayValue, BitFingerprintArrayValue, NullValue, MissingValue>,
    BitsetTargets>
    intoBitsets;
BitsetConverter<BitsetValue, BitFingerprintValue> bitsetToFingerprint;
BitsetConverter<BitFingerprintValue, BitsetValue> fingerprintToBitset;

ConverterGrid<BitsetConverter, BitsetClasses,
              TypeList<IntegerFingerprintValue, IntegerArrayValue, StringValue, ByteArrayValue, IntegerValue,
                       DoubleValue, BooleanValue, BitsetArrayValue, BitFingerprintArrayValue>>
    outOfBitsets;

ConverterGrid<BitsetConverter, TypeList<StringValue>, TypeList<BitsetArrayValue, BitFingerprintArrayValue>>
    textIntoArrays;
ConverterGrid<BitsetConverter, TypeList<NullValue, MissingValue>,
              TypeList<BitsetValue2D, BitsetValue3D, BitsetArrayValue, BitFingerprintArrayValue>>
    clearing;
BitsetConverter<BitsetArrayValue, BitFingerprintArrayValue> bitsetsToFingerprints;
BitsetConverter<BitFingerprintArrayValue, BitsetArrayValue> fingerprintsToBitsets;

}  // namespace

}  // namespace quarn
