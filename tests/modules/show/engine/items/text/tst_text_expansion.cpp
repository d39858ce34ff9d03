// The time in texts, and what is taken out of them.
#include <QtTest>

#include "engine/items/text/TextExpansion.h"

using namespace korvia;

namespace {

const QDateTime kNow(QDate(2024, 3, 5), QTime(7, 8, 9));

QString expanded(const QString& text, const QString& format = QStringLiteral("hh:mm:ss")) {
  return expandText(text, format, kNow);
}

}  // namespace

class TextExpansionTest : public QObject {
  Q_OBJECT

 private slots:
  void everyTokenBecomesTheTime() {
    QCOMPARE(expanded("Time: ${Time}"), QString("Time: 07:08:09"));
    QCOMPARE(expanded("${Time}|${Time}", "yyyy-MM-dd"), QString("2024-03-05|2024-03-05"));
    QCOMPARE(expanded("${Time}", "dddd d MMMM"), QString("Tuesday 5 March"));
  }
  void unknownTokensStay() {
    QCOMPARE(expanded("${Date} ${time} ${Time $ { } ${"), QString("${Date} ${time} ${Time $ { } ${"));
  }
  void whatTheTimeBecomesIsNotExpandedAgain() {
    QCOMPARE(expanded("${Time}", "'${Time}'"), QString("${Time}"));
  }
  void anEmptyFormatGivesNoTime() { QCOMPARE(expanded("a${Time}b", ""), QString("ab")); }
  void tellsWhatChangesWithTheTime() {
    QVERIFY(showsTime("x ${Time}"));
    QVERIFY(!showsTime("${time}"));
  }
  void allLineBreaksAreTheSame() {
    QCOMPARE(expanded(QStringLiteral("a\r\nb\rc\nd\u2028e\u2029f\vg\fh")), QString("a\nb\nc\nd\ne\nf\ng\nh"));
  }
  void controlCharactersGo() {
    QCOMPARE(expanded(QString("a") + QChar(0) + QChar(7) + QChar(0x1B) + QChar(0x7F) + QChar(0x85) + "\tb"),
             QString("a    b"));
  }
  void marksOfDirectionStay() {
    const QString text = QStringLiteral("\u200Fabc\u202E\u05D0\u202C");
    QCOMPARE(expanded(text), text);
  }
  void halvesOfCharactersAreReplaced() {
    QCOMPARE(expanded(QString("a") + QChar(0xD83D) + "b" + QChar(0xDE00)), QStringLiteral("a\uFFFDb\uFFFD"));
    QCOMPARE(expanded(QStringLiteral("\U0001F600")), QStringLiteral("\U0001F600"));
  }
  void longTextsAndFormatsAreCut() {
    const QString tokens = QStringLiteral("${Time}").repeated(150000);
    const QString out = expandText(tokens, QString(100000, QLatin1Char('y')), kNow);
    QVERIFY(out.size() >= kMostTextCharacters);
    QVERIFY(out.size() <= kMostTextCharacters + 4);
    QCOMPARE(expanded(QString(1 << 20, QLatin1Char('x'))).size(), kMostTextCharacters);
  }
  void anInvalidTimeIsNoCrash() { QCOMPARE(expandText("a ${Time}", "hh", QDateTime()), QString("a ")); }
};

QTEST_GUILESS_MAIN(TextExpansionTest)
#include "tst_text_expansion.moc"
