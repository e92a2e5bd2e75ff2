#pragma once

#include <QAbstractNativeEventFilter>
#include <QColor>
#include <QObject>
#include <functional>
#include <optional>

namespace tessaspaces {

/// Where a tray icon can go: a StatusNotifierItem host on the session bus, or an XEmbed tray on the X
/// screen. Qt looks for the former only once, when the first icon is made, and never again; so the icon
/// has to wait until this class has seen a host. Main thread.
class TrayHosts final : public QObject, private QAbstractNativeEventFilter {
  Q_OBJECT

 public:
  /// Looks at nothing until `start`.
  explicit TrayHosts(std::function<void()> changed);
  ~TrayHosts() override;

  /// Looks for hosts, asynchronously on the bus, and goes on watching for ones that come later.
  /// `changed` runs whenever one of the answers below has become another one.
  void start();

  /// Every place has been looked at.
  [[nodiscard]] bool isKnown() const { return busAsked_; }
  [[nodiscard]] bool hasAny() const { return notifierHost_ || embedder_; }
  /// The colour in which the XEmbed tray wants symbols, where it tells.
  [[nodiscard]] std::optional<QColor> symbolColor() const { return symbolColor_; }

 private Q_SLOTS:
  void askNotifierWatcher();

 private:
  bool nativeEventFilter(const QByteArray& type, void* message, qintptr* result) override;
  void lookAtScreen();
  void setNotifierHost(bool present);

  std::function<void()> changed_;
  bool notifierHost_ = false;
  bool embedder_ = false;
  bool busAsked_ = false;
  std::optional<QColor> symbolColor_;
  quint32 selection_ = 0;
  quint32 manager_ = 0;
};

}  // namespace tessaspaces
