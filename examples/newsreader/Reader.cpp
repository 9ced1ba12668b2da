#include "Reader.h"

#include <chrono>

Reader::Reader(quillon::ConsentSDK& sdk) : sdk_(sdk) {
  connect(&refresh_, &QTimer::timeout, this, &Reader::consentsChanged);
  refresh_.start(std::chrono::milliseconds(250));
}
