#include <BrindleBaseCore/app/MSG_Text.h>

#include <QtCore/QCoreApplication>

namespace {
QChar const blank = QLatin1Char(' ');
}

MSG_Text::MSG_Text() = default;

MSG_Text::MSG_Text(QString const& text)
    : m_text(text)
    , m_translatedText(text)
{}

MSG_Text::MSG_Text(char const* context, char const* sourceText, WithContextTag)
    : m_text(QString::fromLatin1(sourceText))
{
    m_translatedText =
        QCoreApplication::instance() ? QCoreApplication::translate(context, sourceText) : m_text;
}

MSG_Text::MSG_Text(char const* text, QString const& translated, WithTranslatedTextTag)
    : m_text(QString::fromLatin1(text))
    , m_translatedText(translated)
{}

MSG_Text::MSG_Text(QString const& text, QString const& translated, WithTranslatedTextTag)
    : m_text(text)
    , m_translatedText(translated)
{}

// The code is deliberately not copied.
MSG_Text::MSG_Text(MSG_Text const& other)
    : m_text(other.m_text)
    , m_translatedText(other.m_translatedText)
{}

// The target deliberately keeps its own code.
MSG_Text& MSG_Text::operator=(MSG_Text const& other)
{
    m_text = other.m_text;
    m_translatedText = other.m_translatedText;
    return *this;
}

MSG_Text::~MSG_Text() = default;

MSG_Text& MSG_Text::errorCode(ErrorCode::Type code)
{
    m_errorCode = code;
    return *this;
}

MSG_Text MSG_Text::operator+(MSG_Text const& other) const
{
    return MSG_Text(m_text + other.m_text, m_translatedText + other.m_translatedText,
                    WithTranslatedText);
}

MSG_Text MSG_Text::operator+(QString const& other) const
{
    return MSG_Text(m_text + other, m_translatedText + other, WithTranslatedText);
}

MSG_Text& MSG_Text::operator+=(MSG_Text const& other)
{
    m_text += other.m_text;
    m_translatedText += other.m_translatedText;
    return *this;
}

MSG_Text& MSG_Text::operator+=(QString const& other)
{
    m_text += other;
    m_translatedText += other;
    return *this;
}

template <typename Apply>
MSG_Text& MSG_Text::applyToBoth(Apply const& apply)
{
    m_text = apply(m_text);
    m_translatedText = apply(m_translatedText);
    return *this;
}

MSG_Text& MSG_Text::arg(MSG_Text const& other)
{
    m_text = m_text.arg(other.m_text);
    m_translatedText = m_translatedText.arg(other.m_translatedText);
    return *this;
}

MSG_Text& MSG_Text::arg(QString const& a, int fieldWidth)
{
    return applyToBoth([&](QString const& s) { return s.arg(a, fieldWidth, blank); });
}

MSG_Text& MSG_Text::arg(QString const& a1, QString const& a2)
{
    return applyToBoth([&](QString const& s) { return s.arg(a1, a2); });
}

MSG_Text& MSG_Text::arg(QString const& a1, QString const& a2, QString const& a3)
{
    return applyToBoth([&](QString const& s) { return s.arg(a1, a2, a3); });
}

MSG_Text& MSG_Text::arg(QString const& a1, QString const& a2, QString const& a3, QString const& a4)
{
    return applyToBoth([&](QString const& s) { return s.arg(a1, a2, a3, a4); });
}

MSG_Text& MSG_Text::arg(char const* a, int fieldWidth)
{
    return arg(QString::fromUtf8(a), fieldWidth);
}

MSG_Text& MSG_Text::arg(std::string const& a, int fieldWidth)
{
    return arg(QString::fromLatin1(a.data(), qsizetype(a.size())), fieldWidth);
}

namespace {
template <typename Integer>
auto integerArg(Integer value, int fieldWidth, int base)
{
    return [=](QString const& s) { return s.arg(value, fieldWidth, base, blank); };
}
} // namespace

MSG_Text& MSG_Text::arg(short a, int fieldWidth, int base)
{
    return applyToBoth(integerArg(a, fieldWidth, base));
}

MSG_Text& MSG_Text::arg(unsigned short a, int fieldWidth, int base)
{
    return applyToBoth(integerArg(a, fieldWidth, base));
}

MSG_Text& MSG_Text::arg(int a, int fieldWidth, int base)
{
    return applyToBoth(integerArg(a, fieldWidth, base));
}

MSG_Text& MSG_Text::arg(unsigned int a, int fieldWidth, int base)
{
    return applyToBoth(integerArg(a, fieldWidth, base));
}

MSG_Text& MSG_Text::arg(long a, int fieldWidth, int base)
{
    return applyToBoth(integerArg(a, fieldWidth, base));
}

MSG_Text& MSG_Text::arg(unsigned long a, int fieldWidth, int base)
{
    return applyToBoth(integerArg(a, fieldWidth, base));
}

MSG_Text& MSG_Text::arg(qint64 a, int fieldWidth, int base)
{
    return applyToBoth(integerArg(a, fieldWidth, base));
}

MSG_Text& MSG_Text::arg(quint64 a, int fieldWidth, int base)
{
    return applyToBoth(integerArg(a, fieldWidth, base));
}

MSG_Text& MSG_Text::arg(double a, int fieldWidth, char format, int precision)
{
    return applyToBoth(
        [&](QString const& s) { return s.arg(a, fieldWidth, format, precision, blank); });
}
