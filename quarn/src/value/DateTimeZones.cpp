// DateTimeZones.cpp - the 217 time-zone rows of DateTimeValue and the search by name
//
// Rows 0-66 are abbreviations, 67-141 Windows standard-time names and
// 142-216 the matching daylight-time names (75 rows on). Partner rows point at
// each other through their steps. The day offset of a row is the magnitude of
// its hhmm offset, in days.
#include <quarn/value/DateTimeValue.h>
#include <quarnCore/Exception.h>

#include <array>
#include <utility>

namespace quarn {

namespace {

constexpr double dayOffsetOf(int hhmm) {
  int h = hhmm / 100, m = hhmm % 100;
  double value = m / 60.0 + h;
  if (hhmm < 0) value = -value;
  return value * (1.0 / 24);
}

struct Row {
  char const *name;
  int toStandard, toDaylight, rule, hhmm;
};

// name, step to standard row, step to daylight row, daylight rule, hhmm
constexpr Row kRows[] = {
    {"IDL", 0, 0, 0, -1200},  // 0
    {"IDLW", 0, 0, 0, -1200},  // 1
    {"BT", 0, 4, 1, -1100},  // 2
    {"NT", 0, 0, 1, -1100},  // 3
    {"HST", 0, 5, 1, -1000},  // 4
    {"CAT", 0, 0, 1, -1000},  // 5
    {"BDT", -4, 0, 1, -1000},  // 6
    {"AHST", 0, 0, 1, -1000},  // 7
    {"YST", 0, 3, 1, -900},  // 8
    {"HDT", -5, 0, 1, -900},  // 9
    {"PST", 0, 3, 1, -800},  // 10
    {"YDT", -3, 0, 1, -800},  // 11
    {"MST", 0, 3, 1, -700},  // 12
    {"PDT", -3, 0, 1, -700},  // 13
    {"CST", 0, 3, 1, -600},  // 14
    {"MDT", -3, 0, 1, -600},  // 15
    {"EST", 0, 3, 1, -500},  // 16
    {"CDT", -3, 0, 1, -500},  // 17
    {"AST", 0, 3, 1, -400},  // 18
    {"EDT", -3, 0, 1, -400},  // 19
    {"NST", 0, 0, 1, -330},  // 20
    {"ADT", -3, 0, 1, -300},  // 21
    {"BST", 0, 0, 0, -300},  // 22
    {"GST", 0, 0, 0, -300},  // 23
    {"AT", 0, 0, 0, -200},  // 24
    {"WAT", 0, 0, 0, -100},  // 25
    {"GMT", 0, 0, 0, 0},  // 26
    {"WET", 0, 4, 2, 0},  // 27
    {"UTC", 0, 0, 0, 0},  // 28
    {"UT", 0, 0, 0, 0},  // 29
    {"CET", 0, 0, 2, 100},  // 30
    {"BST", -4, 0, 2, 100},  // 31
    {"MET", 0, 5, 2, 100},  // 32
    {"MEWT", 0, 0, 2, 100},  // 33
    {"SWT", 0, 0, 2, 100},  // 34
    {"FWT", 0, 3, 2, 100},  // 35
    {"EET", 0, 0, 2, 200},  // 36
    {"MEST", -5, 0, 2, 200},  // 37
    {"FST", -3, 0, 2, 200},  // 38
    {"BT", 0, 0, 0, 300},  // 39
    {"IT", 0, 0, 0, 330},  // 40
    {"ZP4", 0, 0, 0, 400},  // 41
    {"ZP5", 0, 0, 0, 500},  // 42
    {"IST", 0, 0, 0, 530},  // 43
    {"ZP6", 0, 0, 0, 600},  // 44
    {"NST", 0, 0, 0, 630},  // 45
    {"SST", 0, 0, 0, 700},  // 46
    {"WAST", 0, 5, 0, 700},  // 47
    {"JT", 0, 0, 0, 730},  // 48
    {"CCT", 0, 0, 0, 800},  // 49
    {"WST", 0, 0, 0, 800},  // 50
    {"HST", 0, 0, 0, 800},  // 51
    {"WADT", -5, 0, 0, 800},  // 52
    {"JST", 0, 4, 0, 900},  // 53
    {"KST", 0, 0, 0, 900},  // 54
    {"CAST", 0, 5, 0, 930},  // 55
    {"SAST", 0, 5, 0, 930},  // 56
    {"JDT", -4, 0, 0, 1000},  // 57
    {"GST", 0, 0, 0, 1000},  // 58
    {"EAST", 0, 3, 0, 1000},  // 59
    {"CADT", -5, 0, 0, 1030},  // 60
    {"SADT", -5, 0, 0, 1030},  // 61
    {"EADT", -3, 0, 0, 1100},  // 62
    {"NZT", 0, 0, 0, 1200},  // 63
    {"NZST", 0, 2, 0, 1200},  // 64
    {"IDLE", 0, 0, 0, 1200},  // 65
    {"NZDT", -2, 0, 0, 1300},  // 66
    {"Dateline Standard Time", 0, 75, 0, -1200},  // 67
    {"Samoa Standard Time", 0, 75, 0, -1100},  // 68
    {"Hawaiian Standard Time", 0, 75, 1, -1000},  // 69
    {"Alaskan Standard Time", 0, 75, 1, -1000},  // 70
    {"Pacific Standard Time", 0, 75, 1, -800},  // 71
    {"Mexican Standard Time [La Paz]", 0, 75, 1, -700},  // 72
    {"Mountain Standard Time", 0, 75, 1, -700},  // 73
    {"Mountain Standard Time [Arizona]", 0, 75, 1, -700},  // 74
    {"Central Standard Time", 0, 75, 1, -600},  // 75
    {"Mexico Standard Time", 0, 75, 1, -600},  // 76
    {"Canada Central Standard Time", 0, 75, 1, -600},  // 77
    {"Central America Standard Time", 0, 75, 1, -600},  // 78
    {"Eastern Standard Time", 0, 75, 1, -500},  // 79
    {"Eastern Standard Time [Indiana (East)]", 0, 75, 1, -500},  // 80
    {"SA Pacific Standard Time", 0, 75, 0, -500},  // 81
    {"Atlantic Standard Time", 0, 75, 1, -400},  // 82
    {"SA Western Standard Time", 0, 75, 0, -400},  // 83
    {"Pacific SA Standard Time", 0, 75, 0, -400},  // 84
    {"Newfoundland Standard Time", 0, 75, 1, -330},  // 85
    {"SA Eastern Standard Time", 0, 75, 0, -300},  // 86
    {"E. South America Standard Time", 0, 75, 0, -300},  // 87
    {"Greenland Standard Time", 0, 75, 0, -300},  // 88
    {"Mid-Atlantic Standard Time", 0, 75, 0, -200},  // 89
    {"Azores Standard Time", 0, 75, 0, -100},  // 90
    {"Cape Verde Standard Time", 0, 75, 0, -100},  // 91
    {"Universal Coordinated Time", 0, 75, 0, 0},  // 92
    {"Greenwich Mean Time", 0, 75, 0, 0},  // 93
    {"Romance Standard Time", 0, 75, 2, 100},  // 94
    {"W. Central Africa Standard Time", 0, 75, 0, 100},  // 95
    {"Central European Standard Time", 0, 75, 2, 100},  // 96
    {"Central Europe Standard Time", 0, 75, 2, 100},  // 97
    {"W. Europe Standard Time", 0, 75, 2, 100},  // 98
    {"Egypt Standard Time", 0, 75, 0, 200},  // 99
    {"South Africa Standard Time", 0, 75, 0, 200},  // 100
    {"Israel Standard Time", 0, 75, 0, 200},  // 101
    {"E. Europe Standard Time", 0, 75, 2, 200},  // 102
    {"FLE Standard Time", 0, 75, 2, 200},  // 103
    {"GTB Standard Time", 0, 75, 2, 200},  // 104
    {"Arab Standard Time", 0, 75, 0, 300},  // 105
    {"E. Africa Standard Time", 0, 75, 0, 300},  // 106
    {"Arabic Standard Time", 0, 75, 0, 300},  // 107
    {"Russian Standard Time", 0, 75, 0, 300},  // 108
    {"Iran Standard Time", 0, 75, 0, 330},  // 109
    {"Arabian Standard Time", 0, 75, 0, 400},  // 110
    {"Caucasus Standard Time", 0, 75, 0, 400},  // 111
    {"Afghanistan Standard Time", 0, 75, 0, 400},  // 112
    {"West Asia Standard Time", 0, 75, 0, 500},  // 113
    {"Ekaterinburg Standard Time", 0, 75, 0, 500},  // 114
    {"India Standard Time", 0, 75, 0, 530},  // 115
    {"Nepal Standard Time", 0, 75, 0, 545},  // 116
    {"Central Asia Standard Time", 0, 75, 0, 600},  // 117
    {"Sri Lanka Standard Time", 0, 75, 0, 600},  // 118
    {"N. Central Asia Standard Time", 0, 75, 0, 600},  // 119
    {"Myanmar Standard Time", 0, 75, 0, 630},  // 120
    {"SE Asia Standard Time", 0, 75, 0, 700},  // 121
    {"North Asia Standard Time", 0, 75, 0, 700},  // 122
    {"China Standard Time", 0, 75, 0, 800},  // 123
    {"W. Australia Standard Time", 0, 75, 0, 800},  // 124
    {"Singapore Standard Time", 0, 75, 0, 800},  // 125
    {"Taipei Standard Time", 0, 75, 0, 800},  // 126
    {"North Asia East Standard Time", 0, 75, 0, 800},  // 127
    {"Tokyo Standard Time", 0, 75, 0, 900},  // 128
    {"Korea Standard Time", 0, 75, 0, 900},  // 129
    {"Yakutsk Standard Time", 0, 75, 0, 900},  // 130
    {"AUS Central Standard Time", 0, 75, 0, 930},  // 131
    {"Cen. Australia Standard Time", 0, 75, 0, 930},  // 132
    {"AUS Eastern Standard Time", 0, 75, 0, 1000},  // 133
    {"E. Australia Standard Time", 0, 75, 0, 1000},  // 134
    {"West Pacific Standard Time", 0, 75, 0, 1000},  // 135
    {"Tasmania Standard Time", 0, 75, 0, 1000},  // 136
    {"Vladivostok Standard Time", 0, 75, 0, 1000},  // 137
    {"Central Pacific Standard Time", 0, 75, 0, 1100},  // 138
    {"Fiji Standard Time", 0, 75, 0, 1200},  // 139
    {"New Zealand Standard Time", 0, 75, 0, 1200},  // 140
    {"Tonga Standard Time", 0, 75, 0, 1300},  // 141
    {"Dateline Daylight Time", -75, 0, 0, -1100},  // 142
    {"Samoa Daylight Time", -75, 0, 0, -1000},  // 143
    {"Hawaiian Daylight Time", -75, 0, 1, -900},  // 144
    {"Alaskan Daylight Time", -75, 0, 1, -900},  // 145
    {"Pacific Daylight Time", -75, 0, 1, -700},  // 146
    {"Mexican Daylight Time [La Paz]", -75, 0, 1, -600},  // 147
    {"Mountain Daylight Time", -75, 0, 1, -600},  // 148
    {"Mountain Daylight Time [Arizona]", -75, 0, 1, -600},  // 149
    {"Central Daylight Time", -75, 0, 1, -500},  // 150
    {"Mexico Daylight Time", -75, 0, 1, -500},  // 151
    {"Canada Central Daylight Time", -75, 0, 1, -500},  // 152
    {"Central America Daylight Time", -75, 0, 1, -500},  // 153
    {"Eastern Daylight Time", -75, 0, 1, -400},  // 154
    {"Eastern Daylight Time [Indiana (East)]", -75, 0, 1, -400},  // 155
    {"SA Pacific Daylight Time", -75, 0, 0, -400},  // 156
    {"Atlantic Daylight Time", -75, 0, 1, -300},  // 157
    {"SA Western Daylight Time", -75, 0, 0, -300},  // 158
    {"Pacific SA Daylight Time", -75, 0, 0, -300},  // 159
    {"Newfoundland Daylight Time", -75, 0, 1, -230},  // 160
    {"SA Eastern Daylight Time", -75, 0, 0, -200},  // 161
    {"E. South America Daylight Time", -75, 0, 0, -200},  // 162
    {"Greenland Daylight Time", -75, 0, 0, -200},  // 163
    {"Mid-Atlantic Daylight Time", -75, 0, 0, -100},  // 164
    {"Azores Daylight Time", -75, 0, 0, 0},  // 165
    {"Cape Verde Daylight Time", -75, 0, 0, 0},  // 166
    {"Universal Coordinated Time", -75, 0, 0, 0},  // 167
    {"Greenwich Mean Time", -75, 0, 0, 0},  // 168
    {"Romance Daylight Time", -75, 0, 2, 200},  // 169
    {"W. Central Africa Daylight Time", -75, 0, 0, 200},  // 170
    {"Central European Daylight Time", -75, 0, 2, 200},  // 171
    {"Central Europe Daylight Time", -75, 0, 2, 200},  // 172
    {"W. Europe Daylight Time", -75, 0, 2, 200},  // 173
    {"Egypt Daylight Time", -75, 0, 0, 300},  // 174
    {"South Africa Daylight Time", -75, 0, 0, 300},  // 175
    {"Israel Daylight Time", -75, 0, 0, 300},  // 176
    {"E. Europe Daylight Time", -75, 0, 2, 300},  // 177
    {"FLE Daylight Time", -75, 0, 2, 300},  // 178
    {"GTB Daylight Time", -75, 0, 2, 300},  // 179
    {"Arab Daylight Time", -75, 0, 0, 400},  // 180
    {"E. Africa Daylight Time", -75, 0, 0, 400},  // 181
    {"Arabic Daylight Time", -75, 0, 0, 400},  // 182
    {"Russian Daylight Time", -75, 0, 0, 400},  // 183
    {"Iran Daylight Time", -75, 0, 0, 430},  // 184
    {"Arabian Daylight Time", -75, 0, 0, 500},  // 185
    {"Caucasus Daylight Time", -75, 0, 0, 500},  // 186
    {"Afghanistan Daylight Time", -75, 0, 0, 500},  // 187
    {"West Asia Daylight Time", -75, 0, 0, 600},  // 188
    {"Ekaterinburg Daylight Time", -75, 0, 0, 600},  // 189
    {"India Daylight Time", -75, 0, 0, 630},  // 190
    {"Nepal Daylight Time", -75, 0, 0, 645},  // 191
    {"Central Asia Daylight Time", -75, 0, 0, 700},  // 192
    {"Sri Lanka Daylight Time", -75, 0, 0, 700},  // 193
    {"N. Central Asia Daylight Time", -75, 0, 0, 700},  // 194
    {"Myanmar Daylight Time", -75, 0, 0, 730},  // 195
    {"SE Asia Daylight Time", -75, 0, 0, 800},  // 196
    {"North Asia Daylight Time", -75, 0, 0, 800},  // 197
    {"China Daylight Time", -75, 0, 0, 900},  // 198
    {"W. Australia Daylight Time", -75, 0, 0, 900},  // 199
    {"Singapore Daylight Time", -75, 0, 0, 900},  // 200
    {"Taipei Daylight Time", -75, 0, 0, 900},  // 201
    {"North Asia East Daylight Time", -75, 0, 0, 900},  // 202
    {"Tokyo Daylight Time", -75, 0, 0, 1000},  // 203
    {"Korea Daylight Time", -75, 0, 0, 1000},  // 204
    {"Yakutsk Daylight Time", -75, 0, 0, 1000},  // 205
    {"AUS Central Daylight Time", -75, 0, 0, 1030},  // 206
    {"Cen. Australia Daylight Time", -75, 0, 0, 1030},  // 207
    {"AUS Eastern Daylight Time", -75, 0, 0, 1100},  // 208
    {"E. Australia Daylight Time", -75, 0, 0, 1100},  // 209
    {"West Pacific Daylight Time", -75, 0, 0, 1100},  // 210
    {"Tasmania Daylight Time", -75, 0, 0, 1100},  // 211
    {"Vladivostok Daylight Time", -75, 0, 0, 1100},  // 212
    {"Central Pacific Daylight Time", -75, 0, 0, 1200},  // 213
    {"Fiji Daylight Time", -75, 0, 0, 1300},  // 214
    {"New Zealand Daylight Time", -75, 0, 0, 1300},  // 215
    {"Tonga Daylight Time", -75, 0, 0, 1400},  // 216
};
static_assert(sizeof kRows / sizeof kRows[0] == DateTimeValue::kTimeZoneCount);

template <std::size_t... I>
constexpr auto buildTable(std::index_sequence<I...>) {
  return std::array<DateTimeValue::TimeZoneRow, sizeof...(I)>{DateTimeValue::TimeZoneRow{
      kRows[I].name, kRows[I].toStandard, kRows[I].toDaylight, kRows[I].rule, kRows[I].hhmm,
      dayOffsetOf(kRows[I].hhmm)}...};
}
constexpr auto kTable = buildTable(std::make_index_sequence<DateTimeValue::kTimeZoneCount>());

constexpr unsigned short foldAscii(unsigned int c) {
  return static_cast<unsigned short>(c >= 'a' && c <= 'z' ? c - 32 : c);
}

}  // namespace

DateTimeValue::TimeZoneRow const &DateTimeValue::getTimeZoneRow(int row) {
  if (row < 0 || row >= kTimeZoneCount) [[unlikely]]
    throw InvalidIndexException(row, kTimeZoneCount - 1);
  return kTable[static_cast<std::size_t>(row)];
}

int DateTimeValue::findTimeZone(unsigned short const *name) {
  if (!name) return -1;
  for (int row = 0; row < kTimeZoneCount; ++row) {
    char const *p = kTable[static_cast<std::size_t>(row)].name;
    unsigned short const *q = name;
    while (*p && foldAscii(static_cast<unsigned char>(*p)) == foldAscii(*q)) ++p, ++q;
    if (!*p && !*q) return row;
  }
  return -1;
}

}  // namespace quarn
