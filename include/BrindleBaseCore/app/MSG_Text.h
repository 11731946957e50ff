// User-facing texts: a source text, its translation and an error code.
#pragma once

#include <BrindleBaseCore/Global.h>

#include <QtCore/QString>
#include <QtCore/QtGlobal>

#include <string>

/// The error codes of reports.
namespace ErrorCode {
/// A 32-bit error code; 0 means "no error". Any other value may be used through
/// `static_cast<ErrorCode::Type>(n)`: the smaller a non-zero code, the more severe.
enum Type : quint32
{
    NoError = 0 ///< No error.
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
    /// Tag: the second constructor argument is the source text, to be
    /// translated in the context given first.
    enum WithContextTag
    {
        WithContext ///< The only value.
    };
    /// Tag: the second constructor argument is the translation.
    enum WithTranslatedTextTag
    {
        WithTranslatedText ///< The only value.
    };

    /// Both strings empty, code 0.
    MSG_Text();
    /// text = sourceText (Latin-1); translatedText = the application's translation
    /// of it in the given context, or the source text when no application exists.
    MSG_Text(char const* context, char const* sourceText, WithContextTag);
    /// text read as Latin-1, translation given.
    MSG_Text(char const* text, QString const& translated, WithTranslatedTextTag);
    /// Text and translation given.
    MSG_Text(QString const& text, QString const& translated, WithTranslatedTextTag);

    /// Copies both strings; the copy's error code is 0 (intended).
    MSG_Text(MSG_Text const& other);
    /// Copies both strings; keeps this text's own error code (intended).
    MSG_Text& operator=(MSG_Text const& other);
    /// Destructor.
    ~MSG_Text();

    /// The untranslated source text.
    QString const& getText() const { return m_text; }
    /// The translation.
    QString const& getTranslatedText() const { return m_translatedText; }
    /// True when the source text is empty, whatever the translation holds.
    bool isEmpty() const { return m_text.isEmpty(); }

    /// The error code (0: none).
    ErrorCode::Type errorCode() const { return m_errorCode; }
    /// Sets the error code; returns this text.
    MSG_Text& errorCode(ErrorCode::Type code);

    /// Concatenations of both strings; the result's code is 0 (intended). A plain
    /// string is appended to both the text and the translation.
    MSG_Text operator+(MSG_Text const& other) const;
    /// Appends `other` to both strings; code 0.
    MSG_Text operator+(QString const& other) const;
    /// Appends text to text and translation to translation.
    MSG_Text& operator+=(MSG_Text const& other);
    /// Appends `other` to both strings.
    MSG_Text& operator+=(QString const& other);

    /// @name Place markers
    /// QString::arg applied to both strings (fill character: a blank).
    ///@{

    /// Puts the other's text into the text and its translation into the
    /// translation.
    MSG_Text& arg(MSG_Text const& other);
    /// Replaces the lowest-numbered place marker (%1, %2, ...) with `a`.
    MSG_Text& arg(QString const& a, int fieldWidth = 0);
    /// Replaces the two lowest-numbered place markers, in order.
    MSG_Text& arg(QString const& a1, QString const& a2);
    /// Replaces the three lowest-numbered place markers, in order.
    MSG_Text& arg(QString const& a1, QString const& a2, QString const& a3);
    /// Replaces the four lowest-numbered place markers, in order.
    MSG_Text& arg(QString const& a1, QString const& a2, QString const& a3, QString const& a4);
    /// A C string is read as UTF-8, a std::string as Latin-1 (the asymmetry is intended).
    MSG_Text& arg(char const* a, int fieldWidth = 0);
    /// `a` read as Latin-1.
    MSG_Text& arg(std::string const& a, int fieldWidth = 0);
    /// The number in `base`.
    MSG_Text& arg(short a, int fieldWidth = 0, int base = 10);
    /// The number in `base`.
    MSG_Text& arg(unsigned short a, int fieldWidth = 0, int base = 10);
    /// The number in `base`.
    MSG_Text& arg(int a, int fieldWidth = 0, int base = 10);
    /// The number in `base`.
    MSG_Text& arg(unsigned int a, int fieldWidth = 0, int base = 10);
    /// The number in `base`.
    MSG_Text& arg(long a, int fieldWidth = 0, int base = 10);
    /// The number in `base`.
    MSG_Text& arg(unsigned long a, int fieldWidth = 0, int base = 10);
    /// The number in `base`.
    MSG_Text& arg(qint64 a, int fieldWidth = 0, int base = 10);
    /// The number in `base`.
    MSG_Text& arg(quint64 a, int fieldWidth = 0, int base = 10);
    /// The number in printf `format` with `precision`.
    MSG_Text& arg(double a, int fieldWidth = 0, char format = 'g', int precision = -1);
    ///@}

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
