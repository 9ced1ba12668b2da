// quillon-consent-preview: shows a screen of a configuration in a window, or writes a picture of one or all screens.
#include <CLI/CLI.hpp>
#include <QGuiApplication>
#include <QImage>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>

#include "ui/preview/Pictures.h"
#include "ui/preview/Preview.h"
#include "ui/preview/Sheet.h"
#ifdef WITH_WEB_VIEW
#include "quillon/QtWebEngine.h"
#endif

namespace quillon::preview {
namespace {

struct PreviewOptions {
  std::string file;
  View view;
  std::string size = "390x844";
  std::string out;
  bool isAll = false;
  bool isOnDemand = false;
};

// The browser must be registered before the application object exists. An engine that can bypass the filter is off by
// default in applications; the preview always enables it.
bool startWebView() {
#ifdef WITH_WEB_VIEW
  return initializeQtWebEngine(UnfilteredConnections::accepted);
#else
  return false;
#endif
}

void addOptions(CLI::App& app, PreviewOptions& options) {
  View& view = options.view;
  app.add_option("file", options.file, "The configuration")->check(CLI::ExistingFile);
  app.add_option("--screen", view.screen, "The screen to show")
      ->check(CLI::IsMember({"banner", "preferences", "permissions", "purpose", "prompt", "web", "blocked"}))
      ->capture_default_str();
  app.add_option("--language", view.language, "The user's language")->capture_default_str();
  app.add_option("--location", view.location, "The user's location, such as DE or US#CA");
  app.add_option("--size", options.size, "Of the window, as WIDTHxHEIGHT")->capture_default_str();
  app.add_flag("--dark", view.isDark, "Dark surroundings");
  app.add_option("--scale", view.scale, "Size of text, as a factor")
      ->check(CLI::Range(0.5, 3.0))
      ->capture_default_str();
  app.add_option("--out", options.out, "Write a PNG picture instead of opening a window");
  app.add_flag("--all", options.isAll, "Write a page (HTML) of every screen, language, theme and banner");
  app.add_flag("--on-demand", options.isOnDemand, "Draw what is asked for on standard input")->group("");
}

int fail(const std::string& what) {
  std::cerr << what << '\n';
  return 1;
}

std::string contentOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

int show(const PreviewOptions& options) {
  const auto& view = options.view;
  const auto presenter = QtScreenPresenter::make(
      {.isDark = view.isDark, .textScale = view.scale, .isMotionReduced = !options.out.empty()});
  Preview preview(view, contentOf(options.file), presenter);
  if (!preview.start()) return fail("The file is no valid configuration; quillon-consent validate tells why.");
  preview.present(view.screen);
  if (options.out.empty()) return QGuiApplication::exec();
  const QImage picture = preview.picture();
  if (picture.isNull()) return fail("The screen does not appear.");
  return picture.save(QString::fromStdString(options.out), "PNG") ? 0 : fail("Cannot write " + options.out);
}

int run(PreviewOptions& options, int argc, char** argv) {
  const auto size = sizeFrom(options.size);
  if (!size) return fail("--size: expected WIDTHxHEIGHT in pixels");
  options.view.size = *size;
  if (options.isAll && options.out.empty()) return fail("--all: --out names the page to write");
  if (options.file.empty() && !options.isOnDemand) return fail("file is required");
  // Pictures need no display.
  if (options.isOnDemand || !options.out.empty()) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QUICK_BACKEND", "software");
  }
  if (!options.isAll && options.view.isWebView() && !startWebView()) {
    return fail("There is no web view: the screens were built without Qt WebEngine.");
  }
  const QGuiApplication application(argc, argv);
  if (options.isOnDemand) return drawPictures();
  if (!options.isAll) return show(options);
  const auto written = writeSheet(contentOf(options.file), options.out, options.view);
  return written ? 0 : fail(written.error());
}

}  // namespace
}  // namespace quillon::preview

int main(int argc, char** argv) {
  CLI::App app("Shows a screen of a consent configuration.", "quillon-consent preview");
  quillon::preview::PreviewOptions options;
  quillon::preview::addOptions(app, options);
  CLI11_PARSE(app, argc, argv);
  return quillon::preview::run(options, argc, argv);
}
