// DumpTest.cpp - `quarn dump`: record files and bare value streams as text, damage on stderr
#include <gtest/gtest.h>
#include <quarn/data/DataRecord.h>
#include <quarn/data/PropertyHelpers.h>
#include <quarn/value/BitsetValue.h>
#include <quarn/value/Crc32c.h>
#include <quarn/value/DoubleArrayValue.h>
#include <quarn/value/DoubleValue.h>
#include <quarn/value/FileStream.h>
#include <quarn/value/IntegerValue.h>
#include <quarn/value/RecordFileReader.h>
#include <quarn/value/RecordFileWriter.h>
#include <quarn/value/StringValue.h>
#include <quarn/value/ValueArrayValue.h>

#include <sstream>
#include <string>
#include <vector>

#include "Tool.h"
#include "support/ExpectThrow.h"
#include "support/ScratchFile.h"

namespace {

using quarn::ObjPtr;
using quarn::test::ScratchFile;

struct Result {
  int status;
  std::string out, err;
};

Result quarnDump(std::vector<std::string> args) {
  args.insert(args.begin(), {"quarn", "dump"});
  std::vector<char *> argv;
  for (std::string &arg : args) argv.push_back(arg.data());
  std::ostringstream out, err;
  int status = quarn::tool::run(static_cast<int>(args.size()), argv.data(), out, err);
  return {status, out.str(), err.str()};
}

std::vector<std::string> lines(std::string const &text) {
  std::vector<std::string> out;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) out.push_back(line);
  return out;
}

/// Record n of the example host: its count, greeting, ratio, series and flags.
ObjPtr<quarn::ValueArrayValue> demoRecord(int n) {
  ObjPtr<quarn::ValueArrayValue> record(quarn::ValueArrayValue::newInstance());
  ObjPtr<quarn::IntegerValue> count(quarn::IntegerValue::newInstance());
  *count = n + 1;
  record->appendValue(count.detach());
  ObjPtr<quarn::StringValue> text(quarn::StringValue::newInstance());
  *text = ("Hello, record " + std::to_string(n) + "!").c_str();
  record->appendValue(text.detach());
  ObjPtr<quarn::DoubleValue> ratio(quarn::DoubleValue::newInstance());
  *ratio = n / 8.0;
  record->appendValue(ratio.detach());
  ObjPtr<quarn::DoubleArrayValue> series(quarn::DoubleArrayValue::newInstance());
  // Record 2 has a longer series than the host makes, to show arrays shortened.
  for (int i = 0; i <= n % 4 + (n == 2 ? 8 : 0); ++i) series->append(i * 0.5);
  record->appendValue(series.detach());
  ObjPtr<quarn::BitsetValue> flags(quarn::BitsetValue::newInstance());
  flags->resize(16);
  flags->setOn(static_cast<unsigned int>(n % 16));
  record->appendValue(flags.detach());
  return record;
}

void writeDemo(std::string const &path, int records) {
  quarn::RecordFileWriter out(path.c_str());
  for (int n = 0; n < records; ++n) out.write(*demoRecord(n));
  out.close();
}

std::string const kHeaderLine = ": record file, format 1, stream version 2, written by libquarn ";

TEST(DumpTest, PrintsEachRecordOfTheDemoFileWithItsElements) {
  ScratchFile file("dump");
  writeDemo(file.path, 3);
  Result result = quarnDump({file.path});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "");
  std::vector<std::string> const expected = {
      "record 0 at offset 24, 193 bytes: Marlix.value.ValueArrayValue, 5 elements",
      "  [0] Marlix.value.IntegerValue 1",
      "  [1] Marlix.value.StringValue \"Hello, record 0!\"",
      "  [2] Marlix.value.DoubleValue 0",
      "  [3] Marlix.value.DoubleArrayValue [1] 0",
      "  [4] Marlix.value.BitsetValue 16 bits, 1 on: 1",
      "record 1 at offset 229, 210 bytes: Marlix.value.ValueArrayValue, 5 elements",
      "  [0] Marlix.value.IntegerValue 2",
      "  [1] Marlix.value.StringValue \"Hello, record 1!\"",
      "  [2] Marlix.value.DoubleValue 0.125",
      "  [3] Marlix.value.DoubleArrayValue [2] 0, 0.5",
      "  [4] Marlix.value.BitsetValue 16 bits, 1 on: 2",
      "record 2 at offset 451, 283 bytes: Marlix.value.ValueArrayValue, 5 elements",
      "  [0] Marlix.value.IntegerValue 3",
      "  [1] Marlix.value.StringValue \"Hello, record 2!\"",
      "  [2] Marlix.value.DoubleValue 0.25",
      "  [3] Marlix.value.DoubleArrayValue [11] 0, 0.5, 1, 1.5, 2, 2.5, 3, 3.5, ... (3 more)",
      "  [4] Marlix.value.BitsetValue 16 bits, 1 on: 3",
      "end of file at offset 762: 3 records read",
  };
  std::vector<std::string> got = lines(result.out);
  ASSERT_EQ(got.size(), expected.size() + 1) << result.out;
  EXPECT_EQ(got[0].rfind(file.path + kHeaderLine, 0), 0u) << got[0];
  for (std::size_t i = 0; i < expected.size(); ++i) EXPECT_EQ(got[i + 1], expected[i]) << "line " << i + 2;
}

