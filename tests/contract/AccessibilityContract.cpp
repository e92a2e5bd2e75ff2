#include "contract/ContractTest.h"

namespace tessaspaces::contract {

using testing::Optional;

namespace {

Rect boundsOf(const WindowInfo& info) {
  const auto& bounds = info.bounds.value();
  return {*bounds.x, *bounds.y, *bounds.width, *bounds.height};
}

constexpr std::int32_t owner = 5001;

/// Where things lie on the screen is announced to nobody: so one asks again and again.
bool eventually(WorldDriver& driver, const std::function<bool()>& holds) {
  const auto clock = driver.platform().dispatch().every(std::chrono::milliseconds(5), [] {});
  return driver.until(holds);
}

}  // namespace

TEST_P(Contract, AWindowIsFoundByItsProcessAndNumber) {
  start();
  ClientWindow wanted;
  wanted.title = "Ångström — notes";
  const auto window = driver->open(wanted);
  driver->settle();
  const auto found = platform().accessibility().find(owner, window);
  ASSERT_TRUE(found);
  EXPECT_THAT(found->title(), Optional(wanted.title));
  EXPECT_THAT(found->frame(), Optional(boundsOf(*info(window)))) << "the same as in the list";
  EXPECT_FALSE(platform().accessibility().find(owner + 1, window)) << "of another process";
  EXPECT_FALSE(platform().accessibility().find(owner, window + 50)) << "no such window";

  driver->close(window);
  EXPECT_FALSE(found->frame() || found->title() || found->titleBar());
  EXPECT_FALSE(found->isAt({200, 200}) || found->raise() || found->place({0, 0, 100, 100}) || found->close());
  EXPECT_FALSE(platform().accessibility().find(owner, window));
}

TEST_P(Contract, ATitleBarLiesAcrossTheTopAndIsSeenUnlessCovered) {
  start();
  const auto lower = driver->open({.title = "lower"});
  const auto found = platform().accessibility().find(owner, lower);
  ASSERT_TRUE(found);
  const auto bar = found->titleBar();
  const auto frame = found->frame();
  ASSERT_TRUE(bar && frame);
  EXPECT_GE(bar->height, 10);
  EXPECT_LE(bar->height, 60);
  EXPECT_GE(bar->width, frame->width - 30);
  if (!driver->tiles()) {
    EXPECT_EQ(bar->intersection(*frame), *bar);
    EXPECT_LT(bar->minY() - frame->minY(), 5);
  }
  EXPECT_TRUE(found->isAt(bar->center()));
  EXPECT_FALSE(found->isAt({bar->center().x, -5})) << "nowhere on the screen";

  const auto upper = driver->open({.title = "upper", .x = 130, .y = 120, .height = 400});
  driver->focus(upper);
  const auto above = platform().accessibility().find(owner, upper);
  ASSERT_TRUE(above);
  const auto seen = above->titleBar()->center();
  EXPECT_TRUE(eventually(*driver, [&] { return above->isAt(seen); }));
  if (!driver->tiles()) {
    EXPECT_FALSE(found->isAt(bar->center())) << "another window lies over it";
    EXPECT_TRUE(found->raise());
    EXPECT_TRUE(eventually(*driver, [&] { return found->isAt(bar->center()); }));
  }
  driver->showDesktop(1);
  EXPECT_TRUE(eventually(*driver, [&] { return !found->isAt(bar->center()); })) << "its desktop is not shown";
}

TEST_P(Contract, ARaisedWindowIsInFrontAndHasTheFocus) {
  start();
  const auto first = driver->open({.title = "first"});
  const auto second = driver->open({.title = "second", .pid = owner + 1});
  driver->focus(second);
  const auto found = platform().accessibility().find(owner, first);
  ASSERT_TRUE(found);
  EXPECT_TRUE(found->raise());
  EXPECT_TRUE(eventually(*driver, [&] {
    const auto front = platform().applications().frontmost();
    return front && front->pid == owner;
  }));
  if (!driver->tiles()) {
    EXPECT_TRUE(eventually(*driver, [&] { return windowsOn(current()).front() == first; }));
  }
}

TEST_P(Contract, APlacedWindowHasItsFrameThere) {
  start();
  const auto window = driver->open({.title = "placed"});
  const auto found = platform().accessibility().find(owner, window);
  ASSERT_TRUE(found);
  for (const Rect& wanted : {Rect{300, 200, 600, 400}, Rect{301, 170, 600, 400}, Rect{50, 60, 333, 222}}) {
    EXPECT_TRUE(found->place(wanted));
    if (driver->tiles()) continue;
    EXPECT_TRUE(eventually(*driver, [&] { return found->frame() == wanted; }))
        << found->frame()->x << ", " << found->frame()->y << " " << found->frame()->width << " x "
        << found->frame()->height;
  }
}

TEST_P(Contract, AWindowThatIsAskedToCloseCloses) {
  start();
  const auto shown = driver->open({.title = "shown"});
  const auto hidden = driver->open({.title = "hidden", .desktop = 2});
  const auto stays = driver->open({.title = "stays"});
  driver->settle();
  for (const auto window : {shown, hidden}) {
    const auto found = platform().accessibility().find(owner, window);
    ASSERT_TRUE(found);
    EXPECT_TRUE(found->close());
    EXPECT_TRUE(eventually(*driver, [&] { return !info(window); })) << window;
    EXPECT_FALSE(found->close()) << "gone";
  }
  EXPECT_TRUE(info(stays).has_value());
}

TEST_P(Contract, TheMouseGoesWhereItIsSentAndTellsWhatIsHeld) {
  start();
  auto& mouse = platform().inputEvents();
  driver->movePointer(700, 600);
  EXPECT_THAT(mouse.mouseLocation(), Optional(Point{700, 600}));
  EXPECT_TRUE(mouse.moveMouse({31, 47}));
  EXPECT_THAT(mouse.mouseLocation(), Optional(Point{31, 47}));
  EXPECT_EQ(platform().screens().pointer(), (Point{31, 1080 - 1 - 47}));
  EXPECT_TRUE(mouse.moveMouse({-20, 5000}));
  EXPECT_THAT(mouse.mouseLocation(), Optional(Point{0, 1079})) << "it stays on the screen";

  EXPECT_THAT(mouse.held(), Optional(HeldInput{}));
  EXPECT_TRUE(mouse.releaseMouse()) << "without a press it does nothing";
  EXPECT_TRUE(mouse.pressMouse());
  EXPECT_THAT(mouse.held(), Optional(HeldInput{.button = true}));
  EXPECT_TRUE(mouse.releaseMouse());
  EXPECT_THAT(mouse.held(), Optional(HeldInput{}));
}

}  // namespace tessaspaces::contract
