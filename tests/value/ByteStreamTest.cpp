// ByteStreamTest.cpp - golden bytes, chunked reads and truncation of the stream primitives
//
// Every golden payload is written through both coder paths (a memory stream
// and a plain stream), read back through a memory stream and through chunked
// streams of every size, and read again cut short at every byte: the read must
// fail with the message of the primitive that ran short and leave the target
// as it was.
#include <gtest/gtest.h>
#include <quarn/value/ByteStream.h>
#include <quarn/value/MemoryStream.h>
#include <sys/resource.h>

#include <algorithm>
#include <cfloat>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "support/ChunkedInputStream.h"
#include "support/ExpectThrow.h"

#ifdef __SANITIZE_ADDRESS__
// Any allocation above 1 GiB aborts this program, so a reader that reserved
// what a length prefix claims would crash the huge-prefix tests below.
extern "C" __attribute__((visibility("default"), used)) char const *__asan_default_options() {
  return "max_allocation_size_mb=1024";
}
#endif

namespace quarn {
namespace {

using test::Bytes;
using test::ChunkedInputStream;
using test::hex;
using test::hexBytes;
using test::kChunkSizes;
using test::RecordingOutputStream;
using WString = BaseString<unsigned short>;

WString w(std::u16string_view text) {
  return WString(reinterpret_cast<unsigned short const *>(text.data()), static_cast<unsigned int>(text.size()));
}

std::uint64_t bits(double d) { return std::bit_cast<std::uint64_t>(d); }
bool same(double a, double b) { return bits(a) == bits(b); }
template <class T>
bool same(T const &a, T const &b) {
  return a == b;
}

/// The bytes of `value`, checking that the three coder paths agree: inline
/// (a MemoryOutputStream by type), general with the memory fast path (the
/// same stream as an iByteOutputStream) and general over a plain stream.
template <class T>
Bytes encode(T const &value, int version = 2) {
  MemoryOutputStream memory(version);
  memory << value;
  MemoryOutputStream general(version);
  static_cast<iByteOutputStream &>(general) << value;
  RecordingOutputStream plain(version);
  plain << value;
  Bytes bytes(memory.getBuffer(), memory.getBuffer() + memory.getSize());
  EXPECT_EQ(hex(general.getBuffer(), general.getSize()), hex(bytes)) << "general path";
  EXPECT_EQ(hex(plain.bytes), hex(bytes)) << "plain stream";
  return bytes;
}

/// Runs `read` on a memory stream (chunk 0) or on a stream giving `chunk` bytes per read.
template <class Read>
void withStream(Bytes const &bytes, int chunk, int version, Read read) {
  if (chunk == 0) {
    MemoryInputStream in(bytes.data(), static_cast<unsigned int>(bytes.size()), version);
    read(in);
  } else {
    ChunkedInputStream in(bytes, chunk, version);
    read(in);
  }
}

/// Reads `bytes` on every path: a memory stream inline and as an
/// iByteInputStream, and chunked streams of every size. `check` gets the
/// stream's name, the value, the bytes consumed and the failure if any.
template <class T, class Check>
void readEveryWay(Bytes const &bytes, T const &start, int version, Check check) {
  auto attempt = [&](std::string const &name, auto &in, auto read) {
    T value = start;
    try {
      read(in, value);
      check(name.c_str(), value, in.getPosition(), nullptr);
    } catch (Exception const &e) {
      check(name.c_str(), value, in.getPosition(), &e);
    }
  };
  MemoryInputStream inline_(bytes.data(), static_cast<unsigned int>(bytes.size()), version);
  attempt("memory inline", inline_, [](MemoryInputStream &in, T &v) { in >> v; });
  MemoryInputStream general(bytes.data(), static_cast<unsigned int>(bytes.size()), version);
  attempt("memory", general, [](MemoryInputStream &in, T &v) { static_cast<iByteInputStream &>(in) >> v; });
  for (int chunk : kChunkSizes) {
    ChunkedInputStream in(bytes, chunk, version);
    attempt("chunk " + std::to_string(chunk), in, [](ChunkedInputStream &s, T &v) { s >> v; });
  }
}

/// Reading one T consumes exactly the payload and gives `expected`.
/// The target first holds `start`, which the read replaces.
template <class T>
void expectDecodes(Bytes const &bytes, T const &expected, int version = 2, T const &start = T{}) {
  SCOPED_TRACE(hex(bytes));
  readEveryWay(bytes, start, version, [&](char const *way, T const &value, std::size_t used, Exception const *e) {
    EXPECT_EQ(e, nullptr) << way << ": " << (e ? e->what() : "");
    EXPECT_TRUE(same(value, expected)) << way;
    EXPECT_EQ(used, bytes.size()) << way;
  });
}

/// Reading `bytes` fails with `message` after consuming `consumed` bytes (all
/// of them when the data ran short) and leaves a target holding `keep` unchanged.
template <class T>
void expectFails(Bytes const &bytes, std::string const &message, T const &keep, int version = 2,
                 std::size_t consumed = SIZE_MAX) {
  SCOPED_TRACE(hex(bytes));
  readEveryWay(bytes, keep, version, [&](char const *way, T const &value, std::size_t used, Exception const *e) {
    EXPECT_STREQ(e ? e->what() : "(no exception)", message.c_str()) << way;
    EXPECT_TRUE(same(value, keep)) << way;
    EXPECT_EQ(used, std::min(consumed, bytes.size())) << way;
  });
}

/// A golden payload cut at every byte fails with eofAt(cut).
template <class T, class Eof>
void expectEveryCutFails(Bytes const &bytes, T const &keep, Eof eofAt, int version = 2) {
  for (std::size_t cut = 0; cut < bytes.size(); ++cut)
    expectFails(Bytes(bytes.begin(), bytes.begin() + cut), eofAt(cut), keep, version);
}

// Compile-time: types without an encoding of their own do not pick another overload.
template <class T, class Stream = iByteOutputStream>
concept Writable = requires(Stream &out, T const &v) {
  out << v;
};
static_assert(Writable<int> && Writable<double> && Writable<bool> && Writable<unsigned char> && Writable<WString>);
static_assert(!Writable<char const *> && !Writable<unsigned short const *> && !Writable<char>);
static_assert(!Writable<unsigned int> && !Writable<long> && !Writable<unsigned long> && !Writable<long long> &&
              !Writable<std::size_t>);
static_assert(Writable<int, MemoryOutputStream> && Writable<float, MemoryOutputStream> &&
              Writable<short, MemoryOutputStream> && Writable<WString, MemoryOutputStream>);
static_assert(!Writable<char const *, MemoryOutputStream> && !Writable<unsigned int, MemoryOutputStream> &&
              !Writable<std::size_t, MemoryOutputStream> && !Writable<char, MemoryOutputStream>);

struct IntCase {
  int value;
  char const *bytes;
  char const *bodyEof;  // message when cut after the header
};
IntCase const kInts[] = {
    {0, "00", nullptr},
    {1, "04", nullptr},
    {7, "1C", nullptr},
    {15, "3C", nullptr},
    {-1, "FC", nullptr},
    {-16, "C0", nullptr},
    {16, "01 10", "EOF reading int as byte"},
    {-17, "01 EF", "EOF reading int as byte"},
    {127, "01 7F", "EOF reading int as byte"},
    {-128, "01 80", "EOF reading int as byte"},
    {128, "02 80 00", "EOF reading int as short"},
    {-129, "02 7F FF", "EOF reading int as short"},
    {32767, "02 FF 7F", "EOF reading int as short"},
    {-32768, "02 00 80", "EOF reading int as short"},
    {32768, "03 00 80 00 00", "EOF reading int as int"},
    {-32769, "03 FF 7F FF FF", "EOF reading int as int"},
    {40000, "03 40 9C 00 00", "EOF reading int as int"},
    {INT_MAX, "03 FF FF FF 7F", "EOF reading int as int"},
    {INT_MIN, "03 00 00 00 80", "EOF reading int as int"},
};

TEST(ByteStreamTest, IntegersTakeTheShortestTaggedForm) {
  for (IntCase const &c : kInts) {
    SCOPED_TRACE(c.value);
    EXPECT_EQ(hex(encode(c.value)), c.bytes);
    expectDecodes(hexBytes(c.bytes), c.value);
    expectEveryCutFails(hexBytes(c.bytes), 12345,
                        [&](std::size_t cut) { return std::string(cut == 0 ? "EOF reading int header" : c.bodyEof); });
  }
}

TEST(ByteStreamTest, AnyOtherIntegerHeaderIsTheValueShiftedRightByTwo) {
  struct Case {
    char const *bytes;
    int value;
  } const cases[] = {{"04", 1},  {"05", 1},   {"06", 1},  {"07", 1},  {"FC", -1},    {"FD", -1},
                     {"FF", -1}, {"80", -32}, {"7F", 31}, {"40", 16}, {"01 FF", -1}, {"02 FF FF", -1}};
  for (Case const &c : cases) expectDecodes(hexBytes(c.bytes), c.value);
}

struct DoubleCase {
  double value;
  char const *bytes;
};
DoubleCase const kDoubles[] = {
    {0.0, "00"},
    {1.0, "01"},
    {0.5, "02 00 00 00 00 00 00 E0 3F"},
    {-1.0, "02 00 00 00 00 00 00 F0 BF"},
    {-2.0, "02 00 00 00 00 00 00 00 C0"},
    {DBL_MIN, "02 00 00 00 00 00 00 10 00"},
    {INFINITY, "02 00 00 00 00 00 00 F0 7F"},
    {std::bit_cast<double>(std::uint64_t{0x7FF8000000000001}), "02 01 00 00 00 00 00 F8 7F"},  // NaN, bits kept
};

TEST(ByteStreamTest, DoublesTagZeroAndOneAndCarryTheRestAsEightBytes) {
  for (DoubleCase const &c : kDoubles) {
    SCOPED_TRACE(c.bytes);
    EXPECT_EQ(hex(encode(c.value)), c.bytes);
    expectDecodes(hexBytes(c.bytes), c.value);
    expectEveryCutFails(hexBytes(c.bytes), 42.25, [](std::size_t cut) {
      return std::string(cut == 0 ? "EOF reading byte" : "EOF reading double");
    });
  }
}

TEST(ByteStreamTest, NegativeZeroIsWrittenAsZeroAndAnyOtherDoubleHeaderIsFollowedByEightBytes) {
  EXPECT_EQ(hex(encode(-0.0)), "00");
  expectDecodes(hexBytes("00"), +0.0);
  expectDecodes(hexBytes("05 00 00 00 00 00 00 F0 3F"), 1.0);
  expectDecodes(hexBytes("FF 00 00 00 00 00 00 E0 3F"), 0.5);
}

TEST(ByteStreamTest, BooleansAndBytesTakeOneByte) {
  EXPECT_EQ(hex(encode(true)), "01");
  EXPECT_EQ(hex(encode(false)), "00");
  EXPECT_EQ(hex(encode(static_cast<unsigned char>(0xAB))), "AB");
  for (char const *truth : {"01", "02", "80", "FF"}) expectDecodes(hexBytes(truth), true);
  expectDecodes(hexBytes("00"), false);
  expectDecodes(hexBytes("FF"), static_cast<unsigned char>(0xFF));
  expectFails(Bytes{}, "EOF reading bool", true);
  expectFails(Bytes{}, "EOF reading byte", static_cast<unsigned char>(7));
}

TEST(ByteStreamTest, EachFixedSizePrimitiveIsOneWrite) {
  RecordingOutputStream out;
  out << INT_MIN << 0.5 << true << static_cast<unsigned char>(1);
  EXPECT_EQ(out.writes, 4);
}

struct StringCase {
  WString value;
  int version;
  char const *bytes;
};
std::vector<StringCase> const &stringCases() {
  static std::vector<StringCase> const cases = {
      {WString(), 2, "00"},
      {w(u""), 2, "04"},
      {w(u"A"), 2, "08 41"},
      {w(u"Hello"), 2, "18 48 65 6C 6C 6F"},
      {w(u"\u007F"), 2, "08 7F"},
      {w(u"\u0080"), 2, "08 C2 80"},
      {w(u"\u00E9"), 2, "08 C3 A9"},
      {w(u"\u07FF"), 2, "08 DF BF"},
      {w(u"\u0800"), 2, "08 E0 A0 80"},
      {w(u"\uFFFF"), 2, "08 EF BF BF"},
      {w(u"\U0001F600"), 2, "0C ED A0 BD ED B8 80"},  // each surrogate on its own
      {w(u"abcdefghijklmnop"), 2, "01 11 61 62 63 64 65 66 67 68 69 6A 6B 6C 6D 6E 6F 70"},
      {w(u"abcdefg\u00E9hijklmnop"), 2, "01 12 61 62 63 64 65 66 67 C3 A9 68 69 6A 6B 6C 6D 6E 6F 70"},
      {w(u"\u00E9"), 3, "08 C3 A9"},
      {WString(), 1, "00"},
      {w(u""), 1, "04"},
      {w(u"A"), 1, "08 41 00"},
      {w(u"A\u00E9"), 1, "0C 41 00 E9 00"},
      {w(u"\U0001F600"), 1, "0C 3D D8 00 DE"},
  };
  return cases;
}

/// Where a string payload cut at `cut` runs short, from the encoded size of each unit.
std::string stringEof(StringCase const &c, std::size_t cut) {
  unsigned int n = c.value.isNull() ? 0 : c.value.getLength() + 1;
  std::size_t header = n <= 15 ? 1 : n <= 127 ? 2 : 3;
  if (cut == 0) return "EOF reading int header";
  if (cut < header) return header == 2 ? "EOF reading int as byte" : "EOF reading int as short";
  std::size_t unit = 0;
  if (c.version == 1) {
    unit = (cut - header) / 2;
  } else {
    for (std::size_t at = header;; ++unit) {
      unsigned short u = c.value.getBuffer()[unit];
      std::size_t size = u < 0x80 ? 1 : u < 0x800 ? 2 : 3;
      if (cut == at) break;
      if (cut < at + size) return "EOF reading wchar_t additional bytes";
      at += size;
    }
  }
  return "EOF reading byte " + std::to_string(unit + 1) + " in string of length " + std::to_string(n - 1);
}

TEST(ByteStreamTest, StringsCarryLengthPlusOneThenTheirUnits) {
  WString const keep = w(u"kept");
  for (StringCase const &c : stringCases()) {
    SCOPED_TRACE(std::string("version ") + std::to_string(c.version) + ": " + c.bytes);
    EXPECT_EQ(hex(encode(c.value, c.version)), c.bytes);
    expectDecodes(hexBytes(c.bytes), c.value, c.version, w(u"a longer previous content"));
    expectEveryCutFails(
        hexBytes(c.bytes), keep, [&](std::size_t cut) { return stringEof(c, cut); }, c.version);
  }
}

TEST(ByteStreamTest, ReaderTakesLongAndLooseSequencesKeepingSixteenBits) {
  struct Case {
    char const *bytes;
    std::u16string_view units;
  } const cases[] = {
      {"08 F0 9F 98 80", u"\uF600"},        // U+1F600 as one 4-byte sequence
      {"08 F8 88 80 80", u"\u8000"},        // F8 counts as a 4-byte lead
      {"08 FC 84 80 80", u"\u4000"},        // so does FC
      {"08 FD 80 80 80 80 81", u"\u0001"},  // FD leads six bytes: 1 << 30 | 1
      {"08 C3 29", u"\u00E9"},              // further bytes are not checked
      {"08 E0 80 80", std::u16string_view(u"\0", 1)},
      {"08 80", u"\u0080"},  // a byte that leads nothing stands for itself
      {"0C F1 41", u"\u00F1A"},
      {"08 FF", u"\u00FF"},
  };
  for (auto const &c : cases) {
    expectDecodes(hexBytes(c.bytes), w(c.units));
  }
}

TEST(ByteStreamTest, VersionZeroOrBelowRefusesStringsWithText) {
  for (int version : {0, -1}) {
    std::string const suffix = std::to_string(version) + "\n";
    MemoryOutputStream memory(version);
    EXPECT_QUARN_THROW(memory << w(u"A"),
                       ("iByteOutputStream::String: Unknown serialization version " + suffix).c_str());
    RecordingOutputStream plain(version);
    EXPECT_QUARN_THROW(plain << w(u"A"),
                       ("iByteOutputStream::String: Unknown serialization version " + suffix).c_str());
    expectFails(hexBytes("08 41"), "Unknown serialization version " + suffix, w(u"kept"), version, 1);
    // Null and empty strings have no units to encode.
    EXPECT_EQ(hex(encode(WString(), version)), "00");
    EXPECT_EQ(hex(encode(w(u""), version)), "04");
    expectDecodes(hexBytes("04"), w(u""), version);
  }
}

TEST(ByteStreamTest, NegativeLengthPrefixIsRefused) {
  expectFails(hexBytes("FC 41"), "Invalid string length prefix -1", w(u"kept"), 2, 1);
  expectFails(hexBytes("03 00 00 00 80 41"), "Invalid string length prefix -2147483648", w(u"kept"), 1, 5);
}

/// Reads a ten-byte stream whose prefix claims 2147483646 units, in both versions.
bool hugePrefixFailsCleanly() {
  Bytes const bytes = hexBytes("03 FF FF FF 7F 41 42 43 44 45");
  bool ok = true;
  for (int version : {1, 2}) {
    std::string const want =
        std::string("EOF reading byte ") + (version == 1 ? "3" : "6") + " in string of length 2147483646";
    for (int chunk : {0, 1, 1024}) {  // 0: memory stream
      WString value = w(u"kept");
      try {
        withStream(bytes, chunk, version, [&](auto &in) { in >> value; });
        ok = false;
      } catch (Exception const &e) {
        ok = ok && e.what() == want && value == w(u"kept");
      }
    }
  }
  return ok;
}

TEST(ByteStreamTest, HugeLengthPrefixFailsWithoutReservingIt) {
#ifdef __SANITIZE_ADDRESS__
  EXPECT_TRUE(hugePrefixFailsCleanly());  // __asan_default_options above caps allocations
#else
  // Cap the address space of a child at 512 MiB above what it uses: reserving
  // the claimed 4 GiB would fail there.
  EXPECT_EXIT(
      {
        std::size_t pages = 0;
        if (std::FILE *f = std::fopen("/proc/self/statm", "r")) {
          if (std::fscanf(f, "%zu", &pages) != 1) pages = 0;
          std::fclose(f);
        }
        rlimit limit{};
        limit.rlim_cur = limit.rlim_max = pages * 4096 + (512u << 20);
        if (pages == 0 || setrlimit(RLIMIT_AS, &limit) != 0) std::exit(2);
        std::exit(hugePrefixFailsCleanly() ? 0 : 1);
      },
      ::testing::ExitedWithCode(0), "");
#endif
}

TEST(ByteStreamTest, LongStringsRoundTripInChunks) {
  std::u16string text;
  for (int i = 0; i < 70000; ++i)
    text += (i % 97 == 0) ? u'\u20AC' : (i % 31 == 0) ? u'\u00E9' : char16_t(u'a' + i % 26);
  WString const value = w(text);
  for (int version : {1, 2}) {
    MemoryOutputStream out(version);
    out << value << 7;
    Bytes bytes(out.getBuffer(), out.getBuffer() + out.getSize());
    RecordingOutputStream plain(version);
    plain << value << 7;
    EXPECT_TRUE(plain.bytes == bytes);
    for (int chunk : {0, 3, 1024}) {
      WString read;
      int after = 0;
      withStream(bytes, chunk, version, [&](auto &in) { in >> read >> after; });
      EXPECT_TRUE(read == value) << "version " << version << " chunk " << chunk;
      EXPECT_EQ(after, 7);
    }
  }
}

/// The index of the first byte where `bytes` differs from `expected` (their common size if none).
std::size_t firstDifference(Bytes const &bytes, Bytes const &expected) {
  std::size_t n = std::min(bytes.size(), expected.size());
  return static_cast<std::size_t>(std::mismatch(bytes.begin(), bytes.begin() + n, expected.begin()).first -
                                  bytes.begin());
}

// Long enough to grow the output buffer many times, with values ending at
// every offset, and read back both with plenty of data after each value and
// right at the end of the data.
TEST(ByteStreamTest, LongRunsOfEveryFormMatchTheGoldenBytesOnEveryPath) {
  MemoryOutputStream inlineOut;
  MemoryOutputStream general;
  RecordingOutputStream plain;
  Bytes expected;
  auto write = [&](auto value, Bytes const &bytes) {
    inlineOut << value;
    static_cast<iByteOutputStream &>(general) << value;
    plain << value;
    expected.insert(expected.end(), bytes.begin(), bytes.end());
  };
  constexpr int kRounds = 400;  // 43,600 bytes: the buffer grows from 256 bytes eight times
  for (int round = 0; round < kRounds; ++round) {
    for (IntCase const &c : kInts) write(c.value, hexBytes(c.bytes));
    for (DoubleCase const &c : kDoubles) write(c.value, hexBytes(c.bytes));
    write(round % 3 == 0, Bytes{round % 3 == 0});
    write(static_cast<unsigned char>(round), Bytes{static_cast<unsigned char>(round)});
  }
  ASSERT_GT(expected.size(), 32768u);
  Bytes const bytes(inlineOut.getBuffer(), inlineOut.getBuffer() + inlineOut.getSize());
  for (Bytes const *written : {&bytes, static_cast<Bytes const *>(&plain.bytes)}) {
    EXPECT_EQ(written->size(), expected.size());
    EXPECT_EQ(firstDifference(*written, expected), std::min(written->size(), expected.size()));
  }
  ASSERT_EQ(general.getSize(), bytes.size());
  EXPECT_TRUE(std::equal(bytes.begin(), bytes.end(), general.getBuffer()));

  auto readAll = [&](char const *way, auto &in, auto &&stream) {
    int mismatches = 0;
    for (int round = 0; round < kRounds; ++round) {
      for (IntCase const &c : kInts) {
        int value = 12345;
        stream(in) >> value;
        mismatches += value != c.value;
      }
      for (DoubleCase const &c : kDoubles) {
        double value = 42.25;
        stream(in) >> value;
        mismatches += !same(value, c.value);
      }
      bool flag = round % 3 != 0;
      unsigned char byte = 0;
      stream(in) >> flag >> byte;
      mismatches += flag != (round % 3 == 0) || byte != static_cast<unsigned char>(round);
    }
    EXPECT_EQ(mismatches, 0) << way;
    EXPECT_EQ(in.getPosition(), expected.size()) << way;
  };
  auto asInline = [](MemoryInputStream &in) -> MemoryInputStream & { return in; };
  auto asGeneral = [](auto &in) -> iByteInputStream & { return in; };
  MemoryInputStream inlineIn(expected.data(), static_cast<unsigned int>(expected.size()));
  readAll("memory inline", inlineIn, asInline);
  MemoryInputStream generalIn(expected.data(), static_cast<unsigned int>(expected.size()));
  readAll("memory", generalIn, asGeneral);
  ChunkedInputStream chunked(expected, 5);
  readAll("chunk 5", chunked, asGeneral);
}

TEST(ByteStreamTest, MixedRecordReadsBackWithoutReadingAhead) {
  MemoryOutputStream out;
  out << 16 << w(u"caf\u00E9") << 0.25 << true << WString() << static_cast<unsigned char>(9) << w(u"") << -40000;
  Bytes const bytes(out.getBuffer(), out.getBuffer() + out.getSize());
  for (int chunk : kChunkSizes) {
    ChunkedInputStream in(bytes, chunk);
    int a = 0, b = 0;
    WString s1, s2 = w(u"x"), s3;
    double d = 0;
    bool flag = false;
    unsigned char byte = 0;
    in >> a >> s1 >> d >> flag >> s2 >> byte >> s3 >> b;
    EXPECT_EQ(a, 16);
    EXPECT_TRUE(s1 == w(u"caf\u00E9"));
    EXPECT_EQ(d, 0.25);
    EXPECT_TRUE(flag);
    EXPECT_TRUE(s2.isNull());
    EXPECT_EQ(byte, 9);
    EXPECT_TRUE(!s3.isNull() && s3.isEmpty());
    EXPECT_EQ(b, -40000);
    EXPECT_TRUE(in.atEnd());
  }
}

}  // namespace
}  // namespace quarn
