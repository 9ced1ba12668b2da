// The texts and the journal format of a decision.
#include "core/Json/JsonMapping.h"
#include "core/Json/RawValues.h"
#include "core/Json/Record.h"
#include "quillon/DecisionHistory.h"

namespace quillon {

QUILLON_RAW_VALUES(GivenType, {GivenType::explicitly, "CONSENT_EXPLICIT"}, {GivenType::implicitly, "CONSENT_IMPLICIT"},
                   {GivenType::noAction, "CONSENT_NO_ACTION"});

QUILLON_RAW_VALUES(DecisionCause, {DecisionCause::user, "user"}, {DecisionCause::byDefault, "default"},
                   {DecisionCause::essential, "essential"}, {DecisionCause::trackingStatus, "tracking_status"},
                   {DecisionCause::device, "device"}, {DecisionCause::signal, "signal"},
                   {DecisionCause::removed, "removed"});

QUILLON_RAW_VALUES(UploadOutcome, {UploadOutcome::pending, "pending"}, {UploadOutcome::uploaded, "uploaded"},
                   {UploadOutcome::superseded, "superseded"}, {UploadOutcome::dropped, "dropped"});

QUILLON_RAW_VALUES(HistoryLink, {HistoryLink::intact, "intact"}, {HistoryLink::beforeChain, "before_chain"},
                   {HistoryLink::broken, "broken"});

// Sorted by key: hashes are over the canonical form.
template <>
inline constexpr auto fields<Decision> = std::tuple{
    Field<&Decision::cause>{"cause"},
    Field<&Decision::complianceType>{"compliance_type"},
    Field<&Decision::configurationVersion>{"configuration_version"},
    Field<&Decision::from>{"from"},
    Field<&Decision::givenType>{"given_type"},
    Field<&Decision::language>{"language"},
    Field<&Decision::notice>{"notice"},
    Field<&Decision::permission>{"permission"},
    Field<&Decision::previous>{"previous"},
    Field<&Decision::purposeId>{"purpose_id"},
    Field<&Decision::time>{"time"},
    Field<&Decision::to>{"to"},
};

template const JsonType& jsonType<Decision>();

}  // namespace quillon
