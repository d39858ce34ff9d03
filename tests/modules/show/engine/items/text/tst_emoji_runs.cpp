// Which characters of a text are emoji.
#include <QtTest>

#include "engine/items/text/EmojiRuns.h"
#include "engine/items/text/FontChoice.h"

using namespace korvia;

class EmojiRunsTest : public QObject {
  Q_OBJECT

 private slots:
  void emojiAreFound_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("found");
    QTest::newRow("none") << "Time 12:00 #*"
                          << "";
    QTest::newRow("one") << QStringLiteral("a\U0001F600b") << "1+2";
    QTest::newRow("neighbours") << QStringLiteral("\U0001F600\U0001F600 \u2B50") << "0+4 5+1";
    QTest::newRow("family") << QStringLiteral("a\U0001F468\u200D\U0001F469\u200D\U0001F467b") << "1+8";
    QTest::newRow("rainbow flag") << QStringLiteral("\U0001F3F3\uFE0F\u200D\U0001F308") << "0+5";
    QTest::newRow("flag of a land") << QStringLiteral("\U0001F1E9\U0001F1EA") << "0+4";
    QTest::newRow("keycap") << QStringLiteral("1\uFE0F\u20E3 1") << "0+2";
    QTest::newRow("heart as text") << QStringLiteral("\u2764") << "";
    QTest::newRow("heart in colour") << QStringLiteral("\u2764\uFE0F") << "0+1";
    QTest::newRow("star as text") << QStringLiteral("\u2B50\uFE0E") << "";
    QTest::newRow("joiner at the end") << QStringLiteral("\U0001F468\u200D") << "0+3";
    QTest::newRow("half a character") << QString(QChar(0xD83D)) << "";
  }
  void emojiAreFound() {
    QFETCH(QString, text);
    QFETCH(QString, found);
    const EmojiText marked = markEmoji(text, chooseFont("DejaVu Sans", 40));
    QStringList ranges;
    for (const QTextLayout::FormatRange& range : marked.formats) {
      ranges += QStringLiteral("%1+%2").arg(range.start).arg(range.length);
      QCOMPARE(range.format.font().families().constFirst(), QString("Noto Color Emoji"));
    }
    QCOMPARE(ranges.join(' '), found);
    QCOMPARE(marked.text, QString(text).remove(QChar(0xFE0F)));
  }
  void cutTextsKeepTheirEmoji() {
    EmojiText marked = markEmoji(QStringLiteral("\U0001F600a\U0001F600\U0001F600b\U0001F600"), QFont());
    marked.truncate(5);
    QCOMPARE(marked.text.size(), 5);
    QCOMPARE(marked.formats.size(), 2);
    QCOMPARE(marked.formats[1].start, 3);
    QCOMPARE(marked.formats[1].length, 2);
    marked.truncate(0);
    QVERIFY(marked.formats.isEmpty());
  }
};

QTEST_MAIN(EmojiRunsTest)
#include "tst_emoji_runs.moc"
