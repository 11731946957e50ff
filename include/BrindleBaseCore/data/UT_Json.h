#pragma once

#include <BrindleBaseCore/Global.h>

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QVariant>

/// Conversion between JSON text and QVariant values.
///
/// Reading is lenient: commas in arrays and objects are optional and may be
/// repeated or trailing, and text after the first complete value is ignored.
/// Objects become QVariantMap (a later equal key wins), arrays QVariantList.
/// A number with a '.' becomes a double; other numbers become uint, then
/// qulonglong (no sign) or int, then qlonglong (leading '-') when they fit,
/// else their text as a QString (so "1e5" is read as the text "1e5", intended).
/// A null QString reads as an invalid QVariant with ok = true.
///
/// Besides invalid syntax, reading fails (ok = false, invalid result) on a
/// backslash followed by anything but a double quote or one of `\` `/` `b` `f`
/// `n` `r` `t`, or by `u` and four hexadecimal digits, and on arrays and
/// objects nested deeper than maxDepth(). Writing fails on non-finite doubles,
/// on values with no text form and on containers nested deeper than maxDepth().
///
/// Writing uses a fixed layout: `[ 1, 2 ]`, `{ "a" : 1 }`, `[  ]` for an empty
/// list; doubles as the printf conversion `g` writes them, with ".0" added when
/// neither '.' nor 'e' appears. Only the backslash, the double quote and the
/// controls `\b` `\f` `\n` `\r` `\t` are escaped in strings; other characters
/// are written as they are.
class BRINDLE_EXPORT UT_Json
{
public:
    /// The value of the text; `ok` false and an invalid QVariant on failure.
    static QVariant parse(QString const& text, bool& ok);
    /// As parse(text, ok), without the flag.
    static QVariant parse(QString const& text);
    /// As parse(text, ok); `stopPosition` receives the index (in UTF-16 code
    /// units) where reading ended: after the value, or where it failed.
    static QVariant parse(QString const& text, bool& ok, qsizetype& stopPosition);

    /// UTF-8 JSON text; an empty, null QByteArray when writing fails.
    static QByteArray serialize(QVariant const& value, bool& ok);
    /// As serialize(value, ok), without the flag.
    static QByteArray serialize(QVariant const& value);
    /// As serialize(), as a QString; null on failure.
    static QString serializeStr(QVariant const& value, bool& ok);
    /// As serializeStr(value, ok), without the flag.
    static QString serializeStr(QVariant const& value);

    /// Process-wide formats for QDate and QDateTime values, empty at start
    /// (the default text form is used then). A QDate is written with the date
    /// format only when the date-time format is set too (intended). Set them
    /// once at start-up: they are not guarded.
    static void setDateFormat(QString const& format);
    /// The QDate format (empty: default).
    static QString getDateFormat();
    /// Sets the QDateTime format.
    static void setDateTimeFormat(QString const& format);
    /// The QDateTime format (empty: default).
    static QString getDateTimeFormat();

    /// Deepest nesting of arrays and objects that is read or written.
    static constexpr int maxDepth() { return 1024; }
};
