// A Qt Quick application with the SDK's screens.
#include <QCommandLineParser>
#include <QDir>
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQuickWindow>
#include <QTextStream>

#include "Tour.h"
#include "quillon/ConsentSDK.h"
#include "quillon/QtQuick.h"
#ifdef WITH_WEB_VIEW
#include "quillon/QtWebEngine.h"
#endif

int main(int argc, char** argv) {
#ifdef WITH_WEB_VIEW
  const bool hasWebView = quillon::initializeQtWebEngine();
#else
  const bool hasWebView = false;
#endif
  QGuiApplication application(argc, argv);
  QGuiApplication::setApplicationName("news-reader");

  QCommandLineParser arguments;
  arguments.addHelpOption();
  arguments.addOption({"server", "Base address of all servers, ending in /.", "url", "http://127.0.0.1:8080/"});
  arguments.addOption({"language", "Language of the consent screens; the desktop's by default.", "code"});
  arguments.addOption({"data", "Folder of the consents; the user's by default.", "folder"});
  arguments.addOption({"tour", "Walk through all screens and leave pictures there.", "folder"});
  arguments.process(application);
  const std::string server = arguments.value("server").toStdString();

  quillon::LinuxOptions platform{.applicationId = "news-reader", .vendorUrl = server};
  if (arguments.isSet("data")) platform.dataDirectory = arguments.value("data").toStdString();
  if (!quillon::configureQtQuick(std::move(platform), {.isMotionReduced = arguments.isSet("tour")})) return 1;

  auto& sdk = quillon::ConsentSDK::shared();
  quillon::ConsentSDKOptions options{
      .appUrl = server, .cdnUrl = server, .tenantId = "demo-tenant", .appId = "news-reader"};
  if (arguments.isSet("language")) options.languageCode = arguments.value("language").toStdString();
  sdk.setup(std::move(options));
  sdk.isReady([&sdk](quillon::SDKStatus status) {
    if (status == quillon::SDKStatus::ready) sdk.presentBanner();
  });

  QQmlApplicationEngine pages;
  quillon::addConsentElements(pages);
  pages.load(QUrl("qrc:/newsreader/Main.qml"));
  if (pages.rootObjects().isEmpty()) return 1;

  if (arguments.isSet("tour")) {
    auto* window = qobject_cast<QQuickWindow*>(pages.rootObjects().first());
    auto* tour = new Tour(window, sdk, arguments.value("tour"), hasWebView);
    tour->setParent(&application);
    QObject::connect(tour, &Tour::finished, &application, [&sdk](const QString& failure) {
      if (!failure.isEmpty()) QTextStream(stderr) << "news reader: " << failure << Qt::endl;
      sdk.settled().wait();  // The answer is being uploaded.
      QCoreApplication::exit(failure.isEmpty() ? 0 : 1);
    });
  }
  return QGuiApplication::exec();
}
