#include <BrindleBaseCore/data/UT_Json.h>

#include <QtCore/QDateTime>
#include <QtCore/QStringList>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <string>

namespace {

QVariant parsed(QString const& text, bool expectOk = true)
{
    bool ok = !expectOk;
    QVariant const v = UT_Json::parse(text, ok);
    EXPECT_EQ(ok, expectOk) << text.toStdString();
    return v;
}

QByteArray written(QVariant const& v)
{
    bool ok = false;
    QByteArray const text = UT_Json::serialize(v, ok);
    EXPECT_TRUE(ok);
    return text;
}

void expectFailure(QString const& text)
{
    bool ok = true;
    EXPECT_FALSE(UT_Json::parse(text, ok).isValid()) << text.toStdString();
    EXPECT_FALSE(ok) << text.toStdString();
}

// A type with no text or number form.
struct Opaque
{
    int value = 0;
};

} // namespace

TEST(UT_JsonParse, LenientCommasAndScalarTypes)
{
    QVariantMap const map = parsed(u",,{ ,\"a\" : 1,, }"_qs.mid(2)).toMap();
    EXPECT_EQ(map, (QVariantMap{{"a", 1u}}));
    QVariantList const list = parsed(u"[1, -2, 3.5, \"x\", true, null false]"_qs).toList();
    EXPECT_EQ(list, (QVariantList{1u, -2, 3.5, u"x"_qs, true, QVariant(), false})); // ',' optional
    QList<int> types;
    for (QVariant const& v : list)
        types << v.typeId();
    EXPECT_EQ(types,
              (QList<int>{QMetaType::UInt, QMetaType::Int, QMetaType::Double, QMetaType::QString,
                          QMetaType::Bool, QMetaType::UnknownType, QMetaType::Bool}));

    // A later key replaces the earlier one; text after the value is ignored.
    EXPECT_EQ(parsed(u"{\"k\":1,\"k\":[2]} trailing ]]"_qs).toMap()["k"].toList().size(), 1);
    EXPECT_EQ(parsed(u" \t\r\n[]"_qs).typeId(), QMetaType::QVariantList);
}

TEST(UT_JsonParse, NumberTypes)
{
    // Integers take the smallest of uint, int, 64-bit types that holds them;
    // other malformed or exponent numbers are kept as their text (intended).
    QStringList const texts =
        QStringLiteral("4294967295 4294967296 18446744073709551615 18446744073709551616 "
                       "-2147483648 -2147483649 -9223372036854775808 -9223372036854775809 "
                       "1e5 1-2 - 1.5e3 -0.0")
            .split(u' ');
    ASSERT_EQ(texts.size(), 13);
    using T = QMetaType;
    QList<int> const types = {T::UInt,     T::ULongLong, T::ULongLong, T::QString, T::Int,
                              T::LongLong, T::LongLong,  T::QString,   T::QString, T::QString,
                              T::QString,  T::Double,    T::Double};
    for (qsizetype i = 0; i < texts.size(); ++i) {
        QVariant const v = parsed(texts[i]);
        EXPECT_EQ(v.typeId(), types[i]) << texts[i].toStdString();
        EXPECT_TRUE(types[i] == T::Double || v.toString() == texts[i]) << texts[i].toStdString();
    }
    EXPECT_EQ(parsed(u"1.5e3"_qs).toDouble(), 1500.0);
    EXPECT_EQ(parsed(u"1.2.3"_qs).toDouble(), 0.0); // malformed with a point: 0
    EXPECT_TRUE(std::isinf(parsed(u"1.0e999"_qs).toDouble()));

    // Short decimals take a shortcut that must round exactly as strtod does.
    std::mt19937_64 random(99);
    for (int i = 0; i < 20000; ++i) {
        int const intDigits = 1 + int(random() % 16), fracDigits = 1 + int(random() % 17);
        std::string text = (random() & 1) ? "-" : "";
        for (int d = 0; d < intDigits; ++d)
            text += char('0' + random() % 10);
        text += '.';
        for (int d = 0; d < fracDigits; ++d)
            text += char('0' + random() % 10);
        ASSERT_EQ(parsed(QString::fromStdString(text)).toDouble(),
                  std::strtod(text.c_str(), nullptr))
            << text;
    }

    QString const digits(10000, u'7');
    EXPECT_EQ(parsed(digits), QVariant(digits));
    EXPECT_GT(parsed(digits + u".5"_qs).toDouble(), 1e300);
}

