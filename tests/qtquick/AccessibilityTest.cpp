// The tree that a screen reader meets.
#include <gtest/gtest.h>

#include <QAccessible>

#include "tests/qtquick/ScreenWorld.h"

namespace quillon::test {
namespace {

using namespace std::chrono_literals;

struct Accessibility : testing::Test, ScreenWorld {
  // The first node with that role and name below the top-most screen; null when there is none.
  QAccessibleInterface* node(QAccessible::Role role, const std::string& name) const {
    for (QQuickItem* item : items()) {
      auto* interface = QAccessible::queryAccessibleInterface(item);
      if (interface && interface->role() == role && interface->text(QAccessible::Name).toStdString() == name) {
        return interface;
      }
    }
    return nullptr;
  }
  std::string description(QAccessible::Role role, const std::string& name) const {
    auto* found = node(role, name);
    return found ? found->text(QAccessible::Description).toStdString() : "no such node";
  }
};

TEST_F(Accessibility, TheBannerIsADialogWithAHeadingTextLinksAndButtons) {
  bannerOf(document)["banner_heading"] = {{"en", "Heading"}};
  bannerOf(document)["banner_text"] = {{"en", "Some <b>text</b> &amp; a <a href=\"https://a.example/\">link</a>"}};
  start();
  banner();
  for (const auto& [role, name] : {std::pair(QAccessible::Dialog, "Heading"),
                                   {QAccessible::Heading, "Heading"},
                                   {QAccessible::StaticText, "Some text & a link"},
                                   {QAccessible::Link, "link"},
                                   {QAccessible::Button, "Close"}}) {
    EXPECT_TRUE(node(role, name)) << name;
  }
  EXPECT_EQ(description(QAccessible::Button, "Accept"), "Double tap to activate");
  EXPECT_EQ(description(QAccessible::Button, "Reject"), "Double tap to activate");
  EXPECT_EQ(QAccessible::queryAccessibleInterface(window->activeFocusItem())->role(), QAccessible::Dialog);
}

TEST_F(Accessibility, ASwitchTellsItsStateAndWhatATapDoes) {
  start();
  preferenceCenter();
  EXPECT_TRUE(node(QAccessible::Heading, "Statistics"));
  EXPECT_EQ(description(QAccessible::CheckBox, "Statistics"), "Rejected. Double tap to turn to accepted");
  ASSERT_TRUE(node(QAccessible::CheckBox, "Statistics"));
  EXPECT_FALSE(node(QAccessible::CheckBox, "Statistics")->state().checked);
  EXPECT_EQ(description(QAccessible::CheckBox, "Security"), "Always Active. You cannot opt out from this Purpose.");
  EXPECT_TRUE(node(QAccessible::CheckBox, "Security")->state().checked);
  EXPECT_TRUE(description(QAccessible::CheckBox, "Advertising")
                  .starts_with("Rejected. Off: this device does not allow tracking. You can't toggle"));
  EXPECT_FALSE(control("Receipt")) << "unless the application offers it";
  EXPECT_TRUE(node(QAccessible::PageTab, "SDK Purposes")->state().selected);
  EXPECT_FALSE(node(QAccessible::PageTab, "Permissions")->state().selected);
}

TEST_F(Accessibility, WhatHappenedIsAddedToTheNameOfWhatWasUsed) {
  start();
  preferenceCenter();
  use("Select All", Way::key);
  EXPECT_TRUE(node(QAccessible::Button, "Select All. All applicable SDK Purposes are allowed."));
  advance(3500ms);
  EXPECT_TRUE(node(QAccessible::Button, "Select All"));
  use("Security", Way::key);
  advance(1500ms);
  EXPECT_TRUE(node(QAccessible::CheckBox, "Security. You cannot opt out from this Purpose."));
  EXPECT_TRUE(node(QAccessible::AlertMessage, "You cannot opt out from this Purpose."));
}

TEST_F(Accessibility, WhatLiesBelowASheetIsNotMetAndCannotBePressed) {
  start();
  banner();
  QAccessibleInterface* accept = node(QAccessible::Button, "Accept");
  QQuickItem* const bannerItem = top();
  QAccessibleInterface* dialog = QAccessible::queryAccessibleInterface(window->activeFocusItem());
  ASSERT_TRUE(accept && dialog);
  EXPECT_TRUE(dialog->state().modal);
  EXPECT_GT(dialog->childCount(), 0);
  use("Choose");
  screenWith("Statistics");
  use("Statistics");
  EXPECT_EQ(dialog->childCount(), 0);
  EXPECT_FALSE(dialog->state().modal);
  accept->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
  settle();
  EXPECT_NE(top(), bannerItem);
  key(Qt::Key_Escape);
  screenWith("Accept");
  EXPECT_GT(dialog->childCount(), 0);
  EXPECT_TRUE(top()->hasActiveFocus() || control("Choose")->hasActiveFocus());
  EXPECT_EQ(status(1), "none") << "choices that were not saved are discarded";
}

TEST_F(Accessibility, EveryNodeHasANameAndEveryLinkOneOfItsOwn) {
  auto& purpose = document["purposes"].as_array()[0].as_object();
  purpose["sdks"] = {{{"sdk_id", 1}, {"sdk_name", {{"en", "Acme"}}}, {"website", "https://a.example/"}},
                     {{"sdk_id", 2}, {"sdk_name", {{"en", "Umbra"}}}, {"website", "https://b.example/"}}};
  start();
  preferenceCenter();
  use("Details");
  for (QQuickItem* item : items()) {
    const auto* interface = QAccessible::queryAccessibleInterface(item);
    EXPECT_FALSE(interface && interface->text(QAccessible::Name).isEmpty()) << item->metaObject()->className();
  }
  EXPECT_TRUE(node(QAccessible::Link, "Developer URL, Acme"));
  EXPECT_TRUE(node(QAccessible::Link, "Developer URL, Umbra"));
  EXPECT_EQ(description(QAccessible::Button, "Details, Statistics"), "Expanded. Double tap to Collapse");
}

}  // namespace
}  // namespace quillon::test
