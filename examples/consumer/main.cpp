// A small application built against the installed BrindleBaseCore package
// alone: it includes the umbrella header (after Qt, as applications do) and
// calls into every area of the library.
#include <QtCore/QCoreApplication>
#include <QtCore/QVariantMap>

#include <BrindleBaseCore/BrindleBaseCore.h>

#include <cstdio>
#include <vector>

int main(int argc, char** argv)
{
    BAPP_CoreApplication app(argc, argv); // app: start-up through the library

    UT_String const name("sh010_comp_v2.exr"); // text: UTF-8 in, UTF-16 units
    std::vector<QString> const shots{"sh10", "sh2", "sh1"};
    std::vector<std::size_t> const order = UT_StringSortNatural::getOrder(shots);

    Math::Matrix4x4 camera; // math
    camera.rotateDegrees(30.0, Math::Vector3d(0, 0, 1));

    UT_Path path; // files
    bool const pathOk = path.SetPath(QStringLiteral("/tmp/shots/sh010.xstage"));

    OSW_Execute child; // os
    int const status =
        child.execm(QStringLiteral("/bin/sh"), QStringLiteral("-c"), QStringLiteral("exit 3"));

    bool jsonOk = false; // data
    QVariant const scene = UT_Json::parse(QStringLiteral("{\"fps\": 24}"), jsonOk);
    auto const crc = TUCRC64Calculator().compute("123456789");

    std::printf("BrindleBaseCore %s (runtime %s)\n", BRINDLEBASECORE_VERSION_STRING,
                brindleBaseCoreVersion());
    std::printf("%zu units, natural order starts with %s, det %.3f, path %s, child %d, "
                "fps %d, crc %08X%08X\n",
                size_t(name.size()), qPrintable(shots[order[0]]), camera.determinant(),
                pathOk ? "ok" : "refused", status, scene.toMap().value("fps").toInt(), crc.first,
                crc.second);
    return name.size() == 17 && order[0] == 2 && status == 3 && jsonOk ? 0 : 1;
}
