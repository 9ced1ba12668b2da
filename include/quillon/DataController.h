/// @file
/// The data controller and its processing, as stated in receipts.
#pragma once

#include <string>
#include <vector>

namespace quillon {

/// Facts about the processing that only the application knows. Receipts contain them unchanged, and list empty members
/// as missing. Addresses are URLs. A plain value; fill it with designated initializers in the order given.
struct DataController {
  /// Legal name.
  std::string name = {};
  /// Identifier: a URL of the controller's own, or its number in a register.
  std::string identifier = {};
  std::string postalAddress = {};
  std::string email = {};
  std::string phone = {};
  std::string website = {};
  /// Legal basis, such as "dpv:Consent"; with "eu-gdpr:A6-1-a" receipts follow the GDPR profile.
  std::string legalBasis = {};
  /// Applicable jurisdiction, such as "loc:EU" or "loc:DE".
  std::string jurisdiction = {};
  /// Categories of personal data, such as "pd:EmailAddress".
  std::vector<std::string> personalData = {};
  /// Sources of the data, such as "dpv:DataSubjectDataSource".
  std::vector<std::string> dataSources = {};
  /// Processing operations, such as "dpv:Collect".
  std::vector<std::string> processing = {};
  /// Locations of storage, such as "loc:DE".
  std::vector<std::string> storageLocations = {};
  /// Locations of processing, likewise.
  std::vector<std::string> processingLocations = {};
  /// Storage period, an ISO 8601 duration such as "P6M".
  std::string retention = {};
  /// Period for which a consent is valid, likewise.
  std::string validity = {};
  /// URL where a consent can be withdrawn, besides the application itself.
  std::string withdrawalAddress = {};
  /// Contact for data-subject requests: a URL or an email address.
  std::string rightsContact = {};
  /// The supervisory authority for complaints.
  std::string authority = {};

  bool operator==(const DataController&) const = default;
};

}  // namespace quillon
