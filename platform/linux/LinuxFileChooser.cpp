#include "platform/linux/LinuxFileChooser.h"

#include <atomic>
#include <string>
#include <system_error>
#include <utility>

#include "platform/linux/Bus/BusService.h"
#include "platform/linux/Bus/DesktopPortal.h"
#include "platform/parts/Contained.h"

namespace quillon {
namespace {

constexpr const char* chooserInterface = "org.freedesktop.portal.FileChooser";
constexpr const char* requestInterface = "org.freedesktop.portal.Request";

// The object path of the portal's response, computed before the call so that no response is missed.
std::string requestPath(GDBusConnection* connection, const std::string& token) {
  std::string sender = g_dbus_connection_get_unique_name(connection);
  std::erase(sender, ':');
  for (char& c : sender) {
    if (c == '.') c = '_';
  }
  return std::string(portal::path) + "/request/" + sender + '/' + token;
}

GVariant* saveArguments(const FileToSave& file, const std::string& token) {
  GVariantBuilder options;
  g_variant_builder_init(&options, G_VARIANT_TYPE_VARDICT);
  g_variant_builder_add(&options, "{sv}", "handle_token", g_variant_new_string(token.c_str()));
  g_variant_builder_add(&options, "{sv}", "accept_label", g_variant_new_string(file.accept.c_str()));
  g_variant_builder_add(&options, "{sv}", "current_name", g_variant_new_string(file.name.c_str()));
  return g_variant_new("(ssa{sv})", "", file.title.c_str(), &options);
}

// Empty unless the response contains one local file.
std::string chosenFile(GVariant* results) {
  const GLibPointer<GVariant> uris(g_variant_lookup_value(results, "uris", G_VARIANT_TYPE_STRING_ARRAY));
  if (!uris || g_variant_n_children(uris.get()) != 1) return {};
  const char* uri = nullptr;
  g_variant_get_child(uris.get(), 0, "&s", &uri);
  const GLibPointer<char> path(g_filename_from_uri(uri, nullptr, nullptr));
  return path ? path.get() : std::string();
}

// Atomic; a new file is readable to this user only. Uses the local file system, never another GVfs backend.
SaveOutcome write(const std::string& path, const std::string& content) {
  if (path.empty()) return SaveOutcome::failed;
  const GLibPointer<GFile> file(g_vfs_get_file_for_path(g_vfs_get_local(), path.c_str()));
  const gboolean isWritten = g_file_replace_contents(file.get(), content.data(), content.size(), nullptr, FALSE,
                                                     G_FILE_CREATE_PRIVATE, nullptr, nullptr, nullptr);
  return isWritten != FALSE ? SaveOutcome::saved : SaveOutcome::failed;
}

}  // namespace

// One save dialog. The first call of end() or drop() decides its outcome.
class LinuxFileChooser::Choice {
 public:
  Choice(FileToSave file, std::function<void(SaveOutcome)> done) : file_(std::move(file)), done_(std::move(done)) {}

  void end(SaveOutcome outcome) {
    if (!hasEnded_.exchange(true)) contained([&] { done_(outcome); });
  }
  void drop() { hasEnded_ = true; }
  [[nodiscard]] bool hasEnded() const { return hasEnded_; }

  [[nodiscard]] const FileToSave& file() const { return file_; }

 private:
  const FileToSave file_;
  const std::function<void(SaveOutcome)> done_;
  std::atomic<bool> hasEnded_ = false;
};

// The state used by the thread.
class LinuxFileChooser::Portal {
 public:
  Portal() {
    session_.watch({.sender = "org.freedesktop.DBus",
                    .path = "/org/freedesktop/DBus",
                    .interface = "org.freedesktop.DBus",
                    .name = "NameOwnerChanged",
                    .firstArgument = portal::service},
                   [this](GVariant* arguments) {
                     const char* owner = nullptr;
                     g_variant_get(arguments, "(&s&s&s)", nullptr, nullptr, &owner);
                     if (*owner == '\0') end(SaveOutcome::unavailable);  // the portal has left the bus
                   });
  }

  [[nodiscard]] bool open() { return loop_.open(); }
  void run() {
    loop_.run([this] {
      end(SaveOutcome::cancelled);
      session_.close();
    });
  }
  void stop() { loop_.stop(); }

  void ask(std::shared_ptr<Choice> choice) {
    loop_.post([this, choice = std::move(choice)]() mutable {
      end(SaveOutcome::cancelled);
      choice_ = std::move(choice);
      session_.use([this, asked = choice_](auto connection) {
        if (asked != choice_) return;
        if (!connection) return end(SaveOutcome::unavailable);
        send(*connection);
      });
    });
  }
  void drop(const std::shared_ptr<Choice>& choice) {
    choice->drop();
    loop_.post([this, choice] {
      if (choice == choice_) end(SaveOutcome::cancelled);
    });
  }

