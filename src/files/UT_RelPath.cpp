#include <BrindleBaseCore/files/UT_RelPath.h>

#include "PathText.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QVarLengthArray>

namespace brindle::files {

namespace {
// True when cleaning cannot change the text: no empty, '.' or '..' component
// and the wanted trailing '/' (or its absence) already there.
bool isClean(QStringView text, bool trailingSlash)
{
    qsizetype const size = text.size();
    if (size == 0)
        return true;
    if (text.back() == u'/' ? !trailingSlash && size > 1 : trailingSlash)
        return false;
    qsizetype start = text.front() == u'/' ? 1 : 0;
    while (start < size) {
        qsizetype end = text.indexOf(u'/', start);
        if (end < 0)
            end = size;
        qsizetype const length = end - start;
        if (length == 0 && end < size)
            return false;
        if (text[start] == u'.' && (length == 1 || (length == 2 && text[start + 1] == u'.')))
            return false;
        start = end + 1;
    }
    return true;
}
} // namespace

QString cleanPath(QStringView text, bool trailingSlash)
{
    if (isClean(text, trailingSlash))
        return text.toString();
    bool const absolute = text.startsWith(u'/');
    QVarLengthArray<QStringView, 32> parts;
    qsizetype const size = text.size();
    qsizetype start = 0;
    while (start < size) {
        qsizetype end = text.indexOf(u'/', start);
        if (end < 0)
            end = size;
        QStringView component = text.mid(start, end - start);
        if (component.isEmpty() || component == u".") {
            // nothing: empty and current-folder components vanish
        } else if (component == u"..") {
            if (!parts.isEmpty() && parts.back() != u"..")
                parts.pop_back();
            else if (!absolute)
                parts.append(component);
        } else {
            parts.append(component);
        }
        start = end + 1;
    }
    QString out;
    out.reserve(size + 1);
    if (absolute)
        out += u'/';
    for (qsizetype i = 0; i < parts.size(); ++i) {
        if (i > 0)
            out += u'/';
        out += parts[i];
    }
    if (trailingSlash && !parts.isEmpty())
        out += u'/';
    return out;
}

namespace {
bool isWordChar(QChar c)
{
    return c.isLetterOrNumber() || c == u'_' || c == u'-';
}
} // namespace

qsizetype rootLength(QStringView text)
{
    qsizetype i = 0;
    while (i < text.size() &&
           ((text[i] >= u'a' && text[i] <= u'z') || (text[i] >= u'A' && text[i] <= u'Z')))
        ++i;
    if (i > 0 && i < text.size() && text[i] == u':')
        return i + 1;
    if (!text.startsWith(u"//"))
        return 0;
    i = 2;
    qsizetype const server = i;
    while (i < text.size() && isWordChar(text[i]))
        ++i;
    if (i == server || i >= text.size() || text[i] != u'/')
        return 0;
    qsizetype const share = ++i;
    while (i < text.size() && isWordChar(text[i]))
        ++i;
    return i == share ? 0 : i;
}

bool nativePath(QString const& path, QByteArray& native)
{
    native.clear();
    if (path.isEmpty() || path.contains(QChar(0)) || !path.isValidUtf16())
        return false;
    native = QFile::encodeName(path);
    return true;
}

} // namespace brindle::files

using namespace brindle::files;

UT_RelPath::UT_RelPath(QString const& path)
    : m_path(path)
{
    validate();
}

UT_RelPath::UT_RelPath(UT_String const& path)
    : m_path(path.ToQString())
{
    validate();
}

UT_RelPath::UT_RelPath(char const* path)
    : m_path(QString::fromUtf8(path))
{
    validate();
}

UT_RelPath& UT_RelPath::operator=(QString const& path)
{
    m_path = path;
    validate();
    return *this;
}

void UT_RelPath::validate()
{
    for (QChar& c : m_path) {
        switch (c.unicode()) {
        case u'\\':
            c = u'/';
            break;
        case u'>':
        case u'<':
        case u'?':
        case u'"':
        case u'*':
            c = u'_';
            break;
        default:
            break;
        }
    }
    qsizetype end = m_path.size();
    while (end > 1 && m_path.at(end - 1) == u'/')
        --end;
    m_path.truncate(end);
    if (m_path.startsWith(QLatin1String("./"))) {
        qsizetype start = 2;
        while (start < m_path.size() && m_path.at(start) == u'/')
            ++start;
        m_path.remove(0, start);
    }
}

UT_RelPath& UT_RelPath::Add(UT_RelPath const& other)
{
    return Add(other.m_path);
}

UT_RelPath& UT_RelPath::Add(QString const& other)
{
    if (other.isEmpty())
        return *this;
    if (m_path.isEmpty())
        m_path = other;
    else
        m_path += QLatin1Char('/') + other;
    validate();
    return *this;
}

UT_RelPath& UT_RelPath::Add(UT_String const& other)
{
    return Add(other.ToQString());
}

UT_RelPath& UT_RelPath::Add(char const* other)
{
    return Add(QString::fromUtf8(other));
}

UT_RelPath UT_RelPath::operator+(UT_RelPath const& other) const
{
    UT_RelPath sum(*this);
    sum.Add(other);
    return sum;
}

