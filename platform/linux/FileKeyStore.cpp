#include "platform/linux/FileKeyStore.h"

#include <sys/random.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>

#include "platform/linux/FileCalls.h"

namespace quillon {
namespace {

constexpr const char* fileName = "receipt.key";

std::expected<std::string, std::string> unpredictableBytes() {
  std::string bytes(KeyStore::Secret().size(), '\0');
  for (std::size_t length = 0; length < bytes.size();) {
    const auto got = ::getrandom(bytes.data() + length, bytes.size() - length, 0);
    if (got < 0 && errno != EINTR) return std::unexpected(systemError("get random bytes for", fileName));
    if (got > 0) length += static_cast<std::size_t>(got);
  }
  return bytes;
}

// Unique among all writers, in this process and others.
std::filesystem::path nameForWriting(std::filesystem::path file) {
  static std::atomic<unsigned> count = 0;
  file += '.' + std::to_string(::getpid()) + '-' + std::to_string(++count);
  return file;
}

}  // namespace

std::expected<std::filesystem::path, std::string> FileKeyStore::file() const {
  const auto folder = files_->applicationSupportDirectory();
  if (!folder) return std::unexpected("there is no data folder for the key");
  return *folder / fileName;
}

std::expected<KeyStore::Secret, std::string> FileKeyStore::read(const std::filesystem::path& file) const {
  Secret secret;
  const auto bytes = files_->read(file, secret.size());
  if (!bytes) return std::unexpected(bytes.error());
  if (bytes->size() != secret.size()) {
    return std::unexpected(file.string() + ": is no key; delete it to have a new one made");
  }
  std::ranges::copy(*bytes, secret.begin());
  return secret;
}

std::expected<KeyStore::Secret, std::string> FileKeyStore::secret() {
  const auto kept = file();
  if (!kept) return std::unexpected(kept.error());
  if (files_->stamp(*kept)) return read(*kept);
  const auto fresh = unpredictableBytes();
  if (!fresh) return std::unexpected(fresh.error());
  if (auto made = files_->createDirectories(kept->parent_path()); !made) return std::unexpected(made.error());
  // Written under a unique name and then renamed, so that of several writers the first wins and all read its file.
  const auto mine = nameForWriting(*kept);
  if (auto written = files_->write(mine, *fresh); !written) return std::unexpected(written.error());
  const auto moved = files_->move(mine, *kept);
  if (!moved) {
    const auto removed = files_->remove(mine);
    if (!files_->stamp(*kept)) return std::unexpected(moved.error());
    if (!removed) return std::unexpected(removed.error());  // a second secret must not stay
  }
  return read(*kept);
}

std::expected<void, std::string> FileKeyStore::forget() {
  const auto kept = file();
  if (!kept || !files_->stamp(*kept)) return {};
  return files_->remove(*kept);
}

}  // namespace quillon
