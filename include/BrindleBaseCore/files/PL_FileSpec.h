/// @file
/// File specifications: one file-system object named by its full path, with a
/// cached description of it, folder enumeration, special folders and the
/// process's temporary files.
#pragma once

#include <BrindleBaseCore/Global.h>
#include <BrindleBaseCore/text/UT_String.h>

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QUrl>

#include <cstdio>
#include <memory>
#include <string>

class MSG_Text;
class UT_Path;
class UT_RelPath;
class PL_FileSpec_iterator;

/// What is known about a file-system object, read once. Built empty (not
/// initialised), from a path (reads the file system at once), or from what a
/// folder enumeration delivers (no further query).
class BRINDLE_EXPORT PL_FileInfo
{
public:
    /// Attribute bits of the enumeration form.
    enum Attribute : unsigned int
    {
        ReadOnlyAttribute = 0x1,       ///< Not writable.
        HiddenAttribute = 0x2,         ///< Hidden whatever its name.
        FolderAttribute = 0x10,        ///< A folder.
        SymbolicLinkAttribute = 0x400, ///< A symbolic link.
    };

    PL_FileInfo() = default;
    /// Reads the file system for `path` at once (see init()).
    explicit PL_FileInfo(QString const& path);
    /// Reads the file system for `path` at once (see init()).
    explicit PL_FileInfo(UT_String const& path);
    /// An existing entry as enumerated: modification time (seconds since 1970),
    /// Attribute bits, length in bytes.
    PL_FileInfo(qint64 modifTime, unsigned int attributes, quint64 length);

    /// Reads the file system for `path` (symbolic links are not followed for
    /// the kind, but readability and writability are those of the target).
    void init(QString const& path);

    /// Whether a description was read or given; false for a default object.
    bool IsInit() const { return m_init; }
    /// True when the object could not be examined for another reason than
    /// not existing (permission on a parent folder, name too long, ...).
    bool IsError() const { return m_error; }
    /// Whether the object exists.
    bool IsExists() const { return m_exists; }
    /// Whether it exists and is not a folder.
    bool IsFile() const { return m_exists && !m_folder; }
    /// Whether it exists and is a folder.
    bool IsFolder() const { return m_exists && m_folder; }
    /// Whether the path itself is a symbolic link.
    bool IsSymbolicLink() const { return m_symLink; }
    /// Hidden objects are those whose name starts with '.', or that were
    /// enumerated with HiddenAttribute.
    bool IsHidden(UT_Path const& path) const;
    /// Whether the process may read it.
    bool CanRead() const { return m_canRead; }
    /// Whether the process may write it.
    bool CanWrite() const { return m_canWrite; }
    /// Length in bytes (0 for a folder or a missing object).
    quint64 GetFileLength() const { return m_length; }
    /// Modification time in seconds since 1970 (0 when unknown).
    qint64 GetModifTime() const { return m_modifTime; }

private:
    qint64 m_modifTime = 0;
    quint64 m_length = 0;
    bool m_init = false;
    bool m_error = false;
    bool m_exists = false;
    bool m_folder = false;
    bool m_symLink = false;
    bool m_hidden = false;
    bool m_canRead = false;
    bool m_canWrite = false;
};

/// A file or folder named by its path ('/' separators). Queries fill the
/// cached PL_FileInfo on first use; operations that change the file system
/// reset it. Integer results are 0 on success and an errno value otherwise.
class BRINDLE_EXPORT PL_FileSpec
{
public:
    /// Special folders of the user and of the machine.
    enum SpecialFolderType
    {
        UserAppDataFolder = 0,      ///< Per-user settings (XDG config home).
        UserLocalAppDataFolder = 1, ///< Per-user data (XDG data home).
        SharedAppDataFolder = 2,    ///< Data shared by all users of the machine.
        UserDocumentsFolder = 3,    ///< The user's documents.
        PublicDocumentsFolder = 4,  ///< Has no equivalent here: always fails.
    };

    /// A form of this file specification that can be stored and read back (the UTF-8 path).
    struct SavableID
    {
        /// The path in UTF-8.
        QByteArray data;
    };

    PL_FileSpec() = default;
    /// Names `path`; the file system is read on the first query.
    explicit PL_FileSpec(UT_String const& path);
    /// Takes `info` as the cache: no file-system access.
    PL_FileSpec(UT_String const& path, PL_FileInfo const& info);
    /// Names the text of `path`.
    explicit PL_FileSpec(UT_RelPath const& path);
    /// Copies the path and the cached information.
    PL_FileSpec(PL_FileSpec const&) = default;
    /// Copies the path and the cached information.
    PL_FileSpec& operator=(PL_FileSpec const&) = default;

