// BitsetValue.cpp - storage, bit operations, text forms, order and payload of the bitset
//
// Every loop here is bounded by the word array's own size, never by n alone,
// so even a bitset whose caller wrote into the surplus bits stays in bounds.
#include <quarn/core/Annotate.h>
#include <quarn/value/BitsetValue.h>
#include <quarn/value/ByteStream.h>
#include <quarnCore/Exception.h>
#include <quarnCore/TextUtil.h>
#include <quarnCore/Throw.h>

#include <algorithm>
#include <bit>
#include <charconv>
#include <climits>
#include <cstring>
#include <utility>

#include "ArrayCoding.h"
#include "BitCount.h"

namespace quarn {

QUARN_DEFINE_VALUE_CLASS(BitsetValue);

unsigned char BitsetValue::m_bitCounts[256];
bool const BitsetValue::m_countsReady = BitsetValue::InitCounts();

namespace {

constexpr char kClass[] = "BitsetValue";

/// ceil(numBits / 32) without overflow.
constexpr unsigned int wordsFor(unsigned int numBits) noexcept { return numBits / 32u + (numBits % 32u != 0); }

/// n after reading `words` words for `numBits` bits: too few words decide the length.
constexpr unsigned int lengthOfRead(unsigned int numBits, unsigned int words) noexcept {
  return words < wordsFor(numBits) ? words * 32u : numBits;
}

/// The positions that exist both in the bit count and in the words.
unsigned long long usableBits(unsigned int numBits, unsigned int words) noexcept {
  return std::min<unsigned long long>(numBits, 32ull * words);
}

/// Calls f(position) for every on position below min(n, 32 * words), ascending.
template <class F>
void forEachOn(Array<unsigned int> const &words, unsigned int numBits, F &&f) {
  unsigned long long const limit = usableBits(numBits, words.getSize());
  unsigned int const *w = words.getBuffer();
  for (unsigned int i = 0; 32ull * i < limit; ++i) {
    unsigned int bits = w[i];
    if (limit - 32ull * i < 32) bits &= (1u << (limit - 32ull * i)) - 1u;
    while (bits) {
      f(32u * i + static_cast<unsigned int>(std::countr_zero(bits)));
      bits &= bits - 1u;
    }
  }
}

/// Refuses a text that would grow a bitset of class `tag` beyond kMaxGrowBits.
[[noreturn, gnu::cold]] void failTextTooLarge(ClassTag const &tag) {
  char const *name = tag.getName();
  char const *dot = std::strrchr(name, '.');
  throw Exception("Cannot convert StringValues containing numbers greater than 10,000,000 to a %hs",
                  dot ? dot + 1 : name);
}

/// Appends `number` in decimal.
void appendNumber(BaseString<unsigned short> &out, unsigned long long number) {
  char digits[24];
  char *end = std::to_chars(digits, digits + sizeof digits, number).ptr;
  unsigned short units[24];
  std::copy(digits, end, units);
  out.append(units, static_cast<unsigned int>(end - digits));
}

bool isSeparator(unsigned short unit) noexcept {
  return unit == ',' || unit == ' ' || unit == '\t' || unit == '\r' || unit == '\n' || unit == 0x00A0;
}

/// Calls f(value) for each integer of the text in turn, until a read consumes nothing.
template <class F>
void forEachInteger(unsigned short const *text, F &&f) {
  if (!text) return;
  for (;;) {
    while (isSeparator(*text)) ++text;
    unsigned short const *end = text;
    int value = util::stringToInteger(text, &end);
    if (end == text) return;
    f(value);
    text = end;
  }
}

struct AndOp {
  unsigned int operator()(unsigned int a, unsigned int b) const noexcept { return a & b; }
};
struct OrOp {
  unsigned int operator()(unsigned int a, unsigned int b) const noexcept { return a | b; }
};
struct XorOp {
  unsigned int operator()(unsigned int a, unsigned int b) const noexcept { return a ^ b; }
};
struct AndNotOp {
  unsigned int operator()(unsigned int a, unsigned int b) const noexcept { return a & ~b; }
};

}  // namespace

bool BitsetValue::InitCounts() {
  for (unsigned int byte = 0; byte < 256; ++byte) m_bitCounts[byte] = static_cast<unsigned char>(std::popcount(byte));
  return true;
}

BitsetValue::BitsetValue(unsigned int numBits) : m_numBits(numBits) { m_words.resize(wordsFor(numBits)); }

BitsetValue::BitsetValue(BitsetValue const &other) : Glue(other), m_numBits(other.m_numBits), m_words(other.m_words) {}

BitsetValue::BitsetValue(BitsetValue &&other) noexcept
    : Glue(other), m_numBits(std::exchange(other.m_numBits, 0u)), m_words(std::move(other.m_words)) {}

BitsetValue::~BitsetValue() = default;

void BitsetValue::copyBits(BitsetValue const &other) {
  if (this == &other) return;
  unsigned int words = other.m_words.getSize();
  m_words.resize(words);
  if (words) std::memcpy(m_words.getBuffer(), other.m_words.getBuffer(), words * sizeof(unsigned int));
  m_numBits = other.m_numBits;
}

BitsetValue &BitsetValue::operator=(BitsetValue const &other) {
  copyBits(other);
  return *this;
}

BitsetValue &BitsetValue::operator=(BitsetValue &&other) noexcept {
  std::swap(m_numBits, other.m_numBits);
  m_words.swap(other.m_words);
  return *this;
}

BitsetValue &BitsetValue::operator=(Array<int> const &positions) {
  long long largest = -1;
  for (int position : positions) largest = std::max<long long>(largest, position);
  if (largest + 1 > static_cast<long long>(m_numBits)) resize(static_cast<unsigned int>(largest + 1));
  setAll(false);
  for (int position : positions)
    if (position >= 0) TurnOnBit(static_cast<unsigned int>(position));
  return *this;
}

// ---- bit access

unsigned int BitsetValue::wordIndex(unsigned int position) const {
  unsigned int word = position / 32u;
  if (word >= m_words.getSize()) [[unlikely]]
    detail::throwInvalidIndex(word, m_words.getSize() - 1u);
  return word;
}

bool BitsetValue::BitIsOn(unsigned int position) const {
  return (m_words.getBuffer()[wordIndex(position)] >> (position % 32u)) & 1u;
}
void BitsetValue::TurnOnBit(unsigned int position) {
  m_words.getBuffer()[wordIndex(position)] |= 1u << (position % 32u);
}
void BitsetValue::TurnOffBit(unsigned int position) {
  m_words.getBuffer()[wordIndex(position)] &= ~(1u << (position % 32u));
}
void BitsetValue::ToggleBit(unsigned int position) {
  m_words.getBuffer()[wordIndex(position)] ^= 1u << (position % 32u);
}

void BitsetValue::set(unsigned int position, bool on) {
  detail::annotated(kClass, "set", [&] { on ? TurnOnBit(position) : TurnOffBit(position); });
}

void BitsetValue::flip(unsigned int position) {
  detail::annotated(kClass, "flip", [&] { ToggleBit(position); });
}

void BitsetValue::clearSurplusBits() noexcept {
  unsigned int const words = m_words.getSize();
  unsigned int *w = m_words.getBuffer();
  unsigned int const full = m_numBits / 32u;
  if (full >= words) return;
  unsigned int first = full;
  if (m_numBits % 32u) w[first++] &= (1u << (m_numBits % 32u)) - 1u;
  for (unsigned int i = first; i < words; ++i) w[i] = 0;
}

// ---- whole set

void BitsetValue::setAll(bool on) {
  detail::annotated(kClass, "setAll", [&] {
    std::fill(m_words.begin(), m_words.end(), on ? ~0u : 0u);
    clearSurplusBits();
  });
}

void BitsetValue::flipAll() {
  detail::annotated(kClass, "flipAll", [&] {
    for (unsigned int &word : m_words) word = ~word;
    clearSurplusBits();
  });
}

void BitsetValue::shiftLeft() {
  unsigned int const words = m_words.getSize();
  if (!words) return;
  unsigned int *w = m_words.getBuffer();
  for (unsigned int i = words - 1; i > 0; --i) w[i] = (w[i] << 1) | (w[i - 1] >> 31);
  w[0] <<= 1;
  clearSurplusBits();
}

void BitsetValue::shiftRight() {
  unsigned int const words = m_words.getSize();
  if (!words) return;
  unsigned int *w = m_words.getBuffer();
  for (unsigned int i = 0; i + 1 < words; ++i) w[i] = (w[i] >> 1) | (w[i + 1] << 31);
  w[words - 1] >>= 1;
  clearSurplusBits();  // a surplus bit a caller wrote must not slide into bit n - 1
}

template <class Op>
BitsetValue &BitsetValue::combine(BitsetValue const &other, Op op) {
  unsigned int const words = m_words.getSize();
  unsigned int const common = std::min(words, other.m_words.getSize());
  unsigned int *a = m_words.getBuffer();
  unsigned int const *b = other.m_words.getBuffer();
  for (unsigned int i = 0; i < common; ++i) a[i] = op(a[i], b[i]);
  for (unsigned int i = common; i < words; ++i) a[i] = op(a[i], 0u);  // missing words are 0
  clearSurplusBits();
  return *this;
}

BitsetValue &BitsetValue::operator&=(BitsetValue const &other) { return combine(other, AndOp{}); }
BitsetValue &BitsetValue::operator|=(BitsetValue const &other) { return combine(other, OrOp{}); }
BitsetValue &BitsetValue::operator^=(BitsetValue const &other) { return combine(other, XorOp{}); }
BitsetValue &BitsetValue::andNot(BitsetValue const &other) { return combine(other, AndNotOp{}); }

template <class Op>
BitsetValue BitsetValue::combined(BitsetValue const &other, Op op, char const *operation) const {
  return detail::annotated(kClass, operation, [&] {
    BitsetValue result(std::max(m_numBits, other.m_numBits));
    unsigned int const na = m_words.getSize(), nb = other.m_words.getSize();
    unsigned int const *a = m_words.getBuffer();
    unsigned int const *b = other.m_words.getBuffer();
    unsigned int *r = result.m_words.getBuffer();
    for (unsigned int i = 0; i < result.m_words.getSize(); ++i) r[i] = op(i < na ? a[i] : 0u, i < nb ? b[i] : 0u);
    result.clearSurplusBits();
    return result;
  });
}

BitsetValue BitsetValue::operator&(BitsetValue const &other) const { return combined(other, AndOp{}, "operator&"); }
BitsetValue BitsetValue::operator|(BitsetValue const &other) const { return combined(other, OrOp{}, "operator|"); }
BitsetValue BitsetValue::operator^(BitsetValue const &other) const { return combined(other, XorOp{}, "operator^"); }

// ---- counts and tests

unsigned int BitsetValue::getNumBitsOn() const {
  return static_cast<unsigned int>(detail::bitcount::count(m_words.getBuffer(), m_words.getSize()));
}

bool BitsetValue::isEmpty() const {
  return std::all_of(m_words.begin(), m_words.end(), [](unsigned int word) { return word == 0; });
}

unsigned int BitsetValue::getAndBitsOn(BitsetValue const &other) const {
  unsigned int const common = std::min(m_words.getSize(), other.m_words.getSize());
  return static_cast<unsigned int>(detail::bitcount::countAnd(m_words.getBuffer(), other.m_words.getBuffer(), common));
}

namespace {
/// A two-run count over the common words plus a one-run count of the longer run's rest.
template <class Count>
unsigned int countWithRest(Array<unsigned int> const &a, Array<unsigned int> const &b, Count count) {
  unsigned int const common = std::min(a.getSize(), b.getSize());
  Array<unsigned int> const &longer = a.getSize() > b.getSize() ? a : b;
  return static_cast<unsigned int>(count(a.getBuffer(), b.getBuffer(), common) +
                                   detail::bitcount::count(longer.getBuffer() + common, longer.getSize() - common));
}
}  // namespace

unsigned int BitsetValue::getOrBitsOn(BitsetValue const &other) const {
  return countWithRest(m_words, other.m_words, detail::bitcount::countOr);
}

unsigned int BitsetValue::getXorBitsOn(BitsetValue const &other) const {
  return countWithRest(m_words, other.m_words, detail::bitcount::countXor);
}

bool BitsetValue::isAndEmpty(BitsetValue const &other) const {
  unsigned int const common = std::min(m_words.getSize(), other.m_words.getSize());
  unsigned int const *a = m_words.getBuffer();
  unsigned int const *b = other.m_words.getBuffer();
  for (unsigned int i = 0; i < common; ++i)
    if (a[i] & b[i]) return false;
  return true;
}

bool BitsetValue::isSubset(BitsetValue const &other) const {
  unsigned int const words = m_words.getSize();
  unsigned int const common = std::min(words, other.m_words.getSize());
  unsigned int const *a = m_words.getBuffer();
  unsigned int const *b = other.m_words.getBuffer();
  for (unsigned int i = 0; i < common; ++i)
    if (a[i] & ~b[i]) return false;
  for (unsigned int i = common; i < words; ++i)
    if (a[i]) return false;
  return true;
}

bool BitsetValue::operator==(BitsetValue const &other) const {
  unsigned int const words = m_words.getSize();
  return m_numBits == other.m_numBits && words == other.m_words.getSize() &&
         (words == 0 || std::memcmp(m_words.getBuffer(), other.m_words.getBuffer(), words * sizeof(unsigned int)) == 0);
}

bool BitsetValue::operator<(BitsetValue const &other) const {
  unsigned int const na = m_words.getSize(), nb = other.m_words.getSize();
  for (unsigned int i = std::max(na, nb); i-- > 0;) {
    unsigned int a = i < na ? m_words.getBuffer()[i] : 0u;
    unsigned int b = i < nb ? other.m_words.getBuffer()[i] : 0u;
    if (a != b) return a < b;
  }
  return m_numBits < other.m_numBits;
}

// ---- iteration

bool BitsetValue::getNext(int &pos) const {
  // Positions must fit an int: at most INT_MAX.
  unsigned long long const limit =
      std::min<unsigned long long>(usableBits(m_numBits, m_words.getSize()), INT_MAX + 1ull);
  unsigned long long const start = pos < -1 ? 0ull : static_cast<unsigned long long>(static_cast<long long>(pos) + 1);
  if (start >= limit) return false;
  unsigned int const *w = m_words.getBuffer();
  unsigned long long i = start / 32u;
  unsigned int bits = w[i] & (~0u << (start % 32u));
  for (;;) {
    if (bits) {
      unsigned long long found = 32u * i + static_cast<unsigned int>(std::countr_zero(bits));
      if (found >= limit) return false;
      pos = static_cast<int>(found);
      return true;
    }
    if (32u * ++i >= limit) return false;
    bits = w[i];
  }
}

bool BitsetValue::getPrevious(int &pos) const {
  long long const limit =
      static_cast<long long>(std::min<unsigned long long>(usableBits(m_numBits, m_words.getSize()), INT_MAX + 1ull));
  long long const end = std::min<long long>(pos, limit);  // scan the positions below `end`
  if (end <= 0) return false;
  unsigned int const *w = m_words.getBuffer();
  unsigned long long const last = static_cast<unsigned long long>(end - 1);
  unsigned long long i = last / 32u;
  unsigned int const top = static_cast<unsigned int>(last % 32u);
  unsigned int bits = w[i] & (top == 31 ? ~0u : (1u << (top + 1)) - 1u);
  for (;;) {
    if (bits) {
      pos = static_cast<int>(32u * i + 31u - static_cast<unsigned int>(std::countl_zero(bits)));
      return true;
    }
    if (i == 0) return false;
    bits = w[--i];
  }
}

// ---- lists of positions and text

void BitsetValue::getArrayZeroBased(Array<int> &out) const {
  out.resize(0);
  out.reserve(getNumBitsOn());
  forEachOn(m_words, m_numBits, [&](unsigned int position) { out.append(static_cast<int>(position)); });
}

unsigned int BitsetValue::largestPosition(unsigned short const *text) {
  int largest = 0;
  forEachInteger(text, [&](int value) { largest = std::max(largest, value); });
  return static_cast<unsigned int>(largest);
}

void BitsetValue::checkTextGrowth(unsigned int numBits) const {
  if (numBits > kMaxGrowBits && numBits > m_numBits) [[unlikely]]
    failTextTooLarge(getClassTag());
}

void BitsetValue::readPositions(unsigned short const *text) {
  unsigned int const largest = largestPosition(text);
  checkTextGrowth(largest);
  if (largest > m_numBits) resize(largest);
  setAll(false);
  forEachInteger(text, [&](int value) {
    if (value >= 1) TurnOnBit(static_cast<unsigned int>(value - 1));
  });
}

void BitsetValue::setFromString(BaseString<unsigned short> const &text) { readPositions(text.getBuffer()); }

void BitsetValue::setFromBuffer(char const *bytes, unsigned int byteCount, unsigned int numBits) {
  unsigned int const words = wordsFor(numBits);
  unsigned int const copied = std::min(byteCount, words * 4u);
  auto const *storage = reinterpret_cast<char const *>(m_words.getBuffer());
  if (copied && storage && bytes >= storage && bytes < storage + 4ull * m_words.getCapacity()) {
    // From this bitset's own words: copied aside first, as growing may move them.
    Array<unsigned int> aside;
    aside.resize(words);
    std::memcpy(aside.getBuffer(), bytes, copied);
    m_words.swap(aside);
  } else {
    m_words.resize(words);  // in the storage it kept; throws before anything changes
    auto *to = reinterpret_cast<char *>(m_words.getBuffer());
    if (copied) std::memcpy(to, bytes, copied);
    if (words * 4u > copied) std::memset(to + copied, 0, words * 4u - copied);
  }
  m_numBits = numBits;
  clearSurplusBits();
}

void BitsetValue::resize(unsigned int numBits) {
  detail::annotated(kClass, "resize", [&] {
    if (numBits == m_numBits) return;
    m_words.resize(wordsFor(numBits));  // new words are 0; throws before anything changes
    m_numBits = numBits;
    clearSurplusBits();
  });
}

// ---- Value slots

unsigned int BitsetValue::hash() const {
  unsigned int h = 0;
  for (unsigned int word : m_words) h = h * 31u + word;
  return h;
}

void BitsetValue::serialize(iByteOutputStream &out) const {
  Value::serialize(out);
  out << static_cast<int>(m_numBits) << static_cast<int>(m_words.getSize());
  // Each word as the int of its 32 bits.
  detail::writeElements<detail::IntCodec>(out, reinterpret_cast<int const *>(m_words.getBuffer()), m_words.getSize());
}

void BitsetValue::deserialize(iByteInputStream &in) {
  Value::deserialize(in);
  int bitsRead, wordsRead;
  in >> bitsRead >> wordsRead;
  unsigned int const numBits = static_cast<unsigned int>(bitsRead);
  unsigned int const wordCount = static_cast<unsigned int>(wordsRead);
  unsigned int const kept = std::min(wordCount, wordsFor(numBits));  // extra words are read, not kept
  if (MemoryInputStream *memory = detail::asMemoryStream(in)) {
    // All the words are found in the data before the kept storage takes them.
    detail::requireElements<detail::IntCodec>(*memory, wordCount);
    m_words.resize(kept);
    unsigned int *to = m_words.getBuffer();
    detail::decodeElements<detail::IntCodec>(*memory, wordCount, [to, kept](unsigned int k, int word) {
      if (k < kept) to[k] = static_cast<unsigned int>(word);
    });
    m_numBits = lengthOfRead(numBits, kept);
    clearSurplusBits();
    return;
  }
  // Storage grows with the words that actually arrive, never with a count.
  Array<unsigned int> words;
  words.reserve(std::min(kept, 1024u));
  for (unsigned int k = 0; k < wordCount; ++k) {
    int word;
    in >> word;
    if (k < kept) words.append(static_cast<unsigned int>(word));
  }
  m_words.swap(words);
  m_numBits = lengthOfRead(numBits, kept);
  clearSurplusBits();
}

int BitsetValue::getInteger() const { return m_words.isEmpty() ? 0 : static_cast<int>(m_words.getBuffer()[0]); }
bool BitsetValue::getBoolean() const { return !m_words.isEmpty() && m_words.getBuffer()[0] != 0; }
double BitsetValue::getDouble() const { return m_words.isEmpty() ? 0.0 : m_words.getBuffer()[0]; }

void BitsetValue::getString(BaseString<unsigned short> &out) const {
  out.resize(0);
  forEachOn(m_words, m_numBits, [&](unsigned int position) {
    if (out.getLength()) out.append(static_cast<unsigned short>(' '));
    appendNumber(out, position + 1ull);
  });
}

void BitsetValue::getArray(Array<BaseString<unsigned short>> &out) const {
  BaseString<unsigned short> text;
  getString(text);
  out.resize(0);
  out.append(std::move(text));
}

void BitsetValue::getArray(Array<double> &out) const {
  out.resize(0);
  out.reserve(getNumBitsOn());
  forEachOn(m_words, m_numBits, [&](unsigned int position) { out.append(position + 1.0); });
}

void BitsetValue::getArray(Array<int> &out) const {
  out.resize(0);
  out.reserve(getNumBitsOn());
  forEachOn(m_words, m_numBits, [&](unsigned int position) { out.append(static_cast<int>(position + 1u)); });
}

void BitsetValue::getArray(Array<bool> &out) const {
  unsigned long long const usable = usableBits(m_numBits, m_words.getSize());
  out.resize(m_numBits);
  bool *flags = out.getBuffer();
  unsigned int const *w = m_words.getBuffer();
  for (unsigned long long i = 0; i < m_numBits; ++i) flags[i] = i < usable && ((w[i / 32u] >> (i % 32u)) & 1u);
}

ClassTag BitsetValue::getArrayValueType() {
  static ClassTag const arrayTag("Marlix.value.BitsetArrayValue");
  return arrayTag;
}

void BitsetValue::assignToSameClass(Value &target) const { sameClass(target).copyBits(*this); }

int BitsetValue::compare(Value const &other) const {
  // The same class as this one (a grid compares with a grid by its bits).
  if (other.getClassTag().getId() != getClassTag().getId()) return compareClassName(other);
  auto const &theirs = static_cast<BitsetValue const &>(other);
  if (theirs.m_numBits != m_numBits) return theirs.m_numBits < m_numBits ? -1 : 1;
  return *this == theirs ? 0 : 1;
}

bool BitsetValue::getXMLText(BaseString<unsigned short> &text, BaseString<unsigned short> &extra) const {
  BaseString<unsigned short> result;
  appendNumber(result, m_numBits);
  if (m_numBits) {
    BaseString<unsigned short> positions;
    getString(positions);
    result.append(static_cast<unsigned short>(' '));
    result.append(positions);
  }
  text = std::move(result);
  extra.resize(0);
  return true;
}

void BitsetValue::setFromXMLText(BaseString<unsigned short> const &text, BaseString<unsigned short> const &) {
  unsigned short const *units = text.getBuffer();
  unsigned int const length = text.getLength();
  unsigned int space = 0;
  while (space < length && units[space] != ' ') ++space;
  if (space == length) {  // no space: positions only
    checkTextGrowth(largestPosition(units));
    setAll(false);
    readPositions(units);
    return;
  }
  BaseString<unsigned short> count(units, space);
  unsigned short const *end = nullptr;
  int const numBits = util::stringToInteger(count, &end);
  unsigned int const n = numBits > 0 ? static_cast<unsigned int>(numBits) : 0u;
  checkTextGrowth(std::max(n, largestPosition(units + space + 1)));  // before anything changes
  setAll(false);
  resize(n);
  readPositions(units + space + 1);
}

void BitsetValue::clear() {
  m_numBits = 0;
  m_words.clear();
}

void BitsetValue::onActivate() {
  m_numBits = 0;
  m_words.resize(0);
}

void BitsetValue::onDeactivate() {
  if (m_words.getSize() > kMaxPooledWords) clear();
}

}  // namespace quarn
