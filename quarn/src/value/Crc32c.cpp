// Crc32c.cpp - CRC-32C through ISA-L
//
// crc32_iscsi neither inverts its start value nor its result, and takes an
// int length: the standard form inverts on both sides, and longer ranges go
// in pieces.
#include <isa-l/crc.h>
#include <quarn/value/Crc32c.h>

#include <algorithm>

namespace quarn::util {

std::uint32_t crc32c(void const *data, std::size_t size, std::uint32_t crc) noexcept {
  // ISA-L takes a non-const pointer but only reads through it.
  auto *p = static_cast<unsigned char *>(const_cast<void *>(data));
  std::uint32_t state = ~crc;
  while (size > 0) {
    std::size_t piece = std::min<std::size_t>(size, 0x40000000);
    state = crc32_iscsi(p, static_cast<int>(piece), state);
    p += piece;
    size -= piece;
  }
  return ~state;
}

}  // namespace quarn::util
