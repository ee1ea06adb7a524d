// TextFuzzer.cpp - every value class's XML text (setFromXMLText), and fillFromString of the arrays
//
// First byte: bits 0-4 the class (FuzzTargets.h), bit 5 fillFromString with
// the delimiter ';' (arrays; other classes take the XML text), bit 6 the
// delimiter '"' instead. The rest is the text, two bytes per UTF-16 unit
// (little-endian), so that every unit, paired or not, can occur.
#include "FuzzTargets.h"

extern "C" int LLVMFuzzerTestOneInput(unsigned char const *data, std::size_t size) {
  using namespace quarn;
  if (size < 1) return 0;
  unsigned char const selector = data[0];
  std::vector<unsigned short> units;
  for (std::size_t i = 1; i + 1 < size; i += 2) {
    auto unit = static_cast<unsigned short>(data[i] | data[i + 1] << 8);
    if (unit == 0) break;  // a text ends at its first NUL
    units.push_back(unit);
  }
  units.push_back(0);
  BaseString<unsigned short> const text(units.data());
  ObjPtr<Value> value(fuzz::newValue(selector));
  try {
    auto *array = static_cast<ArrayValue *>(value->findAs(ArrayValue::Tag));
    if (array && (selector & 0x20))
      array->fillFromString(text, selector & 0x40 ? '"' : ';', true);
    else
      value->setFromXMLText(text, BaseString<unsigned short>(""));
  } catch (Exception const &) {
    return 0;
  }
  for (int version : {1, 2}) fuzz::checkRoundTrip(*value, version);
  try {  // the text form of what was read must not fail either
    BaseString<unsigned short> out, extra;
    value->getXMLText(out, extra);
  } catch (Exception const &) {
  }
  return 0;
}
