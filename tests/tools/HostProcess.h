// A running `quillon-consent host`, which is asked in lines of JSON.
#pragma once

#include <boost/json.hpp>
#include <filesystem>

#include "tests/tools/ToolProcess.h"

namespace quillon::test {

class HostProcess {
 public:
  // `url` is that of every server that it needs. Its error output goes to the file "log" beside the data.
  HostProcess(const std::filesystem::path& data, std::string url, std::vector<std::string> options = {})
      : tool(arguments(data, url, std::move(options)), data.parent_path() / "log"), url_(std::move(url)) {}

  void tell(const std::string& line) const { tool.writeLine(line); }
  boost::json::object hear() const {
    const auto answer = tool.readLine();
    return answer ? boost::json::parse(*answer).as_object() : boost::json::object{{"error", "no answer"}};
  }
  boost::json::object ask(const std::string& line) const {
    tell(line);
    return hear();
  }
  // Sets it up, and waits until loading is over; what it says then.
  boost::json::object setUp() const {
    ask(boost::json::serialize(boost::json::object{{"op", "setup"},
                                                   {"appUrl", url_},
                                                   {"cdnUrl", url_},
                                                   {"tenantId", "t1"},
                                                   {"appId", "a1"},
                                                   {"locationCode", "DE"},
                                                   {"logLevel", "INFO"}}));
    return ask(R"({"op":"waitReady","timeout":10})");
  }

  ToolProcess tool;

 private:
  static std::vector<std::string> arguments(const std::string& data, const std::string& url,
                                            std::vector<std::string> options) {
    options.insert(options.begin(), {"host", "--data-dir", data, "--vendor-url", url});
    return options;
  }

  const std::string url_;
};

}  // namespace quillon::test
