// UT_Json::parse on arbitrary text, and the stability of writing: once a value
// has been written and read back (which turns numbers such as 1e+20 into
// text), writing and reading again must give the same bytes.
#include <BrindleBaseCore/data/UT_Json.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size)
{
    QString const text =
        QString::fromUtf8(reinterpret_cast<char const*>(data), static_cast<qsizetype>(size));
    bool ok = false;
    qsizetype stop = -1;
    QVariant const value = UT_Json::parse(text, ok, stop);
    if (stop < 0 || stop > text.size())
        std::abort();
    if (!ok) {
        if (value.isValid())
            std::abort();
        return 0;
    }
    QByteArray const first = UT_Json::serialize(value, ok);
    if (!ok)
        return 0; // a non-finite double has no JSON form
    QVariant const again = UT_Json::parse(QString::fromUtf8(first), ok);
    if (!ok)
        std::abort(); // what we write we must read
    QByteArray const second = UT_Json::serialize(again, ok);
    if (!ok)
        std::abort();
    QByteArray const third = UT_Json::serialize(UT_Json::parse(QString::fromUtf8(second)), ok);
    if (!ok || third != second)
        std::abort();
    return 0;
}