TEST(DumpTest, PrintsADataRecordPropertyByProperty) {
  using Name = quarn::BaseString<unsigned short>;
  ScratchFile file("dump");
  quarn::Ptr<quarn::DataRecord> record(quarn::DataRecord::newInstance());
  quarn::util::defineIntegerValue(*record, Name("count"), 7);
  quarn::util::defineStringValue(*record, Name("greeting"), Name("hi"));
  {
    quarn::RecordFileWriter out(file.c_str());
    out.write(*record);
    out.write(*demoRecord(0));  // values and records mix in one file
  }
  std::vector<std::string> got = lines(quarnDump({file.path}).out);
  ASSERT_EQ(got.size(), 11u);  // header, 1 + 2 lines, 1 + 5 lines, end
  EXPECT_EQ(got[1].substr(got[1].find(": ")), ": Marlix.data.DataRecord, 2 properties");
  EXPECT_EQ(got[2], "  count: Marlix.value.IntegerValue 7");
  EXPECT_EQ(got[3], "  greeting: Marlix.value.StringValue \"hi\"");
  EXPECT_EQ(got[4].substr(got[4].find(": ")), ": Marlix.value.ValueArrayValue, 5 elements");

  // Read into a record of one's own: the same record fits, a value array is damage.
  quarn::RecordFileReader in(file.c_str());
  quarn::Ptr<quarn::DataRecord> back(quarn::DataRecord::newInstance());
  ASSERT_TRUE(in.next(*back));
  EXPECT_EQ(back->getPropertyCount(), 2u);
  std::string const second = "Record 1 at offset " + std::to_string(in.getOffset());
  EXPECT_QUARN_THROW(in.next(*back),
                     second + ": the record holds a Marlix.value.ValueArrayValue, not a Marlix.data.DataRecord");
}

TEST(DumpTest, ReportsDamageWithTheRecordAndOffsetAndGoesOn) {
  ScratchFile file("dump");
  writeDemo(file.path, 3);
  file.flip(24 + 12 + 40);   // in record 0's payload
  file.flip(229);            // record 1's length
  file.cut(451 + 12 + 100);  // inside record 2
  Result result = quarnDump({file.path});
  EXPECT_EQ(result.status, 1);
  std::vector<std::string> err = lines(result.err);
  ASSERT_EQ(err.size(), 3u) << result.err;
  EXPECT_EQ(err[0].rfind("quarn dump: " + file.path + ": Record 0 at offset 24: checksum mismatch (stored ", 0), 0u);
  EXPECT_EQ(err[1],
            "quarn dump: " + file.path + ": Record 1 at offset 229: frame damaged; reading goes on at offset 451");
  EXPECT_EQ(err[2], "quarn dump: " + file.path + ": Record 2 at offset 451: file cut after 100 of 283 bytes");
  std::vector<std::string> out = lines(result.out);
  ASSERT_EQ(out.size(), 2u) << result.out;
  EXPECT_EQ(out[1], "end of file at offset 563: 0 records read, 3 damaged");
}

TEST(DumpTest, RawShowsTheFramingWithoutMakingAnything) {
  ScratchFile file("dump");
  writeDemo(file.path, 1);
  Result result = quarnDump({"--raw", file.path});
  EXPECT_EQ(result.status, 0) << result.err;
  std::vector<std::string> const expected = {
      "record 0 at offset 24, 193 bytes, checksum ok",
      "        36  01 1D                                           name Marlix.value.ValueArrayValue",
      "        66  14                                              count 5",
      "        67  01 1A                                           name Marlix.value.IntegerValue",
      "        94  04                                              |.|",
      "        95  01 19                                           name Marlix.value.StringValue",
      "       121  01 11 48 65 6C 6C 6F 2C 20 72 65 63 6F 72 64 20 |..Hello, record |",
      "       137  30 21                                           |0!|",
      "       139  01 19                                           name Marlix.value.DoubleValue",
      "       165  00                                              |.|",
      "       166  01 1E                                           name Marlix.value.DoubleArrayValue",
      "       197  04 00                                           |..|",
      "       199  01 19                                           name Marlix.value.BitsetValue",
      "       225  01 10 04 04                                     |....|",
      "end of file at offset 245: 1 record read",
  };
  std::vector<std::string> got = lines(result.out);
  ASSERT_EQ(got.size(), expected.size() + 1) << result.out;
  for (std::size_t i = 0; i < expected.size(); ++i) EXPECT_EQ(got[i + 1], expected[i]) << "line " << i + 2;
}

