#include <BrindleBaseCore/app/BAPP_Services.h>
#include <BrindleBaseCore/app/UT_Log.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QStringConverter>
#include <QtCore/QVarLengthArray>

#include <cerrno>
#include <cstring>
#include <ctime>
#include <unistd.h>

namespace {

// "yyyy-MM-dd hh:mm:ss" of the current local time. Formatted once per second
// and per thread: logging a line costs little more than writing it.
char const* lineTimeStamp()
{
    thread_local std::time_t cachedSecond = -1;
    thread_local char text[32];
    std::time_t const now = std::time(nullptr);
    if (now != cachedSecond) {
        std::tm local{};
        localtime_r(&now, &local);
        std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &local);
        cachedSecond = now;
    }
    return text;
}

// One log line in UTF-8, built in a single buffer (on the stack for lines of
// usual length).
class Line
{
public:
    Line(int indent, qsizetype expectedSize)
    {
        m_bytes.reserve(indent + 24 + expectedSize * 3);
        m_bytes.resize(indent);
        std::memset(m_bytes.data(), ' ', size_t(indent));
        *this << lineTimeStamp();
    }
    Line& operator<<(char const* latin)
    {
        m_bytes.append(latin, qsizetype(std::strlen(latin)));
        return *this;
    }
    Line& operator<<(QStringView text)
    {
        qsizetype const used = m_bytes.size();
        m_bytes.resize(used + text.size() * 3);
        QStringEncoder encoder(QStringConverter::Utf8);
        char* end = encoder.appendToBuffer(m_bytes.data() + used, text);
        m_bytes.resize(end - m_bytes.constData());
        return *this;
    }
    // Appends the line feed and writes the line to the file descriptor.
    bool writeTo(int fd)
    {
        m_bytes.append('\n');
        return writeAll(fd, m_bytes.constData(), m_bytes.size());
    }

    static bool writeAll(int fd, char const* data, qsizetype size)
    {
        while (size > 0) {
            ssize_t const written = ::write(fd, data, size_t(size));
            if (written < 0 && errno == EINTR)
                continue;
            if (written <= 0)
                return false;
            data += written;
            size -= written;
        }
        return true;
    }

private:
    QVarLengthArray<char, 512> m_bytes;
};

bool copyReplacing(QString const& source, QString const& destination)
{
    if (QFileInfo::exists(destination) && !QFile::remove(destination))
        return false;
    return QFile::copy(source, destination);
}

} // namespace

struct UT_Log::Private
{
    QFile file;
    qint32 indent = 0;

    // One system write per line on the file's descriptor (the file is
    // opened unbuffered): each line reaches the system as soon as it is logged.
    bool write(Line& line) { return file.isOpen() && line.writeTo(file.handle()); }
};

UT_Log::UT_Log()
    : d(std::make_unique<Private>())
{}

UT_Log::~UT_Log() = default;

bool UT_Log::create(QString const& folder)
{
    close();
    QString const path = BAPP_RemapPath(folder);
    if (!QFileInfo(path).isDir() && !QDir().mkdir(path))
        return false;
    d->file.setFileName(path + QLatin1Char('/') + UT_LogIO::buildLogFileName(true));
    if (!d->file.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered))
        return false;
    // The only byte-order mark of the file: appended lines carry none.
    QByteArray header("\xEF\xBB\xBF"
                      "Log file produced by: ");
    header += BAPP_Identity::instance().fullVersionText().toUtf8();
    header += '\n';
    return Line::writeAll(d->file.handle(), header.constData(), header.size());
}

bool UT_Log::close()
{
    if (!d->file.isOpen())
        return false;
    d->file.close();
    return true;
}

bool UT_Log::reopen()
{
    if (d->file.isOpen() || d->file.fileName().isEmpty())
        return false;
    return d->file.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Unbuffered);
}

bool UT_Log::isOpen() const
{
    return d->file.isOpen();
}

QString UT_Log::fileName() const
{
    return d->file.fileName();
}

bool UT_Log::logAction(QString const& text)
{
    Line line(d->indent, text.size() + 8);
    line << ";ACTION;" << text;
    return d->write(line);
}

bool UT_Log::copyLog(QString const& folder, QString const& suffix)
{
    QString const source = d->file.fileName();
    if (source.isEmpty())
        return false;
    QString const destination =
        BAPP_RemapPath(folder + QDir::separator() + QFileInfo(source).completeBaseName() + suffix +
                       QStringLiteral(".log"));
    return copyReplacing(source, destination);
}

bool UT_Log::add(QString const& operation, QString const& path, bool ok)
{
    return add(operation, path, QString(), ok);
}

bool UT_Log::add(QString const& operation, QString const& path, QString const& path2, bool ok)
{
    Line line(d->indent, operation.size() + path.size() + path2.size() + 20);
    line << ";" << operation << ";" << path << ";" << path2
         << (ok ? ";SUCCESS" : ";===> FAIL <===");
    return d->write(line);
}

bool UT_Log::add(QString const& operation, UT_String const& path, bool ok)
{
    return add(operation, path.ToQString(), QString(), ok);
}

bool UT_Log::add(QString const& operation, UT_String const& path, UT_String const& path2, bool ok)
{
    return add(operation, path.ToQString(), path2.ToQString(), ok);
}

bool UT_Log::add(eFileOperation operation, QString const& path, bool ok)
{
    return add(operation, path, QString(), ok);
}

bool UT_Log::add(eFileOperation operation, QString const& path, QString const& path2, bool ok)
{
    QString const text = operationText(operation);
    Line line(d->indent, text.size() + path.size() + path2.size() + 20);
    // No separator before the status, and the markers carry their own blanks.
    line << ";" << text << ";" << path << ";" << path2 << (ok ? " OK " : " ===> FAIL <==== ");
    return d->write(line);
}

bool UT_Log::add(eFileOperation operation, UT_String const& path, bool ok)
{
    return add(operation, path.ToQString(), QString(), ok);
}

bool UT_Log::add(eFileOperation operation, UT_String const& path, UT_String const& path2, bool ok)
{
    return add(operation, path.ToQString(), path2.ToQString(), ok);
}

int UT_Log::indent() const
{
    return d->indent;
}

void UT_Log::setIndent(int indent)
{
    d->indent = indent < 0 ? 0 : indent;
}

QString UT_Log::operationText(eFileOperation operation)
{
    static char const* const texts[] = {"Create", "Update", "Copy",    "Move",    "Rename",
                                        "Delete", "Swap",   "Symlink", "HardLink"};
    auto const index = static_cast<unsigned>(operation);
    if (index >= std::size(texts))
        return QStringLiteral("Unknown");
    return QString::fromLatin1(texts[index]);
}
