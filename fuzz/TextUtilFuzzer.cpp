// TextUtilFuzzer.cpp - the text utilities: numbers from text, UTF-8 both ways, Base64
//
// First byte: which utility (mod 5); the rest is its input, as 8-bit text or
// as UTF-16 units (two bytes each, little-endian). Each checks a round trip:
// UTF-16 -> UTF-8 -> UTF-16 is exact for well-formed text and stable for any
// text; Base64 that decodes encodes back to text that decodes to the same
// bytes; a finite double written as text reads back to the same bits.
#include <quarnCore/Array.h>
#include <quarnCore/Base64.h>
#include <quarnCore/BaseString.h>
#include <quarnCore/Exception.h>
#include <quarnCore/TextUtil.h>
#include <quarnCore/Unicode.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

using quarn::Array;
using quarn::BaseString;

[[noreturn]] void fail(char const *what) {
  std::fprintf(stderr, "text utility round trip failed: %s\n", what);
  std::abort();
}

BaseString<unsigned short> unitsOf(unsigned char const *data, std::size_t size) {
  std::vector<unsigned short> units;
  for (std::size_t i = 0; i + 1 < size; i += 2) {
    auto unit = static_cast<unsigned short>(data[i] | data[i + 1] << 8);
    if (unit == 0) break;
    units.push_back(unit);
  }
  units.push_back(0);
  return BaseString<unsigned short>(units.data());
}

void numbers(unsigned char const *data, std::size_t size) {
  std::string const narrow(reinterpret_cast<char const *>(data), size);
  char const *text = narrow.c_str();
  BaseString<unsigned short> const wide = unitsOf(data, size);
  char const *end8 = nullptr;
  unsigned short const *end16 = nullptr;
  (void)quarn::util::stringToInteger(text, &end8);
  (void)quarn::util::stringToDouble(text, &end8);
  (void)quarn::util::stringToBoolean(text, &end8);
  (void)quarn::util::stringToInteger(wide, &end16);
  (void)quarn::util::stringToDouble(wide, &end16);
  (void)quarn::util::stringToBoolean(wide, &end16);
  Array<int> ints;
  Array<double> doubles;
  Array<bool> flags;
  (void)quarn::util::stringToIntegerArray(text, ints, false);
  (void)quarn::util::stringToDoubleArray(wide, doubles, true);
  (void)quarn::util::stringToBooleanArray(text, flags, false);
}

void utf16(unsigned char const *data, std::size_t size) {
  BaseString<unsigned short> const units = unitsOf(data, size);
  BaseString<char> const utf8 = quarn::util::ConvertStringtoUTF8(units);
  BaseString<unsigned short> back;
  quarn::util::ConvertUTF8toString(back, utf8);
  BaseString<char> const again = quarn::util::ConvertStringtoUTF8(back);
  if (again != utf8) fail("UTF-16 -> UTF-8 is not stable");
  bool wellFormed = true;  // no unpaired surrogate
  for (unsigned int i = 0; i < units.getLength(); ++i) {
    unsigned short u = units.getBuffer()[i];
    if (u >= 0xD800 && u < 0xDC00 && i + 1 < units.getLength() && units.getBuffer()[i + 1] >= 0xDC00 &&
        units.getBuffer()[i + 1] < 0xE000)
      ++i;
    else if (u >= 0xD800 && u < 0xE000)
      wellFormed = false;
  }
  if (wellFormed && back != units) fail("well-formed UTF-16 does not come back");
}

void utf8(unsigned char const *data, std::size_t size) {
  BaseString<unsigned short> units;
  quarn::util::ConvertUTF8toString(units, reinterpret_cast<char const *>(data), static_cast<unsigned int>(size));
  BaseString<char> const utf8 = quarn::util::ConvertStringtoUTF8(units);
  BaseString<unsigned short> back;
  quarn::util::ConvertUTF8toString(back, utf8);
  if (back != units) fail("UTF-8 -> UTF-16 is not stable");
}

void base64(unsigned char const *data, std::size_t size) {
  BaseString<unsigned short> const text = unitsOf(data, size);
  Array<unsigned char> bytes;
  try {
    quarn::util::Base64::Decode(text, bytes);
  } catch (quarn::Exception const &) {
    return;
  }
  BaseString<unsigned short> encoded;
  quarn::util::Base64::Encode(bytes, encoded);
  Array<unsigned char> back;
  quarn::util::Base64::Decode(encoded, back);
  if (back.getSize() != bytes.getSize() ||
      (bytes.getSize() && std::memcmp(back.getBuffer(), bytes.getBuffer(), bytes.getSize())))
    fail("Base64 does not come back");
}

void doubles(unsigned char const *data, std::size_t size) {
  if (size < 8) return;
  double value;
  std::memcpy(&value, data, 8);
  if (!std::isfinite(value)) return;
  BaseString<unsigned short> const text = quarn::util::doubleToString(value);
  double const back = quarn::util::stringToDouble(text);
  if (std::memcmp(&back, &value, 8) != 0 && !(value == 0 && back == 0)) fail("a double does not come back");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(unsigned char const *data, std::size_t size) {
  if (size < 1) return 0;
  unsigned char const *input = data + 1;
  std::size_t const length = size - 1;
  try {
    switch (data[0] % 5) {
      case 0:
        numbers(input, length);
        break;
      case 1:
        utf16(input, length);
        break;
      case 2:
        utf8(input, length);
        break;
      case 3:
        base64(input, length);
        break;
      default:
        doubles(input, length);
        break;
    }
  } catch (quarn::Exception const &) {
  }
  return 0;
}
