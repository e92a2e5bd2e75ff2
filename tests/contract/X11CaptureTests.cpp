// What previews cost an X server, and what the server tells of wallpapers: under a window manager of the usual kind.
#include <xcb/composite.h>
#include <xcb/res.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "contract/ContractTest.h"
#include "contract/X11Driver.h"
#include "harness/XConnection.h"
#include "platform/x11/X11Platform.h"

namespace tessaspaces::contract {

namespace {

using harness::XConnection;

constexpr std::uint32_t opaque = 0xFF000000;

/// Bytes that all clients but the owner of this window have the server keep in pixmaps.
std::uint64_t pixmapBytes(const XConnection& x, WindowID window) {
  const auto clients = x.reply(xcb_res_query_clients_reply, xcb_res_query_clients(x.get()));
  std::uint64_t bytes = 0;
  for (auto it = xcb_res_query_clients_clients_iterator(clients.get()); it.rem > 0; xcb_res_client_next(&it)) {
    if ((window & ~it.data->resource_mask) == it.data->resource_base) continue;
    const auto cookie = xcb_res_query_client_pixmap_bytes(x.get(), it.data->resource_base);
    if (const auto reply = x.reply(xcb_res_query_client_pixmap_bytes_reply, cookie)) {
      bytes += std::uint64_t{reply->bytes_overflow} << 32U | reply->bytes;
    }
  }
  return bytes;
}

/// A picture for the root as wallpaper programs leave it: one colour on the left half, another on the right.
xcb_pixmap_t paintRoot(const XConnection& x, std::uint32_t left, std::uint32_t right) {
  const auto& screen = x.screen();
  const xcb_pixmap_t pixmap = xcb_generate_id(x.get());
  xcb_create_pixmap(x.get(), screen.root_depth, pixmap, x.root(), screen.width_in_pixels, screen.height_in_pixels);
  const xcb_gcontext_t context = xcb_generate_id(x.get());
  xcb_create_gc(x.get(), context, pixmap, 0, nullptr);
  const auto half = static_cast<std::uint16_t>(screen.width_in_pixels / 2);
  for (const auto& [at, color] : {std::pair{0, left}, std::pair{int{half}, right}}) {
    xcb_change_gc(x.get(), context, XCB_GC_FOREGROUND, &color);
    const xcb_rectangle_t part{static_cast<std::int16_t>(at), 0, half, screen.height_in_pixels};
    xcb_poly_fill_rectangle(x.get(), pixmap, context, 1, &part);
  }
  x.setNumbers(x.root(), "_XROOTPMAP_ID", "PIXMAP", {pixmap});
  x.roundTrip();
  return pixmap;
}

}  // namespace

class X11CaptureTest : public Contract {
 protected:
  WindowCapture& capture() { return platform().windowCapture(); }
  X11Platform& x11() { return static_cast<X11Platform&>(platform()); }
  static std::string displayName() { return std::getenv("DISPLAY"); }
  ImageRef fresh(WindowID window) { return capture().previews(std::vector{window}).front(); }
  /// As far as other clients can tell.
  static void startCompositing(const XConnection& x) {
    xcb_composite_query_version_unchecked(x.get(), 0, 4);
    xcb_composite_redirect_subwindows(x.get(), x.root(), XCB_COMPOSITE_REDIRECT_MANUAL);
    const xcb_window_t owner = xcb_generate_id(x.get());
    xcb_create_window(x.get(), 0, owner, x.root(), -5, -5, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY, 0, 0, nullptr);
    xcb_set_selection_owner(x.get(), owner, x.atom("_NET_WM_CM_S0"), XCB_CURRENT_TIME);
    x.roundTrip();
  }
  static std::uint32_t middle(const ImageRef& image) {
    return image ? image->pixels.at(static_cast<std::size_t>(image->height / 2 * image->width + image->width / 2)) : 0;
  }
};

TEST_P(X11CaptureTest, AHundredPreviewsTakeThreeAnswers) {
  start();
  ASSERT_TRUE(capture().begin());
  std::vector<WindowID> windows;
  std::vector<std::uint32_t> colors;
  for (std::uint32_t i = 0; i < 100; ++i) {
    windows.push_back(driver->open({.title = std::to_string(i), .x = 20 * int(i % 10), .y = 20 * int(i / 10)}));
    colors.push_back(opaque | (0x010203 * i + 0x102030));
    driver->draw(windows.back(), {colors[i], colors[i], colors[i], colors[i]});
  }
  EXPECT_TRUE(driver->until([&] {
    return std::all_of(windows.begin(), windows.end(), [&](auto window) { return capture().preview(window); });
  })) << "each gets one soon, without being asked for";
  for (const int side : {200, 300, 400}) {
    capture().setLimits({1, side});
    const auto before = x11().roundTrips();
    const auto pictures = capture().previews(windows);
    EXPECT_LE(x11().roundTrips() - before, 3U);
    for (std::size_t i = 0; i < windows.size(); ++i) {
      ASSERT_TRUE(pictures[i]);
      EXPECT_EQ(std::max(pictures[i]->width, pictures[i]->height), side);
      EXPECT_EQ(middle(pictures[i]), colors[i]);
    }
    const auto again = x11().roundTrips();
    EXPECT_EQ(capture().previews(windows), pictures);
    EXPECT_EQ(x11().roundTrips(), again) << "nothing changed, nothing asked";
  }
}

TEST_P(X11CaptureTest, TheServerKeepsNoMoreThanWhatIsOnScreen) {
  start();
  constexpr int width = 800;
  constexpr int height = 600;
  constexpr std::uint64_t content = std::uint64_t{width} * height * 4;
  constexpr std::uint64_t small = content / 2;
  std::vector<WindowID> windows;
  for (int i = 0; i < 6; ++i) windows.push_back(driver->open({.width = width, .height = height}));
  driver->settle();
  const XConnection x(displayName());
  const auto idle = pixmapBytes(x, windows[0]);
  const auto kept = [&] { return static_cast<std::int64_t>(pixmapBytes(x, windows[0]) - idle); };
  const auto keeps = [&](std::uint64_t contents) {
    const auto least = static_cast<std::int64_t>(contents * content);
    return driver->until([&] {
      // Title bars on top of it, and what the window manager itself gains and loses.
      return kept() > least - static_cast<std::int64_t>(small) &&
             kept() < least + static_cast<std::int64_t>(contents * content / 8 + small);
    });
  };
  const auto allKnown = [&] {
    return driver->until([&] {
      return std::all_of(windows.begin(), windows.end(), [&](auto window) { return capture().preview(window); });
    });
  };

  ASSERT_TRUE(capture().begin());
  EXPECT_TRUE(allKnown());
  EXPECT_TRUE(keeps(6)) << kept();
  for (const int step : {1, 2, 3, 4, 5}) driver->resize(windows[0], width - 10 * step, height - 10 * step);
  driver->resize(windows[0], width, height);
  EXPECT_TRUE(keeps(6)) << kept() << ": one content for each window, also after changes of its size";
  driver->close(windows.back());
  windows.pop_back();
  EXPECT_TRUE(keeps(5)) << kept();
  driver->showDesktop(1);
  EXPECT_TRUE(keeps(0)) << kept() << ": hidden windows have small pictures, here";
  EXPECT_TRUE(allKnown());
  driver->showDesktop(0);
  EXPECT_TRUE(keeps(5)) << kept();
  capture().stop();
  EXPECT_TRUE(keeps(0)) << kept();
}

TEST_P(X11CaptureTest, PreviewsOutliveACompositor) {
  start();
  const auto window = driver->open({.title = "window"});
  driver->draw(window, {0xAA0000, 0xAA0000, 0xAA0000, 0xAA0000});
  auto compositor = std::make_unique<XConnection>(displayName());
  startCompositing(*compositor);
  ASSERT_TRUE(capture().begin());
  EXPECT_TRUE(driver->until([&] { return middle(fresh(window)) == 0xFFAA0000; }));
  compositor.reset();
  driver->draw(window, {0x00AA00, 0x00AA00, 0x00AA00, 0x00AA00});
  EXPECT_TRUE(driver->until([&] { return middle(fresh(window)) == 0xFF00AA00; }));
  driver->draw(window, {0x0000AA, 0x0000AA, 0x0000AA, 0x0000AA});
  driver->showDesktop(1);
  EXPECT_TRUE(driver->until([&] { return middle(capture().preview(window)) == 0xFF0000AA; }));
}

TEST_P(X11CaptureTest, OnlyACompositorMakesWindowsTranslucent) {
  start();
  const XConnection x(displayName());
  xcb_visualid_t visual = 0;
  for (auto it = xcb_screen_allowed_depths_iterator(&x.screen()); it.rem > 0; xcb_depth_next(&it)) {
    if (it.data->depth == 32) visual = xcb_depth_visuals(it.data)[0].visual_id;
  }
  const xcb_colormap_t colors = xcb_generate_id(x.get());
  xcb_create_colormap(x.get(), XCB_COLORMAP_ALLOC_NONE, colors, x.root(), visual);
  constexpr std::uint32_t half = 0x80402010;
  const xcb_window_t window = xcb_generate_id(x.get());
  const std::uint32_t values[] = {half, 0, colors};
  xcb_create_window(x.get(), 32, window, x.root(), 0, 0, 100, 100, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, visual,
                    XCB_CW_BACK_PIXEL | XCB_CW_BORDER_PIXEL | XCB_CW_COLORMAP, values);
  xcb_map_window(x.get(), window);
  x.roundTrip();
  ASSERT_TRUE(driver->until([&] { return info(window).has_value(); }));
  ASSERT_TRUE(capture().begin());
  EXPECT_TRUE(driver->until([&] { return middle(fresh(window)) == (half | opaque); }));
  capture().stop();
  const XConnection compositor(displayName());
  startCompositing(compositor);
  ASSERT_TRUE(capture().begin());
  EXPECT_TRUE(driver->until([&] { return middle(fresh(window)) == half; })) << std::hex << middle(fresh(window));
}

TEST_P(X11CaptureTest, TheRootsPixmapIsTheWallpaperOfEachMonitor) {
  start({{"one", 0, 0, 960, 1080}, {"two", 960, 0, 960, 1080}});
  ASSERT_TRUE(capture().begin());
  const auto wallpaper = [&](std::size_t display) {
    const auto found = capture().wallpaper(identifier(display), current(), 240);
    const auto* painted = std::get_if<PaintedWallpaper>(&found);
    return painted != nullptr ? painted->image : nullptr;
  };
  EXPECT_FALSE(wallpaper(0));
  Listener changed(capture().wallpaperChanged);
  auto setter = std::make_unique<XConnection>(displayName());
  xcb_set_close_down_mode(setter->get(), XCB_CLOSE_DOWN_RETAIN_TEMPORARY);
  paintRoot(*setter, 0x802010, 0x108020);
  EXPECT_TRUE(driver->until([&] { return changed.heard(); }));
  ASSERT_TRUE(wallpaper(0));
  EXPECT_EQ(std::pair(wallpaper(0)->width, wallpaper(0)->height), std::pair(213, 240));
  EXPECT_EQ(middle(wallpaper(0)), 0xFF802010);
  EXPECT_EQ(middle(wallpaper(1)), 0xFF108020);
  EXPECT_EQ(wallpaper(0), wallpaper(0)) << "kept";

  setter = std::make_unique<XConnection>(displayName());
  paintRoot(*setter, 0x203040, 0x405060);
  EXPECT_TRUE(driver->until([&] { return changed.heard() && middle(wallpaper(1)) == 0xFF405060; }));
  // The pixmap goes with its owner; the number stays behind.
  const XConnection x(displayName());
  setter.reset();
  x.setNumbers(x.root(), "_XROOTPMAP_ID", "PIXMAP", x.numbers(x.root(), "_XROOTPMAP_ID"));
  x.roundTrip();
  EXPECT_TRUE(driver->until([&] { return changed.heard() && !wallpaper(0); }));
}

TEST_P(X11CaptureTest, MenusAreToldOfThoughNoListHasThem) {
  start();
  const XConnection x(displayName());
  const auto map = [&](const Rect& bounds, std::uint16_t kind, bool shown) {
    const xcb_window_t window = xcb_generate_id(x.get());
    const std::uint32_t overrides = 1;
    xcb_create_window(x.get(), XCB_COPY_FROM_PARENT, window, x.root(), static_cast<std::int16_t>(bounds.x),
                      static_cast<std::int16_t>(bounds.y), static_cast<std::uint16_t>(bounds.width),
                      static_cast<std::uint16_t>(bounds.height), 0, kind, XCB_COPY_FROM_PARENT,
                      XCB_CW_OVERRIDE_REDIRECT, &overrides);
    if (shown) xcb_map_window(x.get(), window);
    x.roundTrip();
    return window;
  };
  const Rect menu{300, 200, 150, 400};
  EXPECT_THAT(capture().unlistedWindows(), testing::IsEmpty()) << "before the beginning";
  ASSERT_TRUE(capture().begin());
  // Frames are windows of the same kind, also those of desktop windows, of which there are no previews.
  const auto ordinary = driver->open({.title = "ordinary"});
  const auto desktop = driver->open({.title = "desktop"});
  x.setNumbers(desktop, "_NET_WM_WINDOW_TYPE", "ATOM", {x.atom("_NET_WM_WINDOW_TYPE_DESKTOP")});
  EXPECT_TRUE(driver->until([&] { return info(ordinary) && info(desktop); }));
  EXPECT_TRUE(driver->until([&] { return capture().unlistedWindows().empty(); }));

  map({10, 10, 7, 200}, XCB_WINDOW_CLASS_INPUT_OUTPUT, true);
  map({10, 10, 200, 200}, XCB_WINDOW_CLASS_INPUT_OUTPUT, false);
  map({10, 10, 200, 200}, XCB_WINDOW_CLASS_INPUT_ONLY, true);
  EXPECT_THAT(capture().unlistedWindows(), testing::IsEmpty()) << "nothing to be seen";
  const auto shown = map(menu, XCB_WINDOW_CLASS_INPUT_OUTPUT, true);
  EXPECT_THAT(capture().unlistedWindows(), testing::ElementsAre(menu));
  xcb_destroy_window(x.get(), shown);
  x.roundTrip();
  EXPECT_THAT(capture().unlistedWindows(), testing::IsEmpty());
}

TEST_P(X11CaptureTest, XfceTellsOfEachDesktop) {
  start();
  ASSERT_TRUE(capture().begin());
  const auto folder = std::filesystem::path(std::getenv("HOME")) / ".config/xfce4/xfconf/xfce-perchannel-xml";
  std::filesystem::create_directories(folder);
  std::ofstream(folder / "xfce4-desktop.xml") << R"(<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfce4-desktop" version="1.0"><property name="backdrop" type="empty">
<property name="single-workspace-mode" type="bool" value="false"/>
<property name="screen0" type="empty"><property name="monitormain" type="empty">
<property name="workspace2" type="empty"><property name="last-image" type="string" value="/pictures/third.png"/>
<property name="image-style" type="int" value="4"/></property>
</property></property></property></channel>
)";
  const auto all = spaces();
  const auto path = [&](int desktop) -> std::string {
    const auto found = capture().wallpaper(identifier(), all[static_cast<std::size_t>(desktop)], 0);
    const auto* file = std::get_if<WallpaperFile>(&found);
    return file != nullptr ? file->path : "";
  };
  EXPECT_EQ(path(2), "") << "its desktop program does not run";
  const XConnection xfdesktop(displayName());
  const xcb_window_t owner = xcb_generate_id(xfdesktop.get());
  xcb_create_window(xfdesktop.get(), 0, owner, xfdesktop.root(), -5, -5, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY, 0, 0,
                    nullptr);
  xcb_set_selection_owner(xfdesktop.get(), owner, xfdesktop.atom("XFDESKTOP_SELECTION_0"), XCB_CURRENT_TIME);
  xfdesktop.roundTrip();
  EXPECT_EQ(path(2), "/pictures/third.png");
  EXPECT_EQ(path(1), "");
}

INSTANTIATE_TEST_SUITE_P(X11, X11CaptureTest, testing::Values(x11Backends().front()),
                         testing::PrintToStringParamName());

}  // namespace tessaspaces::contract
