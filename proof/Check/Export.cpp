// Verifies an export folder (Export/Export.h).
#include <set>

#include "core/Text/Sha256.h"
#include "proof/Check/SignedDocument.h"
#include "proof/Check/Verification.h"
#include "proof/Export/Export.h"
#include "proof/Json/Members.h"
#include "proof/Json/Times.h"
#include "proof/Json/UntrustedJson.h"

namespace quillon::proof {
namespace {

namespace json = boost::json;

class ExportCheck {
 public:
  ExportCheck(const ExportFiles& files, const Expectations& expected, Findings& findings)
      : files_(files), expected_(expected), findings_(findings) {}

  void run() {
    checkKey();
    checkManifest();
    checkHistory();
  }

 private:
  const std::string* content(const std::string& name) {
    const auto found = files_.find(name);
    if (found != files_.end()) return &found->second;
    findings_.fault("file " + name, "is missing");
    return nullptr;
  }

  // Every signature must be by the key in the folder.
  void checkKey() {
    const auto* const text = content(file::key);
    if (text == nullptr) return;
    const auto thumbprint = thumbprintOf(*text);
    if (thumbprint.empty()) {
      findings_.fault("file key.json", "is no Ed25519 key");
    } else if (expected_.keyThumbprint.empty()) {
      expected_.keyThumbprint = thumbprint;
    } else if (thumbprint != expected_.keyThumbprint) {
      findings_.fault("file key.json", "is the key " + thumbprint + ", and not " + expected_.keyThumbprint);
    }
  }

  void checkManifest() {
    const auto* const text = content(file::manifest);
    if (text == nullptr) return;
    const auto manifest = checkSigned("manifest", *text, expected_, findings_);
    if (!manifest) return;
    const auto created = fromTimeText(textIn(manifest->content, "created").value_or(""));
    if (!created || *created > expected_.now + clockTolerance) {
      findings_.fault("file manifest.json", "has no time of its creation, or one from the future");
    }
    std::set<std::string> listed{file::manifest};
    std::size_t same = 0;
    forEachIn(manifest->content, "files", [&](const json::value& element) {
      const auto* const entry = element.if_object();
      const auto name = entry != nullptr ? textIn(*entry, "name") : std::nullopt;
      if (!name) {
        findings_.fault("file manifest.json", "lists a file without a name");
        return;
      }
      const std::string subject = "file " + std::string(*name);
      const auto file = files_.find(std::string(*name));
      if (!listed.insert(std::string(*name)).second) {
        findings_.fault(subject, "is listed twice");
      } else if (file == files_.end()) {
        findings_.fault(subject, "is missing");
      } else if (textIn(*entry, "sha256") != sha256(file->second) ||
                 numberIn(*entry, "size") != static_cast<std::int64_t>(file->second.size())) {
        findings_.fault(subject, "was changed");
      } else {
        ++same;
      }
    });
    for (const auto& [name, unused] : files_) {
      if (!listed.contains(name)) findings_.fault("file " + name, "is not a part of the export");
    }
    if (same + 1 == files_.size()) findings_.holds("files", std::to_string(same) + " are what the manifest lists");
  }

  NoticeTexts notices(const ExportedHistory& history) {
    NoticeTexts texts;
    for (const auto& hash : history.expiredNotices) texts.emplace(hash, std::nullopt);
    const std::string folder = file::notices;
    for (const auto& [name, text] : files_) {
      if (!name.starts_with(folder) || !name.ends_with(".json")) continue;
      const auto hash = name.substr(folder.size(), name.size() - folder.size() - std::string(".json").size());
      if (!texts.emplace(hash, text).second) {
        findings_.fault("notice " + hash, "is here, and is said to be gone");
      }
    }
    return texts;
  }

  void checkHistory() {
    const auto* const text = content(file::history);
    if (text == nullptr) return;
    const auto history = readHistory(*text);
    if (!history) {
      findings_.fault("file history.json", "cannot be read: " + history.error());
      return;
    }
    if (!history->state.isHeadKnown) findings_.fault("file history.json", "has no list of entries");
    checkChain(history->entries, history->state, findings_);
    checkNotices(history->entries, notices(*history), findings_);
    checkTimes(history->entries, expected_.now, findings_);
    checkReceiptOf(*history);
  }

  void checkReceiptOf(const ExportedHistory& history) {
    bool hasDecidedPurpose = false;
    for (const auto& entry : history.entries) hasDecidedPurpose = hasDecidedPurpose || numberIn(entry, "purpose_id");
    if (!hasDecidedPurpose && !files_.contains(file::receipt)) return;
    if (const auto* const receipt = content(file::receipt)) {
      checkReceipt(*receipt, expected_, KnownHistory{history, true}, findings_);
    }
  }

  const ExportFiles& files_;
  Expectations expected_;
  Findings& findings_;
};

}  // namespace

void checkExport(const ExportFiles& files, const Expectations& expected, Findings& findings) {
  ExportCheck(files, expected, findings).run();
}

}  // namespace quillon::proof
