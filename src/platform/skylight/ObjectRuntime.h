#pragma once

#include <memory>

namespace tessaspaces {

// Things of the object run time, known by their address alone; they are never defined outside a platform.
struct ObjectClass;
struct Selector;
struct Object;
/// A method's code, called as a C function: the object, the selector, then the method's own arguments.
using Implementation = void (*)();

/// What the SkyLight layer asks of the system's object run time. Any thread.
class ObjectRuntime {
 public:
  virtual ~ObjectRuntime() = default;

  /// Null when no class has the name.
  virtual ObjectClass* classNamed(const char* name) = 0;
  /// Whether its instances are ordinary objects, which can be created, retained and released.
  virtual bool isObjectClass(ObjectClass* cls) = 0;
  /// The one selector of that name; never null.
  virtual Selector* selector(const char* name) = 0;
  /// The code that instances run for the selector, inherited or their own. Null when they do not respond to it: the
  /// run time's stand-in that forwards or reports an unknown message is not an answer.
  virtual Implementation implementation(ObjectClass* cls, Selector* selector) = 0;
  /// A new instance after its plain initialiser, owned by the caller; null when the class makes none.
  virtual Object* create(ObjectClass* cls) = 0;
  virtual void release(Object* object) = 0;
};

struct ObjectReleaser {
  ObjectRuntime* runtime;
  void operator()(Object* object) const { runtime->release(object); }
};
using OwnedObject = std::unique_ptr<Object, ObjectReleaser>;

}  // namespace tessaspaces
