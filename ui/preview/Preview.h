// A user's screens of one configuration, in a window.
#pragma once

#include <QImage>
#include <QQuickItem>
#include <QQuickWindow>
#include <QSize>
#include <memory>
#include <optional>
#include <string>

#include "platform/ScreenServices.h"
#include "ui/preview/PreviewDevice.h"
#include "ui/preview/StandInPage.h"
#include "ui/qtquick/QtScreenPresenter.h"

namespace quillon::preview {

// What a user looks at, and how.
struct View {
  std::string screen = "banner";
  std::string language = "en";
  std::string location = {};  // empty: elsewhere
  QSize size = {390, 844};
  bool isDark = false;
  double scale = 1;

  bool isWebView() const { return screen == "web" || screen == "blocked"; }
};

// The size in "WIDTHxHEIGHT"; nullopt when it is none, or too large.
[[nodiscard]] std::optional<QSize> sizeFrom(const std::string& text);

// For the main thread. Nothing is stored or sent.
class Preview {
 public:
  // The presenter, whose appearance should be the view's, may serve several previews one after the other.
  Preview(View view, std::string document, std::shared_ptr<QtScreenPresenter> presenter);
  // Takes the screen away.
  ~Preview();

  // Opens the window and sets the SDK up. False when the document is no valid configuration.
  bool start();
  // Shows the screen of that name in place of the one that is shown.
  void present(const std::string& screen);
  // Of the screen that is shown, at rest; null when it does not appear.
  QImage picture();

  // The item of the screen; null when there is none.
  QQuickItem* screen() const { return presenter_->topItem(); }

 private:
  std::string linkOfPage() const { return page_ ? page_->address() : "https://elsewhere.example/offer?id=42"; }
  void settle();
  void dismiss();
  bool isShown() const;
  bool hasPage(const QObject& model) const;
  QImage pictureOfPage();

  View view_;
  std::optional<StandInPage> page_;
  const std::shared_ptr<QtScreenPresenter> presenter_;
  PreviewDevice device_;
  ConsentSDK sdk_;
  QQuickWindow window_;
};

}  // namespace quillon::preview
