// The table of SDI formats, against the element of the cards where it is installed.
#include <gst/gst.h>

#include <QtTest>

#include "engine/output/device/SdiModes.h"
#include "engine/source/GstInit.h"

using namespace korvia;

class SdiModesTest : public QObject {
  Q_OBJECT

 private slots:
  void aFormatIsFoundAsItIsWritten_data() {
    QTest::addColumn<QString>("format");
    QTest::addColumn<QString>("nick");
    QTest::newRow("default") << "1080p25"
                             << "1080p25";
    QTest::newRow("with a point") << "1080i59.94"
                                  << "1080i5994";
    QTest::newRow("with blanks") << " 1080 P 29.97"
                                 << "1080p2997";
    QTest::newRow("standard definition") << "PAL"
                                         << "pal";
    QTest::newRow("unknown") << "1080p26"
                             << "";
    QTest::newRow("chosen by the card") << "auto"
                                        << "";
    QTest::newRow("empty") << ""
                           << "";
  }
  void aFormatIsFoundAsItIsWritten() {
    QFETCH(QString, format);
    QFETCH(QString, nick);
    const std::optional<SdiMode> mode = findSdiMode(format);
    QCOMPARE(mode ? QString(mode->nick) : QString(), nick);
  }

  void anInterlacedFormatIsNamedByItsFields() {
    const DevicePicture picture = findSdiMode("1080i50")->picture;
    QCOMPARE(picture.rate, (FrameRate{25, 1}));
    QCOMPARE(picture.scan, Scan::Interlaced);
    QCOMPARE(sdiColorimetry(picture), "bt709");
  }

  void theTableAgreesWithTheCards() {
    startGStreamer();
    GstElement* sink = gst_element_factory_make("decklinkvideosink", nullptr);
    if (!sink)
      QSKIP("the plugin decklink is not installed");
    GParamSpec* property = g_object_class_find_property(G_OBJECT_GET_CLASS(sink), "mode");
    const GEnumClass* modes = G_PARAM_SPEC_ENUM(property)->enum_class;
    GstPad* pad = gst_element_get_static_pad(sink, "sink");
    for (guint i = 0; i < modes->n_values; ++i) {
      const char* nick = modes->values[i].value_nick;
      if (qstrcmp(nick, "auto") == 0)
        continue;
      const std::optional<SdiMode> mode = findSdiMode(nick);
      QVERIFY2(mode, nick);
      g_object_set(sink, "mode", modes->values[i].value, nullptr);
      GstCaps* caps = gst_pad_query_caps(pad, nullptr);
      const DevicePicture& picture = mode->picture;
      GstCaps* own = gst_caps_new_simple(
          "video/x-raw", "format", G_TYPE_STRING, "UYVY", "width", G_TYPE_INT, picture.size.width, "height",
          G_TYPE_INT, picture.size.height, "pixel-aspect-ratio", GST_TYPE_FRACTION,
          picture.pixelAspectNumerator, picture.pixelAspectDenominator, "interlace-mode", G_TYPE_STRING,
          picture.scan == Scan::Interlaced ? "interleaved" : "progressive", "colorimetry", G_TYPE_STRING,
          sdiColorimetry(picture), nullptr);
      QVERIFY2(gst_caps_can_intersect(caps, own), nick);
      gst_caps_unref(own);
      gst_caps_unref(caps);
    }
    gst_object_unref(pad);
    gst_object_unref(sink);
  }
};

QTEST_GUILESS_MAIN(SdiModesTest)
#include "tst_sdi_modes.moc"
