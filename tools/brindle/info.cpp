// brindle info: what start-up found: the installation's folders, the language
// preferences and the translators installed for them.
#include "Command.h"

#include <BrindleBaseCore/app/BAPP_Application.h>
#include <BrindleBaseCore/app/BAPP_Services.h>
#include <BrindleBaseCore/app/BAPP_SpecialFolders.h>

#include <QtCore/QMetaProperty>
#include <QtCore/QTranslator>

namespace {

int runInfo(brindle::Invocation& cmd)
{
    int status = 0;
    if (!cmd.parse(&status))
        return status;
    if (!cmd.parser().positionalArguments().isEmpty())
        return cmd.usageError(QStringLiteral("unexpected argument '%1'")
                                  .arg(cmd.parser().positionalArguments().first()));

    BAPP_Application* app = BAPP_Application::instance();
    if (!app)
        return cmd.fail(QStringLiteral("no application object"));
    brindle::printLine(QStringLiteral("version: ") + BAPP_Identity::instance().fullVersionText());

    // The folders in the order of their published properties.
    BAPP_SpecialFolders* folders = BAPP_SharedSpecialFolders();
    QMetaObject const* meta = folders->metaObject();
    for (int i = meta->propertyOffset(); i < meta->propertyCount(); ++i) {
        QMetaProperty const property = meta->property(i);
        brindle::printLine(
            QStringLiteral("folder %1: %2")
                .arg(QLatin1String(property.name()), property.read(folders).toString()));
    }

    brindle::printLine(QStringLiteral("language: ") +
                       (app->language().isNull() ? QStringLiteral("(default)") : app->language()));
    brindle::printLine(QStringLiteral("preferences: ") +
                       BAPP_Application::languagesPreference().join(QLatin1Char(' ')));
    for (QTranslator const* translator : app->translators())
        brindle::printLine(QStringLiteral("translator: ") + translator->filePath());
    return brindle::Success;
}

} // namespace

BRINDLE_COMMAND(info, "info [-lang LANG] [-langdir DIR]",
                "Shows the installation's folders, languages and translators", runInfo);
