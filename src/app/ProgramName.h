// Private: the running program's name.
#pragma once

#include <QtCore/QString>

namespace brindle_app {

// The application's name when a Qt application object exists, otherwise the
// base name of the running executable; empty if neither can be found.
QString programName();

} // namespace brindle_app
