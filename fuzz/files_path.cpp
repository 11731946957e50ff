// Path parsing and relative paths on arbitrary text: no crash, and a
// relative path joined to its base names the same place as the original.
#include <BrindleBaseCore/files/UT_Path.h>
#include <BrindleBaseCore/files/UT_RelPath.h>

#include <QtCore/QStringList>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

// The place an absolute path names: components with '.', '..' and empty
// ones resolved ('..' at the root stays at the root).
QStringList place(QString const& path)
{
    QStringList out;
    for (QString const& part : path.split(u'/', Qt::SkipEmptyParts)) {
        if (part == QLatin1String("."))
            continue;
        if (part == QLatin1String("..")) {
            if (!out.isEmpty())
                out.removeLast();
            continue;
        }
        out << part;
    }
    return out;
}

bool plainAbsolute(QString const& text)
{
    return text.startsWith(u'/') && !text.startsWith(QLatin1String("//"));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size)
{
    QByteArray const input(reinterpret_cast<char const*>(data), qsizetype(size));
    qsizetype const split = input.indexOf('\n');
    QString const first = QString::fromUtf8(split < 0 ? input : input.left(split));
    QString const second =
        split < 0 ? QStringLiteral("/") : QString::fromUtf8(input.mid(split + 1));

    for (bool filter : {true, false}) {
        UT_Path path(filter);
        if (path.SetPath(first)) {
            (void)path.GetPath(true);
            (void)path.GetExtension(true);
            UT_Path copy = path;
            copy.AddName(second);
            copy.SetExtension(QStringLiteral("x"));
            for (UT_PathIterator it(copy); !it.IsEnd(); ++it)
                (void)it->GetPath(false);
            while (copy.Up()) {
            }
        }
    }

    UT_RelPath const path(first);
    UT_RelPath const base(second);
    UT_RelPath sum = path + base;
    sum.AddSuffixBeforeExtension(QStringLiteral("_v2"));
    (void)sum.getBasenameHandlingCompressionExtension();
    UT_RelPath relative;
    relative.makeRelativeToPath(path, base);
    if (plainAbsolute(path.ToString()) && plainAbsolute(base.ToString())) {
        QString const joined = base.ToString() + QLatin1Char('/') + relative.ToString();
        if (place(joined) != place(path.ToString()))
            std::abort();
    }
    return 0;
}
