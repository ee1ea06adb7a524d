// StringValue.cpp - coercions, order, hash, XML text and payload of the string value
#include <quarn/value/ByteStream.h>
#include <quarn/value/StringValue.h>
#include <quarnCore/TextUtil.h>

#include <cstring>
#include <utility>

#include "SingleElement.h"

namespace quarn {

namespace {
char const *entityFor(unsigned short unit) noexcept {
  switch (unit) {
    case '&':
      return "&amp;";
    case '"':
      return "&quot;";
    case '\'':
      return "&apos;";
    case '>':
      return "&gt;";
    case '<':
      return "&lt;";
    default:
      return nullptr;
  }
}
}  // namespace

QUARN_DEFINE_VALUE_CLASS(StringValue);

StringValue::~StringValue() = default;

unsigned int StringValue::hash() const {
  unsigned int h = 0;
  if (unsigned short const *p = m_text.getBuffer())
    for (; *p; ++p) h = h * 31u + *p;
  return h;
}

void StringValue::serialize(iByteOutputStream &out) const {
  Value::serialize(out);
  out << m_text;
}

void StringValue::deserialize(iByteInputStream &in) {
  Value::deserialize(in);
  // Read in place, so a pooled value reuses its buffer; the string reader
  // leaves the text as it was when the stream fails.
  in >> m_text;
}

int StringValue::getInteger() const { return util::stringToInteger(m_text, nullptr); }
bool StringValue::getBoolean() const { return util::stringToBoolean(m_text, nullptr); }
double StringValue::getDouble() const { return util::stringToDouble(m_text, nullptr); }
void StringValue::getString(BaseString<unsigned short> &out) const { out = m_text; }

void StringValue::getArray(Array<BaseString<unsigned short>> &out) const { detail::singleElement(*this, out); }
void StringValue::getArray(Array<double> &out) const { detail::singleElement(*this, out); }
void StringValue::getArray(Array<int> &out) const {
  // The whole text is a list (of indices, say); a bad item only ends it.
  (void)util::stringToIntegerArray(m_text, out, false);
}
void StringValue::getArray(Array<bool> &out) const { detail::singleElement(*this, out); }

ClassTag StringValue::getArrayValueType() {
  static ClassTag const arrayTag("Marlix.value.StringArrayValue");
  return arrayTag;
}

void StringValue::assignToSameClass(Value &target) const { sameClass(target).m_text = m_text; }

int StringValue::compare(Value const &other) const {
  if (other.getClassTag().getId() != Tag.getId()) return compareClassName(other);
  BaseString<unsigned short> const &theirs = static_cast<StringValue const &>(other).m_text;
  // Equal texts, the common answer, in one block compare; the units decide otherwise.
  unsigned int const length = m_text.getLength();
  if (length == theirs.getLength() && m_text.isNull() == theirs.isNull() &&
      (length == 0 || std::memcmp(m_text.getBuffer(), theirs.getBuffer(), sizeof(unsigned short) * length) == 0))
    return 0;
  return m_text.compare(theirs);
}

bool StringValue::getXMLText(BaseString<unsigned short> &text, BaseString<unsigned short> &extra) const {
  // One pass gives what replacing &, ", ', >, < in turn gives: no entity
  // written here contains any of the later characters.
  BaseString<unsigned short> escaped;
  if (!m_text.isNull()) escaped.reserve(m_text.getLength());
  for (unsigned int i = 0; i < m_text.getLength(); ++i) {
    unsigned short unit = m_text.getBuffer()[i];
    if (char const *entity = entityFor(unit))
      escaped.appendAscii(entity);
    else
      escaped.append(unit);
  }
  text = std::move(escaped);
  extra.resize(0);
  return true;
}

void StringValue::setFromXMLText(BaseString<unsigned short> const &text, BaseString<unsigned short> const &) {
  m_text = text;
}

void StringValue::clear() { m_text.empty(); }

void StringValue::onDeactivate() {
  if (m_text.getCapacity() > kMaxPooledCapacity) m_text.setNull();
}

void StringValue::attachString(BaseString<unsigned short> &text) { m_text.attach(text); }

}  // namespace quarn
