/// @file
/// Who processes the data, as the application states it for receipts.
#pragma once

#include <string>
#include <vector>

namespace quillon {

/// What only the application knows of the processing that its users consent to. It stands in receipts as it is given;
/// what is empty is listed there as missing. Addresses are URLs. A plain value; fill it with designated initializers in
/// the order given.
struct DataController {
  /// Legal name.
  std::string name = {};
  /// What identifies the controller: a URL of its own, or its number in a register.
  std::string identifier = {};
  std::string postalAddress = {};
  std::string email = {};
  std::string phone = {};
  std::string website = {};
  /// Legal basis, such as "dpv:Consent", or "eu-gdpr:A6-1-a", with which receipts follow the profile for the GDPR.
  std::string legalBasis = {};
  /// Applicable jurisdiction, such as "loc:EU" or "loc:DE".
  std::string jurisdiction = {};
  /// Kinds of data, such as "pd:EmailAddress".
  std::vector<std::string> personalData = {};
  /// Where the data is from, such as "dpv:DataSubjectDataSource".
  std::vector<std::string> dataSources = {};
  /// What is done with it, such as "dpv:Collect".
  std::vector<std::string> processing = {};
  /// Where it is stored, such as "loc:DE".
  std::vector<std::string> storageLocations = {};
  /// Where it is processed, likewise.
  std::vector<std::string> processingLocations = {};
  /// For how long it is stored, as ISO 8601 writes durations: "P6M".
  std::string retention = {};
  /// For how long a consent is valid, likewise.
  std::string validity = {};
  /// Where a consent is withdrawn, apart from the application itself.
  std::string withdrawalAddress = {};
  /// Where the rights of users are exercised: a URL or an email address.
  std::string rightsContact = {};
  /// The supervisory authority to which users may complain.
  std::string authority = {};

  bool operator==(const DataController&) const = default;
};

}  // namespace quillon
