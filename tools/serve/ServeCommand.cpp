#include "tools/serve/ServeCommand.h"

#include <pthread.h>
#include <signal.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <boost/json.hpp>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <thread>

#include "tools/serve/ConfigurationFolder.h"
#include "tools/serve/DevelopmentServer.h"
#include "tools/serve/Faults.h"
#include "tools/serve/UploadStore.h"

namespace quillon::tools {
namespace {

constexpr auto kDescription =
    R"(Serves consent configurations and takes consent uploads, on this machine only (127.0.0.1).

GET /consent/mobile_banner/TENANT/APP/CHANNEL/config_LANGUAGE.json (or config.json, or any other .json file)
    The file of that path under DIR, with an entity tag of its content; a matching If-None-Match gets a 304, a missing
    file a 404. Files are read anew for every request.
GET /core/v1/utils/geo/location
    DIR/location.json, without an entity tag.
POST /vantari/v1/consent/mobile/singleupload
    A consent upload of at most 1 MiB. An incomplete or malformed one gets a 400 and is not kept. Without X-Auth-Token
    the answer is 401; when configurations of that application under DIR carry an access token, it must be one of them.
    Otherwise the upload is kept and answered with --upload-status: 0 accepts it, 1 asks the sender to try again.
POST /control
    Changes the faults of the running server; what is absent stays, "fail":0 ends a failure. Answers with all three:
    curl -d '{"uploadStatus":1,"fail":500,"delay":100}' http://127.0.0.1:PORT/control

The first line on standard output is "listening on http://127.0.0.1:PORT/"; then each request gets one line, such as
"GET /consent/mobile_banner/demo/app/live/config_de.json 304", written before the answer is sent. SIGINT and SIGTERM end
the server after the requests under way.)";

struct ServeOptions {
  std::string folder;
  std::string database;
  std::string uploadsTo;
  int port = 0;
  bool list = false;
  Faults faults;
};

int fail(std::string_view message) {
  std::fprintf(stderr, "quillon-consent serve: %.*s\n", static_cast<int>(message.size()), message.data());
  return 1;
}

// Prints every stored upload as one JSON object per line.
int list(const std::string& database) {
  const auto store = UploadStore::open(database, UploadStore::Access::readOnly);
  if (!store) return fail(store.error());
  const auto printed = (*store)->forEach([](const UploadStore::Upload& upload) -> std::expected<void, std::string> {
    boost::system::error_code error;
    boost::json::value body = boost::json::parse(upload.body, error, {}, {.max_depth = 64});
    if (error) return std::unexpected("upload " + std::to_string(upload.id) + " is not JSON: " + error.message());
    const boost::json::object line{
        {"received", upload.receivedAt}, {"status", upload.status}, {"upload", std::move(body)}};
    std::puts(boost::json::serialize(line).c_str());
    return {};
  });
  if (!printed) return fail(printed.error());
  return std::fflush(stdout) == 0 ? 0 : fail("standard output cannot be written");
}

// Logs the client's target, escaped so that it cannot forge log lines.
void logRequest(const httplib::Request& request, const httplib::Response& response) {
  std::string line = request.method + " " + request.target;
  for (char& c : line) {
    if (c < ' ' || c > '~') c = '?';
  }
  std::printf("%s %d\n", line.c_str(), response.status);
  std::fflush(stdout);
}

int serve(const ServeOptions& options) {
  std::error_code error;
  const auto folder = std::filesystem::canonical(options.folder, error);
  if (error) return fail(options.folder + ": " + error.message());

  // Blocked before the first thread starts, so that only the waiter below receives the signals.
  sigset_t ending;
  sigemptyset(&ending);
  sigaddset(&ending, SIGINT);
  sigaddset(&ending, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &ending, nullptr);

  const auto uploads =
      UploadStore::open(options.database.empty() ? ":memory:" : options.database, UploadStore::Access::readWrite);
  if (!uploads) return fail(uploads.error());

  DevelopmentServer server(ConfigurationFolder(folder), **uploads, options.faults, logRequest, options.uploadsTo);
  const auto port = server.bind(options.port);
  if (!port) return fail(port.error());
  std::printf("listening on http://127.0.0.1:%d/\n", *port);
  std::fflush(stdout);

  std::jthread waiter([&] {
    int signal = 0;
    sigwait(&ending, &signal);
    server.stop();
  });
  server.run();
  kill(getpid(), SIGTERM);  // wakes the waiter when the server has ended by itself; blocked in all other threads
  return server.stopped() ? 0 : fail("the server ended: its socket failed");
}

}  // namespace

void addServeCommand(CLI::App& app, int& exitCode) {
  auto* const command = app.add_subcommand("serve", "Development server for configurations and consent uploads");
  command->footer(kDescription);
  const auto options = std::make_shared<ServeOptions>();
  command->add_option("DIR", options->folder, "Folder whose files are served");
  command->add_option("--port", options->port, "Port on 127.0.0.1; 0 takes a free one")
      ->check(CLI::Range(0, 65535))
      ->capture_default_str();
  command->add_option("--db", options->database, "SQLite file that keeps the uploads; without it memory keeps them");
  command->add_option("--uploads-to", options->uploadsTo,
                      "Pass uploads on to a server of yours, such as http://127.0.0.1:8090, in place of keeping them");
  command->add_flag("--list", options->list,
                    "Print the uploads kept in --db, one JSON object a line (\"received\" in seconds since 1970, the "
                    "\"status\" it was answered with, \"upload\"), and end; also while a server runs");
  command->add_option("--upload-status", options->faults.uploadStatus, "Status in the answer to a valid upload")
      ->check(CLI::Range(Faults::kMinUploadStatus, Faults::kMaxUploadStatus))
      ->capture_default_str();
  command->add_option("--fail", options->faults.fail, "Answer every request with this HTTP status (400 to 599)")
      ->check(CLI::Range(Faults::kMinFail, Faults::kMaxFail));
  command->add_option("--delay", options->faults.delay, "Milliseconds to wait before every answer")
      ->check(CLI::Range(0, Faults::kMaxDelay))
      ->capture_default_str();

  command->callback([options, &exitCode] {
    if (options->list) {
      if (options->database.empty()) throw CLI::ValidationError("--list", "needs --db");
      exitCode = list(options->database);
    } else {
      if (options->folder.empty()) throw CLI::RequiredError("DIR");
      exitCode = serve(*options);
    }
  });
}

}  // namespace quillon::tools
