// Receives what the operator does in the row of a subtitle. The tab implements it; rows do not own it.
// Console thread.
#pragma once

class GListItemWidgetSubtitle;
class QPushButton;
struct tagKorviaSubtitleParam;

class IGListItemWidgetSubtitleEventSink {
 public:
  /// `row` may be null. With `sendToEngine` the engine gets the record too, wherever it shows the item.
  virtual void onListItemChanged(GListItemWidgetSubtitle* row, const tagKorviaSubtitleParam& param,
                                 bool sendToEngine) = 0;
  /// The button that opens the editor was clicked.
  virtual void onListItemConfig(GListItemWidgetSubtitle* row, QPushButton* button,
                                const tagKorviaSubtitleParam& param) = 0;
  virtual void onListItemSelected(GListItemWidgetSubtitle* row, const tagKorviaSubtitleParam& param) = 0;

 protected:
  ~IGListItemWidgetSubtitleEventSink() = default;
};
