#pragma once

#include <CLI/CLI.hpp>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>

#include "receiver/store/DecisionStore.h"

namespace quillon::receiver {

inline int failed(const std::string& message) {
  std::fprintf(stderr, "quillon-receiver: %s\n", message.c_str());
  return 1;
}

// Runs a command on an existing store; a query must not create one.
inline int withStore(const std::string& address, const std::function<int(DecisionStore&)>& command) {
  if (!isPostgres(address) && !std::filesystem::exists(std::filesystem::path(address) / "decisions.db")) {
    return failed(address + ": there is no store");
  }
  const auto store = openStore(address);
  return store ? command(**store) : failed(store.error().text);
}

}  // namespace quillon::receiver
