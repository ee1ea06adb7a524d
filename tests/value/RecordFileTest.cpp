// RecordFileTest.cpp - record files: worked bytes, round trips, seeking, every kind of damage, appending
#include <gtest/gtest.h>
#include <quarn/value/Crc32c.h>
#include <quarn/value/IntegerValue.h>
#include <quarn/value/RecordFileReader.h>
#include <quarn/value/RecordFileWriter.h>
#include <quarn/value/StringValue.h>
#include <quarn/value/ValueArrayValue.h>

#include <string>
#include <vector>

#include "support/ExpectThrow.h"
#include "support/ScratchFile.h"
#include "value/GoldenBytes.h"

namespace quarn::test {
namespace {

ObjPtr<IntegerValue> integer(int v) {
  ObjPtr<IntegerValue> value(IntegerValue::newInstance());
  *value = v;
  return value;
}

void writeIntegers(char const *path, std::vector<int> const &values,
                   RecordFileWriter::Mode mode = RecordFileWriter::kCreate) {
  RecordFileWriter out(path, mode);
  for (int v : values) out.write(*integer(v));
  out.close();
}

/// What a reader made of a file of integer records: the values, and each failure's message in order.
struct Outcome {
  std::vector<int> values;
  std::vector<std::string> errors;
};

Outcome readAll(RecordFileReader &in) {
  Outcome outcome;
  ObjPtr<Value> record;
  for (int guard = 0; guard < 1000; ++guard) {
    try {
      if (!in.next(record)) return outcome;
      outcome.values.push_back(record->getInteger());
    } catch (Exception const &e) {
      outcome.errors.push_back(e.what());
    }
  }
  ADD_FAILURE() << "the reader never came to an end";
  return outcome;
}

Outcome readAll(Bytes const &bytes) {
  ChunkedInputStream stream(bytes, 5);
  try {
    RecordFileReader in(stream);
    return readAll(in);
  } catch (Exception const &e) {
    return {{}, {e.what()}};
  }
}

// The three-record file the damage tests use: 7, 300, -5. Its records are
// at 24 (28 payload bytes), 64 (30) and 106 (28); its end marker at 146; its
// end at 162.
std::vector<int> const kThree = {7, 300, -5};
constexpr std::size_t kRecordOffsets[] = {24, 64, 106, 146, 162};

Bytes threeRecords() {
  ScratchFile file("three");
  writeIntegers(file.c_str(), kThree);
  return file.bytes();
}

TEST(RecordFileTest, Crc32cMatchesTheStandardCheckValues) {
  Bytes zeros(32, 0x00), ones(32, 0xFF), ascending;
  for (int i = 0; i < 32; ++i) ascending.push_back(static_cast<unsigned char>(i));
  // clang-format off
  struct Case { Bytes bytes; std::uint32_t crc; } const cases[] = {
      {{}, 0x00000000}, {bytesOfText("123456789"), 0xE3069283}, {zeros, 0x8A9136AA}, {ones, 0x62A8AB43},
      {ascending, 0x46DD794E},
  };
  // clang-format on
  for (Case const &c : cases) {
    EXPECT_EQ(util::crc32c(c.bytes.data(), c.bytes.size()), c.crc) << hexOf(c.bytes);
    for (std::size_t cut = 0; cut <= c.bytes.size(); ++cut)  // continued in two pieces
      EXPECT_EQ(util::crc32c(c.bytes.data() + cut, c.bytes.size() - cut, util::crc32c(c.bytes.data(), cut)), c.crc);
  }
}

/// `bytes` with the header checksum made to match its header again.
Bytes resealHeader(Bytes bytes) {
  std::uint32_t crc = util::crc32c(bytes.data(), 20);
  for (int i = 0; i < 4; ++i) bytes[20 + i] = static_cast<unsigned char>(crc >> 8 * i);
  return bytes;
}

// The worked bytes of RecordFile.h, for a writer of libquarn 0.1.0; another
// version's bytes and header checksum take their place.
Bytes withWriterVersion(Bytes bytes, RecordFileHeader const &header) {
  unsigned int const version[] = {header.writerMajor, header.writerMinor, header.writerPatch};
  for (int i = 0; i < 3; ++i) {
    bytes[12 + 2 * i] = static_cast<unsigned char>(version[i]);
    bytes[13 + 2 * i] = static_cast<unsigned char>(version[i] >> 8);
  }
  return resealHeader(bytes);
}

TEST(RecordFileTest, WritesTheWorkedBytes) {
  Bytes const header = golden("89 51 52 46 0D 0A 1A 0A  01 00  02 00  00 00 01 00 00 00  00 00  73 67 CB D8");
  ScratchFile empty("empty"), seven("seven");
  RecordFileHeader written;
  {
    RecordFileWriter out(empty.c_str());
    written = out.getHeader();
    out.close();
  }
  writeIntegers(seven.c_str(), {7});
  if (written.writerMajor == 0 && written.writerMinor == 1 && written.writerPatch == 0) {
    EXPECT_EQ(withWriterVersion(header, written), header);  // the table stands as it is
  }
  EXPECT_EQ(hexOf(empty.bytes()),
            hexOf(withWriterVersion(header, written) + golden("FF FF FF FF  00 00 00 00 00 00 00 00  FF FF FF FF")));
  EXPECT_EQ(hexOf(seven.bytes()),
            hexOf(withWriterVersion(header, written) + golden("1C 00 00 00  DD 03 4A 45  40 1E DB F0  01 1A") +
                  bytesOfText("Marlix.value.IntegerValue") +
                  golden("1C  FF FF FF FF  01 00 00 00 00 00 00 00  D8 82 C3 B6")));
}

TEST(RecordFileTest, RoundTripsFilesOfNoneOneAndManyRecordsOfAnyClass) {
  ScratchFile file("roundtrip");
  for (int version : {1, 2}) {
    for (unsigned int count : {0u, 1u, 250u}) {
      std::vector<ObjPtr<Value>> written;
      for (unsigned int n = 0; n < count; ++n) {
        ObjPtr<ValueArrayValue> record(ValueArrayValue::newInstance());
        record->appendValue(integer(static_cast<int>(n) * 1000).detach());
        ObjPtr<StringValue> text(StringValue::newInstance());
        *text = std::string(n % 40, 'x').c_str();
        record->appendValue(text.detach());
        if (n % 3 == 0)
          written.emplace_back(integer(-static_cast<int>(n)).detach());  // not every record is an array
        else
          written.emplace_back(record.detach());
      }
      {
        RecordFileWriter out(file.c_str(), RecordFileWriter::kCreate, version);
        for (auto const &record : written) out.write(*record);
        EXPECT_EQ(out.getCount(), count);
      }  // closed by the destructor
      RecordFileReader in(file.c_str());
      EXPECT_EQ(in.getHeader().streamVersion, version);
      ObjPtr<Value> record;
      for (unsigned int n = 0; n < count; ++n) {
        ASSERT_TRUE(in.next(record)) << n;
        EXPECT_EQ(record->getClassTag(), written[n]->getClassTag());
        EXPECT_EQ(record->compare(*written[n]), 0) << "record " << n << " of " << count << ", version " << version;
      }
      EXPECT_FALSE(in.next(record));
      EXPECT_FALSE(in.next(record));
      // The same bytes through a stream that hands out a few bytes at a time.
      Bytes const bytes = file.bytes();
      for (int chunk : kChunkSizes) {
        ChunkedInputStream stream(bytes, chunk);
        RecordFileReader over(stream);
        unsigned int read = 0;
        while (over.next(record)) EXPECT_EQ(record->compare(*written[read++]), 0);
        EXPECT_EQ(read, count);
      }
    }
  }
}

TEST(RecordFileTest, SeeksToAnyRecordFromItsIndex) {
  ScratchFile file("seek");
  std::vector<int> values;
  for (int i = 0; i < 50; ++i) values.push_back(i * i);  // payloads of 28, 29 and 30 bytes
  writeIntegers(file.c_str(), values);
  std::vector<std::uint64_t> offsets;
  {
    RecordFileReader in(file.c_str());
    ObjPtr<Value> record;
    while (in.next(record)) offsets.push_back(in.getRecordOffset());
  }
  ASSERT_EQ(offsets.size(), 50u);
  EXPECT_EQ(offsets[3], 24u + 3 * 40);
  RecordFileReader in(file.c_str());
  ObjPtr<Value> record;
  for (std::uint64_t index : {30u, 2u, 49u, 0u, 31u, 30u}) {  // ahead of what was read, back, and again
    in.seek(index);
    EXPECT_EQ(in.getIndex(), index);
    ASSERT_TRUE(in.next(record));
    EXPECT_EQ(record->getInteger(), values[index]);
    EXPECT_EQ(in.getRecordIndex(), index);
    EXPECT_EQ(in.getRecordOffset(), offsets[index]);
  }
  EXPECT_QUARN_THROW(in.seek(50), "Record 50 is not in the file, which holds 50 records");
  in.seek(48);
  ASSERT_TRUE(in.next(record));
  EXPECT_EQ(record->getInteger(), 48 * 48);
  // Over a stream, only forward.
  Bytes const bytes = file.bytes();
  ChunkedInputStream stream(bytes, 7);
  RecordFileReader over(stream);
  over.seek(10);
  ASSERT_TRUE(over.next(record));
  EXPECT_EQ(record->getInteger(), 100);
  EXPECT_QUARN_THROW(over.seek(3), "Cannot go back to offset 144: the record file is read from a stream");
}

std::string const kNotARecordFile = "Not a record file (it does not start with the record file magic number)";

TEST(RecordFileTest, ADamagedHeaderIsRefused) {
  Bytes const good = threeRecords();
  for (std::size_t at = 0; at < 24; ++at) {
    Bytes bad = good;
    bad[at] ^= 0x10;
    Outcome outcome = readAll(bad);
    ASSERT_EQ(outcome.errors.size(), 1u);
    EXPECT_TRUE(outcome.values.empty());
    if (at < 8)
      EXPECT_EQ(outcome.errors[0], kNotARecordFile);
    else
      EXPECT_EQ(outcome.errors[0].rfind("Record file header damaged (checksum ", 0), 0u) << outcome.errors[0];
  }
  // Intact headers this library does not read.
  struct Case {
    std::size_t at;
    unsigned char byte;
    std::string message;
  } const cases[] = {
      {8, 2, "Record file format version 2 is not supported (this library reads version 1)"},
      {10, 0, "Record file header names stream version 0"},
      {19, 0x80, "Record file header has reserved bits 8000 set (written by a newer library?)"},
  };
  for (Case const &c : cases) {
    Bytes other = good;
    other[c.at] = c.byte;
    Outcome outcome = readAll(resealHeader(other));
    ASSERT_EQ(outcome.errors.size(), 1u);
    EXPECT_EQ(outcome.errors[0], c.message);
  }
}

std::string at(std::size_t record) {
  return "Record " + std::to_string(record) + " at offset " + std::to_string(kRecordOffsets[record]) + ": ";
}

TEST(RecordFileTest, AFlippedByteAnywhereLosesOnlyItsOwnRecordAndIsReportedWhereItIs) {
  Bytes const good = threeRecords();
  ASSERT_EQ(good.size(), kRecordOffsets[4]);
  for (std::size_t pos = 24; pos < good.size(); ++pos) {
    Bytes bad = good;
    bad[pos] ^= 0xFF;
    Outcome outcome = readAll(bad);
    std::size_t k = 0;
    while (pos >= kRecordOffsets[k + 1]) ++k;
    std::vector<int> expected = kThree;
    ASSERT_EQ(outcome.errors.size(), 1u) << "byte " << pos;
    std::string const &error = outcome.errors[0];
    if (k == 3) {  // the end marker: its length word makes it look like a record
      EXPECT_EQ(error, pos < kRecordOffsets[3] + 4 ? at(3) + "frame damaged; nothing intact follows it"
                                                   : "End marker at offset 146 damaged; nothing intact follows it")
          << "byte " << pos;
    } else {
      expected.erase(expected.begin() + static_cast<long>(k));
      if (pos < kRecordOffsets[k] + 12)
        EXPECT_EQ(error, at(k) + "frame damaged; reading goes on at offset " + std::to_string(kRecordOffsets[k + 1]))
            << "byte " << pos;
      else
        EXPECT_EQ(error.rfind(at(k) + "checksum mismatch (stored ", 0), 0u) << "byte " << pos << ": " << error;
    }
    EXPECT_EQ(outcome.values, expected) << "byte " << pos;
  }
}

TEST(RecordFileTest, AFileCutAtAnyByteReadsEveryWholeRecordAndSaysWhereItWasCut) {
  Bytes const good = threeRecords();
  std::size_t const lengths[] = {28, 30, 28};
  for (std::size_t cut = 0; cut < good.size(); ++cut) {
    Outcome outcome = readAll(Bytes(good.begin(), good.begin() + static_cast<long>(cut)));
    ASSERT_EQ(outcome.errors.size(), 1u) << "cut " << cut;
    std::string const &error = outcome.errors[0];
    if (cut < 24) {
      EXPECT_EQ(error,
                cut == 0 ? kNotARecordFile : "Record file header cut after " + std::to_string(cut) + " of 24 bytes");
      continue;
    }
    std::size_t k = 0;
    while (cut >= kRecordOffsets[k + 1]) ++k;
    std::size_t const into = cut - kRecordOffsets[k];
    EXPECT_EQ(outcome.values, std::vector<int>(kThree.begin(), kThree.begin() + static_cast<long>(k))) << "cut " << cut;
    std::string expected =
        into == 0
            ? "File cut at offset " + std::to_string(cut) + " after " + std::to_string(k) + " records: no end marker"
        : k == 3 && into >= 4 ? "End marker at offset 146 cut after " + std::to_string(into) + " of 16 bytes"
        : into < 12
            ? at(k) + "file cut inside its frame (" + std::to_string(into) + " of 12 bytes)"
            : at(k) + "file cut after " + std::to_string(into - 12) + " of " + std::to_string(lengths[k]) + " bytes";
    EXPECT_EQ(error, expected) << "cut " << cut;
  }
  // Seeking over a record cut short in a file.
  ScratchFile file("cut");
  file.write(Bytes(good.begin(), good.begin() + 80));
  RecordFileReader in(file.c_str());
  EXPECT_QUARN_THROW(in.seek(2), at(1) + "file cut after 4 of 30 bytes");
}

/// A record of `payload` as it stands, with its frame.
Bytes framed(Bytes const &payload) {
  Bytes frame(12);
  auto put = [&](std::size_t at, std::uint32_t v) {
    for (int i = 0; i < 4; ++i) frame[at + i] = static_cast<unsigned char>(v >> 8 * i);
  };
  put(0, static_cast<std::uint32_t>(payload.size()));
  put(4, util::crc32c(payload.data(), payload.size()));
  put(8, util::crc32c(frame.data(), 8));
  return frame + payload;
}

TEST(RecordFileTest, ARecordWhoseValueFailsIsReportedWithTheValuesOwnMessage) {
  Bytes const good = threeRecords();
  Bytes const header(good.begin(), good.begin() + 24);
  Bytes const integerName = golden("01 1A") + bytesOfText("Marlix.value.IntegerValue");
  Bytes const five = framed(integerName + golden("14"));
  auto endMarker = [](std::uint64_t count) {
    Bytes marker = golden("FF FF FF FF");
    for (int i = 0; i < 8; ++i) marker.push_back(static_cast<unsigned char>(count >> 8 * i));
    std::uint32_t crc = util::crc32c(marker.data(), 12);
    for (int i = 0; i < 4; ++i) marker.push_back(static_cast<unsigned char>(crc >> 8 * i));
    return marker;
  };
  // clang-format off
  struct Case { Bytes payload; std::string message; } const cases[] = {
      {golden("01 18") + bytesOfText("Marlix.test.NoSuchClass"), "Class Marlix.test.NoSuchClass not registered."},
      {integerName + golden("1C 1C"), "the value read 28 of its 29 bytes"},
      {integerName + golden("03 01"), "EOF reading int as int"},
      {golden("00"), "no class name"},
      {golden("FC"), "invalid class name length -1"},
      {golden("0C 41 00"), "class name with a zero byte"},
      {golden("01 1D") + bytesOfText("Marlix.value.ValueArrayValue") + golden("04"),
       "EOF reading int header\nValueArrayValue::deserialize: Tessary exception caught"},
  };
  // clang-format on
  for (Case const &c : cases) {
    Outcome outcome = readAll(header + framed(c.payload) + five + endMarker(2));
    EXPECT_EQ(outcome.values, std::vector<int>{5});
    ASSERT_EQ(outcome.errors.size(), 1u);
    EXPECT_EQ(outcome.errors[0], "Record 0 at offset 24: " + c.message);
  }
  Outcome miscounted = readAll(header + five + endMarker(2));
  EXPECT_EQ(miscounted.values, std::vector<int>{5});
  EXPECT_EQ(miscounted.errors, std::vector<std::string>{"End marker at offset 64 counts 2 records, but 1 were found"});
}

TEST(RecordFileTest, AppendingKeepsTheFileValid) {
  ScratchFile file("append");
  writeIntegers(file.c_str(), {1, 2}, RecordFileWriter::kAppend);  // a new file
  writeIntegers(file.c_str(), {3}, RecordFileWriter::kAppend);
  writeIntegers(file.c_str(), {}, RecordFileWriter::kAppend);
  {
    RecordFileWriter out(file.c_str(), RecordFileWriter::kAppend, 1);  // the file's own version 2 is kept
    EXPECT_EQ(out.getCount(), 3u);
    EXPECT_EQ(out.getHeader().streamVersion, 2);
    ObjPtr<StringValue> text(StringValue::newInstance());
    *text = "4";
    out.write(*text);
    out.write(*integer(5));
  }
  RecordFileReader in(file.c_str());
  Outcome outcome = readAll(in);
  EXPECT_EQ(outcome.values, (std::vector<int>{1, 2, 3, 4, 5}));
  EXPECT_TRUE(outcome.errors.empty()) << outcome.errors[0];

  // A writer that never closed: the records are there, the end marker is not.
  Bytes bytes = file.bytes();
  file.write(Bytes(bytes.begin(), bytes.end() - 16));
  RecordFileReader cut(file.c_str());
  outcome = readAll(cut);
  EXPECT_EQ(outcome.values, (std::vector<int>{1, 2, 3, 4, 5}));
  EXPECT_EQ(outcome.errors, std::vector<std::string>{"File cut at offset " + std::to_string(bytes.size() - 16) +
                                                     " after 5 records: no end marker"});
  EXPECT_QUARN_THROW(
      RecordFileWriter(file.c_str(), RecordFileWriter::kAppend),
      "Cannot append to " + file.path + ": it does not end with an end marker (it was cut, or is still being written)");
  file.write(bytesOfText("not a record file at all, but long enough"));
  EXPECT_QUARN_THROW(RecordFileWriter(file.c_str(), RecordFileWriter::kAppend),
                     "Cannot append to " + file.path + ": " + kNotARecordFile);
  EXPECT_EQ(file.bytes(), bytesOfText("not a record file at all, but long enough"));
}

}  // namespace
}  // namespace quarn::test
