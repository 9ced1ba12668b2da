// The durable key-value store. One suite is one named, independent set of keys.
#pragma once

#include <chrono>
#include <cstdint>
#include <expected>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <variant>
#include <vector>

namespace quillon {

using PropertyDate = std::chrono::sys_time<std::chrono::milliseconds>;

// What a key can hold.
using PropertyValue =
    std::variant<bool, std::int64_t, std::string, PropertyDate, std::vector<std::int64_t>, std::vector<std::string>>;

// Lets a map of strings be searched with a string_view without making a string.
struct TransparentStringHash {
  using is_transparent = void;
  std::size_t operator()(std::string_view text) const noexcept { return std::hash<std::string_view>()(text); }
};

// The content of a suite at one moment.
using SuiteEntries = std::unordered_map<std::string, PropertyValue, TransparentStringHash, std::equal_to<>>;

// Keys to write, each with its new value or with nothing to remove it.
using SuiteChanges = std::map<std::string, std::optional<PropertyValue>, std::less<>>;

// Thread-safe. Never throws.
class KeyValueSuite {
 public:
  virtual ~KeyValueSuite() = default;

  // The committed content. Does not wait for a writer. A change made through this object is visible at once, one made
  // by another process at the latest 100 ms after it was committed.
  virtual std::shared_ptr<const SuiteEntries> snapshot() const = 0;

  // Receives the newest committed content and returns what to change; called exactly once, with every other writer of
  // the suite, in this process or another, held off. Must not call back into the suite.
  using Edit = std::function<SuiteChanges(const SuiteEntries& current)>;

  // Applies all changes of the edit or none of them. On success they are durable when this returns; on failure (disk
  // full, read-only, damaged, another writer that does not let go for two seconds) the suite is as it was and the
  // error says why.
  virtual std::expected<void, std::string> update(const Edit& edit) = 0;
};

// Thread-safe. Never throws.
class KeyValueStore {
 public:
  virtual ~KeyValueStore() = default;

  // Told of damage that was noticed and survived, in words for the log. Called from any thread, possibly while a call
  // of the suite is under way, so it must not call the suite itself.
  using Report = std::function<void(std::string message)>;

  // The suite of that name, created when it does not exist yet; the same object for every call with the same name (the
  // first report given is kept). Null when the suite can be neither opened nor created.
  virtual std::shared_ptr<KeyValueSuite> open(std::string_view name, Report report) = 0;

  // The process's standard defaults, which the host owns. Never null; empty where the platform has none.
  virtual std::shared_ptr<KeyValueSuite> standardDefaults() = 0;
};

}  // namespace quillon
