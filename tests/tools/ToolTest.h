// What tests of the tool begin with.
#pragma once

#include <gtest/gtest.h>

#include <boost/json.hpp>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/ConsentServer.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/World.h"
#include "tests/tools/ToolProcess.h"

namespace quillon::test {

// A running `quillon-consent host`, which is asked in lines of JSON. Its error output goes to the file "log" beside the
// data.
struct HostProcess : ToolProcess {
  // `address` is that of every server that it needs.
  HostProcess(const std::filesystem::path& data, std::string address, const std::vector<std::string>& options)
      : ToolProcess(arguments(data, address, options), data.parent_path() / "log"), url(std::move(address)) {}

  boost::json::object ask(const std::string& line) const {
    writeLine(line);
    return boost::json::parse(readLine().value_or(R"({"error":"no answer"})")).as_object();
  }
  // Sets it up, and waits until loading is over; what it says then.
  boost::json::object setUp() const {
    ask(R"({"op":"setup","tenantId":"t1","appId":"a1","locationCode":"DE","logLevel":"INFO","appUrl":")" + url +
        R"(","cdnUrl":")" + url + "\"}");
    return ask(R"({"op":"waitReady","timeout":10})");
  }

  static std::vector<std::string> arguments(const std::string& data, const std::string& url,
                                            std::vector<std::string> options) {
    options.insert(options.begin(), {"host", "--data-dir", data, "--vendor-url", url});
    return options;
  }

  const std::string url;
};

struct ToolTest : testing::Test {
  std::string file(const std::string& name) const { return folder.path() / name; }
  void write(const std::string& name, const std::string& content) const { setFileBytes(file(name), content); }
  std::string read(const std::string& name) const { return fileBytes(file(name)); }

  const TemporaryFolder folder{TemporaryFolder::fastParent()};
};

// A host with its server, and the store that it leaves.
struct HostedTest : ToolTest {
  HostedTest() { server.serve(validConfiguration()); }

  void start(const std::vector<std::string>& options = {"--clock", "1700000000"}) {
    host.emplace(data, server.url(), options);
  }
  boost::json::object ask(const std::string& line) { return host->ask(line); }
  void decide(const std::string& consent) { ask(R"({"op":"set","purposeId":1,"consent":")" + consent + "\"}"); }
  ToolRun store(std::vector<std::string> operation) const {
    operation.insert(operation.begin(), {"store", "--data-dir", data});
    return runTool(operation);
  }
  // What it prints; it must succeed.
  std::string shown(const std::vector<std::string>& operation) const {
    const auto [status, output, errors] = store(operation);
    EXPECT_EQ(status, 0) << errors;
    return output;
  }

  const std::filesystem::path data = folder.path() / "data";
  ConsentServer server;
  std::optional<HostProcess> host;
};

}  // namespace quillon::test
