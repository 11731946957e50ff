#include <BrindleBaseCore/app/UT_Tracking.h>

#include "UT_TrackingSymbols.h"

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstring>
#include <execinfo.h>
#include <sys/mman.h>

static_assert(sizeof(void*) == sizeof(quint64), "frames are captured in place");

namespace {

// Frames looked through for the faulting address: the signal handler's own
// frames and the kernel's signal trampoline lie above it.
int const faultSearchFrames = 32;

// Memory for a trace comes straight from the kernel, which a signal handler
// may ask for.
quint64* mapFrames(std::size_t bytes)
{
    void* memory = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return memory == MAP_FAILED ? nullptr : static_cast<quint64*>(memory);
}

template <typename... Args>
void appendFormatted(std::string& to, char const* format, Args... args)
{
    char buffer[256];
    int const length = std::snprintf(buffer, sizeof buffer, format, args...);
    if (length > 0)
        to.append(buffer, std::min<std::size_t>(std::size_t(length), sizeof buffer - 1));
}

void appendFrameNumber(std::string& to, quint32 frame)
{
    appendFormatted(to, "%-*d ", 3, int(frame));
}

} // namespace

// Kept out of line: frame 0 of the capture is this constructor.
__attribute__((noinline))
UT_Tracking::StackTrace::StackTrace(int maxFrames, int skipFrames, void* firstAddress, void*)
{
    int const room = maxFrames - (firstAddress ? 1 : 0);
    if (room < 1)
        return;
    skipFrames = std::max(skipFrames, 0);
    std::size_t const capacity = std::size_t(maxFrames) + std::size_t(skipFrames) + 1 +
                                 (firstAddress ? faultSearchFrames : 0);
    quint64* frames =
        capacity <= std::size_t(INT_MAX) ? mapFrames(capacity * sizeof(quint64)) : nullptr;
    if (!frames) {
        m_allocationFailed = true;
        return;
    }
    m_addresses = frames;
    m_mappedBytes = capacity * sizeof(quint64);

    void** raw = reinterpret_cast<void**>(frames);
    int const captured = backtrace(raw, int(capacity));
    int start = 1 + skipFrames;
    if (firstAddress) {
        // Continue below the faulting frame when the unwinder went through it.
        int const searchEnd = std::min(captured, faultSearchFrames + skipFrames + 1);
        for (int i = 1; i < searchEnd; ++i) {
            if (raw[i] == firstAddress) {
                start = i + 1;
                break;
            }
        }
    }
    int const kept = std::clamp(captured - start, 0, room);
    int const first = firstAddress ? 1 : 0;
    std::memmove(frames + first, frames + start, std::size_t(kept) * sizeof(quint64));
    if (firstAddress) {
        frames[0] = quint64(reinterpret_cast<quintptr>(firstAddress));
        m_startsAtFault = true;
    }
    m_count = quint32(kept + first);
}

UT_Tracking::StackTrace::StackTrace(StackTrace const& other)
    : m_allocationFailed(other.m_allocationFailed)
    , m_startsAtFault(other.m_startsAtFault)
{
    if (!other.m_addresses)
        return;
    m_mappedBytes = std::max<std::size_t>(other.m_count, 1) * sizeof(quint64);
    m_addresses = mapFrames(m_mappedBytes);
    if (!m_addresses) {
        m_mappedBytes = 0;
        m_allocationFailed = true;
        return;
    }
    std::memcpy(m_addresses, other.m_addresses, other.m_count * sizeof(quint64));
    m_count = other.m_count;
}

UT_Tracking::StackTrace& UT_Tracking::StackTrace::operator=(StackTrace const& other)
{
    if (this != &other) {
        StackTrace copy(other);
        std::swap(m_addresses, copy.m_addresses);
        std::swap(m_count, copy.m_count);
        std::swap(m_mappedBytes, copy.m_mappedBytes);
        std::swap(m_allocationFailed, copy.m_allocationFailed);
        std::swap(m_startsAtFault, copy.m_startsAtFault);
    }
    return *this;
}

UT_Tracking::StackTrace::~StackTrace()
{
    if (m_addresses)
        munmap(m_addresses, m_mappedBytes);
}

std::string UT_Tracking::StackTrace::getText(bool withSourceLines) const
{
    if (m_allocationFailed)
        return "Can't allocate stack trace\n";
    if (m_count == 0)
        return "Empty stack trace\n";
    brindle_app::prepareSymbols();
    std::string text;
    brindle_app::FrameSymbol symbol;
    for (quint32 frame = 0; frame < m_count; ++frame) {
        quint64 const address = m_addresses[frame];
        // A return address lies after its call: look up the call itself.
        bool const exact = frame == 0 && m_startsAtFault;
        quint64 const lookup = exact || address == 0 ? address : address - 1;
        appendFrameNumber(text, frame);
        appendFormatted(text, "0x%0*llX", 8, static_cast<unsigned long long>(address));
        if (brindle_app::describeAddress(address, lookup, withSourceLines, symbol)) {
            text += ' ';
            text += symbol.module;
            if (!symbol.symbol.empty()) {
                text += '!';
                text += symbol.symbol;
                appendFormatted(text, " + 0x%llX",
                                static_cast<unsigned long long>(symbol.symbolOffset));
            }
            if (!symbol.file.empty()) {
                text += " [";
                text += symbol.file;
                appendFormatted(text, ":%d]", symbol.line);
            }
        }
        text += '\n';
    }
    return text;
}

std::string UT_Tracking::StackTrace::getRelativeOffsets() const
{
    std::string text;
    std::string module;
    for (quint32 frame = 0; frame < m_count; ++frame) {
        quint64 const address = m_addresses[frame];
        quint64 base = 0;
        appendFrameNumber(text, frame);
        if (brindle_app::moduleOf(address, module, base))
            appendFormatted(text, "%s + 0x%llX\n", module.c_str(),
                            static_cast<unsigned long long>(address - base));
        else
            appendFormatted(text, "0x%0*llX\n", 8, static_cast<unsigned long long>(address));
    }
    return text;
}
