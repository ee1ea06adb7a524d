// ByteArrayValue.cpp - the Base64 XML text and the pool hook of the byte array
#include <quarn/value/ByteArrayValue.h>

#include <charconv>

#include <quarnCore/Base64.h>

namespace quarn {

QUARN_DEFINE_VALUE_CLASS(ByteArrayValue);

ByteArrayValue::~ByteArrayValue() = default;

bool ByteArrayValue::getXMLText(BaseString<unsigned short> &text, BaseString<unsigned short> &second) const {
  util::Base64::Encode(m_array, text);
  second.resize(0);
  return true;
}

void ByteArrayValue::setFromXMLText(BaseString<unsigned short> const &text, BaseString<unsigned short> const &) {
  util::Base64::Decode(text, m_array);
}

bool ByteArrayValue::hasXMLText() const { return true; }

void ByteArrayValue::onDeactivate() { dropStorageAbove(kMaxPooledBytes); }

bool ByteArrayValue::getAbridgedXMLText(BaseString<unsigned short> &text, BaseString<unsigned short> &second) const {
  unsigned int count = m_array.getSize();
  if (count < kAbridgedBytes) return getXMLText(text, second);
  util::Base64::EncodeRange(m_array, 0, kAbridgedBytes, text);
  char digits[16];
  *std::to_chars(digits, digits + sizeof digits - 1, count).ptr = 0;
  text.appendAscii("... (");
  text.appendAscii(digits);
  text.appendAscii(" bytes)");
  second.resize(0);
  return true;
}

}  // namespace quarn