TEST(UT_JsonParse, Strings)
{
    EXPECT_EQ(parsed(u"\"a\\\"\\\\\\/\\b\\f\\n\\r\\tz\""_qs).toString(), u"a\"\\/\b\f\n\r\tz"_qs);
    EXPECT_EQ(parsed(u"\"\\u00e9\\uD83D\\ude00\""_qs).toString(), u"é😀"_qs);
    EXPECT_EQ(parsed(u"\"\\uDC00\""_qs).toString(), QString(QChar(0xDC00))); // code unit as given
    EXPECT_EQ(parsed(u"\"raw\ttab\""_qs).toString(), u"raw\ttab"_qs);

    // Many short strings, repeated and colliding: each must come back as written.
    QStringList words;
    QString text = u"["_qs;
    for (int i = 0; i < 5000; ++i) {
        words << QString::number(i % 1500, 36).repeated(1 + i % 5);
        text += u"\""_qs + words.last() + u"\","_qs;
    }
    EXPECT_EQ(parsed(text + u"]"_qs), QVariant(words).toList());
}

TEST(UT_JsonParse, FailuresAndNesting)
{
    bool ok = false;
    EXPECT_FALSE(UT_Json::parse(QString(), ok).isValid());
    EXPECT_TRUE(ok); // a null text is not an error

    for (char16_t const* bad :
         {u"",     u"  ",         u"[",         u"[1,",     u"{\"a\":1",    u"tru",
          u"nul",  u"x",          u"+1",        u"]",       u"[1}",         u"{\"a\":1]",
          u"[:]",  u"\"abc",      u"\"\\u12\"", u"\"\\u12", u"\"\\uzzzz\"", u"\"\\x\"",
          u"\"\\", u"[\"a\" \"b", u"{\"a\" 1}", u"{1 : 2}", u"{\"a\":}"})
        expectFailure(QString::fromUtf16(bad));

    qsizetype stop = -1;
    UT_Json::parse(u"[1, 2, @]"_qs, ok, stop);
    EXPECT_FALSE(ok);
    EXPECT_EQ(stop, 7);
    UT_Json::parse(u" true x"_qs, ok, stop);
    EXPECT_TRUE(ok);
    EXPECT_EQ(stop, 5);

    int const depth = UT_Json::maxDepth();
    QVariant const deepest = parsed(QString(depth, u'[') + QString(depth, u']'));
    EXPECT_EQ(deepest.typeId(), QMetaType::QVariantList);
    EXPECT_TRUE(UT_Json::serialize(deepest).startsWith("[ [ [ "));
    expectFailure(QString(depth + 1, u'[') + QString(depth + 1, u']'));
    expectFailure(QString(100000, u'['));
    expectFailure(QString(100000, u'{').replace(u"{"_qs, u"{\"k\":"_qs));
}

TEST(UT_JsonSerialize, Layout)
{
    EXPECT_EQ(written(QVariantMap{{"b", QVariantList{true}}, {"a", 1}}),
              "{ \"a\" : 1, \"b\" : [ true ] }");
    QVariantList values;
    values << QVariant(QVariantList()) << QVariantMap() << QVariantHash{{"k", QVariant()}}
           << QStringList{"x", "y"} << QVariant() << false << std::numeric_limits<qulonglong>::max()
           << std::numeric_limits<qlonglong>::min() << QVariant::fromValue<short>(-7) << QChar(u'A')
           << QByteArray("b\"y");
    EXPECT_EQ(written(values), "[ [  ], {  }, { \"k\" : null }, [ \"x\", \"y\" ], null, false, "
                               "18446744073709551615, -9223372036854775808, -7, 65, \"b\\\"y\" ]");
    EXPECT_EQ(written(QVariant()), "null");
    EXPECT_EQ(UT_Json::serializeStr(QVariantList{u"é"_qs, 2}), u"[ \"é\", 2 ]"_qs);
}

