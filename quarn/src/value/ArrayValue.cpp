// ArrayValue.cpp - what every typed array does through its element operations: scalar view, text forms, pool hooks
#include <quarn/value/ArrayValue.h>

#include <charconv>

#include <quarn/core/Annotate.h>
#include <quarn/value/StringValue.h>
#include <quarnCore/Exception.h>

namespace quarn {

QUARN_DEFINE_VALUE_CLASS(ArrayValue);

ArrayValue::~ArrayValue() = default;

int ArrayValue::getInteger() const { return getIthInteger(0); }
bool ArrayValue::getBoolean() const { return getIthBoolean(0); }
double ArrayValue::getDouble() const { return getIthDouble(0); }
void ArrayValue::getString(BaseString<unsigned short> &out) const { getIthString(0, out); }

bool ArrayValue::findDouble(double &out) const {
  if (getSize() == 0) return false;
  out = getIthDouble(0);
  return true;
}
bool ArrayValue::findInteger(int &out) const {
  if (getSize() == 0) return false;
  out = getIthInteger(0);
  return true;
}
bool ArrayValue::findBoolean(bool &out) const {
  if (getSize() == 0) return false;
  out = getIthBoolean(0);
  return true;
}
bool ArrayValue::findString(BaseString<unsigned short> &out) const {
  if (getSize() == 0) return false;
  getIthString(0, out);
  return true;
}

void ArrayValue::dump(BaseString<unsigned short> &out, int indent) const {
  auto spaces = [&out](int n) {
    for (int k = 0; k < n; ++k) out.append(static_cast<unsigned short>(' '));
  };
  if (indent < 0) indent = 0;
  unsigned int count = getSize();
  out.resize(0);
  spaces(indent);
  out.appendAscii(getClassTag().getName());
  out.append(static_cast<unsigned short>('['));
  char digits[16];
  *std::to_chars(digits, digits + sizeof digits - 1, count).ptr = 0;
  out.appendAscii(digits);
  out.append(static_cast<unsigned short>(']'));
  BaseString<unsigned short> text;
  for (unsigned int i = 0; i < count; ++i) {
    out.append(static_cast<unsigned short>('\n'));
    spaces(indent + 2);
    getIthString(i, text);
    if (text.isNull())
      out.appendAscii("(null)");
    else
      out.append(text);
  }
}

ClassTag const &ArrayValue::getItemValueType() const {
  throw Exception("getItemValueType() Not implemented for ArrayValue of type '%hs'", getClassTag().getName());
}

int ArrayValue::compare(Value const &) const { throw Exception("Compare not implemented"); }

namespace {

using Units = BaseString<unsigned short>;

bool isBlank(unsigned short u) { return u == ' ' || u == '\r' || u == '\n' || u == '\t' || u == 0xA0; }

/// The first index in [from, end) holding `unit`, or end.
unsigned int findUnit(unsigned short const *s, unsigned int from, unsigned int end, unsigned short unit) {
  while (from < end && s[from] != unit) ++from;
  return from;
}

/// `field` without its leading and trailing blanks.
void trim(Units &field) {
  unsigned short const *s = field.getBuffer();
  unsigned int begin = 0, end = field.getLength();
  while (begin < end && isBlank(s[begin])) ++begin;
  while (end > begin && isBlank(s[end - 1])) --end;
  if (begin != 0 || end != field.getLength()) field.assign(s + begin, end - begin);
}

}  // namespace

// The fields of a delimited text, step by step (each field becomes one
// StringValue handed to appendValue):
//  - quoting is on unless the delimiter is the double quote itself;
//  - from the current place skip blanks (space, CR, LF, TAB, U+00A0); with
//    quoting on, an opening quote is stepped over and marks the field quoted;
//  - at the delimiter or the end of the text the field is empty;
//  - an unquoted field runs to the next delimiter (searched from one place
//    after its first character) or the end;
//  - a quoted field runs to its closing quote, searched from one place after
//    its first character; a quote followed by another is a doubled quote and
//    the search goes on after the pair; without a closing quote the field runs
//    to the end. Doubled quotes become one, and the field ends at the first
//    delimiter at or after the closing quote;
//  - an empty field is skipped when skipEmpty is set; otherwise the field is
//    trimmed of blanks and appended;
//  - the next field starts one place after the end of this one.
// The search from one place after the first character is kept as it is, so
// the text "",b is a single field: ",b.
void ArrayValue::fillFromString(BaseString<unsigned short> const &text, unsigned short delimiter, bool skipEmpty) {
  detail::annotated("ArrayValue", "fillFromString", [&] {
    clear();
    unsigned int const n = text.getLength();
    if (n == 0) return;
    unsigned short const *const s = text.getBuffer();
    constexpr unsigned short kQuote = '"';
    bool const quoting = delimiter != kQuote;
    StringValue field;
    Units &units = field.getString();
    for (unsigned int pos = 0; pos < n;) {
      while (pos < n && isBlank(s[pos])) ++pos;
      bool quoted = false;
      if (quoting && pos < n && s[pos] == kQuote) {
        ++pos;
        quoted = true;
      }
      unsigned int end;
      units.resize(0);
      if (pos >= n || s[pos] == delimiter) {
        end = pos;
      } else if (!quoted) {
        end = findUnit(s, pos + 1, n, delimiter);
        units.assign(s + pos, end - pos);
      } else {
        unsigned int close = findUnit(s, pos + 1, n, kQuote);
        while (close + 1 < n && s[close + 1] == kQuote) close = findUnit(s, close + 2, n, kQuote);
        for (unsigned int k = pos; k < close; ++k) {
          units.append(s[k]);
          if (s[k] == kQuote && k + 1 < close && s[k + 1] == kQuote) ++k;
        }
        end = findUnit(s, close, n, delimiter);
      }
      if (!(units.isEmpty() && skipEmpty)) {
        trim(units);
        appendValue(field);
      }
      pos = end + 1;
    }
  });
}

bool ArrayValue::getIthXMLText(unsigned int i, BaseString<unsigned short> &text,
                               BaseString<unsigned short> &second) const {
  return detail::annotated("ArrayValue", "getIthXMLText", [&] {
    ObjPtr<Value> item;
    getIthValue(i, item);
    return item->getXMLText(text, second);
  });
}

void ArrayValue::appendValueFromXMLText(BaseString<unsigned short> const &text,
                                        BaseString<unsigned short> const &second) {
  detail::annotated("ArrayValue", "appendValueFromXMLText", [&] {
    ObjPtr<Value> item(static_cast<Value *>(Class::getClassInstance(getItemValueType())));
    item->setFromXMLText(text, second);
    appendValue(*item);
  });
}

bool ArrayValue::hasXMLText() const { return false; }

void ArrayValue::onActivate() { resize(0); }

void ArrayValue::onDeactivate() { dropStorageAbove(kMaxPooledElements); }

void ArrayValue::dropStorageAbove(unsigned int limit) {
  if (getSize() > limit) clear();
}

}  // namespace quarn
