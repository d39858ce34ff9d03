#include "X11MonitorSurface.h"

#include <sys/ipc.h>
#include <sys/shm.h>

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "engine/EngineLog.h"

namespace korvia {

namespace {

// Flushes between two queries of the window sizes. They come from the server, because with scaled desktops
// they differ from the logical sizes of the console, and a hidden window sends no event.
constexpr int kQueryInterval = 12;
constexpr int kDepth = 24;

template <typename Reply>
using XcbReply = std::unique_ptr<Reply, decltype(&std::free)>;

template <typename Reply>
XcbReply<Reply> ownReply(Reply* reply) {
  return XcbReply<Reply>(reply, &std::free);
}

bool canDraw(xcb_connection_t* connection) {
  const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
  return screen && screen->root_depth == kDepth;
}

/// Makes a segment of shared memory and lets the display attach it as `segment`; null when that fails.
void* shareWith(xcb_connection_t* connection, xcb_shm_seg_t segment, std::size_t bytes) {
  const int id = shmget(IPC_PRIVATE, bytes, IPC_CREAT | 0600);
  if (id < 0)
    return nullptr;
  void* memory = shmat(id, nullptr, 0);
  const bool attached =
      memory != reinterpret_cast<void*>(-1) &&
      !ownReply(xcb_request_check(connection, xcb_shm_attach_checked(connection, segment, id, 0)));
  // Marked for removal now, the segment is freed with its last user, also when the program is killed.
  shmctl(id, IPC_RMID, nullptr);
  if (attached)
    return memory;
  if (memory != reinterpret_cast<void*>(-1))
    shmdt(memory);
  return nullptr;
}

bool canShareMemory(xcb_connection_t* connection) {
  const xcb_query_extension_reply_t* extension = xcb_get_extension_data(connection, &xcb_shm_id);
  if (!extension || !extension->present)
    return false;
  constexpr std::size_t kProbeBytes = 4096;
  const xcb_shm_seg_t segment = xcb_generate_id(connection);
  void* memory = shareWith(connection, segment, kProbeBytes);
  if (!memory)
    return false;
  xcb_shm_detach(connection, segment);
  shmdt(memory);
  return true;
}

}  // namespace

std::unique_ptr<X11MonitorSurfaceFactory> X11MonitorSurfaceFactory::connect() {
  xcb_connection_t* connection = xcb_connect(nullptr, nullptr);
  if (xcb_connection_has_error(connection) == 0 && canDraw(connection)) {
    const bool sharesMemory = canShareMemory(connection);
    if (!sharesMemory)
      qCInfo(logMonitor, "the display attaches no shared memory, pictures go through the connection");
    return std::unique_ptr<X11MonitorSurfaceFactory>(new X11MonitorSurfaceFactory(connection, sharesMemory));
  }
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
  if (++flushes_ % kQueryInterval == 0) {
    queryWindows();
    return;
  }
  // Any round trip does: when the reply is here, the server has read the shared pictures.
  if (std::exchange(drawn_, false))
    ownReply(xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
  handleEvents();
}

void X11MonitorSurfaceFactory::queryWindows() {
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
    X11MonitorSurface& surface = *question.surface;
    const bool visible = attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE;
    const FrameSize size = geometry ? FrameSize{geometry->width, geometry->height} : surface.windowSize_;
    if (visible != surface.visible_ || size != surface.windowSize_)
      surface.lost_ = true;
    surface.visible_ = visible;
    surface.windowSize_ = size;
  }
  drawn_ = false;
  handleEvents();
}

// Errors about windows that no longer exist arrive here too and are ignored.
void X11MonitorSurfaceFactory::handleEvents() {
  constexpr int kSentBit = 0x80;
  while (const auto event = ownReply(xcb_poll_for_event(connection_))) {
    if ((event->response_type & ~kSentBit) != XCB_EXPOSE)
      continue;
    const xcb_window_t window = reinterpret_cast<const xcb_expose_event_t*>(event.get())->window;
    for (X11MonitorSurface* surface : surfaces_)
      surface->lost_ = surface->lost_ || surface->window_ == window;
  }
}

X11MonitorSurface::X11MonitorSurface(X11MonitorSurfaceFactory& factory, const tagKorviaWindowInfo& window)
    : factory_(factory),
      connection_(factory.connection_),
      window_(static_cast<xcb_window_t>(window.winId)),
      context_(xcb_generate_id(connection_)) {
  const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data;
  const std::uint32_t values[] = {screen->black_pixel, 0};
  xcb_create_gc(connection_, context_, window_, XCB_GC_FOREGROUND | XCB_GC_GRAPHICS_EXPOSURES, values);
  // The server does not keep covered windows, so an expose event tells that a picture was lost.
  const std::uint32_t events = XCB_EVENT_MASK_EXPOSURE;
  xcb_change_window_attributes(connection_, window_, XCB_CW_EVENT_MASK, &events);
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
  lost_ = true;
}

void X11MonitorSurface::dropImage() {
  if (segment_ != 0) {
    xcb_shm_detach(connection_, segment_);
    shmdt(pixels_);
  }
  segment_ = 0;
  pixels_ = nullptr;
  imageSize_ = {};
}

void X11MonitorSurface::prepareImage(FrameSize size) {
  if (pixels_ && imageSize_ == size)
    return;
  dropImage();
  const std::size_t bytes = static_cast<std::size_t>(size.width) * size.height * 4;
  if (!factory_.sharesMemory_ || !shareImage(bytes)) {
    ownPixels_.resize(bytes);
    pixels_ = ownPixels_.data();
  }
  imageSize_ = size;
}

bool X11MonitorSurface::shareImage(std::size_t bytes) {
  const xcb_shm_seg_t segment = xcb_generate_id(connection_);
  void* memory = shareWith(connection_, segment, bytes);
  if (!memory)
    return false;
  segment_ = segment;
  pixels_ = static_cast<std::uint8_t*>(memory);
  return true;
}

void X11MonitorSurface::putImage(const MonitorRect& rect) {
  const auto word = [](int value) { return static_cast<std::int16_t>(value); };
  const auto count = [](int value) { return static_cast<std::uint16_t>(value); };
  const FrameSize size = rect.size;
  if (segment_ != 0) {
    xcb_shm_put_image(connection_, window_, context_, count(size.width), count(size.height), 0, 0,
                      count(size.width), count(size.height), word(rect.x), word(rect.y), kDepth,
                      XCB_IMAGE_FORMAT_Z_PIXMAP, 0, segment_, 0);
    return;
  }
  // The length of a request is limited, in words of four bytes, so the picture is sent in bands of rows.
  const int rowBytes = size.width * 4;
  const std::int64_t room = std::int64_t{xcb_get_maximum_request_length(connection_)} * 4 -
                            static_cast<std::int64_t>(sizeof(xcb_put_image_request_t)) - 4;
  const int band = static_cast<int>(std::clamp<std::int64_t>(room / rowBytes, 1, size.height));
  for (int y = 0; y < size.height; y += band) {
    const int rows = std::min(band, size.height - y);
    xcb_put_image(connection_, XCB_IMAGE_FORMAT_Z_PIXMAP, window_, context_, count(size.width), count(rows),
                  word(rect.x), word(rect.y + y), 0, kDepth, static_cast<std::uint32_t>(rows * rowBytes),
                  pixels_ + static_cast<std::ptrdiff_t>(y) * rowBytes);
  }
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

void X11MonitorSurface::show(const Frame& picture, const MonitorGuides& guides) {
  const MonitorRect rect = monitorRect(picture.size(), windowSize_);
  if (!visible_ || rect.size.isEmpty())
    return;
  prepareImage(rect.size);
  scaler_.toRgb(picture, rect.size, pixels_, rect.size.width * 4);
  drawGuides(guides, rect.size, pixels_, rect.size.width * 4);
  putImage(rect);
  factory_.drawn_ = true;
  lost_ = false;
  if (rect.size != windowSize_)
    fillAround(rect);
}

}  // namespace korvia
