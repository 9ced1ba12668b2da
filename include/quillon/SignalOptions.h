/// @file
/// Options of the advertising signals: the application's registration, and the mapping of its purposes and components.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace quillon {

/// Options of the Transparency & Consent Framework (Europe).
struct TcfOptions {
  /// The framework's terms that a configured purpose maps to. A framework purpose to which several configured purposes
  /// map has consent when all of them are granted.
  struct Meaning {
    std::vector<int> consent = {};             ///< purposes based on consent, 1 to 24
    std::vector<int> legitimateInterest = {};  ///< purposes based on legitimate interest; never 1 or 3 to 6
    std::vector<int> specialFeatures = {};     ///< 1 to 12

    bool operator==(const Meaning&) const = default;
  };
  /// Keyed by the configuration's purpose_id.
  std::map<std::int64_t, Meaning> purposes = {};
  /// Vendor id by the component's sdk_id in the configuration.
  std::map<std::int64_t, int> vendors = {};
  /// The global vendor list, version 3, as a JSON document. The application supplies it and keeps it up to date.
  std::string vendorList = {};
  /// Country whose law governs the publisher, such as "DE"; "AA" means unknown.
  std::string publisherCountry = "AA";
  /// Set when the application's texts are not the standard ones.
  bool useNonStandardTexts = false;
  /// Set when the publisher's law does not require consent to purpose 1, so it is not asked for.
  bool purposeOneTreatment = false;
  /// Adds the publisher's own consents: the standard purposes, and these configured purposes as custom ones.
  std::optional<std::vector<std::int64_t>> customPurposes = std::nullopt;

  bool operator==(const TcfOptions&) const = default;
};

/// Options of the United States' privacy laws.
struct UsPrivacyOptions {
  /// The modes of the Multi-State Privacy Agreement (MSPA).
  enum class MspaMode {
    notApplicable,
    optOutOption,
    serviceProvider,
  };

  /// Configured purposes under which data is sold, shared, or used for targeted advertising.
  std::vector<std::int64_t> sale = {};
  std::vector<std::int64_t> sharing = {};
  std::vector<std::int64_t> targetedAdvertising = {};
  /// Purposes beyond those disclosed.
  std::vector<std::int64_t> additionalProcessing = {};
  /// Purposes by kind of sensitive data: section prefix, such as "usca", then the kind's number in that section.
  std::map<std::string, std::map<int, std::vector<std::int64_t>>, std::less<>> sensitiveData = {};
  /// Whether the application participates in the MSPA, and in which mode.
  bool mspaCovered = false;
  MspaMode mspaMode = MspaMode::notApplicable;
  /// Uses the national section for all states, as the MSPA allows, instead of the states' sections.
  bool nationalApproach = false;

  bool operator==(const UsPrivacyOptions&) const = default;
};

/// A plain value; fill it with designated initializers in the order given.
struct SignalOptions {
  /// The consent platform's IAB registration number, 2 to 4095. Without one no key is written.
  int cmpId = 0;
  /// Version of the application's consent screens, 0 to 4095.
  int cmpVersion = 1;
  /// Number of the screen on which consent was given, 0 to 63.
  int consentScreen = 1;
  /// Default: no keys for the European framework.
  std::optional<TcfOptions> tcf = std::nullopt;
  /// Default: no keys for the United States.
  std::optional<UsPrivacyOptions> us = std::nullopt;

  bool operator==(const SignalOptions&) const = default;
};

}  // namespace quillon
