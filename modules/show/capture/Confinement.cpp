#include "Confinement.h"

#include <fcntl.h>
#include <linux/landlock.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <QFile>
#include <QFileInfo>

#include "link/FileDescriptor.h"

namespace korvia {

namespace {

constexpr quint64 kReadFile = LANDLOCK_ACCESS_FS_READ_FILE | LANDLOCK_ACCESS_FS_EXECUTE;
constexpr quint64 kRead = kReadFile | LANDLOCK_ACCESS_FS_READ_DIR;
// The rights of the first version of Landlock, which all later ones know.
constexpr quint64 kAll = kRead | LANDLOCK_ACCESS_FS_WRITE_FILE | LANDLOCK_ACCESS_FS_REMOVE_DIR |
                         LANDLOCK_ACCESS_FS_REMOVE_FILE | LANDLOCK_ACCESS_FS_MAKE_CHAR |
                         LANDLOCK_ACCESS_FS_MAKE_DIR | LANDLOCK_ACCESS_FS_MAKE_REG |
                         LANDLOCK_ACCESS_FS_MAKE_SOCK | LANDLOCK_ACCESS_FS_MAKE_FIFO |
                         LANDLOCK_ACCESS_FS_MAKE_BLOCK | LANDLOCK_ACCESS_FS_MAKE_SYM;
constexpr quint64 kUseDevice = kReadFile | LANDLOCK_ACCESS_FS_READ_DIR | LANDLOCK_ACCESS_FS_WRITE_FILE;

struct FolderRights {
  const char* path;
  quint64 rights;
};

// Programs and libraries, settings of the system with the names of hosts, fonts, and the devices that a
// process needs.
constexpr FolderRights kSystemFolders[] = {
    {"/usr", kRead},
    {"/lib", kRead},
    {"/lib32", kRead},
    {"/lib64", kRead},
    {"/bin", kRead},
    {"/etc", kRead},
    {"/proc", kRead},
    {"/sys", kRead},
    {"/var/cache/fontconfig", kRead},
    {"/run/systemd/resolve", kRead},
    {"/run/NetworkManager", kRead},
    {"/run/resolvconf", kRead},
    {"/dev/null", kUseDevice},
    {"/dev/zero", kUseDevice},
    {"/dev/full", kUseDevice},
    {"/dev/urandom", kUseDevice},
    {"/dev/random", kUseDevice},
    {"/dev/shm", kAll},
    {"/dev/dri", kUseDevice},
};

long createRuleset(const landlock_ruleset_attr* attributes, std::size_t size, quint32 flags) {
  return ::syscall(SYS_landlock_create_ruleset, attributes, size, flags);
}

void allow(int ruleset, const QByteArray& path, quint64 rights) {
  const FileDescriptor place(::open(path.constData(), O_PATH | O_CLOEXEC));
  struct stat status = {};
  if (!place.isOpen() || ::fstat(place.get(), &status) != 0)
    return;
  landlock_path_beneath_attr rule = {};
  rule.parent_fd = place.get();
  rule.allowed_access =
      S_ISDIR(status.st_mode) ? rights : rights & (kReadFile | LANDLOCK_ACCESS_FS_WRITE_FILE);
  ::syscall(SYS_landlock_add_rule, ruleset, LANDLOCK_RULE_PATH_BENEATH, &rule, 0);
}

}  // namespace

void dropRights() {
  ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
  ::umask(077);
  const rlimit none = {0, 0};
  ::setrlimit(RLIMIT_CORE, &none);
}

bool confineFiles(const QStringList& readable) {
  landlock_ruleset_attr attributes = {};
  attributes.handled_access_fs = kAll;
  const FileDescriptor ruleset(static_cast<int>(createRuleset(&attributes, sizeof attributes, 0)));
  if (!ruleset.isOpen())
    return false;
  for (const FolderRights& folder : kSystemFolders)
    allow(ruleset.get(), folder.path, folder.rights);
  allow(ruleset.get(),
        QFile::encodeName(QFileInfo(QFile::symLinkTarget(QStringLiteral("/proc/self/exe"))).absolutePath()),
        kRead);
  for (const QString& path : readable)
    allow(ruleset.get(), QFile::encodeName(path), kRead);
  allow(ruleset.get(), ".", kAll);
  // So that the current folder can be removed at the end.
  allow(ruleset.get(), "..", LANDLOCK_ACCESS_FS_REMOVE_DIR);
  return ::syscall(SYS_landlock_restrict_self, ruleset.get(), 0) == 0;
}

}  // namespace korvia
