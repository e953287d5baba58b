#ifndef TQ_ASN1_CALENDAR_H
#define TQ_ASN1_CALENDAR_H

// GeneralizedTime as DER restricts it further here: exactly YYYYMMDDHHMMSSZ, a real date between
// 1970 and 9999, as a count of seconds since the Unix epoch (X.690 11.7).

#include <cstddef>
#include <cstdint>

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
// follow one linear formula. 719468 days lie between 0000-03-01 and 1970-01-01.
inline constexpr std::uint32_t kEpochDay = 719468;

constexpr std::uint32_t days_from_date(const Date& date) {
  const std::uint32_t year = date.month > 2 ? date.year : date.year - 1;
  const std::uint32_t era_year = year % 400;
  const std::uint32_t month = (date.month + 9) % 12;
  const std::uint32_t year_day = (153 * month + 2) / 5 + date.day - 1;
  const std::uint32_t era_day = era_year * 365 + era_year / 4 - era_year / 100 + year_day;
  return year / 400 * 146097 + era_day - kEpochDay;
}

constexpr Date date_from_days(std::uint32_t days) {
  const std::uint32_t shifted = days + kEpochDay;
  const std::uint32_t era_day = shifted % 146097;
  const std::uint32_t era_year =
      (era_day - era_day / 1460 + era_day / 36524 - era_day / 146096) / 365;
  const std::uint32_t year_day = era_day - (365 * era_year + era_year / 4 - era_year / 100);
  const std::uint32_t month = (5 * year_day + 2) / 153;
  const std::uint32_t day = year_day - (153 * month + 2) / 5 + 1;
  const bool next_year = month >= 10;
  return {shifted / 146097 * 400 + era_year + (next_year ? 1U : 0U),
          next_year ? month - 9 : month + 3, day};
}

constexpr bool is_leap_year(std::uint32_t year) {
  return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

constexpr std::uint32_t days_in_month(std::uint32_t year, std::uint32_t month) {
  if (month == 2) return is_leap_year(year) ? 29 : 28;
  return month == 4 || month == 6 || month == 9 || month == 11 ? 30 : 31;
}

constexpr bool two_digits(const std::uint8_t* text, std::uint32_t& value) {
  const std::uint32_t tens = text[0] - std::uint32_t{'0'};
  const std::uint32_t ones = text[1] - std::uint32_t{'0'};
  value = tens * 10 + ones;
  return tens <= 9 && ones <= 9;
}

constexpr void put_two_digits(std::uint8_t* text, std::uint32_t value) {
  text[0] = static_cast<std::uint8_t>('0' + value / 10);
  text[1] = static_cast<std::uint8_t>('0' + value % 10);
}

// Reads the kTimeLength octets of a GeneralizedTime.
[[nodiscard, gnu::noinline]] constexpr bool parse_time(const std::uint8_t* text,
                                                       std::uint64_t& seconds) {
  std::uint32_t century = 0;
  std::uint32_t year = 0;
  std::uint32_t month = 0;
  std::uint32_t day = 0;
  std::uint32_t hour = 0;
  std::uint32_t minute = 0;
  std::uint32_t second = 0;
  if (!two_digits(text, century) || !two_digits(text + 2, year) || !two_digits(text + 4, month) ||
      !two_digits(text + 6, day) || !two_digits(text + 8, hour) || !two_digits(text + 10, minute) ||
      !two_digits(text + 12, second) || text[14] != 'Z') {
    return false;
  }
  year += century * 100;
  if (year < 1970 || month < 1 || month > 12 || day < 1 || day > days_in_month(year, month) ||
      hour > 23 || minute > 59 || second > 59) {
    return false;
  }
  const std::uint64_t days = days_from_date({year, month, day});
  seconds = ((days * 24 + hour) * 60 + minute) * 60 + second;
  return true;
}

// Writes kTimeLength octets; seconds must not exceed kLastTime.
[[gnu::noinline]] constexpr void format_time(std::uint64_t seconds, std::uint8_t* text) {
  const Date date = date_from_days(static_cast<std::uint32_t>(seconds / kDaySeconds));
  const auto rest = static_cast<std::uint32_t>(seconds % kDaySeconds);
  put_two_digits(text, date.year / 100);
  put_two_digits(text + 2, date.year % 100);
  put_two_digits(text + 4, date.month);
  put_two_digits(text + 6, date.day);
  put_two_digits(text + 8, rest / 3600);
  put_two_digits(text + 10, rest / 60 % 60);
  put_two_digits(text + 12, rest % 60);
  text[14] = 'Z';
}

}  // namespace tq::der

#endif
