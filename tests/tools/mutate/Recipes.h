// Small files of each kind of source, made here, for the mutator. A new kind is a line in the table. One
// thread.
#pragma once
#include <QByteArray>
#include <vector>

#include "tagKorviaShowSourceInfo.h"

namespace korvia::test {

struct Recipe {
  const char* name;  ///< with the suffix of its files
  QByteArray (*make)();
  /// Makes the record of the file at this path.
  void (*fill)(tagKorviaShowSourceInfo& info, const QString& path);
};

const std::vector<Recipe>& recipes();

}  // namespace korvia::test
