// The editor of text styles: what it shows of a style, what each edit makes of it, and when the sink hears of
// it.
#include <QListWidget>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>
#include <QtTest>

#include "Controls.h"
#include "ItemConsole.h"
#include "KorviaShowUtil.h"
#include "QColEdit.h"
#include "Tiles.h"
#include "present/GWidgetTextStyle.h"
#include "present/IGWidgetTextStyleSink.h"

namespace {

class Sink final : public IGWidgetTextStyleSink {
 public:
  void onTextStyleChanged(const tagKorviaShowTextStyle& style) override { styles.append(style); }
  const tagKorviaShowTextStyle& last() const { return styles.last(); }

  QList<tagKorviaShowTextStyle> styles;
};

/// The editor, embedded in a window, with a style loaded.
class Editor : public Controls<Editor> {
 public:
  explicit Editor(const tagKorviaShowTextStyle& style = {}) : widget(&console, &sink, &holder) {
    holder.resize(440, 460);
    widget.resize(holder.size());
    widget.setObjectParam(0x1000, style);
    sink.styles.clear();
    holder.show();
  }

  QPushButton* button(const char* name) const { return child<QPushButton>(name); }
  const QListWidget* presets() const { return child<QListWidget>("_fontStylePresetTypeListWidget"); }
  QString texturePath(const QString& name) const {
    return console.folder.path() + "\\Common\\TextTexture\\" + name + ".tga";
  }

  ItemConsole console;
  Sink sink;
  QWidget holder;
  GWidgetTextStyle widget;
};

void drag(QSlider* slider, int value) {
  slider->setSliderDown(true);
  slider->setSliderPosition(value);
  slider->setSliderDown(false);
}

QColEdit* colorDialog() {
  for (QWidget* window : QApplication::topLevelWidgets()) {
    auto* dialog = qobject_cast<QColEdit*>(window);
    if (dialog && dialog->isVisible())
      return dialog;
  }
  return nullptr;
}

}  // namespace

class WidgetTextStyleTest : public QObject {
  Q_OBJECT

 private slots:
  void theEmbeddedFormHasAllRows() {
    const Editor editor;
    QVERIFY(editor.child<QWidget>("_fontNameWidget")->isVisible());
    QVERIFY(editor.child<QWidget>("_fontSizeWidget")->isVisible());
    const auto* tabs = editor.child<QTabWidget>("_fontStyleTabWidget");
    QCOMPARE(tabs->currentIndex(), 0);
    QCOMPARE(tabs->tabText(0), QString("Font Color"));
    QCOMPARE(tabs->tabText(1), QString("Shadow"));
    QCOMPARE(tabs->tabText(2), QString("Outline"));
    QCOMPARE(tilesOf(editor.presets()).size(), 31);
    QCOMPARE(tileOf(editor.presets(), 30)->size(), QSize(64, 64));
    QCOMPARE(tileOf(editor.presets(), 30)->info().name, QString());
    QVERIFY(tileOf(editor.presets(), 12)
                ->info()
                .thumbPath.endsWith("/res/subtitleStyle/solid_outline_black.jpg"));
  }

  void thePopupFormHidesTheFontAndStillSendsIt() {
    ItemConsole console;
    Sink sink;
    GWidgetTextStyle widget(&console, &sink, nullptr);
    QCOMPARE(widget.windowType(), Qt::Popup);
    tagKorviaShowTextStyle style;
    style.fontName = "Beta";
    style.fontSize = 55;
    widget.setObjectParam(0, style);
    widget.show();
    QVERIFY(!widget.findChild<QWidget*>("_fontNameWidget")->isVisible());
    QVERIFY(!widget.findChild<QWidget*>("_fontSizeWidget")->isVisible());
    drag(widget.findChild<QSlider*>("_outlineSizeHorizontalSlider"), 9);
    QCOMPARE(sink.last().fontName, QString("Beta"));
    QCOMPARE(sink.last().fontSize, 55);
    QCOMPARE(sink.last().outlineSize, 9);
  }

