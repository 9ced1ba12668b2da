#include "proof/Receipt/ConsentEvent.h"

#include "proof/Json/Members.h"

namespace quillon::proof {

ConsentEvent eventOf(const boost::json::object& entry) {
  const auto cause = textIn(entry, "cause");
  const auto from = textIn(entry, "from");
  const auto to = textIn(entry, "to");
  if (cause == "user") {
    if (to == "granted") return {from == "granted" ? "dpv:RenewedConsentGiven" : "dpv:ConsentGiven", true};
    if (to == "withdrawn" || (to == "declined" && from == "granted")) return {"dpv:ConsentWithdrawn", true};
    if (to == "declined") return {"dpv:ConsentRefused", true};
    return {"dpv:ConsentUnknown", true};
  }
  if (cause == "signal" && to != "granted") return {"dpv:ConsentRefused", true};
  return {"dpv:ConsentUnknown", false};
}

}  // namespace quillon::proof
