// The name under which the desktop knows an application.
#pragma once

#include <string>
#include <string_view>

namespace quillon {

// The one given, else that of the sandbox, else that of the systemd unit in which the application was started, else
// empty, as the desktop calls all others.
[[nodiscard]] std::string applicationIdentity(const std::string& given);

// The application in the text of a process's control groups; empty when it is in no application's unit.
[[nodiscard]] std::string applicationOfControlGroups(std::string_view text);

}  // namespace quillon
