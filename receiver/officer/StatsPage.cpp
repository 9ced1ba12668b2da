#include "receiver/officer/StatsPage.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <map>
#include <string_view>
#include <utility>

namespace quillon::receiver {
namespace {

constexpr std::array<std::pair<std::string_view, std::string_view>, 4> kColors{
    {{"granted", "#2a7f4f"}, {"declined", "#b3412e"}, {"withdrawn", "#d08a2c"}, {"not_determined", "#8a8f98"}}};
constexpr std::size_t kMaxBars = 400;  // per plot, so that browsers can show the page

using Counts = std::map<std::string, std::int64_t>;  // by status

std::string escaped(std::string_view text) {
  std::string safe;
  for (const char c : text) {
    switch (c) {
      case '&':
        safe += "&amp;";
        break;
      case '<':
        safe += "&lt;";
        break;
      case '>':
        safe += "&gt;";
        break;
      case '"':
        safe += "&quot;";
        break;
      default:
        safe += c;
    }
  }
  return safe;
}

std::string dateOf(std::int64_t day) {
  const std::chrono::year_month_day date{std::chrono::sys_days(std::chrono::days(day))};
  char text[32];
  std::snprintf(text, sizeof text, "%04d-%02u-%02u", static_cast<int>(date.year()), static_cast<unsigned>(date.month()),
                static_cast<unsigned>(date.day()));
  return text;
}

std::int64_t sumOf(const Counts& counts) {
  std::int64_t sum = 0;
  for (const auto& [status, count] : counts) sum += count;
  return sum;
}

// One bar per entry, its length the number of decisions, coloured by status.
std::string plot(std::string_view title, const std::map<std::string, Counts>& bars) {
  constexpr int height = 18;
  constexpr double width = 560;
  std::int64_t most = 1;
  for (const auto& [name, counts] : bars) most = std::max(most, sumOf(counts));
  const std::size_t shown = std::min(bars.size(), kMaxBars);
  std::string html = "<h2>" + escaped(title) + "</h2>\n<svg role=\"img\" aria-label=\"" + escaped(title) +
                     "\" width=\"900\" height=\"" + std::to_string(shown * height) + "\">\n";
  // The map's last entries, the newest or highest, matter most.
  std::size_t row = 0;
  for (auto bar = std::next(bars.begin(), static_cast<std::ptrdiff_t>(bars.size() - shown)); bar != bars.end(); ++bar) {
    const auto y = row++ * height;
    html += "<text x=\"0\" y=\"" + std::to_string(y + 13) + "\">" + escaped(bar->first) + "</text>";
    double x = 220;
    for (const auto& [status, color] : kColors) {
      const auto found = bar->second.find(std::string(status));
      if (found == bar->second.end()) continue;
      const double length = width * static_cast<double>(found->second) / static_cast<double>(most);
      html += "<rect x=\"" + std::to_string(x) + "\" y=\"" + std::to_string(y + 2) + "\" width=\"" +
              std::to_string(length) + "\" height=\"14\" fill=\"" + std::string(color) + "\"><title>" +
              std::string(status) + ": " + std::to_string(found->second) + "</title></rect>";
      x += length;
    }
    html += "<text x=\"" + std::to_string(x + 6) + "\" y=\"" + std::to_string(y + 13) + "\">" +
            std::to_string(sumOf(bar->second)) + "</text>\n";
  }
  return html + "</svg>\n";
}

}  // namespace

std::string statsPage(std::span<const Answers> answers) {
  std::map<std::string, std::map<std::string, Counts>> plots;
  for (const Answers& entry : answers) {
    const std::string who = entry.tenant.empty() ? entry.application : entry.tenant + " / " + entry.application;
    const auto add = [&](const std::string& by, const std::string& name) {
      plots[who + ": decisions by " + by][name][entry.status] += entry.count;
    };
    add("1. purpose and permission", entry.kind + " " + entry.item);
    add("2. place", entry.place.empty() ? "unknown" : entry.place);
    add("3. version", std::to_string(entry.version));
    add("4. day", dateOf(entry.day));
  }
  std::string html =
      "<!doctype html>\n<html lang=\"en\"><head><meta charset=\"utf-8\"><title>Consent decisions</title>\n"
      "<style>body{font:14px sans-serif;margin:2em}svg text{font-size:12px}</style></head><body>\n"
      "<h1>Consent decisions</h1>\n<p>";
  for (const auto& [status, color] : kColors) {
    html += "<span style=\"color:" + std::string(color) + "\">&#9632;</span> " + std::string(status) + " ";
  }
  html += "</p>\n";
  if (plots.empty()) html += "<p>None are kept.</p>\n";
  for (const auto& [title, bars] : plots) html += plot(title, bars);
  return html + "</body></html>\n";
}

}  // namespace quillon::receiver
