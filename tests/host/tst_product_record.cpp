#include <QtTest>
#include <cstring>

#include "ProductRecord.h"

class TestProductRecord : public QObject {
  Q_OBJECT

 private slots:
  void hasItsSizeAndTitleInPlace();
  void namesTheProduct();
};

void TestProductRecord::hasItsSizeAndTitleInPlace() {
  const tagKorviaProductInfo product = makeProductRecord();
  std::int32_t first = 0;
  std::memcpy(&first, &product, sizeof first);
  QCOMPARE(first, 4880);
  char16_t title[16] = {};
  std::memcpy(title, reinterpret_cast<const char*>(&product) + 4, sizeof title);
  QCOMPARE(QString::fromUtf16(title, 15), QStringLiteral("Korvia Sarnhawk"));
}

void TestProductRecord::namesTheProduct() {
  const tagKorviaProductInfo product = makeProductRecord();
  QCOMPARE(productText(product.title), QStringLiteral("Korvia Sarnhawk"));
  QVERIFY(!productText(product.description).isEmpty());
  QVERIFY(!productText(product.versionPrefix).isEmpty());
  QVERIFY(!productText(product.linkText).isEmpty());
  QVERIFY(productText(product.linkTarget).startsWith("https://"));
}

QTEST_GUILESS_MAIN(TestProductRecord)
#include "tst_product_record.moc"
