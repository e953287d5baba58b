/**
 * @file
 * Results of the C++ interface: a value, or why there is none.
 */
#ifndef TQLABEL_DETAIL_RESULT_HPP
#define TQLABEL_DETAIL_RESULT_HPP

#include <cstdint>
#include <cstdlib>
#include <functional>
#include <optional>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>

/** @cond cpp */
namespace tqlabel {

/** Why a call failed: the answers of the C interface, and one of the C++ interface's own. */
enum class Error : std::int32_t {
  kRefused = -1, /**< bytes, label or arguments are not what the call takes, or no memory */
  kNothing = 1,  /**< there is nothing to hand out or to do */
  kTooLong = 2,  /**< an argument does not fit its field; the library was not asked */
};

/** What an error means, as a text for logs. */
[[nodiscard]] constexpr std::string_view message(Error error) noexcept {
  switch (error) {
    case Error::kRefused:
      return "refused: not what the call takes, or no memory";
    case Error::kNothing:
      return "nothing to hand out or to do";
    case Error::kTooLong:
      return "an argument does not fit its field";
  }
  return "unknown error";
}

/**
 * A value or an Error; Result<void> tells success alone. Asking for the one that is not there
 * aborts the program, with exceptions or without.
 */
template <class T>
class [[nodiscard]] Result {
 public:
  /** The type of the value; std::monostate stands for void. */
  using value_type = std::conditional_t<std::is_void_v<T>, std::monostate, T>;

  /** Success without a value. */
  Result() requires std::is_void_v<T> : value_(std::in_place) {}
  /** Success. */
  Result(value_type value) requires(!std::is_void_v<T>) : value_(std::move(value)) {}
  /** Failure. */
  Result(Error error) noexcept : error_(error) {}

  /** Whether there is a value. */
  [[nodiscard]] bool has_value() const noexcept { return value_.has_value(); }
  /** Whether there is a value. */
  explicit operator bool() const noexcept { return has_value(); }
  /** Why there is no value. */
  [[nodiscard]] Error error() const { return has_value() ? fail<Error>() : error_; }

  /** The value. */
  [[nodiscard]] value_type& value() & { return has_value() ? *value_ : fail<value_type&>(); }
  /** The value. */
  [[nodiscard]] const value_type& value() const& {
    return has_value() ? *value_ : fail<const value_type&>();
  }
  /** The value, moved out and not a reference: `for (x : label.recipients().value())` is sound. */
  [[nodiscard]] value_type value() && {
    return has_value() ? *std::move(value_) : fail<value_type>();
  }
  /** The value. */
  [[nodiscard]] value_type& operator*() & { return value(); }
  /** The value. */
  [[nodiscard]] const value_type& operator*() const& { return value(); }
  /** The value, moved out. */
  [[nodiscard]] value_type operator*() && { return std::move(*this).value(); }
  /** A member of the value. */
  [[nodiscard]] value_type* operator->() { return &value(); }
  /** A member of the value. */
  [[nodiscard]] const value_type* operator->() const { return &value(); }
  /** The value, or another one. */
  [[nodiscard]] value_type value_or(value_type other) && {
    return has_value() ? *std::move(value_) : std::move(other);
  }

  /** What @p next, which gives a Result, makes of the value; the error where there is none. */
  template <class Next>
  auto and_then(Next&& next) && {
    if constexpr (std::is_void_v<T>) {
      using Following = std::invoke_result_t<Next>;
      return has_value() ? std::invoke(std::forward<Next>(next)) : Following(error_);
    } else {
      using Following = std::invoke_result_t<Next, T>;
      return has_value() ? std::invoke(std::forward<Next>(next), *std::move(value_))
                         : Following(error_);
    }
  }

 private:
  template <class Never>
  [[noreturn]] static Never fail() {
    std::abort();
  }

  std::optional<value_type> value_;
  Error error_ = Error::kRefused;
};

}  // namespace tqlabel
/** @endcond */

#endif
