// Displays a user's screens of one configuration in a window.
#pragma once

#include <QImage>
#include <QQuickItem>
#include <QQuickWindow>
#include <QSize>
#include <memory>
#include <optional>
#include <string>

#include "platform/ScreenServices.h"
#include "ui/preview/PlaceholderPage.h"
#include "ui/preview/PreviewDevice.h"
#include "ui/qtquick/QtScreenPresenter.h"

namespace quillon::preview {

// The displayed screen, the user and the display.
struct View {
  std::string screen = "banner";
  std::string language = "en";
  std::string location = {};  // empty: any other location
  QSize size = {390, 844};
  bool isDark = false;
  double scale = 1;

  bool isWebView() const { return screen == "web" || screen == "blocked"; }
};

// Parses "WIDTHxHEIGHT"; nullopt if invalid or too large.
[[nodiscard]] std::optional<QSize> sizeFrom(const std::string& text);

// Main thread only. Stores and sends nothing.
class Preview {
 public:
  // The presenter should have the view's appearance; previews may use it one after the other.
  Preview(View view, std::string document, std::shared_ptr<QtScreenPresenter> presenter);
  // Removes the screen.
  ~Preview();

  // Opens the window and sets the SDK up. False if the document is not a valid configuration.
  bool start();
  // Replaces the displayed screen by the one of that name.
  void present(const std::string& screen);
  // The picture of the displayed screen at rest; null if it does not appear.
  QImage picture();

  // The screen's item; null if there is none.
  QQuickItem* screen() const { return presenter_->topItem(); }

 private:
  std::string linkOfPage() const { return page_ ? page_->address() : "https://elsewhere.example/offer?id=42"; }
  void settle();
  void dismiss();
  bool isShown() const;
  bool hasPage(const QObject& model) const;
  QImage pictureOfPage();

  View view_;
  std::optional<PlaceholderPage> page_;
  const std::shared_ptr<QtScreenPresenter> presenter_;
  PreviewDevice device_;
  ConsentSDK sdk_;
  QQuickWindow window_;
};

}  // namespace quillon::preview
