#include "app/Readiness.h"

#include <algorithm>

#include "settings/ConfigFolder.h"
#include "settings/ConfigStore.h"
#include "settings/L10n.h"

namespace tessaspaces::Readiness {
namespace {

bool isOk(const std::vector<SessionFinding>& findings, SessionFact fact) {
  return std::all_of(findings.begin(), findings.end(),
                     [fact](const SessionFinding& finding) { return finding.fact != fact || finding.ok; });
}

struct Wording {
  std::string_view title;
  std::string_view ok;
  std::string_view notOk;
  State notOkState;
};

Wording wording(SessionFact fact) {
  switch (fact) {
    case SessionFact::windowManager:
      return {"launch.windowManager.title", "launch.windowManager.ok", "launch.windowManager.missing", State::waiting};
    case SessionFact::nativeSession:
      return {"launch.session.title", "launch.session.ok", "launch.session.foreign", State::failed};
    case SessionFact::inputSynthesis:
      return {"launch.input.title", "launch.input.ok", "launch.input.missing", State::warning};
    case SessionFact::windowPictures:
      return {"launch.pictures.title", "launch.pictures.ok", "launch.pictures.missing", State::warning};
  }
  return {};
}

}  // namespace

Verdict verdict(const std::vector<SessionFinding>& findings) {
  if (!isOk(findings, SessionFact::nativeSession)) return Verdict::foreignSession;
  if (!isOk(findings, SessionFact::windowManager)) return Verdict::waitForWindowManager;
  return Verdict::ready;
}

std::vector<Row> rows(const std::vector<SessionFinding>& findings) {
  std::vector<Row> all;
  for (const SessionFinding& finding : findings) {
    const Wording words = wording(finding.fact);
    all.push_back({finding.ok ? State::ok : words.notOkState, L10n::t(words.title),
                   L10n::t(finding.ok ? words.ok : words.notOk, finding.detail)});
  }
  return all;
}

Row configurationRow() {
  const std::string path = displayPath(ConfigStore::fileURL());
  Row row{State::ok, L10n::t("launch.configuration.title"), path};
  if (const auto complaint = ConfigStore::complaint()) {
    row.state = State::warning;
    row.detail = L10n::t("launch.configuration.unreadable", path, *complaint);
  }
  return row;
}

}  // namespace tessaspaces::Readiness
