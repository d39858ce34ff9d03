// What the host may hand to the console to be told how the start proceeds. Called on the console thread.
#pragma once
#include <QString>

class IProgressSink {
 public:
  virtual void onProgressBegin() = 0;
  virtual void onProgressEnd() = 0;
  /// The one operation that the console calls; it must stay third in the table.
  virtual void onProgressText(const QString& text) = 0;

 protected:
  ~IProgressSink() = default;
};
