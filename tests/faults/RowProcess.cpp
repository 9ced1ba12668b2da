#include "tests/faults/RowProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <boost/json.hpp>
#include <cstdlib>
#include <exception>
#include <sstream>

#include "tests/support/TemporaryFolder.h"

namespace quillon::test {
namespace {

using Clock = std::chrono::steady_clock;

bool isError(const std::string& line) {
  return line.find("[ERROR]") != std::string::npos;
}

// The error line with that text; the first error of all where none has it.
std::string errorLine(const std::string& log, const std::string& text) {
  std::istringstream lines(log);
  std::string first;
  for (std::string line; std::getline(lines, line);) {
    if (!isError(line)) continue;
    if (!text.empty() && line.find(text) != std::string::npos) return line;
    if (first.empty()) first = line;
  }
  return first;
}

void compare(Trial& trial, std::string_view what, const std::string& wanted, const std::string& seen) {
  trial.expect(wanted == seen, std::string(what) + " is \"" + seen + "\", not \"" + wanted + "\"");
}

boost::json::value report(const Row& row, bool isShort) {
  Trial trial(isShort);
  Seen seen;
  std::string leftOut;
  try {
    seen = row.run(trial);
    compare(trial, "the status", row.sees.status, seen.status);
    compare(trial, "what is stored", row.sees.stored, seen.stored);
    seen.log = errorLine(seen.log, row.sees.log);
    trial.expect(row.sees.log.empty() ? seen.log.empty() : seen.log.find(row.sees.log) != std::string::npos,
                 "the log says \"" + seen.log + "\", not \"" + row.sees.log + "\"");
  } catch (const LeftOut& why) {
    leftOut = why.what();
  } catch (const std::exception& error) {
    trial.expect(false, std::string("the row broke off: ") + error.what());
  }
  return {{"status", seen.status},
          {"log", seen.log},
          {"stored", seen.stored},
          {"left out", leftOut},
          {"failures", boost::json::value_from(trial.failures())}};
}

// Everything that comes out of the pipe until its end; false when that has not come in time.
bool readAll(int pipe, Clock::time_point deadline, std::string& text) {
  for (;;) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
    pollfd waiting{.fd = pipe, .events = POLLIN, .revents = 0};
    if (left <= 0 || ::poll(&waiting, 1, static_cast<int>(left)) == 0) return false;
    char chunk[4096];
    const ssize_t count = ::read(pipe, chunk, sizeof chunk);
    if (count == 0) return true;
    if (count > 0) text.append(chunk, static_cast<std::size_t>(count));
  }
}

}  // namespace

Outcome carryOut(const Row& row, bool isShort) {
  const TemporaryFolder folder;
  const auto errors = folder.path() / "errors";
  const auto begin = Clock::now();
  int ends[2];
  if (::pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
  const pid_t process = ::fork();
  if (process < 0) throw std::runtime_error("no process");
  if (process == 0) {
    ::setpgid(0, 0);  // what it leaves behind is killed with it
    ::close(ends[0]);
    ::dup2(::open(errors.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600), STDERR_FILENO);
    const auto text = boost::json::serialize(report(row, isShort));
    const bool said = ::write(ends[1], text.data(), text.size()) == static_cast<ssize_t>(text.size());
    std::exit(said ? 0 : 1);  // by the front door, where the leak check stands
  }
  ::close(ends[1]);
  std::string text;
  const bool inTime = readAll(ends[0], begin + row.limit, text);
  ::close(ends[0]);

  Outcome outcome;
  outcome.duration = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - begin);
  if (!inTime) {
    ::kill(-process, SIGKILL);
    ::kill(process, SIGKILL);  // when it had no time to make a group
    outcome.failures.push_back("hung for " + std::to_string(row.limit.count()) + " s");
  }
  int status = 0;
  while (::waitpid(process, &status, 0) < 0 && errno == EINTR) {
  }
  if (inTime && status != 0) {
    outcome.failures.push_back("died with wait status " + std::to_string(status));
  }
  if (const auto parsed = text.empty() ? boost::json::value() : boost::json::parse(text); parsed.is_object()) {
    outcome.seen = {.status = parsed.at("status").as_string().c_str(),
                    .log = parsed.at("log").as_string().c_str(),
                    .stored = parsed.at("stored").as_string().c_str()};
    outcome.leftOut = parsed.at("left out").as_string().c_str();
    for (const auto& failure : parsed.at("failures").as_array()) outcome.failures.emplace_back(failure.as_string());
  }
  // What its own children reported, too.
  if (const auto said = fileBytes(errors); !outcome.passed() && !said.empty()) outcome.failures.push_back(said);
  return outcome;
}

}  // namespace quillon::test
