#include <boost/json.hpp>

#include "receiver/officer/OfficerCommands.h"
#include "receiver/officer/StoreSession.h"

namespace quillon::receiver {
namespace {

namespace json = boost::json;

json::object toJson(const Upload& upload) {
  const Decision& decision = upload.decisions.front();
  return {{"tenant", upload.tenant},
          {"application", upload.application},
          {std::string(textOf(decision.kind)), decision.item},
          {"status", textOf(decision.status)},
          {"decided_at", decision.decidedAt},
          {"received_at", upload.receivedAt},
          {"essential", decision.isEssential},
          {"cause", decision.cause},
          {"implicit", upload.isImplicit},
          {"test", upload.isTest},
          {"version", upload.version},
          {"compliance", upload.compliance},
          {"place", upload.place},
          {"device", upload.device},
          {"sdk_version", upload.sdkVersion},
          {"advertising_id", upload.advertisingId},
          {"history_head", upload.historyHead}};
}

int exportSubject(DecisionStore& store, const Subject& subject) {
  const auto history = store.history(subject);
  if (!history) return failed(history.error().text);
  json::array decisions;
  for (const Upload& upload : *history) decisions.push_back(toJson(upload));
  std::puts(json::serialize(json::object{{"subject", subject.id}, {"decisions", std::move(decisions)}}).c_str());
  return std::fflush(stdout) == 0 ? 0 : failed("standard output cannot be written");
}

int eraseSubject(DecisionStore& store, const Subject& subject) {
  const auto erased = store.erase(subject);
  if (!erased) return failed(erased.error().text);
  std::printf("%lld decisions erased\n", static_cast<long long>(*erased));
  return 0;
}

void addSubjectCommand(CLI::App& app, int& exitCode, const char* name, const char* what,
                       int (*run)(DecisionStore&, const Subject&)) {
  auto* const command = app.add_subcommand(name, what);
  struct Options {
    std::string store;
    Subject subject;
  };
  const auto options = std::make_shared<Options>();
  command->add_option("--store", options->store, "Folder, or postgresql://…")->required();
  command->add_option("SUBJECT", options->subject.id, "The \"uuid\" of its uploads")->required();
  command->add_option("--tenant", options->subject.tenant, "Of this tenant alone");
  command->add_option("--application", options->subject.application, "Of this application alone");
  command->callback([options, &exitCode, run] {
    exitCode = withStore(options->store, [&](DecisionStore& store) { return run(store, options->subject); });
  });
}

}  // namespace

void addSubjectCommands(CLI::App& app, int& exitCode) {
  addSubjectCommand(app, exitCode, "export", "Print every decision of a subject as JSON, in its device's order",
                    &exportSubject);
  addSubjectCommand(app, exitCode, "erase", "Remove every decision of a subject", &eraseSubject);
}

}  // namespace quillon::receiver
