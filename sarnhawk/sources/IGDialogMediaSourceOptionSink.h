// What the options of a source ask of the picker. Console thread.
#pragma once

class IGDialogMediaSourceOptionSink {
 public:
  virtual void onClicked_clearHistoryPushButton() = 0;

 protected:
  ~IGDialogMediaSourceOptionSink() = default;
};
