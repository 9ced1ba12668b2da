#include "platform/linux/Bus/BusError.h"

#include <algorithm>
#include <cstring>

namespace quillon {
namespace {

constexpr std::size_t longestText = 500;  // bytes; a service's text is untrusted

BusError::Kind kindOf(const GError& error) {
  if (error.domain == G_IO_ERROR) {
    switch (error.code) {
      case G_IO_ERROR_NOT_FOUND:
      case G_IO_ERROR_CONNECTION_REFUSED:
        return BusError::Kind::absent;
      case G_IO_ERROR_TIMED_OUT:
      case G_IO_ERROR_CANCELLED:
        return BusError::Kind::silent;
      default:
        return BusError::Kind::other;
    }
  }
  if (error.domain == G_DBUS_ERROR) {
    switch (error.code) {
      case G_DBUS_ERROR_SERVICE_UNKNOWN:
      case G_DBUS_ERROR_NAME_HAS_NO_OWNER:
        return BusError::Kind::absent;
      case G_DBUS_ERROR_ACCESS_DENIED:
        return BusError::Kind::denied;
      default:
        return BusError::Kind::other;
    }
  }
  return BusError::Kind::other;
}

}  // namespace

BusError busError(GError* error) {
  const GLibPointer<GError> owned(error);
  BusError result{kindOf(*error), {}, {}};
  if (const GLibPointer<char> name(g_dbus_error_get_remote_error(error)); name) result.name = name.get();
  g_dbus_error_strip_remote_error(error);
  result.text = std::string(error->message, std::min(std::strlen(error->message), longestText));
  return result;
}

}  // namespace quillon