UT_RelPath& UT_RelPath::AddExtension(QString const& extension)
{
    return AddSuffix(QLatin1Char('.') + extension);
}

UT_RelPath& UT_RelPath::AddExtension(UT_String const& extension)
{
    return AddExtension(extension.ToQString());
}

UT_RelPath& UT_RelPath::AddExtension(char const* extension)
{
    return AddExtension(QString::fromUtf8(extension));
}

UT_RelPath& UT_RelPath::AddSuffix(QString const& suffix)
{
    m_path += suffix;
    validate();
    return *this;
}

UT_RelPath& UT_RelPath::AddSuffixBeforeExtension(QString const& suffix)
{
    QString const extension = GetExtension();
    SetExtension(QString());
    m_path += suffix;
    if (!extension.isEmpty())
        m_path += QLatin1Char('.') + extension;
    validate();
    return *this;
}

UT_RelPath& UT_RelPath::SetExtension(QString const& extension)
{
    qsizetype const dot = lastExtensionDot(m_path);
    if (dot >= 0)
        m_path.truncate(dot);
    if (!extension.isEmpty())
        m_path += QLatin1Char('.') + extension;
    validate();
    return *this;
}

UT_RelPath& UT_RelPath::SetExtension(UT_String const& extension)
{
    return SetExtension(extension.ToQString());
}

UT_RelPath& UT_RelPath::SetExtension(char const* extension)
{
    return SetExtension(QString::fromUtf8(extension));
}

QString UT_RelPath::GetFilename() const
{
    return m_path.mid(lastComponentStart(m_path));
}

QString UT_RelPath::GetBaseName() const
{
    qsizetype const start = lastComponentStart(m_path);
    qsizetype const dot = lastExtensionDot(m_path);
    return m_path.mid(start, (dot >= 0 ? dot : m_path.size()) - start);
}

QString UT_RelPath::GetExtension() const
{
    qsizetype const dot = lastExtensionDot(m_path);
    return dot >= 0 ? m_path.mid(dot + 1) : QString();
}

UT_RelPath& UT_RelPath::SetFilename(QString const& name)
{
    m_path.truncate(lastComponentStart(m_path));
    m_path += name;
    validate();
    return *this;
}

UT_RelPath& UT_RelPath::Up()
{
    qsizetype const slash = m_path.lastIndexOf(u'/');
    m_path.truncate(slash < 0 ? 0 : slash);
    return *this;
}

bool UT_RelPath::IsRelative() const
{
    if (m_path.startsWith(u'/'))
        return false;
    return !(m_path.size() >= 3 && m_path.at(0).isLetter() && m_path.at(1) == u':' &&
             m_path.at(2) == u'/');
}

bool UT_RelPath::isCompressed() const
{
    return GetExtension() == QLatin1String("gz");
}

QString UT_RelPath::extensionWithCompressExtensionRemoved() const
{
    if (!isCompressed())
        return GetExtension();
    UT_RelPath inner(*this);
    inner.SetExtension(QString());
    return inner.GetExtension();
}

QString UT_RelPath::getBasenameHandlingCompressionExtension() const
{
    if (!isCompressed())
        return GetBaseName();
    UT_RelPath inner(*this);
    inner.SetExtension(QString());
    return inner.GetBaseName();
}

UT_RelPath& UT_RelPath::fillRelativePath(UT_RelPath const& base)
{
    return makeRelativeToPath(UT_RelPath(*this), base);
}

UT_RelPath& UT_RelPath::fillRelativeToCurrentPath()
{
    return makeRelativeToPath(UT_RelPath(*this), UT_RelPath(QDir::currentPath()));
}

namespace {
// The path with its root and its cleaned components; a text with no root of
// its own is taken from the current folder.
struct RootedPath
{
    QString root;
    QStringList components;
};

RootedPath rooted(QString const& text)
{
    RootedPath out;
    QString full = text;
    qsizetype root = rootLength(full);
    if (root == 0 && !full.startsWith(u'/')) {
        full = QDir::currentPath() + QLatin1Char('/') + full;
        root = rootLength(full);
    }
    out.root = full.left(root);
    QString const rest = cleanPath(QStringView(full).mid(root).toString().prepend(u'/'), false);
    out.components = rest.split(u'/', Qt::SkipEmptyParts);
    return out;
}
} // namespace

UT_RelPath& UT_RelPath::makeRelativeToPath(UT_RelPath const& path, UT_RelPath const& base)
{
    RootedPath const target = rooted(path.m_path);
    RootedPath const from = rooted(base.m_path);
    if (target.root.compare(from.root, Qt::CaseInsensitive) != 0) {
        // Another drive or share: no relative way there.
        *this = target.root + QLatin1Char('/') + target.components.join(u'/');
        return *this;
    }
    qsizetype common = 0;
    while (common < target.components.size() && common < from.components.size() &&
           target.components[common] == from.components[common])
        ++common;
    QStringList parts;
    for (qsizetype i = common; i < from.components.size(); ++i)
        parts << QStringLiteral("..");
    for (qsizetype i = common; i < target.components.size(); ++i)
        parts << target.components[i];
    *this = parts.isEmpty() ? QStringLiteral(".") : parts.join(u'/');
    return *this;
}
