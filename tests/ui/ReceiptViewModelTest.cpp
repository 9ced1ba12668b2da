#include "ui/PreferenceCenter/ReceiptViewModel.h"

#include <algorithm>

#include "platform/memory/MemoryFileChooser.h"
#include "proof/Check/Verification.h"
#include "tests/support/Contains.h"
#include "tests/ui/OnMainQueue.h"

namespace quillon::test {
namespace {

using Saving = ReceiptViewModel::Saving;

struct ReceiptInThePreferenceCenter : OnMainQueue<ReceiptViewModel> {
  ReceiptInThePreferenceCenter() {
    world.amend = [this](Platform& platform) {
      platform.chooser = chooser;
      if (!isLinked) platform.receipts = nullptr;
    };
  }

  void open() {
    auto options = world.options();
    options.languageCode = "de";
    options.controller = DataController{.name = "Reader Ltd"};
    world.start(options);
    onMain([this] { model = ReceiptViewModel::make(ConsentBannerViewModel::make(world.sdk->screens())); });
  }
  void load() {
    act([](ReceiptViewModel& shown) { shown.load(); });
  }
  void decideAndLoad() {
    const auto screens = world.sdk->screens();
    for (const bool choice : {false, true}) ASSERT_TRUE(screens->save({{1, choice}}, screens->keepNotice("{}")));
    load();
  }
  // What became of saving the receipt.
  Saving save(std::optional<SaveOutcome> outcome = {}) {
    act([](ReceiptViewModel& shown) { shown.save(); });
    EXPECT_TRUE(!outcome || chooser->answer(*outcome));
    world.settle();
    return read(&ReceiptViewModel::saving);
  }
  // The texts of the facts of that name.
  Strings facts(const std::string& name) {
    Strings texts;
    const auto shown = read(&ReceiptViewModel::lines);
    for (const auto& line : *shown.value()) {
      if (line.kind == ReceiptLine::Kind::fact && line.name == name) texts.push_back(line.text);
    }
    return texts;
  }

  bool isLinked = true;
  std::shared_ptr<MemoryFileChooser> chooser = std::make_shared<MemoryFileChooser>();
};

TEST_F(ReceiptInThePreferenceCenter, SaysTheNewestDecisionsInTheUsersLanguageAndIsSavedAsItIsShown) {
  open();
  decideAndLoad();
  EXPECT_EQ(facts("2023-11-14 22:13:20 UTC").front(), "Akzeptiert") << "not what was answered before";
  EXPECT_NE(std::ranges::count(facts("Verantwortlicher"), "Reader Ltd"), 0);
  EXPECT_EQ(save(SaveOutcome::saved), Saving::saved);
  const auto document = chooser->files().at("receipt.json");
  EXPECT_TRUE(contains(document, facts("Kennung").front()));
  proof::Findings findings;
  checkReceipt(document, {.now = startSeconds}, std::nullopt, findings);
  EXPECT_FALSE(findings.names("signature of the receipt"));
}

TEST_F(ReceiptInThePreferenceCenter, TellsWhatBecameOfTheNewestDialogOnly) {
  open();
  decideAndLoad();
  EXPECT_EQ(save(SaveOutcome::cancelled), Saving::cancelled);
  EXPECT_EQ(save(SaveOutcome::unavailable), Saving::unavailable);
  EXPECT_EQ(save(SaveOutcome::failed), Saving::failed);
  load();
  EXPECT_EQ(read(&ReceiptViewModel::saving), Saving::notAsked) << "of another receipt";
  for (int i = 0; i < 2; ++i) EXPECT_EQ(save(), Saving::choosing);
  world.onMain([this] { model.reset(); });
  EXPECT_FALSE(chooser->answer(SaveOutcome::saved)) << "the dialog goes with the screen";
}

TEST_F(ReceiptInThePreferenceCenter, WithoutADecisionALibraryOrADialogThereIsAWord) {
  const auto isUnavailable = [this] {
    load();
    return read(&ReceiptViewModel::lines).error() && save() == Saving::notAsked;
  };
  chooser = nullptr;
  open();
  EXPECT_TRUE(isUnavailable()) << "nothing was decided";
  decideAndLoad();
  EXPECT_EQ(save(), Saving::unavailable);
  isLinked = false;
  world.onMain([this] { model.reset(); });
  world.restart();
  open();
  EXPECT_TRUE(isUnavailable());
  EXPECT_TRUE(contains(world.log(), "quillon::proof is not linked"));
}

}  // namespace
}  // namespace quillon::test
