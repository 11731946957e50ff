/// @file
/// Absolute (or relative) paths split into drive, folder and file name.
#pragma once

#include <BrindleBaseCore/Global.h>
#include <BrindleBaseCore/files/PL_FileSpec.h>

#include <QtCore/QString>

class UT_PathIterator;

/// A path kept normalised with '/' as its only separator: a drive ("C:", or a
/// share "//server/share", or empty), a folder (beginning with '/' when
/// absolute, ending with '/' when not empty) and a file name (empty for a
/// folder path). When the filter flag is set, every assignment replaces `\`
/// with `/` and the characters `> < ? " *` (and `:` after the drive) with `_`.
/// A drive candidate (the text up to a ':' that comes before any '/') that is
/// not letters and a colon makes the setter return false and keep the old value.
/// File-system questions are answered by the PL_FileSpec kept in step.
class BRINDLE_EXPORT UT_Path
{
public:
    /// An empty path.
    explicit UT_Path(bool filter = true);
    /// The path of `path` (see SetPath()).
    UT_Path(QString const& path, bool filter = true);
    /// The path of the UTF-8 text `path` (see SetPath()).
    UT_Path(char const* path, bool filter = true);
    /// Copies the path and its flag.
    UT_Path(UT_Path const&) = default;
    /// Copies the path and its flag.
    UT_Path& operator=(UT_Path const&) = default;

    /// Replaces the whole path; false (old value kept) for a bad drive.
    bool SetPath(QString const& path);
    /// The folder alone for a relative folder, else drive and folder; with
    /// `withFileName` the file name follows (a folder path then loses its
    /// trailing '/' when at least 2 characters remain).
    QString GetPath(bool withFileName = true) const;
    /// The file name; without its extension when `withExtension` is false.
    QString GetFileName(bool withExtension = true, bool firstDot = false) const;
    /// The file name without its extension.
    QString GetBaseName(bool firstDot = false) const;
    /// The text after the last '.' (first '.' with `firstDot`) of the file name.
    QString GetExtension(bool firstDot = false) const;
    /// The drive; empty when none.
    QString const& GetDrive() const { return m_drive; }
    /// The folder, ending with '/' when not empty.
    QString const& GetFolder() const { return m_folder; }
    /// The folder part (with the drive when `withDrive`), ending with '/'.
    QString GetBasePath(bool withDrive = true) const;
    /// The path with symbolic links resolved; the path itself when it does not exist.
    QString GetResolvedPath() const;
    /// The file specification kept in step with the path.
    PL_FileSpec const& GetFileSpec() const { return m_spec; }
    /// Walks the folders from the root down (see UT_PathIterator).
    UT_PathIterator GetFolderIterator() const;
    /// Whether assignments are filtered.
    bool IsFilter() const { return m_filter; }

    /// Replaces the drive; false (old value kept) when it is not a drive.
    bool SetDrive(QString const& drive);
    /// Takes the drive and folder of `folder`.
    bool SetFolder(UT_Path const& folder);
    /// Replaces drive and folder with those of the text.
    bool SetFolder(QString const& folder);
    /// The whole text names a folder: the file name becomes empty.
    bool SetFolderPath(QString const& folder);
    /// Replaces the file name.
    bool SetFileName(QString const& name);
    /// Replaces the extension after the last '.' (first '.' with `firstDot`);
    /// an empty extension removes it with its '.'.
    bool SetExtension(QString const& extension, bool firstDot = false);
    /// Appends folders below the folder; the file name is kept.
    bool AddFolder(UT_Path const& folder);
    /// Appends the folders of the text below the folder.
    bool AddFolder(QString const& folder);
    /// Appends the folders of the UTF-8 text below the folder.
    bool AddFolder(char const* folder);
    /// Appends a component: a present file name becomes the last folder.
    bool AddName(QString const& name);
    /// AddName() for UTF-8 text.
    bool AddName(char const* name);
    /// Appends '.' and the extension to the file name.
    bool AddExtension(QString const& extension);

