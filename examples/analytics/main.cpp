// Connects an analytics library to consent mode with one function, passed before the first use of the SDK. The library
// here is a stand-in that prints what it may do.
#include <iostream>
#include <map>
#include <string>

#include "quillon/ConsentSDK.h"
#include "quillon/LinuxPlatform.h"

namespace {

// Your analytics library. Called from an SDK thread, after every change of a consent and with every configuration; pass
// the signals on and return.
void setConsent(const std::map<std::string, std::string>& signals) {
  for (const auto& [signal, value] : signals) std::cout << signal << ": " << value << '\n';
  std::cout << std::flush;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::cerr << "usage: " << argv[0] << " SERVER DATA-DIR\n"
              << "SERVER is the address that `quillon-consent serve examples/configuration --port 8080` listens on.\n";
    return 2;
  }
  const std::string server = argv[1];
  if (!quillon::configure({.applicationId = "analytics-example",
                           .dataDirectory = argv[2],
                           .vendorUrl = server,
                           .consentSink = setConsent})) {
    return 1;
  }

  auto& sdk = quillon::ConsentSDK::shared();
  sdk.setup({.appUrl = server, .cdnUrl = server, .tenantId = "demo-tenant", .appId = "news-reader"});
  sdk.settled().wait();  // an application with a main loop would continue, and wait for isReady()'s callback
  std::cout << "-- the user accepts\n" << std::flush;
  sdk.acceptOrReject(true).wait();
  return sdk.getStatus() == quillon::SDKStatus::ready ? 0 : 1;
}
