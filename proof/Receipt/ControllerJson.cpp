#include "proof/Receipt/ControllerJson.h"

#include <algorithm>
#include <array>
#include <variant>

#include "proof/Json/UntrustedJson.h"

namespace quillon::proof {
namespace {

namespace json = boost::json;

struct Member {
  std::string_view name;
  std::variant<std::string DataController::*, std::vector<std::string> DataController::*> field;
};

constexpr auto members = std::to_array<Member>({
    {"name", &DataController::name},
    {"identifier", &DataController::identifier},
    {"postal_address", &DataController::postalAddress},
    {"email", &DataController::email},
    {"phone", &DataController::phone},
    {"website", &DataController::website},
    {"legal_basis", &DataController::legalBasis},
    {"jurisdiction", &DataController::jurisdiction},
    {"personal_data", &DataController::personalData},
    {"data_sources", &DataController::dataSources},
    {"processing", &DataController::processing},
    {"storage_locations", &DataController::storageLocations},
    {"processing_locations", &DataController::processingLocations},
    {"retention", &DataController::retention},
    {"validity", &DataController::validity},
    {"withdrawal_address", &DataController::withdrawalAddress},
    {"rights_contact", &DataController::rightsContact},
    {"authority", &DataController::authority},
});

bool take(std::string& field, const json::value& value) {
  if (!value.is_string()) return false;
  field = value.get_string();
  return true;
}

bool take(std::vector<std::string>& field, const json::value& value) {
  if (!value.is_array()) return false;
  return std::ranges::all_of(value.get_array(),
                             [&](const json::value& element) { return take(field.emplace_back(), element); });
}

}  // namespace

std::expected<DataController, std::string> readController(std::string_view text) {
  const auto read = readUntrustedJson(text);
  if (!read) return std::unexpected(read.error());
  const auto* const object = read->if_object();
  if (object == nullptr) return std::unexpected("is no JSON object");
  DataController controller;
  for (const auto& [key, value] : *object) {
    const auto member = std::ranges::find(members, std::string_view(key), &Member::name);
    const auto name = std::string(key);
    if (member == members.end()) return std::unexpected("has no use for the member " + name);
    if (!std::visit([&](const auto field) { return take(controller.*field, value); }, member->field)) {
      return std::unexpected(name + ": expected " + (member->field.index() == 0 ? "a text" : "a list of texts"));
    }
  }
  return controller;
}

}  // namespace quillon::proof
