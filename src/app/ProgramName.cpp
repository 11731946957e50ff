#include "ProgramName.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QFileInfo>

namespace brindle_app {

QString programName()
{
    if (QCoreApplication::instance()) {
        QString name = QCoreApplication::applicationName();
        if (!name.isEmpty())
            return name;
    }
    return QFileInfo(QFile::symLinkTarget(QStringLiteral("/proc/self/exe"))).fileName();
}

} // namespace brindle_app
