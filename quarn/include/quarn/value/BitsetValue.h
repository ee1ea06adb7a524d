// BitsetValue.h - a record property holding a fixed-length set of bits
//
// A bitset holds n bits in ceil(n / 32) unsigned 32-bit words: bit i lives in
// word i / 32 at bit i % 32 (value 1 << (i % 32)), so on a little-endian
// machine the words as bytes hold bit i in byte i / 8 at bit i % 8. The bits
// from n to the end of the last word (the surplus bits) are always 0: every
// operation below keeps them so, and resize clears what a shrink leaves
// behind. The bitset owns its words; a pooled bitset keeps them for the next
// user unless it holds more than 1000 words.
//
// Positions are 1-based in the text form and in every Value conversion, and
// 0-based in getArrayZeroBased, operator=(Array<int>) and the bit operations;
// the asymmetry is deliberate. Bit access checks the word index against the
// word count (InvalidIndexException(word index, word count - 1)), not the
// position against n: a position in the surplus bits of the last word passes,
// and writing there is the caller's error (it breaks equality and counting).
//
// Operands of different lengths: a binary operation works over the words the
// two have in common and takes the missing words of the shorter operand as
// zero. In-place operations (&=, |=, ^=, andNot) keep this bitset's length
// (bits of a longer operand beyond it are dropped); the value-returning &, |
// and ^ give the longer length; counts (getAndBitsOn, getOrBitsOn,
// getXorBitsOn) and tests (isAndEmpty, isSubset, operator<) read missing bits
// as 0. So {0,1} of 8 bits & {1,20} of 24 bits is {1} of 24 bits, and
// {0} of 8 bits is a subset of {0} of 24 bits and of {0, 30} of 32 bits.
//
// Counting runs word by word on the widest population count the processor
// offers (chosen once, at the first count), never bit by bit.
//
// Order (compare): against another class by class name; a bitset with more
// bits orders first (-1 when the other has fewer bits), and bitsets of equal
// length give 0 when equal and 1 otherwise, never -1. Both rules are
// deliberate. Hash: h = h * 31 + word over the words (no words: 0).
// Scalar coercions read only the first word: getInteger as signed, getDouble
// as unsigned, getBoolean as non-zero; no words give 0, 0.0, false.
//
// Text: getString lists the on positions, 1-based and ascending, separated by
// one space ("1 3 5"; none: empty text). setFromString reads integers one after
// another and does not fail on bad text: blanks and commas both separate ("1, 3,5"), values
// below 1 are skipped, anything else ends the list ("2 x 3" is {2}). It sets
// exactly the positions read, growing the bitset to the largest one, never
// shrinking it. XML text: n, then (when n is not 0) one space and the
// getString text: 10 bits with 0, 2, 4 on -> "10 1 3 5"; no bits -> "0"; five
// bits, none on -> "5 ". Reading XML text: a text with a space is a bit count
// (read leniently; a negative or missing count is 0) followed by positions, so
// "3 7" is 7 bits with only bit 6 on; a text without a space is positions only.
// A text grows a bitset to at most kMaxGrowBits (10,000,000) bits, as the
// integer conversions do, so ten characters cannot ask for 256 MB of words: a
// bit count or position beyond that (where the bitset is not that long
// already) throws "Cannot convert StringValues containing numbers greater than
// 10,000,000 to a BitsetValue" (the class's own short name last) before
// anything changes; this is the one way setFromString fails.
//
// Payload: n as a stream int, the word count as a stream int, then each word
// as a stream int (its 32 bits taken as signed). 33 bits with bits 0 and 32 on:
//   01 21  08  04  04      (33, 2 words, 1, 1)
// Both counts are untrusted. Words are read as they arrive (a word count the
// stream cannot hold ends in "EOF reading int header" having allocated only
// for the words that came; a negative count is taken as unsigned, so it too
// runs out of stream). A word count that disagrees with n is repaired on
// reading, the words deciding: words beyond ceil(n / 32) are dropped, and too
// few words cut n to 32 * word count; the surplus bits are then cleared. So a
// bitset read from any payload keeps every invariant, and nothing is allocated
// for a bit count the payload does not back with words. A failed read leaves
// the bitset as it was. From a memory stream the words are found complete
// first and then read into the storage the bitset kept.
//
// Failures: set, flip, setAll, flipAll, resize and the value-returning &, |, ^
// annotate what passes through them ("BitsetValue::resize: Tessary exception
// caught"); an allocation that fails becomes "BitsetValue::resize: Bad
// Allocation ...".
//
// Conversions registered with the converter registry (assignTo):
//   IntegerFingerprintValue, IntegerArrayValue, IntegerValue -> bitset: the
//     elements (an integer: itself) are 1-based positions (<= 0 ignored); the
//     bitset grows to the largest only when it is too short, and refuses to
//     grow beyond 10,000,000 bits ("Cannot convert IntegerFingerprintValues
//     containing numbers greater than 10,000,000 to a BitsetValue"); then
//     exactly those positions are on.
//   bitset -> IntegerFingerprintValue, IntegerArrayValue: the 1-based positions.
//   StringValue -> bitset: setFromString; bitset -> StringValue: getString.
//   ByteArrayValue -> bitset: 8 bits per byte, least significant bit first
//     (byte k bit j is position 8k + j); bitset -> ByteArrayValue: the same
//     bytes, ceil(n / 8) of them.
//   bitset -> IntegerValue, DoubleValue, BooleanValue: the first-word coercions.
//   Between BitsetValue, BitsetValue2D, BitsetValue3D and BitFingerprintValue
//     (into BitsetValue and BitFingerprintValue): n and the words.
//   BitsetArrayValue, BitFingerprintArrayValue -> bitset: element 0 (an empty
//     array throws InvalidIndexException), as any array's scalar coercion;
//     bitset or StringValue -> either array: one element; between the arrays:
//     each element.
//   NullValue, MissingValue -> any bitset class or bitset array: cleared.
// Every conversion into BitsetValue exists into BitFingerprintValue too.
#pragma once

