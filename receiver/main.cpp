// quillon-receiver: accepts devices' consent uploads and stores every decision once.
#include <CLI/CLI.hpp>

#include "receiver/officer/OfficerCommands.h"
#include "receiver/service/ServeCommand.h"

int main(int argc, char** argv) {
  CLI::App app(
      "Takes consent uploads and keeps every decision once, in a SQLite database or on a PostgreSQL server.\n"
      "Answers POST /vantari/v1/consent/mobile/singleupload, GET /health and GET /metrics; docs/receiver.md tells the "
      "rest.",
      "quillon-receiver");
  app.require_subcommand(0, 1);
  int exitCode = 0;
  quillon::receiver::addServeOptions(app, exitCode);
  quillon::receiver::addSubjectCommands(app, exitCode);
  quillon::receiver::addExpireCommand(app, exitCode);
  quillon::receiver::addStatsCommand(app, exitCode);
  CLI11_PARSE(app, argc, argv);
  return exitCode;
}
