#include "tools/fairness/Wording.h"

#include <span>
#include <string>

#include "core/Text/Ascii.h"

namespace quillon::tools {
namespace {

constexpr std::string_view evasions[] = {
    "manage",   "settings",       "options",   "option",     "preferences", "customise",   "customize",
    "choose",   "learn more",     "more",      "later",      "not now",     "maybe",       "skip",
    "continue", "einstellungen",  "verwalten", "optionen",   "später",      "nicht jetzt", "mehr",
    "anpassen", "auswählen",      "weiter",    "paramètres", "gérer",       "plus tard",   "personnaliser",
    "choisir",  "en savoir plus", "continuer", "configurar", "ajustes",     "opciones",    "más tarde",
    "ahora no", "gestionar",      "continuar"};

// Phrases that do state a refusal, such as "Continue without accepting".
constexpr std::string_view refusals[] = {"reject",          "refuse",
                                         "decline",         "deny",
                                         "opt out",         "without accepting",
                                         "without consent", "only essential",
                                         "necessary only",  "ablehnen",
                                         "widersprechen",   "verweigern",
                                         "ohne zustimmung", "ohne einwilligung",
                                         "nur notwendige",  "refuser",
                                         "sans accepter",   "rechazar",
                                         "denegar",         "sin aceptar"};

constexpr std::string_view silentConsents[] = {"by continuing",        "if you continue", "by using",
                                               "continued use",        "by closing",      "by scrolling",
                                               "by browsing",          "by proceeding",   "mit der nutzung",
                                               "durch die nutzung",    "weitere nutzung", "wenn sie fortfahren",
                                               "indem sie fortfahren", "durch schließen", "wenn sie die app weiter",
                                               "en poursuivant",       "en continuant",   "en fermant",
                                               "en utilisant",         "al continuar",    "si continúa",
                                               "si continúas",         "al cerrar",       "al usar"};

constexpr std::string_view pressures[] = {"best experience",
                                          "better experience",
                                          "full experience",
                                          "best possible",
                                          "recommended",
                                          "don't miss",
                                          "don’t miss",
                                          "miss out",
                                          "hurry",
                                          "last chance",
                                          "only today",
                                          "are you sure",
                                          "sure you want",
                                          "support us",
                                          "help us",
                                          "keep us free",
                                          "keep the app free",
                                          "stay free",
                                          "i don't care",
                                          "i don’t care",
                                          "i don't want",
                                          "i don’t want",
                                          "no thanks, i",
                                          "worse",
                                          "unfortunately",
                                          "sad to see",
                                          "won't be able",
                                          "won’t be able",
                                          "lose access",
                                          "bestes erlebnis",
                                          "beste erlebnis",
                                          "besseres erlebnis",
                                          "optimales erlebnis",
                                          "empfohlen",
                                          "verpassen",
                                          "wirklich ablehnen",
                                          "sind sie sicher",
                                          "unterstützen sie uns",
                                          "helfen sie uns",
                                          "leider",
                                          "nur heute",
                                          "meilleure expérience",
                                          "recommandé",
                                          "ne manquez",
                                          "êtes-vous sûr",
                                          "aidez-nous",
                                          "soutenez-nous",
                                          "malheureusement",
                                          "mejor experiencia",
                                          "recomendado",
                                          "no te pierdas",
                                          "no se pierda",
                                          "ayúdanos",
                                          "ayúdenos",
                                          "seguro que quieres",
                                          "estás seguro"};

bool isPartOfWord(char c) {
  return isLetter(c) || isDigit(c) || static_cast<unsigned char>(c) >= 0x80;
}

// Matches whole words only: "more" does not match "moreover".
bool holds(std::string_view text, std::string_view phrase) {
  for (std::size_t at = text.find(phrase); at != std::string_view::npos; at = text.find(phrase, at + 1)) {
    const std::size_t end = at + phrase.size();
    if ((at == 0 || !isPartOfWord(text[at - 1])) && (end == text.size() || !isPartOfWord(text[end]))) return true;
  }
  return false;
}

std::string_view firstIn(std::string_view text, std::span<const std::string_view> phrases) {
  const std::string lower = lowerCase(std::string(text));
  for (const std::string_view phrase : phrases) {
    if (holds(lower, phrase)) return phrase;
  }
  return {};
}

}  // namespace

std::string_view evasionIn(std::string_view text) {
  return firstIn(text, refusals).empty() ? firstIn(text, evasions) : std::string_view();
}

std::string_view silentConsentIn(std::string_view text) {
  return firstIn(text, silentConsents);
}

std::string_view pressureIn(std::string_view text) {
  return firstIn(text, pressures);
}

}  // namespace quillon::tools
