// Helpers that console and engine share: names and catalogs of effect numbers, texts and text pictures, and
// records as XML. Stateless, any thread; toImage needs a QGuiApplication.
#pragma once
#include <QImage>
#include <QString>

#include "KorviaShowObjectID.h"
#include "KorviaShowTextStylePreset.h"

class QDomElement;
class QXmlStreamWriter;
struct tagKorviaShowAudioMixerParam;
struct tagKorviaShowComponentInfo;
struct tagKorviaShowRenderTextParam;
struct tagKorviaShowTextStyle;

/// The catalogs of transitions, in the order of the editor's pages.
enum KorviaShowEffectKindCatalog : unsigned {
  EffectCatalogSys = 0,
  EffectCatalogErase = 1,
  EffectCatalogFade = 2,
  EffectCatalogGlide = 3,
  EffectCatalogStretch = 4,
  EffectCatalogBlur = 5,
  EffectCatalogDistortion = 6,
  EffectCatalogColor = 7,
};

class KorviaShowUtil {
 public:
  /// A stable word for an object: "media_0", "stage_0", "karaoke", "pvm", "pgm". The source object of a media
  /// channel has the channel's word. Empty for an id that names nothing.
  static QString toPathString(KorviaShowObjectID id);

  /// The catalog that an effect number belongs to; EffectCatalogSys for a number that no catalog lists.
  static KorviaShowEffectKindCatalog getEffectCatalog(unsigned effect);

  /// The text on a transparent picture of exactly this size, each side at most 8192; a null picture for a
  /// side below 1. Lines that do not fit are cut off. The gradient covers the rectangle of the text: from
  /// left to right at 0 degrees, from top to bottom at 90. Vertical text is set in columns from right to
  /// left.
  static QImage toImage(int width, int height, const tagKorviaShowRenderTextParam& param);

  /// Gives the style the look of a preset. Font and size stay; `texturePath` becomes a bare file name of the
  /// texture folder, for looks without texture that of the file the style had. False, and no change, for a
  /// number without a preset.
  static bool loadTextStylePreset(KorviaShowTextStylePreset preset, tagKorviaShowTextStyle& style);

  /// Reads the text file at a drive path or path, at most 4 MiB, in the encoding of the locale or, where its
  /// first bytes are a byte order mark, in the encoding of that mark. False with a reason for what is no file
  /// or cannot be read; the text is empty then.
  static bool readTextFile(const QString& path, QString& text, QString& reason);

  /// Fills the record from the child elements of the element, one for each field. A field that is missing or
  /// has no value of its type keeps its value. False when no field of the record was found.
  static bool readDomElement(const QDomElement& element, tagKorviaShowAudioMixerParam& param);
  static bool readDomElement(const QDomElement& element, tagKorviaShowComponentInfo& info);

  /// Writes the record as an element of this name. The value of a field is the attribute "value" of its
  /// element; the entries of a list are elements "item".
  static void writeXmlWriter(QXmlStreamWriter& writer, const QString& name,
                             const tagKorviaShowAudioMixerParam& param);
  static void writeXmlWriter(QXmlStreamWriter& writer, const QString& name,
                             const tagKorviaShowComponentInfo& info);
};
