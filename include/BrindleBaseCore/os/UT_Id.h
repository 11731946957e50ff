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
    /// A new identifier.
    UT_Id();
    /// The identifier with this value.
    explicit UT_Id(QUuid const& uuid)
        : m_uuid(uuid)
    {}

    /// The all-zero identifier.
    static UT_Id Null();
    /// Reads the text form (with or without braces); the null identifier when
    /// the text is not one.
    static UT_Id FromString(UT_String const& text);

    /// Whether this is the all-zero identifier.
    bool IsNull() const { return m_uuid.isNull(); }
    /// The braced text form.
    UT_String AsString() const;
    /// The braced text form.
    QString toString() const;
    /// The underlying value.
    QUuid const& uuid() const { return m_uuid; }

    /// Same identifier.
    friend bool operator==(UT_Id const& a, UT_Id const& b) { return a.m_uuid == b.m_uuid; }
    /// Different identifiers.
    friend bool operator!=(UT_Id const& a, UT_Id const& b) { return a.m_uuid != b.m_uuid; }
    /// Total order, for sorted containers.
    friend bool operator<(UT_Id const& a, UT_Id const& b) { return a.m_uuid < b.m_uuid; }

private:
    QUuid m_uuid;
};
