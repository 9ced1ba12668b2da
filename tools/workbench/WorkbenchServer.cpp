#include "tools/workbench/WorkbenchServer.h"

#include <algorithm>
#include <boost/json/parse.hpp>
#include <boost/json/serialize.hpp>
#include <charconv>
#include <string_view>

#include "tools/FileContent.h"
#include "tools/JsonLayout.h"
#include "tools/document/Symbols.h"
#include "tools/init/NewConfiguration.h"
#include "tools/workbench/Inspection.h"
#include "tools/workbench/Page.h"
#include "tools/workbench/Publication.h"
#include "ui/Common/Labels/Languages.h"

namespace quillon::tools {
namespace {

namespace json = boost::json;

constexpr auto jsonType = "application/json";
// A document as a JSON string may take twice its size, and some more.
constexpr std::size_t largestBody = 2 * largestDocument + (1u << 20);

void send(httplib::Response& response, const json::value& value, int status = 200) {
  response.status = status;
  response.set_content(json::serialize(value), jsonType);
}

void refuse(httplib::Response& response, int status, std::string_view error) {
  send(response, json::object{{"error", error}}, status);
}

void refuse(httplib::Response& response, const DraftFolder::Failure& failure) {
  refuse(response, failure.isConflict ? 412 : 500, failure.text);
}

std::string_view typeOfFile(std::string_view name) {
  if (name.ends_with(".js")) return "text/javascript; charset=utf-8";
  if (name.ends_with(".css")) return "text/css; charset=utf-8";
  return "text/html; charset=utf-8";
}

DocumentName nameIn(const httplib::Request& request) {
  return {request.get_param_value("tenant"), request.get_param_value("application"), request.get_param_value("file")};
}

json::object toJson(const DocumentName& name) {
  return {{"tenant", name.tenant}, {"application", name.application}, {"file", name.file}};
}

json::object toJson(const StoredDocument& stored) {
  return {{"text", stored.text}, {"tag", stored.tag}};
}

json::array toJson(const std::vector<std::string>& texts) {
  json::array all;
  for (const auto& text : texts) all.push_back(json::value(text));
  return all;
}

// The body's members; empty if it is not a JSON object.
json::object bodyOf(const httplib::Request& request) {
  boost::system::error_code error;
  json::value body = json::parse(request.body, error, {}, {.max_depth = 32});
  return !error && body.is_object() ? std::move(body.get_object()) : json::object();
}

std::string textOf(const json::object& object, std::string_view key) {
  const auto* value = object.if_contains(key);
  return value && value->is_string() ? std::string(value->get_string()) : std::string();
}

std::vector<std::string> textsOf(const json::object& object, std::string_view key) {
  std::vector<std::string> texts;
  const auto* value = object.if_contains(key);
  if (!value || !value->is_array()) return texts;
  for (const json::value& text : value->get_array()) {
    if (text.is_string() && !text.get_string().empty()) texts.emplace_back(text.get_string());
  }
  return texts;
}

NewConfiguration wishesIn(const json::object& body) {
  NewConfiguration wishes{.name = textOf(body, "name"),
                          .token = textOf(body, "token"),
                          .privacyNotice = textOf(body, "privacyNotice"),
                          .languages = textsOf(body, "languages"),
                          .purposes = textsOf(body, "purposes"),
                          .permissions = textsOf(body, "permissions"),
                          .places = {{"default", textOf(body, "elsewhere")}}};
  for (const auto& [key, type] : {std::pair{"noticeOnly", "notice-only"}, {"optOut", "opt-out"}, {"optIn", "opt-in"}}) {
    for (const auto& region : textsOf(body, key)) {
      for (const auto& place : placesOf(region)) wishes.places[place] = type;
    }
  }
  return wishes;
}

// The built-in labels by language, in the order of the keys.
json::object ownLabels() {
  json::object languages;
  for (const auto& language : labelLanguages()) {
    json::array texts;
    for (const auto text : language.texts) texts.push_back(json::value(text));
    languages[language.code] = std::move(texts);
  }
  json::array keys;
  for (const auto key : labelKeys) keys.push_back(json::value(key));
  return {{"keys", std::move(keys)}, {"languages", std::move(languages)}};
}

}  // namespace

WorkbenchServer::WorkbenchServer(DraftFolder& folder, Traffic& traffic, DevelopmentServer& development,
                                 std::string applications)
    : folder_(folder), traffic_(traffic), development_(development), applications_(std::move(applications)) {
  auto& http = server_.http();
  const auto handler = [this](const auto& request, auto& response) { handle(request, response); };
  http.Get(".*", handler);
  http.Put(".*", handler);
  http.Post(".*", handler);
  http.set_payload_max_length(largestBody);
  http.set_error_handler([](const httplib::Request&, httplib::Response& response) {
    if (!response.body.empty()) return;
    Guard::protect(response);
    refuse(response, response.status, response.status == 413 ? "the document is larger than 32 MiB" : "refused");
  });
}

std::expected<std::string, std::string> WorkbenchServer::bind(int port) {
  const auto bound = server_.bind(port);
  if (!bound) return std::unexpected(bound.error());
  const std::string token = Guard::newToken();
  guard_.emplace(*bound, token);
  return "http://127.0.0.1:" + std::to_string(*bound) + "/" + token + "/";
}

void WorkbenchServer::handle(const httplib::Request& request, httplib::Response& response) {
  Guard::protect(response);
  const auto path = guard_->admitted(request);
  if (!path) return refuse(response, path.error().status, path.error().text);
  if (path->starts_with("api/")) return answer(path->substr(4), request, response);
  const std::string name = path->empty() ? "index.html" : *path;
  const auto content = request.method == "GET" ? pageFile(name) : std::nullopt;
  if (!content) return refuse(response, 404, "not found");
  response.set_content(content->data(), content->size(), std::string(typeOfFile(name)));
}

void WorkbenchServer::answer(const std::string& api, const httplib::Request& request, httplib::Response& response) {
  const std::string asked = request.method + " " + api;
  if (asked == "GET overview") return send(response, overview());
  if (asked == "GET labels") return send(response, ownLabels());
  if (asked == "GET document") return read(request, response);
  if (asked == "GET traffic") return tellTraffic(request, response);
  if (asked == "PUT document") return save(request, response);
  if (asked == "PUT faults") return changeFaults(request, response);
  if (asked == "POST create") return create(request, response);
  if (asked == "POST inspect") return inspectDocument(request, response);
  if (asked == "POST picture") return draw(request, response);
  if (asked == "POST publish") return publishDraft(request, response);
  refuse(response, 404, "not found");
}

json::object WorkbenchServer::overview() const {
  json::array documents;
  for (const auto& entry : folder_.list()) {
    auto document = toJson(entry.name);
    document["isDraft"] = entry.isDraft;
    document["isLive"] = entry.isLive;
    documents.push_back(std::move(document));
  }
  json::array permissions;
  for (const auto permission : knownPermissions()) permissions.push_back(json::value(permission));
  return {{"applications", applications_},
          {"documents", std::move(documents)},
          {"permissions", std::move(permissions)},
          {"purposes", toJson(templatePurposes())},
          {"languages", toJson(templateLanguages())}};
}

void WorkbenchServer::create(const httplib::Request& request, httplib::Response& response) {
  const json::object body = bodyOf(request);
  const DocumentName name{textOf(body, "tenant"), textOf(body, "application"), "config.json"};
  const auto live = folder_.read(name, Channel::live);
  if (!live) return refuse(response, 422, live.error());
  const auto document = documentOf(wishesIn(body));
  if (!document) return refuse(response, 422, document.error());
  const auto written = folder_.write(name, Channel::draft, laidOut(*document) + '\n', {});
  if (*live || (!written && written.error().isConflict)) {
    return refuse(response, 409, "the application has a configuration already");
  }
  if (!written) return refuse(response, written.error());
  send(response, toJson(name), 201);
}

void WorkbenchServer::read(const httplib::Request& request, httplib::Response& response) const {
  json::object result;
  for (const auto& [key, channel] : {std::pair{"draft", Channel::draft}, {"live", Channel::live}}) {
    const auto stored = folder_.read(nameIn(request), channel);
    if (!stored) return refuse(response, 422, stored.error());
    if (!*stored) continue;
    // A poll for changes needs no texts.
    result[key] = request.has_param("tags") ? json::object{{"tag", (*stored)->tag}} : toJson(**stored);
  }
  send(response, result);
}

void WorkbenchServer::save(const httplib::Request& request, httplib::Response& response) {
  const DocumentName name = nameIn(request);
  const auto written = folder_.write(name, Channel::draft, request.body, request.get_header_value("If-Match"));
  if (written) return send(response, json::object{{"tag", *written}});
  if (!written.error().isConflict) return refuse(response, written.error());
  json::object conflict{{"error", written.error().text}};
  const auto current = folder_.read(name, Channel::draft);
  if (current && *current) conflict["draft"] = toJson(**current);
  send(response, conflict, 412);
}

void WorkbenchServer::inspectDocument(const httplib::Request& request, httplib::Response& response) const {
  const json::object body = bodyOf(request);
  std::string text = textOf(body, "text");
  const auto* changes = body.if_contains("changes");
  const bool isChanged = changes && changes->is_array() && !changes->get_array().empty();
  if (isChanged) {
    auto result = changed(std::move(text), changes->get_array());
    if (!result) return refuse(response, 422, result.error());
    text = *std::move(result);
  }
  const auto live = folder_.read(nameIn(request), Channel::live);
  json::object result = inspect(text, live && *live ? std::optional((*live)->text) : std::nullopt);
  result["isLive"] = live && *live;
  result["liveTag"] = live && *live ? (*live)->tag : std::string();
  if (isChanged) result["text"] = std::move(text);
  send(response, result);
}

void WorkbenchServer::draw(const httplib::Request& request, httplib::Response& response) {
  json::object view;
  for (const auto key : {"screen", "language", "location", "size"}) view[key] = request.get_param_value(key);
  view["dark"] = request.get_param_value("dark") == "true";
  const std::string scale = request.get_param_value("scale");
  double factor = 1;
  std::from_chars(scale.data(), scale.data() + scale.size(), factor);
  view["scale"] = factor;
  if (request.body.size() > largestDocument) return refuse(response, 413, "the document is larger than 32 MiB");
  const auto drawn = preview_.draw(std::move(view), request.body);
  if (!drawn) return refuse(response, 422, drawn.error());
  if (!drawn->answers.empty()) response.set_header("Answers", preview::areAlike(drawn->answers) ? "alike" : "unlike");
  response.set_content(drawn->png, "image/png");
}

void WorkbenchServer::publishDraft(const httplib::Request& request, httplib::Response& response) {
  const json::object body = bodyOf(request);
  const auto* confirmed = body.if_contains("isConfirmed");
  const auto published = publish(folder_, nameIn(request),
                                 {.tag = textOf(body, "tag"),
                                  .liveTag = textOf(body, "liveTag"),
                                  .isConfirmed = confirmed && confirmed->is_bool() && confirmed->get_bool()});
  if (published) {
    return send(response, json::object{{"draft", toJson(published->draft)},
                                       {"version", published->version},
                                       {"isRaised", published->isRaised}});
  }
  const auto& [failure, findings] = published.error();
  if (findings.empty()) return refuse(response, failure);
  send(response, json::object{{"error", failure.text}, {"findings", findings}}, 409);
}

void WorkbenchServer::changeFaults(const httplib::Request& request, httplib::Response& response) {
  const auto faults = development_.changeFaults(request.body);
  if (!faults) return refuse(response, 422, faults.error());
  response.set_content(faults->toJson(), jsonType);
}

void WorkbenchServer::tellTraffic(const httplib::Request& request, httplib::Response& response) const {
  const std::string after = request.get_param_value("after");
  std::int64_t number = 0;
  std::from_chars(after.data(), after.data() + after.size(), number);
  send(response, json::object{{"applications", applications_},
                              {"faults", json::parse(development_.faults().toJson())},
                              {"exchanges", traffic_.after(number)}});
}

}  // namespace quillon::tools
