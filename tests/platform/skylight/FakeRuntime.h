#pragma once

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "platform/skylight/FoundationValues.h"
#include "platform/skylight/ObjectRuntime.h"

namespace tessaspaces {

namespace fakes {
class FakeRuntime;
}

// What the platform's run time keeps to itself.
struct Selector {
  std::string name;
};
struct ObjectClass {
  fakes::FakeRuntime* runtime = nullptr;
  std::string name;
  bool ofObjects = true;
  bool makesInstances = true;
  std::map<std::string, Implementation> methods;
};
struct Object {
  ObjectClass* cls;
  std::string what;
};

namespace fakes {

/// Classes that a test declares, and what has become of their instances.
class FakeRuntime : public ObjectRuntime {
 public:
  std::map<std::string, ObjectClass> classes;
  std::set<Object*> alive;
  std::vector<std::string> performed;

  void add(const std::string& name, const std::string& initialiser, Implementation code) {
    classes[name] = {this, name, true, true, {{initialiser, code}}};
  }

  ObjectClass* classNamed(const char* name) override {
    const auto found = classes.find(name);
    return found != classes.end() ? &found->second : nullptr;
  }
  bool isObjectClass(ObjectClass* cls) override { return cls->ofObjects; }
  Selector* selector(const char* name) override { return &selectors_.try_emplace(name, Selector{name}).first->second; }
  Implementation implementation(ObjectClass* cls, Selector* selector) override {
    const auto found = cls->methods.find(selector->name);
    return found != cls->methods.end() ? found->second : nullptr;
  }
  Object* create(ObjectClass* cls) override {
    if (!cls->makesInstances) return nullptr;
    auto* const object = std::make_unique<Object>(Object{cls, ""}).release();
    alive.insert(object);
    return object;
  }
  void release(Object* object) override {
    if (alive.erase(object) == 1) {
      const std::unique_ptr<Object> last(object);
    } else {
      ADD_FAILURE() << "released an object that is not alive";
    }
  }

 private:
  std::map<std::string, Selector> selectors_;
};

/// Values are their own descriptions.
class FakeValues : public FoundationValues {
 public:
  std::set<CFRef> alive;
  bool makes = true;

  static const std::string& text(CFRef value) { return *static_cast<const std::string*>(value); }

  CFRef numberArray(std::span<const std::uint64_t> numbers) override {
    std::string text;
    for (const auto number : numbers) text += (text.empty() ? "" : ", ") + std::to_string(number);
    return make("[" + text + "]");
  }
  CFRef string(std::string_view utf8) override { return make(std::string(utf8)); }
  void release(CFRef value) override {
    if (alive.erase(value) == 1) {
      const std::unique_ptr<const std::string> last(static_cast<const std::string*>(value));
    } else {
      ADD_FAILURE() << "released a value that is not alive";
    }
  }

 private:
  CFRef make(std::string text) {
    if (!makes) return nullptr;
    return *alive.insert(std::make_unique<std::string>(std::move(text)).release()).first;
  }
};

}  // namespace fakes
}  // namespace tessaspaces
