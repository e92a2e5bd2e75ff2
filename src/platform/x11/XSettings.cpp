#include "platform/x11/XSettings.h"

#include "platform/x11/Properties.h"

namespace tessaspaces {
namespace {

constexpr std::uint32_t mostBytes = 256 * 1024;

enum class SettingType : std::uint8_t { number = 0, text = 1, color = 2 };

/// Takes values off the front of what another program wrote; once there is too little left, there is nothing left.
class Cursor {
 public:
  explicit Cursor(std::span<const std::uint8_t> data) : rest_(data) {}

  void setBigEndian(bool big) { big_ = big; }
  [[nodiscard]] bool failed() const { return failed_; }

  std::uint32_t number(std::size_t bytes) {
    const auto taken = take(bytes);
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < taken.size(); ++i) {
      value |= std::uint32_t{taken[big_ ? taken.size() - 1 - i : i]} << 8 * i;
    }
    return value;
  }
  /// With what fills it up to a multiple of four.
  std::string_view text(std::size_t bytes) {
    const auto taken = take(bytes);
    skip((4 - bytes % 4) % 4);
    return {reinterpret_cast<const char*>(taken.data()), taken.size()};
  }
  void skip(std::size_t bytes) { take(bytes); }

 private:
  std::span<const std::uint8_t> take(std::size_t bytes) {
    if (bytes > rest_.size()) {
      failed_ = true;
      rest_ = {};
      return {};
    }
    const auto taken = rest_.first(bytes);
    rest_ = rest_.subspan(bytes);
    return taken;
  }

  std::span<const std::uint8_t> rest_;
  bool big_ = false;
  bool failed_ = false;
};

}  // namespace

XSettings XSettings::parse(std::span<const std::uint8_t> data) {
  XSettings parsed;
  Cursor cursor(data);
  const auto byteOrder = cursor.number(1);
  if (byteOrder != XCB_IMAGE_ORDER_LSB_FIRST && byteOrder != XCB_IMAGE_ORDER_MSB_FIRST) return parsed;
  cursor.setBigEndian(byteOrder == XCB_IMAGE_ORDER_MSB_FIRST);
  cursor.skip(3 + 4);  // filling, serial
  for (auto left = cursor.number(4); left > 0 && !cursor.failed(); --left) {
    const auto type = static_cast<SettingType>(cursor.number(1));
    cursor.skip(1);
    const auto name = cursor.text(cursor.number(2));
    cursor.skip(4);  // the serial of its last change
    switch (type) {
      case SettingType::number: {
        const auto value = static_cast<std::int32_t>(cursor.number(4));
        if (!cursor.failed()) parsed.numbers_.insert_or_assign(std::string(name), value);
        break;
      }
      case SettingType::text: cursor.text(cursor.number(4)); break;
      case SettingType::color: cursor.skip(8); break;
      default: return parsed;
    }
  }
  return parsed;
}

XSettings XSettings::read(Connection& connection) {
  auto& channel = connection.requests();
  const auto& atoms = connection.atoms();
  const auto owner =
      channel.await<xcb_get_selection_owner_reply>(channel.send<xcb_get_selection_owner>(atoms.xsettingsSelection));
  if (!owner || owner->owner == XCB_NONE) return {};
  const auto reply =
      channel.await<xcb_get_property_reply>(askProperty(channel, owner->owner, atoms.xsettingsSettings, mostBytes / 4));
  const auto data = bytes(reply);
  if (!data) return {};
  return parse({reinterpret_cast<const std::uint8_t*>(data->data()), data->size()});
}

std::optional<std::int32_t> XSettings::number(std::string_view name) const {
  const auto found = numbers_.find(name);
  return found == numbers_.end() ? std::nullopt : std::optional(found->second);
}

}  // namespace tessaspaces
