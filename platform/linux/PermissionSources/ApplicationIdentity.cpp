#include "platform/linux/PermissionSources/ApplicationIdentity.h"

#include <stdlib.h>

#include <array>
#include <charconv>
#include <fstream>

namespace quillon {
namespace {

// The text up to the delimiter; removes both from `rest`.
std::string_view takeUntil(std::string_view& rest, char delimiter) {
  const auto end = rest.find(delimiter);
  const auto part = rest.substr(0, end);
  rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
  return part;
}

bool removeEnd(std::string_view& text, std::string_view end) {
  if (!text.ends_with(end)) return false;
  text.remove_suffix(end.size());
  return true;
}

// systemd escapes special bytes in unit names as \xNN.
std::string unescaped(std::string_view text) {
  std::string result;
  while (!text.empty()) {
    unsigned char byte = 0;
    const char* digits = text.data() + 2;
    if (text.size() >= 4 && text.starts_with("\\x") &&
        std::from_chars(digits, digits + 2, byte, 16).ptr == digits + 2) {
      result += static_cast<char>(byte);
      text.remove_prefix(4);
    } else {
      result += text.front();
      text.remove_prefix(1);
    }
  }
  return result;
}

// The desktops' unit names: app[-<launcher>]-<id>-<random>.scope, app[-<launcher>]-<id>[@<random>].service.
std::string applicationOfUnit(std::string_view unit) {
  if (!unit.starts_with("app-")) return {};
  unit.remove_prefix(4);
  if (removeEnd(unit, ".scope")) {
    const auto random = unit.rfind('-');
    if (random == std::string_view::npos) return {};
    unit = unit.substr(0, random);
  } else if (removeEnd(unit, ".service")) {
    unit = unit.substr(0, unit.find('@'));
  } else {
    return {};
  }
  return unescaped(unit.substr(unit.rfind('-') + 1));
}

}  // namespace

std::string applicationOfControlGroups(std::string_view text) {
  std::string application;
  while (!text.empty()) {
    // <hierarchy>:<controllers>:<path>; only systemd's hierarchy contains units.
    auto line = takeUntil(text, '\n');
    takeUntil(line, ':');
    const auto controllers = takeUntil(line, ':');
    if (!controllers.empty() && controllers != "name=systemd") continue;
    while (!line.empty()) {  // the innermost unit wins
      if (auto found = applicationOfUnit(takeUntil(line, '/')); !found.empty()) application = std::move(found);
    }
  }
  return application;
}

std::string applicationIdentity(const std::string& given) {
  if (!given.empty()) return given;
  if (const char* sandbox = ::getenv("FLATPAK_ID"); sandbox != nullptr && *sandbox != '\0') return sandbox;
  std::array<char, 16384> text{};
  std::ifstream file("/proc/self/cgroup");
  file.read(text.data(), text.size());
  return applicationOfControlGroups({text.data(), static_cast<std::size_t>(file.gcount())});
}

}  // namespace quillon
