// The names that the channels' records allow.
#include <QtTest>

#include "PublishRules.h"
#include "support/LogLines.h"

using korvia::PublishRules;
using korvia::test::LogLines;

class PublishRulesTest : public QObject {
  Q_OBJECT

 private slots:
  void nothingIsAllowedBeforeTheFirstList() { QVERIFY(!PublishRules().allows("0")); }

  void namesOfTheListAreAllowed() {
    PublishRules rules;
    rules.setIncomePaths({"/income/0", "/income/Cam_1-a", "/income/" + QString(64, 'x'), ""});
    QVERIFY(rules.allows("0"));
    QVERIFY(rules.allows("Cam_1-a"));
    QVERIFY(rules.allows(QString(64, 'x')));
    QVERIFY(!rules.allows("1"));
    QVERIFY(!rules.allows(""));
    rules.setIncomePaths({"/income/1"});
    QVERIFY(!rules.allows("0"));
    QVERIFY(rules.allows("1"));
  }

  void otherFormsAllowNothing_data() {
    QTest::addColumn<QString>("incomePath");
    QTest::addColumn<QString>("name");
    QTest::newRow("no name") << "/income/"
                             << "";
    QTest::newRow("no folder") << "cam"
                               << "cam";
    QTest::newRow("other folder") << "/live/cam"
                                  << "cam";
    QTest::newRow("no slash") << "income/cam"
                              << "cam";
    QTest::newRow("deeper") << "/income/a/cam"
                            << "a/cam";
    QTest::newRow("too long") << "/income/" + QString(65, 'x') << QString(65, 'x');
    QTest::newRow("blank") << "/income/a b"
                           << "a b";
    QTest::newRow("arguments") << "/income/cam?key=x"
                               << "cam?key=x";
    QTest::newRow("line end") << "/income/cam\n"
                              << "cam\n";
    QTest::newRow("line end, name alone") << "/income/cam\n"
                                          << "cam";
    QTest::newRow("letter of another script") << QString::fromUtf8("/income/é") << QString::fromUtf8("é");
    QTest::newRow("dots") << "/income/.."
                          << "..";
    QTest::newRow("NUL") << QString("/income/a") + QChar(0) << QString("a") + QChar(0);
    QTest::newRow("whole URL") << "rtmp://127.0.0.1/income/cam"
                               << "cam";
  }
  void otherFormsAllowNothing() {
    QFETCH(QString, incomePath);
    QFETCH(QString, name);
    const LogLines log;
    PublishRules rules;
    rules.setIncomePaths({incomePath});
    QVERIFY(!rules.allows(name));
    QCOMPARE(log.count("is not \"/income/NAME\", nobody can push to it"), 1);
  }

  void badTextIsLoggedOnceForAsLongAsItStands() {
    const LogLines log;
    PublishRules rules;
    for (int time = 0; time < 3; ++time)
      rules.setIncomePaths({"/a\x1b[31m", "/income/0", ""});
    QCOMPARE(log.count("nobody can push to it"), 1);
    QCOMPARE(log.count("\"/a?[31m\""), 1);
    rules.setIncomePaths({"/income/0"});
    rules.setIncomePaths({"/a\x1b[31m"});
    QCOMPARE(log.count("nobody can push to it"), 2);
  }
};

QTEST_GUILESS_MAIN(PublishRulesTest)
#include "tst_PublishRules.moc"
