// The buttons by which a banner is answered, as its picture shows them.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

namespace quillon::preview {

struct MeasuredAnswer {
  std::string text = {};
  int width = 0;  // pixels
  int height = 0;
  int weight = 0;         // of the font, 400 is regular
  double contrast = 1;    // of the text on the button
  double prominence = 1;  // contrast of the button with what is around it
};

// Whether none of a banner's answers is more than a tenth larger, heavier or stronger than another.
[[nodiscard]] inline bool areAlike(const std::vector<MeasuredAnswer>& answers) {
  const auto alike = [&answers](auto member) {
    const auto [least, most] = std::ranges::minmax(answers, {}, member);
    return static_cast<double>(most.*member) <= 1.1 * static_cast<double>(least.*member);
  };
  return answers.empty() ||
         (alike(&MeasuredAnswer::width) && alike(&MeasuredAnswer::height) && alike(&MeasuredAnswer::weight) &&
          alike(&MeasuredAnswer::contrast) && alike(&MeasuredAnswer::prominence));
}

}  // namespace quillon::preview
