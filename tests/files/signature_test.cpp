// MD5 file signatures.
#include <BrindleBaseCore/files/PL_FileSignature.h>
#include <BrindleBaseCore/files/PL_FileSpec.h>

#include <QtCore/QCryptographicHash>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

#include "FileContents.h"

namespace {

QString md5(QByteArray const& data)
{
    PL_FileSignature signature;
    signature.computeSignatureOnData(data.constData(), quint64(data.size()));
    return signature.toHex();
}

QString reference(QByteArray const& data)
{
    return QString::fromLatin1(QCryptographicHash::hash(data, QCryptographicHash::Md5).toHex());
}

TEST(PL_FileSignature, DigestsOfDataAndFiles)
{
    PL_FileSignature nothing;
    nothing.computeSignatureOnData(nullptr, 0);
    EXPECT_EQ(nothing.toHex(), "d41d8cd98f00b204e9800998ecf8427e");
    // Every length across the padding edges (55, 56, 64 bytes) and into a
    // third block, with bytes above 0x7F.
    QByteArray data;
    for (int n = 0; n <= 140; ++n, data.append(char(n * 37 + 128)))
        ASSERT_EQ(md5(data), reference(data)) << "length " << n;

    // A file over several read blocks with a ragged end.
    QTemporaryDir dir;
    QString const path = dir.path() + "/big.bin";
    QByteArray content(3 * 1024 * 1024 + 123, '\0');
    for (qsizetype i = 0; i < content.size(); ++i)
        content[i] = char(i * 131 + (i >> 9));
    files_test::writeFile(path, content);

    PL_FileSignature signature;
    EXPECT_TRUE(signature.computeSignature(PL_FileSpec(UT_String(path))));
    EXPECT_EQ(signature.toHex(), reference(content));
    EXPECT_FALSE(signature.computeSignature(PL_FileSpec(UT_String(dir.path() + "/missing"))));
    EXPECT_FALSE(signature.isValid());
    EXPECT_FALSE(signature.computeSignature(PL_FileSpec(UT_String(dir.path()))))
        << "a folder cannot be read as a file";
    EXPECT_FALSE(signature.computeSignature(PL_FileSpec()));
}

TEST(PL_FileSignature, HexTextBytesAndOrder)
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

    // Two invalid signatures are equal; invalid sorts first; bytes compare unsigned.
    PL_FileSignature invalidA, invalidB, low, high;
    EXPECT_TRUE(invalidA == invalidB && !(invalidA < invalidB));
    ASSERT_TRUE(low.setSignature("7f000000000000000000000000000000"));
    ASSERT_TRUE(high.setSignature("80000000000000000000000000000000"));
    EXPECT_NE(invalidA, low);
    EXPECT_TRUE(invalidA < low && !(low < invalidA));
    EXPECT_TRUE(low < high && !(high < low)) << "bytes compare unsigned";
    EXPECT_FALSE(low < low);
}

} // namespace
