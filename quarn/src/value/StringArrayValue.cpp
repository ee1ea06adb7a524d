// StringArrayValue.cpp - case-blind search and the pool hook of the string array
#include <quarn/value/StringArrayValue.h>

#include "ArrayElement.h"

namespace quarn {

QUARN_DEFINE_VALUE_CLASS(StringArrayValue);

StringArrayValue::~StringArrayValue() = default;

unsigned int StringArrayValue::findNoCase(unsigned short const *text, unsigned int start) const {
  unsigned int count = m_array.getSize();
  for (unsigned int i = start == kNotFound ? 0 : start + 1; i < count; ++i)
    if (StringComparator::equalNoCase(m_array.getBuffer()[i], text)) return i;
  return kNotFound;
}

unsigned int StringArrayValue::getNoCase(unsigned short const *text, unsigned int start) const {
  unsigned int i = findNoCase(text, start);
  if (i == kNotFound) [[unlikely]]
    detail::failNotFound();
  return i;
}

// Shrinking the element container destroys the element strings, so no string
// buffer, large or small, stays with a pooled array: emptying it already
// bounds the memory a pooled string array keeps to its element buffer.
void StringArrayValue::onDeactivate() {
  if (getSize() > kMaxPooledElements)
    clear();
  else
    resize(0);
}

}  // namespace quarn
