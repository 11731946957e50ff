// The action log: a text file, one line per event, that records what the user
// did and every file operation with its outcome.
#pragma once

#include <BrindleBaseCore/Global.h>
#include <BrindleBaseCore/text/UT_String.h>

#include <QtCore/QString>

#include <memory>

/// One log file, "<folder>/<yyyyMMdd-hhmmss>_<computer>_<user>.log", UTF-8 with
/// a byte-order mark. Each line starts with the indent (blanks) and the local
/// time "yyyy-MM-dd hh:mm:ss"; fields are separated by ';':
///
///   <time>;ACTION;<text>
///   <time>;<operation>;<path>;<path2>;SUCCESS        (or ;===> FAIL <===)
///   <time>;<file operation>;<path>;<path2> OK         (or  ===> FAIL <==== )
///
/// The two operation forms differ on purpose (no separator before the status,
/// other markers, five '=' after FAIL): readers of existing logs rely on both.
/// Every line is written to the file at once (unbuffered), so a crash loses at
/// most the line being written. Nothing reports errors or throws: every
/// operation returns false when the file is not open or cannot be written.
/// Not locked: a log is meant to be written from the main thread.
class BRINDLE_EXPORT UT_Log
{
public:
    /// The file operations of the second line form; any other value is written
    /// as "Unknown".
    enum class eFileOperation
    {
        Create = 0,
        Update = 1,
        Copy = 2,
        Move = 3,
        Rename = 4,
        Delete = 5,
        Swap = 6,
        Symlink = 7,
        HardLink = 8
    };

    UT_Log();
    ~UT_Log();
    UT_Log(UT_Log const&) = delete;
    UT_Log& operator=(UT_Log const&) = delete;

    /// Starts a new file in folder (remapped through BAPP_RemapPath, created
    /// when missing, one level only) with the line "Log file produced by: "
    /// and the application's full version text. Closes the current file first.
    bool create(QString const& folder);
    /// Closes the file; true when it was open.
    bool close();
    /// Reopens the same file for appending; false when it is already open or
    /// there is no file yet.
    bool reopen();
    bool isOpen() const;
    /// The current (or last) file's path; empty before create().
    QString fileName() const;

    bool logAction(QString const& text);
    /// Copies the file to <folder>/<file's base name><suffix>.log (remapped),
    /// replacing an existing copy.
    bool copyLog(QString const& folder, QString const& suffix);

    bool add(QString const& operation, QString const& path, bool ok);
    bool add(QString const& operation, QString const& path, QString const& path2, bool ok);
    bool add(QString const& operation, UT_String const& path, bool ok);
    bool add(QString const& operation, UT_String const& path, UT_String const& path2, bool ok);
    bool add(eFileOperation operation, QString const& path, bool ok);
    bool add(eFileOperation operation, QString const& path, QString const& path2, bool ok);
    bool add(eFileOperation operation, UT_String const& path, bool ok);
    bool add(eFileOperation operation, UT_String const& path, UT_String const& path2, bool ok);

    /// Blanks written before each line; never below 0.
    int indent() const;
    void setIndent(int indent);

    /// The text written for a file operation ("Copy", ..., "Unknown").
    static QString operationText(eFileOperation operation);

private:
    struct Private;
    std::unique_ptr<Private> d;
};

// The process's action log: free functions around one shared UT_Log, made by
// create() and destroyed by close(). Each returns false (or does nothing) when
// the shared log does not exist. Every action logged here is also handed to
// the crash tracker (UT_Tracking::trackAction), so that a crash report carries
// the last actions, even while the log is paused.
namespace UT_LogIO {

BRINDLE_EXPORT bool create(QString const& folder);
/// Closes the file and destroys the shared log; a later create() starts a new file.
BRINDLE_EXPORT bool close();
BRINDLE_EXPORT bool isOpen();
/// Closes the file but keeps the log (its name and indent) for resume().
BRINDLE_EXPORT bool pause();
BRINDLE_EXPORT bool resume();
/// Hands the text to the crash tracker, then writes it; true when written.
BRINDLE_EXPORT bool logAction(QString const& text);
BRINDLE_EXPORT bool copyLog(QString const& folder, QString const& suffix);
/// "<yyyyMMdd-hhmmss>_<computer>_<user>" (+ ".log"), as create() names files.
BRINDLE_EXPORT QString buildLogFileName(bool withExtension);
/// "message (file,line)" with the source file's name after its last '/' (or,
/// without one, its last '\').
BRINDLE_EXPORT QString createMsg(char const* message, char const* sourceFile, int line);
/// The shared log, or null.
BRINDLE_EXPORT UT_Log* sharedLog();

BRINDLE_EXPORT bool add(QString const& operation, QString const& path, bool ok);
BRINDLE_EXPORT bool add(QString const& operation, QString const& path, QString const& path2,
                        bool ok);
BRINDLE_EXPORT bool add(QString const& operation, UT_String const& path, bool ok);
BRINDLE_EXPORT bool add(QString const& operation, UT_String const& path, UT_String const& path2,
                        bool ok);
BRINDLE_EXPORT bool add(UT_Log::eFileOperation operation, QString const& path, bool ok);
BRINDLE_EXPORT bool add(UT_Log::eFileOperation operation, QString const& path, QString const& path2,
                        bool ok);
BRINDLE_EXPORT bool add(UT_Log::eFileOperation operation, UT_String const& path, bool ok);
BRINDLE_EXPORT bool add(UT_Log::eFileOperation operation, UT_String const& path,
                        UT_String const& path2, bool ok);

/// Brackets a stretch of work: "Start <name>" when made and "End <name>" when
/// destroyed, both at the same indentation, with the lines between them two
/// blanks further in. Does nothing when there is no shared log.
class BRINDLE_EXPORT Scope
{
public:
    explicit Scope(QString const& name);
    ~Scope();
    Scope(Scope const&) = delete;
    Scope& operator=(Scope const&) = delete;

private:
    QString m_name;
};

} // namespace UT_LogIO
