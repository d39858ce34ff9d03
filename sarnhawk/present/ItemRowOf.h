// Row with the record of its kind: the part of a row that is the same for all kinds but for types. Console
// thread.
#pragma once
#include "KorviaMetaType.h"
#include "present/ItemRow.h"

/// `Traits` names the types of a kind: Param, Row, RowSink.
template <class Traits>
class ItemRowOf : public ItemRow {
 public:
  using Param = typename Traits::Param;
  using Row = typename Traits::Row;
  using Sink = typename Traits::RowSink;

  ItemRowOf(IKorviaSarnhawkPriv* priv, Sink* sink, const Param& param, QListWidgetItem* item)
      : ItemRow(Traits::kKind, priv, item), _sink(sink), _param(param) {}

  const Param& param() const { return _param; }
  /// Shows the record and tells nobody.
  void setParam(const Param& param) {
    _param = param;
    showVisible(_param.pvmVisible != 0, _param.pgmVisible != 0);
    showItem();
  }
  /// For the report of a move. A row shows no position.
  void setPosition(double x, double y) {
    _param.info.x = x;
    _param.info.y = y;
  }

 protected:
  /// Repaints what stands for the item.
  virtual void showItem() = 0;

  QString itemId() const override { return _param.info.id; }
  QVariant engineRecord() const override { return toVariant(_param.info); }
  void storeVisible(KorviaShowObjectID bus, bool visible) override {
    (bus == PVMObject ? _param.pvmVisible : _param.pgmVisible) = visible ? 1 : 0;
  }
  void tellChanged() override { _sink->onListItemChanged(self(), _param, false); }
  void tellConfig(QPushButton* button) override { _sink->onListItemConfig(self(), button, _param); }
  void tellSelected() override { _sink->onListItemSelected(self(), _param); }

 private:
  Row* self() { return static_cast<Row*>(this); }

  Sink* _sink;
  Param _param;
};
