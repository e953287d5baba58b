#ifndef TQ_ASN1_CALENDAR_H
#define TQ_ASN1_CALENDAR_H

// GeneralizedTime as DER restricts it further here: exactly YYYYMMDDHHMMSSZ, a real date between
// 1970 and 9999, as a count of seconds since the Unix epoch (X.690 11.7).

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace tq::der {

inline constexpr std::size_t kTimeLength = 15;
inline constexpr std::uint64_t kLastTime = 253402300799;  // 9999-12-31T23:59:59Z
inline constexpr std::uint32_t kDaySeconds = 86400;

struct Date {
  std::uint32_t year;
  std::uint32_t month;
  std::uint32_t day;
};

// Years are counted from March, so that the leap day is the last of its year and month lengths
// follow one linear formula. 719468 days lie between 0000-03-01 and 1970-01-01, 146097 days in 400
// years and 1461 in four.
inline constexpr std::uint32_t kEpochDay = 719468;

constexpr std::uint32_t days_from_date(const Date& date) {
  const bool before_march = date.month < 3;
  const std::uint32_t year = date.year - (before_march ? 1 : 0);
  const std::uint32_t month = date.month + (before_march ? 12 : 0) - 3;
  const std::uint32_t century = year / 100;
  return year * 365 + year / 4 - century + century / 4 + (153 * month + 2) / 5 + date.day - 1 -
         kEpochDay;
}

constexpr Date date_from_days(std::uint32_t days) {
  const std::uint32_t shifted = 4 * (days + kEpochDay) + 3;
  const std::uint32_t century = shifted / 146097;
  const std::uint32_t century_day = shifted % 146097 | 3;
  const std::uint32_t year = 100 * century + century_day / 1461;
  const std::uint32_t year_day = century_day % 1461 / 4;
  const std::uint32_t month = (5 * year_day + 2) / 153;
  const std::uint32_t day = year_day - (153 * month + 2) / 5 + 1;
  const bool next_year = month >= 10;
  return {year + (next_year ? 1 : 0), month + 3 - (next_year ? 12 : 0), day};
}

constexpr bool is_leap_year(std::uint32_t year) {
  return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

constexpr std::uint32_t days_in_month(std::uint32_t year, std::uint32_t month) {
  if (month == 2) return is_leap_year(year) ? 29 : 28;
  return month == 4 || month == 6 || month == 9 || month == 11 ? 30 : 31;
}

// Eight digits at a time, as one word whose lowest octet is the first; four numbers of two digits
// lie in the lanes of 16 bits of another word.
static_assert(std::endian::native == std::endian::little);

inline std::uint64_t load_digits(const std::uint8_t* text) {
  std::uint64_t word = 0;
  std::memcpy(&word, text, sizeof word);
  return word;
}

inline void store_digits(std::uint64_t word, std::uint8_t* text) {
  std::memcpy(text, &word, sizeof word);
}

inline constexpr std::uint64_t kEachOctet = 0x0101010101010101;
inline constexpr std::uint64_t kEachLane = 0x0001000100010001;

constexpr bool read_pairs(std::uint64_t digits, std::uint64_t& pairs) {
  const std::uint64_t values = digits ^ kEachOctet * '0';
  // A value above 9 reaches the top bit of its octet, unless it has it already.
  if (((values + kEachOctet * (0x7F - 9)) & kEachOctet * 0x80) != 0 ||
      (values & kEachOctet * 0x80) != 0) {
    return false;
  }
  pairs = (values * 10 + (values >> 8)) & kEachLane * 0xFF;
  return true;
}

constexpr std::uint64_t write_pairs(std::uint64_t pairs) {
  const std::uint64_t tens = (pairs * 103 >> 10) & kEachLane * 0xF;  // right for all below 100
  return kEachOctet * '0' + (tens | (pairs - tens * 10) << 8);
}

constexpr std::uint32_t pair(std::uint64_t pairs, int lane) { return pairs >> (16 * lane) & 0xFF; }

constexpr std::uint64_t lanes(std::uint32_t first, std::uint32_t second, std::uint32_t third,
                              std::uint32_t fourth) {
  return first | second << 16 | std::uint64_t{third | fourth << 16} << 32;
}

// Reads the kTimeLength octets of a GeneralizedTime.
[[nodiscard, gnu::noinline]] inline bool parse_time(const std::uint8_t* text,
                                                    std::uint64_t& seconds) {
  const std::uint64_t behind_date = load_digits(text + 7) >> 8;  // without the date's last digit
  constexpr std::uint64_t kZone = std::uint64_t{'Z'} << 48;
  std::uint64_t date = 0;
  std::uint64_t time = 0;
  if (behind_date >> 48 != 'Z' || !read_pairs(load_digits(text), date) ||
      !read_pairs((behind_date ^ kZone) | std::uint64_t{'0' | '0' << 8} << 48, time)) {
    return false;
  }
  const std::uint32_t year = pair(date, 0) * 100 + pair(date, 1);
  const std::uint32_t month = pair(date, 2);
  const std::uint32_t day = pair(date, 3);
  const std::uint32_t hour = pair(time, 0);
  const std::uint32_t minute = pair(time, 1);
  const std::uint32_t second = pair(time, 2);
  if (year < 1970 || month < 1 || month > 12 || day < 1 ||
      (day > 28 && day > days_in_month(year, month)) || hour > 23 || minute > 59 || second > 59) {
    return false;
  }
  const std::uint64_t days = days_from_date({year, month, day});
  seconds = ((days * 24 + hour) * 60 + minute) * 60 + second;
  return true;
}

// Writes kTimeLength octets; seconds must not exceed kLastTime.
[[gnu::noinline]] inline void format_time(std::uint64_t seconds, std::uint8_t* text) {
  const Date date = date_from_days(static_cast<std::uint32_t>(seconds / kDaySeconds));
  const auto rest = static_cast<std::uint32_t>(seconds % kDaySeconds);
  const std::uint32_t minutes = rest / 60;
  const std::uint64_t day =
      write_pairs(lanes(date.year / 100, date.year % 100, date.month, date.day));
  const std::uint64_t time = write_pairs(lanes(minutes / 60, minutes % 60, rest % 60, 0));
  store_digits(day, text);
  // The two words overlap by the date's last digit.
  store_digits(day >> 56 | (time << 16 >> 8) | std::uint64_t{'Z'} << 56, text + 7);
}

}  // namespace tq::der

#endif
