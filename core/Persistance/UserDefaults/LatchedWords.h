// A hash table of words for lock-free readers and one writer.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace quillon {

// A sequence latch: two copies, of which readers use one while the writer changes the other; then it swaps them and
// repeats the change. A reader that was overtaken retries, so each read is consistent, and no thread sees an earlier
// state after a later one. Readers take no lock, write nothing, allocate nothing, and are not blocked by a writer that
// is stopped at any point. Everything they touch is atomic and stays allocated: outgrown arrays, each half as large as
// the next, are kept.
class LatchedWords {
 public:
  using Key = std::uint64_t;
  using Word = std::uint32_t;

  // A change of the word under a key; an absent word is zero.
  struct Edit {
    Key key = 0;
    Word cleared = 0;
    Word set = 0;
  };

  using Hash = std::size_t (*)(Key);

  // Open addressing. While the writer changes it, a reader may find any mixture of old and new.
  class Index {
   public:
    // Words use the other bits.
    static constexpr Word taken = Word{1} << 31;

    // Zero if absent.
    template <class IsKey>
    [[nodiscard]] Word find(std::size_t hash, IsKey isKey) const noexcept {
      const Slot* const slots = slots_.load(std::memory_order_acquire);
      const std::size_t mask = slots->key.load(std::memory_order_relaxed);
      for (std::size_t probes = 0; probes <= mask; ++probes) {
        const Slot& slot = slots[1 + ((hash + probes) & mask)];
        const Word word = slot.word.load(std::memory_order_acquire);
        if (word == 0) break;
        if (isKey(slot.key.load(std::memory_order_acquire))) return word & ~taken;
      }
      return 0;
    }

   private:
    friend class LatchedWords;

    struct Slot {
      std::atomic<Key> key{0};
      std::atomic<Word> word{0};
    };

    // Replaces the slots; null: clears them.
    void renew(Slot* grown) noexcept;
    void edit(Hash hash, const Edit& edit) noexcept;
    std::size_t mask() const noexcept { return slots_.load(std::memory_order_relaxed)->key; }

    // The key of the first slot is the index mask of the others.
    std::atomic<Slot*> slots_{nullptr};
    std::size_t used_ = 0;  // slots in use; for the writer only
  };

  struct alignas(64) Copy {
    std::atomic<Word> header{0};
    Index numbers;  // hashed by the key itself
    Index names;    // hashed by the text that the key, a `const std::string*`, points to
  };

  LatchedWords();

  // The result of `read(const Copy&)`, which is called until it saw a consistent state.
  template <class Read>
  [[nodiscard]] auto read(Read read) const {
    for (;;) {
      const auto turn = turn_.load(std::memory_order_acquire);
      auto result = read(copies_[turn & 1]);
      // Not reordered before the loads in between, which are acquiring.
      if (turn_.load(std::memory_order_relaxed) == turn) return result;
    }
  }

  struct Change {
    std::vector<Edit> numbers = {};
    std::vector<Edit> names = {};
    Word header = 0;
  };
  // Applies the change atomically for readers. One call at a time. Out of memory it throws and changes nothing; without
  // edits it allocates nothing.
  void apply(const Change& change);

  // For the writer: the header, and the keys that have a word.
  [[nodiscard]] Word header() const noexcept { return inUse().header.load(std::memory_order_relaxed); }
  [[nodiscard]] std::vector<Key> keys(Index Copy::* index) const;

  // The text of a key among the names.
  [[nodiscard]] static std::string_view nameOf(Key key) noexcept {
    return *reinterpret_cast<const std::string*>(key);  // NOLINT(performance-no-int-to-ptr)
  }
  [[nodiscard]] static std::size_t hashOf(Key number) noexcept {
    return static_cast<std::size_t>((number * 0x9e3779b97f4a7c15) >> 32);
  }
  [[nodiscard]] static std::size_t hashOf(std::string_view name) noexcept {
    return std::hash<std::string_view>()(name);
  }

 private:
  struct Part;
  struct Renewal;

  [[nodiscard]] const Copy& inUse() const noexcept { return copies_[turn_.load(std::memory_order_relaxed) & 1]; }
  [[nodiscard]] Index::Slot* makeSlots(std::size_t capacity);
  [[nodiscard]] Renewal renewalFor(const Part& part, const std::vector<Edit>& edits);

  alignas(64) std::atomic<std::uint64_t> turn_{0};  // the low bit selects the copy to read
  std::array<Copy, 2> copies_;
  std::vector<std::unique_ptr<Index::Slot[]>> kept_;  // all arrays, in use or outgrown
};

}  // namespace quillon
