// Crc32c.h - CRC-32C (Castagnoli) checksums of byte ranges
//
// The checksum of record files: the reflected CRC with polynomial 0x1EDC6F41,
// starting from all ones and inverted at the end, as iSCSI, ext4 and most
// storage formats use it. "123456789" -> E3069283; no bytes -> 00000000.
// Computed by Intel's ISA-L (crc32_iscsi), which picks the fastest form for
// the processor at run time (the SSE4.2 crc32 instruction folded with
// carry-less multiplies, or a table where neither exists).
#pragma once

#include <quarn/core/Export.h>

#include <cstddef>
#include <cstdint>

namespace quarn::util {

/// The CRC-32C of `size` bytes at `data`, continuing `crc` (the CRC-32C of
/// the bytes before them; 0 to start): crc32c(b, crc32c(a)) is the CRC-32C
/// of a followed by b.
QUARN_API std::uint32_t crc32c(void const *data, std::size_t size, std::uint32_t crc = 0) noexcept;

}  // namespace quarn::util
