// A file chooser with scripted answers.
#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <utility>

#include "platform/FileChooser.h"

namespace quillon {

// Thread-safe. A dialog stays open until answer() is called.
class MemoryFileChooser : public FileChooser {
 public:
  std::unique_ptr<FileChoice> save(FileToSave file, std::function<void(SaveOutcome)> done) override {
    end(SaveOutcome::cancelled);
    const std::scoped_lock lock(mutex_);
    auto open = std::make_shared<Open>(std::move(file), std::move(done));
    open_ = open;
    return std::make_unique<Choice>(std::move(open));
  }

  // Ends the open dialog with this outcome. False when there is none.
  bool answer(SaveOutcome outcome) { return end(outcome); }
  // The files that were saved, by their names.
  std::map<std::string, std::string> files() const {
    const std::scoped_lock lock(mutex_);
    return files_;
  }

 private:
  struct Open {
    FileToSave file;
    std::function<void(SaveOutcome)> done;
  };
  class Choice : public FileChoice {
   public:
    explicit Choice(std::shared_ptr<Open> open) : open_(std::move(open)) {}

   private:
    const std::shared_ptr<Open> open_;
  };

  bool end(SaveOutcome outcome) {
    std::shared_ptr<Open> ended;
    {
      const std::scoped_lock lock(mutex_);
      ended = std::exchange(open_, {}).lock();
      if (ended && outcome == SaveOutcome::saved) files_[ended->file.name] = ended->file.content;
    }
    if (ended) ended->done(outcome);
    return ended != nullptr;
  }

  mutable std::mutex mutex_;  // guards the members below
  std::weak_ptr<Open> open_;  // expires with the caller's handle
  std::map<std::string, std::string> files_;
};

}  // namespace quillon
