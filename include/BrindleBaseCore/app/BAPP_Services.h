// Services that the application frame calls but that an application of the
// family may provide itself: its identity, the site's path remapping and the
// plug-in manager. The library's own versions are deliberately minimal; each
// can be replaced before start-up.
#pragma once

#include <BrindleBaseCore/Global.h>

#include <QtCore/QString>

class BAPP_SpecialFolders;
class BAPP_LanguagePreferenceProvider;

/// Which program of the family is running. The default identity names the
/// running executable, has no flavour and versions the program with the
/// library's version.
class BRINDLE_EXPORT BAPP_Identity
{
public:
    virtual ~BAPP_Identity();

    /// The running executable's file name without its folder ("brindle").
    virtual QString programName() const;
    /// The product variant ("" for the library's own identity).
    virtual QString flavour() const;
    /// "brindle 0.1.0": the program name and its version, as written at the top
    /// of log files.
    virtual QString fullVersionText() const;
    /// Writes the full version text as one line to standard error, but only
    /// when standard error is a terminal, so that the output of programs run
    /// by scripts stays as the scripts expect.
    virtual void printVersionBanner() const;

    /// The process's identity (the default one until setInstance is called).
    static BAPP_Identity& instance();
    /// Replaces the process's identity; takes ownership. A null pointer
    /// restores the default identity.
    static void setInstance(BAPP_Identity* identity);
};

/// Rewrites a path according to the site's remapping rules. The library's own
/// rule returns the path unchanged.
using BAPP_PathRemapper = QString (*)(QString const& path);
/// `path` rewritten by the installed remapping.
BRINDLE_EXPORT QString BAPP_RemapPath(QString const& path);
/// Installs the remapping used by BAPP_RemapPath (null: the path unchanged).
BRINDLE_EXPORT void BAPP_SetPathRemapper(BAPP_PathRemapper remapper);

class BAPP_PluginManager;
/// The plug-in manager belongs to a separate library; the application frame
/// only hands it the installation's folders and the application's language
/// preferences. Without a provider there is no plug-in manager (null).
using BAPP_PluginManagerProvider = BAPP_PluginManager* (*)(BAPP_SpecialFolders* folders,
                                                           BAPP_LanguagePreferenceProvider* host);
/// Installs the provider (null: no plug-in manager).
BRINDLE_EXPORT void BAPP_SetPluginManagerProvider(BAPP_PluginManagerProvider provider);
/// The installed provider, or null.
BRINDLE_EXPORT BAPP_PluginManagerProvider BAPP_GetPluginManagerProvider();
