#include <BrindleBaseCore/app/BAPP_Services.h>

#include "ProgramName.h"

#include <cstdio>
#include <memory>
#include <unistd.h>

namespace {
std::unique_ptr<BAPP_Identity>& identitySlot()
{
    static std::unique_ptr<BAPP_Identity> identity;
    return identity;
}

BAPP_PathRemapper g_remapper = nullptr;
BAPP_PluginManagerProvider g_pluginManagerProvider = nullptr;
} // namespace

BAPP_Identity::~BAPP_Identity() = default;

QString BAPP_Identity::programName() const
{
    return brindle_app::programName();
}

QString BAPP_Identity::flavour() const
{
    return QString();
}

QString BAPP_Identity::fullVersionText() const
{
    return programName() + QLatin1Char(' ') + QLatin1String(BRINDLEBASECORE_VERSION_STRING);
}

void BAPP_Identity::printVersionBanner() const
{
    if (!::isatty(STDERR_FILENO))
        return;
    QByteArray line = fullVersionText().toUtf8();
    line.append('\n');
    std::fwrite(line.constData(), 1, size_t(line.size()), stderr);
    std::fflush(stderr);
}

BAPP_Identity& BAPP_Identity::instance()
{
    auto& identity = identitySlot();
    if (!identity)
        identity = std::make_unique<BAPP_Identity>();
    return *identity;
}

void BAPP_Identity::setInstance(BAPP_Identity* identity)
{
    if (identity != identitySlot().get())
        identitySlot().reset(identity);
}

QString BAPP_RemapPath(QString const& path)
{
    return g_remapper ? g_remapper(path) : path;
}

void BAPP_SetPathRemapper(BAPP_PathRemapper remapper)
{
    g_remapper = remapper;
}

void BAPP_SetPluginManagerProvider(BAPP_PluginManagerProvider provider)
{
    g_pluginManagerProvider = provider;
}

BAPP_PluginManagerProvider BAPP_GetPluginManagerProvider()
{
    return g_pluginManagerProvider;
}
