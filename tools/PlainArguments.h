// Literal command-line arguments.
#pragma once

#include <string>
#include <vector>

namespace quillon::tools {

// The command-line parser reads an argument in brackets as a list and drops an empty one. To prevent both, withMarks()
// marks such arguments of a command, and plain() removes the mark after parsing.
inline constexpr char plainMark = '\x01';

[[nodiscard]] inline std::vector<std::string> withMarks(std::vector<std::string> arguments) {
  std::vector<std::string> marked;
  const auto add = [&marked](std::string argument) {
    const bool isMisread = argument.empty() || argument.front() == '[' || argument.front() == plainMark;
    marked.push_back(isMisread ? plainMark + argument : std::move(argument));
  };
  for (auto& argument : arguments) {
    const auto value = argument.find('=');
    if (argument.starts_with("--") && value != std::string::npos) {
      marked.push_back(argument.substr(0, value));
      add(argument.substr(value + 1));
    } else {
      add(std::move(argument));
    }
  }
  return marked;
}

[[nodiscard]] inline std::string plain(const std::string& argument) {
  return argument.starts_with(plainMark) ? argument.substr(1) : argument;
}

}  // namespace quillon::tools
