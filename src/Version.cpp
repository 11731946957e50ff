#include <BrindleBaseCore/Global.h>

char const* brindleBaseCoreVersion() { return BRINDLEBASECORE_VERSION_STRING; }
