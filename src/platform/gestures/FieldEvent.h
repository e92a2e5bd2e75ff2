#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <variant>
#include <vector>

#include "platform/InputEvents.h"

namespace tessaspaces {

/// An input event where the system has none like it: a map of fields in memory.
///
/// Its bytes begin with 00 00 00 02, the version of the form. Then come records, each with the length of its payload
/// and its tag (16 bits each, most significant byte first) before the payload. Records with tags of this class's own
/// carry the time and the fields; all others are kept as they came, in their order, so that whoever appends one to the
/// bytes of an event finds it in the event that is made from them.
class FieldEvent final : public InputEvent {
 public:
  /// No field is set.
  explicit FieldEvent(std::uint64_t timestamp = 0) : timestamp_(timestamp) {}
  /// Null when the bytes are not of that form: another version, a record that is cut off, or one of the class's own
  /// with the wrong length. Of two records for one field the later one counts.
  static std::unique_ptr<FieldEvent> fromBytes(std::span<const std::uint8_t> data);

  void setInteger(int field, std::int64_t value) override { fields_[field] = value; }
  void setDouble(int field, double value) override { fields_[field] = value; }
  /// A field set as the other kind of number is converted, fractions cut off; 0 where it does not fit.
  [[nodiscard]] std::int64_t integer(int field) const override;
  [[nodiscard]] double number(int field) const override;
  [[nodiscard]] std::uint64_t timestamp() const override { return timestamp_; }
  [[nodiscard]] std::vector<std::uint8_t> serialized() const override;

  /// The payload of the one appended record of this tag, valid as long as the event; absent when there is none, or
  /// more than one.
  [[nodiscard]] std::optional<std::span<const std::uint8_t>> appended(std::uint16_t tag) const;

 private:
  using Value = std::variant<std::int64_t, double>;
  struct Record {
    std::uint16_t tag = 0;
    std::vector<std::uint8_t> payload;
  };
  /// False when it is one of the class's own, and none that it writes.
  bool take(std::uint16_t tag, std::span<const std::uint8_t> payload);

  std::uint64_t timestamp_ = 0;
  std::map<int, Value> fields_;
  std::vector<Record> appended_;
};

}  // namespace tessaspaces
