// ArrayContracts.h - the typed arrays and fingerprints as members of the value contract suite, and their test helpers
//
// arrayOf<A>({...}) and textsOf({...}) build arrays; expectPayload checks the
// exact bytes of a value and reads them back at every chunk size.
//
// ArrayContract<T> gives the contract suite its samples of each array class
// and what an array promises beyond a scalar: items of another class
// (itemType) and a dump that lists every element (dumpsAsList). Non-byte
// arrays have no XML text of their own (getXMLText is element 0's text), so
// their samples hold at least one element and only one-element samples read
// back from it; byte arrays round-trip through Base64 at any size. Doubles
// leave out NaN (equal to nothing) and -0.0 (equal to 0.0, hashed apart):
// DoubleArrayValueTest covers both.
#pragma once

#include <quarn/value/BooleanArrayValue.h>
#include <quarn/value/BooleanValue.h>
#include <quarn/value/ByteArrayValue.h>
#include <quarn/value/DoubleArrayValue.h>
#include <quarn/value/DoubleFingerprintValue.h>
#include <quarn/value/DoubleValue.h>
#include <quarn/value/IntegerArrayValue.h>
#include <quarn/value/IntegerFingerprintValue.h>
#include <quarn/value/IntegerValue.h>
#include <quarn/value/StringArrayValue.h>
#include <quarn/value/StringFingerprintValue.h>
#include <quarn/value/StringValue.h>

#include <gtest/gtest.h>

#include <climits>
#include <initializer_list>
#include <limits>
#include <vector>

#include "value/GoldenBytes.h"
#include "value/ValueTesting.h"

namespace quarn::test {

/// An array of class A holding `elements`.
template <class A>
A arrayOf(std::initializer_list<typename A::ElementType> elements) {
  return A(elements.begin(), static_cast<unsigned int>(elements.size()));
}

/// A string array (or fingerprint) holding `texts`; nullptr stands for a null element.
template <class A = StringArrayValue>
A textsOf(std::initializer_list<char16_t const *> texts) {
  Array<WString> elements;
  for (char16_t const *t : texts) elements.append(t ? u16(t) : WString());
  return A(elements);
}

/// Collects what is written; being no memory stream, it takes the coders' general path.
struct CollectingOutputStream final : iByteOutputStream {
  void write(void const *data, int count) override {
    auto const *p = static_cast<unsigned char const *>(data);
    if (count > 0) bytes.insert(bytes.end(), p, p + count);
  }
  Bytes bytes;
};

/// `value` serialises to exactly `hexText`, which reads back (at every chunk size and from memory) to an equal value.
template <class A>
void expectPayload(A const &value, char const *hexText, int version = 2) {
  Bytes const bytes = golden(hexText);
  EXPECT_EQ(hexOf(serialise(value, version)), hexOf(bytes));
  readEach<A>(bytes, version, [&](A const &read) { EXPECT_EQ(read.compare(value), 0) << hexText; });
  MemoryInputStream memory(bytes.data(), static_cast<unsigned int>(bytes.size()), version);
  A read;
  read.deserialize(memory);
  EXPECT_EQ(read.compare(value), 0) << hexText;
  EXPECT_EQ(memory.getPosition(), bytes.size());
}

template <class A, class Item>
struct ArrayContractBase {
  /// Arrays of arrays are value arrays.
  static constexpr char const arrayClass[] = "Marlix.value.ValueArrayValue";
  static constexpr bool streamKeepsAll = true;
  static constexpr bool dumpsAsList = true;
  static ClassTag const &itemType() { return Item::Tag; }
  static bool xmlRoundTrips(A const &v) { return v.getSize() == 1; }
};

template <class A>
struct ArrayContract;

template <>
struct ArrayContract<IntegerArrayValue> : ArrayContractBase<IntegerArrayValue, IntegerValue> {
  static std::vector<IntegerArrayValue> samples() {
    using A = IntegerArrayValue;
    return {arrayOf<A>({7}), arrayOf<A>({1, 2, 3}), arrayOf<A>({5, 6}), arrayOf<A>({-1}), arrayOf<A>({1, 2}),
            arrayOf<A>({INT_MIN, INT_MAX, 0, 16, -129, 40000, -16, 15})};
  }
};

template <>
struct ArrayContract<DoubleArrayValue> : ArrayContractBase<DoubleArrayValue, DoubleValue> {
  static std::vector<DoubleArrayValue> samples() {
    using A = DoubleArrayValue;
    double const inf = std::numeric_limits<double>::infinity();
    return {arrayOf<A>({0.5}), arrayOf<A>({1.0, 0.0, -2.75}), arrayOf<A>({1e300, 5e-324}), arrayOf<A>({inf, -inf}),
            arrayOf<A>({0.1})};
  }
};

template <>
struct ArrayContract<StringArrayValue> : ArrayContractBase<StringArrayValue, StringValue> {
  static std::vector<StringArrayValue> samples() {
    return {textsOf({nullptr}), textsOf({u""}), textsOf({u"a"}), textsOf({nullptr, u"", u"h\u00E9llo \u20AC"}),
            textsOf({u"x\"&<>'y"}), textsOf({u"\U0001F600", u"b", u"a"})};
  }
};

template <>
struct ArrayContract<BooleanArrayValue> : ArrayContractBase<BooleanArrayValue, BooleanValue> {
  static std::vector<BooleanArrayValue> samples() {
    using A = BooleanArrayValue;
    return {arrayOf<A>({true}), arrayOf<A>({false}), arrayOf<A>({true, false}), arrayOf<A>({false, true, true})};
  }
};

template <>
struct ArrayContract<ByteArrayValue> : ArrayContractBase<ByteArrayValue, IntegerValue> {
  static std::vector<ByteArrayValue> samples() {
    using A = ByteArrayValue;
    Array<unsigned char> many;
    for (unsigned int i = 0; i < 300; ++i) many.append(static_cast<unsigned char>(i * 7));
    return {A(), arrayOf<A>({0}), arrayOf<A>({255, 1}), arrayOf<A>({1, 255}), A(many)};
  }
  static bool xmlRoundTrips(ByteArrayValue const &) { return true; }
};

template <>
struct ArrayContract<IntegerFingerprintValue> : ArrayContractBase<IntegerFingerprintValue, IntegerValue> {
  static std::vector<IntegerFingerprintValue> samples() {
    using A = IntegerFingerprintValue;
    return {arrayOf<A>({5, 1, 5}), arrayOf<A>({3}), arrayOf<A>({10000000, -4})};
  }
};

template <>
struct ArrayContract<DoubleFingerprintValue> : ArrayContractBase<DoubleFingerprintValue, DoubleValue> {
  static std::vector<DoubleFingerprintValue> samples() {
    using A = DoubleFingerprintValue;
    return {arrayOf<A>({0.25}), arrayOf<A>({0.25, 0.5, 0.25})};
  }
};

template <>
struct ArrayContract<StringFingerprintValue> : ArrayContractBase<StringFingerprintValue, StringValue> {
  static std::vector<StringFingerprintValue> samples() {
    using A = StringFingerprintValue;
    return {textsOf<A>({u"k"}), textsOf<A>({u"k", nullptr, u"k"})};
  }
};

}  // namespace quarn::test
