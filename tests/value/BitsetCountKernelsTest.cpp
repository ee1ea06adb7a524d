// BitsetCountKernelsTest.cpp - every population-count kernel the processor runs agrees with a plain count
//
// The bitsets use only the widest kernel the machine offers, so the narrower
// ones are compiled into this test from the library's source and held
// against std::popcount here, on every run length and alignment.
#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <cstdio>
#include <random>
#include <vector>

#include "../../quarn/src/value/BitCount.cpp"  // NOLINT(bugprone-suspicious-include): the kernels are private

namespace quarn::test {
namespace {

namespace bitcount = detail::bitcount;

TEST(BitsetCountKernelsTest, EveryKernelAgreesWithAPlainCountOnEveryLengthAndAlignment) {
  std::mt19937 random(11);
  unsigned int count = 0;
  bitcount::Implementation const *all = bitcount::implementations(count);
  ASSERT_EQ(count, 3u);
  EXPECT_TRUE(all[count - 1].supported);  // the portable one
  for (unsigned int k = 0; k < count; ++k) {
    if (!all[k].supported) {
      std::printf("[ SKIPPED  ] kernel %s: not supported by this processor\n", all[k].name);
      continue;
    }
    for (unsigned int words = 0; words <= 80; ++words) {
      for (unsigned int offset = 0; offset < 4; ++offset) {
        // Runs end at the end of their allocation, so an over-read shows under the sanitizers.
        std::vector<unsigned int> a(offset + words), b(offset + words);
        for (auto &w : a) w = static_cast<unsigned int>(random());
        for (auto &w : b) w = static_cast<unsigned int>(random());
        std::uint64_t expected[4] = {};
        for (unsigned int i = offset; i < offset + words; ++i) {
          expected[0] += static_cast<unsigned int>(std::popcount(a[i]));
          expected[1] += static_cast<unsigned int>(std::popcount(a[i] & b[i]));
          expected[2] += static_cast<unsigned int>(std::popcount(a[i] | b[i]));
          expected[3] += static_cast<unsigned int>(std::popcount(a[i] ^ b[i]));
        }
        for (int loop = 0; loop < 4; ++loop)
          ASSERT_EQ(all[k].loop[loop](a.data() + offset, b.data() + offset, words), expected[loop])
              << all[k].name << " loop " << loop << ", " << words << " words at offset " << offset;
      }
    }
  }
  unsigned int word = 0xF0F0F0F0u;
  EXPECT_EQ(bitcount::count(&word, 1), 16u);  // the chosen kernel, through the entry points
  EXPECT_EQ(bitcount::countAnd(&word, &word, 1), 16u);
  EXPECT_EQ(bitcount::countXor(&word, &word, 1), 0u);
}

}  // namespace
}  // namespace quarn::test
