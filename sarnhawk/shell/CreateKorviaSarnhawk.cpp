#include <new>

#include "MainFrame.h"

namespace {

// Not const: what hosts catch is a plain wchar_t*.
wchar_t failedToCreate[] = L"failed to create module";
wchar_t failedToQuery[] = L"failed to query interface";

}  // namespace

/// The library's one export. The frame belongs to the host, which ends it with close() and release().
/// Throws a wchar_t* when there is no such interface; the frame stays, since a host without an interface
/// has no more use for the process.
extern "C" Q_DECL_EXPORT void* CreateKorviaSarnhawk(const Identifier* id, unsigned version) {
  IMainFrame* frame = new (std::nothrow) MainFrame;
  if (!frame)
    throw static_cast<wchar_t*>(failedToCreate);
  void* wanted = frame->queryInterface(id, version);
  if (!wanted)
    throw static_cast<wchar_t*>(failedToQuery);
  return wanted;
}
