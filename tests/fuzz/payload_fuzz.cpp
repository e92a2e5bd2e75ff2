#include <algorithm>
#include <vector>

#include "fuzz/Fuzz.h"
#include "platform/gestures/FieldEvent.h"
#include "platform/gestures/SwipeReader.h"
#include "platform/gestures/SwipeTracker.h"

// Events as bytes, with the driver's report of a swipe among them: nothing is lost on the way through an event, and a
// report with any other byte is no report.

namespace tessaspaces {
namespace {

using fuzz::require;
using Bytes = std::vector<std::uint8_t>;

constexpr std::uint16_t reportTag = 0x106D;
constexpr std::size_t stampSize = 8;

/// The event with `report` in place of its own, which is its only one.
std::unique_ptr<FieldEvent> withReport(const FieldEvent& event, const Bytes& report) {
  const auto own = event.appended(reportTag).value();
  auto bytes = event.serialized();
  // The first place where it stands may be inside another record: only the outcome tells.
  for (auto at = bytes.begin();; ++at) {
    at = std::search(at, bytes.end(), own.begin(), own.end());
    require(at != bytes.end(), "a report from nowhere");
    auto changed = bytes;
    std::copy(report.begin(), report.end(), changed.begin() + (at - bytes.begin()));
    auto result = FieldEvent::fromBytes(changed);
    const auto now = result ? result->appended(reportTag) : std::nullopt;
    if (now && std::equal(now->begin(), now->end(), report.begin(), report.end())) return result;
  }
}

void checkReport(const FieldEvent& event, const DockSwipe& swipe, std::size_t choice) {
  require(swipe.timestamp != 0, "a swipe without a time");
  const auto own = event.appended(reportTag);
  require(own && (own->size() == 68 || own->size() == 96), "a report of another size");
  Bytes report(own->begin(), own->end());
  // An event without a time of its own bears none out.
  const std::size_t first = event.timestamp() == 0 ? stampSize : 0;
  const auto at = first + choice % (report.size() - first);
  report[at] = static_cast<std::uint8_t>(report[at] ^ (1U << (choice / report.size() % 8)));
  require(!readSwipe(*withReport(event, report)), "a wrong byte in a report");
}

}  // namespace
}  // namespace tessaspaces

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tessaspaces;
  using fuzz::require;
  const auto event = FieldEvent::fromBytes({data, size});
  if (!event) return 0;
  const auto bytes = event->serialized();
  const auto again = FieldEvent::fromBytes(bytes);
  require(again && again->serialized() == bytes, "an event that is another after its own bytes");
  (void)event->integer(124);
  (void)event->number(132);

  const auto swipe = readSwipe(*event);
  if (swipe) {
    std::size_t choice = size;
    for (std::size_t i = 0; i < size; ++i) choice = choice * 31 + data[i];
    checkReport(*event, *swipe, choice);
  }

  // However often one event comes, it is not three different ones.
  FieldEvent companion;
  companion.setInteger(55, 29);
  SwipeTracker tracker;
  for (int i = 0; i < 3; ++i) {
    require(!tracker.take(*event, swipe ? swipe->timestamp : 1), "a swipe out of one event");
    require(!tracker.take(companion, 1), "a swipe out of one event");
  }
  return 0;
}
