// Loads a sibling module at run time and keeps the one object that its factory makes.
// A concrete helper only fills the fields in its constructor. Console thread only.
#pragma once
#include "Identifier.h"
#include "ModuleLoader.h"

template <typename T>
class CTempldateHelper {
 public:
  CTempldateHelper() = default;
  CTempldateHelper(const CTempldateHelper&) = delete;
  CTempldateHelper& operator=(const CTempldateHelper&) = delete;
  /// Releases the object. The module stays loaded: code of it may still be on a thread's stack.
  ~CTempldateHelper() { releaseObject(); }

  /// Makes a fresh object, releasing an earlier one. False when module, entry or object is missing;
  /// a module that did not load is tried again at the next call.
  bool create() {
    releaseObject();
    if (!_module)
      _module = korvia::modules::load(_moduleName);
    if (!_module)
      return false;
    using Factory = void* (*)(const Identifier*, unsigned);
    const auto factory = reinterpret_cast<Factory>(korvia::modules::resolve(_module, _entryName));
    if (!factory)
      return false;
    _interface = static_cast<T*>(factory(_identifier, _version));
    return _interface != nullptr;
  }

  void releaseObject() {
    if (_interface)
      _interface->release();
    _interface = nullptr;
  }

  const char* _entryName = nullptr;
  const wchar_t* _moduleName = nullptr;
  void* _module = nullptr;
  const Identifier* _identifier = nullptr;
  unsigned _version = kInterfaceVersion;
  T* _interface = nullptr;
};
