// The action log: a text file, one line per event, that records what the user
// did and every file operation with its outcome.
#pragma once

#include <BrindleBaseCore/Global.h>
#include <BrindleBaseCore/text/UT_String.h>

#include <QtCore/QString>

#include <memory>

/// One log file, `<folder>/<yyyyMMdd-hhmmss>_<computer>_<user>.log`, UTF-8 with
/// a byte-order mark. Each line starts with the indent (blanks) and the local
/// time "yyyy-MM-dd hh:mm:ss"; fields are separated by ';':
///
/// @verbatim
/// <time>;ACTION;<text>
/// <time>;<operation>;<path>;<path2>;SUCCESS        (or ;===> FAIL <===)
/// <time>;<file operation>;<path>;<path2> OK         (or  ===> FAIL <==== )
/// @endverbatim
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
        Create = 0,  ///< "Create".
        Update = 1,  ///< "Update".
        Copy = 2,    ///< "Copy".
        Move = 3,    ///< "Move".
        Rename = 4,  ///< "Rename".
        Delete = 5,  ///< "Delete".
        Swap = 6,    ///< "Swap".
        Symlink = 7, ///< "Symlink".
        HardLink = 8 ///< "HardLink".
    };

    /// A log with no file (create() starts one).
    UT_Log();
    /// Closes the file.
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
    /// Whether the file is open.
    bool isOpen() const;
    /// The current (or last) file's path; empty before create().
    QString fileName() const;

    /// Writes an ACTION line; false when not written.
    bool logAction(QString const& text);
    /// Copies the file to `<folder>/<file's base name><suffix>.log` (remapped),
    /// replacing an existing copy.
    bool copyLog(QString const& folder, QString const& suffix);

    /// @name Operation lines
    /// Each writes one line and returns false when it was not written.
    ///@{

    /// Writes an operation line for one path; false when not written.
    bool add(QString const& operation, QString const& path, bool ok);
    /// Writes an operation line for two paths.
    bool add(QString const& operation, QString const& path, QString const& path2, bool ok);
    /// As above, with UT_String paths.
    bool add(QString const& operation, UT_String const& path, bool ok);
    /// As above, with UT_String paths.
    bool add(QString const& operation, UT_String const& path, UT_String const& path2, bool ok);
    /// Writes a file-operation line for one path; false when not written.
    bool add(eFileOperation operation, QString const& path, bool ok);
    /// Writes a file-operation line for two paths.
    bool add(eFileOperation operation, QString const& path, QString const& path2, bool ok);
    /// As above, with UT_String paths.
    bool add(eFileOperation operation, UT_String const& path, bool ok);
    /// As above, with UT_String paths.
    bool add(eFileOperation operation, UT_String const& path, UT_String const& path2, bool ok);
    ///@}

    /// Blanks written before each line; never below 0.
    int indent() const;
    /// Sets indent() (a negative value gives 0).
    void setIndent(int indent);

    /// The text written for a file operation ("Copy", ..., "Unknown").
    static QString operationText(eFileOperation operation);

private:
    struct Private;
    std::unique_ptr<Private> d;
};

/// The process's action log: free functions around one shared UT_Log, made by
/// create() and destroyed by close(). Each returns false (or does nothing) when
/// the shared log does not exist. Every action logged here is also handed to
/// the crash tracker (UT_Tracking::trackAction), so that a crash report carries
/// the last actions, even while the log is paused.
namespace UT_LogIO {

/// Creates the shared log and its file (see UT_Log::create()).
BRINDLE_EXPORT bool create(QString const& folder);
/// Closes the file and destroys the shared log; a later create() starts a new file.
BRINDLE_EXPORT bool close();
/// Whether the shared log's file is open.
BRINDLE_EXPORT bool isOpen();
/// Closes the file but keeps the log (its name and indent) for resume().
BRINDLE_EXPORT bool pause();
/// Reopens the paused file (see UT_Log::reopen()).
BRINDLE_EXPORT bool resume();
/// Hands the text to the crash tracker, then writes it; true when written.
BRINDLE_EXPORT bool logAction(QString const& text);
/// UT_Log::copyLog() on the shared log.
BRINDLE_EXPORT bool copyLog(QString const& folder, QString const& suffix);
/// `<yyyyMMdd-hhmmss>_<computer>_<user>` (+ ".log"), as create() names files.
BRINDLE_EXPORT QString buildLogFileName(bool withExtension);
/// "message (file,line)" with the source file's name after its last '/' (or,
/// without one, its last backslash).
BRINDLE_EXPORT QString createMsg(char const* message, char const* sourceFile, int line);
/// The shared log, or null.
BRINDLE_EXPORT UT_Log* sharedLog();

/// UT_Log::add() on the shared log.
BRINDLE_EXPORT bool add(QString const& operation, QString const& path, bool ok);
/// UT_Log::add() on the shared log.
BRINDLE_EXPORT bool add(QString const& operation, QString const& path, QString const& path2,
                        bool ok);
/// UT_Log::add() on the shared log.
BRINDLE_EXPORT bool add(QString const& operation, UT_String const& path, bool ok);
/// UT_Log::add() on the shared log.
BRINDLE_EXPORT bool add(QString const& operation, UT_String const& path, UT_String const& path2,
                        bool ok);
/// UT_Log::add() on the shared log.
BRINDLE_EXPORT bool add(UT_Log::eFileOperation operation, QString const& path, bool ok);
/// UT_Log::add() on the shared log.
BRINDLE_EXPORT bool add(UT_Log::eFileOperation operation, QString const& path, QString const& path2,
                        bool ok);
/// UT_Log::add() on the shared log.
BRINDLE_EXPORT bool add(UT_Log::eFileOperation operation, UT_String const& path, bool ok);
/// UT_Log::add() on the shared log.
BRINDLE_EXPORT bool add(UT_Log::eFileOperation operation, UT_String const& path,
                        UT_String const& path2, bool ok);

/// Brackets a stretch of work: "Start NAME" when made and "End NAME" when
/// destroyed, both at the same indentation, with the lines between them two
/// blanks further in. Does nothing when there is no shared log.
class BRINDLE_EXPORT Scope
{
public:
    /// Writes "Start NAME" and indents by two.
    explicit Scope(QString const& name);
    /// Unindents and writes "End NAME".
    ~Scope();
    Scope(Scope const&) = delete;
    Scope& operator=(Scope const&) = delete;

private:
    QString m_name;
};

} // namespace UT_LogIO
