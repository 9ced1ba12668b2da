// Draws pictures on request, for a program that keeps this process running.
#pragma once

namespace quillon::preview {

// Answers requests on standard input until it ends, one at a time. A request is a line of JSON, {"screen", "language",
// "location", "size": "390x844", "dark", "scale", "bytes"}, followed by that many bytes of the document. The response
// on standard output is a line {"bytes", "answers"}, followed by a PNG picture of that many bytes, or a line {"error"}.
// "answers" are a banner's, with the members of MeasuredAnswer. Returns the exit status: 1 after a malformed request,
// since the beginning of the next one is then unknown.
[[nodiscard]] int drawPictures();

}  // namespace quillon::preview
