#include <BrindleBaseCore/files/PL_FileSignature.h>
#include <BrindleBaseCore/files/PL_FileSpec.h>

#include <openssl/evp.h>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace {

struct DigestContext
{
    EVP_MD_CTX* ctx = EVP_MD_CTX_new();
    ~DigestContext() { EVP_MD_CTX_free(ctx); }
    bool start() { return ctx && EVP_DigestInit_ex(ctx, EVP_md5(), nullptr) == 1; }
    bool update(void const* data, size_t size) { return EVP_DigestUpdate(ctx, data, size) == 1; }
    bool finish(unsigned char* digest)
    {
        unsigned int length = 0;
        return EVP_DigestFinal_ex(ctx, digest, &length) == 1 && length == 16;
    }
};

int hexValue(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

} // namespace

bool PL_FileSignature::computeSignature(PL_FileSpec const& file)
{
    return computeSignature(file, {});
}

bool PL_FileSignature::computeSignature(PL_FileSpec const& file,
                                        std::function<void(quint64, quint64)> const& progress)
{
    m_valid = false;
    int const fd = file.open(O_RDONLY, 0);
    if (fd < 0)
        return false;
    ::posix_fadvise(fd, 0, 0, POSIX_FADV_SEQUENTIAL);
    struct stat st;
    quint64 const total = ::fstat(fd, &st) == 0 ? quint64(st.st_size) : 0;
    quint64 done = 0;
    // Read in blocks: the same digest as one read of the whole file, in
    // bounded memory whatever the file's size.
    constexpr size_t blockSize = 1 << 20;
    std::unique_ptr<unsigned char[]> buffer(new (std::nothrow) unsigned char[blockSize]);
    DigestContext digest;
    bool ok = buffer && digest.start();
    while (ok) {
        ssize_t const n = ::read(fd, buffer.get(), blockSize);
        if (n == 0)
            break;
        if (n < 0) {
            ok = errno == EINTR;
            continue;
        }
        ok = digest.update(buffer.get(), size_t(n));
        done += quint64(n);
        if (progress)
            progress(done, total);
    }
    ::close(fd);
    std::array<unsigned char, 16> result;
    if (ok && digest.finish(result.data())) {
        m_digest = result;
        m_valid = true;
    }
    return m_valid;
}

void PL_FileSignature::computeSignatureOnData(void const* data, quint64 size)
{
    unsigned int length = 0;
    static unsigned char const nothing = 0;
    m_valid = EVP_Digest(size ? data : &nothing, size_t(size), m_digest.data(), &length, EVP_md5(),
                         nullptr) == 1;
}

bool PL_FileSignature::setSignature(char const* hex)
{
    if (!hex || std::strlen(hex) != 32)
        return false;
    std::array<unsigned char, 16> bytes;
    for (size_t i = 0; i < 16; ++i) {
        int const high = hexValue(hex[2 * i]);
        int const low = hexValue(hex[2 * i + 1]);
        if (high < 0 || low < 0)
            return false;
        bytes[i] = static_cast<unsigned char>(high << 4 | low);
    }
    m_digest = bytes;
    m_valid = true;
    return true;
}

void PL_FileSignature::load(unsigned char const* bytes)
{
    std::memcpy(m_digest.data(), bytes, m_digest.size());
    m_valid = true;
}

QString PL_FileSignature::toHex() const
{
    if (!m_valid)
        return QString();
    return QString::fromLatin1(
        QByteArray::fromRawData(reinterpret_cast<char const*>(m_digest.data()), 16).toHex());
}

bool PL_FileSignature::operator==(PL_FileSignature const& other) const
{
    if (m_valid != other.m_valid)
        return false;
    return !m_valid || m_digest == other.m_digest;
}

bool PL_FileSignature::operator<(PL_FileSignature const& other) const
{
    if (m_valid != other.m_valid)
        return !m_valid;
    return m_valid && m_digest < other.m_digest;
}
