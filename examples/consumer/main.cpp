// A minimal application built against the installed BrindleBaseCore package.
#include <BrindleBaseCore/BrindleBaseCore.h>

#include <cstdio>

int main()
{
    std::printf("BrindleBaseCore %s\n", BRINDLEBASECORE_VERSION_STRING);
    return 0;
}
