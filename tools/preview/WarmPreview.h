// The screens of a document, drawn by the preview's program, which stays ready for the next ones.
#pragma once

#include <sys/types.h>

#include <boost/json/object.hpp>
#include <chrono>
#include <expected>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "ui/preview/MeasuredAnswer.h"

namespace quillon::tools {

struct DrawnScreen {
  std::string png;
  std::vector<preview::MeasuredAnswer> answers;  // of a banner
};

// Starts the program when it is first needed, and anew after it failed. Thread-safe; one picture is drawn at a time.
class WarmPreview {
 public:
  WarmPreview() = default;
  ~WarmPreview();

  WarmPreview(const WarmPreview&) = delete;
  WarmPreview& operator=(const WarmPreview&) = delete;

  // The view has the keys that ui/preview/Pictures.h names; the error is a sentence.
  [[nodiscard]] std::expected<DrawnScreen, std::string> draw(boost::json::object view, std::string_view document);

 private:
  using Deadline = std::chrono::steady_clock::time_point;

  bool start();
  void end();
  bool write(std::string_view bytes, Deadline deadline);
  // More of the program's answers; false when there are none in time.
  bool readMore(Deadline deadline);

  std::mutex mutex_;  // guards all below
  pid_t program_ = -1;
  int connection_ = -1;  // its standard input and output
  std::string read_;
};

}  // namespace quillon::tools
