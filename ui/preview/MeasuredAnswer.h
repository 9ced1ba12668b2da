// A banner's answer buttons as measured on its picture.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

namespace quillon::preview {

struct MeasuredAnswer {
  std::string text = {};
  int width = 0;  // pixels
  int height = 0;
  int weight = 0;         // of the font; 400 is regular
  double contrast = 1;    // of the button's text
  double prominence = 1;  // contrast between the button and its surroundings
};

// Whether no answer is more than a tenth larger, bolder or of higher contrast than another.
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