  void slidersHaveTheirRanges_data() {
    QTest::addColumn<QString>("label");
    QTest::addColumn<int>("least");
    QTest::newRow("_shadowDisXHorizontalSlider") << "_shadowDisXLabel" << -32;
    QTest::newRow("_shadowDisYHorizontalSlider") << "_shadowDisYLabel" << -32;
    QTest::newRow("_shadowBlurHorizontalSlider") << "_shadowBlurLabel" << 0;
    QTest::newRow("_outlineSizeHorizontalSlider") << "_outlineSizeLabel" << 0;
    QTest::newRow("_outlineBlurHorizontalSlider") << "_outlineBlurLabel" << 0;
  }
  void slidersHaveTheirRanges() {
    QFETCH(QString, label);
    QFETCH(int, least);
    ItemConsole console;
    Sink sink;
    QWidget holder;
    const GWidgetTextStyle widget(&console, &sink, &holder);
    const auto* slider = widget.findChild<QSlider*>(QTest::currentDataTag());
    QCOMPARE(slider->minimum(), least);
    QCOMPARE(slider->maximum(), 32);
    QCOMPARE(widget.findChild<QLabel*>(label)->text(), QString("0"));
  }

  void showsAStyleAndSendsNothing() {
    tagKorviaShowTextStyle style;
    style.preset = 7;
    style.fontName = "Gamma";
    style.fontSize = 33;
    style.colorMode = 1;
    style.solidColor = 0x80102030;
    style.shadowDistanceX = -12;
    style.shadowDistanceY = 31;
    style.shadowBlur = 4;
    style.outlineSize = 5;
    style.outlineBlur = 2.5F;
    ItemConsole console;
    Sink sink;
    QWidget holder;
    GWidgetTextStyle widget(&console, &sink, &holder);
    widget.setObjectParam(0x1000, style);
    QCOMPARE(sink.styles.size(), 0);
    QVERIFY(widget.style() == style);
    const Editor editor(style);
    QCOMPARE(markedOf(editor.presets()), QList<qint32>{7});
    QCOMPARE(editor.combo("_fontNameComboBox")->currentIndex(), 2);
    QCOMPARE(editor.combo("_fontSizeComboBox")->currentText(), QString("33"));
    QVERIFY(editor.child<QRadioButton>("_gradientColorTypeRadioButton")->isChecked());
    QCOMPARE(editor.button("_solidColorPushButton")->text(), QString("#10203080"));
    QCOMPARE(editor.slider("_shadowDisXHorizontalSlider")->value(), -12);
    QCOMPARE(editor.slider("_shadowDisYHorizontalSlider")->value(), 31);
    QCOMPARE(editor.label("_shadowDisXLabel"), QString("-12"));
    QCOMPARE(editor.label("_shadowBlurLabel"), QString("4"));
    QCOMPARE(editor.label("_outlineSizeLabel"), QString("5"));
    QCOMPARE(editor.label("_outlineBlurLabel"), QString("2.5"));
  }

  void aFontThatTheSystemLacksIsSentAsItStands() {
    tagKorviaShowTextStyle style;
    style.fontName = "Microsoft YaHei Bold & Microsoft YaHei UI Bold";
    Editor editor(style);
    QCOMPARE(editor.combo("_fontNameComboBox")->currentText(), style.fontName);
    drag(editor.slider("_shadowBlurHorizontalSlider"), 8);
    QCOMPARE(editor.sink.last().fontName, style.fontName);
    QCOMPARE(editor.sink.last().shadowBlur, 8.0F);
  }

  void fontButtonsStepTheListAndStayAtItsEnds() {
    tagKorviaShowTextStyle style;
    style.fontName = "Beta";
    Editor editor(style);
    editor.button("_nextFontNamePushButton")->click();
    QCOMPARE(editor.sink.styles.size(), 1);
    QCOMPARE(editor.sink.last().fontName, QString("Gamma"));
    editor.button("_nextFontNamePushButton")->click();
    QCOMPARE(editor.sink.styles.size(), 1);
    editor.button("_prevFontNamePushButton")->click();
    editor.button("_prevFontNamePushButton")->click();
    QCOMPARE(editor.sink.last().fontName, QString("Alpha"));
    QCOMPARE(editor.sink.styles.size(), 3);
    editor.button("_prevFontNamePushButton")->click();
    QCOMPARE(editor.sink.styles.size(), 3);
  }

  void fontButtonsKeepTheNameWhereThereAreNoFonts() {
    ItemConsole console;
    console.fonts.families.clear();
    Sink sink;
    QWidget holder;
    GWidgetTextStyle widget(&console, &sink, &holder);
    widget.setObjectParam(0x1000, {});
    sink.styles.clear();
    widget.findChild<QPushButton*>("_nextFontNamePushButton")->click();
    widget.findChild<QPushButton*>("_prevFontNamePushButton")->click();
    QCOMPARE(sink.styles.size(), 0);
    QCOMPARE(widget.findChild<QComboBox*>("_fontNameComboBox")->currentText(),
             tagKorviaShowTextStyle().fontName);
  }

