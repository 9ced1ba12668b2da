/// @file
/// What an application tells the signals of the advertising trade at set-up: who it is there, and what its purposes and
/// components stand for.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace quillon {

/// For the Transparency & Consent Framework of Europe.
struct TcfOptions {
  /// What a purpose of the configuration stands for in the framework. One of its own purposes that several purposes
  /// stand for is consented to when all of them are granted.
  struct Meaning {
    std::vector<int> consent = {};             ///< purposes on the basis of consent, 1 to 24
    std::vector<int> legitimateInterest = {};  ///< purposes on that of a legitimate interest; never 1 and 3 to 6
    std::vector<int> specialFeatures = {};     ///< 1 to 12

    bool operator==(const Meaning&) const = default;
  };
  /// By the purpose_id of the configuration.
  std::map<std::int64_t, Meaning> purposes = {};
  /// The vendor that a component stands for, by its sdk_id in the configuration.
  std::map<std::int64_t, int> vendors = {};
  /// The global vendor list, version 3: the document, which the application brings and keeps up to date.
  std::string vendorList = {};
  /// Country whose law governs the publisher, such as "DE"; "AA" means unknown.
  std::string publisherCountry = "AA";
  /// The application's texts are not the standard ones.
  bool useNonStandardTexts = false;
  /// Purpose 1 is not asked for, as the publisher's law does not demand it.
  bool purposeOneTreatment = false;
  /// Tells the publisher's own consents, too: the same purposes, and these of the configuration as its custom ones.
  std::optional<std::vector<std::int64_t>> customPurposes = std::nullopt;

  bool operator==(const TcfOptions&) const = default;
};

/// For the laws of the United States.
struct UsPrivacyOptions {
  /// What the Multi-State Privacy Agreement calls its modes.
  enum class MspaMode {
    notApplicable,
    optOutOption,
    serviceProvider,
  };

  /// Purposes of the configuration under which data is sold, shared, or used for targeted advertising.
  std::vector<std::int64_t> sale = {};
  std::vector<std::int64_t> sharing = {};
  std::vector<std::int64_t> targetedAdvertising = {};
  /// Purposes beyond those that were disclosed.
  std::vector<std::int64_t> additionalProcessing = {};
  /// Purposes by kind of sensitive data: the prefix of a section, such as "usca", then the number that its table gives
  /// the kind.
  std::map<std::string, std::map<int, std::vector<std::int64_t>>, std::less<>> sensitiveData = {};
  /// Whether the application takes part in that agreement, and in which mode.
  bool mspaCovered = false;
  MspaMode mspaMode = MspaMode::notApplicable;
  /// Speaks for all states in the national section, as that agreement allows, instead of in those of the states.
  bool nationalApproach = false;

  bool operator==(const UsPrivacyOptions&) const = default;
};

/// A plain value; fill it with designated initializers in the order given.
struct SignalOptions {
  /// The number under which the IAB has registered the consent platform, from 2 to 4095. Without one nothing is
  /// written.
  int cmpId = 0;
  /// The application's own number for its version of the screens, 0 to 4095.
  int cmpVersion = 1;
  /// The application's own number for the screen that asked, 0 to 63.
  int consentScreen = 1;
  /// Without one the framework of Europe is left out.
  std::optional<TcfOptions> tcf = std::nullopt;
  /// Without one the United States are left out.
  std::optional<UsPrivacyOptions> us = std::nullopt;

  bool operator==(const SignalOptions&) const = default;
};

}  // namespace quillon
