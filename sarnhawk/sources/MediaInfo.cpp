#include "sources/MediaInfo.h"

#include <dlfcn.h>

#include <QDebug>
#include <QFileInfo>

#include "DrivePath.h"
#include "tagKorviaFormatInfo.h"

namespace {

constexpr int kInfoText = 1;
constexpr int kSearchName = 0;
constexpr auto kAllStreams = static_cast<std::size_t>(-1);

constexpr const char* kEntryPoints[] = {"MediaInfo_New",
                                        "MediaInfoList_New",
                                        "MediaInfo_Delete",
                                        "MediaInfoList_Delete",
                                        "MediaInfo_Open",
                                        "MediaInfoList_Open",
                                        "MediaInfo_Open_Buffer_Init",
                                        "MediaInfo_Open_Buffer_Continue",
                                        "MediaInfo_Open_Buffer_Continue_GoTo_Get",
                                        "MediaInfo_Open_Buffer_Finalize",
                                        "MediaInfo_Open_NextPacket",
                                        "MediaInfo_Close",
                                        "MediaInfoList_Close",
                                        "MediaInfo_Inform",
                                        "MediaInfoList_Inform",
                                        "MediaInfo_GetI",
                                        "MediaInfoList_GetI",
                                        "MediaInfo_Get",
                                        "MediaInfoList_Get",
                                        "MediaInfo_Output_Buffer_Get",
                                        "MediaInfo_Output_Buffer_GetI",
                                        "MediaInfo_Option",
                                        "MediaInfoList_Option",
                                        "MediaInfo_State_Get",
                                        "MediaInfoList_State_Get",
                                        "MediaInfo_Count_Get",
                                        "MediaInfoList_Count_Get",
                                        "MediaInfoList_Count_Get_Files"};

/// The library in use. Its texts are of wchar_t, which holds UTF-32 here.
struct Library {
  const char* fileName = "libmediainfo.so.0";
  void* handle = nullptr;
  int uses = 0;
  void* (*create)() = nullptr;
  void (*destroy)(void*) = nullptr;
  std::size_t (*open)(void*, const wchar_t*) = nullptr;
  std::size_t (*count)(void*, int, std::size_t) = nullptr;
  const wchar_t* (*get)(void*, int, std::size_t, const wchar_t*, int, int) = nullptr;

  template <class Function>
  void resolve(Function& function, const char* name) {
    function = reinterpret_cast<Function>(dlsym(handle, name));
  }

  bool load() {
    if (!handle) {
      handle = dlopen(fileName, RTLD_NOW | RTLD_LOCAL);
      if (!handle) {
        qDebug("failed to load media info : %s", dlerror());
        return false;
      }
      for (const char* name : kEntryPoints) {
        if (dlsym(handle, name))
          continue;
        qDebug("failed to load media info : %s is missing", name);
        unload();
        return false;
      }
      resolve(create, "MediaInfo_New");
      resolve(destroy, "MediaInfo_Delete");
      resolve(open, "MediaInfo_Open");
      resolve(count, "MediaInfo_Count_Get");
      resolve(get, "MediaInfo_Get");
    }
    ++uses;
    return true;
  }

  void unload() {
    if (handle)
      dlclose(handle);
    handle = nullptr;
  }
};

Library& library() {
  static Library loaded;
  return loaded;
}

QString firstOf(const MediaInfo& info, MediaInfo::Stream kind, std::size_t stream, const wchar_t* parameter,
                const wchar_t* otherwise) {
  const QString text = info.text(kind, stream, parameter);
  return text.isEmpty() ? info.text(kind, stream, otherwise) : text;
}

}  // namespace

bool mediaInfoLoad() {
  return library().load();
}

bool readMediaSize(const QString& path, tagKorviaFormatInfo& format) {
  const MediaInfo info(path);
  for (const MediaInfo::Stream kind : {MediaInfo::Stream::Video, MediaInfo::Stream::Image}) {
    for (std::size_t stream = 0; stream < info.count(kind); ++stream) {
      const QString width = firstOf(info, kind, stream, L"Width_Original", L"Width");
      const QString height = firstOf(info, kind, stream, L"Height_Original", L"Height");
      if (width.isEmpty() || height.isEmpty())
        continue;
      format.video.secondWidth = width.toInt();
      format.video.secondHeight = height.toInt();
      return true;
    }
  }
  return false;
}

MediaInfo::MediaInfo(const QString& path) {
  const QString file = korvia::DrivePath::resolve(path);
  // The kind is checked first, because opening a FIFO would wait for its writer.
  if (!QFileInfo(file).isFile() || !mediaInfoLoad())
    return;
  _handle = library().create();
  if (_handle)
    library().open(_handle, file.toStdWString().c_str());
}

MediaInfo::~MediaInfo() {
  if (_handle)
    library().destroy(_handle);
}

std::size_t MediaInfo::count(Stream kind) const {
  return _handle ? library().count(_handle, static_cast<int>(kind), kAllStreams) : 0;
}

QString MediaInfo::text(Stream kind, std::size_t stream, const wchar_t* parameter) const {
  const wchar_t* text =
      _handle ? library().get(_handle, static_cast<int>(kind), stream, parameter, kInfoText, kSearchName)
              : nullptr;
  return text ? QString::fromWCharArray(text) : QString();
}

void MediaInfo::setLibrary(const char* fileName) {
  library().unload();
  library().fileName = fileName;
}
