/// @file
/// A light path string, usually relative, with string-level operations.
#pragma once

#include <BrindleBaseCore/Global.h>
#include <BrindleBaseCore/text/UT_String.h>

#include <QtCore/QString>

/// A light path string, usually relative, with string-level operations only
/// (no file-system access except the current folder for relative results).
/// Every assignment normalises the text: `\` becomes `/`, the characters
/// `> < ? " *` become `_` (`:` is kept), trailing `/` are removed (never the
/// first character) and a leading `./` is dropped with the `/` that follow it.
/// Nothing fails: odd input is normalised, and queries on an empty path give
/// empty texts. Comparisons are exact and case-sensitive, even for paths that
/// name the same file (intended).
class BRINDLE_EXPORT UT_RelPath
{
public:
    UT_RelPath() = default;
    /// The normalised text of `path`.
    UT_RelPath(QString const& path);
    /// The normalised text of `path`.
    UT_RelPath(UT_String const& path);
    /// The normalised UTF-8 text of `path`.
    UT_RelPath(char const* path);
    /// Copies the text.
    UT_RelPath(UT_RelPath const&) = default;
    /// Moves the text.
    UT_RelPath(UT_RelPath&&) noexcept = default;
    /// Copies the text.
    UT_RelPath& operator=(UT_RelPath const&) = default;
    /// Moves the text.
    UT_RelPath& operator=(UT_RelPath&&) noexcept = default;
    /// Takes the normalised text of `path`.
    UT_RelPath& operator=(QString const& path);

    /// Join: an empty argument changes nothing, an empty path takes the
    /// argument as it is, otherwise '/' and the argument are appended.
    UT_RelPath& Add(UT_RelPath const& other);
    /// Add() of a text.
    UT_RelPath& Add(QString const& other);
    /// Add() of a text.
    UT_RelPath& Add(UT_String const& other);
    /// Add() of a UTF-8 text.
    UT_RelPath& Add(char const* other);
    /// The same as Add().
    UT_RelPath& operator+=(UT_RelPath const& other) { return Add(other); }
    /// A copy with `other` added.
    UT_RelPath operator+(UT_RelPath const& other) const;

    /// Appends '.' and the extension.
    UT_RelPath& AddExtension(QString const& extension);
    /// Appends '.' and the extension.
    UT_RelPath& AddExtension(UT_String const& extension);
    /// Appends '.' and the UTF-8 extension.
    UT_RelPath& AddExtension(char const* extension);
    /// Appends the text as it stands.
    UT_RelPath& AddSuffix(QString const& suffix);
    /// "a/b.tga" with "_v2" gives "a/b_v2.tga".
    UT_RelPath& AddSuffixBeforeExtension(QString const& suffix);
    /// Replaces the last extension; an empty one removes it with its '.'.
    UT_RelPath& SetExtension(QString const& extension);
    /// SetExtension() of a text.
    UT_RelPath& SetExtension(UT_String const& extension);
    /// SetExtension() of a UTF-8 text.
    UT_RelPath& SetExtension(char const* extension);

    /// Parts of the last component; the extension follows its last '.'.
    QString GetBaseName() const;
    /// The text after the last '.' of the last component (empty when none).
    QString GetExtension() const;
    /// The last component.
    QString GetFilename() const;
    /// Replaces the last component.
    UT_RelPath& SetFilename(QString const& name);

    /// Cuts the text at its last '/' (empty when there is none).
    UT_RelPath& Up();

    /// Whether the text is empty.
    bool IsEmpty() const { return m_path.isEmpty(); }
    /// The normalised text.
    QString const& ToString() const { return m_path; }
    /// QString comparison of the texts (case-sensitive).
    int compare(UT_RelPath const& other) const { return m_path.compare(other.m_path); }
    /// Exact comparison of the texts.
    bool operator==(UT_RelPath const& other) const { return m_path == other.m_path; }
    /// Negation of operator==.
    bool operator!=(UT_RelPath const& other) const { return m_path != other.m_path; }
    /// Orders by the texts.
    bool operator<(UT_RelPath const& other) const { return m_path < other.m_path; }

    /// False for "/..." and for "X:/..." (a letter, ':' and '/'); true otherwise.
    bool IsRelative() const;

    /// The last extension is exactly "gz".
    bool isCompressed() const;
    /// "scene.xstage.gz" gives "xstage"; an uncompressed path its extension.
    QString extensionWithCompressExtensionRemoved() const;
    /// "scene.xstage.gz" gives "scene"; an uncompressed path its base name.
    QString getBasenameHandlingCompressionExtension() const;

    /// Makes this path relative to the folder `base`: '..' for each component
    /// of `base` not shared, then the rest of this path. Relative inputs are
    /// first taken from the current folder. Joined to `base`, the result
    /// names the same place. A path on another drive or share stays absolute;
    /// the same place gives ".".
    UT_RelPath& fillRelativePath(UT_RelPath const& base);
    /// fillRelativePath() from the current folder.
    UT_RelPath& fillRelativeToCurrentPath();
    /// Sets this to `path` made relative to `base` (see fillRelativePath()).
    UT_RelPath& makeRelativeToPath(UT_RelPath const& path, UT_RelPath const& base);

private:
    void validate();

    QString m_path;
};