  void sizeButtons_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("adds");
    QTest::addColumn<int>("next");
    QTest::newRow("add") << "42" << true << 47;
    QTest::newRow("add beyond the list") << "85" << true << 90;
    QTest::newRow("add up to the most") << "118" << true << 120;
    QTest::newRow("sub") << "42" << false << 37;
    QTest::newRow("sub down to the least") << "8" << false << 5;
    QTest::newRow("sub from no number") << "big" << false << 5;
    QTest::newRow("add to the largest number") << "2147483647" << true << 120;
    QTest::newRow("sub from the smallest number") << "-2147483648" << false << 5;
  }
  void sizeButtons() {
    QFETCH(QString, text);
    QFETCH(bool, adds);
    QFETCH(int, next);
    Editor editor;
    editor.combo("_fontSizeComboBox")->setEditText(text);
    editor.button(adds ? "_addFontSizePushButton" : "_subFontSizePushButton")->click();
    QCOMPARE(editor.sink.last().fontSize, next);
    QCOMPARE(editor.combo("_fontSizeComboBox")->currentText(), QString::number(next));
  }

  void listsOfSizesAndTextures() {
    Editor editor;
    const QComboBox* sizes = editor.combo("_fontSizeComboBox");
    QCOMPARE(sizes->count(), 16);
    QCOMPARE(sizes->itemText(0), QString("10"));
    QCOMPARE(sizes->itemText(15), QString("85"));
    const QComboBox* textures = editor.combo("_textureComboBox");
    QCOMPARE(textures->count(), 2);
    QCOMPARE(textures->itemText(0), QString("Sand"));
    QCOMPARE(textures->itemText(1), QString("rock"));
    QCOMPARE(textures->iconSize(), QSize(20, 20));
    editor.combo("_fontSizeComboBox")->setEditText("big");
    QCOMPARE(editor.sink.last().fontSize, 0);
  }

  void modesAndTheTexturePathInEachOfThem() {
    Editor editor;
    editor.child<QRadioButton>("_textureColorTypeRadioButton")->click();
    QCOMPARE(editor.sink.last().colorMode, 2);
    editor.combo("_textureComboBox")->setCurrentIndex(1);
    QCOMPARE(editor.sink.last().texturePath, editor.texturePath("rock"));
    editor.child<QRadioButton>("_gradientColorTypeRadioButton")->click();
    QCOMPARE(editor.sink.last().colorMode, 1);
    editor.child<QRadioButton>("_solidColorTypeRadioButton")->click();
    QCOMPARE(editor.sink.last().colorMode, 0);
    QCOMPARE(editor.sink.last().texturePath, editor.texturePath("rock"));
    QCOMPARE(editor.sink.styles.size(), 4);
  }

  void anEmptyTextureFolderLeavesAPathWithoutName() {
    ItemConsole console;
    QDir(console.folder.filePath("Common/TextTexture")).removeRecursively();
    Sink sink;
    QWidget holder;
    GWidgetTextStyle widget(&console, &sink, &holder);
    widget.setObjectParam(0x1000, {});
    drag(widget.findChild<QSlider*>("_outlineBlurHorizontalSlider"), 3);
    QCOMPARE(sink.last().texturePath, console.folder.path() + "\\Common\\TextTexture\\.tga");
  }

  void aSliderSendsOnceWhenItIsReleased() {
    Editor editor;
    drag(editor.slider("_shadowDisXHorizontalSlider"), 10);
    drag(editor.slider("_shadowDisYHorizontalSlider"), -20);
    drag(editor.slider("_outlineBlurHorizontalSlider"), 30);
    QCOMPARE(editor.sink.styles.size(), 3);
    QCOMPARE(editor.sink.last().shadowDistanceX, 10);
    QCOMPARE(editor.sink.last().shadowDistanceY, -20);
    QCOMPARE(editor.sink.last().outlineBlur, 30.0F);
    QCOMPARE(editor.label("_shadowDisYLabel"), QString("-20"));
    QCOMPARE(editor.label("_outlineBlurLabel"), QString("30"));
  }

  void aColourIsTakenOverWhenItIsAccepted() {
    Editor editor;
    editor.button("_outlineColorPushButton")->click();
    QPointer<QColEdit> dialog = colorDialog();
    QVERIFY(dialog);
    QVERIFY(!dialog->parentWidget());
    QVERIFY(dialog->windowFlags().testFlag(Qt::WindowStaysOnTopHint));
    QCOMPARE(dialog->color().rgba(), tagKorviaShowTextStyle().outlineColor);
    editor.holder.hide();
    dialog->setColor(QColor(1, 2, 255, 64));
    dialog->accept();
    QCOMPARE(editor.sink.styles.size(), 1);
    QCOMPARE(editor.sink.last().outlineColor, 0x400102FFU);
    QCOMPARE(editor.button("_outlineColorPushButton")->text(), QString("#0102FF40"));
    QVERIFY(editor.holder.isVisible());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);

    editor.button("_solidColorPushButton")->click();
    dialog = colorDialog();
    QVERIFY(dialog);
    editor.holder.hide();
    dialog->setColor(Qt::red);
    dialog->reject();
    QCOMPARE(editor.sink.styles.size(), 1);
    QVERIFY(editor.holder.isVisible());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  }

  void theColourDialogEndsWithTheEditor() {
    auto editor = std::make_unique<Editor>();
    editor->button("_shadowColorPushButton")->click();
    const QPointer<QColEdit> dialog = colorDialog();
    QVERIFY(dialog);
    editor.reset();
    QVERIFY(dialog.isNull());
  }

  void aPresetWithTheCurrentTextureSendsOnce() {
    Editor editor;
    QTest::mouseClick(tileOf(editor.presets(), 13), Qt::LeftButton);
    QCOMPARE(editor.sink.styles.size(), 1);
    tagKorviaShowTextStyle expected;
    KorviaShowUtil::loadTextStylePreset(TextStyleSolidOutlineRed, expected);
    expected.preset = 13;
    expected.texturePath = editor.texturePath("Sand");
    QVERIFY(editor.sink.last() == expected);
    QCOMPARE(markedOf(editor.presets()), QList<qint32>{13});
    QCOMPARE(editor.slider("_outlineSizeHorizontalSlider")->value(), expected.outlineSize);
    QListWidget other;
    editor.widget.onListWidgetItemClicked(&other, nullptr, 5);
    QCOMPARE(editor.sink.styles.size(), 1);
  }

  void aPresetThatMovesTheTextureSendsTwice() {
    ItemConsole console;
    tagKorviaShowTextStyle preset;
    KorviaShowUtil::loadTextStylePreset(TextStyleTexture0001, preset);
    QFile texture(console.folder.filePath("Common/TextTexture/" + preset.texturePath));
    QVERIFY(texture.open(QIODevice::WriteOnly));
    Sink sink;
    QWidget holder;
    GWidgetTextStyle widget(&console, &sink, &holder);
    tagKorviaShowTextStyle loaded;
    loaded.texturePath = "rock.tga";
    widget.setObjectParam(0x1000, loaded);
    sink.styles.clear();
    widget.findChild<QSlider*>("_shadowDisXHorizontalSlider")->setValue(-31);
    QListWidget* list = widget.findChild<QListWidget*>("_fontStylePresetTypeListWidget");
    widget.onListWidgetItemClicked(list, nullptr, TextStyleTexture0001);
    QCOMPARE(sink.styles.size(), 2);
    // The first comes from the middle of the reload, when the sliders still have their old values.
    QCOMPARE(sink.styles[0].shadowDistanceX, -31);
    QCOMPARE(sink.styles[0].colorMode, 2);
    QCOMPARE(sink.styles[1].shadowDistanceX, preset.shadowDistanceX);
    QCOMPARE(sink.styles[1].outlineSize, preset.outlineSize);
    QVERIFY(sink.styles[1].texturePath.endsWith("\\" + preset.texturePath));
  }

  void aPresetWhoseTextureIsMissingKeepsTheCurrentOne() {
    Editor editor;
    editor.combo("_textureComboBox")->setCurrentIndex(1);
    editor.sink.styles.clear();
    editor.widget.onListWidgetItemClicked(editor.child<QListWidget>("_fontStylePresetTypeListWidget"),
                                          nullptr, TextStyleTexture0002);
    QCOMPARE(editor.sink.styles.size(), 1);
    QCOMPARE(editor.sink.last().texturePath, editor.texturePath("rock"));
  }
};

QTEST_MAIN(WidgetTextStyleTest)
#include "tst_widget_text_style.moc"
