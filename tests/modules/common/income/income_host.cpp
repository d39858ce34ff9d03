// Stands for the console in a test that kills it: opens an income server by root path, port and page folder,
// for the income paths that follow, prints its figures as one line of JSON, and waits.
#include <QCoreApplication>
#include <QJsonDocument>
#include <QThread>
#include <cstdio>

#include "CKorviaRTMPIncomeServerHelper.h"
#include "PublishRules.h"
#include "StatusBoard.h"

int main(int argc, char** argv) {
  QCoreApplication app(argc, argv);
  const QStringList arguments = app.arguments();
  CKorviaRTMPIncomeServerHelper helper;
  if (arguments.size() < 4 || !helper.create())
    return 2;
  korvia::PublishRules::instance().setIncomePaths(arguments.mid(4));
  if (helper._interface->open(arguments[1], arguments[2].toInt(), arguments[3]) < 0)
    return 1;
  while (!helper._interface->isRunning())
    QThread::msleep(10);
  const QJsonObject figures = korvia::StatusBoard::instance().snapshot()["incomeServer"].toObject();
  std::puts(QJsonDocument(figures).toJson(QJsonDocument::Compact).constData());
  std::fflush(stdout);
  return QCoreApplication::exec();
}
