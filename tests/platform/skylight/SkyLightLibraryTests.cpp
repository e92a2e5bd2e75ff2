#include <gmock/gmock.h>

#include <barrier>
#include <thread>
#include <vector>

#include "platform/skylight/FakeLoader.h"
#include "platform/skylight/FakeRuntime.h"
#include "platform/skylight/SkyLightLibrary.h"

namespace tessaspaces {
namespace {

using fakes::FakeLoader;
using fakes::FakeRuntime;
using fakes::FakeValues;
using fakes::MachO;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

constexpr int eachAtOnce = 8;

// The framework: what the window server was asked, and the code of its operations' classes.

std::vector<std::string> served;

template <typename... Arguments>
void serve(const char* name, Arguments... arguments) {
  std::string text = name;
  (..., (text += " " + std::to_string(arguments)));
  served.push_back(text);
}

std::uint64_t number(const void* pointer) {
  return reinterpret_cast<std::uintptr_t>(pointer);
}
CFRef value(std::uintptr_t address) {
  return reinterpret_cast<CFRef>(address);
}

std::int32_t mainConnectionID() {
  return -7;
}
CFRef copyManagedDisplaySpaces(std::int32_t cid, void* none) {
  serve("displays", cid, number(none));
  return value(100);
}
SpaceID getCurrentSpace(std::int32_t cid, CFRef display) {
  serve("current", cid, number(display));
  return ~SpaceID{0};
}
void setCurrentSpace(std::int32_t cid, CFRef display, SpaceID space) {
  serve("set", cid, number(display), space);
}
CFRef copyWindows(std::int32_t cid, std::uint32_t owner, CFRef spaces, std::uint32_t options, std::uint64_t* set,
                  std::uint64_t* clear) {
  serve("windows", cid, owner, number(spaces), options, *set, *clear);
  return value(101);
}
CFRef copySpaces(std::int32_t cid, std::int32_t mask, CFRef windows) {
  serve("spaces", cid, mask, number(windows));
  return value(102);
}
void moveWindows(std::int32_t cid, CFRef windows, SpaceID space) {
  serve("move", cid, number(windows), space);
}
void addWindows(std::int32_t cid, CFRef windows, CFRef spaces) {
  serve("add", cid, number(windows), number(spaces));
}
void removeWindows(std::int32_t cid, CFRef windows, CFRef spaces) {
  serve("remove", cid, number(windows), number(spaces));
}
std::int32_t setCompatID(std::int32_t cid, SpaceID space, std::int32_t compatID) {
  serve("compat", cid, space, compatID);
  return 1001;
}
std::int32_t setWorkspace(std::int32_t cid, const WindowID* windows, std::int32_t count, std::int32_t compatID) {
  serve("workspace", cid, windows[count - 1], count, compatID);
  return -1;
}

void performOperation(Object* operation) {
  operation->cls->runtime->performed.push_back(operation->cls->name + operation->what);
}

Object* describe(Object* object, Selector* selector, const std::string& arguments) {
  object->what = " " + selector->name + " " + arguments;
  return object;
}
Object* initWithSpaces(Object* object, Selector* selector, CFRef spaces) {
  return describe(object, selector, FakeValues::text(spaces));
}
Object* initWithDisplay(Object* object, Selector* selector, CFRef display, std::uint64_t space) {
  return describe(object, selector, FakeValues::text(display) + " " + std::to_string(space));
}
Object* initWithWindows(Object* object, Selector* selector, CFRef windows, std::uint64_t space) {
  return describe(object, selector, FakeValues::text(windows) + " " + std::to_string(space));
}
/// As an initialiser should when it cannot do its work.
Object* initFails(Object* object, Selector* /*selector*/, CFRef /*spaces*/) {
  object->cls->runtime->release(object);
  return nullptr;
}
/// As initialisers may: what they return need not be what they were given.
Object* initReplaces(Object* object, Selector* selector, CFRef spaces) {
  auto* const cls = object->cls;
  auto* const other = cls->runtime->create(cls);
  cls->runtime->release(object);
  return initWithSpaces(other, selector, spaces);
}

template <typename Function>
Implementation code(Function* function) {
  return reinterpret_cast<Implementation>(function);
}

class SkyLightLibraryTest : public testing::Test {
 protected:
  static constexpr const char* show = "SLSBridgedShowSpacesOperation";
  static constexpr const char* setCurrent = "SLSBridgedManagedDisplaySetCurrentSpaceOperation";
  static constexpr const char* hide = "SLSBridgedHideSpacesOperation";
  static constexpr const char* move = "SLSBridgedMoveWindowsToManagedSpaceOperation";

