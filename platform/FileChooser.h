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
  unavailable,  // nobody can ask the user
  failed,       // not written where the user wanted it; what was there before is still there
};

// Destruction closes the dialog; the file is not written unless it is being written already.
class FileChoice {
 public:
  virtual ~FileChoice() = default;
};

// Thread-safe. Never throws, never waits.
class FileChooser {
 public:
  virtual ~FileChooser() = default;

  // Asks the user and writes the file, then calls `done` from any thread, once unless the result is destroyed before.
  // There is one dialog at a time: another one ends the first as cancelled.
  [[nodiscard]] virtual std::unique_ptr<FileChoice> save(FileToSave file, std::function<void(SaveOutcome)> done) = 0;
};

}  // namespace quillon
