// Texts that tell the operator what a source slot shows. They contain no whole address, because stream
// addresses contain keys. Console thread.
#pragma once
#include <QString>

struct tagKorviaShowSourceInfo;

class SourceText {
 public:
  /// Translated name of a KorviaShowSourceKind; empty for none.
  static QString kindName(int kind);
  /// File name of the film, picture or document that the source shows; empty for sources without a file.
  static QString fileName(const tagKorviaShowSourceInfo& source);
};
