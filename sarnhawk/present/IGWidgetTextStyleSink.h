// Receives each change that the operator makes in the editor of text styles. It may be called while a style
// is being loaded into the editor. Console thread.
#pragma once

struct tagKorviaShowTextStyle;

class IGWidgetTextStyleSink {
 public:
  virtual void onTextStyleChanged(const tagKorviaShowTextStyle& style) = 0;

 protected:
  ~IGWidgetTextStyleSink() = default;
};
