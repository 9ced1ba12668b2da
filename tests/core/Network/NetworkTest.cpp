#include <gtest/gtest.h>

#include <boost/json.hpp>

#include "core/Network/EndPoints.h"
#include "core/Network/ExchangeText.h"
#include "core/Network/NetworkError.h"
#include "core/Network/RequestBuilder.h"
#include "core/Persistance/UserDefaults/StoreKeys.h"
#include "platform/memory/FixedHostApplication.h"
#include "tests/support/Contains.h"
#include "tests/support/World.h"

namespace quillon::test {
namespace {

using Case = NetworkError::Case;

TEST(NetworkErrorTexts, AreKeptByteForByte) {
  const FixedHostApplication host({.translations = {{"Failed with 404 status code", "Nicht gefunden"}}});
  const std::tuple<NetworkError, const char*, const char*> rows[] = {
      {{Case::invalidPath, "m"}, "Invalid Patherror ocurred (m", "m"},
      {{Case::badUrl, "m"}, "Bad URL error ocurred\nm", "m"},
      {{Case::invalidStatusCode, {}, 503}, "Failed with Status (503)", "Failed with 503 status code"},
      {{Case::invalidStatusCode, {}, 404}, "Failed with Status (404)", "Nicht gefunden"},
      {{Case::decodingError, "m"}, "Failed while Decoding Response.\nm", "m"},
      {{Case::invalidURL, "m"}, "Invalid URL error ocurred.\nm", "m"},
      {{Case::response}, "An unknown error occurred.", "Unexpected Error"}};
  for (const auto& [error, description, localized] : rows) {
    EXPECT_EQ(error.description(), description);
    EXPECT_EQ(error.localizedDescription(host), localized);
  }
}

TEST(Requests, AreBuiltFromEndPointAndBaseAndNeedAnAddress) {
  World world;
  world.store(key::etag, std::string("\"v1\""));
  const auto build = [&](EndPoint endPoint, std::string base) {
    UserDefaultManager store(world.platform, world.sdk->logger());
    return RequestBuilder(std::move(endPoint), std::move(base)).build(store);
  };
  ConsentSDKOptions options = world.options();
  options.tenantId = "a b\r\nX: y";
  EXPECT_EQ(build(GetCDNEndPoint(options, Mode::live, "de", true), "http://h/").error(),
            (NetworkError{Case::invalidURL, "http://h/consent/mobile_banner/a b\r\nX: y/a1/live/config.json"}));
  for (const std::string base : {"", "no address", "http://h h/", "//h/"}) {
    EXPECT_EQ(build(GetCurrentLocationEndPoint(), base).error(), (NetworkError{Case::invalidURL, base}));
  }
  const auto upload = build(PostConsentsEndPoint("token", PostConsentsRequest()), "http://a/").value();
  EXPECT_EQ(upload.url, "http://a/vantari/v1/consent/mobile/singleupload");
  EXPECT_EQ(upload.method, "POST");
  EXPECT_EQ(upload.headers, (HttpHeaders{{"Content-Type", "application/json"},
                                         {"Accept", "*/*"},
                                         {"X-Auth-Token", "token"},
                                         {"If-None-Match", "\"v1\""}}));
  EXPECT_EQ(upload.timeout, std::chrono::seconds(60));
}

// Configuration, location and uploads come from separate servers, which repeat the token they receive.
TEST(AccessToken, GoesToTheApplicationServerAloneAndIntoNoLog) {
  World world;
  ConsentServer application, other;
  const auto document = configurationOfTwoLaws("US");
  world.server.serve(document);
  auto options = world.options();
  options.appUrl = application.url();
  options.locationCode.reset();
  options.logLevel = LogLevel::debug;
  world.start(options);
  EXPECT_EQ(world.server.seen(locationPath).size(), 1u);

  const auto echo = [](const httplib::Request& request) {
    return "you are " + request.get_header_value("X-Auth-Token");
  };
  const ConsentServer::Handler answers[] = {
      [&](const auto&, auto& response) {
        response.set_redirect(other.url() + "vantari/v1/consent/mobile/singleupload", 307);
      },
      [&](const auto& request, auto& response) {
        response.set_header("X-Debug", echo(request));
        json(echo(request), 500)(request, response);
      },
      [&](const auto& request, auto& response) { json(echo(request))(request, response); },
      [&](const auto& request, auto& response) {
        json(R"({"status":1,"message":")" + echo(request) + "\"}")(request, response);
      },
  };
  std::string said;
  const auto listening = world.sdk->listenToUploads([&](const UploadEvent& event) { said += event.message; });
  for (const auto& answer : answers) {
    application.onUpload(answer);
    EXPECT_TRUE(world.sdk->acceptOrReject(true).get());
  }
  world.server.onConfiguration(json(boost::json::serialize(document) + "x", 200));
  world.clock->advance(std::chrono::hours(2));
  world.start(options);
  world.settle();

  for (const auto* server : {&world.server, &application, &other}) {
    for (const auto& request : server->seen()) {
      EXPECT_EQ(request.headers.contains("X-Auth-Token"), server == &application) << request.path;
      EXPECT_FALSE(contains((request.path + request.body), "secret-token"));
    }
  }
  EXPECT_GE(application.seen(uploadPath).size(), std::size(answers));
  EXPECT_TRUE(contains(world.log(), "you are ***"));
  EXPECT_FALSE(contains((world.log() + said), "secret-token"));
  EXPECT_TRUE(contains(said, "you are ***"));
}

TEST(ExchangeTexts, HaveOneFormWithTheTokenMasked) {
  HttpRequest request{"http://h/p", "POST", {{"X-Auth-Token", "secret"}, {"Accept", "*/*"}}, "{}"};
  HttpResponse response{"http://h/p", 500, {{"Etag", "a\"b"}}, "one\ntwo"};
  EXPECT_EQ(exchangeText(request, response),
            "\nURLRequest: {\n  URL: http://h/p\n  HTTP Method: POST\n"
            "  Headers: [\"Accept\": \"*/*\", \"X-Auth-Token\": \"***\"]\n  Body: {}\n}\n"
            "URLResponse: {\n  URL: http://h/p\n  Status Code: 500\n  Headers: [\"Etag\": \"a\"b\"]\n}\n"
            "Data: { one\\ntwo }");
  request = {"http://h/p", "GET", {}, std::nullopt};
  response = {"http://h/p", std::nullopt, {}, "\xff"};
  EXPECT_EQ(exchangeText(request, response),
            "\nURLRequest: {\n  URL: http://h/p\n  HTTP Method: GET\n  Headers: [:]\n  Body: nil\n}\n"
            "URLResponse: {\n  URL: http://h/p\n  Status Code: -999\n  Headers: [:]\n}\nData: { Non-UTF8 data }");
  response.body = R"("x-auth-token":"one\"two","x-auth-token": 5 "x-auth-token":"cut)";
  EXPECT_TRUE(contains(exchangeText(request, response),
                       R"(Data: { "x-auth-token":"***","x-auth-token": 5 "x-auth-token":"*** })"));
  response.body = std::string(1 << 20, 'x');
  EXPECT_LT(exchangeText(request, response).size(), 70'000u);
}

}  // namespace
}  // namespace quillon::test
