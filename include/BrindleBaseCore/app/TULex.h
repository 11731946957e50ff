#pragma once

#include <BrindleBaseCore/Global.h>

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <iosfwd>
#include <string>

class MSG_Text;
class PL_FileSpec;
class QTextStream;

/// The tokenizer of the family's text formats.
///
/// A lexer reads an 8-bit text (ending at its first NUL byte) one token at a
/// time: the current token is always available and get() replaces it with the
/// next one. Tokens are names (runs of name characters), single punctuation
/// characters, and, in the default dialect, double-quoted strings with
/// backslash escapes. The comma-driven dialect (setCommaDriven) reads
/// comma-separated data: commas stand alone, "#" starts a comment line and
/// double quotes are skipped like blanks.
///
/// An empty current token means the end of the text (eof()). Syntax errors are
/// reported as warnings on the message channel naming the line and the token;
/// reading goes on and isError() tells afterwards. Nothing throws.
///
/// Not thread-safe; one lexer per reader. The text given to the in-place
/// constructors is not copied and must outlive the lexer.
class BRINDLE_EXPORT TULex
{
public:
    /// The process-wide compatibility setting of the readers; the readers that
    /// use it decide what each value means.
    enum CompatWithVersion : int
    {
        CompatCurrent = 0 ///< The current formats.
    };

    /// An empty text: eof() at once.
    TULex();
    /// Reads `text` in place; it must outlive the lexer.
    explicit TULex(QByteArray const& text);
    /// Reads `text` in place; null reads as "".
    explicit TULex(char const* text);
    /// Frees a file read by openFile().
    ~TULex();

    TULex(TULex const&) = delete;
    TULex& operator=(TULex const&) = delete;

    /// Reads a whole file and its first token, line 1. False (lexer unchanged)
    /// when the file cannot be opened for reading.
    bool openFile(PL_FileSpec const& file);
    /// As openFile(PL_FileSpec const&), by path.
    bool openFile(QString const& path);

    /// Advances to the next token. With raw true a token runs up to the next
    /// blank, tab or line feed (or comma in the comma-driven dialect) instead of
    /// stopping at the first character that cannot be part of a name.
    void get(bool raw = false);
    /// Whether the text is exhausted (empty token).
    bool eof() const { return token().empty(); }

    /// Whether the token equals `text`.
    bool operator==(char const* text) const;
    /// Whether the token equals `text` (as Latin-1).
    bool operator==(QString const& text) const;
    /// Whether the token equals `text`.
    bool operator==(std::string const& text) const { return token() == text; }
    /// Negation of operator==.
    bool operator!=(char const* text) const { return !(*this == text); }
    /// Negation of operator==.
    bool operator!=(QString const& text) const { return !(*this == text); }
    /// Negation of operator==.
    bool operator!=(std::string const& text) const { return token() != text; }

    /// The token read as Latin-1.
    operator QString() const;
    /// The token read as UTF-8.
    QString fromUtf8() const;
    /// The token's bytes.
    std::string const& asString() const { return token(); }

    /// Numeric value of the token, converted once per token. A token is an int
    /// when a base-10 integer conversion consumes all of it (values beyond 32
    /// bits saturate), and a double when a floating-point conversion does; an
    /// int token is a double too. For a token that is not a number the value
    /// is what the C conversion reads from its start ("12a" gives 12, "a" 0).
    operator int() const;
    /// The token as a double (for other tokens as operator int() says).
    operator double() const;
    /// Whether the token is an int.
    bool isInt() const;
    /// Whether the token is a double (ints included).
    bool isDouble() const;

    /// Typed reads: on success store the value and advance; get_int/get_double
    /// report "Expecting number." and store 0 on failure. get_bool takes a lone
    /// Y/y or N/n and reports nothing on failure.
    bool get_int(int& value);
    /// As get_int, for an unsigned value.
    bool get_uint(unsigned& value);
    /// Reads a double (see above).
    bool get_double(double& value);
    /// Reads Y/y or N/n (see above).
    bool get_bool(bool& value);
    /// Takes only a capital "Y" or "N" (stricter than get_bool on purpose).
    bool parseBool(bool& value);
    /// Advances past the current token first, then get_double(); a negative
    /// value when negatives are not allowed becomes 0 and is reported.
    bool parseDouble(double& value, bool allowNegative);

