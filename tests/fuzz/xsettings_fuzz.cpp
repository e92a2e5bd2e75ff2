#include "fuzz/Fuzz.h"
#include "platform/x11/XSettings.h"

// The settings of the session as a property that any program may write.

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tessaspaces;
  const auto whole = XSettings::parse({data, size});
  const auto wanted = whole.number("Gtk/EnableAnimations");
  // What was understood stands before any end that is cut off.
  const auto half = XSettings::parse({data, size / 2}).number("Gtk/EnableAnimations");
  fuzz::require(!half || wanted, "a setting that is there only while the rest is not");
  return 0;
}
