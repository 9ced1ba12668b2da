// A key store in memory.
#pragma once

#include <mutex>

#include "platform/KeyStore.h"

namespace quillon {

// Thread-safe. Its secrets are a fixed sequence, the same in every run.
class MemoryKeyStore : public KeyStore {
 public:
  std::expected<Secret, std::string> secret() override {
    const std::scoped_lock lock(mutex_);
    return secret_;
  }
  std::expected<void, std::string> forget() override {
    const std::scoped_lock lock(mutex_);
    ++secret_[0];
    return {};
  }

 private:
  std::mutex mutex_;
  Secret secret_{1};
};

}  // namespace quillon
