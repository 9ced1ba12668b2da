#include "ui/PreferenceCenter/ReceiptViewModel.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "platform/memory/MemoryFileChooser.h"
#include "proof/Check/Verification.h"
#include "tests/support/Contains.h"
#include "tests/support/World.h"

namespace quillon::test {
namespace {

using Saving = ReceiptViewModel::Saving;

struct ReceiptInThePreferenceCenter : testing::Test {
  ReceiptInThePreferenceCenter() {
    world.amend = [this](Platform& platform) {
      platform.chooser = chooser;
      if (!isLinked) platform.receipts = nullptr;
    };
  }
  ~ReceiptInThePreferenceCenter() override {
    world.onMain([this] { model.reset(); });
  }

  void open() {
    world.server.serve(validConfiguration());
    auto options = world.options();
    options.languageCode = "de";
    options.controller = DataController{.name = "Reader Ltd"};
    world.start(options);
    world.onMain([this] {
      const auto banner = ConsentBannerViewModel::make(world.sdk->screens());
      model = ReceiptViewModel::make(banner);
    });
  }
  void decideAndLoad() {
    const auto screens = world.sdk->screens();
    ASSERT_TRUE(screens->save({{1, false}}, screens->keepNotice("{}")));
    ASSERT_TRUE(screens->save({{1, true}}, screens->keepNotice("{}")));
    act([](ReceiptViewModel& shown) { shown.load(); });
  }
  void act(const std::function<void(ReceiptViewModel&)>& action) {
    world.onMain([&] { action(*model); });
    world.settle();
  }
  Saving saving() {
    Saving now{};
    world.onMain([&] { now = model->saving.get(); });
    return now;
  }
  // The texts of the facts of that name.
  std::vector<std::string> facts(const std::string& name) {
    std::vector<std::string> texts;
    world.onMain([&] {
      ASSERT_TRUE(model->lines.get().value());
      for (const auto& line : *model->lines.get().value()) {
        if (line.kind == ReceiptLine::Kind::fact && line.name == name) texts.push_back(line.text);
      }
    });
    return texts;
  }

  bool isLinked = true;
  World world;
  std::shared_ptr<MemoryFileChooser> chooser = std::make_shared<MemoryFileChooser>();
  std::shared_ptr<ReceiptViewModel> model;
};

TEST_F(ReceiptInThePreferenceCenter, SaysTheNewestDecisionsInTheUsersLanguageAndIsSavedAsItIsShown) {
  open();
  decideAndLoad();
  EXPECT_EQ(facts("2023-11-14 22:13:20 UTC").front(), "Akzeptiert") << "not what was answered before";
  const auto controllers = facts("Verantwortlicher");
  EXPECT_NE(std::ranges::find(controllers, "Reader Ltd"), controllers.end());
  EXPECT_EQ(facts("Kennung").size(), 1u);
  act([](ReceiptViewModel& shown) { shown.save(); });
  EXPECT_EQ(saving(), Saving::choosing);
  EXPECT_TRUE(chooser->answer(SaveOutcome::saved));
  world.settle();
  EXPECT_EQ(saving(), Saving::saved);
  const auto document = chooser->files().at("receipt.json");
  EXPECT_TRUE(contains(document, facts("Kennung").front()));
  proof::Findings findings;
  checkReceipt(document, {.now = startSeconds}, std::nullopt, findings);
  EXPECT_FALSE(findings.names("signature of the receipt"));
}

TEST_F(ReceiptInThePreferenceCenter, TellsWhatBecameOfTheNewestDialogOnly) {
  open();
  decideAndLoad();
  const std::pair<SaveOutcome, Saving> rows[] = {{SaveOutcome::cancelled, Saving::cancelled},
                                                 {SaveOutcome::unavailable, Saving::unavailable},
                                                 {SaveOutcome::failed, Saving::failed}};
  for (const auto& [outcome, told] : rows) {
    act([](ReceiptViewModel& shown) { shown.save(); });
    EXPECT_TRUE(chooser->answer(outcome));
    world.settle();
    EXPECT_EQ(saving(), told);
  }
  act([](ReceiptViewModel& shown) { shown.load(); });
  EXPECT_EQ(saving(), Saving::notAsked) << "of another receipt";
  act([](ReceiptViewModel& shown) {
    shown.save();
    shown.save();
  });
  EXPECT_EQ(saving(), Saving::choosing);
  world.onMain([this] { model.reset(); });
  EXPECT_FALSE(chooser->answer(SaveOutcome::saved)) << "the dialog goes with the screen";
}

TEST_F(ReceiptInThePreferenceCenter, WithoutADecisionALibraryOrADialogThereIsAWord) {
  const auto isUnavailable = [this] {
    act([](ReceiptViewModel& shown) { shown.load(); });
    bool hasFailed = false;
    world.onMain([&] {
      hasFailed = model->lines.get().error() != nullptr;
      model->save();
    });
    return hasFailed && saving() == Saving::notAsked;
  };
  chooser = nullptr;
  open();
  EXPECT_TRUE(isUnavailable()) << "nothing was decided";
  decideAndLoad();
  act([](ReceiptViewModel& shown) { shown.save(); });
  EXPECT_EQ(saving(), Saving::unavailable);
  isLinked = false;
  world.onMain([this] { model.reset(); });
  world.restart();
  open();
  EXPECT_TRUE(isUnavailable());
  EXPECT_TRUE(contains(world.log(), "quillon::proof is not linked"));
}

}  // namespace
}  // namespace quillon::test
