// The lists of what the operator used before, and how they are stored.
#include <QSettings>
#include <QtTest>

#include "sources/HistoryList.h"

class HistoryListTest : public QObject {
  Q_OBJECT

 private slots:
  void init() {
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, _folder.path());
    Settings().clear();
    _list.clear();
  }

  void newestStandsOnTop() {
    HistoryList history(&_list, "key", HistoryList::Entries::Addresses);
    history.add("a");
    history.add("b");
    QCOMPARE(rows(), (QStringList{"b", "a"}));
    QCOMPARE(stored(), (QStringList{"b", "a"}));
  }

  void passwordsInAddressesAreForThisUserOnly() {
    HistoryList history(&_list, "key", HistoryList::Entries::Addresses);
    history.add("srt://host:9000?passphrase=secret");
    history.add("b");
    const QFile::Permissions others =
        QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther;
    const QFile::Permissions found = QFile::permissions(Settings().fileName());
    QVERIFY(found & QFile::ReadOwner);
    QVERIFY(!(found & others));
  }

  void listedTextWritesNothing() {
    HistoryList history(&_list, "key", HistoryList::Entries::Addresses);
    history.add("a");
    history.add("b");
    Settings().remove("key");
    history.add("a");
    QCOMPARE(rows(), (QStringList{"b", "a"}));
    QVERIFY(!Settings().contains("key"));
    history.add("A");
    QCOMPARE(rows(), (QStringList{"A", "b", "a"}));
  }

  void fullHistoryStoresTheNewest23() {
    QStringList before;
    for (int n = 0; n < 23; ++n)
      before.append(QString::number(n));
    Settings().setValue("key", before);
    HistoryList history(&_list, "key", HistoryList::Entries::Addresses);
    history.load();
    QCOMPARE(rows(), before);
    history.add("new");
    QCOMPARE(_list.count(), 24);
    QCOMPARE(stored().size(), 23);
    QCOMPARE(stored().first(), QString("new"));
    QCOMPARE(stored().last(), QString("21"));
  }

  void twoListsKeepEachOthersTexts() {
    Settings().setValue("key", QStringList{"old"});
    QListWidget otherRows;
    HistoryList history(&_list, "key", HistoryList::Entries::Addresses);
    HistoryList other(&otherRows, "key", HistoryList::Entries::Addresses);
    history.load();
    other.load();
    history.add("a");
    other.add("b");
    QCOMPARE(stored(), (QStringList{"b", "a", "old"}));
    // What was cleared here comes not back by the other list.
    history.clear();
    history.add("c");
    QCOMPARE(stored(), (QStringList{"c", "b"}));
  }

  void clearLeavesTheStore() {
    HistoryList history(&_list, "key", HistoryList::Entries::Addresses);
    history.add("a");
    history.clear();
    QCOMPARE(_list.count(), 0);
    QCOMPARE(stored(), QStringList{"a"});
    history.add("");
    QCOMPARE(rows(), QStringList{""});
    QCOMPARE(stored(), QStringList{""});
  }

  void missingFilesAreGrey() {
    QFile file(_folder.filePath("here"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    Settings().setValue("key", QStringList{file.fileName(), "/not/here"});
    HistoryList history(&_list, "key", HistoryList::Entries::Files);
    history.load();
    QTRY_VERIFY(_list.item(1)->foreground() != QBrush());
    QCOMPARE(_list.item(0)->foreground(), QBrush());
  }

 private:
  struct Settings : QSettings {
    Settings() : QSettings("KorviaMix", QString()) {}
  };

  static QStringList stored() { return Settings().value("key").toStringList(); }
  QStringList rows() const {
    QStringList texts;
    for (int row = 0; row < _list.count(); ++row)
      texts.append(_list.item(row)->text());
    return texts;
  }

  const QTemporaryDir _folder;
  QListWidget _list;
};

QTEST_MAIN(HistoryListTest)
#include "tst_history_list.moc"