  SkyLightLibraryTest() {
    served.clear();
    put("SLSMainConnectionID", mainConnectionID);
    put("SLSCopyManagedDisplaySpaces", copyManagedDisplaySpaces);
    put("SLSManagedDisplayGetCurrentSpace", getCurrentSpace);
    put("SLSManagedDisplaySetCurrentSpace", ::tessaspaces::setCurrentSpace);
    put("SLSCopyWindowsWithOptionsAndTags", copyWindows);
    put("SLSCopySpacesForWindows", copySpaces);
    put("SLSMoveWindowsToManagedSpace", moveWindows);
    put("SLSAddWindowsToSpaces", addWindows);
    put("SLSRemoveWindowsFromSpaces", removeWindows);
    put("SLSSpaceSetCompatID", setCompatID);
    put("SLSSetWindowListWorkspace", setWorkspace);

    runtime.add(show, "initWithSpaces:", code(initWithSpaces));
    runtime.add(setCurrent, "initWithDisplayIdentifier:spaceID:", code(initWithDisplay));
    runtime.add(hide, "initWithSpaces:", code(initWithSpaces));
    runtime.add(move, "initWithWindows:spaceID:", code(initWithWindows));

    const MachO image(
        {{"_other", 0}, {std::string(SkyLightLibrary::bridgedPerformSymbol), number(code(performOperation)) - slide}},
        {0, 0});
    auto start = image.start;
    fakes::put(start, MachO::linkEdit + 24, loader.map(image.symbols) - slide);
    loader.images.push_back({SkyLightLibrary::path, loader.map(start), slide});
  }

  void TearDown() override {
    EXPECT_THAT(runtime.alive, IsEmpty()) << "leaked objects";
    EXPECT_THAT(values.alive, IsEmpty()) << "leaked values";
  }

  template <typename Function>
  void put(const char* name, Function* function) {
    loader.exported[name] = reinterpret_cast<void*>(function);
  }
  static std::uint64_t number(Implementation function) { return reinterpret_cast<std::uintptr_t>(function); }