    /// Names `path` and forgets the cached information.
    void IFileSpec(UT_String const& path);
    /// `path` relative to the folder `base` (an absolute `path` is taken as it is).
    void IFileSpec(UT_String const& path, PL_FileSpec const& base);
    /// Names `path` and takes `info` as the cache.
    void IFileSpec(UT_String const& path, PL_FileInfo const& info);
    /// Becomes a copy of `other`.
    void IFileSpec(PL_FileSpec const& other);
    /// Names the path stored in `id`.
    void IFileSpec(SavableID const& id);
    /// 0, or ENOENT when the platform has no such folder (this object is then empty).
    int IFileSpec(SpecialFolderType type);
    /// The storable form, read back by IFileSpec(SavableID const&).
    SavableID GetSavableID() const;

    /// @name Text
    /**@{*/
    /// The path as it is stored.
    UT_String const& GetFilePath() const { return m_path; }
    /// The path as a QString.
    QString GetQFilePath() const { return m_path.ToQString(); }
    /// The path for showing to the user (native separators).
    UT_String GetDisplayFilePath() const;
    /// The last component of the path.
    UT_String GetDisplayName() const;
    /// The last component, without its last extension when withExtension is false.
    UT_String GetName(bool withExtension = true) const;
    /// The text after the last '.' of the last component (empty when none).
    UT_String GetExtension() const;
    /// Fills `extension` as GetExtension() does; false when there is none.
    bool GetExtension(UT_String& extension) const;
    /// Case-insensitive; `extension` is given without the '.'.
    bool HasExtension(UT_String const& extension) const;
    /// Replaces the last extension; an empty one removes it with its '.'.
    void SetExtension(UT_String const& extension);
    /// Appends '.' and `extension`, keeping any extension already there.
    void AddExtension(UT_String const& extension);
    /// Appends a component with '/'.
    void Add(UT_String const& component);
    /// Goes to the parent folder; false when there is none.
    bool Up();
    /// Fills `relative` with this path relative to the folder `base`.
    bool GetRelativePath(UT_String& relative, PL_FileSpec const& base) const;
    /// The path in UTF-8.
    std::string GetUTF8Path() const;
    /// The path as zero-terminated UTF-16.
    UT_Char const* GetWchartFileName() const { return m_path.c_str(); }
    /// Makes the path absolute and clean ('.' and '..' removed, links kept).
    int ConvertToLongName();
    /// The local file path of a "file:" URL; empty for any other URL.
    static UT_String fileURLToPath(QUrl const& url);
    /// Splits the path into folder (with its trailing '/'), base name and extension.
    bool analysePath(UT_String& folder, UT_String& baseName, UT_String& extension) const;
    /// True when this path lies inside the folder `parent`; `subPath` receives
    /// the part below it (empty when both are the same).
    bool analyseSubPath(PL_FileSpec const& parent, UT_String& subPath) const;
    /**@}*/

    /// @name Tests
    /**@{*/
    /// Whether a path is named (queries on an empty spec answer false or 0).
    bool IsValid() const { return !m_path.empty(); }
    /// Whether the cached information is filled.
    bool IsInit() const { return m_info.IsInit(); }
    /// Whether the object exists.
    bool Exists() const;
    /// Whether it exists and is not a folder.
    bool IsFile() const;
    /// Whether it exists and is a folder.
    bool IsFolder() const;
    /// Whether the path itself is a symbolic link.
    bool IsSymbolicLink() const;
    /// Whether the name starts with '.'.
    bool IsHidden() const;
    /// A network share path ("//server/share...").
    bool IsShare() const;
    /// Whether the process may write (`write` true) or read it.
    bool TestAccess(bool write) const;
    /// Length in bytes (0 for a folder or a missing object).
    quint64 GetFileLength() const;
    /// Modification time in seconds since 1970; false when the object does not exist.
    bool GetFileTime(qint64& modifTime) const;
    /// The cached information, read first when needed.
    PL_FileInfo const& GetFileInfo() const;
    /// Forgets the cached information; the next query reads the file system.
    void ResetInfo() { m_info = PL_FileInfo(); }
    /**@}*/

    /// @name Changes
    /**@{*/
    /// Creates the folder and any missing parent.
    int CreateFolder() const;
    /// Creates `name` inside this folder, or "name_1", "name_2", ... when taken;
    /// `created` receives the full path made.
    int createSubFolder(QString const& name, QString& created) const;
    /// Deletes the file, or the folder with everything it contains.
    int Delete() const;
    /// Renames to `newName` (a name in the same folder, or a full path); the
    /// spec then names the renamed object.
    int Rename(UT_String const& newName);
    /// Moves to `target` (across file systems too); this object then names it.
    int Move(PL_FileSpec const& target);
    /// Swaps the contents of this file and `other` (atomically when possible).
    int Exchange(PL_FileSpec const& other) const;
    /// Copies this file to `target`; an existing target is replaced only when
    /// `overwrite` is true (EEXIST otherwise).
    int CloneFile(PL_FileSpec const& target, bool overwrite) const;
    /// Copies this file onto `target` (replacing it); on failure `error`
    /// tells why.
    bool CopyFileW(UT_String const& target, MSG_Text& error) const;
    /// Copies this file to `target`: false when the target exists and
    /// `overwrite` is false, or when it cannot be removed or copied.
    bool HardLink(PL_FileSpec const& target, bool overwrite) const;
    /**@}*/

