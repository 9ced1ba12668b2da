// The file chooser of a Linux desktop.
#pragma once

#include <memory>
#include <mutex>
#include <optional>

#include "platform/FileChooser.h"
#include "platform/linux/WorkerThread.h"

namespace quillon {

// Thread-safe. Uses the portal's dialog (org.freedesktop.portal.FileChooser) on the session bus, on a thread of its
// own, which the first save() starts and destruction joins; it also writes the file. The dialog has no parent window,
// and the portal closes it when the connection is lost.
class LinuxFileChooser : public FileChooser {
 public:
  LinuxFileChooser();
  ~LinuxFileChooser() override;

  std::unique_ptr<FileChoice> save(FileToSave file, std::function<void(SaveOutcome)> done) override;

 private:
  class Portal;
  class Choice;

  bool begin();

  const std::shared_ptr<Portal> portal_;
  std::mutex mutex_;                    // guards the member below
  std::optional<WorkerThread> thread_;  // runs the portal's loop
};

}  // namespace quillon
