#include "core/Integrations/ConsentScript.h"

#include <map>

#include "core/Json/JsonMapping.h"
#include "core/Json/Record.h"
#include "core/Text/ScriptText.h"

namespace quillon {

template <>
inline constexpr auto fields<PageConsents::OfPurpose> = std::tuple{
    Field<&PageConsents::OfPurpose::id>{"id"},
    Field<&PageConsents::OfPurpose::name>{"name"},
    Field<&PageConsents::OfPurpose::status>{"status"},
};

template <>
inline constexpr auto fields<PageConsents::OfPermission> = std::tuple{
    Field<&PageConsents::OfPermission::permission>{"permission"},
    Field<&PageConsents::OfPermission::status>{"status"},
};

template <>
inline constexpr auto fields<PageConsents> = std::tuple{
    Field<&PageConsents::purposes>{"purposes"},
    Field<&PageConsents::permissions>{"permissions"},
};

namespace {

// A call to the page's consent-mode function.
std::string consentCall(std::string_view command, const ConsentMap& signals) {
  std::map<std::string, std::string, std::less<>> values;
  for (const auto& [type, granted] : signals) values.emplace(rawValue(type), granted ? "granted" : "denied");
  std::string json;
  writeJson(json, json::describe<decltype(values)>(), &values);
  return "window.gtag('consent','" + std::string(command) + "'," + json + ");\n";
}

}  // namespace

std::string consentScript(const PageConsents& consents, const std::optional<PageSignals>& signals) {
  // Lists, because names as object keys could collide with built-in ones such as "__proto__".
  std::string script = "window.quillonConsents=" + scriptText(encode(consents)) + ";\n";
  if (!signals) return script;
  script +=
      "window.dataLayer=window.dataLayer||[];\n"
      "window.gtag=window.gtag||function(){window.dataLayer.push(arguments);};\n";
  return script + consentCall("default", signals->byDefault) + consentCall("update", signals->present);
}

}  // namespace quillon
