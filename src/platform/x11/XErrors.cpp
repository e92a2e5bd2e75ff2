#include "platform/x11/XErrors.h"

#include <fmt/format.h>
#include <xcb/composite.h>
#include <xcb/damage.h>
#include <xcb/randr.h>
#include <xcb/render.h>
#include <xcb/xproto.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string_view>

#include "base/Fatal.h"
#include "base/Report.h"

namespace tessaspaces {
namespace {

struct RequestName {
  std::uint8_t opcode;
  std::string_view name;
};

constexpr auto requestNames = std::to_array<RequestName>({
    {XCB_CREATE_WINDOW, "CreateWindow"},
    {XCB_CHANGE_WINDOW_ATTRIBUTES, "ChangeWindowAttributes"},
    {XCB_GET_WINDOW_ATTRIBUTES, "GetWindowAttributes"},
    {XCB_DESTROY_WINDOW, "DestroyWindow"},
    {XCB_CONFIGURE_WINDOW, "ConfigureWindow"},
    {XCB_GET_GEOMETRY, "GetGeometry"},
    {XCB_QUERY_TREE, "QueryTree"},
    {XCB_INTERN_ATOM, "InternAtom"},
    {XCB_GET_ATOM_NAME, "GetAtomName"},
    {XCB_CHANGE_PROPERTY, "ChangeProperty"},
    {XCB_DELETE_PROPERTY, "DeleteProperty"},
    {XCB_GET_PROPERTY, "GetProperty"},
    {XCB_SET_SELECTION_OWNER, "SetSelectionOwner"},
    {XCB_GET_SELECTION_OWNER, "GetSelectionOwner"},
    {XCB_SEND_EVENT, "SendEvent"},
    {XCB_CREATE_PIXMAP, "CreatePixmap"},
    {XCB_FREE_PIXMAP, "FreePixmap"},
    {XCB_GET_IMAGE, "GetImage"},
    {XCB_UNGRAB_KEYBOARD, "UngrabKeyboard"},
    {XCB_GRAB_KEY, "GrabKey"},
    {XCB_UNGRAB_KEY, "UngrabKey"},
    {XCB_QUERY_POINTER, "QueryPointer"},
    {XCB_TRANSLATE_COORDINATES, "TranslateCoordinates"},
    {XCB_GET_KEYBOARD_MAPPING, "GetKeyboardMapping"},
    {XCB_GET_MODIFIER_MAPPING, "GetModifierMapping"},
});

constexpr auto errorNames = std::to_array<std::string_view>({
    "no error",
    "BadRequest",
    "BadValue",
    "BadWindow",
    "BadPixmap",
    "BadAtom",
    "BadCursor",
    "BadFont",
    "BadMatch",
    "BadDrawable",
    "BadAccess",
    "BadAlloc",
    "BadColormap",
    "BadGContext",
    "BadIDChoice",
    "BadName",
    "BadLength",
    "BadImplementation",
});

struct Harmless {
  std::uint8_t opcode;
  std::uint8_t error;
};

// The requests that name other clients' windows or their contents, with the error that each gives for one that is
// gone, and the key grab, whose refusal is an answer.
constexpr auto harmless = std::to_array<Harmless>({
    {XCB_GET_PROPERTY, XCB_WINDOW},
    {XCB_GET_WINDOW_ATTRIBUTES, XCB_WINDOW},
    {XCB_GET_GEOMETRY, XCB_DRAWABLE},
    {XCB_TRANSLATE_COORDINATES, XCB_WINDOW},
    {XCB_QUERY_TREE, XCB_WINDOW},
    {XCB_CHANGE_WINDOW_ATTRIBUTES, XCB_WINDOW},
    {XCB_CONFIGURE_WINDOW, XCB_WINDOW},
    {XCB_CONFIGURE_WINDOW, XCB_MATCH},
    {XCB_SEND_EVENT, XCB_WINDOW},
    {XCB_GRAB_KEY, XCB_ACCESS},
    {XCB_FREE_PIXMAP, XCB_PIXMAP},
});

// What the pictures of windows name goes as windows do, and with them what was made for them.
bool isGoneWithItsWindow(const xcb_generic_error_t& error, const ExtensionCodes& extensions) {
  if (extensions.composite != 0 && error.major_code == extensions.composite) {
    // A window that is hidden by now, or that nobody redirects any more.
    return error.error_code == XCB_WINDOW || error.error_code == XCB_MATCH || error.error_code == XCB_VALUE;
  }
  if (extensions.damage != 0 && error.major_code == extensions.damage) {
    return error.error_code == XCB_DRAWABLE || error.error_code == extensions.damageFirstError + XCB_DAMAGE_BAD_DAMAGE;
  }
  // The picture behind all windows, which another program may take away.
  return extensions.render != 0 && error.major_code == extensions.render &&
         (error.error_code == XCB_DRAWABLE || error.error_code == extensions.renderFirstError + XCB_RENDER_PICTURE);
}

}  // namespace

bool isHarmless(const xcb_generic_error_t& error, const ExtensionCodes& extensions) {
  if (extensions.randr != 0 && error.major_code == extensions.randr) {
    // Outputs and CRTCs of monitors that were just pulled out.
    const int code = error.error_code - extensions.randrFirstError;
    return code == XCB_RANDR_BAD_OUTPUT || code == XCB_RANDR_BAD_CRTC;
  }
  if (isGoneWithItsWindow(error, extensions)) return true;
  return std::any_of(harmless.begin(), harmless.end(), [&](const Harmless& entry) {
    return entry.opcode == error.major_code && entry.error == error.error_code;
  });
}

std::string describe(const xcb_generic_error_t& error, const ExtensionCodes& extensions) {
  std::string request = fmt::format("request {}.{}", error.major_code, error.minor_code);
  const auto* name = std::find_if(requestNames.begin(), requestNames.end(),
                                  [&](const RequestName& entry) { return entry.opcode == error.major_code; });
  if (name != requestNames.end()) {
    request = name->name;
  } else if (error.major_code >= 128) {
    const std::string_view extension = error.major_code == extensions.randr       ? "RANDR"
                                       : error.major_code == extensions.xkb       ? "XKEYBOARD"
                                       : error.major_code == extensions.xtest     ? "XTEST"
                                       : error.major_code == extensions.composite ? "Composite"
                                       : error.major_code == extensions.damage    ? "DAMAGE"
                                       : error.major_code == extensions.render    ? "RENDER"
                                                                                  : "extension";
    request = fmt::format("{} request {}", extension, error.minor_code);
  }
  const std::string code = error.error_code < errorNames.size() ? std::string(errorNames[error.error_code])
                                                                : fmt::format("error {}", error.error_code);
  return fmt::format("{} from {} on {:#x}", code, request, error.resource_id);
}

void handleError(const xcb_generic_error_t& error, const ExtensionCodes& extensions) {
  if (isHarmless(error, extensions)) return;
  static const bool fatalErrors = [] {
    const char* value = std::getenv("TESSASPACES_X_FATAL");
    return value != nullptr && std::string_view(value) == "1";
  }();
  const auto text = "X11: " + describe(error, extensions);
  if (fatalErrors) fatal(text);
  report(ReportLevel::error, text);
}

}  // namespace tessaspaces
