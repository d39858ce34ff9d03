#include "RetryingWriter.h"

#include <QRandomGenerator>
#include <algorithm>
#include <cmath>
#include <utility>

#include "ServerProbe.h"
#include "engine/EngineLog.h"

namespace korvia {

RetryingWriter::RetryingWriter(RetrySettings settings, MakeWriter make)
    : settings_(std::move(settings)), make_(std::move(make)), probe_(settings_.probe) {}

bool RetryingWriter::open(Wake wake) {
  wake_ = std::move(wake);
  return makeWriter();
}

bool RetryingWriter::makeWriter() {
  writer_ = make_();
  originNs_.reset();
  sinceUp_.invalidate();
  if (writer_->open(wake_))
    return true;
  reason_ = writer_->failure();
  return false;
}

void RetryingWriter::write(const Packet& packet) {
  if (!writer_) {
    isTryOfProbe_ = !retry_.hasExpired();
    if (isTryOfProbe_ && !(probe_ && probe_->hasReturned()))
      return;
    if (probe_)
      probe_->hangUp();
    if (!makeWriter()) {
      lose(reason_);
      return;
    }
    keyWanted_ = true;
  }
  if (!originNs_) {
    if (!packet.keyFrame)
      return;
    originNs_ = packet.ptsNs;
  }
  Packet own = packet;
  own.ptsNs -= *originNs_;
  own.dtsNs -= *originNs_;
  if (own.ptsNs >= 0) {
    writer_->write(own);
    framesPassed_ += own.isPicture() ? 1 : 0;
  }
  sinceRoom_.start();
  watch();
}

void RetryingWriter::watch() {
  if (!writer_ || !originNs_)
    return;
  if (isUp() && !sinceUp_.isValid()) {
    sinceUp_.start();
    probe_ = settings_.probe;
    lost_ = false;
    loggedReason_.clear();
    qCInfo(logOutput, "%s is up", qPrintable(settings_.label));
  }
  if (writer_->progress() == Progress::Failed)
    lose(writer_->failure());
  else if (writer_->progress() == Progress::Ended && !ending_)
    lose(QStringLiteral("the connection was closed"));
  else if (!writer_->hasRoom() && sinceRoom_.hasExpired(settings_.stallMs))
    lose(isUp() ? QStringLiteral("the server takes no data") : QStringLiteral("the server does not answer"));
}

void RetryingWriter::lose(const QString& reason) {
  if (sinceUp_.isValid() && sinceUp_.hasExpired(settings_.steadyMs))
    tries_ = 0;
  if (isTryOfProbe_ && !isUp())
    probe_.reset();
  if (probe_)
    probe_->restart();
  lostBytes_ += writer_->bytesWritten();
  writer_->close({true, reason, 0, 0});
  writer_.reset();
  sinceUp_.invalidate();
  lost_ = true;
  reason_ = reason;

  const double longest = std::min(settings_.firstMs * std::pow(settings_.growth, tries_),
                                  static_cast<double>(settings_.longestMs));
  const double part = 0.75 + 0.25 * QRandomGenerator::global()->generateDouble();
  retry_.setRemainingTime(std::llround(longest * part));
  if (longest < settings_.longestMs)
    ++tries_;
  if (std::exchange(loggedReason_, reason) == reason)
    qCDebug(logOutput, "%s is still lost, next try in %lld ms", qPrintable(settings_.label),
            static_cast<long long>(retry_.remainingTime()));
  else
    qCWarning(logOutput, "%s is lost : %s", qPrintable(settings_.label), qPrintable(reason));
}

bool RetryingWriter::mayGoOn() {
  if (writer_ && originNs_ && !writer_->mayGoOn())
    lose(writer_->failure());
  watch();
  return true;
}

void RetryingWriter::end() {
  ending_ = true;
  if (isUp())
    writer_->end();
}

TargetWriter::Progress RetryingWriter::progress() const {
  // Nothing is left to be sent where nothing is taken.
  if (ending_ && (!isUp() || writer_->progress() != Progress::Open))
    return Progress::Ended;
  return Progress::Open;
}

qint64 RetryingWriter::bytesWritten() const {
  return lostBytes_ + (writer_ ? writer_->bytesWritten() : 0);
}

TargetLink RetryingWriter::link() const {
  if (isUp())
    return {TargetLink::State::Up, {}, 0};
  if (!lost_)
    return {};
  const qint64 untilRetry = writer_ ? 0 : std::max<qint64>(0, retry_.remainingTime());
  return {TargetLink::State::Lost, reason_, static_cast<int>(untilRetry)};
}

bool RetryingWriter::takeKeyRequest() {
  const bool own = std::exchange(keyWanted_, false);
  return (writer_ && writer_->takeKeyRequest()) || own;
}

void RetryingWriter::close(const TargetOutcome& outcome) {
  if (writer_) {
    lostBytes_ += writer_->bytesWritten();
    writer_->close(outcome);
  }
  writer_.reset();
  if (outcome.failed)
    qCWarning(logOutput, "%s failed : %s", qPrintable(settings_.label), qPrintable(outcome.reason));
  else
    qCInfo(logOutput, "%s closed : %lld frames", qPrintable(settings_.label),
           static_cast<long long>(framesPassed_));
}

}  // namespace korvia
