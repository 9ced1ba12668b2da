/// @file
/// A device in memory, on which an application tests its consent flow without a network, a display or waiting.
#pragma once

#include <chrono>
#include <functional>
#include <future>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "quillon/ConsentSDK.h"

namespace quillon::testing {

/// What the SDK asked a server.
struct Request {
  std::string method;
  std::string url;
  std::map<std::string, std::string> headers;
  std::string body;
};

/// What a server answers.
struct Response {
  int status = 200;
  std::string body = {};
};

/// A device with an application on it: its store, files, servers, clock, permissions and screens. Everything lives in
/// memory, and time passes only when the test says so.
///
/// The SDK works on a thread of the device's. Its callbacks come on the thread that calls settle() or advance(), which
/// stands for the application's main loop; futures may be waited for anywhere. All members are thread-safe.
///
/// The device answers as its servers do: the published configuration, no location, and every upload accepted.
///
/// @code
/// quillon::testing::Device device;
/// device.publish(configuration);  // the document that the privacy team publishes
/// auto sdk = device.launch();
/// sdk->setup(device.options());
/// device.settle();
/// assert(sdk->isBannerDue());
/// @endcode
class Device {
 public:
  /// @param now the wall time, by default noon of 1 January 2025 UTC
  explicit Device(std::chrono::sys_seconds now = std::chrono::sys_seconds(std::chrono::seconds(1'735'732'800)));
  /// Every SDK over the device must be gone before, that of services() excepted, which stands still from now on.
  ~Device();
  Device(const Device&) = delete;
  Device& operator=(const Device&) = delete;

  /// @name The application
  /// @{

  /// An SDK over this device, as after a start of the application; destroy it and launch another one to start again
  /// with what was stored.
  [[nodiscard]] std::unique_ptr<ConsentSDK> launch() const;
  /// For an application that uses ConsentSDK::shared(): makes it live on this device, for the rest of the process.
  ///
  /// @code
  /// const auto services = device.services();
  /// if (!quillon::configure({.applicationId = "test", .replaceServices = services})) std::cerr << "too late\n";
  /// @endcode
  [[nodiscard]] std::function<void(Platform&)> services() const;
  /// Options that lead to the device's servers; change what the test is about.
  [[nodiscard]] ConsentSDKOptions options() const;
  /// @}

  /// @name Work and time
  /// @{

  /// Returns when nothing is under way any more, after every callback that was due has run.
  void settle();
  /// Lets time pass: every timer fires at its time, and what it began is over before the next one.
  void advance(std::chrono::milliseconds time);
  [[nodiscard]] std::chrono::sys_seconds now() const;
  /// @}

  /// @name Network
  /// @{

  /// The configuration that is published from now on, whatever its language. Before, there is none (status 404).
  void publish(std::string configuration);
  /// Where the location look-up finds the device: ISO codes such as "US" and "CA".
  void setLocation(const std::string& country, const std::string& state);
  /// Without a network every request fails; the SDK is told of each change.
  void setOnline(bool isOnline);
  /// Answers before the device does: a response, or nothing to let the device answer. Called from the SDK's thread with
  /// every request that has a network; must not use the device. An empty function ends it.
  void answer(std::function<std::optional<Response>(const Request& request)> script);
  /// Every request since the device was made, in order.
  [[nodiscard]] std::vector<Request> requests() const;
  /// The bodies (JSON) of the consent uploads among them.
  [[nodiscard]] std::vector<std::string> uploads() const;
  /// @}

  /// @name Device
  /// @{

  /// What the device says about a permission from now on. False when no answer of it means that: then nothing changes.
  /// A device never says `withDrawn`.
  bool setPermission(const VantariKey& permission, ConsentStatus status);
  /// Whether the user has asked all applications of the device for privacy; see ConsentSDKOptions::privacySignal.
  void setPrivacySignal(bool isOn);
  /// The languages of the device, best first, for the next launch. Default: "en".
  void setLanguages(std::vector<std::string> languages);
  /// On a full disk no decision can be stored and no configuration saved; what is there can be read.
  void setDiskFull(bool isFull);
  /// @}

  /// @name What the SDK did
  /// @{

  /// The screens that were asked for since the last call, in order: "banner", "preferences", "prompt KEY", "link URL",
  /// "dismiss", "dismiss banner" or "settings".
  [[nodiscard]] std::vector<std::string> takeScreens();
  /// The consent-mode signals that the analytics library was given last, by name: "granted" or "denied".
  [[nodiscard]] std::map<std::string, std::string> consentMode() const;
  /// Everything that was logged.
  [[nodiscard]] std::string log() const;
  /// @}

 private:
  class World;
  const std::shared_ptr<World> world_;
};

}  // namespace quillon::testing
