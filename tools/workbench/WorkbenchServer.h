// The HTTP server of the workbench's page.
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

// Serves the page's files, and its API below api/, on 127.0.0.1. An error response is {"error"}, with further members
// where the page can act on them.
class WorkbenchServer {
 public:
  // All arguments must outlive the server. `applications` is the development server's URL.
  WorkbenchServer(DraftFolder& folder, Traffic& traffic, DevelopmentServer& development, std::string applications);

  // Binds the port, or a free one for 0, and returns the page's URL.
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
  std::optional<Guard> guard_;  // set by bind()
  WarmPreview preview_;
};

}  // namespace quillon::tools
