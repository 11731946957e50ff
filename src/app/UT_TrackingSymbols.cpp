#include "UT_TrackingSymbols.h"

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <cxxabi.h>
#include <dlfcn.h>
#include <elfutils/libdwfl.h>
#include <unistd.h>

namespace brindle_app {

namespace {

char* debugInfoPath = nullptr;
Dwfl_Callbacks const callbacks = {dwfl_linux_proc_find_elf, dwfl_standard_find_debuginfo, nullptr,
                                  &debugInfoPath};

// The session is made once and used by one thread at a time; a thread that
// finds it in use (or a crash inside a lookup) falls back to the dynamic
// linker's symbols, so no lock is ever waited for.
std::atomic<Dwfl*> session{nullptr};
std::atomic<bool> sessionFailed{false};
std::atomic_flag sessionInUse = ATOMIC_FLAG_INIT;

char const* baseName(char const* path)
{
    char const* slash = std::strrchr(path, '/');
    return slash ? slash + 1 : path;
}

std::string demangle(char const* name)
{
    int status = 0;
    char* demangled = abi::__cxa_demangle(name, nullptr, nullptr, &status);
    if (status != 0 || !demangled)
        return name;
    std::string result(demangled);
    std::free(demangled);
    return result;
}

bool reportModules(Dwfl* dwfl)
{
    dwfl_report_begin_add(dwfl);
    int const failed = dwfl_linux_proc_report(dwfl, getpid());
    return dwfl_report_end(dwfl, nullptr, nullptr) == 0 && failed == 0;
}

// Called with the session flag held.
Dwfl* openSession()
{
    if (Dwfl* existing = session.load())
        return existing;
    if (sessionFailed.load())
        return nullptr;
    Dwfl* dwfl = dwfl_begin(&callbacks);
    if (!dwfl || !reportModules(dwfl)) {
        if (dwfl)
            dwfl_end(dwfl);
        sessionFailed = true;
        static char const message[] = "SymInitialize return false\n";
        [[maybe_unused]] auto written = ::write(2, message, sizeof message - 1);
        return nullptr;
    }
    session = dwfl;
    return dwfl;
}

bool describeWithDwfl(Dwfl* dwfl, quint64 lookup, bool withSourceLines, FrameSymbol& out)
{
    Dwfl_Module* module = dwfl_addrmodule(dwfl, lookup);
    if (!module) {
        // A library loaded since the session was opened.
        reportModules(dwfl);
        module = dwfl_addrmodule(dwfl, lookup);
    }
    if (!module)
        return false;
    Dwarf_Addr start = 0;
    char const* name =
        dwfl_module_info(module, nullptr, &start, nullptr, nullptr, nullptr, nullptr, nullptr);
    out.module = name ? baseName(name) : "?";
    out.moduleBase = start;
    GElf_Off offset = 0;
    GElf_Sym symbol;
    if (char const* symbolName =
            dwfl_module_addrinfo(module, lookup, &offset, &symbol, nullptr, nullptr, nullptr)) {
        out.symbol = demangle(symbolName);
        out.symbolOffset = offset;
    }
    if (withSourceLines) {
        if (Dwfl_Line* line = dwfl_module_getsrc(module, lookup)) {
            int lineNumber = 0;
            if (char const* file =
                    dwfl_lineinfo(line, nullptr, &lineNumber, nullptr, nullptr, nullptr)) {
                out.file = file;
                out.line = lineNumber;
            }
        }
    }
    return true;
}

bool describeWithDynamicLinker(quint64 lookup, FrameSymbol& out)
{
    Dl_info info;
    if (!dladdr(reinterpret_cast<void*>(lookup), &info) || !info.dli_fname)
        return false;
    out.module = baseName(info.dli_fname);
    out.moduleBase = quint64(reinterpret_cast<quintptr>(info.dli_fbase));
    if (info.dli_sname) {
        out.symbol = demangle(info.dli_sname);
        out.symbolOffset = lookup - quint64(reinterpret_cast<quintptr>(info.dli_saddr));
    }
    return true;
}

} // namespace

void prepareSymbols()
{
    if (sessionInUse.test_and_set())
        return;
    openSession();
    sessionInUse.clear();
}

bool describeAddress(quint64 address, quint64 lookupAddress, bool withSourceLines, FrameSymbol& out)
{
    out = FrameSymbol();
    bool found = false;
    if (!sessionInUse.test_and_set()) {
        if (Dwfl* dwfl = openSession())
            found = describeWithDwfl(dwfl, lookupAddress, withSourceLines, out);
        sessionInUse.clear();
    }
    if (!found || out.symbol.empty()) {
        FrameSymbol fallback;
        if (describeWithDynamicLinker(lookupAddress, fallback) &&
            (!found || !fallback.symbol.empty())) {
            fallback.file = out.file;
            fallback.line = out.line;
            out = fallback;
            found = true;
        }
    }
    // The offset is reported from the frame's own address.
    if (!out.symbol.empty())
        out.symbolOffset += address - lookupAddress;
    return found;
}

bool moduleOf(quint64 address, std::string& module, quint64& base)
{
    Dl_info info;
    if (!dladdr(reinterpret_cast<void*>(address), &info) || !info.dli_fname)
        return false;
    module = baseName(info.dli_fname);
    base = quint64(reinterpret_cast<quintptr>(info.dli_fbase));
    return true;
}

} // namespace brindle_app
