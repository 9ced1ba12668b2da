#include "receiver/service/EventLog.h"

#include <boost/json/serialize.hpp>
#include <chrono>
#include <cstdio>
#include <string>

namespace quillon::receiver {

void EventLog::write(std::string_view event, boost::json::object figures) {
  using namespace std::chrono;
  const auto now = system_clock::now();
  const std::time_t seconds = system_clock::to_time_t(now);
  std::tm parts{};
  gmtime_r(&seconds, &parts);
  char time[128];
  std::snprintf(time, sizeof time, "%04d-%02d-%02dT%02d:%02d:%02d.%03dZ", parts.tm_year + 1900, parts.tm_mon + 1,
                parts.tm_mday, parts.tm_hour, parts.tm_min, parts.tm_sec,
                static_cast<int>(duration_cast<milliseconds>(now.time_since_epoch()).count() % 1000));
  boost::json::object line{{"time", time}, {"event", event}};
  for (auto& [name, value] : figures) line.emplace(name, std::move(value));
  const std::string text = boost::json::serialize(line) + "\n";
  const std::scoped_lock lock(mutex_);
  std::fwrite(text.data(), 1, text.size(), stdout);
  std::fflush(stdout);
}

}  // namespace quillon::receiver
