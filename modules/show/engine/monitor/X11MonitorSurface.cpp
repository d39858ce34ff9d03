#include "X11MonitorSurface.h"

#include <sys/ipc.h>
#include <sys/shm.h>

#include <QLoggingCategory>
#include <algorithm>
#include <cstdlib>

namespace korvia {

namespace {

Q_LOGGING_CATEGORY(logMonitor, "korvia.monitor")

// The size of a window is taken from the server itself, now and then: with scaled desktops it differs from
// what the console counts in, and a hidden window tells nobody.
constexpr int kLookInterval = 12;
constexpr int kDepth = 24;

template <typename Reply>
using XcbReply = std::unique_ptr<Reply, decltype(&std::free)>;

template <typename Reply>
XcbReply<Reply> ownReply(Reply* reply) {
  return XcbReply<Reply>(reply, &std::free);
}

bool canDraw(xcb_connection_t* connection) {
  const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
  if (!screen || screen->root_depth != kDepth)
    return false;
  const auto version =
      ownReply(xcb_shm_query_version_reply(connection, xcb_shm_query_version(connection), nullptr));
  return version != nullptr;
}

}  // namespace

std::unique_ptr<X11MonitorSurfaceFactory> X11MonitorSurfaceFactory::connect() {
  xcb_connection_t* connection = xcb_connect(nullptr, nullptr);
  if (xcb_connection_has_error(connection) == 0 && canDraw(connection))
    return std::unique_ptr<X11MonitorSurfaceFactory>(new X11MonitorSurfaceFactory(connection));
  qCWarning(logMonitor, "failed to draw into windows directly, monitors go through the console's thread");
  xcb_disconnect(connection);
  return nullptr;
}

X11MonitorSurfaceFactory::~X11MonitorSurfaceFactory() {
  xcb_disconnect(connection_);
}

std::unique_ptr<MonitorSurface> X11MonitorSurfaceFactory::create(const tagKorviaWindowInfo& window) {
  return std::make_unique<X11MonitorSurface>(*this, window);
}

void X11MonitorSurfaceFactory::flush() {
  if (++flushes_ % kLookInterval == 0) {
    lookAtWindows();
    return;
  }
  // Any round trip will do: when the answer is here the server has read the shared pictures.
  ownReply(xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
  dropEvents();
}

void X11MonitorSurfaceFactory::lookAtWindows() {
  struct Question {
    X11MonitorSurface* surface;
    xcb_get_geometry_cookie_t geometry;
    xcb_get_window_attributes_cookie_t attributes;
  };
  std::vector<Question> questions;
  questions.reserve(surfaces_.size());
  for (X11MonitorSurface* surface : surfaces_)
    questions.push_back({surface, xcb_get_geometry(connection_, surface->window_),
                         xcb_get_window_attributes(connection_, surface->window_)});
  for (const Question& question : questions) {
    const auto geometry = ownReply(xcb_get_geometry_reply(connection_, question.geometry, nullptr));
    const auto attributes =
        ownReply(xcb_get_window_attributes_reply(connection_, question.attributes, nullptr));
    question.surface->visible_ = attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE;
    if (geometry)
      question.surface->windowSize_ = {geometry->width, geometry->height};
  }
  dropEvents();
}

// Errors of windows that are gone arrive here too and mean nothing more.
void X11MonitorSurfaceFactory::dropEvents() {
  while (xcb_generic_event_t* event = xcb_poll_for_event(connection_))
    std::free(event);
}

X11MonitorSurface::X11MonitorSurface(X11MonitorSurfaceFactory& factory, const tagKorviaWindowInfo& window)
    : factory_(factory),
      connection_(factory.connection_),
      window_(static_cast<xcb_window_t>(window.winId)),
      context_(xcb_generate_id(connection_)) {
  const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data;
  const std::uint32_t values[] = {screen->black_pixel, 0};
  xcb_create_gc(connection_, context_, window_, XCB_GC_FOREGROUND | XCB_GC_GRAPHICS_EXPOSURES, values);
  factory_.surfaces_.push_back(this);
  resize(window);
}

X11MonitorSurface::~X11MonitorSurface() {
  std::erase(factory_.surfaces_, this);
  dropImage();
  xcb_free_gc(connection_, context_);
}

void X11MonitorSurface::resize(const tagKorviaWindowInfo& window) {
  const auto geometry =
      ownReply(xcb_get_geometry_reply(connection_, xcb_get_geometry(connection_, window_), nullptr));
  windowSize_ = geometry ? FrameSize{geometry->width, geometry->height}
                         : FrameSize{window.right - window.left + 1, window.bottom - window.top + 1};
}

void X11MonitorSurface::dropImage() {
  if (!pixels_)
    return;
  xcb_shm_detach(connection_, segment_);
  shmdt(pixels_);
  pixels_ = nullptr;
  imageSize_ = {};
}

bool X11MonitorSurface::prepareImage(FrameSize size) {
  if (pixels_ && imageSize_ == size)
    return true;
  dropImage();
  const std::size_t bytes = static_cast<std::size_t>(size.width) * size.height * 4;
  const int id = shmget(IPC_PRIVATE, bytes, IPC_CREAT | 0600);
  if (id < 0)
    return false;
  void* memory = shmat(id, nullptr, 0);
  if (memory == reinterpret_cast<void*>(-1)) {
    shmctl(id, IPC_RMID, nullptr);
    return false;
  }
  segment_ = xcb_generate_id(connection_);
  const auto error =
      ownReply(xcb_request_check(connection_, xcb_shm_attach_checked(connection_, segment_, id, 0)));
  // Marked now, the segment goes with its last user, also when the program is killed.
  shmctl(id, IPC_RMID, nullptr);
  if (error) {
    shmdt(memory);
    qCWarning(logMonitor, "failed to share a picture with the display");
    return false;
  }
  pixels_ = static_cast<std::uint8_t*>(memory);
  imageSize_ = size;
  return true;
}

void X11MonitorSurface::fillAround(const MonitorRect& rect) {
  const auto word = [](int value) { return static_cast<std::int16_t>(value); };
  const auto count = [](int value) { return static_cast<std::uint16_t>(std::max(value, 0)); };
  const int right = rect.x + rect.size.width;
  const int bottom = rect.y + rect.size.height;
  const xcb_rectangle_t around[] = {
      {0, 0, count(windowSize_.width), count(rect.y)},
      {0, word(bottom), count(windowSize_.width), count(windowSize_.height - bottom)},
      {0, 0, count(rect.x), count(windowSize_.height)},
      {word(right), 0, count(windowSize_.width - right), count(windowSize_.height)},
  };
  xcb_poly_fill_rectangle(connection_, window_, context_, 4, around);
}

void X11MonitorSurface::show(const Frame& picture) {
  const MonitorRect rect = monitorRect(picture.size(), windowSize_);
  if (!visible_ || rect.size.isEmpty() || !prepareImage(rect.size))
    return;
  scaler_.toRgb(picture, rect.size, pixels_, rect.size.width * 4);
  const auto width = static_cast<std::uint16_t>(rect.size.width);
  const auto height = static_cast<std::uint16_t>(rect.size.height);
  xcb_shm_put_image(connection_, window_, context_, width, height, 0, 0, width, height,
                    static_cast<std::int16_t>(rect.x), static_cast<std::int16_t>(rect.y), kDepth,
                    XCB_IMAGE_FORMAT_Z_PIXMAP, 0, segment_, 0);
  if (rect.size != windowSize_)
    fillAround(rect);
}

}  // namespace korvia
