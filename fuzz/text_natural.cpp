// Both name orders on arbitrary UTF-16: no crash, irreflexive and asymmetric
// tuple order, and getOrder returns a permutation.
#include <BrindleBaseCore/text/UT_StringServices.h>
#include <BrindleBaseCore/text/UT_StringSortNatural.h>

#include <cstdint>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    QString text(reinterpret_cast<QChar const*>(data), qsizetype(size / 2));
    std::vector<QString> items;
    for (QString const& line : text.split(QChar(u'\n')))
        items.push_back(line);

    for (QString const& a : items) {
        if (UT_StringServices::NumericAlphanumericTupleLess(a, a))
            __builtin_trap();
        QString const& b = items.front();
        if (UT_StringServices::NumericAlphanumericTupleLess(a, b) &&
            UT_StringServices::NumericAlphanumericTupleLess(b, a))
            __builtin_trap();
    }

    std::vector<std::size_t> order = UT_StringSortNatural::getOrder(items);
    std::vector<bool> seen(items.size());
    if (order.size() != items.size())
        __builtin_trap();
    for (std::size_t index : order) {
        if (index >= items.size() || seen[index])
            __builtin_trap();
        seen[index] = true;
    }
    return 0;
}
