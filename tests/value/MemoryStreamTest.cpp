// MemoryStreamTest.cpp - the memory and file byte streams
#include <gtest/gtest.h>
#include <quarn/value/FileStream.h>
#include <quarn/value/MemoryStream.h>
#include <unistd.h>

#include <cstdio>
#include <string>
#include <vector>

#include "support/ChunkedInputStream.h"
#include "support/ExpectThrow.h"

namespace quarn {
namespace {

using test::Bytes;
using test::hex;

TEST(MemoryStreamTest, OutputAppendsAndClearForgets) {
  MemoryOutputStream out(1);
  out.write("ab", 2);
  out.write("c", 0);
  out.write("c", -1);
  out << 15;
  EXPECT_EQ(hex(out.getBuffer(), out.getSize()), "61 62 3C");
  out.clear();
  EXPECT_EQ(out.getSize(), 0u);
  out << 16;
  EXPECT_EQ(hex(out.getBuffer(), out.getSize()), "01 10");
}

TEST(MemoryStreamTest, OutputGrowsAcrossManyWrites) {
  MemoryOutputStream out;
  Bytes expected;
  for (int i = 0; i < 100000; ++i) {
    unsigned char b = static_cast<unsigned char>(i * 7);
    out.write(&b, 1);
    expected.push_back(b);
  }
  ASSERT_EQ(out.getSize(), expected.size());
  EXPECT_TRUE(Bytes(out.getBuffer(), out.getBuffer() + out.getSize()) == expected);
}

TEST(MemoryStreamTest, OutputCanAppendItsOwnBytes) {
  MemoryOutputStream out;
  out.write("abc", 3);
  for (int i = 0; i < 10; ++i) out.write(out.getBuffer(), static_cast<int>(out.getSize()));  // grows each time
  ASSERT_EQ(out.getSize(), 3u << 10);
  EXPECT_EQ(hex(out.getBuffer() + out.getSize() - 6, 6), "61 62 63 61 62 63");
}

TEST(MemoryStreamTest, InputReadsFewerAtTheEndThenNothing) {
  unsigned char const data[] = {1, 2, 3, 4, 5};
  MemoryInputStream in(data, sizeof data, 3);
  unsigned char buffer[8] = {};
  EXPECT_EQ(in.read(buffer, 3), 3);
  EXPECT_EQ(in.getPosition(), 3u);
  EXPECT_EQ(in.read(buffer, 0), 0);
  EXPECT_EQ(in.read(buffer, -4), 0);
  EXPECT_EQ(in.read(buffer, 8), 2);
  EXPECT_EQ(hex(buffer, 2), "04 05");
  EXPECT_EQ(in.read(buffer, 8), 0);
  EXPECT_EQ(in.getPosition(), 5u);
}

class FileStreamTest : public ::testing::Test {
 protected:
  std::string path = ::testing::TempDir() + "quarn_file_stream_" + std::to_string(getpid()) + ".bin";
  void TearDown() override { std::remove(path.c_str()); }
};

TEST_F(FileStreamTest, ValuesRoundTripThroughAFile) {
  {
    FileOutputStream out(path.c_str(), 1);
    EXPECT_TRUE(out.isOpen());
    EXPECT_EQ(out.version, 1);
    out << 40000 << 0.5 << BaseString<unsigned short>("ab");
    out.close();
    EXPECT_FALSE(out.isOpen());
    out.close();  // twice is harmless
  }
  FileInputStream in(path.c_str(), 1);
  int i = 0;
  double d = 0;
  BaseString<unsigned short> s;
  in >> i >> d >> s;
  EXPECT_EQ(i, 40000);
  EXPECT_EQ(d, 0.5);
  EXPECT_TRUE(s == BaseString<unsigned short>("ab"));
  EXPECT_QUARN_THROW(in >> i, "EOF reading int header");
  in.close();
  EXPECT_FALSE(in.isOpen());
  unsigned char byte;
  EXPECT_EQ(in.read(&byte, 1), 0);
}

TEST_F(FileStreamTest, FailuresNameThePath) {
  std::string const missing = path + ".missing/x";
  EXPECT_QUARN_THROW(FileInputStream{missing.c_str()}, ("Failed to open file " + missing + " for reading.").c_str());
  EXPECT_QUARN_THROW(FileOutputStream{missing.c_str()}, ("Failed to open file " + missing + " for writing.").c_str());
  FileOutputStream out(path.c_str());
  out.close();
  EXPECT_QUARN_THROW(out << 1, ("Cannot write to closed file " + path + ".").c_str());
}

}  // namespace
}  // namespace quarn
