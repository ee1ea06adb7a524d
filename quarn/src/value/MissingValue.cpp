// MissingValue.cpp - the missing string of a missing value
#include <quarn/value/MissingValue.h>

namespace quarn {

QUARN_DEFINE_VALUE_CLASS(MissingValue);

MissingValue::MissingValue(NullValue const &other) : Glue(std::in_place, other) {
  if (auto const *missing = other.as<MissingValue>()) m_missing = missing->m_missing;
}

MissingValue::~MissingValue() = default;

MissingValue &MissingValue::operator=(NullValue const &other) {
  if (auto const *missing = other.as<MissingValue>())
    m_missing = missing->m_missing;
  else
    m_missing.setNull();
  return *this;
}

void MissingValue::assignToSameClass(Value &target) const { sameClass(target).m_missing = m_missing; }

int MissingValue::compare(Value const &other) const {
  if (other.getClassTag().getId() != Tag.getId()) return compareClassName(other);
  return m_missing.compare(static_cast<MissingValue const &>(other).m_missing);
}

}  // namespace quarn
