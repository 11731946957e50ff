// The process's temporary folders and names.
#include <BrindleBaseCore/files/PL_FileSpec.h>
#include <BrindleBaseCore/files/PL_TemporaryDir.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QMutex>

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <set>

namespace {

QString systemTempFolder()
{
    QString folder = QDir::tempPath();
    if (folder.isEmpty())
        folder = QStringLiteral("/tmp");
    folder.replace(u'\\', u'/');
    while (folder.size() > 1 && folder.endsWith(u'/'))
        folder.chop(1);
    return folder;
}

struct ProcessFolder
{
    PL_FileSpec spec;
    int error = 0;
};

// Emptied at its first use in the process: files left by an earlier run go,
// deliberately.
ProcessFolder const& tempFilesFolder()
{
    static ProcessFolder const folder = [] {
        ProcessFolder f;
        f.spec.IFileSpec(UT_String(systemTempFolder() + QStringLiteral("/BrindleTempFilesDir")));
        f.spec.Delete();
        f.error = f.spec.CreateFolder();
        return f;
    }();
    return folder;
}

// Kept from one run to the next.
ProcessFolder const& sessionFolder()
{
    static ProcessFolder const folder = [] {
        ProcessFolder f;
        f.spec.IFileSpec(UT_String(systemTempFolder() + QStringLiteral("/BrindleSessionTempDir")));
        f.error = f.spec.CreateFolder();
        return f;
    }();
    return folder;
}

std::atomic<quint64> tempFileCounter{0};

} // namespace

int PL_FileSpec::InitTempFile()
{
    *this = PL_FileSpec();
    ProcessFolder const& folder = tempFilesFolder();
    if (folder.error != 0)
        return folder.error;
    QString const prefix = folder.spec.GetQFilePath() + QStringLiteral("/tmpfs_");
    for (;;) {
        quint64 const n = tempFileCounter.fetch_add(1) + 1;
        setPath(prefix + QString::number(n) + QStringLiteral(".tmp"));
        PL_FileInfo const& existing = info();
        if (!(existing.IsExists() && existing.CanRead()))
            return 0;
    }
}

int PL_FileSpec::InitSessionTempFolder()
{
    ProcessFolder const& folder = sessionFolder();
    *this = folder.spec;
    return folder.error;
}

// --- PL_TemporaryDir ---------------------------------------------------------

struct PL_TemporaryDir::Private
{
    QString path;
    std::atomic<quint64> counter{0};
};

namespace {
struct Registry
{
    QMutex mutex;
    std::set<QString> alive; // folders of the objects alive
};

Registry& registry()
{
    static Registry instance;
    return instance;
}

void removeFolder(QString const& path)
{
    if (!path.isEmpty())
        PL_FileSpec(UT_String(path)).Delete();
}
} // namespace

PL_TemporaryDir::PL_TemporaryDir()
    : d(std::make_unique<Private>())
{
    PL_FileSpec session;
    if (session.InitSessionTempFolder() == 0) {
        QByteArray pattern =
            QFile::encodeName(session.GetQFilePath() + QStringLiteral("/dir_XXXXXX"));
        if (::mkdtemp(pattern.data()))
            d->path = QFile::decodeName(pattern);
    }
    if (d->path.isEmpty())
        return;
    Registry& list = registry();
    QMutexLocker lock(&list.mutex);
    list.alive.insert(d->path);
}

PL_TemporaryDir::~PL_TemporaryDir()
{
    {
        Registry& list = registry();
        QMutexLocker lock(&list.mutex);
        list.alive.erase(d->path);
    }
    removeFolder(d->path);
}

QString PL_TemporaryDir::path() const
{
    return d->path;
}

bool PL_TemporaryDir::isValid() const
{
    return !d->path.isEmpty();
}

QString PL_TemporaryDir::generateTemporaryName(QString const& extension)
{
    quint64 const n = d->counter.fetch_add(1);
    return d->path + QLatin1Char('/') + QStringLiteral("%1").arg(n, 5, 10, QLatin1Char('0')) +
           QLatin1Char('.') + extension;
}

void PL_TemporaryDir::cleanUpBrindleTempDir()
{
    Registry& list = registry();
    QMutexLocker lock(&list.mutex);
    for (QString const& path : list.alive)
        removeFolder(path);
}
