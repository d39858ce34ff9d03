// A sink that keeps the clicks on thumbnail tiles. Console thread.
#pragma once
#include <QVector>

#include "present/IGListWidgetItemEventSink.h"

struct ClickSink final : IGListWidgetItemEventSink {
  struct Click {
    QListWidget* listWidget;
    GListWidgetItem* item;
    qint32 id;
  };

  void onListWidgetItemClicked(QListWidget* listWidget, GListWidgetItem* item, qint32 id) override {
    clicks.append({listWidget, item, id});
  }

  QVector<Click> clicks;
};
