#include "ui/preview/PlaceholderPage.h"

namespace quillon::preview {
namespace {

constexpr const char* page = R"(<!DOCTYPE html>
<html lang="en">
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>A page of the web</title>
<style>
  :root { color-scheme: light dark; }
  body { max-width: 40rem; margin: 0 auto; padding: 1.5rem; font: 1rem/1.5 system-ui, sans-serif; }
</style>
<h1>A page of the web</h1>
<p>It stands in for the page that a link of the configuration leads to, and shows how the application frames it.</p>
<ul>
  <li><a href="/further">A link to a further page</a> that may be shown</li>
  <li><a href="https://elsewhere.example/">A link to a host</a> that may not</li>
</ul>
</html>
)";

}  // namespace

PlaceholderPage::PlaceholderPage() : port_(server_.bind_to_any_port("127.0.0.1")) {
  server_.Get(".*", [](const httplib::Request&, httplib::Response& response) {
    response.set_content(page, "text/html; charset=utf-8");
  });
  // Otherwise the server would wait for idle connections on shutdown.
  server_.set_keep_alive_max_count(1);
  thread_ = std::thread([this] { server_.listen_after_bind(); });
  while (!server_.is_running()) std::this_thread::yield();
}

PlaceholderPage::~PlaceholderPage() {
  server_.stop();
  thread_.join();
}

}  // namespace quillon::preview
