// A placeholder page for the web view, so that links of a configuration are not loaded.
#pragma once

#include <httplib.h>

#include <string>
#include <thread>

namespace quillon::preview {

// Served on loopback only, at every path, during the object's lifetime.
class PlaceholderPage {
 public:
  PlaceholderPage();
  ~PlaceholderPage();

  // With a trailing slash.
  std::string address() const { return "http://127.0.0.1:" + std::to_string(port_) + "/"; }

 private:
  httplib::Server server_;
  const int port_;
  std::thread thread_;
};

}  // namespace quillon::preview
