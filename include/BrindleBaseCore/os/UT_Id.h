// Unique identifiers.
#pragma once

#include <BrindleBaseCore/Global.h>
#include <BrindleBaseCore/text/UT_String.h>

#include <QtCore/QUuid>

/// A 128-bit unique identifier. A default-constructed UT_Id is a new identifier,
/// different from every other one made anywhere; UT_Id::Null() is the all-zero
/// one. The text form is the usual braced, lower-case hexadecimal form
/// "{xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx}".
class BRINDLE_EXPORT UT_Id
{
public:
    UT_Id();
    explicit UT_Id(QUuid const& uuid)
        : m_uuid(uuid)
    {}

    static UT_Id Null();
    /// Reads the text form (with or without braces); the null identifier when
    /// the text is not one.
    static UT_Id FromString(UT_String const& text);

    bool IsNull() const { return m_uuid.isNull(); }
    UT_String AsString() const;
    QString toString() const;
    QUuid const& uuid() const { return m_uuid; }

    friend bool operator==(UT_Id const& a, UT_Id const& b) { return a.m_uuid == b.m_uuid; }
    friend bool operator!=(UT_Id const& a, UT_Id const& b) { return a.m_uuid != b.m_uuid; }
    friend bool operator<(UT_Id const& a, UT_Id const& b) { return a.m_uuid < b.m_uuid; }

private:
    QUuid m_uuid;
};
