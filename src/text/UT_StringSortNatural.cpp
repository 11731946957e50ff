// Natural order of names.
//
// Each item is turned once into a byte key whose plain lexicographic order
// (memcmp) is the natural order; the sort then only compares keys. The key is
// the item's token list followed by its length:
//   text token   the case-folded code of every unit, then a 0 byte
//   number token 0x01, then the value as a signed 32-bit number
//   end          a 0 byte, then the length in units (4 bytes, big-endian)
// Every value is written with an order-preserving prefix code (see below), and
// text codes start at 2, so that a number token sorts before a text token, a
// text that is a prefix of another before it, and a list that ends before a
// longer one that agrees with it.
#include <BrindleBaseCore/text/UT_StringSortNatural.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>

namespace UT_StringSortNatural {

namespace {

using Key = std::string;

// Writes v (< 2^24 + 0x4080) so that shorter codes are smaller and codes of a
// length compare as big-endian numbers: 0xxxxxxx; 10xxxxxx x8; 110xxxxx x8 x8.
void putCode(Key& key, std::uint32_t v)
{
    if (v < 0x80) {
        key.push_back(char(v));
    } else if (v < 0x80 + 0x4000) {
        v -= 0x80;
        key.push_back(char(0x80 | (v >> 8)));
        key.push_back(char(v & 0xFF));
    } else {
        v -= 0x80 + 0x4000;
        key.push_back(char(0xC0 | (v >> 16)));
        key.push_back(char((v >> 8) & 0xFF));
        key.push_back(char(v & 0xFF));
    }
}

// A signed 32-bit value: negative ones first, then non-negative ones by the
// number of bytes they need, then by value.
void putNumber(Key& key, std::uint32_t value)
{
    key.push_back(char(1));
    if (value & 0x80000000u) {
        key.push_back(char(0));
        for (int shift = 24; shift >= 0; shift -= 8)
            key.push_back(char((value >> shift) & 0xFF));
        return;
    }
    int bytes = value < 0x100 ? 1 : value < 0x10000 ? 2 : value < 0x1000000 ? 3 : 4;
    key.push_back(char(bytes));
    for (int shift = 8 * (bytes - 1); shift >= 0; shift -= 8)
        key.push_back(char((value >> shift) & 0xFF));
}

// The case-folded code QString::compare(..., Qt::CaseInsensitive) compares for
// the unit at i of a token starting at start: a low surrogate that follows a
// high one stands for the whole character.
std::uint32_t foldedUnit(char16_t const* start, char16_t const* unit)
{
    char32_t ucs4 = *unit;
    if (ucs4 < 0x80)
        return ucs4 >= 'A' && ucs4 <= 'Z' ? ucs4 + 32 : ucs4;
    if (QChar::isLowSurrogate(ucs4) && unit > start && QChar::isHighSurrogate(unit[-1]))
        ucs4 = QChar::surrogateToUcs4(unit[-1], char16_t(ucs4));
    return QChar::toCaseFolded(ucs4);
}

// QChar::digitValue, without the call for ASCII.
int digitOf(char16_t unit)
{
    if (unit < 0x80)
        return unsigned(unit - u'0') < 10 ? int(unit - u'0') : -1;
    return QChar::digitValue(unit);
}

void appendKey(Key& key, QString const& item)
{
    auto const* units = reinterpret_cast<char16_t const*>(item.utf16());
    qsizetype size = item.size();
    qsizetype i = 0;
    while (i < size) {
        int digit = digitOf(units[i]);
        if (digit >= 0) {
            std::uint32_t value = 0;
            do {
                value = value * 10 + std::uint32_t(digit); // longer runs wrap (intended)
            } while (++i < size && (digit = digitOf(units[i])) >= 0);
            putNumber(key, value);
        } else {
            char16_t const* start = units + i;
            do {
                putCode(key, foldedUnit(start, units + i) + 2);
            } while (++i < size && digitOf(units[i]) < 0);
            key.push_back(char(0));
        }
    }
    key.push_back(char(0));
    auto length = std::uint32_t(std::min<qsizetype>(size, 0xFFFFFFFF));
    for (int shift = 24; shift >= 0; shift -= 8)
        key.push_back(char((length >> shift) & 0xFF));
}

// Bytes [from, from + 8) of a key as a big-endian number, zero-padded.
std::uint64_t keyWord(char const* key, std::size_t size, std::size_t from)
{
    unsigned char bytes[8] = {};
    if (size > from)
        std::memcpy(bytes, key + from, std::min<std::size_t>(8, size - from));
    std::uint64_t word = 0;
    for (unsigned char byte : bytes)
        word = (word << 8) | byte;
    return word;
}

// The first sixteen bytes of the key are kept in the record, so that most
// comparisons never look at the key buffer.
struct Record
{
    std::uint64_t head;
    std::uint64_t next;
    std::size_t offset; // of the rest of the key in the key buffer
    std::uint32_t size; // of the rest of the key
    std::uint32_t index;
};

} // namespace

std::vector<std::size_t> getOrder(std::vector<QString> const& items)
{
    std::size_t count = items.size();
    std::vector<Record> records(count);
    Key keys;
    keys.reserve(count * 24);
    for (std::size_t n = 0; n < count; ++n) {
        std::size_t start = keys.size();
        appendKey(keys, items[n]);
        std::size_t size = keys.size() - start;
        Record& record = records[n];
        record.head = keyWord(keys.data() + start, size, 0);
        record.next = keyWord(keys.data() + start, size, 8);
        std::size_t inRecord = std::min<std::size_t>(16, size);
        record.offset = start + inRecord;
        record.size = std::uint32_t(size - inRecord);
        record.index = std::uint32_t(n);
    }

    // A key is never a proper prefix of another, so zero padding cannot make
    // two different keys look equal.
    char const* base = keys.data();
    std::sort(records.begin(), records.end(), [base](Record const& a, Record const& b) {
        if (a.head != b.head)
            return a.head < b.head;
        if (a.next != b.next)
            return a.next < b.next;
        int order = std::memcmp(base + a.offset, base + b.offset, std::min(a.size, b.size));
        return order != 0 ? order < 0 : a.size < b.size;
    });

    std::vector<std::size_t> order(count);
    for (std::size_t n = 0; n < count; ++n)
        order[n] = records[n].index;
    return order;
}

void sort(QList<QString>::iterator first, QList<QString>::iterator last)
{
    if (first == last)
        return;
    std::vector<QString> copy(first, last);
    std::vector<std::size_t> order = getOrder(copy);
    for (std::size_t index : order)
        *first++ = std::move(copy[index]);
}

QString convertToQString(UT_String const& text)
{
    return text.ToQString();
}

} // namespace UT_StringSortNatural
