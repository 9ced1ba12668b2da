#include <type_traits>

#include "platform/ReceiptIssuer.h"
#include "proof/Json/UntrustedJson.h"
#include "proof/Page/Summary.h"
#include "proof/Receipt/Receipt.h"
#include "quillon/Receipts.h"

namespace quillon {
namespace {

class Issuer : public ReceiptIssuer {
 public:
  std::expected<std::string, std::string> issue(const ReceiptRequest& request, KeyStore& keys,
                                                RandomSource& random) override {
    return withoutThrowing([&]() -> std::expected<std::string, std::string> {
      return proof::withKeyOf(keys,
                              [&](const proof::SigningKey& key) { return proof::issueReceipt(request, key, random); });
    });
  }

  std::expected<std::vector<ReceiptLine>, std::string> summary(std::string_view document,
                                                               const ReceiptWords& words) override {
    return withoutThrowing([&]() -> std::expected<std::vector<ReceiptLine>, std::string> {
      const auto read = proof::readUntrustedJson(document);
      const auto* const object = read ? read->if_object() : nullptr;
      const auto* const receipt = object != nullptr ? object->if_contains("receipt") : nullptr;
      if (receipt == nullptr || !receipt->is_object()) return std::unexpected("it is no receipt");
      return proof::shortSummaryOf(receipt->get_object(), words);
    });
  }

  std::expected<std::string, std::string> keyThumbprint(KeyStore& keys) override {
    return withoutThrowing([&]() -> std::expected<std::string, std::string> {
      return proof::withKeyOf(keys, [](const proof::SigningKey& key) -> std::expected<std::string, std::string> {
        return key.publicKey().thumbprint();
      });
    });
  }

 private:
  template <class Call>
  static std::invoke_result_t<Call> withoutThrowing(const Call& call) {
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

// The Linux platform looks this up by symbol name.
extern "C" quillon::ReceiptIssuer* quillonReceiptIssuer();
extern "C" quillon::ReceiptIssuer* quillonReceiptIssuer() {
  return &quillon::issuer();
}
