#include "platform/linux/LinuxHostApplication.h"

#include <sys/utsname.h>

#include <fstream>
#include <string_view>
#include <system_error>
#include <utility>

#include "platform/linux/PosixFileSystem.h"

namespace quillon {
namespace {

constexpr std::size_t longestLine = 4096;
constexpr int mostLines = 100;
constexpr std::size_t longestName = 96;
constexpr std::size_t largestResource = std::size_t{32} << 20;

// Removes quotes and escapes; printable and bounded.
std::string plain(std::string_view text) {
  std::string result;
  for (const char c : text.substr(0, longestName)) {
    if (c != '"' && c != '\'' && c != '\\' && static_cast<unsigned char>(c) >= 0x20 && c != 0x7f) result += c;
  }
  return result;
}

// The distribution's display name; empty when unknown.
std::string distribution() {
  constexpr std::string_view key = "PRETTY_NAME=";
  for (const char* path : {"/etc/os-release", "/usr/lib/os-release"}) {
    std::ifstream file(path);
    std::string line(longestLine, '\0');
    for (int i = 0; i < mostLines && file.getline(line.data(), longestLine); ++i) {
      const std::string_view text = std::string_view(line).substr(0, line.find('\0'));
      if (text.starts_with(key)) return plain(text.substr(key.size()));
    }
  }
  return {};
}

// "Linux 6.1 x86_64": only the first two numbers of the release.
std::string kernel() {
  utsname names{};
  if (uname(&names) != 0) return "Linux";
  const std::string_view release = names.release;
  const auto dot = release.find('.');
  const auto end = dot == std::string_view::npos ? dot : release.find_first_not_of("0123456789", dot + 1);
  return plain(names.sysname) + ' ' + plain(release.substr(0, end)) + ' ' + plain(names.machine);
}

std::string describeDevice() {
  const std::string name = distribution();
  return name.empty() ? kernel() : name + ", " + kernel();
}

std::filesystem::path executableFolder() {
  std::error_code error;
  return std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
}

}  // namespace

LinuxHostApplication::LinuxHostApplication(std::filesystem::path resources)
    : resources_(resources.empty() ? executableFolder() : std::move(resources)), device_(describeDevice()) {}

std::optional<std::string> LinuxHostApplication::componentVersion(std::string_view identifier) const {
  if (identifier == "org.quillon.consent.core" || identifier == "org.quillon.consent.ui") return QUILLON_VERSION;
  return std::nullopt;
}

std::optional<std::string> LinuxHostApplication::information(std::string_view /*key*/) const {
  return std::nullopt;
}

std::optional<std::string> LinuxHostApplication::resource(std::string_view name, std::string_view extension) const {
  const std::string file = std::string(name) + '.' + std::string(extension);
  // Rejects names that leave the folder or contain a null byte.
  if (name.empty() || name.contains("..") || file.contains('/') || file.contains('\0')) return std::nullopt;
  auto content = PosixFileSystem(resources_).read(resources_ / file, largestResource);
  return content ? std::optional(*std::move(content)) : std::nullopt;
}

std::string LinuxHostApplication::localized(std::string_view key, std::string_view /*comment*/) const {
  return std::string(key);
}

}  // namespace quillon