TEST(DumpTest, RawReadsRecordsOfClassesNobodyServes) {
  ScratchFile file("dump");
  quarn::RecordFileWriter(file.c_str()).close();
  std::vector<unsigned char> bytes = file.bytes();
  bytes.resize(24);  // the header; then one record of class Marlix.test.Gone holding 01 02, and its end marker
  std::string const payload = std::string("\x01\x11", 2) + "Marlix.test.Gone" + "\x01\x02";
  unsigned char frame[16] = {static_cast<unsigned char>(payload.size())};
  auto put = [&](unsigned char *p, std::uint32_t v) {
    for (int i = 0; i < 4; ++i) p[i] = static_cast<unsigned char>(v >> 8 * i);
  };
  put(frame + 4, quarn::util::crc32c(payload.data(), payload.size()));
  put(frame + 8, quarn::util::crc32c(frame, 8));
  bytes.insert(bytes.end(), frame, frame + 12);
  bytes.insert(bytes.end(), payload.begin(), payload.end());
  unsigned char marker[16] = {0xFF, 0xFF, 0xFF, 0xFF, 1};
  put(marker + 12, quarn::util::crc32c(marker, 12));
  bytes.insert(bytes.end(), marker, marker + 16);
  file.write(bytes);

  Result raw = quarnDump({file.path, "--raw"});
  EXPECT_EQ(raw.status, 0) << raw.err;
  std::vector<std::string> const expected = {
      "record 0 at offset 24, 20 bytes, checksum ok",
      "        36  01 11                                           name Marlix.test.Gone",
      "        54  01 02                                           |..|",
      "end of file at offset 72: 1 record read",
  };
  std::vector<std::string> got = lines(raw.out);
  ASSERT_EQ(got.size(), expected.size() + 1) << raw.out;
  for (std::size_t i = 0; i < expected.size(); ++i) EXPECT_EQ(got[i + 1], expected[i]);
  Result made = quarnDump({file.path});
  EXPECT_EQ(made.status, 1);
  EXPECT_EQ(made.err, "quarn dump: " + file.path + ": Record 0 at offset 24: Class Marlix.test.Gone not registered.\n");
  EXPECT_EQ(lines(made.out).back(), "end of file at offset 72: 0 records read, 1 damaged");
}

TEST(DumpTest, ReadsBareValueArraysUpToWhereTheyStop) {
  ScratchFile file("dump");
  {
    quarn::FileOutputStream out(file.path.c_str());
    demoRecord(0)->serialize(out);
    demoRecord(1)->serialize(out);
    out.close();
  }
  Result clean = quarnDump({file.path});
  EXPECT_EQ(clean.status, 0);
  std::vector<std::string> out = lines(clean.out);
  ASSERT_EQ(out.size(), 14u) << clean.out;
  EXPECT_EQ(out[0], file.path + ": not a record file; read as bare value arrays one after another (stream version 2)");
  EXPECT_EQ(out[1], "value array 0 at offset 0: Marlix.value.ValueArrayValue, 5 elements");
  EXPECT_EQ(out[2], "  [0] Marlix.value.IntegerValue 1");
  EXPECT_EQ(out[7], "value array 1 at offset 163: Marlix.value.ValueArrayValue, 5 elements");
  EXPECT_EQ(out[13], "end of file at offset 343: 2 value arrays read");

  file.cut(200);  // inside the second array's second class name
  Result cut = quarnDump({file.path});
  EXPECT_EQ(cut.status, 1);
  EXPECT_EQ(cut.err, "quarn dump: " + file.path +
                         ": value array 1 at offset 163: EOF reading byte 7 in string of length 24; "
                         "ValueArrayValue::deserialize: Tessary exception caught\n");
  Result raw = quarnDump({"--raw", file.path});
  EXPECT_EQ(raw.status, 0);
  EXPECT_EQ(lines(raw.out)[1], "         0  14                                              count 5");
}

TEST(DumpTest, CommandLineAndFileFailures) {
  // clang-format off
  struct Case { std::vector<std::string> args; int status; std::string err; } const cases[] = {
      {{}, 2, "quarn dump: expected dump FILE [--raw] (see quarn dump --help)\n"},
      {{"a", "b"}, 2, "quarn dump: expected dump FILE [--raw] (see quarn dump --help)\n"},
      {{"--fast", "a"}, 2, "quarn dump: unknown option '--fast' (see quarn dump --help)\n"},
      {{"/nonexistent/records"}, 1,
       "quarn dump: /nonexistent/records: Failed to open file /nonexistent/records for reading.\n"},
  };
  // clang-format on
  for (Case const &c : cases) {
    Result result = quarnDump(c.args);
    EXPECT_EQ(result.status, c.status);
    EXPECT_EQ(result.err, c.err);
    EXPECT_EQ(result.out, "");
  }
  Result help = quarnDump({"--help"});
  EXPECT_EQ(help.status, 0);
  EXPECT_EQ(help.out.rfind("Usage: quarn dump FILE [--raw]\n\n", 0), 0u);
}

}  // namespace
