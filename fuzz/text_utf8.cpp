// UTF-8 -> UT_String and UT_String -> UTF-8 on arbitrary bytes: no crash, and
// what one direction produces the other gives back unchanged.
#include <BrindleBaseCore/text/UT_String.h>

#include <cstdint>
#include <cstring>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    // As bytes: decoding stops at the first zero or bad sequence.
    std::string bytes(reinterpret_cast<char const*>(data), size);
    UT_String decoded(bytes.c_str());
    if (decoded.size() > std::strlen(bytes.c_str()))
        __builtin_trap();
    std::string encoded = decoded.utf8();
    if (bytes.compare(0, encoded.size(), encoded) != 0 || UT_String(encoded.c_str()) != decoded)
        __builtin_trap(); // the decoded prefix re-encodes to the same bytes

    // As UTF-16 units: encoding stops at the first unpaired surrogate.
    UT_String units(reinterpret_cast<UT_Char const*>(data), size / 2);
    std::string utf8 = units.utf8();
    UT_String back;
    for (std::size_t start = 0;;) { // embedded zeros end a C string: decode piece by piece
        std::size_t zero = utf8.find('\0', start);
        back += UT_String(utf8.substr(start, zero - start).c_str());
        if (zero == std::string::npos)
            break;
        back.push_back(0);
        start = zero + 1;
    }
    if (back.size() > units.size() || units.compare(0, back.size(), back) != 0)
        __builtin_trap();
    return 0;
}
