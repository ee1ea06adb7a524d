// DateTimeText.h - what the date-time value's formatter and parser share
#pragma once

#include <quarnCore/BaseString.h>

#include <cstddef>

namespace quarn::detail::datetime {

using Unit = unsigned short;
using WString = BaseString<Unit>;

inline constexpr Unit kEmpty[1] = {0};

template <std::size_t N>
struct Literal {
  Unit units[N];
  constexpr Literal(char16_t const (&text)[N]) : units{} {
    for (std::size_t i = 0; i < N; ++i) units[i] = static_cast<Unit>(text[i]);
  }
};

inline constexpr Literal kFormatD(u"%m/%d/%y");
inline constexpr Literal kFormatR(u"%H:%M");
inline constexpr Literal kFormatT(u"%H:%M:%S");
inline constexpr Literal kFormatr(u"%I:%M:%S %p");
inline constexpr Literal kDefaultFormat(u"%a %b %e %T %Y");

inline bool isBlank(Unit c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == 0xA0; }
inline Unit fold(Unit c) { return c >= 'a' && c <= 'z' ? static_cast<Unit>(c - 32) : c; }

}  // namespace quarn::detail::datetime
