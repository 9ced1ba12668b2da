// The configurations that may be published in one world.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "tests/sim/Choices.h"

namespace quillon::sim {

enum class Law { noticeOnly, optIn, optOut };

inline constexpr std::array purposes{1, 2, 3, 4, 5};
// The only purpose that documents bind to tracking.
inline constexpr int trackedPurpose = 5;
// The places that documents tell apart; every other one, and none at all, is somewhere else.
inline constexpr const char* lawfulPlace = "US#CA";

struct Document {
  int version = 1;  // another one in every document of a world
  bool asksAgain = false;
  std::vector<int> listed;
  std::vector<int> essential;
  bool bindsToTracking = false;
  bool hasBanner = true;
  Law law = Law::optIn;
  std::optional<Law> lawInPlace;  // in lawfulPlace, where it is another one
  std::optional<std::string> interval;
  std::vector<int> analytics;  // the purposes behind the analytics signal; none without consent mode
  bool hasPermission = false;
  std::optional<std::vector<int>> signalled;  // what a privacy signal stands for, unless the application says so

  [[nodiscard]] bool lists(int purpose) const;
  [[nodiscard]] bool isEssential(int purpose) const;
  // Whether a privacy signal stands for it; the application may name purposes.
  [[nodiscard]] bool isSignalled(int purpose, const std::optional<std::vector<int>>& named) const;
  [[nodiscard]] std::string json() const;
};

// Documents that differ in all that matters. The last one, newer than all, is for the end.
[[nodiscard]] std::vector<Document> makeDocuments(std::uint64_t seed);

// None, all, or some.
[[nodiscard]] std::vector<int> anyPurposes(Choices& choices);

// After which the banner comes again; a text that says nothing means twelve months.
[[nodiscard]] int monthsOf(const std::string& interval);

// The words that documents and the store have for it.
[[nodiscard]] const char* textOf(Law law);

// The version in a configuration file, which is a document as the SDK writes it.
[[nodiscard]] std::optional<int> versionIn(const std::string& bytes);

}  // namespace quillon::sim
