// Loads the library of the console, which is in the program's folder, and calls its factory. Console thread
// only.
#pragma once
#include <QString>

class IKorviaSarnhawk;

namespace korvia {

class ConsoleLibrary {
 public:
  explicit ConsoleLibrary(const QString& folder);

  /// A new console, which the caller ends with close() and release(). Null when library, export or interface
  /// is missing; error() then tells the reason. The library stays loaded until the process ends.
  IKorviaSarnhawk* createConsole();
  QString error() const { return error_; }

 private:
  QString path_;
  QString error_;
};

}  // namespace korvia
