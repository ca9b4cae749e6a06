#include "simulators/sky-camera/CommandLine.h"

#include <QGuiApplication>
#include <cstdio>

namespace {

constexpr int kBadOptions = 2;

void print(std::FILE* stream, const QString& text) {
    std::fputs(qPrintable(text), stream);
    std::fflush(stream);
}

} // namespace

int main(int argc, char* argv[]) {
    // Pictures are drawn in memory; the program must run without a display.
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    const skycamera::CommandLine line = skycamera::parseCommandLine(QGuiApplication::arguments());
    if (!line.help.isEmpty()) {
        print(stdout, line.help);
        return 0;
    }
    if (!line.error.isEmpty()) {
        print(stderr, "sky-camera: " + line.error + "\nTry sky-camera --help.\n");
        return kBadOptions;
    }

    skycamera::SkyCamera camera(line.options);
    if (!line.quiet)
        QObject::connect(&camera, &skycamera::SkyCamera::logged,
                         [](const QString& text) { print(stdout, text + '\n'); });
    if (!camera.start()) {
        print(stderr, "sky-camera: cannot listen: " + camera.errorString() + '\n');
        return 1;
    }
    const QString host = line.options.address.protocol() == QAbstractSocket::IPv6Protocol
                             ? '[' + line.options.address.toString() + ']'
                             : line.options.address.toString();
    print(stdout, QString("sky-camera: listening on http://%1:%2\n").arg(host).arg(camera.port()));
    return QGuiApplication::exec();
}
