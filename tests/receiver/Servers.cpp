#include "tests/receiver/Servers.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>

#include <algorithm>
#include <boost/asio/ip/tcp.hpp>
#include <cstdlib>
#include <filesystem>
#include <regex>

namespace quillon::test {
namespace {

namespace fs = std::filesystem;

void replaceAll(std::string& text, const std::string& what, const std::string& by) {
  ASSERT_NE(text.find(what), std::string::npos) << what << " is not in nginx.conf any more";
  for (auto at = text.find(what); at != std::string::npos; at = text.find(what, at + by.size())) {
    text.replace(at, what.size(), by);
  }
}

}  // namespace

int freePort() {
  boost::asio::io_context context;
  namespace ip = boost::asio::ip;
  return ip::tcp::acceptor(context, {ip::address_v4::loopback(), 0}).local_endpoint().port();
}

PostgresServer& sharedPostgres() {
  static PostgresServer server;
  return server;
}

ReceiverProcess::ReceiverProcess(const std::string& store, const std::vector<std::string>& options, int port) {
  std::vector<std::string> command{QUILLON_RECEIVER_PROGRAM, "--store", store, "--listen",
                                   "127.0.0.1:" + std::to_string(port)};
  if (std::ranges::find(options, "--tokens") == options.end()) command.emplace_back("--any-token");
  command.insert(command.end(), options.begin(), options.end());
  process_ = std::make_unique<ServerProcess>(command);
  const std::string line = process_->waitForLine("\"listening\"");
  std::smatch found;
  EXPECT_TRUE(std::regex_search(line, found, std::regex("127\\.0\\.0\\.1:([0-9]+)"))) << process_->output();
  if (!found.empty()) port_ = std::stoi(found[1]);
}

bool ReceiverProcess::waitUntilReady() {
  return !process_->waitForLine("\"store opened\"").empty();
}

bool NginxServer::isInstalled() {
  return std::system("command -v nginx openssl >/dev/null") == 0;
}

NginxServer::NginxServer(const std::string& site, int firstReceiver, int secondReceiver, Tls tls)
    : appPort_(freePort()), cdnPort_(freePort()), scheme_(tls == Tls::on ? "https" : "http") {
  const std::string place = folder_.path();
  std::string text = fileBytes(QUILLON_SOURCE "/receiver/deploy/nginx.conf");
  const std::string listen = tls == Tls::on ? " ssl;" : ";";
  replaceAll(text, "/run/quillon-nginx.pid", place + "/nginx.pid");
  replaceAll(text, "error_log /var/log/nginx/error.log warn", "error_log stderr notice");
  replaceAll(text, "/var/log/nginx/quillon.log", place + "/access.log");
  replaceAll(text, "127.0.0.1:8090", "127.0.0.1:" + std::to_string(firstReceiver));
  replaceAll(text, "127.0.0.1:8091", "127.0.0.1:" + std::to_string(secondReceiver));
  replaceAll(text, "/srv/quillon", site);
  replaceAll(text, "/etc/ssl/quillon", place);
  // Two names on one port become two ports of this machine.
  for (const auto& [name, port] : {std::pair("app.example.com", appPort_), std::pair("cdn.example.com", cdnPort_)}) {
    const std::string server = std::string("listen 443 ssl;\n    server_name ") + name;
    replaceAll(text, server, "listen 127.0.0.1:" + std::to_string(port) + listen + "\n    server_name " + name);
  }
  replaceAll(text, "worker_processes auto", "daemon off; worker_processes 2");
  std::string folders;
  for (const auto* kind : {"client_body", "proxy", "fastcgi", "uwsgi", "scgi"}) {
    folders += std::string("  ") + kind + "_temp_path " + place + "/" + kind + ";\n";
  }
  replaceAll(text, "http {\n", "http {\n" + folders);
  setFileBytes(folder_.path() / "nginx.conf", text);
  fs::permissions(folder_.path(), fs::perms(0755));
  const std::string made = outputOf(
      "openssl req -x509 -newkey rsa:2048 -nodes -days 2 -subj /CN=localhost -addext subjectAltName=DNS:localhost "
      "-keyout " +
      place + "/key.pem -out " + place + "/certificate.pem");
  EXPECT_TRUE(made.ends_with("status 0")) << made;
  process_.emplace(std::vector<std::string>{"nginx", "-p", place, "-c", place + "/nginx.conf"});
  EXPECT_NE(process_->waitForLine("start worker processes"), "") << process_->output();
}

std::string NginxServer::accessLog() {
  process_->sendSignal(SIGQUIT);
  EXPECT_EQ(process_->wait(), 0);
  return fileBytes(folder_.path() / "access.log");
}

std::string decisionOf(const receiver::Upload& entry) {
  const auto& decision = entry.decisions.front();
  return decision.item + " " + std::string(textOf(decision.status)) + " " + std::to_string(decision.decidedAt);
}

std::string outputOf(const std::string& command) {
  const TemporaryFolder folder(TemporaryFolder::fastParent());
  const auto file = folder.path() / "output";
  const int status = std::system(("(" + command + ") >" + file.string() + " 2>&1").c_str());
  return fileBytes(file) + "status " + std::to_string(WIFEXITED(status) ? WEXITSTATUS(status) : -1);
}

}  // namespace quillon::test
