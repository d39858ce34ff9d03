// Tab of one kind of items over the picture: a row for each record of the model, in the same order, and the
// kind's editor. The part of a tab that is the same for all kinds but for types. Console thread.
#pragma once
#include <QListWidget>
#include <algorithm>
#include <memory>

#include "KorviaMetaType.h"
#include "console/ConsolePage.h"
#include "console/IKorviaSarnhawkPriv.h"
#include "console/askOperator.h"
#include "console/tagKorviaSarnhawkConfig.h"
#include "present/ItemKind.h"
#include "present/popupAt.h"
#include "tagKorviaShowPresentPlacement.h"

/// `Traits` names the types of a kind: Param, Row, RowSink, ConfigSink, Popup; and its `kKind` and `records`,
/// the model's list.
template <class Traits>
class ItemTabOf : public QWidget, public ConsolePage, public Traits::RowSink, public Traits::ConfigSink {
 public:
  using Param = typename Traits::Param;
  using Row = typename Traits::Row;

  /// The console interface must outlive the tab.
  explicit ItemTabOf(IKorviaSarnhawkPriv* priv, QWidget* parent = nullptr)
      : QWidget(parent), _priv(priv), _popup(std::make_unique<typename Traits::Popup>(priv, this)) {}

  /// Adds a row for each record of the model. Posts nothing.
  void load() {
    for (const Param& param : std::as_const(records()))
      addRow(param);
  }
  const QList<Row*>& rows() const { return _rows; }
  typename Traits::Popup* popup() const { return _popup.get(); }

  void onListItemChanged(Row*, const Param& param, bool sendToEngine) override {
    Param* record = findRecord(param.info.id);
    if (!record)
      return;
    *record = param;
    if (sendToEngine)
      _priv->postEvent(Traits::kKind.updateEvent, toVariant(param.info));
    saveChanges();
  }
  void onListItemConfig(Row*, QPushButton* button, const Param& param) override {
    constexpr int kCentred = 0x84;
    _popup->setObjectParam(KaraokeObject, param);
    popupAt(_popup.get(), button, kCentred, Qt::AlignRight);
  }
  void onListItemSelected(Row* row, const Param&) override {
    for (Row* other : std::as_const(_rows))
      other->setSelected(other == row);
  }
  void onConfigChanged(const Param& param) override {
    onListItemChanged(nullptr, param, true);
    if (Row* row = findRow(param.info.id))
      row->setParam(param);
  }

  void onEngineOpened() override { load(); }
  void onPlacement(const tagKorviaShowPresentPlacement& placement) override {
    if (Row* row = findRow(placement.key))
      row->setPosition(placement.x, placement.y);
    if (Param* record = findRecord(placement.key)) {
      record->info.x = placement.x;
      record->info.y = placement.y;
    }
    saveChanges();
  }
  void onDestroyUi() override { delete this; }

 protected:
  /// The form's list; to be called once, before any row is added.
  void useList(QListWidget* list) { _list = list; }
  /// Gives a new row its size in the list.
  virtual void fitRow(Row* row) = 0;

  /// Adds an item at the end and selects its row. It is not sent to the engine before it is shown.
  void addItem(const Param& param) {
    records().append(param);
    Row* row = addRow(param);
    saveChanges();
    onListItemSelected(row, param);
    _list->scrollToItem(row->listWidgetItem());
  }
  /// Asks, and removes the items of the rows from both buses and from the show.
  void removeItems(const QList<Row*>& targets) {
    // The console may end while it asks, and answers "No" then.
    if (targets.isEmpty() ||
        !askOperator(this, QCoreApplication::translate("ItemKind", Traits::kKind.deleteQuestion), QString()))
      return;
    QStringList ids;
    for (Row* row : targets) {
      ids.append(row->param().info.id);
      removeRow(row);
    }
    for (const QString& id : std::as_const(ids)) {
      _priv->postEvent(Traits::kKind.hideEvent, PVMObject, id);
      _priv->postEvent(Traits::kKind.hideEvent, PGMObject, id);
    }
    saveChanges();
  }
  Row* findRow(const QListWidgetItem* item) const {
    const auto found =
        std::find_if(_rows.begin(), _rows.end(), [item](Row* row) { return row->listWidgetItem() == item; });
    return found == _rows.end() ? nullptr : *found;
  }

 private:
  QList<Param>& records() const { return Traits::records(*_priv->getConfig()); }
  void saveChanges() { _priv->saveChanges(Traits::kKind.change, -1); }

  Row* addRow(const Param& param) {
    auto* item = new QListWidgetItem(_list);
    auto* row = new Row(_priv, this, param, item);
    _rows.append(row);
    fitRow(row);
    _list->setItemWidget(item, row);
    return row;
  }
  void removeRow(Row* row) {
    const QString id = row->param().info.id;
    QList<Param>& all = records();
    all.erase(
        std::remove_if(all.begin(), all.end(), [&id](const Param& param) { return param.info.id == id; }),
        all.end());
    _rows.removeOne(row);
    const std::unique_ptr<QListWidgetItem> item(row->listWidgetItem());
    delete row;
  }
  Row* findRow(const QString& id) const {
    const auto found =
        std::find_if(_rows.begin(), _rows.end(), [&id](Row* row) { return row->param().info.id == id; });
    return found == _rows.end() ? nullptr : *found;
  }
  Param* findRecord(const QString& id) const {
    QList<Param>& all = records();
    const auto found =
        std::find_if(all.begin(), all.end(), [&id](const Param& param) { return param.info.id == id; });
    return found == all.end() ? nullptr : &*found;
  }

  IKorviaSarnhawkPriv* _priv;
  std::unique_ptr<typename Traits::Popup> _popup;
  QListWidget* _list = nullptr;
  QList<Row*> _rows;
};
