// A view model on the main queue of a device whose screens are recorded.
#pragma once

#include <gtest/gtest.h>

#include <boost/json/object.hpp>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/memory/RecordingPresenter.h"
#include "tests/support/World.h"
#include "ui/Common/Published.h"

namespace quillon::test {

template <class Model>
struct OnMainQueue : ::testing::Test {
  using ViewModel = Model;
  using Strings = std::vector<std::string>;

  OnMainQueue() {
    world.amend = [this](Platform& platform) { platform.screens = presenter; };
  }
  ~OnMainQueue() override {
    if (world.sdk) world.onMain([this] { model.reset(); });
  }

  void onMain(const std::function<void()>& action) {
    world.onMain(action);
    world.settle();
  }
  void act(const std::function<void(Model&)>& action) {
    onMain([&] { action(*model); });
  }
  template <class Value>
  Value read(const Published<Value> Model::* property) {
    std::optional<Value> value;
    world.onMain([&] { value = ((*model).*property).get(); });
    return *value;
  }
  std::string status(int purpose) { return world.text(std::to_string(purpose)).value_or("none"); }

  boost::json::object document = validConfiguration();
  World world;
  std::shared_ptr<RecordingPresenter> presenter = std::make_shared<RecordingPresenter>();
  std::shared_ptr<Model> model;
};

}  // namespace quillon::test
