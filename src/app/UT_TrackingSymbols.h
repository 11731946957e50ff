// Private: address-to-symbol lookup for stack traces.
#pragma once

#include <QtCore/QtGlobal>

#include <string>

namespace brindle_app {

// Opens the symbol session of this process once, so that a crash handler finds
// it ready. Writes "SymInitialize return false\n" to standard error on failure.
void prepareSymbols();

struct FrameSymbol
{
    std::string module; // base name of the object file
    quint64 moduleBase = 0;
    std::string symbol; // demangled; empty when unknown
    quint64 symbolOffset = 0;
    std::string file; // with debug information only
    int line = 0;
};

// Describes the code at address. lookupAddress is the address used for the
// lookup (a return address less one lands inside the call instruction).
// Returns false when no module holds the address.
bool describeAddress(quint64 address, quint64 lookupAddress, bool withSourceLines,
                     FrameSymbol& out);

// The object file and load base that hold address (no symbol lookup).
bool moduleOf(quint64 address, std::string& module, quint64& base);

} // namespace brindle_app
