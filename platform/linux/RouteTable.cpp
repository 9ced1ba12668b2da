#include "platform/linux/RouteTable.h"

#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <net/if.h>
#include <sys/socket.h>
#include <sys/time.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <functional>
#include <set>

namespace quillon {
namespace {

constexpr std::uint32_t changeGroups = RTMGRP_LINK | RTMGRP_IPV4_ROUTE | RTMGRP_IPV6_ROUTE;
constexpr std::size_t messageBytes = std::size_t{64} << 10;  // above the kernel's message size

FileDescriptor openRouteSocket(std::uint32_t groups, int flags) {
  FileDescriptor socket(::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC | flags, NETLINK_ROUTE));
  sockaddr_nl address{};
  address.nl_family = AF_NETLINK;
  address.nl_groups = groups;
  if (!socket || ::bind(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    return FileDescriptor();
  }
  return socket;
}

using Visitor = std::function<void(const nlmsghdr& message)>;

// Calls the visitor with every message of that type; false when the kernel did not deliver all.
bool dump(std::uint16_t type, const Visitor& visit) {
  const FileDescriptor socket = openRouteSocket(0, 0);
  if (!socket) return false;
  const timeval limit{.tv_sec = 2, .tv_usec = 0};
  ::setsockopt(socket.get(), SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);

  struct {
    nlmsghdr header;
    rtgenmsg family;
  } request{};
  request.header.nlmsg_len = NLMSG_LENGTH(sizeof(rtgenmsg));
  request.header.nlmsg_type = type;
  request.header.nlmsg_flags = NLM_F_REQUEST | NLM_F_DUMP;
  request.family.rtgen_family = AF_UNSPEC;
  if (::send(socket.get(), &request, request.header.nlmsg_len, 0) < 0) return false;

  alignas(nlmsghdr) std::array<char, messageBytes> buffer;
  while (true) {
    const ssize_t received = ::recv(socket.get(), buffer.data(), buffer.size(), 0);
    if (received < 0 && errno == EINTR) continue;
    if (received <= 0) return false;
    auto left = static_cast<std::uint32_t>(received);
    for (auto* message = reinterpret_cast<nlmsghdr*>(buffer.data()); NLMSG_OK(message, left);
         message = NLMSG_NEXT(message, left)) {
      if (message->nlmsg_type == NLMSG_DONE) return true;
      if (message->nlmsg_type == NLMSG_ERROR) return false;
      visit(*message);
    }
  }
}

// The links that are up with a carrier.
class Links {
 public:
  void note(const nlmsghdr& message) {
    if (message.nlmsg_type != RTM_NEWLINK || message.nlmsg_len < NLMSG_LENGTH(sizeof(ifinfomsg))) return;
    const auto* link = static_cast<const ifinfomsg*>(NLMSG_DATA(&message));
    if ((link->ifi_flags & IFF_UP) != 0 && (link->ifi_flags & IFF_RUNNING) != 0) running_.insert(link->ifi_index);
  }

  [[nodiscard]] bool isRunning(int index) const { return running_.contains(index); }

 private:
  std::set<int> running_;
};

template <class T>
T read(const rtattr* attribute) {
  T value{};
  std::memcpy(&value, RTA_DATA(attribute), std::min<std::size_t>(sizeof value, RTA_PAYLOAD(attribute)));
  return value;
}

// Whether a next hop of a multipath route uses a running link.
bool anyNextHopRuns(const rtattr* attribute, const Links& links) {
  auto left = static_cast<int>(RTA_PAYLOAD(attribute));
  const auto* hop = static_cast<const rtnexthop*>(RTA_DATA(attribute));
  while (RTNH_OK(hop, left)) {
    const bool dead = (hop->rtnh_flags & (RTNH_F_DEAD | RTNH_F_LINKDOWN)) != 0;
    if (!dead && links.isRunning(hop->rtnh_ifindex)) return true;
    left -= static_cast<int>(RTNH_ALIGN(hop->rtnh_len));
    hop = RTNH_NEXT(hop);
  }
  return false;
}

bool isUsableDefaultRoute(const nlmsghdr& message, const Links& links) {
  if (message.nlmsg_type != RTM_NEWROUTE || message.nlmsg_len < NLMSG_LENGTH(sizeof(rtmsg))) return false;
  const auto* route = static_cast<const rtmsg*>(NLMSG_DATA(&message));
  const bool isInternet = route->rtm_family == AF_INET || route->rtm_family == AF_INET6;
  const bool isDead = (route->rtm_flags & (RTNH_F_DEAD | RTNH_F_LINKDOWN | RTM_F_CLONED)) != 0;
  if (!isInternet || isDead || route->rtm_dst_len != 0 || route->rtm_type != RTN_UNICAST) return false;

  std::uint32_t table = route->rtm_table;
  bool runs = false;
  auto left = static_cast<int>(RTM_PAYLOAD(&message));
  for (const rtattr* attribute = RTM_RTA(route); RTA_OK(attribute, left); attribute = RTA_NEXT(attribute, left)) {
    if (attribute->rta_type == RTA_TABLE) table = read<std::uint32_t>(attribute);
    if (attribute->rta_type == RTA_OIF) runs = runs || links.isRunning(read<int>(attribute));
    if (attribute->rta_type == RTA_MULTIPATH) runs = runs || anyNextHopRuns(attribute, links);
  }
  return table == RT_TABLE_MAIN && runs;
}

}  // namespace

std::optional<NetworkStatus> currentNetworkStatus() {
  Links links;
  if (!dump(RTM_GETLINK, [&](const nlmsghdr& message) { links.note(message); })) return std::nullopt;
  bool found = false;
  const auto look = [&](const nlmsghdr& message) { found = found || isUsableDefaultRoute(message, links); };
  if (!dump(RTM_GETROUTE, look)) return std::nullopt;
  return found ? NetworkStatus::satisfied : NetworkStatus::unsatisfied;
}

FileDescriptor openRouteChanges() {
  return openRouteSocket(changeGroups, SOCK_NONBLOCK);
}

void discardRouteChanges(const FileDescriptor& changes) {
  std::array<char, messageBytes> buffer;
  while (::recv(changes.get(), buffer.data(), buffer.size(), 0) > 0 || errno == ENOBUFS || errno == EINTR) {
  }
}

}  // namespace quillon
