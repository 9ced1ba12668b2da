/// @file
/// Load states of the screens' view models.
#pragma once

#include <string>
#include <utility>
#include <variant>

namespace quillon {

/// An error with one message for the user.
struct CustomError {
  std::string error;

  /// The message, or "Unexpected Error" if it is empty.
  [[nodiscard]] std::string localizedDescription() const { return error.empty() ? "Unexpected Error" : error; }
  bool operator==(const CustomError&) const = default;
};

/// The state of a load: not requested, loading, a value, or an error. A value type without locking.
template <class Value>
class ConsentSDKResult {
 public:
  static ConsentSDKResult success(Value value) {
    return ConsentSDKResult(State(std::in_place_index<0>, std::move(value)));
  }
  static ConsentSDKResult failure(CustomError error) {
    return ConsentSDKResult(State(std::in_place_index<1>, std::move(error)));
  }
  static ConsentSDKResult none() { return ConsentSDKResult(State(std::in_place_index<2>)); }
  static ConsentSDKResult loading() { return ConsentSDKResult(State(std::in_place_index<3>)); }

  /// The value of a success, else null. Owned by this object.
  [[nodiscard]] const Value* value() const noexcept { return std::get_if<0>(&state_); }
  /// The error of a failure, else null. Owned by this object.
  [[nodiscard]] const CustomError* error() const noexcept { return std::get_if<1>(&state_); }
  [[nodiscard]] bool isNone() const noexcept { return state_.index() == 2; }
  [[nodiscard]] bool isLoading() const noexcept { return state_.index() == 3; }

  bool operator==(const ConsentSDKResult&) const = default;

 private:
  struct None {
    bool operator==(const None&) const = default;
  };
  struct Loading {
    bool operator==(const Loading&) const = default;
  };
  using State = std::variant<Value, CustomError, None, Loading>;
  explicit ConsentSDKResult(State state) : state_(std::move(state)) {}

  State state_;
};

}  // namespace quillon
