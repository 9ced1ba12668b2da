// The cost of a screen with a configuration of 1.5 MB: how long the call blocks the main loop, the loop's longest turn
// until the screen is complete, and the time to the first frame. For comparison, a sheet with one line of text, the
// minimum for any screen of the toolkit.
#include <benchmark/benchmark.h>

#include <time.h>
#include <QAbstractEventDispatcher>
#include <QFont>
#include <QGuiApplication>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QThreadPool>

#include <algorithm>
#include <chrono>
#include <functional>
#include <optional>
#include <stdexcept>
#include <thread>

#include "bench/ConfigurationDocument.h"
#include "bench/Device.h"
#include "bench/Expectation.h"
#include "bench/NewProcess.h"
#include "ui/qtquick/MainQueue.h"
#include "ui/qtquick/QtScreenPresenter.h"

namespace quillon::bench {
namespace {

using SteadyClock = std::chrono::steady_clock;

double millisecondsSince(SteadyClock::time_point begin) {
  return std::chrono::duration<double, std::milli>(SteadyClock::now() - begin).count();
}

// Processor time of the calling thread: how long we block the loop, independent of other load.
double processorMilliseconds() {
  timespec time{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

// One application per process, rendered by the processor in the main loop.
void startApplication() {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  qputenv("QT_QUICK_BACKEND", "software");
  static int count = 1;
  static char name[] = "bench";
  static char* arguments[] = {name, nullptr};
  // Never destroyed: parts of the toolkit are destroyed first at process exit.
  [[maybe_unused]] static const auto* const application = new QGuiApplication(count, arguments);
}

// An application with a window and a monitored main loop.
class Application {
 public:
  Application() {
    startApplication();
    window.resize(390, 844);
    window.show();
    QObject::connect(&window, &QQuickWindow::frameSwapped, &window, [this] {
      if (begin_ && !firstFrame && hasSomethingToShow()) firstFrame = millisecondsSince(*begin_);
    });
    idle(20);
  }

  // Calls, then runs the loop until `isComplete` has held for a while.
  void measure(const std::function<void()>& call, const std::function<bool()>& isComplete) {
    begin_ = SteadyClock::now();
    const double before = processorMilliseconds();
    call();
    held = processorMilliseconds() - before;
    for (int completeTurns = 0; completeTurns < 50;) {
      const double turn = this->turn();
      longestTurn = std::max(longestTurn, turn);
      completeTurns = isComplete() && firstFrame ? completeTurns + 1 : 0;
      if (millisecondsSince(*begin_) > 10'000) throw std::runtime_error("the screen does not come");
    }
  }
  void idle(int turns) {
    while (turns-- > 0) turn();
  }

  QQuickWindow window;
  std::function<bool()> hasSomethingToShow = [] { return true; };
  double held = 0;
  double longestTurn = 0;
  std::optional<double> firstFrame;

 private:
  // One turn of the loop, in milliseconds of processor time.
  static double turn() {
    const double before = processorMilliseconds();
    const bool hasWorked = QAbstractEventDispatcher::instance()->processEvents(QEventLoop::AllEvents);
    const double took = processorMilliseconds() - before;
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    if (!hasWorked) std::this_thread::sleep_for(std::chrono::microseconds(500));
    return took;
  }

  std::optional<SteadyClock::time_point> begin_;
};

void report(benchmark::State& state, const Application& application) {
  state.SetIterationTime(*application.firstFrame / 1000);
  state.counters["call"] = application.held;
  state.counters["longest turn"] = application.longestTurn;
}

// The SDK of an application that shows its screens.
struct Screens {
  Screens() {
    device.setUp();
    presenter->prepare();
    // Applications take longer to start than this.
    QThreadPool::globalInstance()->waitForDone();
  }

  // Shows the screen and waits until it is complete.
  void show(Application& application, void (*present)(Screens&)) {
    const auto shown = [this] {
      const QQuickItem* item = presenter->topItem();
      return item ? item->property("shown").toDouble() : 0;
    };
    application.hasSomethingToShow = [&] { return shown() > 0; };
    application.measure([&] { present(*this); },
                        [&] {
                          const bool isIdle =
                              device.sdk().settled().wait_for(std::chrono::seconds(0)) == std::future_status::ready;
                          return isIdle && shown() == 1;
                        });
  }

  const std::shared_ptr<QtScreenPresenter> presenter = QtScreenPresenter::make({.isDark = false, .textScale = 1});
  Device device = Device::showing(largeConfigurationDocument(), presenter,
                                  [](std::function<void()> job) { MainQueue::instance().post(std::move(job)); });
};

void presentBanner(Screens& screens) {
  screens.presenter->presentBanner(screens.device.sdk().screens());
}
void presentPreferenceCenter(Screens& screens) {
  screens.device.sdk().presentPreferenceCenter();
}

template <auto present>
void show(benchmark::State& state) {
  startApplication();
  Screens screens;
  for (auto _ : state) {
    Application application;
    screens.show(application, present);
    report(state, application);
    screens.presenter->dismissTopMost();
    while (screens.presenter->topItem()) application.idle(1);
    application.idle(1000);
  }
}

// The longest turn in a process without earlier text.
double longestTurnOfTheFirst(std::string_view /*contents*/) {
  startApplication();
  Screens screens;
  Application application;
  screens.show(application, presentPreferenceCenter);
  return application.longestTurn;
}
constexpr const char* kFirstScreen = "first-screen";
const bool isFirstKnown = registerFirstWork(kFirstScreen, longestTurnOfTheFirst);

void showTheFirst(benchmark::State& state) {
  for (auto _ : state) state.SetIterationTime(measuredInNewProcess(kFirstScreen, "/dev/null") / 1000);
}

void showAnEmptySheet(benchmark::State& state) {
  startApplication();
  QQmlEngine engine;
  QQmlComponent component(&engine);
  component.setData("import QtQuick\nRectangle { anchors.fill: parent; Text { text: 'Empty' } }", {});
  for (auto _ : state) {
    Application application;
    std::unique_ptr<QQuickItem> sheet;
    application.hasSomethingToShow = [&] { return sheet != nullptr; };
    application.measure(
        [&] {
          sheet.reset(qobject_cast<QQuickItem*>(component.create()));
          sheet->setParentItem(application.window.contentItem());
        },
        [] { return true; });
    report(state, application);
  }
}

void showings(benchmark::internal::Benchmark* benchmark) {
  benchmark->UseManualTime()->Iterations(1)->Repetitions(15)->ReportAggregatesOnly()->Unit(benchmark::kMillisecond);
}

BENCHMARK(show<presentBanner>)->Name("screens/banner")->Apply(showings);
BENCHMARK(show<presentPreferenceCenter>)->Name("screens/preference centre")->Apply(showings);
BENCHMARK(showTheFirst)->Name("screens/longest turn, first of a process")->Apply(showings);
BENCHMARK(showAnEmptySheet)->Name("screens/empty sheet")->Apply(showings);

constexpr double kLongestTurn = 8;  // milliseconds
const bool registered =
    expectAtMost({"call that presents the banner, ms", {"screens/banner", "call"}, {}, kLongestTurn}) &&
    expectAtMost({"longest turn of the loop, banner, ms", {"screens/banner", "longest turn"}, {}, kLongestTurn}) &&
    expectAtMost(
        {"call that presents the preference centre, ms", {"screens/preference centre", "call"}, {}, kLongestTurn}) &&
    expectAtMost({"longest turn of the loop, preference centre, ms",
                  {"screens/preference centre", "longest turn"},
                  {},
                  kLongestTurn}) &&
    expectAtMost({"longest turn of the loop, first screen of a process, ms",
                  {"screens/longest turn, first of a process"},
                  {},
                  kLongestTurn});

}  // namespace
}  // namespace quillon::bench
