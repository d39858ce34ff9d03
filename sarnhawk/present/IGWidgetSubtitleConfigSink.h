// Receives each change that the operator makes in the editor of a subtitle. Console thread.
#pragma once

struct tagKorviaSubtitleParam;

class IGWidgetSubtitleConfigSink {
 public:
  virtual void onConfigChanged(const tagKorviaSubtitleParam& param) = 0;

 protected:
  ~IGWidgetSubtitleConfigSink() = default;
};
