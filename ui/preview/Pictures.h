// Pictures on demand, one after the other, for a program that keeps this one running.
#pragma once

namespace quillon::preview {

// Answers each request on standard input with a picture on standard output, until there are no more. A request is a
// line of JSON, {"screen", "language", "location", "size": "390x844", "dark", "scale", "bytes"}, and then so many
// bytes of the document. The answer is a line, {"bytes", "answers"}, and a PNG picture of so many bytes, or a line
// {"error"}; the answers are those of a banner, with the members of MeasuredAnswer. Returns the exit status: 1 when a
// request cannot be understood, as the next one could not be found.
[[nodiscard]] int drawPictures();

}  // namespace quillon::preview
