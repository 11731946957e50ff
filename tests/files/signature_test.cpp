// MD5 file signatures.
#include <BrindleBaseCore/files/PL_FileSignature.h>
#include <BrindleBaseCore/files/PL_FileSpec.h>

#include <QtCore/QCryptographicHash>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

namespace {

QString md5(QByteArray const& data)
{
    PL_FileSignature signature;
    signature.computeSignatureOnData(data.constData(), quint64(data.size()));
    return signature.toHex();
}

TEST(PL_FileSignature, RfcTestSuite)
{
    EXPECT_EQ(md5(""), "d41d8cd98f00b204e9800998ecf8427e");
    EXPECT_EQ(md5("a"), "0cc175b9c0f1b6a831c399e269772661");
    EXPECT_EQ(md5("abc"), "900150983cd24fb0d6963f7d28e17f72");
    EXPECT_EQ(md5("message digest"), "f96b697d7cb7938d525a2f31aaf161d0");
    EXPECT_EQ(
        md5("12345678901234567890123456789012345678901234567890123456789012345678901234567890"),
        "57edf4a22be3c955ac49da2e2107b67a");
    PL_FileSignature nothing;
    nothing.computeSignatureOnData(nullptr, 0);
    EXPECT_EQ(nothing.toHex(), "d41d8cd98f00b204e9800998ecf8427e");
}

TEST(PL_FileSignature, FileDigestMatchesTheWholeContent)
{
    QTemporaryDir dir;
    QString const path = dir.path() + "/big.bin";
    // Several read blocks and a ragged end.
    QByteArray content;
    content.reserve(3 * 1024 * 1024 + 123);
    for (int i = 0; content.size() < 3 * 1024 * 1024 + 123; ++i)
        content.append(char(i * 131 + (i >> 9)));
    content.truncate(3 * 1024 * 1024 + 123);
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(content);
    file.close();

    PL_FileSignature signature;
    EXPECT_TRUE(signature.computeSignature(PL_FileSpec(UT_String(path))));
    EXPECT_EQ(
        signature.toHex(),
        QString::fromLatin1(QCryptographicHash::hash(content, QCryptographicHash::Md5).toHex()));

    EXPECT_FALSE(signature.computeSignature(PL_FileSpec(UT_String(dir.path() + "/missing"))));
    EXPECT_FALSE(signature.isValid());
    EXPECT_FALSE(signature.computeSignature(PL_FileSpec(UT_String(dir.path()))))
        << "a folder cannot be read as a file";
    EXPECT_FALSE(signature.computeSignature(PL_FileSpec()));
}

TEST(PL_FileSignature, HexTextAndBytes)
{
    PL_FileSignature signature;
    EXPECT_TRUE(signature.setSignature("900150983CD24FB0D6963F7D28E17F72"));
    EXPECT_EQ(signature.toHex(), "900150983cd24fb0d6963f7d28e17f72");
    EXPECT_EQ(signature.data()[0], 0x90);
    for (char const* bad :
         {"", "900150983cd24fb0d6963f7d28e17f7", "900150983cd24fb0d6963f7d28e17f722",
          "900150983cd24fb0d6963f7d28e17fzz"}) {
        PL_FileSignature copy = signature;
        EXPECT_FALSE(copy.setSignature(bad)) << bad;
        EXPECT_EQ(copy, signature) << "unchanged";
    }
    EXPECT_FALSE(signature.setSignature(nullptr));
    PL_FileSignature loaded;
    loaded.load(signature.data());
    EXPECT_EQ(loaded, signature);
}

TEST(PL_FileSignature, ComparisonRules)
{
    PL_FileSignature invalidA, invalidB, low, high;
    EXPECT_TRUE(invalidA == invalidB);
    EXPECT_FALSE(invalidA < invalidB);
    ASSERT_TRUE(low.setSignature("7f000000000000000000000000000000"));
    ASSERT_TRUE(high.setSignature("80000000000000000000000000000000"));
    EXPECT_NE(invalidA, low);
    EXPECT_TRUE(invalidA < low);
    EXPECT_FALSE(low < invalidA);
    EXPECT_TRUE(low < high) << "bytes compare unsigned";
    EXPECT_FALSE(high < low);
    EXPECT_FALSE(low < low);
    PL_FileSignature moved = std::move(high);
    EXPECT_EQ(moved.toHex(), "80000000000000000000000000000000");
}

} // namespace
