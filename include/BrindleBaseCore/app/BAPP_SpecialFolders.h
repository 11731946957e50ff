// The folders of an installation (resources, translations, plug-ins, ...),
// computed once per process from where the running program lives.
#pragma once

#include <BrindleBaseCore/Global.h>

#include <QtCore/QObject>
#include <QtCore/QString>

#include <array>

/// The installation's folders. Every read gives a path with '/' separators, or
/// an empty string when the folder could not be placed. A folder that does not
/// exist never makes the computation fail: it falls back to the nearest folder
/// that does (see BAPP_SpecialFoldersImpl). The folder names are those of the
/// family's installations on every platform ("win64", "win32"), intended: the
/// layout of an installation is the same everywhere.
class BRINDLE_EXPORT BAPP_SpecialFolders : public QObject
{
    Q_OBJECT

public:
    /// An object with no folders of its own.
    explicit BAPP_SpecialFolders(QObject* parent = nullptr);
    ~BAPP_SpecialFolders() override;

    /// @name Folders
    /// Paths with '/' separators; empty when the folder could not be placed.
    ///@{

    /// The installation's root folder.
    virtual QString root() const = 0;
    /// The configuration folder.
    virtual QString config() const = 0;
    /// The resources folder.
    virtual QString resource() const = 0;
    /// The "etc" folder.
    virtual QString etc() const = 0;
    /// The translations folder.
    virtual QString lang() const = 0;
    /// The platform folder ("win64").
    virtual QString platform() const = 0;
    /// The folder of the application's programs.
    virtual QString app() const = 0;
    /// The programs folder.
    virtual QString bin() const = 0;
    /// The 32-bit programs folder.
    virtual QString bin32() const = 0;
    /// The shared-library folder.
    virtual QString library() const = 0;
    /// The folder of old-style plug-ins.
    virtual QString legacyPlugins() const = 0;
    /// The plug-ins folder.
    virtual QString plugins() const = 0;
    /// The temporary folder.
    virtual QString temp() const = 0;
    /// The user's configuration folder.
    virtual QString userConfig() const = 0;
    /// The HTML help folder.
    virtual QString htmlHelp() const = 0;
    /// The user's scripts folder.
    virtual QString userScripts() const = 0;
    /// The user's layouts folder.
    virtual QString userLayouts() const = 0;
    /// The database folder.
    virtual QString database() const = 0;
    /// The user's library of templates: the documents folder plus
    /// "Brindle FLAVOUR Library" (the flavour from the identity service).
    virtual QString templateLibrary() const = 0;

    /// The help folder beside htmlHelp().
    virtual QString help() const = 0;
    /// The third-party programs folder.
    virtual QString bin3rdParty() const = 0;
    ///@}

    /// userConfig() + "/" + subPath (no second '/' when the folder ends with
    /// one); the bare folder when either is empty.
    virtual QString userConfigPath(QString const& subPath) const = 0;

    /// @name Setters
    ///@{

    /// Replaces lang().
    virtual void setLang(QString const& folder) = 0;
    /// Replaces userConfig().
    virtual void setUserConfig(QString const& folder) = 0;
    /// Stores the path after remapping it (BAPP_RemapPath).
    virtual void setDatabase(QString const& folder) = 0;
    /// Replaces userScripts().
    virtual void setUserScripts(QString const& folder) = 0;
    /// Replaces userLayouts().
    virtual void setUserLayouts(QString const& folder) = 0;
    ///@}
};

