// User-facing texts: a source text, its translation and an error code.
#pragma once

#include <BrindleBaseCore/Global.h>

#include <QtCore/QString>
#include <QtCore/QtGlobal>

#include <string>

namespace ErrorCode {
/// A 32-bit error code; 0 means "no error". Any other value may be used through
/// static_cast<ErrorCode::Type>(n): the smaller a non-zero code, the more severe.
enum Type : quint32
{
    NoError = 0
};
} // namespace ErrorCode

/// A text shown to the user, kept as two parallel strings: the untranslated
/// source text and its translation, plus the error code that goes with it when
/// it is reported. Every operation acts on both strings alike.
///
/// Value semantics with two intended quirks: a copy starts with error code 0,
/// and assignment leaves the target's error code as it was.
class BRINDLE_EXPORT MSG_Text
{
public:
    /// Tags that select the meaning of the second argument of a constructor.
    enum WithContextTag
    {
        WithContext
    };
    enum WithTranslatedTextTag
    {
        WithTranslatedText
    };

    /// Both strings empty, code 0.
    MSG_Text();
    /// text = sourceText (Latin-1); translatedText = the application's translation
    /// of it in the given context, or the source text when no application exists.
    MSG_Text(char const* context, char const* sourceText, WithContextTag);
    /// text read as Latin-1, translation given.
    MSG_Text(char const* text, QString const& translated, WithTranslatedTextTag);
    MSG_Text(QString const& text, QString const& translated, WithTranslatedTextTag);

    /// Copies both strings; the copy's error code is 0 (intended).
    MSG_Text(MSG_Text const& other);
    /// Copies both strings; keeps this text's own error code (intended).
    MSG_Text& operator=(MSG_Text const& other);
    ~MSG_Text();

    QString const& getText() const { return m_text; }
    QString const& getTranslatedText() const { return m_translatedText; }
    /// True when the source text is empty, whatever the translation holds.
    bool isEmpty() const { return m_text.isEmpty(); }

    ErrorCode::Type errorCode() const { return m_errorCode; }
    MSG_Text& errorCode(ErrorCode::Type code);

    /// Concatenations of both strings; the result's code is 0 (intended). A plain
    /// string is appended to both the text and the translation.
    MSG_Text operator+(MSG_Text const& other) const;
    MSG_Text operator+(QString const& other) const;
    MSG_Text& operator+=(MSG_Text const& other);
    MSG_Text& operator+=(QString const& other);

    /// QString::arg applied to both strings (fill character: a blank).
    /// arg(MSG_Text) puts the other's text into the text and its translation
    /// into the translation.
    MSG_Text& arg(MSG_Text const& other);
    MSG_Text& arg(QString const& a, int fieldWidth = 0);
    MSG_Text& arg(QString const& a1, QString const& a2);
    MSG_Text& arg(QString const& a1, QString const& a2, QString const& a3);
    MSG_Text& arg(QString const& a1, QString const& a2, QString const& a3, QString const& a4);
    /// A C string is read as UTF-8, a std::string as Latin-1 (the asymmetry is intended).
    MSG_Text& arg(char const* a, int fieldWidth = 0);
    MSG_Text& arg(std::string const& a, int fieldWidth = 0);
    MSG_Text& arg(short a, int fieldWidth = 0, int base = 10);
    MSG_Text& arg(unsigned short a, int fieldWidth = 0, int base = 10);
    MSG_Text& arg(int a, int fieldWidth = 0, int base = 10);
    MSG_Text& arg(unsigned int a, int fieldWidth = 0, int base = 10);
    MSG_Text& arg(long a, int fieldWidth = 0, int base = 10);
    MSG_Text& arg(unsigned long a, int fieldWidth = 0, int base = 10);
    MSG_Text& arg(qint64 a, int fieldWidth = 0, int base = 10);
    MSG_Text& arg(quint64 a, int fieldWidth = 0, int base = 10);
    MSG_Text& arg(double a, int fieldWidth = 0, char format = 'g', int precision = -1);

protected:
    /// The same string as text and translation.
    explicit MSG_Text(QString const& text);

private:
    template <typename Apply>
    MSG_Text& applyToBoth(Apply const& apply);

    QString m_text;
    QString m_translatedText;
    ErrorCode::Type m_errorCode = ErrorCode::NoError;
};
