// The bus name and object path of the desktop portal.
#pragma once

namespace quillon::portal {

inline constexpr const char* service = "org.freedesktop.portal.Desktop";
inline constexpr const char* path = "/org/freedesktop/portal/desktop";

}  // namespace quillon::portal
