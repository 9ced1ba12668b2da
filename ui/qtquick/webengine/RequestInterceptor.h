// Applies the link filter to all requests.
#pragma once

#include <QWebEngineUrlRequestInterceptor>
#include <memory>

#include "ui/Common/WebView/SubresourceGate.h"

namespace quillon {

// Sees every request of a profile, including redirects and those of frames and workers. Requests that the gate does not
// allow are blocked; web sockets always are.
class RequestInterceptor : public QWebEngineUrlRequestInterceptor {
 public:
  explicit RequestInterceptor(std::shared_ptr<const SubresourceGate> gate, QObject* parent)
      : QWebEngineUrlRequestInterceptor(parent), gate_(std::move(gate)) {}

  void interceptRequest(QWebEngineUrlRequestInfo& request) override {
    if (!gate_->allowsSubresource(request.requestUrl().toEncoded().toStdString())) return request.block(true);
    request.setHttpHeader("DNT", "1");
    request.setHttpHeader("Sec-GPC", "1");
  }

 private:
  const std::shared_ptr<const SubresourceGate> gate_;
};

}  // namespace quillon