 private:
  void send(GDBusConnection* connection) {
    const std::string token = "quillon" + std::to_string(++asked_);
    request_ = requestPath(connection, token);
    connection_.reset(G_DBUS_CONNECTION(g_object_ref(connection)));
    subscription_ =
        g_dbus_connection_signal_subscribe(connection, portal::service, requestInterface, "Response", request_.c_str(),
                                           nullptr, G_DBUS_SIGNAL_FLAGS_NONE, &Portal::responded, this, nullptr);
    const BusMethod saveFile{portal::path, chooserInterface, "SaveFile", "(o)"};
    portal_.call(saveFile, saveArguments(choice_->file(), token),
                 [this, asked = choice_](const BusService::Reply& reply) {
                   if (!reply && asked == choice_) end(SaveOutcome::unavailable);
                 });
  }

  static void responded(GDBusConnection*, const char*, const char*, const char*, const char*, GVariant* arguments,
                        gpointer portal) {
    auto& self = *static_cast<Portal*>(portal);
    if (!self.loop_.stopped()) contained([&] { self.take(arguments); });
  }

  void take(GVariant* arguments) {
    if (!choice_) return;
    if (!g_variant_is_of_type(arguments, G_VARIANT_TYPE("(ua{sv})"))) return end(SaveOutcome::unavailable);
    constexpr guint32 chosen = 0;
    constexpr guint32 cancelled = 1;
    const GLibPointer<GVariant> code(g_variant_get_child_value(arguments, 0));
    const GLibPointer<GVariant> results(g_variant_get_child_value(arguments, 1));
    isAnswered_ = true;
    switch (g_variant_get_uint32(code.get())) {
      case chosen:
        return end(choice_->hasEnded() ? SaveOutcome::cancelled
                                       : write(chosenFile(results.get()), choice_->file().content));
      case cancelled:
        return end(SaveOutcome::cancelled);
      default:
        return end(SaveOutcome::unavailable);
    }
  }

  // Closes the dialog if it is still open.
  void end(SaveOutcome outcome) {
    if (connection_) {
      g_dbus_connection_signal_unsubscribe(connection_.get(), subscription_);
      if (!isAnswered_) {
        g_dbus_connection_call(connection_.get(), portal::service, request_.c_str(), requestInterface, "Close", nullptr,
                               nullptr, G_DBUS_CALL_FLAGS_NO_AUTO_START, -1, nullptr, nullptr, nullptr);
      }
      connection_.reset();
    }
    isAnswered_ = false;
    if (const auto ended = std::exchange(choice_, nullptr)) ended->end(outcome);
  }

  BusLoop loop_;
  MessageBus session_{loop_, sessionBusAddress()};
  BusService portal_{session_, portal::service, BusService::Start::onDemand};
  // The members below are used on the loop's thread only.
  std::shared_ptr<Choice> choice_;             // null while no dialog is open
  GLibPointer<GDBusConnection> connection_{};  // of the running request
  std::string request_;
  guint subscription_ = 0;
  unsigned asked_ = 0;
  bool isAnswered_ = false;
};

LinuxFileChooser::LinuxFileChooser() : portal_(std::make_shared<Portal>()) {}

LinuxFileChooser::~LinuxFileChooser() {
  portal_->stop();
}

bool LinuxFileChooser::begin() {
  const std::lock_guard lock(mutex_);
  if (thread_) return true;
  if (!portal_->open()) return false;
  try {
    thread_.emplace("quillon-chooser", [portal = portal_] { portal->run(); });
    return true;
  } catch (const std::system_error&) {
    return false;  // out of threads; the next call retries
  }
}

std::unique_ptr<FileChoice> LinuxFileChooser::save(FileToSave file, std::function<void(SaveOutcome)> done) {
  class Handle : public FileChoice {
   public:
    Handle(std::shared_ptr<Portal> portal, std::shared_ptr<Choice> choice)
        : portal_(std::move(portal)), choice_(std::move(choice)) {}
    ~Handle() override { portal_->drop(choice_); }

   private:
    const std::shared_ptr<Portal> portal_;
    const std::shared_ptr<Choice> choice_;
  };

  auto choice = std::make_shared<Choice>(std::move(file), std::move(done));
  if (begin()) {
    portal_->ask(choice);
  } else {
    choice->end(SaveOutcome::unavailable);
  }
  return std::make_unique<Handle>(portal_, std::move(choice));
}

}  // namespace quillon
