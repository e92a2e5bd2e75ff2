#include "app/LaunchWindow.h"

#include <QCheckBox>
#include <QCoreApplication>
#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>
#include <array>
#include <cstdlib>
#include <vector>

#include "app/HotKeySet.h"
#include "app/LaunchWindowController.h"
#include "app/Readiness.h"
#include "platform/Platform.h"
#include "settings/Enums.h"
#include "settings/Notifications.h"
#include "settings/Settings.h"
#include "ui/Text.h"

namespace tessaspaces {
namespace {

struct ModifierKey {
  std::uint32_t mask;
  std::string_view nameKey;
};

constexpr std::array modifierKeys{
    ModifierKey{KeyCombo::control, "launch.modifier.control"},
    ModifierKey{KeyCombo::option, "launch.modifier.option"},
    ModifierKey{KeyCombo::shift, "launch.modifier.shift"},
    ModifierKey{KeyCombo::command, "launch.modifier.command"},
};

std::string listOf(const std::vector<KeyCombo>& combos) {
  std::string list;
  for (const KeyCombo& combo : combos) list += (list.empty() ? "" : "  ") + combo.display();
  return list;
}

/// "⌃⌥← ⌃⌥→ are already used by another program, probably the window manager openbox."
std::string takenSentence(const std::vector<KeyCombo>& taken) {
  const bool one = taken.size() == 1;
  if (const auto windowManager = platform().windowServer().windowManagerName()) {
    return L10n::t(one ? "launch.keys.takenOneBy" : "launch.keys.takenBy", listOf(taken), *windowManager);
  }
  return L10n::t(one ? "launch.keys.takenOne" : "launch.keys.taken", listOf(taken));
}

State stateOf(const HotKeyClashes::Refused& refused) {
  if (!refused.taken.empty()) return State::failed;
  return refused.absent.empty() ? State::ok : State::warning;
}

/// What has become of the refused keys.
QString describe(const HotKeyClashes::Refused& refused) {
  std::string sentences;
  if (!refused.taken.empty()) sentences = takenSentence(refused.taken);
  if (!refused.absent.empty()) {
    sentences += (sentences.empty() ? "" : "\n") + L10n::t("launch.keys.absent", listOf(refused.absent));
  }
  return text(sentences);
}

QString describe(const HotKeyClashes::GroupReport& report) {
  if (report.modifiers == 0) return localized("launch.keys.off");
  if (!report.refused.none()) return describe(report.refused);
  return text(KeyCombo::modifierSymbols(report.modifiers) + " " + L10n::t(suffixKey(report.group)));
}

}  // namespace

LaunchWindow::LaunchWindow(LaunchWindowController& controller) : Panel("launch.title", 640), controller_(controller) {
  hotkeys_ = Notifications::observe(Notifications::hotkeysChanged, [this] { refresh(); });
}

void LaunchWindow::refresh() {
  rebuild();
}

bool LaunchWindow::isForeign() const {
  return controller_.verdict() == Readiness::Verdict::foreignSession;
}

void LaunchWindow::populate(QVBoxLayout& layout) {
  addIntroduction(layout);
  // What there is to do comes first.
  QVBoxLayout& cards = addScrolled(layout);
  if (controller_.isReady()) addHotKeys(cards);
  addChecks(cards);
  layout.addStretch();
  addButtons(layout);
}

void LaunchWindow::addIntroduction(QVBoxLayout& layout) {
  // Going on all the same changes nothing about a session that keeps the keys.
  std::string_view which = "ready";
  if (isForeign()) {
    which = "foreign";
  } else if (!controller_.isReady()) {
    which = "waiting";
  } else if (HotKeyClashes::anyTaken()) {
    which = "taken";
  } else if (HotKeyClashes::any() || Readiness::configurationRow().state != State::ok) {
    which = "partly";
  }
  auto* row = new QHBoxLayout;
  row->setSpacing(18);
  row->addWidget(new Picture(Picture::Kind::icon, 64), 0, Qt::AlignTop);
  auto* column = new QVBoxLayout;
  column->setSpacing(6);
  column->addStretch();
  column->addWidget(makeHeading(localized("launch.heading." + std::string(which)), 6));
  column->addWidget(new QuietLabel(localized("launch.body." + std::string(which))));
  column->addStretch();
  row->addLayout(column, 1);
  layout.addLayout(row);
}

void LaunchWindow::addChecks(QVBoxLayout& layout) {
  auto* card = new Card;
  auto* column = new QVBoxLayout(card);
  column->setContentsMargins(18, 16, 18, 16);
  column->setSpacing(12);
  auto rows = Readiness::rows(controller_.findings());
  rows.push_back(Readiness::configurationRow());
  for (const Readiness::Row& row : rows) column->addLayout(makeRow(row.state, text(row.title), text(row.detail)));
  layout.addWidget(card);
}

void LaunchWindow::addHotKeys(QVBoxLayout& layout) {
  auto* card = new Card;
  auto* column = new QVBoxLayout(card);
  column->setContentsMargins(18, 16, 18, 16);
  column->setSpacing(14);
  for (const auto& report : HotKeyClashes::reports()) addGroup(*column, report);
  if (const auto others = HotKeyClashes::others(); !others.none()) {
    column->addLayout(makeRow(stateOf(others), localized("launch.keys.other"), describe(others)));
  }
  layout.addWidget(card);
}

void LaunchWindow::addGroup(QVBoxLayout& layout, const HotKeyClashes::GroupReport& report) {
  const HotkeyGroup group = report.group;
  if (!report.refused.taken.empty()) touched_[group] = true;
  const QString title = text(label(group));
  const State state = report.modifiers == 0 ? State::off : stateOf(report.refused);
  QHBoxLayout* row = makeRow(state, title, describe(report));
  layout.addLayout(row);
  if (!touched_[group]) return;

  auto* column = static_cast<QVBoxLayout*>(row->itemAt(1)->layout());
  auto* controls = new QHBoxLayout;
  controls->setContentsMargins(0, 6, 0, 0);
  controls->setSpacing(10);
  std::vector<QCheckBox*> boxes;
  for (const ModifierKey& key : modifierKeys) {
    auto* box = new QCheckBox(localized(key.nameKey));
    box->setChecked((report.modifiers & key.mask) != 0);
    box->setAccessibleDescription(title);
    controls->addWidget(box);
    box->setObjectName(QStringLiteral("modifier%1.%2").arg(rawValue(group)).arg(key.mask));
    boxes.push_back(box);
  }
  controls->addStretch();
  auto* attempt = makeButton(localized("launch.keys.tryAgain"));
  attempt->setAccessibleDescription(title);
  attempt->setObjectName(QStringLiteral("try%1").arg(rawValue(group)));
  controls->addWidget(attempt);
  auto* suggest = makeButton(localized("launch.keys.suggest"));
  suggest->setAccessibleDescription(title);
  suggest->setToolTip(localized("launch.keys.suggestHint"));
  suggest->setObjectName(QStringLiteral("suggest%1").arg(rawValue(group)));
  controls->addWidget(suggest);
  column->addLayout(controls);
  if (const auto found = refused_.find(group); found != refused_.end()) {
    column->addLayout(makeRow(State::warning, found->second, {}));
  }

  const auto chosen = [boxes] {
    std::uint32_t modifiers = 0;
    for (std::size_t i = 0; i < boxes.size(); ++i) modifiers |= boxes[i]->isChecked() ? modifierKeys[i].mask : 0;
    return modifiers;
  };
  const auto follow = [attempt, chosen, current = report.modifiers] {
    const std::uint32_t wanted = chosen();
    attempt->setEnabled(wanted != 0 || current != 0);
    // The same keys again: they may have been given free meanwhile.
    const bool again = wanted == current && current != 0;
    attempt->setText(localized(wanted == 0 ? "launch.keys.turnOff"
                               : again     ? "launch.keys.tryAgain"
                                           : "launch.keys.try"));
  };
  for (QCheckBox* box : boxes) connect(box, &QCheckBox::toggled, this, follow);
  follow();
  connect(attempt, &QPushButton::clicked, this, [this, group, chosen] { apply(group, chosen()); });
  connect(suggest, &QPushButton::clicked, this, [this, group] {
    if (const auto modifiers = HotKeyClashes::freeModifiers(group)) {
      apply(group, *modifiers);
    } else {
      refused_[group] = localized("launch.keys.noneFree");
      refresh();
    }
  });
}

void LaunchWindow::apply(HotkeyGroup group, std::uint32_t modifiers) {
  refused_.erase(group);
  if (const auto rival = HotKeyClashes::rival(group, modifiers)) {
    refused_[group] = localized("launch.keys.rival", KeyCombo::modifierSymbols(modifiers), label(*rival));
    refresh();
    return;
  }
  Settings::setModifiers(modifiers, group);
  // The delegate registers the keys, then this window's own observer shows how that went.
  Notifications::post(Notifications::hotkeysChanged);
}

void LaunchWindow::addButtons(QVBoxLayout& layout) {
  auto* row = new QHBoxLayout;
  row->setSpacing(10);
  if (!controller_.isReady()) {
    addButton(*row, localized("launch.quit"), [] { QCoreApplication::exit(EXIT_SUCCESS); });
  }
  row->addStretch();
  if (controller_.isReady()) {
    setDefaultButton(addButton(*row, localized("launch.done"), [this] { accept(); }));
  } else if (isForeign()) {
    setDefaultButton(addButton(*row, localized("launch.continue"), [this] {
      accept();
      controller_.continueAnyway();
    }));
  } else {
    setDefaultButton(addButton(*row, localized("launch.hide"), [this] { close(); }));
  }
  layout.addLayout(row);
}

}  // namespace tessaspaces