  static constexpr std::uintptr_t slide = 0x1'2345'0000;
  FakeLoader loader;
  FakeRuntime runtime;
  FakeValues values;
  SkyLightLibrary library{loader, runtime, values};
};

TEST_F(SkyLightLibraryTest, EachFunctionIsLookedUpWhenItIsFirstCalled) {
  EXPECT_THAT(loader.asked(), IsEmpty());
  loader.exported.erase("SLSSpaceSetCompatID");  // nobody needs it yet

  for (int round = 0; round < 2; ++round) {
    served.clear();
    std::uint64_t tags[] = {8, 9};
    const WindowID windows[] = {30, 31};
    const auto cid = library.cid();
    EXPECT_EQ(library.copyManagedDisplaySpaces(cid, nullptr), value(100));
    EXPECT_EQ(library.managedDisplayGetCurrentSpace(cid, value(1)), ~SpaceID{0});
    library.managedDisplaySetCurrentSpace(cid, value(1), SpaceID{1} << 40);
    EXPECT_EQ(library.copyWindowsWithOptionsAndTags(cid, 2, value(3), 4, &tags[0], &tags[1]), value(101));
    EXPECT_EQ(library.copySpacesForWindows(cid, 7, value(5)), value(102));
    library.moveWindowsToManagedSpace(cid, value(5), 6);
    library.addWindowsToSpaces(cid, value(5), value(3));
    library.removeWindowsFromSpaces(cid, value(5), value(3));
    EXPECT_EQ(library.setWindowListWorkspace(cid, windows, 2, 40), -1);
    EXPECT_THAT(served,
                ElementsAre("displays -7 0", "current -7 1", "set -7 1 1099511627776", "windows -7 2 3 4 8 9",
                            "spaces -7 7 5", "move -7 5 6", "add -7 5 3", "remove -7 5 3", "workspace -7 31 2 40"));
  }

  put("SLSSpaceSetCompatID", setCompatID);
  EXPECT_EQ(library.spaceSetCompatID(library.cid(), 6, 40), 1001);
  EXPECT_EQ(served.back(), "compat -7 6 40");
  EXPECT_EQ(loader.asked().size(), 12U);
  for (const auto& [name, times] : loader.asked()) EXPECT_EQ(times, 1) << name;
}

TEST_F(SkyLightLibraryTest, WhatCannotBeDoneWithoutEndsTheProgram) {
  loader.exported.erase("SLSSpaceSetCompatID");
  EXPECT_DEATH(library.spaceSetCompatID(1, 2, 3), testing::Eq("tessaspaces: missing symbol SLSSpaceSetCompatID\n"));
  loader.loads = false;
  const auto notLoaded = testing::Eq("tessaspaces: cannot load SkyLight: image not found\n");
  EXPECT_DEATH(library.cid(), notLoaded);
  EXPECT_DEATH(library.showSpaces({}), notLoaded);
}

TEST_F(SkyLightLibraryTest, FirstCallsAtTheSameTimeDoTheWorkOnce) {
  std::barrier start(eachAtOnce);
  std::vector<std::thread> threads;
  for (int index = 0; index < eachAtOnce; ++index) {
    threads.emplace_back([&, index] {
      start.arrive_and_wait();
      if (index % 2 == 0) static_cast<void>(library.cid());
      EXPECT_EQ(library.bridgedPerform(), performOperation);
      EXPECT_EQ(library.cid(), -7);
    });
  }
  for (auto& thread : threads) thread.join();
  EXPECT_THAT(loader.asked(),
              ElementsAre(Pair(SkyLightLibrary::path, 1), Pair("SLSMainConnectionID", 1), Pair("imageCount", 1)));
}

TEST_F(SkyLightLibraryTest, OperationsAreHandedOverWithTheirArguments) {
  const SpaceID target[] = {SpaceID{1} << 40};
  const WindowID windows[] = {4'000'000'000, 5};
  EXPECT_TRUE(library.perform(ShowSpaces{{target[0]}}));
  EXPECT_TRUE(library.perform(SetCurrentSpace{"left", target[0]}));
  EXPECT_TRUE(library.perform(HideSpaces{}));
  EXPECT_TRUE(library.perform(HideSpaces{{2, 3}}));
  EXPECT_TRUE(library.perform(MoveWindowsToSpace{{windows[0], windows[1]}, 9}));
  runtime.classes.at(show).methods["initWithSpaces:"] = code(initReplaces);
  EXPECT_TRUE(library.showSpaces(target));
  EXPECT_THAT(runtime.performed,
              ElementsAre("SLSBridgedShowSpacesOperation initWithSpaces: [1099511627776]",
                          "SLSBridgedManagedDisplaySetCurrentSpaceOperation initWithDisplayIdentifier:spaceID: left "
                          "1099511627776",
                          "SLSBridgedHideSpacesOperation initWithSpaces: []",
                          "SLSBridgedHideSpacesOperation initWithSpaces: [2, 3]",
                          "SLSBridgedMoveWindowsToManagedSpaceOperation initWithWindows:spaceID: [4000000000, 5] 9",
                          "SLSBridgedShowSpacesOperation initWithSpaces: [1099511627776]"));
}

TEST_F(SkyLightLibraryTest, AStepThatFailsHandsNothingOver) {
  struct Case {
    const char* what;
    std::function<void()> fault;
  };
  const auto cls = [&]() -> ObjectClass& { return runtime.classes.at(show); };
  const std::vector<Case> cases{
      {"no such class", [&] { runtime.classes.erase(show); }},
      {"a class of something else", [&] { cls().ofObjects = false; }},
      {"no such initialiser", [&] { cls().methods.clear(); }},
      {"no instance", [&] { cls().makesInstances = false; }},
      {"an initialiser that fails", [&] { cls().methods["initWithSpaces:"] = code(initFails); }},
  };
  const SpaceID space[] = {2};
  for (const auto& [what, fault] : cases) {
    SCOPED_TRACE(what);
    fault();
    EXPECT_FALSE(library.showSpaces(space));
    runtime.add(show, "initWithSpaces:", code(initWithSpaces));
  }

  const WindowID window[] = {3};
  values.makes = false;
  EXPECT_FALSE(library.showSpaces(space));
  EXPECT_FALSE(library.setCurrentSpace("left", 2));
  EXPECT_FALSE(library.moveWindows(window, 2));
  values.makes = true;

  loader.images.clear();
  SkyLightLibrary without(loader, runtime, values);
  EXPECT_FALSE(without.showSpaces(space));
  EXPECT_THAT(runtime.performed, IsEmpty());
  EXPECT_TRUE(library.showSpaces(space)) << "nothing of all this lasts";
}

}  // namespace
}  // namespace tessaspaces
