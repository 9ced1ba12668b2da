// The desktop's name for an application.
#pragma once

#include <string>
#include <string_view>

namespace quillon {

// The given name, else that of the sandbox, else that of the systemd unit in which the application was started, else
// empty, the desktop's name for all other applications.
[[nodiscard]] std::string applicationIdentity(const std::string& given);

// The application named by a process's control groups; empty when it is in no application's unit.
[[nodiscard]] std::string applicationOfControlGroups(std::string_view text);

}  // namespace quillon
