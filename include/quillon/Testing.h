/// @file
/// An in-memory device for testing an application's consent flow without network, display or waiting.
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

/// A request that the SDK sent.
struct Request {
  std::string method;
  std::string url;
  std::map<std::string, std::string> headers;
  std::string body;
};

/// A server's response.
struct Response {
  int status = 200;
  std::string body = {};
};

/// An in-memory device: store, files, servers, clock, permissions and screens. Time passes only when the test advances
/// it.
///
/// The SDK works on a thread of the device. Callbacks run on the thread that calls settle() or advance(), which stands
/// for the application's main loop; any thread may wait for futures. All members are thread-safe.
///
/// The servers return the published configuration and no location, and accept every upload.
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
  /// @param now the wall time; default noon of 1 January 2025 UTC
  explicit Device(std::chrono::sys_seconds now = std::chrono::sys_seconds(std::chrono::seconds(1'735'732'800)));
  /// Destroy every SDK from launch() first. The shared SDK, put on this device by services(), stops working.
  ~Device();
  Device(const Device&) = delete;
  Device& operator=(const Device&) = delete;

  /// @name The application
  /// @{

  /// Starts the application: an SDK on this device. To restart it with what was stored, destroy the SDK and launch
  /// another.
  [[nodiscard]] std::unique_ptr<ConsentSDK> launch() const;
  /// For applications that use ConsentSDK::shared(): puts it on this device, for the rest of the process.
  ///
  /// @code
  /// const auto services = device.services();
  /// if (!quillon::configure({.applicationId = "test", .replaceServices = services})) std::cerr << "too late\n";
  /// @endcode
  [[nodiscard]] std::function<void(Platform&)> services() const;
  /// Options with the URLs of the device's servers; change the others as the test requires.
  [[nodiscard]] ConsentSDKOptions options() const;
  /// @}

  /// @name Work and time
  /// @{

  /// Returns when all running work has ended and every due callback has run.
  void settle();
  /// Advances the clock: every timer fires at its time, and the work it started ends before the next one fires.
  void advance(std::chrono::milliseconds time);
  [[nodiscard]] std::chrono::sys_seconds now() const;
  /// @}

  /// @name Network
  /// @{

  /// Publishes a configuration for every language. Before the first one the server returns 404.
  void publish(std::string configuration);
  /// The location that the look-up returns, as ISO codes such as "US" and "CA".
  void setLocation(const std::string& country, const std::string& state);
  /// Sets network availability; offline, every request fails. The SDK is notified of each change.
  void setOnline(bool isOnline);
  /// Overrides the device's responses; nullopt leaves a request to the device. Called on the SDK's thread for every
  /// request made while online; must not use the device. An empty function removes the override.
  void answer(std::function<std::optional<Response>(const Request& request)> script);
  /// All requests since construction, in order.
  [[nodiscard]] std::vector<Request> requests() const;
  /// The JSON bodies of the consent uploads.
  [[nodiscard]] std::vector<std::string> uploads() const;
  /// @}

  /// @name Device
  /// @{

  /// Sets the device's answer for a permission. Returns false, changing nothing, when no value of that permission's
  /// source maps to this status; none maps to `withDrawn`.
  bool setPermission(const VantariKey& permission, ConsentStatus status);
  /// Turns the device's privacy signal on or off; see ConsentSDKOptions::privacySignal.
  void setPrivacySignal(bool isOn);
  /// The device's preferred languages, best first, for the next launch. Default: "en".
  void setLanguages(std::vector<std::string> languages);
  /// On a full disk, decisions and configurations cannot be stored; stored ones can be read.
  void setDiskFull(bool isFull);
  /// @}

  /// @name What the SDK did
  /// @{

  /// The screens requested since the last call, in order: "banner", "preferences", "prompt KEY", "link URL", "dismiss",
  /// "dismiss banner" or "settings".
  [[nodiscard]] std::vector<std::string> takeScreens();
  /// The consent-mode signals last passed to the analytics library, by name: "granted" or "denied".
  [[nodiscard]] std::map<std::string, std::string> consentMode() const;
  /// The complete log.
  [[nodiscard]] std::string log() const;
  /// @}

 private:
  class World;
  const std::shared_ptr<World> world_;
};

}  // namespace quillon::testing
