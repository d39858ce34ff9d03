// Root of all interfaces between modules. There is no reference count: one holder, one release().
// The order of the operations is the order of the table that other modules call through. A virtual destructor
// would take places of that table, so every interface has a protected one that is not virtual; the class
// behind it deletes itself in release(). Each interface says which thread calls it.
#pragma once
#include "Identifier.h"

class IUnknownEx {
 public:
  /// Readiness of the object; true for everything in this program.
  virtual bool isValid() = 0;
  /// Deletes the object when it is valid. Returns true in any case; the pointer is gone afterwards.
  virtual bool release() = 0;
  /// The interface pointer for an identifier and a packed version, or null.
  virtual void* queryInterface(const Identifier* id, unsigned version) = 0;

 protected:
  ~IUnknownEx() = default;
};
