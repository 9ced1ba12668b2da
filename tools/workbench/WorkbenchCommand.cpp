#include "tools/workbench/WorkbenchCommand.h"

#include <fcntl.h>
#include <pthread.h>
#include <signal.h>
#include <sys/file.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cerrno>
#include <cstdio>
#include <expected>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>
#include <thread>

#include "tools/serve/ConfigurationFolder.h"
#include "tools/serve/DevelopmentServer.h"
#include "tools/serve/UploadStore.h"
#include "tools/workbench/DraftFolder.h"
#include "tools/workbench/Traffic.h"
#include "tools/workbench/WorkbenchServer.h"

namespace quillon::tools {
namespace {

constexpr auto workbenchFooter = R"(
The first line on standard output is the address of the page, for a browser on this machine; whoever knows it can change
the files in FOLDER. The second one is where applications under development find their configurations and upload to.
FOLDER has the layout that serve knows; drafts lie beside what is published:
    consent/mobile_banner/TENANT/APPLICATION/draft/config.json
    consent/mobile_banner/TENANT/APPLICATION/live/config.json
SIGINT and SIGTERM end the workbench. Nothing is written unless the page is told to save or to publish.)";

struct WorkbenchOptions {
  std::string folder;
  int port = 0;
  int applicationsPort = 0;
};

using Result = std::expected<void, std::string>;

// Locks until the process ends; the lock leaves no file behind.
Result lockFolder(const std::filesystem::path& folder) {
  const int descriptor = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (descriptor < 0) return std::unexpected(folder.string() + ": " + std::generic_category().message(errno));
  if (flock(descriptor, LOCK_EX | LOCK_NB) == 0) return {};
  if (errno == EWOULDBLOCK) return std::unexpected("another workbench is open on " + folder.string());
  return std::unexpected(folder.string() + " cannot be locked: " + std::generic_category().message(errno));
}

Result work(const WorkbenchOptions& options) {
  std::error_code error;
  const auto root = std::filesystem::canonical(options.folder, error);
  if (error) return std::unexpected(options.folder + ": " + error.message());
  if (const auto locked = lockFolder(root); !locked) return locked;

  // Blocked before the first thread starts, so that only the wait below receives the signals.
  sigset_t ending;
  sigemptyset(&ending);
  sigaddset(&ending, SIGINT);
  sigaddset(&ending, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &ending, nullptr);

  const auto uploads = UploadStore::open(":memory:", UploadStore::Access::readWrite);
  if (!uploads) return std::unexpected(uploads.error());
  DraftFolder folder(root);
  Traffic traffic(folder);
  DevelopmentServer development(
      ConfigurationFolder(root), **uploads, {},
      [&traffic](const auto& request, const auto& response) { traffic.add(request, response); });
  const auto applicationsPort = development.bind(options.applicationsPort);
  if (!applicationsPort) return std::unexpected(applicationsPort.error());
  const std::string applications = "http://127.0.0.1:" + std::to_string(*applicationsPort) + "/";
  WorkbenchServer server(folder, traffic, development, applications);
  const auto page = server.bind(options.port);
  if (!page) return std::unexpected(page.error());

  std::jthread serving([&server] { server.run(); });
  std::jthread developing([&development] { development.run(); });
  std::printf("workbench: %s\napplications: %s\n", page->c_str(), applications.c_str());
  std::fflush(stdout);
  int signal = 0;
  sigwait(&ending, &signal);
  server.stop();
  development.stop();
  return {};
}

}  // namespace

void addWorkbenchCommand(CLI::App& app, int& exitCode) {
  const auto options = std::make_shared<WorkbenchOptions>();
  auto* const command =
      app.add_subcommand("workbench", "Page to write, check, see, compare and publish configurations");
  command->footer(workbenchFooter);
  command->add_option("FOLDER", options->folder, "Folder of drafts and published configurations")->required();
  command->add_option("--port", options->port, "Port of the page on 127.0.0.1; 0 takes a free one")
      ->check(CLI::Range(0, 65535))
      ->capture_default_str();
  command
      ->add_option("--applications-port", options->applicationsPort,
                   "Port on 127.0.0.1 for applications; 0 takes a free one")
      ->check(CLI::Range(0, 65535))
      ->capture_default_str();
  command->callback([options, &exitCode] {
    const auto worked = work(*options);
    if (worked) return;
    std::fprintf(stderr, "quillon-consent workbench: %s\n", worked.error().c_str());
    exitCode = 1;
  });
}

}  // namespace quillon::tools
