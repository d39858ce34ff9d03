// The picker's page for a text and its look. Console thread.
#pragma once

namespace Ui {
class GDialogMediaSource;
}
struct tagKorviaShowSourceInfo;

class TextPage {
 public:
  explicit TextPage(Ui::GDialogMediaSource& ui) : _ui(ui) {}

  /// Fills the lists of values.
  void fill();
  void load(const tagKorviaShowSourceInfo& info);
  /// All but the colours, which are stored when they are picked.
  void store(tagKorviaShowSourceInfo& info) const;

 private:
  Ui::GDialogMediaSource& _ui;
};
