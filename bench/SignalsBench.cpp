// Advertising signals: reading a vendor list, computing keys, rejecting hostile strings.
#include <benchmark/benchmark.h>

#include <nlohmann/json.hpp>

#include "bench/Expectation.h"
#include "signals/Keys/Keys.h"
#include "signals/VendorList/VendorList.h"

namespace quillon::bench {
namespace {

constexpr int kVendors = 2000;

std::string list(int first, int last) {
  std::string text = "[";
  for (int id = first; id <= last; ++id) text += (id > first ? "," : "") + std::to_string(id);
  return text + "]";
}

std::string items(int count) {
  std::string text = "{";
  for (int id = 1; id <= count; ++id) {
    const auto number = std::to_string(id);
    text += (id > 1 ? ",\"" : "\"") + number + R"(":{"id":)" + number + R"(,"name":"Item )" + number +
            R"(","description":")" + std::string(200, 'x') + R"(","illustrations":[")" + std::string(300, 'y') + "\"]}";
  }
  return text + "}";
}

// The size and depth of a vendor in the published list.
std::string vendor(int id) {
  const auto number = std::to_string(id);
  return '"' + number + R"(":{"id":)" + number + R"(,"name":"Vendor )" + number + R"( Advertising Ltd.","purposes":)" +
         list(1, 4) + R"(,"legIntPurposes":)" + list(7, 10) + R"(,"flexiblePurposes":)" + list(7, 9) +
         R"(,"specialPurposes":[1,2],"features":[1,2],"specialFeatures":[1],)"
         R"("usesCookies":true,"cookieMaxAgeSeconds":31536000,"cookieRefresh":false,"usesNonCookieAccess":true,)"
         R"("dataRetention":{"stdRetention":365,"purposes":{},"specialPurposes":{}},)"
         R"("urls":[{"langId":"en","privacy":"https://vendor.example/privacy","legIntClaim":)"
         R"("https://vendor.example/privacy#interest"}],"dataDeclaration":[1,2,4,6,8],)"
         R"("deviceStorageDisclosureUrl":"https://vendor.example/device-storage.json"})";
}

const std::string& vendorList() {
  static const std::string text = [] {
    std::string made = R"({"gvlSpecificationVersion":3,"vendorListVersion":48,"tcfPolicyVersion":5,)"
                       R"("lastUpdated":"2026-01-01T00:00:00Z","purposes":)" +
                       items(11) + R"(,"specialPurposes":)" + items(3) + R"(,"features":)" + items(3) +
                       R"(,"specialFeatures":)" + items(2) + R"(,"vendors":{)";
    for (int id = 1; id <= kVendors; ++id) made += (id > 1 ? "," : "") + vendor(id);
    return made + "}}";
  }();
  return text;
}

void readVendorList(benchmark::State& state) {
  for (auto _ : state) {
    auto read = signals::readVendorList(vendorList());
    if (!read || read->vendors.size() != kVendors) return state.SkipWithError("the list was not read");
    benchmark::DoNotOptimize(read);
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(vendorList().size()));
}

void readVendorListTree(benchmark::State& state) {
  for (auto _ : state) {
    auto tree = nlohmann::json::parse(vendorList());
    benchmark::DoNotOptimize(tree);
  }
}

// Every second component belongs to a refused purpose.
void makeKeys(benchmark::State& state) {
  TcfOptions tcf{.purposes = {{1, {.consent = {1, 2, 3, 4}, .legitimateInterest = {7}}},
                              {2, {.consent = {8}, .legitimateInterest = {9, 10}}}},
                 .vendorList = vendorList()};
  SignalState decided{
      .purposes = {{1, true, true, {}}, {2, false, true, {}}}, .isDisclosed = true, .language = "de", .place = "DE"};
  for (int id = 1; id <= kVendors; ++id) {
    tcf.vendors.emplace(id, id);
    decided.purposes[static_cast<std::size_t>(id % 2)].sdkIds.push_back(id);
  }
  const auto rules = signals::rulesOf({.cmpId = 12, .tcf = std::move(tcf)}).value();
  for (auto _ : state) {
    auto keys = signals::keysOf(rules, decided);
    benchmark::DoNotOptimize(keys);
  }
}

// The most expensive string: the maximum number of ranges of the maximum number of vendors.
std::string hostileString() {
  signals::TcString tc;
  signals::Ids everySecond;
  for (unsigned id = 1; id <= 8190; id += 2) everySecond.push_back(static_cast<signals::Ids::value_type>(id));
  std::vector<signals::Restriction> restrictions;
  for (std::uint8_t purpose = 0; purpose < 11; ++purpose) restrictions.push_back({purpose, 0, everySecond});
  tc.core.set("PubRestrictions", std::move(restrictions));
  return signals::encode(tc).value();
}

void refuse(benchmark::State& state, const std::string& text, bool isRefused) {
  for (auto _ : state) {
    auto read = signals::decodeTcString(text);
    if (read.has_value() == isRefused) return state.SkipWithError("unexpected result");
    benchmark::DoNotOptimize(read);
  }
}

void refuseGpp(benchmark::State& state) {
  const std::string text = "DBABLA~" + std::string(1'000'000, 'C');
  for (auto _ : state) {
    auto read = signals::decodeGppString(text);
    if (read) return state.SkipWithError("it was not refused");
    benchmark::DoNotOptimize(read);
  }
}

void repeated(benchmark::internal::Benchmark* benchmark) {
  benchmark->Unit(benchmark::kMillisecond)->MinTime(0.1)->Repetitions(9)->ReportAggregatesOnly();
}

BENCHMARK(readVendorList)->Name("vendor list/quillon")->Apply(repeated);
BENCHMARK(readVendorListTree)->Name("vendor list/nlohmann")->Apply(repeated);
BENCHMARK(makeKeys)->Name("signals/keys")->Apply(repeated);
BENCHMARK_CAPTURE(refuse, million, std::string(1'000'000, 'C'), true)->Name("signals/1 MB")->Apply(repeated);
BENCHMARK(refuseGpp)->Name("signals/1 MB of GPP")->Apply(repeated);
BENCHMARK_CAPTURE(refuse, longest, hostileString() + std::string(4, 'B'), true)
    ->Name("signals/longest hostile string")
    ->Apply(repeated);

Figure processorTime(std::string benchmark) {
  return {std::move(benchmark), std::string(kProcessorTime)};
}

const bool limits =
    expectAtMost({"read 2,000 vendors, in ms", processorTime("vendor list/quillon"), std::nullopt, 2.0}) &&
    expectAtMost({"read 2,000 vendors, against nlohmann's tree", processorTime("vendor list/quillon"),
                  processorTime("vendor list/nlohmann"), 0.25}) &&
    expectAtMost(
        {"make the keys of a decision, 2,000 vendors, in ms", processorTime("signals/keys"), std::nullopt, 1.0}) &&
    expectAtMost({"refuse a string of 1 MB, in ms", processorTime("signals/1 MB"), std::nullopt, 10.0}) &&
    expectAtMost({"refuse a GPP string of 1 MB, in ms", processorTime("signals/1 MB of GPP"), std::nullopt, 10.0}) &&
    expectAtMost({"refuse the longest hostile string, in ms", processorTime("signals/longest hostile string"),
                  std::nullopt, 10.0});

}  // namespace
}  // namespace quillon::bench
