// Answers the requests of the web server: the operator's page, the state of the show, pictures, events,
// commands and the segments of a stream. Server threads, except serveSegments().
#pragma once
#include <QByteArray>
#include <QElapsedTimer>
#include <QString>
#include <map>

#include "ConnectionTable.h"
#include "RequestCheck.h"
#include "ThreadSafety.h"

namespace korvia {

class WebRequest;

class RequestRouter {
 public:
  /// `connections` must outlive the router.
  RequestRouter(WebReach reach, ConnectionTable& connections);

  /// As IKorviaWebServer. Any thread.
  void serveSegments(const QString& path, const QString& folder) EXCLUDES(mutex_);

  /// Answers a request, of whose body `uploadSize` bytes are here now. Called again while the body comes, and
  /// after the request has slept.
  int answer(WebRequest& request, const char* url, const char* method, std::size_t* uploadSize);

 private:
  struct Asset {
    QByteArray body;
    const char* contentType;
  };
  struct Segments {
    QString path;    // with one slash in front and none at its end
    QString folder;  // of this machine; empty when there is none
  };
  using Answer = int (RequestRouter::*)(WebRequest&);

  int read(WebRequest& request, const QByteArray& path);
  int post(WebRequest& request, const QByteArray& path, std::size_t* uploadSize);
  int sendStatus(WebRequest& request);
  int sendMetrics(WebRequest& request);
  int sendLog(WebRequest& request);
  int sendEvents(WebRequest& request);
  int sendProgram(WebRequest& request);
  int sendChannels(WebRequest& request);
  int sendPicture(WebRequest& request, class PictureBoard& board);
  QJsonObject status() const;
  /// The file of the segments under a path; -1 for anything else. The caller closes it.
  int openSegment(const QString& path) const EXCLUDES(mutex_);
  static Answer pageOf(const QByteArray& path);

  const WebReach reach_;
  ConnectionTable& connections_;
  QElapsedTimer uptime_;
  std::map<QByteArray, Asset> assets_;  // by path
  mutable Mutex mutex_;
  Segments segments_ GUARDED_BY(mutex_);
};

}  // namespace korvia
