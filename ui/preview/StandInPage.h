// A page for the web view to show: what the links of a configuration lead to is not looked at.
#pragma once

#include <httplib.h>

#include <string>
#include <thread>

namespace quillon::preview {

// Served on this machine only, at every path, as long as the object lives.
class StandInPage {
 public:
  StandInPage();
  ~StandInPage();

  // Ends in a slash.
  std::string address() const { return "http://127.0.0.1:" + std::to_string(port_) + "/"; }

 private:
  httplib::Server server_;
  const int port_;
  std::thread thread_;
};

}  // namespace quillon::preview