#include <quarn/core/Export.h>
#include <quarn/core/PooledClassImp.h>
#include <quarn/value/Value.h>
#include <quarn/value/ValueGlue.h>
#include <quarnCore/Array.h>
#include <quarnCore/BaseString.h>

namespace quarn {

/// Pooled: create with newInstance(), hand back with deleteInstance().
class QUARN_API BitsetValue : public ValueGlue<BitsetValue, Value> {
  QUARN_VALUE_CLASS(BitsetValue, "Marlix.value.BitsetValue", PooledClassImp<BitsetValue, -1>)

 public:
  /// A pooled bitset with more words than this frees them when released.
  static constexpr unsigned int kMaxPooledWords = 1000;
  /// The most bits that positions read from text or integers may grow a bitset to.
  static constexpr unsigned int kMaxGrowBits = 10000000;

  /// One bit of a bitset, from the non-const operator[]: reads as bool,
  /// assigns through set().
  class reference {
   public:
    reference(BitsetValue &bits, unsigned int position) noexcept : m_bits(&bits), m_position(position) {}
    reference(reference const &) noexcept = default;
    operator bool() const { return m_bits->BitIsOn(m_position); }  // NOLINT(google-explicit-constructor)
    bool operator~() const { return !m_bits->BitIsOn(m_position); }
    reference &operator=(bool on) {
      m_bits->set(m_position, on);
      return *this;
    }
    reference &operator=(reference const &other) { return *this = static_cast<bool>(other); }
    reference &flip() {
      m_bits->flip(m_position);
      return *this;
    }

   private:
    BitsetValue *m_bits;
    unsigned int m_position;
  };

  /// No bits.
  BitsetValue() = default;
  /// `numBits` bits, all off.
  explicit BitsetValue(unsigned int numBits);
  BitsetValue(BitsetValue const &other);
  /// Takes the words; `other` is left with no bits.
  BitsetValue(BitsetValue &&other) noexcept;
  ~BitsetValue() override;
  /// Copies n and the words (reusing this bitset's storage).
  BitsetValue &operator=(BitsetValue const &other);
  /// Exchanges the bits with `other`.
  BitsetValue &operator=(BitsetValue &&other) noexcept;
  /// Exactly the 0-based positions listed are on (negative entries skipped);
  /// grows to the largest position + 1 when shorter, never shrinks.
  BitsetValue &operator=(Array<int> const &positions);

  // ---- Value slots, in slot order

  /// h = h * 31 + word over the words.
  unsigned int hash() const override;
  void serialize(iByteOutputStream &out) const override;
  /// Reads and repairs (see the file comment); a failed read changes nothing.
  void deserialize(iByteInputStream &in) override;
  /// The first word as a signed integer (0 without words).
  int getInteger() const override;
  /// The first word is non-zero.
  bool getBoolean() const override;
  /// The first word as an unsigned number.
  double getDouble() const override;
  /// The on positions, 1-based, separated by one space.
  void getString(BaseString<unsigned short> &out) const override;
  /// One text: getString.
  void getArray(Array<BaseString<unsigned short>> &out) const override;
  /// The on positions, 1-based.
  void getArray(Array<double> &out) const override;
  void getArray(Array<int> &out) const override;
  /// n booleans, entry i = bit i.
  void getArray(Array<bool> &out) const override;
  /// "Marlix.value.BitsetArrayValue".
  ClassTag getArrayValueType() override;
  void assignToSameClass(Value &target) const override;
  /// See the file comment: more bits order first; equal lengths give 0 or 1.
  int compare(Value const &other) const override;
  /// n, then a space and getString when n is not 0.
  bool getXMLText(BaseString<unsigned short> &text, BaseString<unsigned short> &extra) const override;
  /// A bit count and positions, or positions only (see the file comment).
  void setFromXMLText(BaseString<unsigned short> const &text, BaseString<unsigned short> const &extra) override;
  /// No bits, storage freed.
  void clear() override;
  /// A recycled bitset starts with no bits but keeps its storage.
  void onActivate() override;
  /// Frees the words when there are more than kMaxPooledWords.
  void onDeactivate() override;

  // ---- bits

