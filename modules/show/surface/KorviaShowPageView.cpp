#include "KorviaShowPageView.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QUrl>
#include <QWheelEvent>
#include <algorithm>
#include <iterator>
#include <utility>

#include "CaptureProcess.h"
#include "CaptureShelf.h"
#include "ThreadSafety.h"

namespace {

constexpr qint64 kMostMemoryBytes = 1536LL * 1024 * 1024;
// While the window is dragged larger the page is not laid out anew at each step.
constexpr int kResizeMs = 100;

struct KeyName {
  int key;
  const char* name;
};

// The names that X gives the keys without a letter.
constexpr KeyName kKeyNames[] = {
    {Qt::Key_Return, "Return"},
    {Qt::Key_Enter, "KP_Enter"},
    {Qt::Key_Tab, "Tab"},
    {Qt::Key_Backtab, "Tab"},
    {Qt::Key_Backspace, "BackSpace"},
    {Qt::Key_Delete, "Delete"},
    {Qt::Key_Insert, "Insert"},
    {Qt::Key_Escape, "Escape"},
    {Qt::Key_Left, "Left"},
    {Qt::Key_Right, "Right"},
    {Qt::Key_Up, "Up"},
    {Qt::Key_Down, "Down"},
    {Qt::Key_Home, "Home"},
    {Qt::Key_End, "End"},
    {Qt::Key_PageUp, "Page_Up"},
    {Qt::Key_PageDown, "Page_Down"},
    {Qt::Key_Shift, "Shift_L"},
    {Qt::Key_Control, "Control_L"},
    {Qt::Key_Alt, "Alt_L"},
    {Qt::Key_F5, "F5"},
    {Qt::Key_Space, "space"},
};

/// Empty for a key that no page gets.
QString nameOf(const QKeyEvent* event) {
  const auto* found = std::find_if(std::begin(kKeyNames), std::end(kKeyNames),
                                   [event](const KeyName& entry) { return entry.key == event->key(); });
  if (found != std::end(kKeyNames))
    return QString::fromLatin1(found->name);
  const QVector<uint> letters = event->text().toUcs4();
  if (letters.size() != 1 || !QChar::isPrint(letters[0]))
    return {};
  const QChar letter(static_cast<ushort>(letters[0] < 0x80 ? letters[0] : 0));
  return letter.isLetterOrNumber() ? QString(letter)
                                   : QStringLiteral("U%1").arg(letters[0], 4, 16, QLatin1Char('0')).toUpper();
}

int buttonOf(Qt::MouseButton button) {
  return button == Qt::LeftButton ? 1 : button == Qt::MiddleButton ? 2 : button == Qt::RightButton ? 3 : 0;
}

}  // namespace

/// A run of the capture program for the view, which may be gone before it.
class KorviaShowPageView::Session final : public korvia::CaptureListener,
                                          public std::enable_shared_from_this<Session> {
 public:
  explicit Session(KorviaShowPageView* view)
      : view_(view), process_(std::make_unique<korvia::CaptureProcess>(*this)) {}
  ~Session() override {
    if (process_)
      process_->setListener(nullptr);
    korvia::CaptureShelf::instance().end(std::move(process_));
  }

  korvia::CaptureProcess& process() { return *process_; }
  bool start(const korvia::CaptureRequest& request, QString& reason) {
    request_ = request;
    return process_->start(request, reason);
  }
  void load(const QString& address) {
    request_.address = address;
    process_->load(address);
  }
  /// For the next source of this page. The session is of no use after that.
  void handOver() {
    process_->setListener(nullptr);
    korvia::CaptureShelf::instance().offer(std::move(process_), request_);
  }
  QImage takePicture() EXCLUDES(mutex_) {
    korvia::MutexLock lock(mutex_);
    return std::exchange(picture_, QImage());
  }

  void onCapturePicture(const korvia::CapturePicture& picture) override {
    const QImage::Format format = picture.layout == korvia::CaptureLayout::Opaque
                                      ? QImage::Format_RGB32
                                      : QImage::Format_ARGB32_Premultiplied;
    QImage copy = QImage(picture.data, picture.width, picture.height, picture.stride, format).copy();
    bool isFirst = false;
    {
      korvia::MutexLock lock(mutex_);
      isFirst = picture_.isNull();
      picture_ = std::move(copy);
    }
    // One call at a time, so that a busy desk gets the newest picture and no backlog.
    if (isFirst)
      tell([](KorviaShowPageView* view) { view->takePicture(); });
  }
  void onCaptureSound(const float*, int, std::int64_t) override {}
  void onCaptureEnded(const QString& reason) override {
    tell([reason](KorviaShowPageView* view) { view->showEnd(reason); });
  }

 private:
  /// `view_` ends this session before it goes, so the object is there, and what is queued goes with it.
  template <typename Call>
  void tell(Call call) {
    QMetaObject::invokeMethod(
        view_,
        [view = view_, call, self = weak_from_this()] {
          if (const auto session = self.lock(); session && view->session_ == session)
            call(view);
        },
        Qt::QueuedConnection);
  }

  KorviaShowPageView* const view_;
  korvia::Mutex mutex_;
  QImage picture_ GUARDED_BY(mutex_);
  korvia::CaptureRequest request_;  // console thread, as the one below
  std::unique_ptr<korvia::CaptureProcess> process_;
};

