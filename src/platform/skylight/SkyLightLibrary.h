#pragma once

#include <cstdint>
#include <functional>
#include <mutex>
#include <span>
#include <string_view>

#include "platform/WindowServer.h"
#include "platform/skylight/DynamicLoader.h"
#include "platform/skylight/FoundationValues.h"
#include "platform/skylight/ObjectRuntime.h"

namespace tessaspaces {

class SkyLightLibrary;

/// One C function of the framework, called like a function. Its symbol is looked up at the first call and never again;
/// without the symbol that first call ends the program. Any thread.
template <typename Signature>
class SkyLightFunction;

template <typename Result, typename... Arguments>
class SkyLightFunction<Result(Arguments...)> {
 public:
  SkyLightFunction(SkyLightLibrary& library, const char* symbol) : library_(library), symbol_(symbol) {}

  Result operator()(Arguments... arguments);

 private:
  SkyLightLibrary& library_;
  const char* symbol_;
  std::once_flag resolved_;  // guards function_
  Result (*function_)(Arguments...) = nullptr;
};

/// The SkyLight private framework, which is the window server's interface to desktops, loaded at run time. A process
/// has one, made without side effects: the framework is loaded by the first use of anything in it. Any thread; first
/// uses at the same time do their work once.
///
/// What a "copy" function returns is owned by the caller (OwnedCF), and null when there is no answer. Connections are
/// what `cid` returns, arrays hold numbers.
class SkyLightLibrary {
 public:
  static constexpr const char* path = "/System/Library/PrivateFrameworks/SkyLight.framework/SkyLight";
  /// The function that executes bridged operations, local to one file of the framework; not a name to call it by but
  /// what the compiler made of it.
  static constexpr std::string_view bridgedPerformSymbol =
      "__ZL54SLSPerformAsynchronousBridgedWindowManagementOperationP47SLSAsynchronousBridgedWindowManagementOperation";
  static constexpr std::string_view imageSuffix = "/SkyLight";

  using BridgedPerform = void (*)(Object* operation);
  /// Calls the initialiser's code on the instance and the selector with the operation's arguments, and returns what
  /// that returned. As with every initialiser, the instance is taken over by it, also when it returns nothing.
  using Construct = std::function<Object*(Implementation initialiser, Object* instance, Selector* selector)>;

  /// The three must outlive the library.
  SkyLightLibrary(DynamicLoader& loader, ObjectRuntime& runtime, FoundationValues& values);
  SkyLightLibrary(const SkyLightLibrary&) = delete;
  SkyLightLibrary& operator=(const SkyLightLibrary&) = delete;

  /// The loaded framework, never null. Ends the program when it cannot be loaded.
  void* handle();
  /// Address of an exported symbol of the framework, never null. Ends the program when it has none of that name.
  void* resolve(const char* name);

  /// This process's connection to the window server, asked for once.
  std::int32_t cid();

  /// (connection, always null) → an array of one dictionary per display.
  SkyLightFunction<CFRef(std::int32_t, void*)> copyManagedDisplaySpaces{*this, "SLSCopyManagedDisplaySpaces"};
  /// (connection, display identifier)
  SkyLightFunction<SpaceID(std::int32_t, CFRef)> managedDisplayGetCurrentSpace{*this,
                                                                               "SLSManagedDisplayGetCurrentSpace"};
  /// (connection, display identifier, space)
  SkyLightFunction<void(std::int32_t, CFRef, SpaceID)> managedDisplaySetCurrentSpace{
      *this, "SLSManagedDisplaySetCurrentSpace"};
  /// (connection, owner, spaces, options, set tags or null, clear tags or null) → window numbers.
  SkyLightFunction<CFRef(std::int32_t, std::uint32_t, CFRef, std::uint32_t, std::uint64_t*, std::uint64_t*)>
      copyWindowsWithOptionsAndTags{*this, "SLSCopyWindowsWithOptionsAndTags"};
  /// (connection, selector, windows) → spaces.
  SkyLightFunction<CFRef(std::int32_t, std::int32_t, CFRef)> copySpacesForWindows{*this, "SLSCopySpacesForWindows"};
  /// (connection, windows, space)
  SkyLightFunction<void(std::int32_t, CFRef, SpaceID)> moveWindowsToManagedSpace{*this, "SLSMoveWindowsToManagedSpace"};
  /// (connection, windows, spaces)
  SkyLightFunction<void(std::int32_t, CFRef, CFRef)> addWindowsToSpaces{*this, "SLSAddWindowsToSpaces"};
  /// (connection, windows, spaces)
  SkyLightFunction<void(std::int32_t, CFRef, CFRef)> removeWindowsFromSpaces{*this, "SLSRemoveWindowsFromSpaces"};
  /// (connection, space, compatibility id) → error code.
  SkyLightFunction<std::int32_t(std::int32_t, SpaceID, std::int32_t)> spaceSetCompatID{*this, "SLSSpaceSetCompatID"};
  /// (connection, window numbers, their count, compatibility id) → error code.
  SkyLightFunction<std::int32_t(std::int32_t, const WindowID*, std::int32_t, std::int32_t)> setWindowListWorkspace{
      *this, "SLSSetWindowListWorkspace"};

  /// What executes an operation object; null when the framework has no such function.
  BridgedPerform bridgedPerform();
  /// Makes an operation object and hands it over. False, with nothing handed over, when the framework has no function
  /// to execute it, lacks the class or its initialiser, or makes no object. True says nothing about its end.
  bool performBridged(const char* className, const char* selectorName, const Construct& construct);

  // The operations of the framework that the program uses, each handed over as performBridged does.
  bool showSpaces(std::span<const SpaceID> spaces);
  bool setCurrentSpace(std::string_view display, SpaceID space);
  bool hideSpaces(std::span<const SpaceID> spaces);
  bool moveWindows(std::span<const WindowID> windows, SpaceID space);
  /// The one of these that the operation names.
  bool perform(const BridgedOperation& operation);

 private:
  bool performOnSpaces(const char* className, std::span<const SpaceID> spaces);
  OwnedCF array(std::span<const std::uint64_t> numbers);

  DynamicLoader& loader_;
  ObjectRuntime& runtime_;
  FoundationValues& values_;

  // Each guards the member below it.
  std::once_flag opened_;
  void* dlHandle_ = nullptr;
  std::once_flag connected_;
  std::int32_t cid_ = 0;
  std::once_flag searched_;
  BridgedPerform bridgedPerform_ = nullptr;

  SkyLightFunction<std::int32_t()> mainConnectionID_{*this, "SLSMainConnectionID"};
};

template <typename Result, typename... Arguments>
Result SkyLightFunction<Result(Arguments...)>::operator()(Arguments... arguments) {
  std::call_once(resolved_,
                 [this] { function_ = reinterpret_cast<Result (*)(Arguments...)>(library_.resolve(symbol_)); });
  return function_(arguments...);
}

}  // namespace tessaspaces
