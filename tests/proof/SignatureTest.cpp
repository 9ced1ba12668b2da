#include <gtest/gtest.h>

#include <boost/json.hpp>
#include <fstream>

#include "proof/Signature/Base64Url.h"
#include "proof/Signature/Jws.h"
#include "proof/Signature/Keys.h"

namespace quillon::proof::test {
namespace {

std::string fromHex(std::string_view hex) {
  std::string bytes;
  for (std::size_t i = 0; i < hex.size(); i += 2) {
    bytes += static_cast<char>(std::stoi(std::string(hex.substr(i, 2)), nullptr, 16));
  }
  return bytes;
}

SigningKey keyOf(std::string_view bytes) {
  KeyStore::Secret secret;
  std::ranges::copy(bytes, secret.begin());
  return SigningKey(secret);
}

template <class Bytes>
std::string textOf(const Bytes& bytes) {
  return {bytes.begin(), bytes.end()};
}

// RFC 8032, section 7.1: a secret, its public key, a message and its signature a line.
TEST(Ed25519, SignsAndVerifiesThePublishedVectors) {
  std::ifstream vectors(QUILLON_PROOF_DATA "/ed25519.txt");
  int count = 0;
  for (std::string secret, publicKey, message, signature; vectors >> secret >> publicKey >> message >> signature;) {
    ++count;
    if (message == "-") message.clear();
    const auto key = keyOf(fromHex(secret));
    EXPECT_EQ(textOf(key.publicKey().bytes), fromHex(publicKey));
    const auto signedText = fromHex(message);
    auto made = textOf(key.sign(signedText).value());
    EXPECT_EQ(made, fromHex(signature));
    EXPECT_TRUE(key.publicKey().verifies(signedText, made));
    made[40] = static_cast<char>(made[40] ^ 1);
    EXPECT_FALSE(key.publicKey().verifies(signedText, made));
    EXPECT_FALSE(key.publicKey().verifies(signedText + " ", fromHex(signature)));
  }
  EXPECT_EQ(count, 5);
}

// RFC 8037, appendix A.
TEST(Jws, HasThePublishedKeyThumbprintAndSignature) {
  const auto key = keyOf(*fromBase64Url("nWGxne_9WmC6hEr0kuwsxERJxWl7MmkZcDusAxyuf2A"));
  EXPECT_EQ(boost::json::serialize(key.publicKey().jwk()),
            R"({"kty":"OKP","crv":"Ed25519","x":"11qYAYKxCrfVS_7TyWQHOg7hcvPapiMlrwIaaPcHURo"})");
  EXPECT_EQ(key.publicKey().thumbprint(), "kPrK_qmxVWaYVA9wwBF6Iuo3vVzz7TxHCTwXBygrS4k");
  const std::string input = base64Url(R"({"alg":"EdDSA"})") + '.' + base64Url("Example of Ed25519 signing");
  EXPECT_EQ(input, "eyJhbGciOiJFZERTQSJ9.RXhhbXBsZSBvZiBFZDI1NTE5IHNpZ25pbmc");
  EXPECT_EQ(base64Url(textOf(key.sign(input).value())),
            "hgyY0il_MGCjP0JzlnLWG1PPOt7-09PGcvMg3AIbQR6dWbhijcNR4ki4iylGjg5BhVsPt9g7sVvpAr_MuM0KAg");
}

TEST(Jws, RefusesEveryOtherHeaderPayloadAndSpelling) {
  const auto key = keyOf(std::string(32, 'k'));
  const auto jws = detachedJws("payload", key).value();
  EXPECT_EQ(signerOf("payload", jws), key.publicKey());
  const auto jwk = boost::json::serialize(key.publicKey().jwk());
  const auto withHeader = [&](const std::string& header) {
    const auto protectedPart = base64Url(header);
    return protectedPart + ".." + base64Url(textOf(*key.sign(protectedPart + '.' + base64Url("payload"))));
  };
  const std::pair<std::string, std::string> cases[] = {
      {"payloaD", jws},
      {"payload", ""},
      {"payload", jws + "A"},
      {"payload", jws.substr(0, jws.size() - 1)},
      {"payload", withHeader(R"({"alg":"none","jwk":)" + jwk + "}")},
      {"payload", withHeader(R"({"alg":"EdDSA","b64":false,"crit":["b64"],"jwk":)" + jwk + "}")},
      {"payload", withHeader(R"({"alg":"EdDSA"})")},
      {"payload", withHeader(R"({"alg":"EdDSA","jwk":{"kty":"OKP","crv":"X25519","x":"AA"}})")},
      {"payload", base64Url(R"({"alg":"EdDSA","jwk":)" + jwk + "}") + "..AAAA"},
  };
  for (const auto& [payload, text] : cases) EXPECT_FALSE(signerOf(payload, text)) << text;
}

}  // namespace
}  // namespace quillon::proof::test