/// The folders computed from a path. The layout looked for is
///
/// @verbatim
/// ROOT/win64/bin/<program>    (or .../bin/bin_3rdParty/<program>)
/// ROOT/win64/lib, ROOT/win32/bin, ROOT/{etc,resources,lang,help,plugins}
/// @endverbatim
///
/// Each folder is entered only when it exists, so a missing one leaves the
/// folder it would have been entered from (a missing ROOT/lang gives ROOT).
/// The folder values are published as Qt properties; the object's name is
/// "specialFolders".
class BRINDLE_EXPORT BAPP_SpecialFoldersImpl : public BAPP_SpecialFolders
{
    Q_OBJECT
    /// The order of these properties is part of the interface.
    Q_PROPERTY(QString root READ root CONSTANT)
    Q_PROPERTY(QString config READ config CONSTANT)
    Q_PROPERTY(QString resource READ resource CONSTANT)
    Q_PROPERTY(QString etc READ etc CONSTANT)
    Q_PROPERTY(QString lang READ lang WRITE setLang)
    Q_PROPERTY(QString platform READ platform CONSTANT)
    Q_PROPERTY(QString app READ app CONSTANT)
    Q_PROPERTY(QString bin READ bin CONSTANT)
    Q_PROPERTY(QString bin32 READ bin32 CONSTANT)
    Q_PROPERTY(QString library READ library CONSTANT)
    Q_PROPERTY(QString legacyPlugins READ legacyPlugins CONSTANT)
    Q_PROPERTY(QString plugins READ plugins CONSTANT)
    Q_PROPERTY(QString temp READ temp CONSTANT)
    Q_PROPERTY(QString userConfig READ userConfig WRITE setUserConfig)
    Q_PROPERTY(QString htmlHelp READ htmlHelp CONSTANT)
    Q_PROPERTY(QString userScripts READ userScripts WRITE setUserScripts)
    Q_PROPERTY(QString userLayouts READ userLayouts WRITE setUserLayouts)
    Q_PROPERTY(QString database READ database WRITE setDatabase)
    Q_PROPERTY(QString templateLibrary READ templateLibrary)

public:
    /// No folder computed: every read is empty until set.
    BAPP_SpecialFoldersImpl();
    /// Computes the folders from the path of a program (pathIsExecutable) or
    /// from a folder inside an installation, searched upward for "win64/bin".
    /// Also fills "temp" and "database" from the environment; when "ZEKDB" is
    /// not set, "database" is "/ZEK_DB" and ZEKDB=/ZEK_DB is put in the
    /// process environment so that child processes see it too. A path without
    /// any '/' computes nothing at all.
    BAPP_SpecialFoldersImpl(QString const& path, bool pathIsExecutable);
    /// Destructor.
    ~BAPP_SpecialFoldersImpl() override;

    QString root() const override { return m_folders[Root]; }
    QString config() const override { return m_folders[Config]; }
    QString resource() const override { return m_folders[Resource]; }
    QString etc() const override { return m_folders[Etc]; }
    QString lang() const override { return m_folders[Lang]; }
    QString platform() const override { return m_folders[Platform]; }
    QString app() const override { return m_folders[App]; }
    QString bin() const override { return m_folders[Bin]; }
    QString bin32() const override { return m_folders[Bin32]; }
    QString library() const override { return m_folders[Library]; }
    QString legacyPlugins() const override { return m_folders[LegacyPlugins]; }
    QString plugins() const override { return m_folders[Plugins]; }
    QString temp() const override { return m_folders[Temp]; }
    QString userConfig() const override { return m_folders[UserConfig]; }
    QString htmlHelp() const override { return m_folders[HtmlHelp]; }
    QString userScripts() const override { return m_folders[UserScripts]; }
    QString userLayouts() const override { return m_folders[UserLayouts]; }
    QString database() const override { return m_folders[Database]; }
    QString templateLibrary() const override;
    QString help() const override { return m_folders[Help]; }
    QString bin3rdParty() const override { return m_folders[Bin3rdParty]; }

    QString userConfigPath(QString const& subPath) const override;

    void setLang(QString const& folder) override { m_folders[Lang] = folder; }
    void setUserConfig(QString const& folder) override { m_folders[UserConfig] = folder; }
    void setDatabase(QString const& folder) override;
    void setUserScripts(QString const& folder) override { m_folders[UserScripts] = folder; }
    void setUserLayouts(QString const& folder) override { m_folders[UserLayouts] = folder; }

private:
    enum Folder
    {
        Root,
        Config,
        Resource,
        Etc,
        Lang,
        Platform,
        App,
        Bin,
        Bin32,
        Library,
        LegacyPlugins,
        Plugins,
        Temp,
        UserConfig,
        HtmlHelp,
        UserScripts,
        UserLayouts,
        Database,
        Help,
        Bin3rdParty,
        FolderCount
    };

    void findRootFromExecutable(QString const& path);
    void findRootFromFolder(QString const& path);
    void computeUnderRoot();
    void computeUnderPlatform();
    void computeFromEnvironment();
    /// Sets a folder unless it already has a value; true when it was set.
    bool setOnce(Folder folder, QString const& path);
    void setBinOnce(QString const& path);

    std::array<QString, FolderCount> m_folders;
};

/// The process's folders, computed from the running program's path on first
/// use. Created once (not thread-safe: first use must be on the main thread)
/// and never destroyed.
BRINDLE_EXPORT BAPP_SpecialFolders* BAPP_SharedSpecialFolders();

/// Creates the process's folders from the given path when they do not exist
/// yet, and returns them. When they already exist they are returned unchanged
/// and the path is ignored.
BRINDLE_EXPORT BAPP_SpecialFolders* BAPP_CreateSharedSpecialFoldersWithPath(QString const& path,
                                                                            bool pathIsExecutable);
