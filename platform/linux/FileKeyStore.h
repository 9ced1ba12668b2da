// The secret in a file beside the store, readable to this user only.
#pragma once

#include <memory>

#include "platform/FileSystem.h"
#include "platform/KeyStore.h"

namespace quillon {

class FileKeyStore : public KeyStore {
 public:
  explicit FileKeyStore(std::shared_ptr<FileSystem> files) : files_(std::move(files)) {}

  std::expected<Secret, std::string> secret() override;
  std::expected<void, std::string> forget() override;

 private:
  [[nodiscard]] std::expected<std::filesystem::path, std::string> file() const;
  [[nodiscard]] std::expected<Secret, std::string> read(const std::filesystem::path& file) const;

  const std::shared_ptr<FileSystem> files_;
};

}  // namespace quillon