TEST(UT_JsonSerialize, Doubles)
{
    EXPECT_EQ(written(2.0), "2.0");
    EXPECT_EQ(written(-0.0), "-0.0"); // integral values keep a ".0", others are %g
    char expected[64];
    for (double d : {3.5, 1e20, 1.23456789, 123456789.0, 0.0001, 1e-5, 999999.5, 1234567.0, 0.1,
                     1.0 / 3, -2.5e-300}) {
        std::snprintf(expected, sizeof expected, "%g", d);
        EXPECT_EQ(written(d), QByteArray(expected)) << d;
    }

    bool ok = true;
    QByteArray const result = UT_Json::serialize(QVariantList{1, std::nan("")}, ok);
    EXPECT_FALSE(ok);
    EXPECT_TRUE(result.isNull());
    EXPECT_TRUE(UT_Json::serialize(std::numeric_limits<double>::infinity()).isNull());
}

TEST(UT_JsonSerialize, StringEscapes)
{
    QString text = u"\\\"\b\f\n\r\t/\x01é😀"_qs;
    EXPECT_EQ(written(text), "\"\\\\\\\"\\b\\f\\n\\r\\t/\x01\xc3\xa9\xf0\x9f\x98\x80\"");
    text = QString(QChar(0xD800)) + u"a"_qs + QChar(0xDC00);
    EXPECT_EQ(written(text), "\"" + text.toUtf8() + "\""); // lone surrogates as QString::toUtf8

    // Long escaped and non-ASCII strings do not overrun the buffer.
    QString const mixed = QString(5000, u'"') + QString(5000, u'€');
    EXPECT_EQ(parsed(QString::fromUtf8(written(mixed))).toString(), mixed);
}

TEST(UT_JsonSerialize, DatesAndOtherTypes)
{
    QDate const date(2024, 3, 9);
    QDateTime const dt(date, QTime(8, 7, 6));
    EXPECT_EQ(written(date), "\"" + date.toString().toUtf8() + "\"");
    EXPECT_EQ(written(dt), "\"" + dt.toString().toUtf8() + "\"");

    UT_Json::setDateFormat(u"yyyy/MM/dd"_qs);
    EXPECT_EQ(written(date), "\"" + date.toString().toUtf8() + "\""); // needs the date-time format
    UT_Json::setDateTimeFormat(u"yyyy-MM-ddTHH:mm"_qs);
    EXPECT_EQ(written(date), "\"2024/03/09\"");
    EXPECT_EQ(written(dt), "\"2024-03-09T08:07\"");
    UT_Json::setDateFormat({});
    UT_Json::setDateTimeFormat({});

    EXPECT_EQ(written(QTime(1, 2, 3)), "\"01:02:03.000\""); // its QString form
    bool ok = true;
    QVariantMap const map{{"p", QVariant::fromValue(Opaque{})}};
    EXPECT_TRUE(UT_Json::serialize(map, ok).isNull());
    EXPECT_FALSE(ok);
}

TEST(UT_Json, RoundTrip)
{
    QString const text =
        u"{\"name\":\"scene\",\"fps\":24,\"scale\":0.5,\"layers\":[{\"id\":-1,\"tags\":[]},{}],\"big\":18446744073709551615}"_qs;
    QByteArray const once = written(parsed(text));
    EXPECT_EQ(once, "{ \"big\" : 18446744073709551615, \"fps\" : 24, \"layers\" : [ { \"id\" : -1, "
                    "\"tags\" : [  ] }, {  } ], \"name\" : \"scene\", \"scale\" : 0.5 }");
    EXPECT_EQ(written(parsed(QString::fromUtf8(once))), once);
}
