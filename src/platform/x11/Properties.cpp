#include "platform/x11/Properties.h"

#include <algorithm>

namespace tessaspaces {
namespace {

// How many bytes a character that begins so has; 0 when none begins so.
std::size_t lengthOf(char first) {
  const auto lead = static_cast<unsigned char>(first);
  if (lead < 0x80) return 1;
  if (lead < 0xc2 || lead >= 0xf5) return 0;
  return lead < 0xe0 ? 2 : lead < 0xf0 ? 3 : 4;
}

bool isContinuation(char c) {
  return (static_cast<unsigned char>(c) & 0xc0) == 0x80;
}

// Length of the longest valid UTF-8 prefix.
std::size_t validUtf8(std::string_view text) {
  std::size_t i = 0;
  while (i < text.size()) {
    const auto length = lengthOf(text[i]);
    if (length == 0 || i + length > text.size()) return i;
    const auto rest = text.substr(i + 1, length - 1);
    if (!std::all_of(rest.begin(), rest.end(), isContinuation)) return i;
    if (length > 2) {
      const auto lead = static_cast<unsigned char>(text[i]);
      const auto second = static_cast<unsigned char>(text[i + 1]);
      // Overlong forms, surrogates, and what lies beyond the last code point.
      if ((lead == 0xe0 && second < 0xa0) || (lead == 0xed && second >= 0xa0) || (lead == 0xf0 && second < 0x90) ||
          (lead == 0xf4 && second >= 0x90)) {
        return i;
      }
    }
    i += length;
  }
  return i;
}

bool isCutCharacter(std::string_view tail) {
  return tail.size() < lengthOf(tail[0]) && std::all_of(tail.begin() + 1, tail.end(), isContinuation);
}

TextType declaredType(const PropertyReply& reply) {
  return reply->type == XCB_ATOM_STRING ? TextType::string : TextType::utf8;
}

}  // namespace

xcb_get_property_cookie_t askProperty(Channel& channel, xcb_window_t window, xcb_atom_t property,
                                      std::uint32_t maxItems) {
  return channel.send<xcb_get_property>(std::uint8_t{0}, window, property, xcb_atom_t{XCB_GET_PROPERTY_TYPE_ANY}, 0U,
                                        maxItems);
}

xcb_get_property_cookie_t askText(Channel& channel, xcb_window_t window, xcb_atom_t property) {
  return askProperty(channel, window, property, maxTextBytes / 4);
}

std::span<const std::uint32_t> items(const PropertyReply& reply) {
  if (!reply || reply->format != 32) return {};
  return {static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get())), reply->value_len};
}

std::optional<std::uint32_t> firstItem(const PropertyReply& reply) {
  const auto values = items(reply);
  if (values.empty()) return std::nullopt;
  return values[0];
}

std::optional<std::string_view> bytes(const PropertyReply& reply) {
  if (!reply || reply->format != 8) return std::nullopt;
  return std::string_view(static_cast<const char*>(xcb_get_property_value(reply.get())), reply->value_len);
}

std::optional<std::string> text(const PropertyReply& reply) {
  const auto value = bytes(reply);
  if (!value) return std::nullopt;
  return toUtf8(value->substr(0, value->find('\0')), declaredType(reply));
}

std::vector<std::string> texts(const PropertyReply& reply) {
  std::vector<std::string> result;
  auto rest = bytes(reply).value_or(std::string_view());
  while (!rest.empty()) {
    const auto end = rest.find('\0');
    result.push_back(toUtf8(rest.substr(0, end), declaredType(reply)));
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
  }
  return result;
}

std::string toUtf8(std::string_view bytes, TextType declared) {
  const auto valid = validUtf8(bytes);
  if (valid == bytes.size()) return std::string(bytes);
  if (declared == TextType::utf8 && isCutCharacter(bytes.substr(valid))) return std::string(bytes.substr(0, valid));
  std::string result;
  for (const char c : bytes) {
    const auto code = static_cast<unsigned char>(c);
    if (code < 0x80) {
      result += c;
    } else {
      result += static_cast<char>(0xc0 | (code >> 6));
      result += static_cast<char>(0x80 | (code & 0x3f));
    }
  }
  return result;
}

}  // namespace tessaspaces
