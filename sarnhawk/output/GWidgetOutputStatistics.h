// "Stream Statistics": what the engine reports of sources, encoders, muxers and targets. Made once by the
// console and hidden when it is closed. Console thread.
#pragma once
#include <QString>
#include <array>
#include <memory>
#include <vector>

#include "console/GToolWindow.h"

class GBitratePlotChart;
class IKorviaSarnhawkPriv;
class QTableWidgetItem;
class StatisticsFetch;
struct tagKorviaOutputStatistics;
struct tagKorviaShowSourceStatisticsItem;

namespace Ui {
class GWidgetOutputStatistics;
}

class GWidgetOutputStatistics : public GToolWindow {
  Q_OBJECT

 public:
  /// `priv` must outlive the window. The table has a row for each media channel that there is now.
  explicit GWidgetOutputStatistics(IKorviaSarnhawkPriv* priv, QWidget* parent = nullptr);
  ~GWidgetOutputStatistics() override;

  /// Lets each work tick show these figures while the window is visible. They must outlive the window.
  void follow(const StatisticsFetch* statistics) { _statistics = statistics; }
  void onWorkTick() override;

  /// Shows both records. `sources` has an item for each media channel.
  void updateStatistics(const tagKorviaOutputStatistics& outputs,
                        const tagKorviaShowSourceStatisticsItem* sources);
  /// Shows the addresses of the targets as they are set now. The console calls it when it shows the window.
  void refreshTips();

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  enum Column { Index, VideoSize, VideoFps, AudioRate, Drift, Source, ColumnCount };
  struct ColumnWidth {
    Column column;
    int pixels;
  };
  /// What is left belongs to the source.
  static constexpr ColumnWidth kColumnWidths[] = {
      {Index, 52}, {VideoSize, 108}, {VideoFps, 80}, {AudioRate, 84}, {Drift, 76}};

  /// A row of the table, which owns the items.
  using Row = std::array<QTableWidgetItem*, ColumnCount>;

  void createTable();
  void updateSources(const tagKorviaShowSourceStatisticsItem* sources);
  void updateMuxers(const tagKorviaOutputStatistics& outputs);
  void updateTargets(const tagKorviaOutputStatistics& outputs);
  void updateChart(const tagKorviaOutputStatistics& outputs);

  std::unique_ptr<Ui::GWidgetOutputStatistics> _ui;
  IKorviaSarnhawkPriv* _priv;
  const StatisticsFetch* _statistics = nullptr;
  QString _localAddress;
  GBitratePlotChart* _chart;
  std::vector<Row> _rows;
};
