#include <gtest/gtest.h>
#include <zlib.h>

#include "tests/support/Contains.h"
#include "tests/support/World.h"
#include "ui/Common/Images/ImageFromBase64.h"

namespace quillon::test {
namespace {

using namespace std::string_literals;

std::string base64(std::string_view bytes) {
  constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  for (std::size_t at = 0; at < bytes.size(); at += 3) {
    unsigned bits = 0;
    for (std::size_t i = 0; i < 3; ++i) {
      bits = bits << 8 | (at + i < bytes.size() ? static_cast<unsigned char>(bytes[at + i]) : 0);
    }
    for (std::size_t i = 0; i < 4; ++i) text += at + i <= bytes.size() ? alphabet[bits >> (18 - 6 * i) & 63] : '=';
  }
  return text;
}

std::string bigEndian(std::uint64_t value, int count) {
  std::string bytes;
  while (count-- > 0) bytes += static_cast<char>(value >> (8 * count));
  return bytes;
}

std::string png(std::uint32_t width, std::uint32_t height) {
  return "\x89PNG\r\n\x1a\n\0\0\0\x0dIHDR"s + bigEndian(width, 4) + bigEndian(height, 4) + "\x08\x02\0\0\0crc4"s;
}
std::string gif(std::uint16_t width, std::uint16_t height) {
  const auto low = [](std::uint16_t value) {
    return std::string{static_cast<char>(value), static_cast<char>(value >> 8)};
  };
  return "GIF89a" + low(width) + low(height) + "\x80\0\0"s;
}
// With a segment that holds the beginning of another image, as thumbnails do, and a filling byte before the frame.
std::string jpeg(std::uint16_t width, std::uint16_t height, char frame = '\xc2') {
  return "\xff\xd8\xff\xe1\0\x0c\xff\xd8\xff\xc0\0\x0b\x08\0\x01\0\xff\xdb\0\x03Q\xff\xff"s + frame + "\0\x0b\x08"s +
         bigEndian(height, 2) + bigEndian(width, 2) + "\x01\x01\x11\0"s;
}

struct Base64Image : testing::Test {
  Base64Image() { world.restart(); }

  std::optional<EncodedImage> read(std::string_view text) { return imageFromBase64(text, world.sdk->logger()); }

