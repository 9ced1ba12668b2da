// Lets the user choose where a file is saved.
#pragma once

#include <functional>
#include <memory>
#include <string>

namespace quillon {

struct FileToSave {
  std::string title;   // of the dialog, in the user's language
  std::string accept;  // the label of the button that saves
  std::string name;    // suggested to the user
  std::string content;
};

enum class SaveOutcome {
  saved,
  cancelled,    // by the user
  unavailable,  // no dialog can be shown
  failed,       // the file could not be written; an existing one is unchanged
};

// Destruction closes the dialog; the file is not written unless writing has begun.
class FileChoice {
 public:
  virtual ~FileChoice() = default;
};

// Thread-safe. Never throws, never waits.
class FileChooser {
 public:
  virtual ~FileChooser() = default;

  // Shows the dialog and writes the file, then calls `done` from any thread, once, unless the result is destroyed
  // before. There is one dialog at a time: a second call ends the first with `cancelled`.
  [[nodiscard]] virtual std::unique_ptr<FileChoice> save(FileToSave file, std::function<void(SaveOutcome)> done) = 0;
};

}  // namespace quillon