KorviaShowPageView::KorviaShowPageView(QWidget* parent) : QWidget(parent) {
  setFocusPolicy(Qt::StrongFocus);
  setMouseTracking(true);
  resized_.setSingleShot(true);
  resized_.setInterval(kResizeMs);
  connect(&resized_, &QTimer::timeout, this, [this] {
    if (session_)
      session_->process().resize(pageSize().width(), pageSize().height());
  });
}

KorviaShowPageView::~KorviaShowPageView() = default;

void KorviaShowPageView::load(const QString& address) {
  const bool isLocal = QUrl(address).isLocalFile() || QUrl(address_).isLocalFile();
  address_ = address;
  // The program may read files of one folder only, which is fixed when it starts.
  if (session_ && !isLocal)
    session_->load(address);
  else
    restart();
}

void KorviaShowPageView::setFrameRate(qint32 numerator, qint32 denominator) {
  rateNumerator_ = std::max(1, numerator);
  rateDenominator_ = std::max(1, denominator);
}

void KorviaShowPageView::handOver() {
  if (!session_)
    return;
  session_->handOver();
  session_.reset();
  picture_ = QImage();
  update();
}

QSize KorviaShowPageView::pageSize() const {
  return {std::clamp(width() / 2 * 2, 2, korvia::kPageSideMax),
          std::clamp(height() / 2 * 2, 2, korvia::kPageSideMax)};
}

void KorviaShowPageView::restart() {
  session_.reset();
  picture_ = QImage();
  message_ = tr("Loading ...");
  update();
  korvia::CaptureRequest request;
  request.kind = korvia::CaptureKind::Page;
  request.address = address_;
  request.width = pageSize().width();
  request.height = pageSize().height();
  request.rateNumerator = rateNumerator_;
  request.rateDenominator = rateDenominator_;
  request.mostMemoryBytes = kMostMemoryBytes;
  session_ = std::make_shared<Session>(this);
  QString reason;
  if (!session_->start(request, reason))
    showEnd(reason);
}

void KorviaShowPageView::takePicture() {
  picture_ = session_->takePicture();
  message_.clear();
  update();
}

void KorviaShowPageView::showEnd(const QString& reason) {
  session_.reset();
  picture_ = QImage();
  message_ = tr("This page cannot be shown: %1").arg(reason);
  update();
}

void KorviaShowPageView::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  if (!picture_.isNull()) {
    painter.drawImage(0, 0, picture_);
    return;
  }
  // The widget is larger than what is seen of it.
  painter.drawText(visibleRegion().boundingRect(), Qt::AlignCenter | Qt::TextWordWrap, message_);
}

void KorviaShowPageView::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  resized_.start();
}

void KorviaShowPageView::mousePressEvent(QMouseEvent* event) {
  setFocus();
  if (session_ && buttonOf(event->button()) != 0)
    session_->process().sendMouseButton(event->x(), event->y(), buttonOf(event->button()),
                                        korvia::CaptureProcess::Press::Down);
}

void KorviaShowPageView::mouseReleaseEvent(QMouseEvent* event) {
  if (session_ && buttonOf(event->button()) != 0)
    session_->process().sendMouseButton(event->x(), event->y(), buttonOf(event->button()),
                                        korvia::CaptureProcess::Press::Up);
}

void KorviaShowPageView::mouseMoveEvent(QMouseEvent* event) {
  if (session_)
    session_->process().sendMouseMove(event->x(), event->y());
}

void KorviaShowPageView::wheelEvent(QWheelEvent* event) {
  // The page scrolls, and not the area that the view lies in.
  event->accept();
  if (session_)
    session_->process().sendWheel(event->position().x(), event->position().y(), event->angleDelta().x(),
                                  event->angleDelta().y());
}

void KorviaShowPageView::keyPressEvent(QKeyEvent* event) {
  const QString name = nameOf(event);
  if (session_ && !name.isEmpty())
    session_->process().sendKey(name, korvia::CaptureProcess::Press::Down);
  else
    QWidget::keyPressEvent(event);
}

void KorviaShowPageView::keyReleaseEvent(QKeyEvent* event) {
  const QString name = nameOf(event);
  if (session_ && !name.isEmpty())
    session_->process().sendKey(name, korvia::CaptureProcess::Press::Up);
  else
    QWidget::keyReleaseEvent(event);
}
