// The desktop's identifier of an application.
#pragma once

#include <string>
#include <string_view>

namespace quillon {

// The given identifier, else that of the sandbox, else that of the systemd unit in which the application was started,
// else empty, which the desktop uses for all other applications.
[[nodiscard]] std::string applicationIdentity(const std::string& given);

// The application named by a process's control groups; empty when it is in no application's unit.
[[nodiscard]] std::string applicationOfControlGroups(std::string_view text);

}  // namespace quillon
