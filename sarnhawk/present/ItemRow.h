// Row of an item in its tab: a button for each bus on which the item can be shown, a button that opens its
// editor, and the mark of the selected row. Each kind adds what stands for the item. Console thread.
#pragma once
#include <QVariant>
#include <QWidget>

#include "KorviaShowObjectID.h"

class IKorviaSarnhawkPriv;
class QListWidgetItem;
class QPushButton;
struct ItemKind;

class ItemRow : public QWidget {
  Q_OBJECT

 public:
  /// The row is the widget of `item`. Nothing is owned; the kind and the console must outlive the row.
  ItemRow(const ItemKind& kind, IKorviaSarnhawkPriv* priv, QListWidgetItem* item);

  QListWidgetItem* listWidgetItem() const { return _item; }
  bool isSelected() const { return _selected; }
  void setSelected(bool selected);

 protected:
  /// To be called once, when the row has its form.
  void useButtons(QPushButton* pvmVisible, QPushButton* pgmVisible, QPushButton* config);
  /// Puts both buttons in step with the record without showing or hiding the item.
  void showVisible(bool onPvm, bool onPgm);
  /// Tells the sink that the row was pressed, and nobody else.
  void mousePressEvent(QMouseEvent* event) override;

  virtual QString itemId() const = 0;
  /// What travels to the engine.
  virtual QVariant engineRecord() const = 0;
  virtual void storeVisible(KorviaShowObjectID bus, bool visible) = 0;
  virtual void tellChanged() = 0;
  virtual void tellConfig(QPushButton* button) = 0;
  virtual void tellSelected() = 0;

 private:
  void setVisibleOn(KorviaShowObjectID bus, bool visible);

  const ItemKind& _kind;
  IKorviaSarnhawkPriv* _priv;
  QListWidgetItem* _item;
  QPushButton* _pvmVisiblePushButton = nullptr;
  QPushButton* _pgmVisiblePushButton = nullptr;
  bool _selected = false;
};
