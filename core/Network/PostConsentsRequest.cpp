#include "quillon/PostConsentsRequest.h"

#include "core/Json/JsonMapping.h"
#include "core/Json/Record.h"

namespace quillon {

template <>
inline constexpr auto fields<PurposeConsent> = std::tuple{
    Field<&PurposeConsent::purposeID>{"purpose_id"}, Field<&PurposeConsent::consentStatus>{"consent_status"},
    Field<&PurposeConsent::timestamp>{"timestamp"},  Field<&PurposeConsent::isEssential>{"is_essential"},
    Field<&PurposeConsent::cause>{"cause"},
};

template <>
inline constexpr auto fields<PermissionConsent> = std::tuple{
    Field<&PermissionConsent::permission>{"permission"},
    Field<&PermissionConsent::consentStatus>{"consent_status"},
    Field<&PermissionConsent::timestamp>{"timestamp"},
};

template <>
inline constexpr auto fields<PostConsentsRequest> = std::tuple{
    Field<&PostConsentsRequest::uuid>{"uuid"},
    Field<&PostConsentsRequest::appUUID>{"app_uuid"},
    Field<&PostConsentsRequest::device>{"device"},
    Field<&PostConsentsRequest::implicitConsent>{"implicit_consent"},
    Field<&PostConsentsRequest::version>{"version"},
    Field<&PostConsentsRequest::purposeConsents>{"purpose_consents"},
    Field<&PostConsentsRequest::permissions>{"permissions"},
    Field<&PostConsentsRequest::testingMode>{"is_test_mode"},
    Field<&PostConsentsRequest::adId>{"ad_id"},
    Field<&PostConsentsRequest::bannerInfo>{"banner_info"},
    Constant{"platform", PostConsentsRequest::platform},
    Field<&PostConsentsRequest::sdkVersion>{"sdk_version"},
};

template const JsonType& jsonType<PostConsentsRequest>();

}  // namespace quillon
