#include "core/Network/EndPoints.h"

#include "core/Json/Codec.h"

namespace quillon {

std::string_view rawValue(HttpMethod method) noexcept {
  switch (method) {
    case HttpMethod::get:
      return "GET";
    case HttpMethod::post:
      return "POST";
    case HttpMethod::put:
      return "PUT";
    case HttpMethod::delete_:
      return "delete";
    case HttpMethod::patch:
      return "patch";
    case HttpMethod::head:
      return "head";
  }
  return {};
}

std::string_view rawValue(HeaderParam header) noexcept {
  switch (header) {
    case HeaderParam::contentType:
      return "Content-Type";
    case HeaderParam::accept:
      return "Accept";
    case HeaderParam::authorization:
      return "Authorization";
    case HeaderParam::xAuthToken:
      return "X-Auth-Token";
    case HeaderParam::historyHead:
      return "X-Quillon-History-Head";
    case HeaderParam::receiptKey:
      return "X-Quillon-Receipt-Key";
  }
  return {};
}

std::string_view rawValue(QueryParam) noexcept {
  return "limit";
}

GetCDNEndPoint::GetCDNEndPoint(const ConsentSDKOptions& options, Mode mode, std::string_view languageCode,
                               bool useDefaultFile) {
  pathURL = "consent/mobile_banner/" + options.tenantId + "/" + options.appId + "/";
  pathURL.append(rawValue(mode));
  if (useDefaultFile) {
    pathURL += "/config.json";
  } else {
    pathURL.append("/config_").append(languageCode).append(".json");
  }
}

GetCurrentLocationEndPoint::GetCurrentLocationEndPoint() {
  pathURL = "core/v1/utils/geo/location";
}

PostConsentsEndPoint::PostConsentsEndPoint(std::string accessToken, const PostConsentsRequest& request) {
  httpMethod = HttpMethod::post;
  headerParams = {{HeaderParam::xAuthToken, std::move(accessToken)}};
  pathURL = "vantari/v1/consent/mobile/singleupload";
  body = encode(request);
}

}  // namespace quillon
