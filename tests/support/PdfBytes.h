// Small PDF documents with pages whose drawing operators are given. Pure function.
#pragma once
#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QSize>
#include <QVector>

namespace korvia::test {

enum class PdfLock { Open, Password };

/// A document with a page of `points` for each entry, drawn by the operators in it. With a password, of which
/// nobody knows what it is.
inline QByteArray pdfBytes(const QVector<QByteArray>& pages, QSize points, PdfLock lock = PdfLock::Open) {
  constexpr int kFirstPage = 4;
  QByteArray kids;
  for (int i = 0; i < pages.size(); ++i)
    kids += QByteArray::number(kFirstPage + 2 * i) + " 0 R ";
  QVector<QByteArray> objects{
      "<</Type/Catalog/Pages 2 0 R>>",
      "<</Type/Pages/Kids[" + kids + "]/Count " + QByteArray::number(pages.size()) + ">>",
      "<</Filter/Standard/V 1/R 2/P -4/O<" + QByteArray(64, '1') + ">/U<" + QByteArray(64, '2') + ">>>"};
  const QByteArray box =
      "[0 0 " + QByteArray::number(points.width()) + " " + QByteArray::number(points.height()) + "]";
  for (int i = 0; i < pages.size(); ++i) {
    objects += "<</Type/Page/Parent 2 0 R/MediaBox" + box + "/Contents " +
               QByteArray::number(kFirstPage + 2 * i + 1) + " 0 R>>";
    objects += "<</Length " + QByteArray::number(pages[i].size()) + ">>stream\n" + pages[i] + "\nendstream";
  }
  QByteArray file = "%PDF-1.4\n";
  QByteArray table = "0000000000 65535 f \n";
  for (int i = 0; i < objects.size(); ++i) {
    table += QByteArray::number(file.size()).rightJustified(10, '0') + " 00000 n \n";
    file += QByteArray::number(i + 1) + " 0 obj" + objects[i] + "endobj\n";
  }
  const QByteArray count = QByteArray::number(objects.size() + 1);
  const QByteArray start = QByteArray::number(file.size());
  file += "xref\n0 " + count + "\n" + table + "trailer<</Size " + count + "/Root 1 0 R/ID[<00><00>]";
  if (lock == PdfLock::Password)
    file += "/Encrypt 3 0 R";
  return file + ">>\nstartxref\n" + start + "\n%%EOF\n";
}

/// Operators that fill the page with a grey from 0 to 1.
inline QByteArray pdfGrey(double grey) {
  return QByteArray::number(grey) + " g 0 0 2000 2000 re f";
}

/// Operators that take minutes.
inline QByteArray pdfSlow() {
  return QByteArray("0 0 2000 2000 re 1 1 1999 1999 re f*\n").repeated(100'000);
}

/// Whether no drawing runs any more that was left behind. Poppler's own data go when the process ends, and a
/// drawing must not use them then.
inline bool noDrawingIsLeft() {
  const QDir tasks(QStringLiteral("/proc/self/task"));
  for (const QString& task : tasks.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
    QFile name(tasks.filePath(task + QStringLiteral("/comm")));
    if (name.open(QIODevice::ReadOnly) && name.readAll().startsWith("kv-source"))
      return false;
  }
  return true;
}

}  // namespace korvia::test
