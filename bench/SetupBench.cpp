// What a start of the application costs with a cached configuration of 1.5 MB: the call itself, on the host's main
// thread, and the time until the SDK is ready, beside the bare decoding of that file.
#include <benchmark/benchmark.h>

#include <chrono>
#include <memory>
#include <utility>

#include "bench/ConfigurationDocument.h"
#include "bench/Ratio.h"
#include "bench/TemporaryFolder.h"
#include "core/Configuration/Codec.h"
#include "platform/linux/LinuxPlatform.h"
#include "platform/memory/MemoryConsole.h"
#include "platform/memory/ScriptedHttpSession.h"
#include "quillon/ConsentSDK.h"
#include "quillon/MainConfiguration.h"

namespace quillon::bench {
namespace {

using Clock = std::chrono::steady_clock;

// A device on which the configuration has been downloaded before.
class Device {
 public:
  Device() {
    launch();
    sdk_->setup(options());
    sdk_->settled().wait();
  }

  // As after a start of the process, before set-up.
  void launch() {
    sdk_.reset();
    Platform platform = linuxPlatform({.applicationId = "bench", .dataDirectory = folder_.path() / "data"});
    platform.console = std::make_shared<MemoryConsole>();
    platform.http = std::make_shared<ScriptedHttpSession>(
        [](const HttpRequest& request) { return HttpResponse{request.url, 200, {}, largeConfigurationDocument()}; });
    sdk_ = std::make_unique<ConsentSDK>(std::move(platform));
  }

  ConsentSDK& sdk() { return *sdk_; }
  static ConsentSDKOptions options() {
    return {.appUrl = "http://app/", .cdnUrl = "http://cdn/", .tenantId = "t", .appId = "a", .locationCode = "DE"};
  }

 private:
  TemporaryFolder folder_;
  std::unique_ptr<ConsentSDK> sdk_;
};

template <bool untilReady>
void setUp(benchmark::State& state) {
  Device device;
  for (auto _ : state) {
    device.launch();
    const auto begin = Clock::now();
    device.sdk().setup(Device::options());
    if (untilReady) device.sdk().settled().wait();
    state.SetIterationTime(std::chrono::duration<double>(Clock::now() - begin).count());
    if (!untilReady) device.sdk().settled().wait();
    if (device.sdk().getStatus() != SDKStatus::ready) state.SkipWithError("not ready");
  }
}

void decodeOnly(benchmark::State& state) {
  const std::string document = largeConfigurationDocument();
  for (auto _ : state) benchmark::DoNotOptimize(decode<MainConfiguration>(document));
}

BENCHMARK(setUp<false>)->Name("setup/returns")->UseManualTime()->Repetitions(9)->Unit(benchmark::kMicrosecond);
BENCHMARK(setUp<true>)->Name("setup/ready from cache")->UseManualTime()->Repetitions(9)->Unit(benchmark::kMicrosecond);
BENCHMARK(decodeOnly)->Name("setup/bare decode")->Repetitions(9)->Unit(benchmark::kMicrosecond);

const bool registered =
    expectRatio({"ready from cache vs decoding its file", {"setup/ready from cache"}, {"setup/bare decode"}, 2}) &&
    expectRatio({"call of setup vs decoding that file", {"setup/returns"}, {"setup/bare decode"}, 0.5});

}  // namespace
}  // namespace quillon::bench