    /// Removes the file name, or when there is none the last folder.
    bool Up();
    /// Whether the folder is "/".
    bool isRoot() const { return m_folder == QLatin1String("/"); }
    /// Whether the folder does not begin with '/'.
    bool IsRelative() const { return !m_folder.isEmpty() && m_folder.at(0) != u'/'; }
    /// Whether drive, folder and file name are all empty.
    bool IsEmpty() const { return m_drive.isEmpty() && m_folder.isEmpty() && m_fileName.isEmpty(); }
    /// Whether there is no file name.
    bool IsFolderPath() const { return m_fileName.isEmpty(); }

    /// File-system questions (false or 0 for an empty path).
    bool Exists() const;
    /// Whether it exists and is not a folder.
    bool IsFile() const;
    /// Whether it exists and is a folder.
    bool IsFolder() const;
    /// The same as IsFolder().
    bool IsDirectory() const { return IsFolder(); }
    /// Whether the path itself is a symbolic link.
    bool IsSymbolicLink() const;
    /// Whether the name starts with '.'.
    bool IsHidden() const;
    /// The same as Exists().
    bool IsAccess() const { return Exists(); }
    /// Whether the process may read it.
    bool CanRead() const;
    /// Whether the process may write it.
    bool CanWrite() const;
    /// Length in bytes.
    quint64 GetFileLength() const;
    /// Modification time in seconds since 1970; false when it does not exist.
    bool GetFileTime(qint64& modifTime) const;
    /// Opens the file with a C fopen mode; null on failure.
    FILE* GetFileAccess(char const* mode) const;
    /// Creates the folder and any missing parent: 0 or an errno value.
    int CreateFolder() const;
    /// Deletes the file or the folder with its content: 0 or an errno value.
    int Delete() const;
    /// Renames the object (a new name in the same folder, or a full path); the
    /// path follows it.
    int Rename(QString const& newName);

    /// When something exists at the path, tries "base_1.ext" .. "base_999.ext"
    /// (base up to the first '.') until a free name is found; false when all
    /// are taken, the path then holding the last candidate.
    bool MakeUniqueFileName();

    /// Replaces `\` with `/` and the forbidden characters with `_`.
    static QString FilterPath(QString const& text, bool fileNamePart);

    /// Compares the GetPath() texts exactly.
    bool operator==(UT_Path const& other) const { return GetPath() == other.GetPath(); }
    /// Negation of operator==.
    bool operator!=(UT_Path const& other) const { return !(*this == other); }
    /// Orders by the GetPath() texts.
    bool operator<(UT_Path const& other) const { return GetPath() < other.GetPath(); }

private:
    bool ValidatePath(QString& drive, QString& folder, QString& fileName,
                      QString const& text) const;
    bool assign(QString const& text);
    void syncSpec();

    bool m_filter = true;
    QString m_drive;
    QString m_folder;
    QString m_fileName;
    PL_FileSpec m_spec;
};

/// Walks the folders of a path from the root down to the path's own folder:
/// "C:/a/b/c.txt" gives "C:/", "C:/a/", "C:/a/b/". A path without a folder
/// gives an ended iterator; the file system is not read.
class BRINDLE_EXPORT UT_PathIterator
{
public:
    /// Stands on the root folder of `path` (ended when `path` has no folder).
    explicit UT_PathIterator(UT_Path const& path);

    /// The current folder path.
    UT_Path const& operator*() const { return m_current; }
    /// The current folder path.
    UT_Path const* operator->() const { return &m_current; }
    /// Goes one folder down; ends after the path's own folder.
    UT_PathIterator& operator++();
    /// Whether the walk is over.
    bool IsEnd() const { return m_end; }

private:
    UT_Path m_path;
    UT_Path m_current;
    qsizetype m_position = 0; // end of the current folder inside the full folder
    bool m_end = true;
};
