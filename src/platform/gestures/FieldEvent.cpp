#include "platform/gestures/FieldEvent.h"

#include <algorithm>
#include <array>
#include <bit>

namespace tessaspaces {
namespace {

constexpr std::array<std::uint8_t, 4> version{0, 0, 0, 2};
constexpr std::size_t headerSize = 4;

constexpr std::uint16_t timestampTag = 1;     // u64
constexpr std::uint16_t integerFieldTag = 2;  // i32 field, i64 value
constexpr std::uint16_t doubleFieldTag = 3;   // i32 field, the 64 bits of the value

constexpr std::size_t timestampSize = 8;
constexpr std::size_t fieldSize = 12;

std::uint64_t readNumber(std::span<const std::uint8_t> bytes) {
  std::uint64_t value = 0;
  for (const auto byte : bytes) value = value << 8 | byte;
  return value;
}

void append(std::vector<std::uint8_t>& bytes, std::uint64_t value, int size) {
  for (int shift = 8 * (size - 1); shift >= 0; shift -= 8) bytes.push_back(static_cast<std::uint8_t>(value >> shift));
}

void appendHeader(std::vector<std::uint8_t>& bytes, std::size_t length, std::uint16_t tag) {
  append(bytes, length, 2);
  append(bytes, tag, 2);
}

}  // namespace

std::unique_ptr<FieldEvent> FieldEvent::fromBytes(std::span<const std::uint8_t> data) {
  if (data.size() < version.size() || !std::equal(version.begin(), version.end(), data.begin())) return nullptr;
  auto event = std::make_unique<FieldEvent>();
  data = data.subspan(version.size());
  while (!data.empty()) {
    if (data.size() < headerSize) return nullptr;
    const auto length = readNumber(data.first(2));
    const auto tag = static_cast<std::uint16_t>(readNumber(data.subspan(2, 2)));
    data = data.subspan(headerSize);
    if (data.size() < length || !event->take(tag, data.first(length))) return nullptr;
    data = data.subspan(length);
  }
  return event;
}

bool FieldEvent::take(std::uint16_t tag, std::span<const std::uint8_t> payload) {
  switch (tag) {
    case timestampTag:
      if (payload.size() != timestampSize) return false;
      timestamp_ = readNumber(payload);
      return true;
    case integerFieldTag:
    case doubleFieldTag: {
      if (payload.size() != fieldSize) return false;
      const auto field = static_cast<std::int32_t>(readNumber(payload.first(4)));
      const auto bits = readNumber(payload.subspan(4));
      if (tag == integerFieldTag) {
        setInteger(field, static_cast<std::int64_t>(bits));
      } else {
        setDouble(field, std::bit_cast<double>(bits));
      }
      return true;
    }
    default: appended_.push_back({tag, {payload.begin(), payload.end()}}); return true;
  }
}

std::int64_t FieldEvent::integer(int field) const {
  const auto found = fields_.find(field);
  if (found == fields_.end()) return 0;
  if (const auto* value = std::get_if<std::int64_t>(&found->second)) return *value;
  const double value = std::get<double>(found->second);
  constexpr double end = 0x1p63;  // the first that is too large
  return value >= -end && value < end ? static_cast<std::int64_t>(value) : 0;
}

double FieldEvent::number(int field) const {
  const auto found = fields_.find(field);
  if (found == fields_.end()) return 0;
  return std::visit([](auto value) { return static_cast<double>(value); }, found->second);
}

std::vector<std::uint8_t> FieldEvent::serialized() const {
  std::vector<std::uint8_t> bytes(version.begin(), version.end());
  if (timestamp_ != 0) {
    appendHeader(bytes, timestampSize, timestampTag);
    append(bytes, timestamp_, 8);
  }
  for (const auto& [field, value] : fields_) {
    const auto* integer = std::get_if<std::int64_t>(&value);
    appendHeader(bytes, fieldSize, integer ? integerFieldTag : doubleFieldTag);
    append(bytes, static_cast<std::uint32_t>(field), 4);
    append(bytes,
           integer ? static_cast<std::uint64_t>(*integer) : std::bit_cast<std::uint64_t>(std::get<double>(value)), 8);
  }
  for (const auto& record : appended_) {
    appendHeader(bytes, record.payload.size(), record.tag);
    bytes.insert(bytes.end(), record.payload.begin(), record.payload.end());
  }
  return bytes;
}

std::optional<std::span<const std::uint8_t>> FieldEvent::appended(std::uint16_t tag) const {
  const auto hasTag = [tag](const Record& record) { return record.tag == tag; };
  const auto found = std::find_if(appended_.begin(), appended_.end(), hasTag);
  if (found == appended_.end() || std::any_of(std::next(found), appended_.end(), hasTag)) return std::nullopt;
  return found->payload;
}

}  // namespace tessaspaces
