// Draws a document's screens with the preview program, which keeps running between drawings.
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
  std::vector<preview::MeasuredAnswer> answers;  // of a banner; else empty
};

// Starts the program on first use, and again after a failure. Thread-safe; draws one picture at a time.
class WarmPreview {
 public:
  WarmPreview() = default;
  ~WarmPreview();

  WarmPreview(const WarmPreview&) = delete;
  WarmPreview& operator=(const WarmPreview&) = delete;

  // `view` has the members of a request in ui/preview/Pictures.h. The error is a sentence.
  [[nodiscard]] std::expected<DrawnScreen, std::string> draw(boost::json::object view, std::string_view document);

 private:
  using Deadline = std::chrono::steady_clock::time_point;

  bool start();
  void end();
  bool write(std::string_view bytes, Deadline deadline);
  // Reads more output of the program; false on timeout or failure.
  bool readMore(Deadline deadline);

  std::mutex mutex_;  // guards all below
  pid_t program_ = -1;
  int connection_ = -1;  // the program's standard input and output
  std::string read_;
};

}  // namespace quillon::tools
