// The types and numbers by which the common parts of rows and tabs handle subtitles. Console thread.
#pragma once
#include <QCoreApplication>

#include "KorviaShowEvents.h"
#include "console/ShowChange.h"
#include "console/tagKorviaSarnhawkConfig.h"
#include "present/IGListItemWidgetSubtitleEventSink.h"
#include "present/IGWidgetSubtitleConfigSink.h"
#include "present/ItemKind.h"

class GListItemWidgetSubtitle;
class GWidgetSubtitleConfig;

struct SubtitleTraits {
  using Param = tagKorviaSubtitleParam;
  using Row = GListItemWidgetSubtitle;
  using RowSink = IGListItemWidgetSubtitleEventSink;
  using ConfigSink = IGWidgetSubtitleConfigSink;
  using Popup = GWidgetSubtitleConfig;

  static constexpr ItemKind kKind{ShowEventAddText, ShowEventRemoveText, ShowEventUpdateText, ShowChangeTexts,
                                  QT_TRANSLATE_NOOP("ItemKind", "Are you sure to delete this subtitle ?")};
  static QList<Param>& records(tagKorviaSarnhawkConfig& config) { return config.textList; }
};
