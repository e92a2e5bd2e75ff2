#include "platform/skylight/SkyLightLibrary.h"

#include <string>
#include <variant>
#include <vector>

#include "base/Fatal.h"
#include "base/Overloaded.h"
#include "platform/skylight/MachOImage.h"

namespace tessaspaces {
namespace {

/// Calls an initialiser's code with the arguments that the operation's class declares.
template <typename... Arguments>
Object* initialise(Implementation initialiser, Object* instance, Selector* selector, Arguments... arguments) {
  using Initialiser = Object* (*)(Object*, Selector*, Arguments...);
  return reinterpret_cast<Initialiser>(initialiser)(instance, selector, arguments...);
}

}  // namespace

SkyLightLibrary::SkyLightLibrary(DynamicLoader& loader, ObjectRuntime& runtime, FoundationValues& values)
    : loader_(loader), runtime_(runtime), values_(values) {}

void* SkyLightLibrary::handle() {
  std::call_once(opened_, [this] {
    dlHandle_ = loader_.open(path);
    if (dlHandle_ == nullptr) fatal("cannot load SkyLight: " + loader_.lastError());
  });
  return dlHandle_;
}

void* SkyLightLibrary::resolve(const char* name) {
  void* const address = loader_.symbol(handle(), name);
  if (address == nullptr) fatal(std::string("missing symbol ") + name);
  return address;
}

std::int32_t SkyLightLibrary::cid() {
  std::call_once(connected_, [this] { cid_ = mainConnectionID_(); });
  return cid_;
}

SkyLightLibrary::BridgedPerform SkyLightLibrary::bridgedPerform() {
  std::call_once(searched_, [this] {
    handle();  // not before this is the framework sure to be among the images
    if (const auto address = localSymbol(loader_, bridgedPerformSymbol, imageSuffix)) {
      bridgedPerform_ = reinterpret_cast<BridgedPerform>(*address);
    }
  });
  return bridgedPerform_;
}

bool SkyLightLibrary::performBridged(const char* className, const char* selectorName, const Construct& construct) {
  const auto performer = bridgedPerform();
  if (performer == nullptr) return false;
  auto* const cls = runtime_.classNamed(className);
  if (cls == nullptr || !runtime_.isObjectClass(cls)) return false;
  auto* const selector = runtime_.selector(selectorName);
  const auto initialiser = runtime_.implementation(cls, selector);
  if (initialiser == nullptr) return false;
  auto* const instance = runtime_.create(cls);
  if (instance == nullptr) return false;
  const OwnedObject object(construct(initialiser, instance, selector), ObjectReleaser{&runtime_});
  if (!object) return false;  // the initialiser has released the instance already
  performer(object.get());
  return true;
}

bool SkyLightLibrary::showSpaces(std::span<const SpaceID> spaces) {
  return performOnSpaces("SLSBridgedShowSpacesOperation", spaces);
}

bool SkyLightLibrary::setCurrentSpace(std::string_view display, SpaceID space) {
  const OwnedCF identifier(values_.string(display), CFReleaser{&values_});
  return identifier && performBridged("SLSBridgedManagedDisplaySetCurrentSpaceOperation",
                                      "initWithDisplayIdentifier:spaceID:", [&](auto initialiser, auto... of) {
                                        return initialise(initialiser, of..., identifier.get(), space);
                                      });
}

bool SkyLightLibrary::hideSpaces(std::span<const SpaceID> spaces) {
  return performOnSpaces("SLSBridgedHideSpacesOperation", spaces);
}

bool SkyLightLibrary::moveWindows(std::span<const WindowID> windows, SpaceID space) {
  const auto numbers = array(std::vector<std::uint64_t>(windows.begin(), windows.end()));
  return numbers && performBridged("SLSBridgedMoveWindowsToManagedSpaceOperation",
                                   "initWithWindows:spaceID:", [&](auto initialiser, auto... of) {
                                     return initialise(initialiser, of..., numbers.get(), space);
                                   });
}

bool SkyLightLibrary::perform(const BridgedOperation& operation) {
  return std::visit(
      Overloaded{[this](const ShowSpaces& show) { return showSpaces(show.spaces); },
                 [this](const SetCurrentSpace& set) { return setCurrentSpace(set.display, set.space); },
                 [this](const HideSpaces& hide) { return hideSpaces(hide.spaces); },
                 [this](const MoveWindowsToSpace& move) { return moveWindows(move.windows, move.space); }},
      operation);
}

bool SkyLightLibrary::performOnSpaces(const char* className, std::span<const SpaceID> spaces) {
  const auto numbers = array(spaces);
  return numbers && performBridged(className, "initWithSpaces:", [&](auto initialiser, auto... of) {
           return initialise(initialiser, of..., numbers.get());
         });
}

OwnedCF SkyLightLibrary::array(std::span<const std::uint64_t> numbers) {
  return {values_.numberArray(numbers), CFReleaser{&values_}};
}

}  // namespace tessaspaces