    /// @name Opening (any Unicode path)
    /**@{*/
    /// fopen() for any Unicode path; null on failure.
    static FILE* fopen(QString const& path, char const* mode);
    /// freopen() for any Unicode path; null on failure.
    static FILE* freopen(QString const& path, char const* mode, FILE* stream);
    /// A file descriptor, or -1 with errno set.
    static int open(QString const& path, int flags, int mode);
    /// open() of this path: a file descriptor, or -1 with errno set.
    int open(int flags, int mode) const;
    /// freopen() of this path; null on failure.
    FILE* reopen(char const* mode, FILE* stream) const;
    /// fopen() of this path; null on failure.
    FILE* get_fs(char const* mode) const;
    /**@}*/

    /// @name Special folders (0 or an errno value)
    /**@{*/
    /// Names the per-user settings folder.
    int InitUserAppDataFolder();
    /// Names the per-user data folder.
    int InitUserLocalAppDataFolder();
    /// Names the folder shared by all users of the machine.
    int InitSharedAppDataFolder();
    /// Names the user's documents folder.
    int InitUserDocumentsFolder();
    /// There is no public documents folder here: returns ENOTSUP and leaves the
    /// spec unchanged.
    int WindowsPublicDocumentPath();
    /// 0 when the path is not a shortcut; ENOTSUP for a ".lnk" shortcut, which
    /// cannot be followed here.
    int resolveShortcuts();
    /**@}*/

    /// @name Temporary files
    /**@{*/
    /// Names a new file "tmpfs_N.tmp" in the process's temporary-files folder
    /// (emptied at its first use in the process). The file is not created.
    int InitTempFile();
    /// Names the session folder (kept from one run to the next).
    int InitSessionTempFolder();
    /**@}*/

    /// @name Enumeration
    /**@{*/
    /// Starts the enumeration of this folder (ended at once when it cannot be read).
    PL_FileSpec_iterator begin() const;
    /// The ended iterator.
    PL_FileSpec_iterator end() const;
    /**@}*/

    /// Exact comparison of the path texts.
    bool operator==(PL_FileSpec const& other) const { return m_path == other.m_path; }
    /// Negation of operator==.
    bool operator!=(PL_FileSpec const& other) const { return !(*this == other); }

private:
    PL_FileInfo const& info() const;
    void setPath(QString const& path);

    UT_String m_path;
    mutable PL_FileInfo m_info;
};

/// Walks the entries of a folder ('.' and '..' skipped) in the order the file
/// system gives them. A folder that cannot be read gives an ended iterator at
/// once. Copies share the enumeration: advancing one moves the position the
/// others continue from (intended), so keep one iterator per walk.
class BRINDLE_EXPORT PL_FileSpec_iterator
{
public:
    /// An ended iterator.
    PL_FileSpec_iterator() = default;
    /// Starts the enumeration of `folder` and stands on its first entry.
    explicit PL_FileSpec_iterator(PL_FileSpec const& folder);
    /// Shares the enumeration.
    PL_FileSpec_iterator(PL_FileSpec_iterator const&) = default;
    /// Shares the enumeration.
    PL_FileSpec_iterator& operator=(PL_FileSpec_iterator const&) = default;
    ~PL_FileSpec_iterator();

    /// The current entry.
    PL_FileSpec const& operator*() const { return m_current; }
    /// The current entry.
    PL_FileSpec const* operator->() const { return &m_current; }
    /// Moves to the next entry (see Advance()).
    PL_FileSpec_iterator& operator++()
    {
        Advance();
        return *this;
    }
    /// Moves to the next entry; the iterator ends after the last one.
    void Advance();
    /// Whether the enumeration is over.
    bool IsEnd() const { return !m_handle; }

    /// Two ended iterators are equal; otherwise equal when at the same entry of
    /// the same enumeration.
    bool operator==(PL_FileSpec_iterator const& other) const;
    /// Negation of operator==.
    bool operator!=(PL_FileSpec_iterator const& other) const { return !(*this == other); }

private:
    struct Handle;
    bool next();

    PL_FileSpec m_current;
    std::shared_ptr<Handle> m_handle; // null once ended
};