  World world;
};

TEST_F(Base64Image, HasFormatAndSizeOfItsHeader) {
  const std::tuple<std::string, EncodedImage::Format, int, int> cases[]{
      {png(300, 2), EncodedImage::png, 300, 2},
      {gif(258, 3), EncodedImage::gif, 258, 3},
      {jpeg(640, 4), EncodedImage::jpeg, 640, 4},
  };
  for (const auto& [bytes, format, width, height] : cases) {
    const auto image = read(base64(bytes));
    ASSERT_TRUE(image) << width;
    EXPECT_EQ(image->bytes, bytes);
    EXPECT_EQ(image->format, format);
    EXPECT_EQ(std::pair(image->width, image->height), std::pair(width, height));
  }
}

TEST_F(Base64Image, IsReadFromWhateverTextHoldsBase64) {
  const auto text = base64(png(1, 1));
  for (const auto& same : {" \n" + text + "\t", "data:image/png;base64," + text, "\ndata:image/jpeg;base64," + text,
                           text.substr(0, 20) + "data:image/gif;base64,\r\n" + text.substr(20),
                           text.substr(0, 9) + "\xff-_%" + text.substr(9)}) {
    const auto image = read(same);
    ASSERT_TRUE(image) << same;
    EXPECT_EQ(image->bytes, png(1, 1)) << same;
  }
}

TEST_F(Base64Image, IsRefusedWithTheErrorOfItsStep) {
  const auto gifText = base64(gif(1, 1));  // ends in "=="
  const auto bare = gifText.substr(0, gifText.size() - 2);
  const std::pair<const char*, std::vector<std::string>> cases[]{
      {"Failed to decode base64 string.",
       {bare, bare + "=", bare + "=A=", bare + "======", "data:image/svg+xml;base64," + gifText,
        std::string((std::size_t{1} << 20) + 1, 'A')}},
      {"Failed to create UIImage from data.",
       {"", "data:image/webp;base64," + gifText, base64("BM, or whatever"), base64(png(0, 1)), base64(png(5001, 5000)),
        base64(png(0xffffffff, 0xffffffff)), base64(gif(1, 0)), base64(jpeg(65535, 65535)), base64(jpeg(1, 0)),
        base64(jpeg(1, 1, '\xc4')), base64("\xff\xd8\xff\xda\0\x02"s + jpeg(1, 1).substr(2)),
        base64("\xff\xd8\xff\xe0\0\x01"s + jpeg(1, 1).substr(2)), base64("\xff\xd8"s + std::string(1000, '\xff'))}},
  };
  EXPECT_TRUE(read(gifText));
  for (const auto& [error, texts] : cases) {
    for (const auto& text : texts) {
      EXPECT_FALSE(read(text)) << text.substr(0, 60);
      EXPECT_TRUE(contains(world.console->blocks().back(), error)) << text.substr(0, 60);
    }
  }
}

// What a decoder would work on for seconds, or fill the memory with.
TEST_F(Base64Image, IsRefusedWhenDecodingWouldCostTooMuch) {
  const auto chunk = [](const std::string& name, const std::string& data) {
    return bigEndian(data.size(), 4) + name + data + "crc4";
  };
  const auto deflated = [](std::size_t size) {
    const std::string zeros(size, '\0');
    uLongf length = compressBound(size);
    std::string data(length, '\0');
    compress(reinterpret_cast<Bytef*>(data.data()), &length, reinterpret_cast<const Bytef*>(zeros.data()), size);
    return data.substr(0, length);
  };
  const auto interlaced = [](std::string image) {
    image[28] = 1;
    return image;
  };
  const auto deep = [](std::string image) {
    image[24] = 16;
    image[25] = 6;
    return image;
  };
  const auto framed = [](std::string image, char width) {
    return image + std::string(6, '\0') + ",\0\0\0\0"s + width + "\0\1\0\0"s;
  };
  const auto scans = [](std::size_t count) {
    std::string text;
    while (count-- > 0) text += "\xff\xda";
    return text;
  };
  const std::tuple<const char*, std::string, std::string> cases[]{
      {"pixels", png(2000, 2000), png(2001, 2000)},
      {"a side", png(16'384, 1), png(16'385, 1)},
      {"interlaced pixels", interlaced(png(1000, 2000)), interlaced(png(1001, 2000))},
      {"pixels of eight bytes", deep(png(900, 2000)), deep(png(1000, 2000))},
      {"GIF pixels", gif(1000, 2000), gif(1001, 2000)},
      {"progressive pixels", jpeg(1000, 2000), jpeg(1001, 2000)},
      {"pixels in several scans", jpeg(1000, 2000, '\xc0') + scans(2), jpeg(1001, 2000, '\xc0') + scans(2)},
      {"scans", jpeg(10, 10) + scans(32), jpeg(10, 10) + scans(33)},
      {"inflated data", png(100, 100) + chunk("IDAT", deflated(30'100)), png(2, 2) + chunk("IDAT", deflated(30'100))},
      {"a frame larger than its screen", framed(gif(4, 4), 4), framed(gif(4, 4), 5)},
  };
  for (const auto& [what, cheap, dear] : cases) {
    EXPECT_TRUE(read(base64(cheap))) << what;
    EXPECT_FALSE(read(base64(dear))) << what;
  }
  const auto withTexts = read(base64(png(1, 1) + chunk("zTXt", deflated(1'000'000)) + chunk("IDAT", deflated(4))));
  ASSERT_TRUE(withTexts);
  EXPECT_EQ(withTexts->bytes, png(1, 1) + chunk("IDAT", deflated(4))) << "chunks that are not about pixels";
}

TEST_F(Base64Image, IsRefusedWhenItsHeaderIsCutAnywhere) {
  for (const auto& whole : {png(1, 1), gif(1, 1), jpeg(1, 1)}) {
    for (std::size_t length = 0; length < whole.size(); ++length) {
      EXPECT_FALSE(read(base64(whole.substr(0, length)))) << length << " of " << whole.size();
    }
    EXPECT_TRUE(read(base64(whole)));
  }
}

}  // namespace
}  // namespace quillon::test
