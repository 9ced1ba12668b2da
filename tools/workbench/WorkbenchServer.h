// The workbench for its page.
#pragma once

#include <boost/json/object.hpp>
#include <expected>
#include <optional>
#include <string>

#include "tools/preview/WarmPreview.h"
#include "tools/serve/DevelopmentServer.h"
#include "tools/serve/LoopbackServer.h"
#include "tools/workbench/DraftFolder.h"
#include "tools/workbench/Guard.h"
#include "tools/workbench/Traffic.h"

namespace quillon::tools {

// The files of the page, and what it asks for below api/, over HTTP on 127.0.0.1. An answer that is no success is
// {"error"}, with more where the page can do something about it.
class WorkbenchServer {
 public:
  // All must outlive it. `applications` is the address of the development server.
  WorkbenchServer(DraftFolder& folder, Traffic& traffic, DevelopmentServer& development, std::string applications);

  // Binds the port, a free one for 0, and returns the address of the page.
  [[nodiscard]] std::expected<std::string, std::string> bind(int port);
  void run() { server_.run(); }
  void stop() { server_.stop(); }

 private:
  void handle(const httplib::Request& request, httplib::Response& response);
  void answer(const std::string& api, const httplib::Request& request, httplib::Response& response);
  [[nodiscard]] boost::json::object overview() const;
  void create(const httplib::Request& request, httplib::Response& response);
  void read(const httplib::Request& request, httplib::Response& response) const;
  void save(const httplib::Request& request, httplib::Response& response);
  void inspectDocument(const httplib::Request& request, httplib::Response& response) const;
  void draw(const httplib::Request& request, httplib::Response& response);
  void publishDraft(const httplib::Request& request, httplib::Response& response);
  void changeFaults(const httplib::Request& request, httplib::Response& response);
  void tellTraffic(const httplib::Request& request, httplib::Response& response) const;

  DraftFolder& folder_;
  Traffic& traffic_;
  DevelopmentServer& development_;
  const std::string applications_;
  LoopbackServer server_;
  std::optional<Guard> guard_;  // from bind() on
  WarmPreview preview_;
};

}  // namespace quillon::tools
