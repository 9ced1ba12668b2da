// quillon-consent, the developer tool. Each sub-command has its own folder.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <string>
#include <vector>

#include "quillon/version.h"
#include "tools/PlainArguments.h"
#include "tools/check-server/CheckServerCommand.h"
#include "tools/diff/DiffCommand.h"
#include "tools/host/HostCommand.h"
#include "tools/init/InitCommand.h"
#include "tools/link/LinkCommand.h"
#include "tools/preview/PreviewCommand.h"
#include "tools/receipt/ReceiptCommand.h"
#include "tools/richtext/RichTextCommand.h"
#include "tools/schema/SchemaCommand.h"
#include "tools/serve/ServeCommand.h"
#include "tools/signals/SignalsCommand.h"
#include "tools/store/StoreCommand.h"
#include "tools/texts/TextsCommand.h"
#include "tools/validate/ValidateCommand.h"
#include "tools/workbench/WorkbenchCommand.h"

int main(int argc, char** argv) {
  CLI::App app("Tools for developers of applications that ask for consent.", "quillon-consent");
  app.require_subcommand(1);
  app.set_version_flag("--version", QUILLON_VERSION);

  int exitCode = 0;
  quillon::tools::addCheckServerCommand(app, exitCode);
  quillon::tools::addDiffCommand(app, exitCode);
  quillon::tools::addHostCommand(app, exitCode);
  quillon::tools::addInitCommand(app, exitCode);
  quillon::tools::addLinkCommand(app, exitCode);
  quillon::tools::addPreviewCommand(app, exitCode);
  quillon::tools::addReceiptCommand(app, exitCode);
  quillon::tools::addRichTextCommand(app, exitCode);
  quillon::tools::addSchemaCommand(app, exitCode);
  quillon::tools::addServeCommand(app, exitCode);
  quillon::tools::addSignalsCommand(app, exitCode);
  quillon::tools::addStoreCommand(app, exitCode);
  quillon::tools::addTextsCommand(app, exitCode);
  quillon::tools::addValidateCommand(app, exitCode);
  quillon::tools::addWorkbenchCommand(app, exitCode);

  std::vector<std::string> arguments(argv + 1, argv + argc);
  // Arguments of these two may have any form.
  if (!arguments.empty() && (arguments[0] == "link" || arguments[0] == "validate")) {
    arguments = quillon::tools::withMarks(std::move(arguments));
  }
  std::ranges::reverse(arguments);  // the parser expects reverse order
  try {
    app.parse(std::move(arguments));
  } catch (const CLI::ParseError& error) {
    return app.exit(error);
  }
  return exitCode;
}
