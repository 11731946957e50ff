// PL_FileSignature::computeSignature on a 256 MiB file against reading the
// same file the same way into libcrypto's MD5 directly. Both must give the
// same digest; our peak memory must stay far below the file's size.
#include <BrindleBaseCore/files/PL_FileSignature.h>
#include <BrindleBaseCore/files/PL_FileSpec.h>

#include "data_ratios.h"

#include <QtCore/QByteArray>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

#include <benchmark/benchmark.h>
#include <openssl/evp.h>

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <random>
#include <sys/resource.h>
#include <unistd.h>

namespace {

constexpr qint64 kFileSize = qint64(256) << 20;

QString const& filePath()
{
    static QTemporaryDir const dir(QDir::tempPath() + "/files_signature_bench_XXXXXX");
    static QString const path = [] {
        QString const p = dir.path() + "/big.bin";
        QFile file(p);
        if (!file.open(QIODevice::WriteOnly))
            std::abort();
        std::mt19937_64 random(3);
        QByteArray block(1 << 20, Qt::Uninitialized);
        for (qint64 written = 0; written < kFileSize; written += block.size()) {
            for (qsizetype i = 0; i + 8 <= block.size(); i += 8) {
                quint64 const value = random();
                std::memcpy(block.data() + i, &value, 8);
            }
            file.write(block);
        }
        return p;
    }();
    return path;
}

// The peer: the file read in 1 MiB blocks into libcrypto's MD5.
QString peerDigest(QString const& path)
{
    int const fd = ::open(QFile::encodeName(path).constData(), O_RDONLY);
    std::unique_ptr<unsigned char[]> buffer(new unsigned char[1 << 20]);
    EVP_MD_CTX* ctx = EVP_MD_CTX_new();
    EVP_DigestInit_ex(ctx, EVP_md5(), nullptr);
    ssize_t n;
    while ((n = ::read(fd, buffer.get(), 1 << 20)) > 0)
        EVP_DigestUpdate(ctx, buffer.get(), size_t(n));
    unsigned char digest[16];
    unsigned int length = 0;
    EVP_DigestFinal_ex(ctx, digest, &length);
    EVP_MD_CTX_free(ctx);
    ::close(fd);
    return QString::fromLatin1(QByteArray(reinterpret_cast<char*>(digest), 16).toHex());
}

QString ourDigest(QString const& path)
{
    PL_FileSignature signature;
    if (!signature.computeSignature(PL_FileSpec(UT_String(path))))
        std::abort();
    return signature.toHex();
}

void BM_ComputeSignature(benchmark::State& state)
{
    QString const& path = filePath();
    for (auto _ : state)
        benchmark::DoNotOptimize(ourDigest(path));
    state.SetBytesProcessed(state.iterations() * kFileSize);
}

void BM_OpenSslMd5(benchmark::State& state)
{
    QString const& path = filePath();
    for (auto _ : state)
        benchmark::DoNotOptimize(peerDigest(path));
    state.SetBytesProcessed(state.iterations() * kFileSize);
}

BENCHMARK(BM_ComputeSignature)->Repetitions(5)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_OpenSslMd5)->Repetitions(5)->Unit(benchmark::kMillisecond);

long peakKiB()
{
    struct rusage usage;
    ::getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

} // namespace

int main(int argc, char** argv)
{
    QString const& path = filePath();
    long const before = peakKiB();
    QString const ours = ourDigest(path);
    long const grown = peakKiB() - before;
    if (ours != peerDigest(path)) {
        std::fprintf(stderr, "digest mismatch\n");
        return 1;
    }
    std::printf("digest %s agrees; peak memory grew by %ld KiB while signing 256 MiB "
                "(bounded: %s)\n",
                ours.toLatin1().constData(), grown, grown < 16 * 1024 ? "pass" : "FAIL");
    benchmark::Initialize(&argc, argv);
    data_bench::RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    reporter.printRatio("BM_ComputeSignature", "BM_OpenSslMd5",
                        "MD5 signature vs OpenSSL (256 MiB file)", 0.95);
    benchmark::Shutdown();
    return 0;
}
