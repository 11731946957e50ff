// Text helpers shared by the path classes.
#pragma once

#include <QtCore/QString>
#include <QtCore/QStringView>

namespace brindle::files {

// Removes empty and '.' components and resolves '..' against the component
// before it. A '..' with nothing before it is kept in a relative path and
// dropped at the root of an absolute one (where it names the root again).
// The leading '/' of an absolute path is kept; a '/' is appended after the
// last component when `trailingSlash` is set and a component remains.
QString cleanPath(QStringView text, bool trailingSlash);

// Length of the root of a path: the drive ("X:" or "XY:", letters and a
// colon) or the share ("//server/share"); 0 when there is none.
qsizetype rootLength(QStringView text);

// The position just after the last '/', 0 when there is none.
inline qsizetype lastComponentStart(QStringView text)
{
    return text.lastIndexOf(u'/') + 1;
}

// Position of the last '.' of the last component, -1 when there is none.
inline qsizetype lastExtensionDot(QStringView text)
{
    qsizetype dot = text.lastIndexOf(u'.');
    return dot >= lastComponentStart(text) ? dot : -1;
}

// The path encoded for the system calls; false (and `native` empty) for an
// empty path, one holding a zero character, or one that is not valid UTF-16
// (it could not name the file its text shows).
bool nativePath(QString const& path, QByteArray& native);

} // namespace brindle::files
