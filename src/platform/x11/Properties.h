#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/x11/Channel.h"
#include "platform/x11/Connection.h"

namespace tessaspaces {

using PropertyReply = Reply<xcb_get_property_reply_t>;

/// Longest text read, in bytes. Titles and names beyond it are cut.
constexpr std::uint32_t maxTextBytes = 64 * 1024;
/// Longest WM_CLASS read, in bytes.
constexpr std::uint32_t maxClassBytes = 1024;
/// Most items read of a list, such as that of the windows. Each may cost requests of its own, and any program can
/// write the list; what people have open is far below.
constexpr std::uint32_t maxListItems = 4096;

/// Asks for a property of any type, at most `maxItems` 32-bit units of it.
xcb_get_property_cookie_t askProperty(Channel& channel, xcb_window_t window, xcb_atom_t property,
                                      std::uint32_t maxItems = maxListItems);
xcb_get_property_cookie_t askText(Channel& channel, xcb_window_t window, xcb_atom_t property);

/// The reply's 32-bit items, valid as long as the reply; none for a missing property or another format.
[[nodiscard]] std::span<const std::uint32_t> items(const PropertyReply& reply);
/// The first item.
[[nodiscard]] std::optional<std::uint32_t> firstItem(const PropertyReply& reply);
/// The bytes of a text property, valid as long as the reply; absent when it is missing.
[[nodiscard]] std::optional<std::string_view> bytes(const PropertyReply& reply);
/// The text as UTF-8; absent when the property is missing.
[[nodiscard]] std::optional<std::string> text(const PropertyReply& reply);
/// The null-separated texts as UTF-8.
[[nodiscard]] std::vector<std::string> texts(const PropertyReply& reply);

enum class TextType { utf8, string };

/// What clients wrote, as valid UTF-8. Text that is not UTF-8 is taken for Latin-1, but for a last character
/// that was cut off in text declared to be UTF-8: that is dropped.
[[nodiscard]] std::string toUtf8(std::string_view bytes, TextType declared);

}  // namespace tessaspaces
