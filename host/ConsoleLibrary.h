// Loads the console's library, which lies beside the program, and calls its factory. GUI thread only.
#pragma once
#include <QString>

class IKorviaSarnhawk;

namespace korvia {

class ConsoleLibrary {
 public:
  explicit ConsoleLibrary(const QString& folder);

  /// A new console, which its caller ends with close() and release(). Null when library, export or
  /// interface is missing; then error() says why. The library stays loaded until the process ends.
  IKorviaSarnhawk* createConsole();
  QString error() const { return error_; }

 private:
  QString path_;
  QString error_;
};

}  // namespace korvia
