#include "TracedSource.h"

#include "BlackBox.h"

namespace korvia {

void TracedSource::note(const char* call, const QVariantList& args) {
  if (BlackBox::instance().isOpen())
    BlackBox::instance().call(call, target_->getObjectId(), args);
}

void TracedSource::play() {
  note("play");
  target_->play();
}

void TracedSource::stop() {
  note("stop");
  target_->stop();
}

void TracedSource::pause() {
  note("pause");
  target_->pause();
}

void TracedSource::setHold(bool hold) {
  note("setHold", {hold});
  target_->setHold(hold);
}

void TracedSource::prev() {
  note("prev");
  target_->prev();
}

void TracedSource::next() {
  note("next");
  target_->next();
}

void TracedSource::setPosition(qint64 position) {
  note("setPosition", {position});
  target_->setPosition(position);
}

}  // namespace korvia
