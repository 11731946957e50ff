/// @file
/// Content signatures of files (MD5 digests).
#pragma once

#include <BrindleBaseCore/Global.h>

#include <QtCore/QString>

#include <array>
#include <functional>

class PL_FileSpec;

/// A 16-byte MD5 digest with a validity flag (false until computed, loaded or
/// set). Two invalid signatures are equal; an invalid one sorts first.
class BRINDLE_EXPORT PL_FileSignature
{
public:
    PL_FileSignature() = default;
    /// Copies the digest and its validity.
    PL_FileSignature(PL_FileSignature const&) = default;
    /// Moves the digest and its validity.
    PL_FileSignature(PL_FileSignature&&) noexcept = default;
    /// Copies the digest and its validity.
    PL_FileSignature& operator=(PL_FileSignature const&) = default;
    /// Moves the digest and its validity.
    PL_FileSignature& operator=(PL_FileSignature&&) noexcept = default;

    /// Digest of the whole file, read in blocks (any size, bounded memory).
    /// False, and invalid, when the file cannot be opened or read completely.
    bool computeSignature(PL_FileSpec const& file);
    /// The same, calling `progress(bytesRead, fileLength)` after each block.
    bool computeSignature(PL_FileSpec const& file,
                          std::function<void(quint64, quint64)> const& progress);
    /// Digest of `size` bytes at `data` (a null `data` is allowed when `size` is 0); valid
    /// afterwards.
    void computeSignatureOnData(void const* data, quint64 size);
    /// Exactly 32 hexadecimal characters; anything else returns false and
    /// changes nothing.
    bool setSignature(char const* hex);
    /// Takes 16 bytes.
    void load(unsigned char const* bytes);
    /// The 16 digest bytes (all zero before any digest).
    unsigned char const* data() const { return m_digest.data(); }
    /// Whether a digest is held.
    bool isValid() const { return m_valid; }
    /// 32 lower-case hexadecimal characters; empty when invalid.
    QString toHex() const;

    /// Equal when both are invalid, or both valid with the same digest.
    bool operator==(PL_FileSignature const& other) const;
    /// Negation of operator==.
    bool operator!=(PL_FileSignature const& other) const { return !(*this == other); }
    /// Invalid first, then by digest bytes.
    bool operator<(PL_FileSignature const& other) const;

private:
    bool m_valid = false;
    std::array<unsigned char, 16> m_digest{};
};
