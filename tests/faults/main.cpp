// Injects faults into the SDK's surroundings, row by row, and prints what the user sees.
#include <fcntl.h>

#include <CLI/CLI.hpp>
#include <exception>
#include <iomanip>
#include <iostream>
#include <sstream>

#include "tests/faults/ProcessEnd.h"
#include "tests/faults/Row.h"
#include "tests/support/TemporaryFolder.h"

namespace quillon::test {
namespace {

struct Area {
  std::string_view name;
  std::vector<Row> (*rows)();
  // Why the rows are skipped with the thread sanitizer; empty for rows about threads.
  std::string_view withoutThreads = {};
};

constexpr Area areas[] = {
    {"store", storeRows, "one thread works on a file at a time, whatever stands in it"},
    {"sweep", sweepRows, "a process for each call, and in it one thread works"},
    {"power", powerRows, "one thread does everything"},
    {"process", processRows, "the sanitizer does not survive the forks of a process with threads"},
    {"host", hostRows},
    {"network", networkRows},
};

constexpr int leftOutStatus = 77;

// The error line that contains the text, else the first error.
std::string errorLine(const std::string& log, const std::string& text) {
  std::istringstream lines(log);
  std::string first;
  for (std::string line; std::getline(lines, line);) {
    if (line.find("[ERROR]") == std::string::npos) continue;
    if (!text.empty() && line.find(text) != std::string::npos) return line;
    if (first.empty()) first = line;
  }
  return first;
}

// Runs in the row's process: prints the result, and deviations on standard error.
int carryOut(const Row& row, bool isShort) {
  Trial trial(isShort);
  try {
    const auto [status, log, stored] = row.run(trial);
    const auto error = errorLine(log, row.sees.log);
    std::cout << "status: " << status << "; log: " << (error.empty() ? "-" : error) << "; stored: " << stored
              << (trial.told().empty() ? "" : "; " + trial.told()) << " | ";
    trial.expect(status == row.sees.status, "the status is not \"" + row.sees.status + '"');
    trial.expect(stored == row.sees.stored, "what is stored is not \"" + row.sees.stored + '"');
    trial.expect(row.sees.log.empty() ? error.empty() : error.find(row.sees.log) != std::string::npos,
                 "the log does not say \"" + row.sees.log + '"');
  } catch (const LeftOut& why) {
    std::cerr << why.what();
    return leftOutStatus;
  } catch (const std::exception& error) {
    trial.expect(false, std::string("the row broke off: ") + error.what());
  }
  for (const auto& failure : trial.failures()) std::cerr << "    " << failure << '\n';
  return trial.failures().empty() ? 0 : 1;
}

enum class Verdict { ok, failed, leftOut };

Verdict print(std::string_view area, const Row& row, bool isShort) {
  using Clock = std::chrono::steady_clock;
  std::cout << std::left << std::setw(8) << area << "| " << std::setw(24) << row.name << "| " << row.fault << " | "
            << std::flush;
  std::string said;  // on standard error, including its children's
  const auto attempt = [&] {
    const TemporaryFolder folder;
    std::filesystem::permissions(folder.path(), std::filesystem::perms(0755));  // a row may become another user
    const auto errors = folder.path() / "errors";
    const auto status = endOf(
        [&] {
          ::setpgid(0, 0);  // its children are killed with it
          // What killed processes leave behind is removed with this folder.
          ::setenv("TMPDIR", folder.path().c_str(), 1);
          ::dup2(::open(errors.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600), STDERR_FILENO);
          std::exit(carryOut(row, isShort));
        },
        row.limit);
    said = fileBytes(errors);
    return status;
  };
  const auto begin = Clock::now();
  auto status = attempt();
  // On a busy machine the leak check may fail to stop a thread, reports that, and counts the thread's memory as leaked:
  // such a result is discarded.
  for (int more = 3; more > 0 && status != 0 && said.contains("was not suspended. False leaks are possible"); --more) {
    std::cout << "once more, the leak check could not stop a thread: " << std::flush;
    status = attempt();
  }
  const auto duration = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - begin);
  const auto verdict = status == 0                                       ? Verdict::ok
                       : status && WEXITSTATUS(*status) == leftOutStatus ? Verdict::leftOut
                                                                         : Verdict::failed;
  std::cout << (verdict == Verdict::ok        ? "ok"
                : verdict == Verdict::leftOut ? "left out: " + said
                : status                      ? "FAILED with wait status " + std::to_string(*status)
                                              : "FAILED, hung")
            << " (" << duration.count() << " ms)\n";
  if (verdict == Verdict::failed) std::cout << said << '\n';
  return verdict;
}

int run(bool isShort, bool threads, const std::string& only) {
  int counts[3]{};
  std::cout << "area    | name                    | what is done | what the user sees | verdict\n";
  for (const auto& area : areas) {
    if (threads && !area.withoutThreads.empty()) {
      std::cout << std::left << std::setw(8) << area.name << "| left out: " << area.withoutThreads << '\n';
      continue;
    }
    for (const Row& row : area.rows()) {
      if (!only.empty() && row.name != only && area.name != only) continue;
      ++counts[static_cast<int>(print(area.name, row, isShort))];
    }
  }
  const auto [ok, failed, leftOut] = counts;
  std::cout << ok + failed + leftOut << " rows, " << failed << " failed, " << leftOut << " left out\n";
  return ok > 0 && failed == 0 ? 0 : 1;
}

}  // namespace
}  // namespace quillon::test

int main(int argc, char** argv) {
  CLI::App app("Carries out the table of faults and prints what a user sees of each");
  bool isShort = false;
  bool threads = false;
  std::string only;
  app.add_flag("--short", isShort, "few rounds of each");
  app.add_flag("--threads", threads, "those rows alone that are about threads");
  app.add_option("--only,only", only, "the row, or the area, of this name alone");
  CLI11_PARSE(app, argc, argv);
  // No row cuts the power, so none needs a disk; waiting for one would take a minute in total.
  ::setenv("TMPDIR", quillon::test::TemporaryFolder::fastParent().c_str(), 1);
  return quillon::test::run(isShort, threads, only);
}
