// The request loop of the headless host.
#pragma once

#include <boost/json/object.hpp>
#include <functional>
#include <iosfwd>
#include <string>

#include "quillon/ConsentSDK.h"
#include "tools/host/HostDevice.h"
#include "tools/host/HostEvents.h"

namespace quillon::tools {

// Not thread-safe; used on one thread.
class HostSession {
 public:
  explicit HostSession(HostDevice& device) : device_(device), sdk_(device.platform()) {}

  // Answers each line of the input until it ends or requests to quit.
  void run(std::istream& input, std::ostream& output);

 private:
  using Object = boost::json::object;
  using Operation = Object (HostSession::*)(const Object& request);
  struct Entry;
  static const Entry entries[];

  Object answer(const std::string& line);

  Object setup(const Object& request);
  Object waitReady(const Object& request);
  Object status(const Object& request);
  Object bannerDue(const Object& request);
  Object accept(const Object& request);
  Object reject(const Object& request);
  Object get(const Object& request);
  Object isAllowed(const Object& request);
  Object whileAllowed(const Object& request);
  Object gates(const Object& request);
  Object set(const Object& request);
  Object purposes(const Object& request);
  Object permissions(const Object& request);
  Object checkConsent(const Object& request);
  Object bannerConfig(const Object& request);
  Object settingsPrompt(const Object& request);
  Object gcmConfig(const Object& request);
  Object gcmConsents(const Object& request);
  Object sink(const Object& request);
  Object upload(const Object& request);
  Object check(const Object& request);
  Object advance(const Object& request);
  Object network(const Object& request);
  Object permission(const Object& request);
  Object settle(const Object& request);
  Object store(const Object& request);
  Object removeConsents(const Object& request);
  Object version(const Object& request);
  Object banner(const Object& request);
  Object recordDefaults(const Object& request);
  Object preferences(const Object& request);
  Object prompt(const Object& request);
  Object openLink(const Object& request);
  Object history(const Object& request);
  Object explain(const Object& request);
  Object listen(const Object& request);
  Object consentScript(const Object& request);
  Object quit(const Object& request);

  // Runs the function on the main queue, where screens live, and waits until all work it started has ended.
  void onMain(const std::function<void(HostScreens&)>& function);

  HostDevice& device_;
  ConsentSDK sdk_;
  HostEvents events_;
  HostGates gates_;
  bool quitting_ = false;
};

}  // namespace quillon::tools
