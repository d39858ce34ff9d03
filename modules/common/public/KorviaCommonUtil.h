// File, network and device helpers that several subsystems share. All paths go through korvia::DrivePath.
// Stateless, usable from any thread where nothing else is said.
#pragma once
#include <QByteArray>
#include <QFileInfo>
#include <QSizeF>
#include <QString>
#include <utility>
#include <vector>

class KorviaCommonUtil {
 public:
  /// Makes the folder, with its parents when withParents is set. True when the folder exists afterwards.
  static bool makesureExistDir(const QString& path, bool withParents);

  /// Reads a whole regular file. False, with content cleared, for a missing or unreadable file, for anything
  /// that is no regular file, and for more than 64 MiB.
  static bool readFileContent(const QString& path, QByteArray& content);

  /// Appends the regular files of a folder that match one of the patterns ("*.avi;*.mp4"; case does not
  /// matter), sorted by name. Hidden files and files of folders below are listed only when asked for.
  static void collectFileListInExt(const QString& folder, const QString& filter, QFileInfoList& files,
                                   bool withSubFolders, bool withHidden);

  /// The address under which the servers of this machine are reached: "127.0.0.1" unless the ingest server
  /// listens elsewhere.
  static QString getIp();

  /// The numbers before and after the first separator, whose case does not matter. Each lies in 0 to 10^9.
  /// Blanks around a number are allowed; anything else that is no number gives 0, and so do both for a text
  /// without the separator.
  static QSizeF splitePairValue(const QString& text, const QString& separator);

  /// Appends name and identifier of each camera and capture card, or of each sound input. The identifier
  /// stays the same when the device is plugged in again. False, with nothing appended, when the system does
  /// not answer within two seconds.
  static bool enumDShowDeviceList(bool isVideo, std::vector<std::pair<QString, QString>>& devices);

  /// Opens a window with the controls of a camera. False when there is no such camera or it has no controls.
  /// Sound inputs have none. Console thread.
  static bool showDShowDeviceSettingPage(bool isVideo, const QString& name, const QString& id);
};
