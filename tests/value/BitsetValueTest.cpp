// BitsetValueTest.cpp - word layout, bit and set operations, text forms, order, bytes and pooling of the bitset
#include <gtest/gtest.h>
#include <quarn/value/BitsetValue.h>
#include <quarn/value/IntegerValue.h>
#include <quarn/value/StringValue.h>

#include <climits>
#include <random>
#include <string>
#include <vector>

#include "support/ExpectThrow.h"
#include "value/GoldenBytes.h"
#include "value/ValueTesting.h"

namespace quarn::test {
namespace {

using Positions = std::vector<unsigned int>;
using Words = std::vector<unsigned int>;

BitsetValue bits(unsigned int n, Positions const &on = {}) {
  BitsetValue b(n);
  for (unsigned int p : on) b.setOn(p);
  return b;
}

Positions on(BitsetValue const &b) {
  Array<int> zeroBased;
  b.getArrayZeroBased(zeroBased);
  return Positions(zeroBased.begin(), zeroBased.end());
}

Words words(BitsetValue const &b) { return {b.getArray().begin(), b.getArray().end()}; }

/// Runs `f` and returns the InvalidIndexException it throws (index and last valid), or fails.
template <class F>
std::pair<int, int> invalidIndexOf(F &&f) {
  try {
    f();
  } catch (InvalidIndexException const &e) {
    return {e.getIndex(), e.getLastValidIndex()};
  }
  ADD_FAILURE() << "no InvalidIndexException";
  return {0, 0};
}

TEST(BitsetValueTest, ThirtyThreeBitsTakeTwoWordsAndAShrinkLeavesNoStaleBit) {
  BitsetValue b(33);
  EXPECT_EQ(b.getBufferSize(), 8u);
  b.setOn(32);
  b.setOn(0);
  EXPECT_EQ(words(b), (Words{1, 1}));
  b.resize(32);
  EXPECT_EQ(words(b), (Words{1}));
  b.resize(33);
  EXPECT_EQ(words(b), (Words{1, 0}));
  b = bits(40, {35, 38});
  b.resize(36);  // inside the last word: bit 38 becomes a surplus bit and is cleared
  EXPECT_EQ(words(b), (Words{0, 1u << 3}));
  b.resize(40);
  EXPECT_EQ(on(b), (Positions{35}));
  b.resize(0);
  EXPECT_EQ(b.getBufferSize(), 0u);
}

TEST(BitsetValueTest, BitAccessChecksTheWordIndexNotTheBitCount) {
  // clang-format off
  // wordIndex -1: no exception; bits 32 and 63 of 33 lie inside the last word and pass (reading a surplus bit)
  struct Case { unsigned int n, position; int wordIndex, lastValid; } const cases[] = {
      {33, 32, -1, 0}, {33, 63, -1, 0}, {33, 64, 2, 1}, {0, 0, 0, -1}, {32, 32, 1, 0}, {1, 0xFFFFFFFFu, 0x7FFFFFF, 0},
  };
  // clang-format on
  for (auto const &c : cases) {
    SCOPED_TRACE(testing::Message() << c.n << " " << c.position);
    BitsetValue b(c.n);
    if (c.wordIndex < 0) {
      EXPECT_FALSE(b[c.position]);
      continue;
    }
    std::pair<int, int> const expected{c.wordIndex, c.lastValid};
    EXPECT_EQ(invalidIndexOf([&] { (void)static_cast<bool>(b[c.position]); }), expected);
    EXPECT_EQ(invalidIndexOf([&] { b.setOn(c.position); }), expected);
    EXPECT_EQ(invalidIndexOf([&] { b.setOff(c.position); }), expected);
    EXPECT_EQ(invalidIndexOf([&] { b.flip(c.position); }), expected);
    EXPECT_EQ(invalidIndexOf([&] { b[c.position] = true; }), expected);
  }
  BitsetValue b(33);
  EXPECT_QUARN_THROW_AS(b.set(64, true), InvalidIndexException,
                        "Invalid index 2 (last valid index 1)\nBitsetValue::set: Tessary exception caught");
  EXPECT_QUARN_THROW_AS(b.flip(64), InvalidIndexException,
                        "Invalid index 2 (last valid index 1)\nBitsetValue::flip: Tessary exception caught");
  EXPECT_QUARN_THROW_AS(b.setOn(64), InvalidIndexException, "Invalid index 2 (last valid index 1)");
  b[3] = true;  // the reference reads and writes one bit
  EXPECT_FALSE(~b[3]);
  b[5] = b[3];
  b[3].flip();
  EXPECT_EQ(on(b), (Positions{5}));
}

TEST(BitsetValueTest, WholeSetOperationsKeepTheSurplusBitsOff) {
  BitsetValue b(33);
  b.setAll(true);
  EXPECT_EQ(words(b), (Words{0xFFFFFFFFu, 1}));
  b.flipAll();
  EXPECT_TRUE(b.isEmpty());
  b.flipAll();
  EXPECT_EQ(words(b), (Words{0xFFFFFFFFu, 1}));
  // clang-format off
  struct Case { Positions before; bool left; Positions after; } const cases[] = {
      {{0, 31}, true, {1, 32}}, {{32}, true, {}}, {{0, 32}, false, {31}}, {{1, 31}, false, {0, 30}}, {{}, true, {}},
  };
  // clang-format on
  for (auto const &c : cases) {
    BitsetValue s = bits(33, c.before);
    c.left ? s.shiftLeft() : s.shiftRight();
    EXPECT_EQ(on(s), c.after);
    EXPECT_EQ(s.getArray().getSize(), 2u);
    EXPECT_LE(s.getArray()[1], 1u);
  }
  BitsetValue none;
  none.shiftLeft();
  none.shiftRight();
  none.setAll(true);
  EXPECT_TRUE(none.isEmpty());
}

// The rule for operands of different lengths: common words, missing words 0;
// in-place keeps this length, value-returning takes the longer.
TEST(BitsetValueTest, OperandsOfDifferentLengthsReadMissingBitsAsOff) {
  BitsetValue const shortSet = bits(8, {0, 1, 5});
  BitsetValue const longSet = bits(40, {1, 5, 20, 39});
  // clang-format off
  struct Case { char const *name; BitsetValue result; unsigned int n; Positions on; } const cases[] = {
      {"short &= long", BitsetValue(shortSet) &= longSet, 8, {1, 5}},
      {"short |= long", BitsetValue(shortSet) |= longSet, 8, {0, 1, 5}},
      {"short ^= long", BitsetValue(shortSet) ^= longSet, 8, {0}},
      {"short andNot long", BitsetValue(shortSet).andNot(longSet), 8, {0}},
      {"long &= short", BitsetValue(longSet) &= shortSet, 40, {1, 5}},
      {"long |= short", BitsetValue(longSet) |= shortSet, 40, {0, 1, 5, 20, 39}},
      {"long ^= short", BitsetValue(longSet) ^= shortSet, 40, {0, 20, 39}},
      {"long andNot short", BitsetValue(longSet).andNot(shortSet), 40, {20, 39}},
      {"short & long", shortSet & longSet, 40, {1, 5}}, {"long & short", longSet & shortSet, 40, {1, 5}},
      {"short | long", shortSet | longSet, 40, {0, 1, 5, 20, 39}},
      {"short ^ long", shortSet ^ longSet, 40, {0, 20, 39}},
  };
  // clang-format on
  for (auto const &c : cases) {
    EXPECT_EQ(c.result.getNumBits(), c.n) << c.name;
    EXPECT_EQ(on(c.result), c.on) << c.name;
  }
  for (auto [a, b] : {std::pair{&shortSet, &longSet}, std::pair{&longSet, &shortSet}}) {
    EXPECT_EQ(a->getAndBitsOn(*b), 2u);
    EXPECT_EQ(a->getOrBitsOn(*b), 5u);
    EXPECT_EQ(a->getXorBitsOn(*b), 3u);
  }
  // A longer operand's bits never land in this bitset's surplus bits.
  BitsetValue all(64), narrow(33);
  all.setAll(true);
  narrow |= all;
  EXPECT_EQ(words(narrow), (Words{0xFFFFFFFFu, 1}));
  narrow ^= all;
  EXPECT_TRUE(narrow.isEmpty());
  // clang-format off
  struct SubsetCase { BitsetValue a, b; bool subset, andEmpty; } const subsets[] = {
      {bits(8, {1, 5}), bits(40, {1, 5, 20}), true, false}, {bits(8, {0, 1}), bits(40, {1, 5, 20}), false, false},
      {bits(40, {1}), bits(8, {1}), true, false}, {bits(40, {1, 33}), bits(8, {1}), false, false},
      {bits(8, {0}), bits(40, {1, 33}), false, true}, {bits(0), bits(8, {1}), true, true},
      {bits(8), bits(0), true, true},
  };
  // clang-format on
  for (auto const &c : subsets) {
    EXPECT_EQ(c.a.isSubset(c.b), c.subset) << c.a.getNumBits() << " in " << c.b.getNumBits();
    EXPECT_EQ(c.a.isAndEmpty(c.b), c.andEmpty);
    EXPECT_EQ(c.b.isAndEmpty(c.a), c.andEmpty);
  }
}

// Every length from 0 to 300 words, so each vector width and tail is met.
TEST(BitsetValueTest, CountsAgreeWithCountingBitByBitAndTheByteTable) {
  std::mt19937 random(7);
  for (unsigned int n = 0; n <= 300 * 32; n += (n < 200 ? 1 : 97)) {
    BitsetValue a(n), b(n + 70);
    unsigned int count = 0, both = 0, either = 0, one = 0;
    for (unsigned int i = 0; i < n + 70; ++i) {
      bool const x = i < n && random() % 3 == 0, y = random() % 2 == 0;
      if (x) a.setOn(i);
      if (y) b.setOn(i);
      count += x, both += x && y, either += x || y, one += x != y;
    }
    ASSERT_EQ(a.getNumBitsOn(), count) << n;
    ASSERT_EQ(a.getAndBitsOn(b), both) << n;
    ASSERT_EQ(a.getOrBitsOn(b), either) << n;
    ASSERT_EQ(b.getXorBitsOn(a), one) << n;
  }
  // the byte count table holds the ones of each byte
  struct Peek : BitsetValue {
    static unsigned int ones(unsigned int byte) { return m_bitCounts[byte]; }
  };
  unsigned int total = 0;
  for (unsigned int byte = 0; byte < 256; ++byte) total += Peek::ones(byte);
  EXPECT_EQ(total, 1024u);
  EXPECT_EQ(Peek::ones(0xFF), 8u);
  EXPECT_EQ(Peek::ones(0x80), 1u);
}

TEST(BitsetValueTest, IterationScansUpAndDownAcrossWords) {
  BitsetValue const b = bits(70, {0, 31, 32, 69}), empty(40);
  std::vector<int> up, down;
  for (int pos = -5; b.getNext(pos);) up.push_back(pos);          // -5 behaves as -1
  for (int pos = 1000; b.getPrevious(pos);) down.push_back(pos);  // above n behaves as n
  EXPECT_EQ(up, (std::vector<int>{0, 31, 32, 69}));
  EXPECT_EQ(down, (std::vector<int>{69, 32, 31, 0}));
  // A scan that finds nothing leaves the position as it was.
  auto scan = [](BitsetValue const &s, int pos, bool up) {
    return std::pair{up ? s.getNext(pos) : s.getPrevious(pos), pos};
  };
  EXPECT_EQ(scan(empty, -1, true), std::pair(false, -1));
  EXPECT_EQ(scan(empty, 40, false), std::pair(false, 40));
  EXPECT_EQ(scan(b, 0, false), std::pair(false, 0));
  EXPECT_EQ(scan(b, 69, true), std::pair(false, 69));
}

TEST(BitsetValueTest, TextFormsList1BasedPositionsAndXmlLeadsWithTheBitCount) {
  // clang-format off
  struct Case { BitsetValue b; std::u16string text, xml; } const cases[] = {
      {bits(0), u"", u"0"}, {bits(5), u"", u"5 "}, {bits(10, {0, 2, 4}), u"1 3 5", u"10 1 3 5"},
      {bits(33, {32}), u"33", u"33 33"},
  };
  // clang-format on
  for (auto const &c : cases) {
    WString text, xml, extra(u16(u"old"));
    c.b.getString(text);
    EXPECT_FALSE(text.isNull());
    EXPECT_EQ(str(text), c.text);
    EXPECT_TRUE(c.b.getXMLText(xml, extra));
    EXPECT_EQ(str(xml), c.xml);
    EXPECT_EQ(str(extra), u"");
  }
}

// XML text with a space is a bit count then positions; setFromString never fails and never shrinks.
TEST(BitsetValueTest, TextIsReadLeniently) {
  // XML: "3 7" - the positions outgrow the count; "7" - no space, positions only; "x 2" - an unreadable count is 0
  // setFromString, starting from bits(4, {0})
  // clang-format off
  struct Case { bool xml; std::u16string text; unsigned int n; Positions on; } const cases[] = {
      {true, u"3 7", 7, {6}}, {true, u"7", 7, {6}}, {true, u"3 7 2", 7, {1, 6}}, {true, u"10 1 3 5", 10, {0, 2, 4}},
      {true, u"0", 0, {}}, {true, u"5 ", 5, {}}, {true, u"", 0, {}}, {true, u"x 2", 2, {1}}, {true, u"-4 2", 2, {1}},
      {true, u"40 1,2, 3", 40, {0, 1, 2}}, {false, u"", 4, {}}, {false, u"2 x 3", 4, {1}},
      {false, u"1, 3,5", 5, {0, 2, 4}}, {false, u"-1 0 2", 4, {1}}, {false, u"abc", 4, {}}, {false, u"  9", 9, {8}},
      {false, u"1.5 3", 4, {0}}, {false, u",,2,", 4, {1}}, {false, u"2\t\n4", 4, {1, 3}}, {false, u"+3", 4, {2}},
  };
  // clang-format on
  for (auto const &c : cases) {
    SCOPED_TRACE(utf8(u16(c.text)));
    BitsetValue b = c.xml ? BitsetValue() : bits(4, {0});
    c.xml ? b.setFromXMLText(u16(c.text), WString()) : b.setFromString(u16(c.text));
    EXPECT_EQ(b.getNumBits(), c.n);
    EXPECT_EQ(on(b), c.on);
  }
  BitsetValue b = bits(3, {1});
  b.setFromString(WString());
  EXPECT_EQ(b.getNumBits(), 3u);
  EXPECT_TRUE(b.isEmpty());
}

// Ten characters of text once asked for 2^31 - 1 bits; text now grows a bitset no further than integers may.
TEST(BitsetValueTest, TextGrowsABitsetToTenMillionBitsAndNoFurther) {
  std::string const refusal =
      "Cannot convert StringValues containing numbers greater than 10,000,000 to a BitsetValue";
  // clang-format off
  struct Case { bool xml; std::u16string text; unsigned int before, n; bool refused; } const cases[] = {
      {true, u"2147483647", 0, 0, true}, {true, u"10000001", 0, 0, true}, {true, u"10000001 1", 0, 0, true},
      {true, u"5 10000001", 0, 0, true}, {false, u"10000001", 0, 0, true}, {false, u"1 2147483647", 0, 0, true},
      {true, u"10000000", 0, 10000000, false}, {true, u"10000000 1", 0, 10000000, false},
      {false, u"10000000", 0, 10000000, false}, {false, u"10000002", 10000002, 10000002, false},
      {true, u"10000002 1", 10000002, 10000002, false},
  };
  // clang-format on
  for (auto const &c : cases) {
    SCOPED_TRACE(utf8(u16(c.text)));
    BitsetValue b = bits(c.before + 4, {1});
    b.resize(c.before);
    if (c.before == 0) b = bits(4, {1});
    BitsetValue const was = b;
    auto read = [&] { c.xml ? b.setFromXMLText(u16(c.text), WString()) : b.setFromString(u16(c.text)); };
    if (c.refused) {
      EXPECT_QUARN_THROW(read(), refusal);
      EXPECT_TRUE(b == was);
    } else {
      read();
      EXPECT_EQ(b.getNumBits(), c.n);
    }
  }
  BitsetValue b = bits(4, {1});
  EXPECT_QUARN_THROW(StringValue("2147483647").assignTo(b), refusal);
  EXPECT_TRUE(b == bits(4, {1}));
}

TEST(BitsetValueTest, ListsAndBuffersFillTheBits) {
  Array<int> list, ints, two;
  for (int p : {3, -1, 0}) list.append(p);
  BitsetValue b;
  b = list;
  EXPECT_EQ(b.getNumBits(), 4u);
  EXPECT_EQ(on(b), (Positions{0, 3}));
  Array<double> doubles;
  Array<bool> flags;
  Array<WString> texts;
  ints.append(99);
  b.getArray(ints);
  b.getArray(doubles);
  b.getArray(flags);
  b.getArray(texts);
  EXPECT_EQ(std::vector<int>(ints.begin(), ints.end()), (std::vector<int>{1, 4}));
  EXPECT_EQ(std::vector<double>(doubles.begin(), doubles.end()), (std::vector<double>{1.0, 4.0}));
  EXPECT_EQ(std::vector<bool>(flags.begin(), flags.end()), (std::vector<bool>{true, false, false, true}));
  ASSERT_EQ(texts.getSize(), 1u);
  EXPECT_EQ(str(texts[0]), u"1 4");
  BitsetValue wide = bits(10, {9});
  two.append(2);
  wide = two;  // never shrinks
  EXPECT_EQ(wide.getNumBits(), 10u);
  EXPECT_EQ(on(wide), (Positions{2}));
  wide = Array<int>();
  EXPECT_EQ(wide.getNumBits(), 10u);
  EXPECT_TRUE(wide.isEmpty());
  // setFromBuffer takes bytes in memory order and clears the rest
  b = bits(64, {40});
  char const bytes[] = {0x05, static_cast<char>(0xF0)};
  b.setFromBuffer(bytes, 2, 12);  // bits 12-15 fall in the surplus bits
  EXPECT_EQ(b.getNumBits(), 12u);
  EXPECT_EQ(on(b), (Positions{0, 2}));
  b.setFromBuffer(bytes, 2, 40);
  EXPECT_EQ(on(b), (Positions{0, 2, 12, 13, 14, 15}));
  char const many[12] = {1, 0, 0, 0, 0, 0, 0, 0, 1};
  b.setFromBuffer(many, sizeof many, 33);  // bytes beyond the two words are ignored
  EXPECT_EQ(on(b), (Positions{0}));
  b = bits(40, {3, 39});
  b.setFromBuffer(b.getBuffer(), b.getBufferSize(), 200);  // reads its own words
  EXPECT_EQ(on(b), (Positions{3, 39}));
}

// compare: more bits order first and equal lengths never give -1; == and < form a strict order.
TEST(BitsetValueTest, CompareAndLessThanOrderAsTheClassDefines) {
  // clang-format off
  struct Case { BitsetValue a, b; int ab, ba; } const cases[] = {
      {bits(16), bits(8), -1, 1}, {bits(8, {1}), bits(8, {2}), 1, 1}, {bits(8, {1}), bits(8, {1}), 0, 0},
      {bits(0), bits(0), 0, 0}, {bits(33, {32}), bits(32, {0}), -1, 1},
  };
  // clang-format on
  for (auto const &c : cases) {
    EXPECT_EQ(c.a.compare(c.b), c.ab);
    EXPECT_EQ(c.b.compare(c.a), c.ba);
  }
  IntegerValue other;
  EXPECT_GT(bits(8).compare(other), 0);  // "...IntegerValue" after "...BitsetValue"
  EXPECT_LT(other.compare(bits(8)), 0);
  // clang-format off
  struct LessCase { BitsetValue a, b; bool equal, less; } const ordered[] = {
      {bits(8, {1}), bits(8, {1}), true, false}, {bits(8, {1}), bits(8, {2}), false, true},
      {bits(8, {7}), bits(40, {0}), false, false},  // as numbers: 128 > 1
      {bits(8), bits(40), false, true},  // equal numbers: fewer bits first
      {bits(40, {33}), bits(8, {7}), false, false},
  };
  // clang-format on
  for (auto const &c : ordered) {
    EXPECT_EQ(c.a == c.b, c.equal);
    EXPECT_EQ(c.a != c.b, !c.equal);
    EXPECT_EQ(c.a < c.b, c.less);
    if (!c.equal) {
      EXPECT_NE(c.a < c.b, c.b < c.a);
    }
  }
  EXPECT_EQ(bits(0).hash(), 0u);             // the hash is the polynomial of the words
  EXPECT_EQ(bits(33, {0, 32}).hash(), 32u);  // 1 * 31 + 1
  EXPECT_EQ(bits(64, {0, 33}).hash(), 33u);  // 1 * 31 + 2
}

TEST(BitsetValueTest, PayloadIsTheBitCountTheWordCountAndTheWords) {
  // clang-format off
  struct Case { BitsetValue b; char const *hex; } const cases[] = {
      {bits(0), "00 00"}, {bits(5, {0}), "14 04 04"}, {bits(33, {0, 32}), "01 21 08 04 04"},
      {bits(32, {31}), "01 20 04 03 00 00 00 80"}, {bits(40, {7, 33}), "01 28 08 02 80 00 08"},
  };
  // clang-format on
  for (auto const &c : cases) {
    EXPECT_EQ(hexOf(serialise(c.b)), c.hex);
    readEach<BitsetValue>(golden(c.hex), 2, [&](BitsetValue const &read) { EXPECT_EQ(read, c.b) << c.hex; });
  }
}

// The words decide: extra words are read and dropped, too few words cut n.
TEST(BitsetValueTest, PayloadWhoseWordCountDisagreesWithTheBitCountIsRepairedOrRefused) {
  // 64 bits in one word; 8 bits in three; surplus bits of the word cleared; n = -1 (4294967295 bits) in one
  // word; 64 bits, no words; 0 bits, two words
  // clang-format off
  struct Case { char const *hex; unsigned int n; Words words; } const cases[] = {
      {"01 40 04 14", 32, {5}}, {"20 0C 04 08 0C", 8, {1}}, {"14 04 02 FF 00", 5, {0x1F}}, {"FC 04 1C", 32, {7}},
      {"01 40 00", 0, {}}, {"00 08 04 04", 0, {}},
  };
  // clang-format on
  for (auto const &c : cases) {
    readEach<BitsetValue>(golden(c.hex), 2, [&](BitsetValue const &b) {
      EXPECT_EQ(b.getNumBits(), c.n) << c.hex;
      EXPECT_EQ(words(b), c.words) << c.hex;
      Array<bool> flags;
      b.getArray(flags);
      EXPECT_EQ(flags.getSize(), c.n);
      for (int pos = -1; b.getNext(pos);) EXPECT_LT(static_cast<unsigned int>(pos), c.n);
      EXPECT_EQ(b, BitsetValue(b)) << c.hex;
    });
  }
  // A word count the stream cannot hold fails without touching the value.
  char const *const hostile[] = {
      "01 40 03 00 CA 9A 3B 04 08",  // a billion words, two present
      "01 40 FC 04",                 // -1 words
      "01 40 03 FF FF FF 7F",        // INT_MAX words, none present
  };
  for (char const *hex : hostile) {
    for (int chunk : kChunkSizes) {
      BitsetValue b = bits(9, {3});
      ChunkedInputStream in(golden(hex), chunk);
      EXPECT_QUARN_THROW(b.deserialize(in), "EOF reading int header");
      EXPECT_EQ(b, bits(9, {3}));
      EXPECT_TRUE(in.atEnd());
    }
    Bytes const bytes = golden(hex);
    BitsetValue b = bits(9, {3});
    MemoryInputStream memory(bytes.data(), static_cast<unsigned int>(bytes.size()));
    EXPECT_QUARN_THROW(b.deserialize(memory), "EOF reading int header");
    EXPECT_EQ(b, bits(9, {3}));
    EXPECT_EQ(memory.getPosition(), bytes.size());
  }
}

// Pooled bitsets are filled and read again and again: both go into the words they kept.
TEST(BitsetValueTest, SetFromBufferAndReadingFromMemoryReuseTheWordsKept) {
  BitsetValue b = bits(1024, {1000});
  unsigned int const *const words = b.getArray().getBuffer();
  char const bytes[] = {0x05, 0x00, 0x00, 0x00, 0x01};
  b.setFromBuffer(bytes, sizeof bytes, 64);  // the old bits beyond the bytes are cleared
  EXPECT_EQ(b.getArray().getBuffer(), words);
  EXPECT_EQ(on(b), (Positions{0, 2, 32}));
  Bytes const payload = golden("01 28 08 02 80 00 08");  // 40 bits, 7 and 33 on
  MemoryInputStream in(payload.data(), static_cast<unsigned int>(payload.size()));
  b.deserialize(in);
  EXPECT_EQ(b.getArray().getBuffer(), words);
  EXPECT_EQ(b, bits(40, {7, 33}));
}

TEST(BitsetValueTest, PoolKeepsTheWordsOfSmallBitsetsOnlyAndClearFreesThem) {
  for (auto [words, kept] : {std::pair{1000u, true}, std::pair{1001u, false}}) {
    BitsetValue *first = BitsetValue::newInstance();
    first->resize(words * 32);
    first->setOn(5);
    first->deleteInstance();
    BitsetValue *again = BitsetValue::newInstance();
    EXPECT_EQ(again, first);
    EXPECT_EQ(again->getNumBits(), 0u);
    EXPECT_EQ(again->getArray().getCapacity() >= words, kept) << words;
    again->resize(64);
    EXPECT_TRUE(again->isEmpty());
    again->deleteInstance();
  }
  BitsetValue b = bits(100, {99});
  BitsetValue moved(std::move(b));
  EXPECT_EQ(on(moved), (Positions{99}));
  EXPECT_EQ(b.getBufferSize(), 0u);  // NOLINT(bugprone-use-after-move): the moved-from state is defined
  moved.clear();
  EXPECT_EQ(moved.getNumBits(), 0u);
  EXPECT_EQ(moved.getArray().getCapacity(), 0u);
}

}  // namespace
}  // namespace quarn::test