    /// Discards the rest of the line (with its line feed) and reads the next token.
    void skipToNextLine();
    /// The line the reader is on: past the current token's line feed when the
    /// token ended with one.
    unsigned getLineNo() const { return m_lineNo; }
    /// The line on which the current token starts.
    unsigned getTokenLineNo() const { return m_tokenStartLine; }

    /// Reports `Syntax error at line N:\n MESSAGE (TOKEN)` with error code 3
    /// as a warning and sets isError(). After a successful typed read the line and
    /// the token are those of the value just consumed.
    void syntaxErr(MSG_Text const& message);
    /// Whether a syntax error was reported.
    bool isError() const { return m_errorSeen; }

    /// Switches the comma-driven dialect on; the argument is ignored on purpose.
    void setCommaDriven(bool on);
    /// Syntax errors are then reported with an answer flag, so that an
    /// interactive channel can offer to ignore further errors: a channel that
    /// clears the flag stops all further reports of this lexer.
    void enableYesToAll() { m_yesToAll = true; }

    /// The format version of the text read (default 2501).
    unsigned versionNumber() const { return m_versionNumber; }
    /// The build number of the text read (default 24106).
    unsigned buildNumber() const { return m_buildNumber; }
    /// Sets versionNumber().
    void setVersionNumber(unsigned version) { m_versionNumber = version; }
    /// Sets buildNumber().
    void setBuildNumber(unsigned build) { m_buildNumber = build; }
    /// 2501.
    static unsigned defaultVersionNumber() { return 2501; }
    /// 24106.
    static unsigned defaultBuildNumber() { return 24106; }
    /// Stores value when set is true; returns the stored setting.
    static CompatWithVersion compatWithVersion(bool set, CompatWithVersion value);

    /// Writers whose output get() reads back as exactly one token equal to the
    /// given text. A name made only of name characters is written bare, anything
    /// else as a quoted string. writeName writes Latin-1 (read back with the
    /// QString conversion; characters outside Latin-1 become '?'), writeNameUtf8
    /// and writeString write UTF-8 (read back with fromUtf8()); the QTextStream
    /// form leaves the encoding to the stream. A NUL character cannot be
    /// represented in the text and is left out.
    static void writeName(std::ostream& out, QString const& name);
    /// As above, through a QTextStream.
    static void writeName(QTextStream& out, QString const& name);
    /// As writeName(), in UTF-8.
    static void writeNameUtf8(std::ostream& out, QString const& name);
    /// Always a quoted string, in UTF-8.
    static void writeString(std::ostream& out, QString const& text);

private:
    void reset(char const* text, size_t length, char* owned);
    std::string& token() { return m_tokens[m_current]; }
    std::string const& token() const { return m_tokens[m_current]; }
    void convertNumber() const;
    void reportExpectingNumber();

    char const* m_buffer = nullptr;
    unsigned char const* m_cursor = nullptr;
    unsigned char const* m_end = nullptr; // the text's terminating NUL
    char* m_ownedBuffer = nullptr;
    std::string m_tokens[2]; // the current token and the one before it
    unsigned char m_current = 0;
    mutable bool m_numberCached = false;
    mutable bool m_isIntValue = false;
    mutable bool m_isDoubleValue = false;
    mutable int m_intValue = 0;
    mutable double m_doubleValue = 0.0;
    unsigned m_lineNo = 1;
    unsigned m_tokenLine = 1;
    unsigned m_tokenStartLine = 1;
    bool m_errorRefersToPrevious = false;
    bool m_errorSeen = false;
    bool m_commaDriven = false;
    bool m_yesToAll = false;
    bool m_yesToAllChosen = false;
    unsigned m_versionNumber = 2501;
    unsigned m_buildNumber = 24106;
};
