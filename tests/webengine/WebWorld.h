// An application whose web view is open, over a real engine.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "tests/qtquick/ScreenWorld.h"
#include "tests/webengine/Servers.h"
#include "ui/qtquick/QuickWebSurface.h"

namespace quillon::test {

// Whether every way past the filter can be closed. Where it cannot, the library refuses the engine, and the tests
// accept it for the sake of all others.
inline bool isEngineClosed = false;

std::string replaced(std::string text, std::string_view place, const std::string& value);

struct WebWorld : testing::Test {
  WebWorld();
  ~WebWorld() override;

  // False when the condition does not come true in time. The engine works in many small turns of the main
  // loop, so that it has the loop to itself meanwhile.
  bool await(const std::function<bool()>& condition, int limitMilliseconds = 10'000);

  // In texts, "$REFUSED" stands for the address of the server that must not be reached, "$HOST" for its host and port,
  // and "$ALLOWED" for the address of the other one.
  std::string filled(std::string text) const;
  void serve(const std::string& path, const std::string& body, httplib::Headers headers = {}, int status = 200);
  // Opens the link as the screens do, and waits for the browser.
  void open(const std::string& link);
  // Waits until the page on screen has been painted: before that it takes no clicks and keys.
  void paints();
  // Waits until a page with that title is shown.
  void shows(const std::string& title);
  // Evaluates a script in the page on screen. Empty also when the page goes away meanwhile.
  std::string evaluate(const std::string& script);
  // Clicks on the middle of the page.
  void click();

  bool isLoading() const { return sheet("isLoading").toBool(); }
  std::string title() const { return sheet("title").toString().toStdString(); }
  // What the sheet is fed with.
  QVariant sheet(const char* property) const;

  AllowedServer allowed;
  RefusedServer refused;
  ScreenWorld screens;
  QPointer<QuickWebSurface> surface;  // of the sheet that was opened last

 private:
  const WebSurfaceFactory factory_ = webSurfaceFactory();
};

inline constexpr auto blockedTitle = "This page is blocked";
// The address that the blocked page names.
inline constexpr auto blockedAddress = "document.getElementById('address')?.innerText";

}  // namespace quillon::test