  /// The number of bits, n.
  unsigned int getNumBits() const noexcept { return m_numBits; }

  bool operator[](unsigned int position) const { return BitIsOn(position); }
  reference operator[](unsigned int position) { return reference(*this, position); }
  void setOn(unsigned int position) { TurnOnBit(position); }
  void setOff(unsigned int position) { TurnOffBit(position); }
  void set(unsigned int position, bool on);
  void flip(unsigned int position);

  // ---- whole set (mismatched lengths: see the file comment)

  void setAll(bool on);
  void flipAll();
  /// Moves every bit one position up (bit i to i + 1); bit n - 1 drops out, bit 0 becomes off.
  void shiftLeft();
  /// Moves every bit one position down (bit i to i - 1); bit 0 drops out, bit n - 1 becomes off.
  void shiftRight();
  BitsetValue &operator&=(BitsetValue const &other);
  BitsetValue &operator|=(BitsetValue const &other);
  BitsetValue &operator^=(BitsetValue const &other);
  /// Turns off every bit that is on in `other`.
  BitsetValue &andNot(BitsetValue const &other);
  BitsetValue operator&(BitsetValue const &other) const;
  BitsetValue operator|(BitsetValue const &other) const;
  BitsetValue operator^(BitsetValue const &other) const;

  // ---- counts and tests

  unsigned int getNumBitsOn() const;
  bool isEmpty() const;
  unsigned int getAndBitsOn(BitsetValue const &other) const;
  unsigned int getOrBitsOn(BitsetValue const &other) const;
  unsigned int getXorBitsOn(BitsetValue const &other) const;
  /// No bit is on in both.
  bool isAndEmpty(BitsetValue const &other) const;
  /// Every bit on here is on in `other`.
  bool isSubset(BitsetValue const &other) const;
  /// Same n and same words.
  bool operator==(BitsetValue const &other) const;
  bool operator!=(BitsetValue const &other) const { return !(*this == other); }
  /// A strict total order consistent with ==: the bits read as a binary number
  /// (highest position most significant, missing bits 0), then fewer bits first.
  bool operator<(BitsetValue const &other) const;

  // ---- iteration: start at -1 (getNext) or at n (getPrevious)

  /// The next on position after `pos` (a pos below -1 counts as -1): stores it
  /// in `pos` and returns true; false (pos unchanged) when there is none.
  bool getNext(int &pos) const;
  /// The previous on position before `pos` (a pos above n counts as n).
  bool getPrevious(int &pos) const;

  // ---- raw access

  /// The words.
  Array<unsigned int> const &getArray() const noexcept { return m_words; }
  /// The words as bytes, getBufferSize() of them.
  char const *getBuffer() const noexcept { return reinterpret_cast<char const *>(m_words.getBuffer()); }
  /// The number of word bytes: word count * 4.
  unsigned int getBufferSize() const noexcept { return m_words.getSize() * 4u; }
  /// numBits bits holding `byteCount` bytes in memory order from the start of
  /// the words; bits the bytes do not reach are off, bytes beyond the words are
  /// ignored and the surplus bits cleared. The words go into the storage the
  /// bitset kept (no allocation when it is large enough). `bytes` may point
  /// into this bitset.
  void setFromBuffer(char const *bytes, unsigned int byteCount, unsigned int numBits);

  // ---- lists of positions

  /// The on positions, 0-based and ascending.
  void getArrayZeroBased(Array<int> &out) const;
  /// Reads 1-based positions (see the file comment); fails only past kMaxGrowBits.
  void setFromString(BaseString<unsigned short> const &text);

  // ---- size

  /// n := numBits; new bits are off, and a shrink leaves no stale surplus bits.
  void resize(unsigned int numBits);

 protected:
  /// Clears the bits from n to the end of the last word.
  void clearSurplusBits() noexcept;
  /// Fills m_bitCounts; runs once at start-up.
  static bool InitCounts();
  /// The number of 1 bits of each byte value.
  static unsigned char m_bitCounts[256];

 private:
  static bool const m_countsReady;

  bool BitIsOn(unsigned int position) const;
  void TurnOnBit(unsigned int position);
  void TurnOffBit(unsigned int position);
  void ToggleBit(unsigned int position);
  /// The word holding `position`, checked against the word count.
  unsigned int wordIndex(unsigned int position) const;
  /// Reads the 1-based positions of a NUL-terminated text (null: none).
  void readPositions(unsigned short const *text);
  /// The largest 1-based position of such a text (0 for none).
  static unsigned int largestPosition(unsigned short const *text);
  /// Refuses a text that would grow this bitset to `numBits` past kMaxGrowBits.
  void checkTextGrowth(unsigned int numBits) const;
  /// Copies n and the words of `other`, reusing this bitset's storage.
  void copyBits(BitsetValue const &other);
  template <class Op>
  BitsetValue &combine(BitsetValue const &other, Op op);
  template <class Op>
  BitsetValue combined(BitsetValue const &other, Op op, char const *operation) const;

  unsigned int m_numBits = 0;
  Array<unsigned int> m_words;
};

}  // namespace quarn
