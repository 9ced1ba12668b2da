// The texts of a decision, and its form in the journal.
#include "core/Json/JsonType.h"
#include "core/Json/RawValues.h"
#include "core/Json/Record.h"
#include "quillon/DecisionHistory.h"

namespace quillon {
namespace {

constexpr RawValue<GivenType> kGivenTypes[] = {
    {GivenType::explicitly, "CONSENT_EXPLICIT"},
    {GivenType::implicitly, "CONSENT_IMPLICIT"},
    {GivenType::noAction, "CONSENT_NO_ACTION"},
};

constexpr RawValue<DecisionCause> kCauses[] = {
    {DecisionCause::user, "user"},           {DecisionCause::byDefault, "default"},
    {DecisionCause::essential, "essential"}, {DecisionCause::trackingStatus, "tracking_status"},
    {DecisionCause::device, "device"},       {DecisionCause::removed, "removed"},
};

constexpr RawValue<UploadOutcome> kOutcomes[] = {
    {UploadOutcome::pending, "pending"},
    {UploadOutcome::uploaded, "uploaded"},
    {UploadOutcome::superseded, "superseded"},
    {UploadOutcome::dropped, "dropped"},
};

}  // namespace

std::string_view rawValue(GivenType type) noexcept {
  return textOf<GivenType>(kGivenTypes, type);
}
std::string_view rawValue(DecisionCause cause) noexcept {
  return textOf<DecisionCause>(kCauses, cause);
}
std::string_view rawValue(UploadOutcome outcome) noexcept {
  return textOf<UploadOutcome>(kOutcomes, outcome);
}

template <>
std::optional<GivenType> fromRawValue(std::string_view text) noexcept {
  return caseOf<GivenType>(kGivenTypes, text);
}
template <>
std::optional<DecisionCause> fromRawValue(std::string_view text) noexcept {
  return caseOf<DecisionCause>(kCauses, text);
}
template <>
std::optional<UploadOutcome> fromRawValue(std::string_view text) noexcept {
  return caseOf<UploadOutcome>(kOutcomes, text);
}

template <>
inline constexpr auto fields<Decision> = std::tuple{
    Field<&Decision::time>{"time"},
    Field<&Decision::purposeId>{"purpose_id"},
    Field<&Decision::permission>{"permission"},
    Field<&Decision::from>{"from"},
    Field<&Decision::to>{"to"},
    Field<&Decision::cause>{"cause"},
    Field<&Decision::givenType>{"given_type"},
    Field<&Decision::configurationVersion>{"configuration_version"},
    Field<&Decision::complianceType>{"compliance_type"},
    Field<&Decision::language>{"language"},
};

template const JsonType& jsonType<Decision>();

}  // namespace quillon
