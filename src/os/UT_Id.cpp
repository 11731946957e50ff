#include <BrindleBaseCore/os/UT_Id.h>

UT_Id::UT_Id()
    : m_uuid(QUuid::createUuid())
{}

UT_Id UT_Id::Null()
{
    return UT_Id(QUuid());
}

UT_Id UT_Id::FromString(UT_String const& text)
{
    return UT_Id(QUuid::fromString(QString::fromStdU16String(text)));
}

QString UT_Id::toString() const
{
    return m_uuid.toString(QUuid::WithBraces);
}

UT_String UT_Id::AsString() const
{
    return UT_String(toString().toStdU16String());
}
