#include "platform/ReceiptIssuer.h"
#include "proof/Receipt/Receipt.h"
#include "quillon/Receipts.h"

namespace quillon {
namespace {

class Issuer : public ReceiptIssuer {
 public:
  std::expected<std::string, std::string> issue(const ReceiptRequest& request, KeyStore& keys,
                                                RandomSource& random) override {
    return withoutThrowing([&]() -> std::expected<std::string, std::string> {
      const auto secret = keys.secret();
      if (!secret) return std::unexpected(secret.error());
      return proof::issueReceipt(request, proof::SigningKey(*secret), random);
    });
  }

  std::expected<std::string, std::string> keyThumbprint(KeyStore& keys) override {
    return withoutThrowing([&]() -> std::expected<std::string, std::string> {
      const auto secret = keys.secret();
      if (!secret) return std::unexpected(secret.error());
      return proof::SigningKey(*secret).publicKey().thumbprint();
    });
  }

 private:
  template <class Call>
  static std::expected<std::string, std::string> withoutThrowing(const Call& call) {
    try {
      return call();
    } catch (const std::exception& error) {
      return std::unexpected(error.what());
    }
  }
};

Issuer& issuer() {
  static auto& instance = *new Issuer;
  return instance;
}

}  // namespace

std::shared_ptr<ReceiptIssuer> receiptIssuer() {
  return {std::shared_ptr<void>(), &issuer()};
}

}  // namespace quillon

// The Linux platform finds it by its name, when this library is linked.
extern "C" quillon::ReceiptIssuer* quillonReceiptIssuer();
extern "C" quillon::ReceiptIssuer* quillonReceiptIssuer() {
  return &quillon::issuer();
}
