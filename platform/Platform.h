// The operating-system services of the consent logic. Each member can be replaced by another implementation; all are
// set except those that may be null.
#pragma once

#include <memory>
#include <string>

#include "AppTracking.h"
#include "Clock.h"
#include "ConsentSink.h"
#include "Console.h"
#include "DesktopSettings.h"
#include "Executors.h"
#include "FileChooser.h"
#include "FileSystem.h"
#include "HostApplication.h"
#include "HttpSession.h"
#include "KeyStore.h"
#include "KeyValueSuite.h"
#include "Locale.h"
#include "NetworkPathMonitor.h"
#include "PermissionSources.h"
#include "PrivacySignals.h"
#include "RandomSource.h"
#include "ReceiptIssuer.h"
#include "ScreenPresenter.h"

namespace quillon {

struct Platform {
  std::shared_ptr<Console> console;
  std::shared_ptr<Clock> clock;
  std::shared_ptr<Executors> executors;
  std::shared_ptr<FileSystem> files;
  std::shared_ptr<KeyValueStore> store;
  std::shared_ptr<HttpSession> http;
  std::shared_ptr<NetworkPathMonitor> network;
  std::shared_ptr<Locale> locale;
  std::shared_ptr<AppTracking> tracking;
  std::shared_ptr<PermissionSources> permissions;
  std::shared_ptr<HostApplication> host;
  std::shared_ptr<RandomSource> random;
  std::shared_ptr<KeyStore> keys;
  std::shared_ptr<ConsentSink> consentSink;  // null: an application without an analytics library
  std::shared_ptr<PrivacySignals> signals;   // null: a device without privacy signals
  std::shared_ptr<DesktopSettings> desktop;  // null: appearance follows the toolkit alone
  std::shared_ptr<ScreenPresenter> screens;  // null: no user interface is configured
  std::shared_ptr<FileChooser> chooser;      // null: no file dialog
  std::shared_ptr<ReceiptIssuer> receipts;   // null: quillon::proof is not linked
  bool areScreensLinked = false;             // a user interface is linked, configured or not

  // Base URL of the location look-up server. Ends in "/".
  std::string vendorUrl = "https://app.quillon.example/";
};

}  // namespace quillon
