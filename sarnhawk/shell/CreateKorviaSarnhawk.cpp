#include <new>

#include "MainFrame.h"

namespace {

// Not const, because hosts catch a plain wchar_t*.
wchar_t failedToCreate[] = L"failed to create module";
wchar_t failedToQuery[] = L"failed to query interface";

}  // namespace

/// The only export of the library. The host owns the frame and ends it with close() and release(). Throws a
/// wchar_t* when there is no such interface. The frame is not deleted then, because the host has to end
/// anyway.
extern "C" Q_DECL_EXPORT void* CreateKorviaSarnhawk(const Identifier* id, unsigned version) {
  IMainFrame* frame = new (std::nothrow) MainFrame;
  if (!frame)
    throw static_cast<wchar_t*>(failedToCreate);
  void* wanted = frame->queryInterface(id, version);
  if (!wanted)
    throw static_cast<wchar_t*>(failedToQuery);
  return wanted;
}
