// The receipt in the preference centre, as a user asks for it.
#include <gtest/gtest.h>

#include <QAccessible>
#include <algorithm>

#include "platform/memory/MemoryFileChooser.h"
#include "tests/qtquick/ScreenWorld.h"
#include "tests/support/Contains.h"

namespace quillon::test {
namespace {

struct ReceiptOnTheScreen : testing::Test, ScreenWorld {
  ReceiptOnTheScreen()
      : ScreenWorld({.isDark = false, .textScale = 1, .isMotionReduced = true, .offersReceipt = true}) {
    const auto amend = world.amend;
    world.amend = [this, amend](Platform& platform) {
      amend(platform);
      platform.chooser = chooser;
      if (!isLinked) platform.receipts = nullptr;
    };
  }

  // Whether the screen says so, in a text that assistive technology finds with that role.
  bool says(const std::string& text, QAccessible::Role role) {
    return await([&] {
      return std::ranges::any_of(items(), [&](QQuickItem* item) {
        const auto* interface = QAccessible::queryAccessibleInterface(item);
        return interface && interface->role() == role &&
               interface->text(QAccessible::Name).toStdString().starts_with(text);
      });
    });
  }
  void open(Way way) {
    start();
    world.sdk->set({.purposeId = 1}, ConsentStatus::declined);
    settle();
    preferenceCenter();
    use("Receipt", way);
    screenWith("Save Receipt");
  }

  bool isLinked = true;
  std::shared_ptr<MemoryFileChooser> chooser = std::make_shared<MemoryFileChooser>();
};

TEST_F(ReceiptOnTheScreen, IsShownAndSavedByKeyboardPointerAndAssistiveTechnology) {
  for (const Way way : {Way::key, Way::mouse, Way::assistive}) {
    open(way);
    EXPECT_TRUE(says("Receipt", QAccessible::Grouping));
    EXPECT_TRUE(says("Statistics", QAccessible::Heading));
    EXPECT_TRUE(says("Identifier: ", QAccessible::StaticText));
    use("Save Receipt", way);
    EXPECT_TRUE(says("Choose where to save the receipt.", QAccessible::AlertMessage));
    EXPECT_TRUE(chooser->answer(SaveOutcome::saved));
    EXPECT_TRUE(says("The receipt is saved.", QAccessible::AlertMessage));
    EXPECT_TRUE(contains(chooser->files().at("receipt.json"), "dpv:ConsentReceipt"));
    EXPECT_TRUE(way != Way::key || says("Save Receipt. The receipt is saved.", QAccessible::Button));
    use("Receipt", way);
    EXPECT_FALSE(control("Save Receipt")) << "closed again";
    presenter->dismissTopMost();
    ASSERT_TRUE(isGone());
  }
}

TEST_F(ReceiptOnTheScreen, EveryOutcomeIsSaidAndTheScreenStays) {
  open(Way::mouse);
  const std::pair<SaveOutcome, const char*> rows[] = {
      {SaveOutcome::cancelled, "The receipt was not saved."},
      {SaveOutcome::unavailable, "This desktop cannot ask where to save a file."},
      {SaveOutcome::failed, "The receipt could not be saved."}};
  for (const auto& [outcome, text] : rows) {
    use("Save Receipt");
    EXPECT_TRUE(chooser->answer(outcome));
    EXPECT_TRUE(says(text, QAccessible::AlertMessage));
  }
  EXPECT_TRUE(chooser->files().empty());
  use("Save Receipt");
  key(Qt::Key_Escape);
  EXPECT_TRUE(isGone());
  settle();
  EXPECT_FALSE(chooser->answer(SaveOutcome::saved)) << "the dialog goes with the screen";
}

TEST_F(ReceiptOnTheScreen, IsNotThereWithoutTheLibraryAndNotSavedWithoutADialog) {
  chooser = nullptr;
  open(Way::mouse);
  use("Save Receipt");
  EXPECT_TRUE(says("This desktop cannot ask where to save a file.", QAccessible::AlertMessage));
  presenter->dismissTopMost();
  ASSERT_TRUE(isGone());
  isLinked = false;
  world.restart();
  start();
  preferenceCenter();
  use("Receipt");
  EXPECT_TRUE(says("The receipt is not available.", QAccessible::AlertMessage));
  EXPECT_TRUE(contains(world.log(), "quillon::proof is not linked"));
}

TEST_F(ReceiptOnTheScreen, ThatCannotBeMadeIsAFailureWithARetry) {
  start();
  preferenceCenter();
  use("Receipt");
  EXPECT_TRUE(says("The receipt is not available.", QAccessible::AlertMessage)) << "nothing was decided";
  EXPECT_FALSE(control("Save Receipt"));
  world.sdk->set({.purposeId = 1}, ConsentStatus::granted);
  use("Refresh");
  EXPECT_TRUE(await([&] { return control("Save Receipt") != nullptr; }));
}

}  // namespace
}  // namespace quillon::test
