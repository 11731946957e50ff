// EvaluateCondition on arbitrary text: no crash, no unbounded recursion, and
// negating a well-formed expression negates its value.
#include <BrindleBaseCore/text/UT_StringServices.h>

#include <cstdint>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    static std::set<std::string> const defined = {"a", "b", "linux", "x64", "_1"};
    std::string expression(reinterpret_cast<char const*>(data), size);
    bool value = UT_StringServices::EvaluateCondition(expression, defined);
    // A malformed expression is false and so is its negation; a well-formed true
    // one must give false when negated.
    if (value && UT_StringServices::EvaluateCondition("!(" + expression + ")", defined))
        __builtin_trap();
    return 0;
}
