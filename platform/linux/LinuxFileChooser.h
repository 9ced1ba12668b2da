// The file chooser of a Linux desktop.
#pragma once

#include <memory>
#include <mutex>
#include <optional>

#include "platform/FileChooser.h"
#include "platform/linux/WorkerThread.h"

namespace quillon {

// Thread-safe. The dialog of the portal (org.freedesktop.portal.FileChooser) on the session bus, on a thread of its
// own, which the first file starts and destruction joins; it also writes the file. The dialog belongs to no window, and
// is closed by the portal when the connection goes.
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
