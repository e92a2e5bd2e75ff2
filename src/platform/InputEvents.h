#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "base/Geometry.h"

namespace tessaspaces {

/// An event as the window server knows it: numbered fields and nothing else. Belongs to one thread at a time.
class InputEvent {
 public:
  virtual ~InputEvent() = default;
  virtual void setInteger(int field, std::int64_t value) = 0;
  virtual void setDouble(int field, double value) = 0;
  /// 0 for a field that nobody has set.
  [[nodiscard]] virtual std::int64_t integer(int field) const = 0;
  [[nodiscard]] virtual double number(int field) const = 0;
  /// When it happened, in the unit of InputEvents::absoluteTime; 0 while nobody has said.
  [[nodiscard]] virtual std::uint64_t timestamp() const = 0;
  /// The event as the bytes that it travels as; empty when the system does not give them.
  [[nodiscard]] virtual std::vector<std::uint8_t> serialized() const = 0;
};

/// What is held down at one moment, by a hand or by a program.
struct HeldInput {
  /// Any mouse button.
  bool button = false;
  /// Any of shift, control, option and command; not the locks.
  bool modifier = false;
  friend bool operator==(const HeldInput&, const HeldInput&) = default;
};

/// Events and mouse actions that the program makes itself. Any thread.
class InputEvents {
 public:
  virtual ~InputEvents() = default;

  /// An event with no source and no field set. Null when the system makes none.
  virtual std::unique_ptr<InputEvent> create() = 0;
  /// The event that the bytes describe, with whatever was appended to them. Null when they describe none.
  virtual std::unique_ptr<InputEvent> recreate(std::span<const std::uint8_t> data) = 0;
  /// Hands the event in where a session's events come in, before anybody has seen them. Whether anything comes of
  /// it shows only in what the displays do.
  virtual void post(const InputEvent& event) = 0;
  /// The machine's clock that events are stamped by; never 0.
  virtual std::uint64_t absoluteTime() = 0;

  // The mouse, in global coordinates with the origin at the top left of the primary display, y downwards.
  /// Absent when the system does not say.
  virtual std::optional<Point> mouseLocation() = 0;
  /// Absent when the system does not say.
  virtual std::optional<HeldInput> held() = 0;
  // False when the system does not take such actions; true once it has done this one. A press that is still held is
  // released when the platform ends.
  virtual bool moveMouse(Point to) = 0;
  virtual bool pressMouse() = 0;    // the first button
  virtual bool releaseMouse() = 0;  // a release without a press does nothing; a button that a hand holds stays down
};

}  // namespace tessaspaces
