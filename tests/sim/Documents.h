// The configurations that may be published in a world.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "tests/sim/Choices.h"

namespace quillon::sim {

enum class Law { noticeOnly, optIn, optOut };

inline constexpr std::array purposes{1, 2, 3, 4, 5};
// The only purpose that documents may bind to app tracking.
inline constexpr int trackedPurpose = 5;
// The only location with terms of its own; all others, and an unknown one, get the default.
inline constexpr const char* lawfulPlace = "US#CA";

struct Document {
  int version = 1;  // unique in its world
  bool asksAgain = false;
  std::vector<int> listed;
  std::vector<int> essential;
  bool bindsToTracking = false;
  bool hasBanner = true;
  Law law = Law::optIn;
  std::optional<Law> lawInPlace;  // in lawfulPlace, if different
  std::optional<std::string> interval;
  std::vector<int> analytics;  // the purposes of the analytics signal; empty without consent mode
  bool hasPermission = false;
  std::optional<std::vector<int>> signalled;  // purposes of a privacy signal, unless the application names them

  [[nodiscard]] bool lists(int purpose) const;
  [[nodiscard]] bool isEssential(int purpose) const;
  // Whether a privacy signal refuses the purpose; `named` are the application's purposes, if any.
  [[nodiscard]] bool isSignalled(int purpose, const std::optional<std::vector<int>>& named) const;
  [[nodiscard]] std::string json() const;
};

// Documents that differ in every relevant aspect. The last one is published at the end and has the highest version.
[[nodiscard]] std::vector<Document> makeDocuments(std::uint64_t seed);

// None, all or a random selection.
[[nodiscard]] std::vector<int> anyPurposes(Choices& choices);

// The interval after which the banner reappears; unparsable text means twelve months.
[[nodiscard]] int monthsOf(const std::string& interval);

// The compliance type as documents and the store spell it.
[[nodiscard]] const char* textOf(Law law);

// The version of a configuration file as the SDK writes it.
[[nodiscard]] std::optional<int> versionIn(const std::string& bytes);

}  // namespace quillon::sim
