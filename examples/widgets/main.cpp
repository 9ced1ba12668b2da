// A Qt Widgets application with the SDK's screens over its window.
#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QQuickWindow>
#include <QTextStream>
#include <QTimer>
#include <QVBoxLayout>

#include "quillon/ConsentSDK.h"
#include "quillon/QtQuick.h"

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  const QStringList arguments = QApplication::arguments();
  if (arguments.size() < 3) {
    QTextStream(stderr) << "usage: " << arguments[0] << " SERVER DATA-DIR [--check]\n";
    return 2;
  }
  const std::string server = arguments[1].toStdString();
  if (!quillon::configureQtQuick(
          {.applicationId = "widgets-example", .dataDirectory = arguments[2].toStdString(), .vendorUrl = server})) {
    return 1;
  }
  auto& sdk = quillon::ConsentSDK::shared();
  sdk.setup({.appUrl = server, .cdnUrl = server, .tenantId = "demo-tenant", .appId = "news-reader"});

  QWidget window;
  auto* layout = new QVBoxLayout(&window);
  auto* measuring = new QLabel;
  auto* choices = new QPushButton("Privacy choices");
  layout->addWidget(measuring);
  layout->addWidget(choices);
  QObject::connect(choices, &QPushButton::clicked, [&sdk] { sdk.presentPreferenceCenter(); });
  QTimer refresh;
  QObject::connect(&refresh, &QTimer::timeout, [&] {
    const bool isAllowed = sdk.isAllowed(2);
    measuring->setText(isAllowed ? "Measuring is allowed" : "Measuring is not allowed");
  });
  refresh.start(250);
  window.resize(640, 760);
  window.show();
  sdk.isReady([&sdk](quillon::SDKStatus status) {
    if (status == quillon::SDKStatus::ready) sdk.presentBanner();
  });

  // Exits as soon as the banner is over the window; fails when it does not appear.
  QTimer look;
  if (arguments.contains("--check")) {
    QObject::connect(&look, &QTimer::timeout, [&] {
      for (const QWindow* shown : QGuiApplication::topLevelWindows()) {
        if (qobject_cast<const QQuickWindow*>(shown) && shown->transientParent() == window.windowHandle()) {
          QApplication::exit(0);
        }
      }
    });
    look.start(50);
    QTimer::singleShot(20'000, [] { QApplication::exit(1); });
  }
  return QApplication::exec();
}
